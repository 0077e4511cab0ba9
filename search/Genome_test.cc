// Genome of operators and functions: encoding, round trips, random
// generation and mutation.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <set>
#include <vector>

#include "search/VelqaSPFunction.h"

namespace vorn {
namespace {

std::vector<double> Values(const FListT<double>& list) {
  return std::vector<double>(list.data, list.data + list.count);
}

bool IsReducing(int kind) {
  for (const VelqaSPOperatorKind& k : kOperatorKinds) {
    if (k.code == kind) return k.outputDim == 1;
  }
  return false;
}

// Inputs distinct, ascending and below n; width as the kind says.
void ExpectWellFormed(const VelqaSPOperator& op, unsigned n) {
  ASSERT_GE(op.inputs.count, 1);
  for (int i = 0; i < op.inputs.count; ++i) {
    EXPECT_GE(op.inputs[i], 0);
    EXPECT_LT(op.inputs[i], static_cast<int>(n));
    if (i > 0) {
      EXPECT_LT(op.inputs[i - 1], op.inputs[i]);
    }
  }
  EXPECT_EQ(IsReducing(op.kind) ? 1 : op.inputs.count, op.outputDim);
  EXPECT_EQ(0, op.intParams.count);
  if (op.kind == 0x320) {
    ASSERT_EQ(1, op.doubleParams.count);
    EXPECT_GE(op.doubleParams[0], 0.0);
    EXPECT_LE(op.doubleParams[0], 1.0);
  } else {
    EXPECT_EQ(0, op.doubleParams.count);
  }
  EXPECT_NE(nullptr, op.output);
}

void ExpectWellFormed(const VelqaSPFunction& f, unsigned n) {
  ASSERT_GE(f.OperatorCount(), 1);
  for (int k = 0; k < f.OperatorCount(); ++k) {
    ExpectWellFormed(f.Operator(k), n);
    n = static_cast<unsigned>(f.Operator(k).outputDim);
  }
  EXPECT_EQ(1, f.Operator(f.OperatorCount() - 1).outputDim);
}

TEST(GenomeTest, EncodingOfAnOperatorAndAFunction) {
  VelqaSPOperator op;
  op.kind = 0x100;
  op.inputs.Add(0);
  op.inputs.Add(2);
  op.SetOutputDim(2);
  FListT<double> code;
  op.Encode(code);
  EXPECT_EQ((std::vector<double>{0, 2, -1, 2, 256, -1, -1}), Values(code));

  VelqaSPFunction f;
  f.AddOperator(op);
  f.weight = 1.5;
  FListT<double> fcode;
  f.Encode(fcode);
  EXPECT_EQ((std::vector<double>{1.5, 0, 0, 2, -1, 2, 256, -1, -1, -1}), Values(fcode));

  op.kind = 0x320;
  op.doubleParams.Add(0.25);
  op.intParams.Add(7);
  code.Clear();
  op.Encode(code);
  EXPECT_EQ((std::vector<double>{0, 2, -1, 2, 800, 7, -1, 0.25, -1}), Values(code));
}

TEST(GenomeTest, DecodeReadsBackExactlyWhatEncodeWrote) {
  srand(7);
  FListP<VelqaSPFunction*> pool;
  for (int trial = 0; trial < 200; ++trial) {
    VelqaSPFunction f;
    f.GenerateRandomly(1 + trial % 6, pool);
    f.discrete = trial % 2;
    FListT<double> code;
    f.Encode(code);
    code.Add(123.0);  // what follows must stay unread

    const double* p = code.data;
    int remaining = code.count;
    VelqaSPFunction back;
    back.Decode(p, remaining);
    EXPECT_EQ(code.data + code.count - 1, p);
    EXPECT_EQ(1, remaining);
    ASSERT_TRUE(back.IsSame(f));
    EXPECT_EQ(f.weight, back.weight);
    EXPECT_EQ(f.discrete, back.discrete);
    for (int k = 0; k < back.OperatorCount(); ++k) {
      EXPECT_EQ(back.Operator(k).outputDim > 0, back.Operator(k).output != nullptr);
    }
    FListT<double> again;
    back.Encode(again);
    again.Add(123.0);
    EXPECT_EQ(Values(code), Values(again));
  }
}

TEST(GenomeTest, EndMarksAreReadByTruncationAndReadsStopAtTheGivenLength) {
  // -1.5 ends a run like -1.0 does.
  const double code[] = {3, -1.5, 1, 0x200, -1, -1.9};
  const double* p = code;
  int remaining = 6;
  VelqaSPOperator op;
  op.Decode(p, remaining);
  EXPECT_EQ(0, remaining);
  EXPECT_EQ(1, op.inputs.count);
  EXPECT_EQ(0x200, op.kind);

  // A code cut short yields a truncated operator, not a read past its end.
  const double cut[] = {0, 1, -1, 2};
  p = cut;
  remaining = 4;
  op.Decode(p, remaining);
  EXPECT_EQ(0, remaining);
  EXPECT_EQ(cut + 4, p);
  EXPECT_EQ(2, op.outputDim);
  EXPECT_EQ(-1, op.kind);
}

TEST(GenomeTest, EligibleKindsFollowTheInputCountAndRequestedWidth) {
  srand(11);
  std::set<int> twoInputsOneOutput, oneInput, wide;
  for (int trial = 0; trial < 3000; ++trial) {
    VelqaSPOperator op;
    unsigned req = 1;
    op.GenerateRandomly(2, req);
    EXPECT_EQ(1u, req);
    EXPECT_EQ(1, op.outputDim);
    ExpectWellFormed(op, 2);
    twoInputsOneOutput.insert(op.kind);

    req = 0;
    op.GenerateRandomly(1, req);
    ExpectWellFormed(op, 1);
    oneInput.insert(op.kind);

    req = 3;  // element-wise only, over exactly three inputs
    op.GenerateRandomly(5, req);
    EXPECT_EQ(3u, req);
    EXPECT_EQ(3, op.inputs.count);
    ExpectWellFormed(op, 5);
    wide.insert(op.kind);
  }
  EXPECT_EQ(14u, twoInputsOneOutput.size());
  const std::set<int> elementWise = {0x100, 0x110, 0x120, 0x130, 0x140, 0x300, 0x310, 0x320, 0x410};
  EXPECT_EQ(elementWise, oneInput);
  EXPECT_EQ(elementWise, wide);

  // No kind gives two outputs from one input.
  VelqaSPOperator none;
  unsigned req = 2;
  none.GenerateRandomly(1, req);
  EXPECT_EQ(0u, req);
  EXPECT_EQ(0, none.inputs.count);
}

TEST(GenomeTest, ReductionsReadAtLeastTwoDistinctAscendingInputs) {
  srand(3);
  int means = 0;
  std::set<int> counts;
  for (int trial = 0; trial < 4000; ++trial) {
    VelqaSPOperator op;
    unsigned req = 0;
    op.GenerateRandomly(5, req);
    ExpectWellFormed(op, 5);
    if (op.kind == 0x210) {
      ++means;
      EXPECT_GE(op.inputs.count, 2);
      counts.insert(op.inputs.count);
    }
    EXPECT_NE(0x400, op.kind);  // angle and peak_hold need exactly two inputs
    EXPECT_NE(0x500, op.kind);
  }
  EXPECT_GT(means, 0);
  EXPECT_EQ((std::set<int>{2, 3, 4, 5}), counts);
}

TEST(GenomeTest, SameSeedGivesTheSameGenomes) {
  FListP<VelqaSPFunction*> pool;
  FListT<double> first, second;
  srand(99);
  for (int k = 0; k < 20; ++k) {
    VelqaSPFunction f;
    f.GenerateRandomly(12, pool);
    f.Mutate(1, 12);
    f.Encode(first);
  }
  srand(99);
  for (int k = 0; k < 20; ++k) {
    VelqaSPFunction f;
    f.GenerateRandomly(12, pool);
    f.Mutate(1, 12);
    f.Encode(second);
  }
  EXPECT_EQ(Values(first), Values(second));
}

TEST(GenomeTest, GeneratedFunctionsAreWellFormedChainsGrownFromThePool) {
  srand(5);
  FListP<VelqaSPFunction*> empty;
  VelqaSPFunction* seed = new VelqaSPFunction;
  seed->GenerateRandomly(12, empty);
  seed->weight = 0.5;
  seed->discrete = 1;
  FListP<VelqaSPFunction*> pool;
  pool.Add(new VelqaSPFunction*(seed));

  for (int trial = 0; trial < 200; ++trial) {
    VelqaSPFunction plain;
    plain.GenerateRandomly(12, empty);
    ExpectWellFormed(plain, 12);
    EXPECT_GE(plain.weight, 1.0);
    EXPECT_LE(plain.weight, 10000.0);
    const double raw[12] = {0.5, -1, 2, 0, 3, 0.25, 7, -2, 1, 1, 0, 9};
    plain.Calc(raw);  // evaluates without reading outside any buffer

    VelqaSPFunction grown;
    grown.GenerateRandomly(12, pool);
    ASSERT_GT(grown.OperatorCount(), seed->OperatorCount());
    for (int k = 0; k < seed->OperatorCount(); ++k) {
      EXPECT_TRUE(grown.Operator(k).IsSame(seed->Operator(k)));
    }
    EXPECT_EQ(0.5, grown.weight);  // the pool member's weight and flag win
    EXPECT_EQ(1, grown.discrete);
  }
  delete seed;
}

TEST(GenomeTest, OperatorMutationKeepsTheWidth) {
  srand(17);
  for (int trial = 0; trial < 500; ++trial) {
    VelqaSPOperator op;
    unsigned req = 0;
    op.GenerateRandomly(6, req);
    VelqaSPOperator before(op);
    op.Mutate(6);
    EXPECT_EQ(before.outputDim, op.outputDim);
    ExpectWellFormed(op, 6);
  }

  // With all inputs taken and no real parameter, only regeneration remains.
  VelqaSPOperator full;
  full.kind = 0x300;
  full.inputs.Add(0);
  full.inputs.Add(1);
  full.SetOutputDim(2);
  full.Mutate(2);
  EXPECT_EQ(2, full.outputDim);
  EXPECT_FALSE(IsReducing(full.kind));
}

TEST(GenomeTest, FunctionMutationNeverTouchesTheSharedLeadingOperators) {
  srand(23);
  FListP<VelqaSPFunction*> empty;
  int operatorChanges = 0;
  for (int trial = 0; trial < 300; ++trial) {
    VelqaSPFunction f;
    do {
      f.GenerateRandomly(8, empty);
    } while (f.OperatorCount() < 3);
    f.fixedCount = trial % 3;
    const VelqaSPFunction before(f);
    const double weight = f.weight;
    f.Mutate(1, 8);
    for (int k = 0; k <= f.fixedCount; ++k) EXPECT_TRUE(f.Operator(k).IsSame(before.Operator(k)));
    // One change only: an operator (possibly regenerated as it was) or
    // the weight.
    if (!f.IsSame(before)) {
      EXPECT_EQ(weight, f.weight);
      ++operatorChanges;
    }
    EXPECT_GE(f.weight, 1.0);
  }
  EXPECT_GT(operatorChanges, 0);

  // A single operator can only have its weight changed.
  VelqaSPFunction one;
  VelqaSPOperator op;
  op.kind = 0x200;
  op.inputs.Add(0);
  op.SetOutputDim(1);
  one.AddOperator(op);
  for (int trial = 0; trial < 20; ++trial) {
    const double weight = one.weight;
    one.Mutate(1, 4);
    EXPECT_NE(weight, one.weight);
    EXPECT_TRUE(one.Operator(0).IsSame(op));
  }
}

TEST(GenomeTest, WeightBelowOneAfterMutationJumpsUpByAThousand) {
  // Mutate(0, n) draws one uniform value for the factor 10^(2u - 1).
  int jumps = 0;
  for (unsigned seed = 1; seed < 40; ++seed) {
    srand(seed);
    const double u =
        std::fmod(static_cast<double>(static_cast<unsigned>(rand())), 2147483648.0) / 2147483647.0;
    const double factor = std::pow(10.0, 2.0 * u - 1.0);
    VelqaSPFunction f;
    f.weight = 0.5;
    srand(seed);
    f.Mutate(0, 3);
    const double expected = 0.5 * factor < 1.0 ? 0.5 * factor * 1000.0 : 0.5 * factor;
    EXPECT_EQ(expected, f.weight);
    if (0.5 * factor < 1.0) ++jumps;
  }
  EXPECT_GT(jumps, 0);
}

}  // namespace
}  // namespace vorn
