#include "search/VelqaSPOperator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <limits>

namespace vorn {
namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kTwoPi = 6.283185307179586;

// An operator of `kind` over `inputs` with the width its kind gives.
void Make(VelqaSPOperator& op, int kind, std::initializer_list<int> inputs, int outputDim = -1) {
  op.Clear();
  op.kind = kind;
  for (int i : inputs) op.inputs.Add(i);
  op.SetOutputDim(outputDim < 0 ? static_cast<int>(inputs.size()) : outputDim);
}

void Feed(VelqaSPOperator& op, std::initializer_list<double> in) { op.Calc(in.begin()); }

double Calc1(VelqaSPOperator& op, std::initializer_list<double> in) {
  op.Calc(in.begin());
  return op.output[0];
}

TEST(VelqaSPOperatorTest, StatelessElementWiseKinds) {
  VelqaSPOperator op;
  const double in[] = {-2.0, 0.0, -0.0, 9.0, kNaN};
  Make(op, 0x100, {0, 3, 4});
  op.Calc(in);
  EXPECT_EQ(2.0, op.output[0]);
  EXPECT_EQ(9.0, op.output[1]);
  EXPECT_TRUE(std::isnan(op.output[2]));

  Make(op, 0x110, {0, 3});
  op.Calc(in);
  EXPECT_EQ(4.0, op.output[0]);
  EXPECT_EQ(81.0, op.output[1]);

  // sqrt: negatives, zeros and NaN give 0.
  Make(op, 0x120, {0, 1, 3, 4});
  op.Calc(in);
  EXPECT_EQ(0.0, op.output[0]);
  EXPECT_EQ(0.0, op.output[1]);
  EXPECT_EQ(3.0, op.output[2]);
  EXPECT_EQ(0.0, op.output[3]);

  // posi: -0.0 and NaN become +0.0.
  Make(op, 0x130, {0, 2, 3, 4});
  op.Calc(in);
  EXPECT_EQ(0.0, op.output[0]);
  EXPECT_FALSE(std::signbit(op.output[1]));
  EXPECT_EQ(9.0, op.output[2]);
  EXPECT_FALSE(std::signbit(op.output[3]));
  EXPECT_FALSE(std::isnan(op.output[3]));

  // nega: zeros keep their sign, NaN becomes +0.0.
  Make(op, 0x140, {0, 1, 2, 3, 4});
  op.Calc(in);
  EXPECT_EQ(-2.0, op.output[0]);
  EXPECT_FALSE(std::signbit(op.output[1]));
  EXPECT_TRUE(std::signbit(op.output[2]));
  EXPECT_EQ(0.0, op.output[3]);
  EXPECT_EQ(0.0, op.output[4]);
  EXPECT_FALSE(std::signbit(op.output[4]));

  // The selection kind copies, in the order of `inputs`.
  Make(op, 0x200, {3, 0});
  op.Calc(in);
  EXPECT_EQ(9.0, op.output[0]);
  EXPECT_EQ(-2.0, op.output[1]);
}

TEST(VelqaSPOperatorTest, Reductions) {
  VelqaSPOperator op;
  Make(op, 0x210, {0, 1, 2}, 1);
  EXPECT_EQ(3.0, Calc1(op, {1.0, 2.0, 6.0}));
  Make(op, 0x210, {}, 1);
  EXPECT_TRUE(std::isnan(Calc1(op, {1.0})));  // 0/0

  // stdev is the root of the summed squared deviations, not divided by n.
  Make(op, 0x220, {0, 1}, 1);
  EXPECT_EQ(std::sqrt(2.0), Calc1(op, {1.0, 3.0}));
  Make(op, 0x220, {0, 1, 2, 3}, 1);
  EXPECT_EQ(2.0, Calc1(op, {1.0, 3.0, 1.0, 3.0}));

  Make(op, 0x230, {0, 1}, 1);
  EXPECT_EQ(5.0, Calc1(op, {3.0, -4.0}));
  EXPECT_TRUE(std::isnan(Calc1(op, {kNaN, 1.0})));
}

TEST(VelqaSPOperatorTest, DifferentialAndFactorStartFromZeroAfterReset) {
  VelqaSPOperator diff;
  Make(diff, 0x300, {0, 1});
  Feed(diff, {5.0, 1.0});
  EXPECT_EQ(0.0, diff.output[0]);  // first call: no previous value
  EXPECT_EQ(0.0, diff.output[1]);
  Feed(diff, {7.5, -1.0});
  EXPECT_EQ(2.5, diff.output[0]);
  EXPECT_EQ(-2.0, diff.output[1]);
  diff.history.Clear();  // what a function's ResetValue does
  Feed(diff, {100.0, 100.0});
  EXPECT_EQ(0.0, diff.output[0]);
  EXPECT_EQ(0.0, diff.output[1]);
  EXPECT_EQ(2, diff.history.count);

  VelqaSPOperator factor;
  Make(factor, 0x310, {0});
  EXPECT_EQ(0.0, Calc1(factor, {0.0}));
  EXPECT_EQ(0.0, Calc1(factor, {3.0}));  // previous value 0
  EXPECT_EQ(2.0, Calc1(factor, {6.0}));
  EXPECT_EQ(-0.5, Calc1(factor, {-3.0}));
  // NaN propagates through the arithmetic (a NaN previous value is not 0).
  EXPECT_TRUE(std::isnan(Calc1(factor, {kNaN})));
  EXPECT_TRUE(std::isnan(Calc1(factor, {1.0})));
  Make(diff, 0x300, {0});
  Calc1(diff, {kNaN});
  EXPECT_TRUE(std::isnan(Calc1(diff, {1.0})));
}

TEST(VelqaSPOperatorTest, LowPassFilter) {
  VelqaSPOperator op;
  Make(op, 0x320, {0});
  op.doubleParams.Add(0.0);
  EXPECT_EQ(4.0, Calc1(op, {4.0}));  // starts at its first input
  EXPECT_EQ(4.0, Calc1(op, {9.0}));  // a = 0 holds it for ever
  op.doubleParams[0] = 1.0;
  EXPECT_EQ(9.0, Calc1(op, {9.0}));  // a = 1 passes through
  op.doubleParams[0] = 0.25;
  EXPECT_EQ(1.0 * 0.25 + (1 - 0.25) * 9.0, Calc1(op, {1.0}));
  op.history.Clear();
  EXPECT_EQ(-3.0, Calc1(op, {-3.0}));
}

TEST(VelqaSPOperatorTest, AngleMarksTheUndefinedAngle) {
  VelqaSPOperator op;
  Make(op, 0x400, {0, 1}, 1);
  EXPECT_EQ(kTwoPi, Calc1(op, {0.0, 0.0}));
  EXPECT_EQ(kTwoPi, Calc1(op, {-0.0, 0.0}));
  EXPECT_EQ(std::atan2(1.0, 1.0), Calc1(op, {1.0, 1.0}));  // atan2(y = in[1], x = in[0])
  EXPECT_EQ(std::atan2(-2.0, 0.0), Calc1(op, {0.0, -2.0}));
}

TEST(VelqaSPOperatorTest, AngleDiffWrapsAndIgnoresUndefinedAngles) {
  VelqaSPOperator op;
  Make(op, 0x410, {0});
  EXPECT_EQ(0.0, Calc1(op, {3.0}));
  EXPECT_EQ(0.28318530717958623, Calc1(op, {-3.0}));  // wrapped into [-pi, pi)
  EXPECT_EQ(-0.28318530717958623, Calc1(op, {3.0}));
  EXPECT_EQ(-2.0, Calc1(op, {1.0}));
  // An undefined angle gives 0 at its own step and at the next.
  EXPECT_EQ(0.0, Calc1(op, {kTwoPi}));
  EXPECT_EQ(0.0, Calc1(op, {1.0}));
  EXPECT_EQ(0.5, Calc1(op, {1.5}));
  EXPECT_EQ(0.0, Calc1(op, {kNaN}));
  EXPECT_EQ(0.0, Calc1(op, {1.0}));
  // Exactly pi apart lands on -pi, the lower end.
  Make(op, 0x410, {0});
  Calc1(op, {0.0});
  EXPECT_EQ(-3.141592653589793, Calc1(op, {3.141592653589793}));
}

TEST(VelqaSPOperatorTest, PeakHoldRestartsWhenTheGateCloses) {
  VelqaSPOperator op;
  Make(op, 0x500, {0, 1}, 1);
  EXPECT_EQ(0.0, Calc1(op, {5.0, 0.0}));  // gate closed
  EXPECT_EQ(0.0, Calc1(op, {-1.0, 1.0}));  // held value starts at 0
  EXPECT_EQ(3.0, Calc1(op, {3.0, 1.0}));
  EXPECT_EQ(3.0, Calc1(op, {2.0, 1.0}));
  EXPECT_EQ(0.0, Calc1(op, {7.0, kNaN}));
  EXPECT_EQ(2.0, Calc1(op, {2.0, 0.5}));
}

TEST(VelqaSPOperatorTest, UnknownKindLeavesOutputAndHistoryAlone) {
  VelqaSPOperator op;
  Make(op, 0x999, {0});
  op.output[0] = 42.0;
  EXPECT_EQ(42.0, Calc1(op, {1.0}));
  EXPECT_EQ(0, op.history.count);
}

TEST(VelqaSPOperatorTest, CopyKeepsConfigurationButNotState) {
  VelqaSPOperator op;
  Make(op, 0x300, {1, 2});
  op.inputs.Sort();
  op.doubleParams.Add(0.5);
  op.intParams.Add(3);
  Feed(op, {0.0, 1.0, 2.0});

  VelqaSPOperator copy(op);
  EXPECT_TRUE(copy.IsSame(op));
  EXPECT_EQ(1, copy.inputs.sorted);
  EXPECT_NE(op.output, copy.output);
  EXPECT_EQ(0, copy.history.count);

  const double next[] = {0.0, 4.0, 4.0};
  op.Calc(next);
  copy.Calc(next);
  EXPECT_EQ(3.0, op.output[0]);
  EXPECT_EQ(0.0, copy.output[0]);  // the copy starts afresh
  copy.Calc(next);
  EXPECT_EQ(0.0, copy.output[0]);
  EXPECT_EQ(2, op.history.count);  // the source is not disturbed
}

TEST(VelqaSPOperatorTest, SetOutputDimAndClearBufDropTheHistory) {
  VelqaSPOperator op;
  Make(op, 0x300, {0});
  Calc1(op, {1.0});
  op.SetOutputDim(3);
  EXPECT_EQ(3, op.outputDim);
  EXPECT_EQ(0, op.history.capacity);
  EXPECT_EQ(0.0, Calc1(op, {5.0}));  // starts over
  op.ClearBuf();
  EXPECT_EQ(nullptr, op.output);
  EXPECT_EQ(0, op.history.capacity);
  EXPECT_EQ(0x300, op.kind);  // the configuration stays
}

}  // namespace
}  // namespace vorn
