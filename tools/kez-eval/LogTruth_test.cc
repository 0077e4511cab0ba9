// The truth a forecast is judged against and the history baselines use:
// linear between samples, nothing inside a long silence or past the log,
// nothing from after the forecast's start in what a baseline may see; and
// the small statistics and baseline paths built on it.
#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <vector>

#include "Baselines.h"
#include "ErrorStats.h"
#include "LogTruth.h"
#include "Replayer.h"

namespace kez_eval {
namespace {

using kez_tools::kHourMs;
using kez_tools::kMinuteMs;
using kez_tools::Log;
using kez_tools::LogSample;

constexpr int64_t kT0 = 1704067200000;

Log MakeLog(const std::vector<std::tuple<int64_t, double, int>>& rows) {
  Log log;
  for (const auto& r : rows) {
    LogSample s;
    s.time_ms = kT0 + std::get<0>(r) * kMinuteMs;
    s.level_percent = std::get<1>(r);
    s.charging = std::get<2>(r);
    log.samples.push_back(s);
  }
  return log;
}

TEST(LogTruth, LevelIsLinearBetweenSamplesAndChargingIsHeld) {
  const Log log = MakeLog({{0, 80, 0}, {60, 74, 0}, {90, 74, 1}});
  const LogTruth truth(log, 12 * kHourMs);
  double level = 0;
  bool charging = true;
  ASSERT_TRUE(truth.LevelAt(kT0 + 20 * kMinuteMs, &level));
  EXPECT_DOUBLE_EQ(level, 78);
  ASSERT_TRUE(truth.LevelAt(kT0 + 90 * kMinuteMs, &level));  // last sample
  EXPECT_DOUBLE_EQ(level, 74);
  ASSERT_TRUE(truth.ChargingAt(kT0 + 89 * kMinuteMs, &charging));
  EXPECT_FALSE(charging);
  ASSERT_TRUE(truth.ChargingAt(kT0 + 90 * kMinuteMs, &charging));
  EXPECT_TRUE(charging);
  EXPECT_FALSE(truth.LevelAt(kT0 - 1, &level));
  EXPECT_FALSE(truth.LevelAt(kT0 + 91 * kMinuteMs, &level));
}

TEST(LogTruth, LongSilenceHasNoTruth) {
  const Log log = MakeLog({{0, 80, 0}, {13 * 60, 70, 0}});
  const LogTruth truth(log, 12 * kHourMs);
  double level = 0;
  bool charging = false;
  EXPECT_TRUE(truth.LevelAt(kT0, &level));
  EXPECT_FALSE(truth.LevelAt(kT0 + kHourMs, &level));
  EXPECT_FALSE(truth.ChargingAt(kT0 + kHourMs, &charging));
  const Outlook o = truth.LookAhead(kT0, kT0 + 24 * kHourMs, 20);
  EXPECT_EQ(o.first_silence_ms, kT0);
}

TEST(LogTruth, KnownValuesNeverUseLaterSamples) {
  const Log log = MakeLog({{0, 80, 0}, {60, 20, 1}});
  const LogTruth truth(log, 12 * kHourMs);
  double level = 0;
  bool charging = true;
  // Seen from minute 30, the sample of minute 60 does not exist yet.
  ASSERT_TRUE(truth.KnownLevelAt(kT0 + 30 * kMinuteMs, kT0 + 30 * kMinuteMs,
                                 &level));
  EXPECT_DOUBLE_EQ(level, 80);
  ASSERT_TRUE(truth.KnownChargingAt(kT0 + 30 * kMinuteMs,
                                    kT0 + 30 * kMinuteMs, &charging));
  EXPECT_FALSE(charging);
  // Seen from minute 60 it does.
  ASSERT_TRUE(truth.KnownLevelAt(kT0 + 30 * kMinuteMs, kT0 + 60 * kMinuteMs,
                                 &level));
  EXPECT_DOUBLE_EQ(level, 50);
  // Held at most for the silence limit.
  const LogTruth strict(log, 20 * kMinuteMs);
  EXPECT_FALSE(strict.KnownLevelAt(kT0 + 30 * kMinuteMs,
                                   kT0 + 30 * kMinuteMs, &level));
}

TEST(LogTruth, LookAheadFindsChargingAndTheLowLevel) {
  const Log log =
      MakeLog({{0, 30, 0}, {10, 21, 0}, {20, 20.4, 0}, {30, 25, 1}});
  const LogTruth truth(log, 12 * kHourMs);
  Outlook o = truth.LookAhead(kT0, kT0 + kHourMs, 20);
  EXPECT_EQ(o.first_low_ms, kT0 + 20 * kMinuteMs);  // shows 20 %
  EXPECT_EQ(o.first_charging_ms, kT0 + 30 * kMinuteMs);
  EXPECT_EQ(o.first_silence_ms, -1);  // the log's end is no silence
  o = truth.LookAhead(kT0, kT0 + 15 * kMinuteMs, 20);
  EXPECT_EQ(o.first_low_ms, -1);
  EXPECT_EQ(o.first_charging_ms, -1);
}

TEST(ErrorStats, MeanAndNearestRankPercentile) {
  ErrorStats e;
  EXPECT_TRUE(std::isnan(e.Mean()));
  EXPECT_TRUE(std::isnan(e.Percentile90()));
  for (int i = 10; i >= 1; --i) e.Add(i);
  EXPECT_DOUBLE_EQ(e.Mean(), 5.5);
  EXPECT_DOUBLE_EQ(e.Percentile90(), 9);
  e.Add(100);  // 11 errors: rank ceil(9.9) = 10
  EXPECT_DOUBLE_EQ(e.Percentile90(), 10);
  ErrorStats one;
  one.Add(3);
  EXPECT_DOUBLE_EQ(one.Percentile90(), 3);

  ProbabilityScore p;
  EXPECT_TRUE(std::isnan(p.Brier()));
  p.Add(0.8, true);
  p.Add(0.5, false);
  EXPECT_NEAR(p.Brier(), (0.04 + 0.25) / 2, 1e-15);
}

TEST(Baselines, RunningRatesClampAndFollowTheForcedState) {
  RunningRates r;
  r.charge_rise = 0.3;  // 0.3 per 2 steps: 15 % a step
  r.charge_steps = 2;
  r.discharge_change = -0.01;
  r.discharge_steps = 1;
  r.level0 = 0.8;
  r.charging0 = 1;
  Path p = RunningRatePath(r, 3, -1, 0);
  EXPECT_NEAR(p.level[0], 95, 1e-9);
  EXPECT_EQ(p.level[1], 100);  // clamped, and carried
  EXPECT_EQ(p.charging[2], 1);
  p = RunningRatePath(r, 3, 0, 2);  // not charged for two steps
  EXPECT_NEAR(p.level[1], 78, 1e-9);
  EXPECT_NEAR(p.level[2], 93, 1e-9);
  EXPECT_EQ(p.charging[0], 0);
  EXPECT_EQ(p.charging[2], 1);
}

TEST(Baselines, SeasonalPathRepeatsThePastWithoutLookingAhead) {
  // Hourly samples: the level falls 1 % an hour, except from 02:00 to 03:00
  // on day 0, where it rises 10 %.
  std::vector<std::tuple<int64_t, double, int>> rows;
  double level = 90;
  for (int h = 0; h <= 36; ++h) {
    rows.emplace_back(h * 60, level, h == 2 ? 1 : 0);
    level += h == 2 ? 10 : -1;
  }
  const Log log = MakeLog(rows);
  const LogTruth truth(log, 12 * kHourMs);
  const int64_t day = 24 * kHourMs;
  const int64_t start = kT0 + 26 * kHourMs;  // 02:00 on day 1
  Path p;
  ASSERT_TRUE(SeasonalPath(truth, start, 50, day, 6, &p));
  EXPECT_NEAR(p.level[5], 60, 1e-9);  // +10 as yesterday 02:00 .. 03:00
  EXPECT_EQ(p.charging[0], 1);        // charging yesterday at 02:10
  // Steps more than a day ahead take their change from two days back,
  // before the log's start: no path, rather than one from later samples.
  EXPECT_FALSE(SeasonalPath(truth, start, 50, day, 30 * 6, &p));
  // Level and clamp: a fall of 1 % an hour from 0.5 %.
  ASSERT_TRUE(
      SeasonalPath(truth, kT0 + 30 * kHourMs, 0.5, day, 6, &p));
  EXPECT_EQ(p.level[5], 0);
}

}  // namespace
}  // namespace kez_eval
