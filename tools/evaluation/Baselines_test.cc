// The simple forecasts the forecaster has to beat: persistence (level and
// charging state held), the running rates (the predictor's own
// extrapolation, in percent) and the seasonal paths, which repeat the past
// without looking past the forecast's start.
#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <vector>

#include "Baselines.h"
#include "LogTruth.h"
#include "Replayer.h"
#include "predictor/MobilePowerPredictor.h"

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

TEST(Baselines, PersistenceKeepsLevelAndChargingState) {
  Path p = PersistencePath(57.5, true, 3);
  EXPECT_EQ(p.level, std::vector<double>({57.5, 57.5, 57.5}));
  EXPECT_EQ(p.charging, std::vector<double>({1.0, 1.0, 1.0}));
  p = PersistencePath(12.25, false, 2);
  EXPECT_EQ(p.level, std::vector<double>({12.25, 12.25}));
  EXPECT_EQ(p.charging, std::vector<double>({0.0, 0.0}));
}

TEST(Baselines, RunningRatesAreThePredictorsExtrapolationInPercent) {
  // The predictor's running state: 0.3 risen over 2 charging steps (15 % a
  // step), 0.01 fallen over 1 other step, last sample 80 % and charging.
  vorn::MobilePowerPredictor predictor;
  predictor.chargeRise = 0.3;
  predictor.chargeSteps = 2;
  predictor.dischargeChange = -0.01;
  predictor.dischargeSteps = 1;
  predictor.lastInput.level = 0.8;
  predictor.lastInput.charging = 1;
  Path p = RunningRatePath(predictor, 3, -1, 0);
  EXPECT_NEAR(p.level[0], 95, 1e-9);
  EXPECT_EQ(p.level[1], 100);  // clamped, and carried
  EXPECT_EQ(p.charging[2], 1);
  p = RunningRatePath(predictor, 3, 0, 2);  // not charged for two steps
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
}  // namespace kez_tools
