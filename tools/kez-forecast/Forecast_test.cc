// Forecasts of replayed logs, as kez-forecast makes them: a log of
// level changes only learns once replayed with periodic reports, a regular
// routine is forecast well after five weeks, and the answers come out of the
// forecast by the exact rule that the Java API uses too.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "Forecast.h"
#include "ForecastAnswers.h"
#include "KezSession.h"
#include "Replayer.h"
#include "LoggedState.h"
#include "Simulator.h"

namespace kez_tools {
namespace {

const bool kAll[3] = {true, true, true};

// Forecasts one day from `at_ms` after replaying `log` up to it.
Forecast ForecastAt(const Log& log, const ReplayOptions& o, int64_t at_ms,
                    ReplayStats* stats = nullptr) {
  KezSession session;
  Replayer replayer(log, o, session.Sink());
  replayer.ReplayTo(at_ms);
  if (stats) *stats = replayer.stats();
  Forecast f;
  std::string error;
  EXPECT_TRUE(MakeForecast(session.instance(), 144, kAll, session.last_time_ms(),
                           *session.last_sample(), &f, &error))
      << error;
  return f;
}

// Keeps only the samples whose level or charging state differs from the
// previous one: what an event-driven logger records.
Log Changes(const Log& log) {
  Log out;
  for (const LogSample& s : log.samples) {
    if (out.samples.empty() ||
        s.level_percent != out.samples.back().level_percent ||
        s.charging != out.samples.back().charging) {
      out.samples.push_back(s);
    }
  }
  return out;
}

SimOptions Routine(uint64_t seed, int days) {
  SimOptions o;
  FindSimProfile("regular", &o.profile);
  o.seed = seed;
  o.days = days;
  return o;
}

TEST(Forecast, EventLogLearnsOnlyWhenReplayedWithPeriodicReports) {
  Log full = Simulate(Routine(11, 36));
  Log events = Changes(full);
  ASSERT_LT(events.samples.size(), full.samples.size() / 2);
  const int64_t at = events.samples.back().time_ms;

  ReplayOptions as_logged;
  as_logged.as_logged = true;
  ReplayStats stats;
  Forecast fallback = ForecastAt(events, as_logged, at, &stats);
  EXPECT_GT(stats.gap_steps, 1000u);
  EXPECT_EQ(fallback.similar_moments, 0);
  EXPECT_EQ(fallback.distance, 100.0);

  Forecast learned = ForecastAt(events, ReplayOptions(), at, &stats);
  EXPECT_LT(stats.gap_steps, 100u);
  EXPECT_GT(stats.reports_added, events.samples.size());
  EXPECT_GT(learned.similar_moments, 0);
  EXPECT_NE(learned.distance, 100.0);
}

// Mean absolute error, in level percent, of the free forecast against what
// the simulator logged over the next 24 h.
double DayError(const Log& log, const Forecast& f) {
  double sum = 0;
  int n = 0;
  for (int k = 0; k < f.steps; ++k) {
    const LogSample* truth = LoggedStateAt(log, f.StepTime(k), 12 * kHourMs);
    if (truth == nullptr) continue;
    sum += std::fabs(f.records[kFree][k].level * 100.0 - truth->level_percent);
    ++n;
  }
  return n > 0 ? sum / n : 0;
}

// Same error for a forecast that keeps the present level all day.
double FlatError(const Log& log, const Forecast& f) {
  double sum = 0;
  int n = 0;
  for (int k = 0; k < f.steps; ++k) {
    const LogSample* truth = LoggedStateAt(log, f.StepTime(k), 12 * kHourMs);
    if (truth == nullptr) continue;
    sum += std::fabs(f.level_now - truth->level_percent);
    ++n;
  }
  return n > 0 ? sum / n : 0;
}

// After 35 days of a regular routine, the free forecast of the next 24 h is
// compared with what the simulator logged, for 30 seeds and forecasts from
// 07:00, 13:00 and 21:00 (90 forecasts). Measured when this test was
// written: mean absolute level error 6.3 points (other batches of 30 seeds:
// 5.2, 8.5, 8.0), while keeping the present level gives 27.2 (24.3 to 26.5);
// single forecasts range up to 38 to 55 points on days the simulated user
// skips a charge. The bounds leave room for model changes but fail when the
// forecast stops following the routine.
TEST(Forecast, FiveWeeksOfARegularRoutineForecastTheNextDay) {
  double total = 0, flat = 0;
  int count = 0;
  for (uint64_t seed = 1; seed <= 30; ++seed) {
    SimOptions o = Routine(seed, 37);
    Log log = Simulate(o);
    for (int hour : {7, 13, 21}) {
      int64_t at = (o.start_day + 35) * 86400000LL + hour * kHourMs;
      Forecast f = ForecastAt(log, ReplayOptions(), at);
      EXPECT_GT(f.similar_moments, 0) << "seed " << seed << " " << hour;
      total += DayError(log, f);
      flat += FlatError(log, f);
      ++count;
    }
  }
  const double mean = total / count;
  RecordProperty("mean_abs_error", std::to_string(mean));
  EXPECT_LT(mean, 12.0);
  EXPECT_LT(mean, 0.5 * flat / count);
}

// Levels on a threshold meet it, levels 0.3 % beside it do not, though they
// would show as the same whole percent; the same holds for "now".
TEST(ForecastAnswers, LevelsAreComparedExactly) {
  Forecast f;
  f.start_ms = 1712491200000;
  f.level_now = 40;
  f.charging_now = false;
  f.steps = 6;
  const double free_level[6] = {0.38, 0.30, 0.203, 0.20, 0.15, 0.10};
  const double free_charge[6] = {0, 0, 0.2, 0.5, 0.9, 1};
  const double plugged[6] = {0.50, 0.70, 0.797, 0.80, 0.997, 1.0};
  for (int v = 0; v < kVariantCount; ++v) {
    f.has[v] = v != kNoCharge;
    f.records[v].assign(6, stMobilePowerPredictionData{});
  }
  for (int k = 0; k < 6; ++k) {
    f.records[kFree][k].level = free_level[k];
    f.records[kFree][k].charging = free_charge[k];
    f.records[kCharge][k].level = plugged[k];
  }
  AnswerOptions o;
  o.has_when = true;
  o.when_ms = f.StepTime(3) + 4 * kMinuteMs;
  std::vector<Answer> a = ComputeAnswers(f, o);
  ASSERT_EQ(a.size(), 6u);  // charging, 20 %, 80 %, full, level at x 2
  EXPECT_EQ(a[0].kind, Answer::kChargingExpected);
  EXPECT_EQ(a[0].step, 3);
  EXPECT_EQ(a[0].time_ms, f.start_ms + 40 * kMinuteMs);
  EXPECT_EQ(a[1].kind, Answer::kLevelReached);
  EXPECT_EQ(a[1].step, 3) << "20.3 % has not reached 20 %, 20 % has";
  EXPECT_FALSE(a[1].now);
  EXPECT_EQ(a[2].kind, Answer::kLevelRisen);
  EXPECT_EQ(a[2].step, 3) << "79.7 % has not reached 80 %, 80 % has";
  EXPECT_EQ(a[3].step, 5) << "99.7 % is not full";
  EXPECT_EQ(a[4].kind, Answer::kLevelAt);
  EXPECT_EQ(a[4].step, 3);
  EXPECT_NEAR(a[4].level, 20.0, 1e-9);
  EXPECT_NEAR(a[5].level, 80.0, 1e-9);

  // "now": the last report's level, exactly on or just beside the asked one.
  o.has_when = false;
  f.level_now = 20.3;
  EXPECT_FALSE(ComputeAnswers(f, o)[1].now);
  f.level_now = 20;
  EXPECT_TRUE(ComputeAnswers(f, o)[1].now);
  f.level_now = 79.7;
  EXPECT_FALSE(ComputeAnswers(f, o)[2].now);
  f.level_now = 80;
  a = ComputeAnswers(f, o);
  EXPECT_TRUE(a[2].now);
  EXPECT_FALSE(a[3].now);

  // Never met within the forecast; a time outside it.
  f.level_now = 12;
  f.records[kCharge].assign(6, stMobilePowerPredictionData{});
  o.has_when = true;
  o.level_percent = 5;
  o.when_ms = f.StepTime(6);
  a = ComputeAnswers(f, o);
  EXPECT_TRUE(a[1].now == false && a[1].step == -1);
  EXPECT_EQ(a[2].step, -1);
  EXPECT_LT(a[4].level, 0);
  EXPECT_EQ(NearestStep(f, f.start_ms + 4 * kMinuteMs), -1);
  EXPECT_EQ(NearestStep(f, f.start_ms + 5 * kMinuteMs), 0);
  EXPECT_EQ(NearestStep(f, f.StepTime(5) + 5 * kMinuteMs), 6);
}

}  // namespace
}  // namespace kez_tools
