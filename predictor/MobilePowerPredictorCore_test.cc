#include "predictor/MobilePowerPredictorCore.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "predictor/MobilePowerPredictor.h"
#include "predictor/MobilePowerPredictorParameter.h"

namespace vorn {
namespace {

constexpr double kStep = 0.006944444444444444;

VelqaSPFunction& Feature(VelqaSPBase& base, int i) {
  return **base.featureFunctions.data[i];
}

// A chain as (kind, input) pairs.
std::vector<std::pair<int, int>> Chain(VelqaSPFunction& f) {
  std::vector<std::pair<int, int>> chain;
  for (int k = 0; k < f.OperatorCount(); ++k) {
    VelqaSPOperator& op = f.Operator(k);
    EXPECT_EQ(op.inputs.count, 1);
    EXPECT_EQ(op.outputDim, 1);
    chain.push_back({op.kind, op.inputs.count > 0 ? op.inputs[0] : -1});
  }
  return chain;
}

using Links = std::vector<std::pair<int, int>>;

TEST(MobilePowerPredictorCoreTest, DefaultModelBuildsFourteenFeatures) {
  MobilePowerPredictor p{MobilePowerPredictorParameter()};
  EXPECT_EQ(p.featureFunctions.count, 14);
  EXPECT_EQ(p.predictionFunctions.count, 0);
  EXPECT_EQ(p.memorySize, 4320u);
  EXPECT_EQ(p.rawSize, 12u);
  EXPECT_EQ(p.neighbourMax, 16u);
  EXPECT_EQ(p.lagCount, 16);
  EXPECT_EQ(p.lagStride, 1);
  EXPECT_EQ(p.lagDecay, 0.95);
  EXPECT_EQ(p.channelCount, 8);
  EXPECT_EQ(p.stepDays, kStep);
  EXPECT_EQ(p.indexWeightBase, 1.0);
  EXPECT_EQ(p.rankWeightBase, 1.0);
  EXPECT_EQ(p.storedCount, 0u);

  // weight[6] twice, weight[0] and weight[1] only for the calendar.
  const double weights[14] = {277.591529, 277.591529, 1.681682, 1.681682,
                              3.169692,   1.007308,   2.153802, 0.315476,
                              1.0,        1.0,        4.322219, 0.721791,
                              0.260737,   0.1};
  const Links chains[14] = {
      {{0x200, 0}}, {{0x200, 1}}, {{0x200, 2}}, {{0x200, 3}},
      {{0x200, 4}},                 // level
      {{0x300, 4}, {0x130, 0}},     // rise of the level
      {{0x300, 4}, {0x140, 0}},     // fall of the level
      {{0x200, 5}}, {{0x200, 6}}, {{0x200, 7}}, {{0x200, 8}}, {{0x200, 9}},
      {{0x200, 10}},
      {{0x200, 4}}};                // level, compared by mismatch
  for (int i = 0; i < 14; ++i) {
    VelqaSPFunction& f = Feature(p, i);
    EXPECT_EQ(f.weight, weights[i]) << i;
    EXPECT_EQ(f.discrete, i == 13 ? 1 : 0) << i;
    EXPECT_EQ(Chain(f), chains[i]) << i;
  }

  // Row m of the distance weights is 0.95^m times each weight, the
  // mismatch feature negated.
  ASSERT_NE(p.distanceWeights, nullptr);
  double factor = 1.0;
  for (int m = 0; m < 16; ++m) {
    for (int i = 0; i < 14; ++i) {
      const double w = factor * weights[i] * (i == 13 ? -1.0 : 1.0);
      EXPECT_DOUBLE_EQ(p.distanceWeights[m * 14 + i], w) << m << "," << i;
    }
    factor *= 0.95;
  }
}

TEST(MobilePowerPredictorCoreTest, TinyTableWeightsDropTheirFeature) {
  const double weights[3] = {0.000009, 0.00001, -0.000009};
  const unsigned kinds[3] = {0x00, 0x10, 0x00};
  const unsigned channels[3] = {0, 1, 1};
  MobilePowerPredictorCore core;
  core.Initialize(64, 4, 4, 1, kStep, 2.0, 3.0, 2, 3, weights, kinds,
                  channels);
  ASSERT_EQ(core.featureFunctions.count, 5);
  EXPECT_EQ(Feature(core, 0).weight, 2.0);
  EXPECT_EQ(Feature(core, 3).weight, 3.0);
  EXPECT_EQ(Feature(core, 4).weight, 0.00001);
  EXPECT_EQ(Chain(Feature(core, 4)), (Links{{0x300, 5}, {0x130, 0}}));
  EXPECT_EQ(core.rawSize, 6u);
  EXPECT_EQ(core.memorySize, 64u);
  EXPECT_EQ(core.neighbourMax, 4u);
}

TEST(MobilePowerPredictorCoreTest, NullTablesSelectChannelT) {
  const double weights[3] = {1.0, 2.0, 3.0};
  MobilePowerPredictorCore core;
  core.Initialize(64, 4, 4, 1, kStep, 1.0, 1.0, 3, 3, weights, nullptr,
                  nullptr);
  ASSERT_EQ(core.featureFunctions.count, 7);
  for (int t = 0; t < 3; ++t) {
    EXPECT_EQ(Chain(Feature(core, 4 + t)), (Links{{0x200, 4 + t}})) << t;
    EXPECT_EQ(Feature(core, 4 + t).discrete, 0);
  }
}

TEST(MobilePowerPredictorCoreTest, SecondInitializeStartsOver) {
  MobilePowerPredictor p{MobilePowerPredictorParameter()};
  MobilePowerInputData input;
  input.level = 0.5;
  for (int k = 0; k < 5; ++k) p.AddRawData(100.0 + k * kStep, &input, 0.99);
  ASSERT_GT(p.storedCount, 0u);
  MobilePowerPredictorParameter other;
  other.setting1 = 8;
  p.Initialize(other);
  EXPECT_EQ(p.featureFunctions.count, 14);
  EXPECT_EQ(p.storedCount, 0u);
  EXPECT_EQ(p.neighbourMax, 8u);
  EXPECT_EQ(p.sampleCount, 0u);
  EXPECT_EQ(p.sampleTime, 0.0);
}

// A small core with two channels: level (with its rise) and charging.
class CoreIngestionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const double weights[2] = {1.0, 1.0};
    const unsigned kinds[2] = {0x00, 0x10};
    const unsigned channels[2] = {0, 0};
    core.Initialize(32, 4, 2, 1, kStep, 1.0, 1.0, 2, 2, weights, kinds,
                    channels);
  }
  int Add(double time, double a, double b, double* step = nullptr) {
    const double channels[2] = {a, b};
    return core.AddRawData(time, channels, step);
  }
  MobilePowerPredictorCore core;
};

TEST_F(CoreIngestionTest, StepCommitsTheMeanWithThePhasesOfItsLastSample) {
  const double boundary = 3 * kStep * 144 * 7 + 50 * kStep;  // a step start
  const double minute = kStep / 10;
  EXPECT_EQ(Add(boundary + 0.01 * minute, 0.2, 1.0), 1);  // commits time 0
  EXPECT_EQ(Add(boundary + 4 * minute, 0.4, 0.0), 0);
  EXPECT_EQ(Add(boundary + 9 * minute, 0.9, 0.0), 0);
  const std::size_t before = core.storedCount;
  double step[2] = {-1, -1};
  EXPECT_EQ(Add(boundary + 11 * minute, 5.0, 5.0, step), 1);
  EXPECT_EQ(core.storedCount, before + 1);

  const double t9 = boundary + 9 * minute;
  const double day = std::fmod(t9, 1.0);
  const double week = std::fmod(t9 / 7.0, 1.0);
  const double* raw = core.GetRAWBuffer(0);
  EXPECT_EQ(raw[0], std::sin(day * 6.2831852));
  EXPECT_EQ(raw[1], std::cos(day * 6.2831852));
  EXPECT_EQ(raw[2], std::sin(week * 6.2831852));
  EXPECT_EQ(raw[3], std::cos(week * 6.2831852));
  EXPECT_EQ(raw[4], (0.2 + 0.4 + 0.9) / 3.0);
  EXPECT_EQ(raw[5], 1.0 / 3.0);
  EXPECT_EQ(step[0], raw[4]);
  EXPECT_EQ(step[1], raw[5]);
  EXPECT_EQ(core.sampleCount, 1u);
  EXPECT_EQ(core.sampleTime, boundary + 11 * minute);
}

TEST_F(CoreIngestionTest, FirstSampleAfterInitializeCommitsTimeZeroAndAGap) {
  EXPECT_EQ(Add(200.25, 0.5, 1.0), 1);
  ASSERT_EQ(core.storedCount, 2u);
  const double* zero = core.GetRAWBuffer(-1);
  const double expected[6] = {0.0, 1.0, 0.0, 1.0, 0.0, 0.0};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(zero[i], expected[i]) << i;
  const double* gap = core.GetRAWBuffer(0);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(gap[i], 1e307) << i;
}

TEST_F(CoreIngestionTest, SkippedStepsLeaveExactlyOneGapRecord) {
  const double t = 200.0 + 0.5 * kStep;
  Add(t, 0.5, 0.0);
  Add(t + kStep, 0.6, 0.0);
  const std::size_t before = core.storedCount;
  // 35 minutes later: three steps on.
  EXPECT_EQ(Add(t + kStep + 3.5 * kStep, 0.7, 0.0), 1);
  ASSERT_EQ(core.storedCount, before + 2);
  EXPECT_EQ(core.GetRAWBuffer(-1)[4], 0.6);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(core.GetRAWBuffer(0)[i], 1e307) << i;
  // A gap of days is still one record.
  EXPECT_EQ(Add(t + 9.0, 0.8, 0.0), 1);
  EXPECT_EQ(core.storedCount, before + 4);
  EXPECT_EQ(core.GetRAWBuffer(-1)[4], 0.7);
  EXPECT_EQ(core.GetRAWBuffer(0)[0], 1e307);
}

TEST_F(CoreIngestionTest, StepBoundariesAndNegativeTimesTruncateTowardZero) {
  // Exactly on a boundary: the new step.
  Add(kStep * 0.5, 0.1, 0.0);  // step 0, nothing committed
  EXPECT_EQ(core.storedCount, 0u);
  EXPECT_EQ(Add(kStep, 0.2, 0.0), 1);
  EXPECT_EQ(core.storedCount, 1u);
  EXPECT_EQ(core.GetRAWBuffer(0)[4], 0.1);

  // Negative times fall into step 0 or below: only accumulated.
  MobilePowerPredictorCore& c = core;
  c.Initialize(32, 4, 2, 1, kStep, 1.0, 1.0, 2, 0, nullptr, nullptr, nullptr);
  EXPECT_EQ(Add(-0.5 * kStep, 0.3, 0.0), 0);
  EXPECT_EQ(Add(-1.5 * kStep, 0.5, 0.0), 0);
  EXPECT_EQ(c.storedCount, 0u);
  EXPECT_EQ(c.sampleCount, 2u);
  EXPECT_EQ(c.sampleTime, -1.5 * kStep);
}

TEST_F(CoreIngestionTest, TimeGoingBackwardsOnlyAccumulates) {
  const double t = 300.0 + 0.5 * kStep;
  Add(t, 0.5, 0.0);
  Add(t + 2 * kStep, 0.6, 0.0);
  const std::size_t before = core.storedCount;
  EXPECT_EQ(Add(t, 0.8, 0.0), 0);
  EXPECT_EQ(core.storedCount, before);
  EXPECT_EQ(core.sampleTime, t);
  // The open step now averages both samples, and the next later sample,
  // compared with the earlier time, commits it.
  EXPECT_EQ(Add(t + kStep, 0.9, 0.0), 1);
  EXPECT_EQ(core.GetRAWBuffer(0)[4], (0.6 + 0.8) / 2.0);
}

TEST_F(CoreIngestionTest, CorePredictAveragesTheChannelsThatFollowed) {
  double mean[6], stdev[6], lo[6], hi[6];
  // Empty memory: false, arrays zeroed.
  for (double& v : mean) v = 7.0;
  EXPECT_FALSE(core.Predict(3, mean, stdev, lo, hi));
  for (double v : mean) EXPECT_EQ(v, 0.0);

  // A level alternating 0.25 / 0.75 by step, charging always 1.
  for (int k = 0; k < 20; ++k) {
    Add(500.0 + (k + 0.5) * kStep, k % 2 == 0 ? 0.25 : 0.75, 1.0);
  }
  ASSERT_TRUE(core.Predict(3, mean, stdev, lo, hi));
  for (int s = 0; s < 3; ++s) {
    EXPECT_EQ(mean[s * 2 + 1], 1.0);
    EXPECT_EQ(stdev[s * 2 + 1], 0.0);
    EXPECT_GE(mean[s * 2], 0.25);
    EXPECT_LE(mean[s * 2], 0.75);
    EXPECT_LE(lo[s * 2], mean[s * 2]);
    EXPECT_GE(hi[s * 2], mean[s * 2]);
  }
}

TEST(MobilePowerPredictorCoreUnconfiguredTest, SamplesBeforeInitializeAreIgnored) {
  MobilePowerPredictorCore core;
  const double channels[2] = {1.0, 1.0};
  EXPECT_EQ(core.AddRawData(10.0, channels, nullptr), 0);
  EXPECT_EQ(core.storedCount, 0u);
}

}  // namespace
}  // namespace vorn
