// The core's own forecast of every channel (MobilePowerPredictorCore::Predict),
// worked out by hand on a memory of seven steps.
//
// Model: one channel, one feature (the channel's value, weight 1; the
// calendar features weigh 0), a compared window of one step, ring of 32.
// One sample in the middle of each step s = 0 .. 7 with the values below;
// step 7 stays open, so steps 0 .. 6 are stored and step 6 is the present
// (relative index 0, age 0):
//
//   step    0      1     2     3      4      5      6
//   value   0.125  0.5   0.25  0.375  0.875  0.625  0.5
//   index  -6     -5    -4    -3     -2     -1      0
//
// A forecast of 2 steps needs neighbours followed by 2 stored steps, so the
// candidates are indices -2 .. -6, at distance (value - 0.5)^2:
// -2: 0.140625, -3: 0.015625, -4: 0.0625, -5: 0, -6: 0.140625.
// The forecast of step s averages, over the neighbours, the channel of the
// step that followed neighbour i by s + 1 steps: relative index i + 1 + s.
//  - One neighbour (-5, step 1): steps 2 and 3 follow it: 0.25, 0.375.
//  - Two neighbours (-5 and then -3, step 3, equal weights): steps 2, 3 and
//    steps 4, 5: means (0.25 + 0.875) / 2 = 0.5625 and (0.375 + 0.625) / 2
//    = 0.5; standard deviations sqrt(((0.25 - 0.5625)^2 + (0.875 -
//    0.5625)^2) / 2) = 0.3125 and sqrt((0.125^2 + 0.125^2) / 2) = 0.125;
//    ranges 0.25 .. 0.875 and 0.375 .. 0.625.
#include <gtest/gtest.h>

#include "predictor/MobilePowerPredictorCore.h"

namespace vorn {
namespace {

constexpr double kStep = 0.006944444444444444;
const double kValues[8] = {0.125, 0.5, 0.25, 0.375, 0.875, 0.625, 0.5, 0.75};

void Build(MobilePowerPredictorCore& core, int neighbours) {
  const double weights[1] = {1.0};
  const unsigned kinds[1] = {MobilePowerPredictorCore::kTableValue};
  const unsigned channels[1] = {0};
  core.Initialize(32, neighbours, 1, 1, kStep, 0.0, 0.0, 1, 1, weights, kinds,
                  channels);
  for (int s = 0; s < 8; ++s) {
    const double value[1] = {kValues[s]};
    core.AddRawData((s + 0.5) * kStep, value, nullptr);
  }
}

TEST(MobilePowerPredictorCoreChannelForecastTest, OneNeighbourGivesTheStepsThatFollowedIt) {
  MobilePowerPredictorCore core;
  Build(core, 1);
  ASSERT_EQ(core.storedCount, 7u);
  int found = 0;
  int index[1];
  double distance[1];
  core.Search(2, found, index, distance);
  ASSERT_EQ(found, 1);
  EXPECT_EQ(index[0], -5);
  EXPECT_EQ(distance[0], 0.0);

  double mean[2], stdev[2], lo[2], hi[2];
  ASSERT_TRUE(core.Predict(2, mean, stdev, lo, hi));
  EXPECT_EQ(mean[0], 0.25);
  EXPECT_EQ(mean[1], 0.375);
  EXPECT_EQ(stdev[0], 0.0);
  EXPECT_EQ(stdev[1], 0.0);
  EXPECT_EQ(lo[0], 0.25);
  EXPECT_EQ(hi[0], 0.25);
  EXPECT_EQ(lo[1], 0.375);
  EXPECT_EQ(hi[1], 0.375);
}

TEST(MobilePowerPredictorCoreChannelForecastTest, TwoNeighboursAreAveragedStepByStep) {
  MobilePowerPredictorCore core;
  Build(core, 2);
  int found = 0;
  int index[2];
  double distance[2];
  core.Search(2, found, index, distance);
  ASSERT_EQ(found, 2);
  EXPECT_EQ(index[0], -5);
  EXPECT_EQ(index[1], -3);
  EXPECT_EQ(distance[1], 0.015625);

  double mean[2], stdev[2], lo[2], hi[2];
  ASSERT_TRUE(core.Predict(2, mean, stdev, lo, hi));
  EXPECT_EQ(mean[0], 0.5625);
  EXPECT_EQ(mean[1], 0.5);
  EXPECT_EQ(stdev[0], 0.3125);
  EXPECT_EQ(stdev[1], 0.125);
  EXPECT_EQ(lo[0], 0.25);
  EXPECT_EQ(hi[0], 0.875);
  EXPECT_EQ(lo[1], 0.375);
  EXPECT_EQ(hi[1], 0.625);

  // Without min and max (or with only one of them) the ranges are not
  // filled, and the means stay the same.
  double onlyLo[2] = {-1.0, -1.0};
  ASSERT_TRUE(core.Predict(2, mean, stdev, onlyLo, nullptr));
  EXPECT_EQ(mean[0], 0.5625);
  EXPECT_EQ(onlyLo[0], 0.0);
  EXPECT_EQ(onlyLo[1], 0.0);
}

}  // namespace
}  // namespace vorn
