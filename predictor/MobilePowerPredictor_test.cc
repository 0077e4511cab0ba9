#include "predictor/MobilePowerPredictor.h"

#include <gtest/gtest.h>

#include <vector>

namespace vorn {
namespace {

constexpr double kStep = 0.006944444444444444;
constexpr double kStartDay = 20000.0;

MobilePowerInputData Sample(double level, double charging) {
  MobilePowerInputData input;
  input.level = level;
  input.charging = charging;
  input.aux1 = input.aux2 = input.aux3 = 0.0;
  input.logCountA = input.logCountB = 0.0;
  return input;
}

struct StepState {
  double level;
  double charging;
};

// Feeds `days` identical days of one sample per 10-minute step (at minute 5
// of the step), then steps 0 .. lastStep of one more day.
void FeedDays(MobilePowerPredictor& p, const std::vector<StepState>& day,
              int days, int lastStep) {
  const int steps = static_cast<int>(day.size());
  for (int d = 0; d <= days; ++d) {
    for (int k = 0; k < steps; ++k) {
      if (d == days && k > lastStep) return;
      const MobilePowerInputData input = Sample(day[k].level, day[k].charging);
      p.AddRawData(kStartDay + d + (k + 0.5) / 144.0, &input, 0.99);
    }
  }
}

// The levels a forecast gives when it moves by `rate` each step from
// `level`, clamped to [0, 1] and carried.
std::vector<double> Ramp(double level, double rate, int count) {
  std::vector<double> levels;
  for (int s = 0; s < count; ++s) {
    level = level + rate;
    if (level < 0.0) level = 0.0;
    if (level > 1.0) level = 1.0;
    levels.push_back(level);
  }
  return levels;
}

TEST(MobilePowerPredictorTest, ConstructionThenInitializeSetsTheStartState) {
  MobilePowerPredictor p;
  EXPECT_EQ(p.lastTime, -1.0);
  EXPECT_EQ(p.chargeRise, 0.05);
  EXPECT_EQ(p.chargeSteps, 1.0);
  EXPECT_EQ(p.dischargeChange, -0.000983);
  EXPECT_EQ(p.dischargeSteps, 1.0);
  EXPECT_EQ(p.lastInput.logCountA, 0.0);

  p.chargeRise = 3.0;
  p.lastInput.level = 0.7;
  p.Initialize(MobilePowerPredictorParameter());
  EXPECT_EQ(p.lastTime, 0.0);  // not the -1.0 of construction
  EXPECT_EQ(p.chargeRise, 0.05);
  EXPECT_EQ(p.lastInput.level, 0.0);
  EXPECT_EQ(p.ChargeRate(), 0.05);
  EXPECT_EQ(p.DischargeRate(), -0.000983);
}

TEST(MobilePowerPredictorTest, RunningRatesFollowConsecutiveSamples) {
  MobilePowerPredictor p{MobilePowerPredictorParameter()};
  const double t = kStartDay + 0.25;
  MobilePowerInputData a = Sample(0.5, 1.0);
  MobilePowerInputData b = Sample(0.51, 1.0);
  p.AddRawData(t, &a, 0.99);
  // The first sample is more than a day after time 0: no rate changes.
  EXPECT_EQ(p.chargeRise, 0.05);
  EXPECT_EQ(p.chargeSteps, 1.0);
  EXPECT_EQ(p.lastTime, t);

  p.AddRawData(t + 30.0 / 86400.0, &b, 0.99);  // 30 s later
  EXPECT_EQ(p.chargeRise, 0.05 * 0.99 + (0.51 - 0.5));
  EXPECT_NEAR(p.chargeSteps, 0.99 + 0.05, 1e-8);
  EXPECT_EQ(p.dischargeChange, -0.000983);
  EXPECT_EQ(p.dischargeSteps, 1.0);
  EXPECT_EQ(p.lastInput.level, 0.51);

  // Discharging updates the other pair only.
  MobilePowerInputData c = Sample(0.49, 0.0);
  const double rise = p.chargeRise;
  p.AddRawData(t + 90.0 / 86400.0, &c, 0.99);
  EXPECT_EQ(p.chargeRise, rise);
  EXPECT_EQ(p.dischargeChange, -0.000983 * 0.99 + (0.49 - 0.51));
  EXPECT_NEAR(p.dischargeSteps, 0.99 + 0.1, 1e-8);
}

TEST(MobilePowerPredictorTest, RatesSkipHalfChargingFullLevelAndLongGaps) {
  MobilePowerPredictor p{MobilePowerPredictorParameter()};
  const double t = kStartDay + 0.25;
  MobilePowerInputData half = Sample(0.5, 0.5);
  p.AddRawData(t, &half, 0.99);
  MobilePowerInputData half2 = Sample(0.6, 0.5);
  p.AddRawData(t + kStep, &half2, 0.99);
  MobilePowerInputData full = Sample(1.0, 1.0);
  p.AddRawData(t + 2 * kStep, &full, 0.99);
  MobilePowerInputData full2 = Sample(1.0, 1.0);
  p.AddRawData(t + 3 * kStep, &full2, 0.99);
  EXPECT_EQ(p.chargeRise, 0.05);
  EXPECT_EQ(p.chargeSteps, 1.0);
  EXPECT_EQ(p.dischargeChange, -0.000983);
  EXPECT_EQ(p.dischargeSteps, 1.0);

  // More than a day later: rates untouched, but the open step is committed
  // and one gap record stored.
  const std::size_t before = p.storedCount;
  MobilePowerInputData later = Sample(0.4, 0.0);
  EXPECT_EQ(p.AddRawData(t + 3 * kStep + 1.5, &later, 0.99), 1);
  EXPECT_EQ(p.dischargeChange, -0.000983);
  EXPECT_EQ(p.storedCount, before + 2);
  EXPECT_EQ(p.GetRAWBuffer(0)[0], 1e307);
}

TEST(MobilePowerPredictorTest, FirstSampleAfterInitializeStoresTimeZeroAndGap) {
  MobilePowerPredictor p{MobilePowerPredictorParameter()};
  MobilePowerInputData s = Sample(0.8, 0.0);
  EXPECT_EQ(p.AddRawData(kStartDay + 0.5, &s, 0.99), 1);
  ASSERT_EQ(p.storedCount, 2u);
  const double* zero = p.GetRAWBuffer(-1);
  EXPECT_EQ(zero[0], 0.0);
  EXPECT_EQ(zero[1], 1.0);
  EXPECT_EQ(zero[2], 0.0);
  EXPECT_EQ(zero[3], 1.0);
  for (int i = 4; i < 12; ++i) EXPECT_EQ(zero[i], 0.0) << i;
  EXPECT_EQ(p.GetRAWBuffer(0)[0], 1e307);
  EXPECT_EQ(p.sampleCount, 1u);
  EXPECT_EQ(p.stepRecord[4], 0.8);
}

TEST(MobilePowerPredictorTest, EmptyMemoryExtrapolatesTheDischargeRate) {
  MobilePowerPredictor p{MobilePowerPredictorParameter()};
  MobilePowerInputData s = Sample(0.5, 0.0);
  p.AddRawData(kStartDay + 0.5, &s, 0.99);
  std::vector<MobilePowerPredictionData> out(600);
  ASSERT_TRUE(p.Predict(600, out.data(), -1, 0));
  const std::vector<double> expected = Ramp(0.5, -0.000983, 600);
  EXPECT_EQ(out[0].distance, 100.0);
  for (int s2 = 0; s2 < 600; ++s2) {
    EXPECT_EQ(out[s2].level, expected[s2]) << s2;
    EXPECT_EQ(out[s2].charging, 0.0);
    if (s2 > 0) {
      EXPECT_EQ(out[s2].distance, 0.0);
    }
    if (s2 < 508) {
      EXPECT_NEAR(out[s2].level, 0.5 - 0.000983 * (s2 + 1), 1e-12) << s2;
      EXPECT_GT(out[s2].level, 0.0) << s2;
    } else {
      EXPECT_EQ(out[s2].level, 0.0) << s2;
    }
  }
}

TEST(MobilePowerPredictorTest, ExtrapolationHonoursForcedCharging) {
  MobilePowerPredictor p{MobilePowerPredictorParameter()};
  MobilePowerInputData s = Sample(0.5, 0.0);
  p.AddRawData(kStartDay + 0.5, &s, 0.99);
  std::vector<MobilePowerPredictionData> out(200);

  ASSERT_TRUE(p.Predict(200, out.data(), 1, 144));
  const std::vector<double> up = Ramp(0.5, 0.05, 144);
  for (int k = 0; k < 144; ++k) {
    EXPECT_EQ(out[k].charging, 1.0) << k;
    EXPECT_EQ(out[k].level, up[k]) << k;
  }
  EXPECT_EQ(out[9].level, 1.0);
  EXPECT_LT(out[8].level, 1.0);
  const std::vector<double> down = Ramp(1.0, -0.000983, 56);
  for (int k = 144; k < 200; ++k) {
    EXPECT_EQ(out[k].charging, 0.0) << k;
    EXPECT_EQ(out[k].level, down[k - 144]) << k;
  }

  // Forced off while the last sample was charging; the last state returns
  // after the hold.
  MobilePowerInputData c = Sample(0.5, 1.0);
  p.AddRawData(kStartDay + 0.5 + kStep, &c, 0.99);
  const double chargeRate = p.ChargeRate();
  ASSERT_TRUE(p.Predict(200, out.data(), 0, 144));
  const std::vector<double> off = Ramp(0.5, p.DischargeRate(), 144);
  for (int k = 0; k < 144; ++k) {
    EXPECT_EQ(out[k].charging, 0.0) << k;
    EXPECT_EQ(out[k].level, off[k]) << k;
  }
  EXPECT_EQ(out[144].charging, 1.0);
  EXPECT_EQ(out[144].level, off[143] + chargeRate);
}

TEST(MobilePowerPredictorTest, ExtrapolationCountsOnlyAboveHalfAsCharging) {
  for (double charging : {0.5, 0.5000001}) {
    MobilePowerPredictor p{MobilePowerPredictorParameter()};
    MobilePowerInputData s = Sample(0.5, charging);
    p.AddRawData(kStartDay + 0.5, &s, 0.99);
    MobilePowerPredictionData out[3];
    ASSERT_TRUE(p.Predict(3, out, -1, 0));
    const double rate = charging > 0.5 ? 0.05 : -0.000983;
    const std::vector<double> expected = Ramp(0.5, rate, 3);
    for (int k = 0; k < 3; ++k) {
      EXPECT_EQ(out[k].level, expected[k]) << charging;
      EXPECT_EQ(out[k].charging, charging);
    }
  }
}

TEST(MobilePowerPredictorTest, CountBelowOneWritesOnlyTheDistance) {
  MobilePowerPredictor p{MobilePowerPredictorParameter()};
  MobilePowerPredictionData out[2];
  out[0].level = out[1].level = 7.0;
  out[1].distance = 7.0;
  ASSERT_TRUE(p.Predict(0, out, -1, 0));
  EXPECT_EQ(out[0].distance, 100.0);
  EXPECT_EQ(out[0].level, 7.0);
  EXPECT_EQ(out[1].level, 7.0);
  ASSERT_TRUE(p.Predict(-5, out, 1, 144));
  EXPECT_EQ(out[1].distance, 7.0);
}

TEST(MobilePowerPredictorTest, NeighboursWithHalfChargingShareCountAsCharging) {
  // Level 0.5 and charging state exactly 0.5 throughout: every neighbour's
  // future has a charging share of 0.5 and no rise, so each step rises by
  // the running charge rate (the state 0.5 updates no rate).
  MobilePowerPredictor p{MobilePowerPredictorParameter()};
  FeedDays(p, std::vector<StepState>(144, {0.5, 0.5}), 3, 40);
  int found = 0;
  int index[16];
  double distance[16];
  p.Search(12, found, index, distance);
  ASSERT_EQ(found, 16);
  double sum = 100.0;
  for (double d : distance) sum += d;
  MobilePowerPredictionData out[12];
  ASSERT_TRUE(p.Predict(12, out, -1, 0));
  EXPECT_EQ(out[0].distance, sum / 17.0);
  EXPECT_LT(out[0].distance, 100.0);
  const std::vector<double> expected = Ramp(0.5, 0.05, 12);
  for (int k = 0; k < 12; ++k) {
    EXPECT_EQ(out[k].charging, 0.5) << k;
    EXPECT_EQ(out[k].level, expected[k]) << k;
  }
  EXPECT_EQ(out[11].level, 1.0);  // clamped
}

// A day that is flat at 0.25 and not charging except for a charging episode
// from step 100; the forecast from a sample at step 100 reads steps 100, 101,
// ... of the previous day (one neighbour: the same time a day earlier).
std::vector<StepState> EpisodeDay(const std::vector<StepState>& episode) {
  std::vector<StepState> day(144, {0.25, 0.0});
  for (std::size_t k = 0; k < episode.size(); ++k) day[100 + k] = episode[k];
  for (std::size_t k = 100 + episode.size(); k < 144; ++k) {
    day[k] = {episode.back().level, 0.0};
  }
  return day;
}

MobilePowerPredictorParameter OneNeighbour() {
  MobilePowerPredictorParameter parameter;
  parameter.setting1 = 1;
  return parameter;
}

TEST(MobilePowerPredictorTest, ChargingKeepsTheFastestRiseUntilItStops) {
  MobilePowerPredictor p{OneNeighbour()};
  FeedDays(p,
           EpisodeDay({{0.3125, 1.0},      // +1/16
                       {0.328125, 1.0},    // +1/64: still rises at 1/16
                       {0.3125, 0.0},      // -1/64: the carry ends
                       {0.328125, 1.0}}),  // +1/64
           3, 100);
  MobilePowerPredictionData out[5];
  ASSERT_TRUE(p.Predict(5, out, -1, 0));
  EXPECT_LT(out[0].distance, 100.0);
  const double levels[4] = {0.375, 0.4375, 0.421875, 0.4375};
  const double charging[4] = {1.0, 1.0, 0.0, 1.0};
  for (int k = 0; k < 4; ++k) {
    EXPECT_EQ(out[k].level, levels[k]) << k;
    EXPECT_EQ(out[k].charging, charging[k]) << k;
  }
  // Step 104 stayed flat and unplugged in the past: no fall to read, so the
  // running discharge rate applies.
  ASSERT_LT(p.DischargeRate(), 0.0);
  EXPECT_EQ(out[4].charging, 0.0);
  EXPECT_EQ(out[4].level, 0.4375 + p.DischargeRate());
}

TEST(MobilePowerPredictorTest, NeighbourForecastHonoursForcedCharging) {
  MobilePowerPredictor p{OneNeighbour()};
  FeedDays(p, EpisodeDay({{0.3125, 1.0}, {0.328125, 1.0}, {0.3125, 0.0}}), 3,
           100);
  std::vector<MobilePowerPredictionData> out(40);

  ASSERT_TRUE(p.Predict(40, out.data(), 0, 144));
  for (int k = 0; k < 40; ++k) {
    EXPECT_EQ(out[k].charging, 0.0) << k;
    EXPECT_LE(out[k].level, k == 0 ? 0.3125 : out[k - 1].level) << k;
  }

  ASSERT_TRUE(p.Predict(40, out.data(), 1, 144));
  EXPECT_EQ(out[0].level, 0.375);
  EXPECT_EQ(out[1].level, 0.4375);  // carried 1/16
  // Step 2 fell in the past; forced charging then rises at the running
  // charge rate.
  EXPECT_EQ(out[2].level, 0.4375 + p.ChargeRate());
  for (int k = 0; k < 40; ++k) {
    EXPECT_EQ(out[k].charging, 1.0) << k;
    EXPECT_GE(out[k].level, k == 0 ? 0.3125 : out[k - 1].level) << k;
    EXPECT_LE(out[k].level, 1.0);
  }
}

TEST(MobilePowerPredictorTest, DischargeFasterThanAFullBatteryPerStepIsIgnored) {
  // The level drops by 0.75 in step 101. With a charging share of 0.4 the
  // step's discharge rate is 0.75 / 0.6 = 1.25 of a battery, and the level
  // holds; with share 0 it falls by 0.75.
  for (double share : {0.4, 0.0}) {
    MobilePowerPredictor p{OneNeighbour()};
    FeedDays(p, EpisodeDay({{1.0, 0.0}, {0.25, share}}), 3, 100);
    MobilePowerPredictionData out[2];
    ASSERT_TRUE(p.Predict(2, out, -1, 0));
    EXPECT_EQ(out[1].charging, share);
    if (share > 0.0) {
      EXPECT_EQ(out[1].level, out[0].level);
    } else {
      EXPECT_EQ(out[1].level, out[0].level - 0.75);
    }
  }
}

TEST(MobilePowerPredictorTest, ForecastChangesNothingLearned) {
  MobilePowerPredictor p{MobilePowerPredictorParameter()};
  FeedDays(p, EpisodeDay({{0.5, 1.0}, {0.75, 1.0}, {1.0, 0.0}}), 4, 90);
  const uint32_t stored = p.storedCount;
  const uint32_t writePos = p.writePos;
  const double rise = p.chargeRise;
  std::vector<MobilePowerPredictionData> a(144), b(144);
  ASSERT_TRUE(p.Predict(144, a.data(), -1, 0));
  ASSERT_TRUE(p.Predict(144, b.data(), 1, 144));
  ASSERT_TRUE(p.Predict(144, b.data(), -1, 0));
  EXPECT_EQ(p.storedCount, stored);
  EXPECT_EQ(p.writePos, writePos);
  EXPECT_EQ(p.chargeRise, rise);
  for (int k = 0; k < 144; ++k) {
    EXPECT_EQ(a[k].level, b[k].level) << k;
    EXPECT_EQ(a[k].charging, b[k].charging) << k;
    EXPECT_EQ(a[k].distance, b[k].distance) << k;
  }
}

TEST(MobilePowerPredictorTest, FullRingKeepsThirtyDaysAndStillForecasts) {
  MobilePowerPredictor p{MobilePowerPredictorParameter()};
  std::vector<StepState> day(144);
  for (int k = 0; k < 144; ++k) {
    day[k] = k < 96 ? StepState{1.0 - k / 128.0, 0.0}
                    : StepState{0.25 + (k - 96) / 64.0, 1.0};
  }
  FeedDays(p, day, 31, 30);  // 31 days and 31 steps: 4495 samples
  EXPECT_EQ(p.storedCount, 4320u);
  // Time-0 record and first gap, then 4494 committed steps.
  EXPECT_EQ(p.writePos, (2u + 4494u) % 4320u);
  EXPECT_EQ(p.GetRAWBuffer(0)[4], day[29].level);
  for (int i = 0; i > -4320; --i) {
    ASSERT_LE(p.GetRAWBuffer(i)[0], 1e306) << i;  // the gap was overwritten
  }
  std::vector<MobilePowerPredictionData> out(144);
  ASSERT_TRUE(p.Predict(144, out.data(), -1, 0));
  EXPECT_LT(out[0].distance, 100.0);
  // The forecast from step 30 discharges until step 96, then charges.
  EXPECT_LT(out[40].level, out[10].level);
  EXPECT_LT(out[50].charging, 0.5);
  EXPECT_GT(out[80].charging, 0.5);
  EXPECT_GT(out[100].level, out[70].level);
  for (const MobilePowerPredictionData& d : out) {
    EXPECT_GE(d.level, 0.0);
    EXPECT_LE(d.level, 1.0);
  }
}

}  // namespace
}  // namespace vorn
