#include "search/VelqaSPFunction.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>

namespace vorn {
namespace {

void Append(VelqaSPFunction& f, int kind, std::initializer_list<int> inputs, int outputDim) {
  VelqaSPOperator op;
  op.kind = kind;
  for (int i : inputs) op.inputs.Add(i);
  op.SetOutputDim(outputDim);
  f.AddOperator(op);
}

double Calc(VelqaSPFunction& f, std::initializer_list<double> in) { return f.Calc(in.begin()); }

TEST(VelqaSPFunctionTest, ChainFeedsEachOperatorThePreviousOutput) {
  VelqaSPFunction f;
  Append(f, 0x210, {0, 1}, 1);  // mean
  Append(f, 0x110, {0}, 1);     // sqr
  EXPECT_EQ(9.0, Calc(f, {2.0, 4.0, 100.0}));

  VelqaSPFunction single;
  Append(single, 0x200, {2}, 1);
  EXPECT_EQ(100.0, Calc(single, {2.0, 4.0, 100.0}));
}

TEST(VelqaSPFunctionTest, ResetValueRestartsTheStatefulFirstStage) {
  // differential over two inputs, then angle: after a reset the first stage
  // gives (0, 0), so the chain yields the undefined-angle mark.
  VelqaSPFunction f;
  Append(f, 0x300, {0, 1}, 2);
  Append(f, 0x400, {0, 1}, 1);
  EXPECT_EQ(6.283185307179586, Calc(f, {1.0, 1.0}));
  EXPECT_EQ(std::atan2(2.0, 1.0), Calc(f, {2.0, 3.0}));
  f.ResetValue();
  EXPECT_EQ(0, f.Operator(0).history.capacity);
  EXPECT_NE(nullptr, f.Operator(0).output);
  EXPECT_EQ(6.283185307179586, Calc(f, {5.0, 9.0}));
  EXPECT_EQ(std::atan2(-1.0, -1.0), Calc(f, {4.0, 8.0}));
}

TEST(VelqaSPFunctionTest, SetCopiesConfigurationWithoutHistory) {
  VelqaSPFunction f;
  Append(f, 0x300, {0}, 1);
  Append(f, 0x130, {0}, 1);
  f.weight = 2.5;
  f.discrete = 1;
  f.fixedCount = 1;
  Calc(f, {1.0});

  VelqaSPFunction copy(f);
  EXPECT_EQ(2.5, copy.weight);
  EXPECT_EQ(1, copy.discrete);
  EXPECT_EQ(1, copy.fixedCount);
  ASSERT_TRUE(copy.IsSame(f));
  EXPECT_EQ(0, copy.Operator(0).history.count);
  EXPECT_NE(&f.Operator(0), &copy.Operator(0));

  EXPECT_EQ(2.0, Calc(f, {3.0}));
  EXPECT_EQ(0.0, Calc(copy, {3.0}));  // its own, fresh history

  // Set over a filled function replaces it.
  VelqaSPFunction other;
  Append(other, 0x200, {0}, 1);
  copy.Set(other);
  EXPECT_EQ(1, copy.OperatorCount());
  EXPECT_EQ(1.0, copy.weight);
  EXPECT_EQ(0, copy.discrete);
  EXPECT_EQ(0, copy.fixedCount);
}

TEST(VelqaSPFunctionTest, FixPreprocessingFindsTheLongestSharedPrefix) {
  VelqaSPFunction f;
  Append(f, 0x200, {0, 1, 2}, 3);
  Append(f, 0x300, {0, 1}, 2);
  Append(f, 0x230, {0, 1}, 1);

  FListP<VelqaSPFunction*> others;
  f.fixedCount = 5;
  f.FixPreprocessing(others);
  EXPECT_EQ(0, f.fixedCount);  // empty list

  VelqaSPFunction* prefix = new VelqaSPFunction;
  Append(*prefix, 0x200, {0, 1, 2}, 3);
  Append(*prefix, 0x310, {0, 1}, 2);  // differs at position 1
  others.Add(new VelqaSPFunction*(prefix));
  f.FixPreprocessing(others);
  EXPECT_EQ(1, f.fixedCount);

  VelqaSPFunction* copy = new VelqaSPFunction(f);
  others.Add(new VelqaSPFunction*(copy));
  f.FixPreprocessing(others);
  EXPECT_EQ(3, f.fixedCount);  // a copy shares the whole chain

  VelqaSPFunction* unrelated = new VelqaSPFunction;
  Append(*unrelated, 0x100, {0}, 1);
  others.Add(new VelqaSPFunction*(unrelated));
  f.FixPreprocessing(others);
  EXPECT_EQ(3, f.fixedCount);  // the longest match wins, whatever its place

  for (int i = 0; i < others.count; ++i) delete *others[i];
}

}  // namespace
}  // namespace vorn
