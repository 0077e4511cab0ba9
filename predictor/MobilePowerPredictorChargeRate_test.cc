// The running charge rate at and around a full battery, worked out by hand.
//
// Between two samples less than a day apart, while the newer one is charging
// (state above 0.5), the rise of the level is added to the decayed sum
// chargeRise and the time between them, in steps, to chargeSteps:
//   chargeRise  = chargeRise  * forget + (level - previous level)
//   chargeSteps = chargeSteps * forget + elapsed steps
// except when the newer or the previous level is 1.0 or more: the level
// cannot rise at full, so those pairs teach nothing about charging. A phone
// that drops from 100 % to 99 % while still plugged in must therefore not
// pull the rate down. The discharge rate has no such exception.
//
// The levels are binary fractions and `forget` is 0.5, so every expected
// sum below is exact.
#include <gtest/gtest.h>

#include "predictor/MobilePowerPredictor.h"

namespace vorn {
namespace {

constexpr double kStep = MobilePowerPredictor::kStepDays;

MobilePowerInputData Sample(double level, double charging) {
  MobilePowerInputData input;
  input.level = level;
  input.charging = charging;
  input.aux1 = input.aux2 = input.aux3 = 0.0;
  input.logCountA = input.logCountB = 0.0;
  return input;
}

class ChargeRateTest : public ::testing::Test {
 protected:
  // One sample at the middle of step `step` of day 20000.
  void Feed(int step, double level, double charging) {
    const MobilePowerInputData input = Sample(level, charging);
    p.AddRawData((20000 * 144 + step + 0.5) * kStep, &input, 0.5);
  }
  MobilePowerPredictor p{MobilePowerPredictorParameter()};
};

TEST_F(ChargeRateTest, RisesBelowFullAreLearned) {
  Feed(0, 0.75, 1.0);  // more than a day after time 0: nothing learned
  EXPECT_EQ(p.chargeRise, 0.05);
  EXPECT_EQ(p.chargeSteps, 1.0);
  Feed(1, 0.875, 1.0);
  EXPECT_EQ(p.chargeRise, 0.05 * 0.5 + 0.125);
  // One step apart, up to the rounding of times in days.
  EXPECT_NEAR(p.chargeSteps, 1.0 * 0.5 + 1.0, 1e-8);
}

TEST_F(ChargeRateTest, ReachingFullIsNotLearned) {
  Feed(0, 0.875, 1.0);
  Feed(1, 1.0, 1.0);  // 0.875 -> 1.0: the newer level is full
  EXPECT_EQ(p.chargeRise, 0.05);
  EXPECT_EQ(p.chargeSteps, 1.0);
}

TEST_F(ChargeRateTest, StayingAtFullIsNotLearned) {
  Feed(0, 1.0, 1.0);
  Feed(1, 1.0, 1.0);
  Feed(2, 1.0, 1.0);
  EXPECT_EQ(p.chargeRise, 0.05);
  EXPECT_EQ(p.chargeSteps, 1.0);
}

TEST_F(ChargeRateTest, DroppingFromFullWhilePluggedInIsNotLearned) {
  Feed(0, 1.0, 1.0);
  Feed(1, 0.9375, 1.0);  // 100 % -> 93.75 % on the charger
  EXPECT_EQ(p.chargeRise, 0.05);
  EXPECT_EQ(p.chargeSteps, 1.0);
  EXPECT_EQ(p.ChargeRate(), 0.05);
  // The next rise below full is learned again.
  Feed(2, 0.96875, 1.0);
  EXPECT_EQ(p.chargeRise, 0.05 * 0.5 + 0.03125);
  EXPECT_NEAR(p.chargeSteps, 1.0 * 0.5 + 1.0, 1e-8);
}

TEST_F(ChargeRateTest, DischargeIsLearnedAtFullLevelToo) {
  Feed(0, 1.0, 0.0);
  Feed(1, 1.0, 0.0);  // unplugged at full: a change of 0 is learned
  EXPECT_EQ(p.dischargeChange, -0.000983 * 0.5 + 0.0);
  EXPECT_NEAR(p.dischargeSteps, 1.0 * 0.5 + 1.0, 1e-8);
  Feed(2, 0.984375, 0.0);
  EXPECT_EQ(p.dischargeChange, (-0.000983 * 0.5) * 0.5 - 0.015625);
  EXPECT_EQ(p.chargeRise, 0.05);
}

TEST_F(ChargeRateTest, ForecastAfterADropFromFullChargesAtTheUntouchedRate) {
  // 100 % and 99.21875 % on the charger, then unplugged at 50 %. With three
  // samples nothing similar is known, so the forecast that plugs the phone
  // in now extrapolates the charge rate, still 0.05 / 1.0 per step, from
  // 0.5: 0.55, 0.6, ... up to 1.0.
  Feed(0, 1.0, 1.0);
  Feed(1, 0.9921875, 1.0);
  Feed(2, 0.5, 0.0);
  MobilePowerPredictionData out[12];
  ASSERT_TRUE(p.Predict(12, out, 1, 144));
  EXPECT_EQ(out[0].distance, 100.0);
  double level = 0.5;
  for (int s = 0; s < 12; ++s) {
    level = level + 0.05;
    if (level > 1.0) level = 1.0;
    EXPECT_EQ(out[s].level, level) << s;
    EXPECT_EQ(out[s].charging, 1.0) << s;
  }
  EXPECT_EQ(out[11].level, 1.0);
}

}  // namespace
}  // namespace vorn
