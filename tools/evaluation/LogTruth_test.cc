// The truth a forecast is judged against and the history baselines use:
// linear between samples, nothing inside a long silence or past the log,
// nothing from after the forecast's start in what a baseline may see.
#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <vector>

#include "LogTruth.h"
#include "Replayer.h"

namespace kez_tools {
namespace {

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

}  // namespace
}  // namespace kez_tools
