// The methods' paths on histories worked out by hand.
#include "adaptive/MethodPaths.h"

#include <gtest/gtest.h>

#include <vector>

namespace kez {
namespace adaptive {
namespace {

constexpr int64_t kNow = 100000;  // the step of the last report

struct Fixture {
  StepHistory history;
  ChargeCurve curve{1.0};
  std::vector<stMobilePowerPredictionData> instance =
      std::vector<stMobilePowerPredictionData>(300);
  std::vector<vorn::MobilePowerPredictionData> rates =
      std::vector<vorn::MobilePowerPredictionData>(300);
  PresentState present;
  double level[kMethodCount] = {};
  double charging[kMethodCount] = {};
};

TEST(MethodPathsTest, YesterdayRepeatsTheChangeOfTheSameHours) {
  Fixture f;
  // Yesterday, from the step of now - 1 day on: 80 %, then 1 % down per
  // step for 30 steps, then 20 steps charging at +2 % per step (90 %), then
  // full and no longer charging.
  for (int64_t s = kNow - 144; s <= kNow; ++s) {
    const int64_t i = s - (kNow - 144);
    double level = 1.0;
    bool charging = false;
    if (i <= 30) {
      level = 0.80 - 0.01 * i;
    } else if (i <= 50) {
      level = 0.50 + 0.02 * (i - 30);
      charging = true;
    }
    f.history.Add(s, level, charging);
  }
  f.present = {kNow, 0.60, false, -0.001};
  MethodPaths p;
  p.Start(kFree, f.present, f.history, f.curve, f.instance.data(),
          f.rates.data());
  ASSERT_TRUE(p.available() & Bit(kYesterday));
  EXPECT_FALSE(p.available() & Bit(kLastWeek));  // no week of history
  EXPECT_FALSE(p.available() & Bit(kChargeCurve));
  std::vector<double> path, chance;
  for (int k = 0; k < 150; ++k) {
    p.Step(k, f.level, f.charging);
    path.push_back(f.level[kYesterday]);
    chance.push_back(f.charging[kYesterday]);
  }
  EXPECT_NEAR(path[0], 0.59, 1e-6);    // one step: -1 %
  EXPECT_NEAR(path[29], 0.30, 1e-6);   // 30 steps: -30 %
  EXPECT_NEAR(path[39], 0.50, 1e-6);   // then +2 % for 10 steps
  EXPECT_NEAR(path[49], 0.70, 1e-6);   // 20 steps charging: +40 %
  EXPECT_NEAR(path[50], 0.80, 1e-6);   // the jump to full: +10 %
  EXPECT_NEAR(path[143], 0.80, 1e-6);  // a whole day: 80 % to 100 %
  EXPECT_EQ(chance[0], 0.0);
  EXPECT_EQ(chance[40], 1.0);
  EXPECT_EQ(chance[100], 0.0);
  // Beyond one day the day repeats: step 144 changes like step 0.
  EXPECT_NEAR(path[144], 0.79, 1e-6);

  // From 95 % the same change is clamped at full.
  f.present.level = 0.95;
  p.Start(kFree, f.present, f.history, f.curve, f.instance.data(),
          f.rates.data());
  for (int k = 0; k < 51; ++k) p.Step(k, f.level, f.charging);
  EXPECT_EQ(f.level[kYesterday], 1.0);
  f.present.level = 0.60;

  // "Not charged": only the falls of steps that were not charging count.
  p.Start(kNotCharged, f.present, f.history, f.curve, f.instance.data(),
          f.rates.data());
  for (int k = 0; k < 61; ++k) p.Step(k, f.level, f.charging);
  EXPECT_NEAR(f.level[kYesterday], 0.30, 1e-6);  // the rises are left out
  EXPECT_EQ(f.charging[kYesterday], 0.0);
}

TEST(MethodPathsTest, TheChargeCurveLevelsOffWhereThePhoneHolds) {
  Fixture f;
  // Learned: +3 % per step below 80 %, nothing from 80 % on.
  for (int i = 0; i < 8; ++i) f.curve.Add(0.1 * i + 0.05, 0.03, 1.0);
  f.curve.Add(0.85, 0.0, 1.0);
  f.curve.Add(0.95, 0.0, 1.0);
  f.present = {kNow, 0.50, false, -0.002};
  MethodPaths p;
  p.Start(kPluggedIn, f.present, f.history, f.curve, f.instance.data(),
          f.rates.data());
  ASSERT_TRUE(p.available() & Bit(kChargeCurve));
  std::vector<double> path;
  for (int k = 0; k < 146; ++k) {
    p.Step(k, f.level, f.charging);
    path.push_back(f.level[kChargeCurve]);
    if (k < 144) {
      EXPECT_EQ(f.charging[kChargeCurve], 1.0);
    }
  }
  EXPECT_NEAR(path[0], 0.53, 1e-9);
  EXPECT_NEAR(path[9], 0.80, 1e-9);  // 10 steps of +3 %
  EXPECT_NEAR(path[143], 0.80, 1e-9);  // held at 80 % while plugged in
  // After the day on the charger: the instance's discharge rate.
  EXPECT_NEAR(path[144], 0.798, 1e-9);
}

TEST(MethodPathsTest, PersistenceAndTheHabitOfCharging) {
  Fixture f;
  // A week in which the phone charged in the steps of hour 22 each day.
  for (int64_t s = kNow - 7 * 144; s <= kNow; ++s) {
    const int64_t stepOfDay = ((s % 144) + 144) % 144;
    f.history.Add(s, 0.5, stepOfDay >= 132 && stepOfDay < 138);
  }
  f.present = {kNow, 0.42, false, 0.0};
  MethodPaths p;
  p.Start(kFree, f.present, f.history, f.curve, f.instance.data(),
          f.rates.data());
  ASSERT_TRUE(p.available() & Bit(kChargingHabit));
  const int64_t nowOfDay = kNow % 144;
  for (int k = 0; k < 144; ++k) {
    p.Step(k, f.level, f.charging);
    const int64_t of = (nowOfDay + k + 1) % 144;
    const bool habit = of >= 132 && of < 138;
    ASSERT_EQ(f.charging[kChargingHabit], habit ? 1.0 : 0.0) << k;
    ASSERT_EQ(f.level[kPersistence], 0.42);
    ASSERT_EQ(f.charging[kPersistence], 0.0);
  }
}

}  // namespace
}  // namespace adaptive
}  // namespace kez
