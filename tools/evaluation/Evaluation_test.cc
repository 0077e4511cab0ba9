// The accuracy measure on small logs whose right answer is known by
// construction: a constant discharge (persistence errs by exactly the slope
// times the horizon, the running rates by almost nothing), a perfectly
// repeated day (yesterday's change is exact, and the forecaster learns it),
// and the logs that must be reported rather than judged: too short, never
// charging, with a long silence, split into a tuning and a held-out part.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <sstream>

#include "Evaluation.h"

namespace kez_tools {
namespace {

using kez_tools::kHourMs;
using kez_tools::kMinuteMs;
using kez_tools::Log;
using kez_tools::LogSample;

constexpr int64_t kT0 = 1704067200000;  // 2024-01-01 00:00 UTC, a Monday

// A log with a sample every `every_min` minutes for `days` days; `state`
// gives level (percent) and charging at a minute from the start.
Log MakeLog(int days, int every_min,
            const std::function<void(int64_t, double*, bool*)>& state) {
  Log log;
  log.source = "test";
  for (int64_t m = 0; m <= days * 1440LL; m += every_min) {
    LogSample s;
    s.time_ms = kT0 + m * kMinuteMs;
    bool charging = false;
    state(m, &s.level_percent, &charging);
    s.charging = charging ? 1 : 0;
    log.samples.push_back(s);
  }
  return log;
}

// 0.5 % an hour from 100 %, never charging.
Log ConstantDischarge(int days, int every_min) {
  return MakeLog(days, every_min, [](int64_t m, double* level, bool* c) {
    *level = 100.0 - 0.5 * static_cast<double>(m) / 60.0;
    *c = false;
  });
}

// The same day again and again: on the charger 00:00-07:00 (30 % to full by
// 03:30), then down to 30 % by midnight.
Log RepeatedDay(int days) {
  return MakeLog(days, 5, [](int64_t m, double* level, bool* c) {
    double minute = static_cast<double>(m % 1440);
    *c = minute < 420;
    if (minute < 210) {
      *level = 30 + 70 * minute / 210;
    } else if (minute < 420) {
      *level = 100;
    } else {
      *level = 100 - 70 * (minute - 420) / 1020;
    }
  });
}

EvalOptions SmallOptions(int warmup_days, int every_hours) {
  EvalOptions o;
  o.warmup_ms = warmup_days * kDayMs;
  o.every_ms = every_hours * kHourMs;
  o.horizons_ms = {1 * kHourMs, 2 * kHourMs, 4 * kHourMs};
  return o;
}

LogEvaluation Evaluate(const Log& log, const EvalOptions& o) {
  LogEvaluation r;
  std::string error;
  EXPECT_TRUE(EvaluateLog(log, o, &r, &error)) << error;
  return r;
}

// The notes for people on what was left out, one a line.
std::string Text(const LogEvaluation& r, const EvalOptions&) {
  std::string text;
  for (const std::string& note : r.notes) text += note + "\n";
  return text;
}

TEST(Evaluation, ConstantDischargeIsJudgedExactly) {
  const Log log = ConstantDischarge(6, 10);
  const EvalOptions o = SmallOptions(1, 6);
  const LogEvaluation r = Evaluate(log, o);
  ASSERT_EQ(r.points.made, 21u);  // every 6 h from day 1 to day 6
  for (const HorizonResult& h : r.horizons) {
    const double hours = static_cast<double>(h.horizon_ms) / kHourMs;
    SCOPED_TRACE(hours);
    EXPECT_EQ(h.pairs + h.left_after_end, r.points.made);
    EXPECT_EQ(h.left_in_silence, 0u);
    const ErrorStats& persistence = h.level[kFreeForecast][kPersistence];
    EXPECT_NEAR(persistence.Mean(), 0.5 * hours, 1e-4);
    EXPECT_NEAR(persistence.Percentile90(), 0.5 * hours, 1e-4);
    // The running rates have learned the slope: near 0.
    EXPECT_LT(h.level[kFreeForecast][kRunningRates].Mean(), 0.02 * hours);
    // Never charging: every pair is also a "not charged" pair, and a
    // forecast of 0 % charging is perfect.
    EXPECT_EQ(h.level[kNotCharged][kPersistence].count(), h.pairs);
    EXPECT_EQ(h.charging[kPersistence].Brier(), 0.0);
  }
  EXPECT_FALSE(r.any_charging);
  EXPECT_NE(Text(r, o).find("never shows charging"), std::string::npos);
}

TEST(Evaluation, TheAdaptiveForecastIsJudgedOnTheSamePairsOrNotAtAll) {
  const Log log = ConstantDischarge(6, 10);
  EvalOptions o = SmallOptions(1, 6);
  const LogEvaluation with = Evaluate(log, o);
  o.adaptive = false;
  const LogEvaluation without = Evaluate(log, o);
  for (size_t i = 0; i < with.horizons.size(); ++i) {
    const HorizonResult& h = with.horizons[i];
    for (int c = 0; c < kConditionCount; ++c) {
      EXPECT_EQ(h.level[c][kAdaptive].count(), h.level[c][kForecaster].count());
      EXPECT_EQ(without.horizons[i].level[c][kAdaptive].count(), 0u);
      // The other methods do not depend on it.
      EXPECT_EQ(without.horizons[i].level[c][kForecaster].Mean(),
                h.level[c][kForecaster].Mean());
    }
    // A steady discharge: what the adaptive forecast combines is never
    // further off than persistence, the worst of its methods here.
    EXPECT_LE(h.level[kFreeForecast][kAdaptive].Mean(),
              h.level[kFreeForecast][kPersistence].Mean());
  }
}

TEST(Evaluation, PersistenceKeepsTheChargingState) {
  // A phone on the charger the whole time, held at 80 % (a charge limit):
  // staying as it is, the persistence baseline says "charging, 80 %" at
  // every horizon and is exactly right, so its level error is 0 and its
  // chance of charging (1) scores a Brier of 0 on every pair.
  const Log log = MakeLog(4, 10, [](int64_t, double* level, bool* c) {
    *level = 80;
    *c = true;
  });
  const LogEvaluation r = Evaluate(log, SmallOptions(1, 6));
  ASSERT_EQ(r.points.made, 13u);  // every 6 h from day 1 to day 4
  EXPECT_TRUE(r.any_charging);
  for (const HorizonResult& h : r.horizons) {
    SCOPED_TRACE(h.horizon_ms / kHourMs);
    ASSERT_GT(h.pairs, 0u);
    EXPECT_EQ(h.charging[kPersistence].count(), h.pairs);
    EXPECT_EQ(h.charging[kPersistence].Brier(), 0.0);
    EXPECT_EQ(h.level[kFreeForecast][kPersistence].Mean(), 0.0);
  }
}

TEST(Evaluation, UnlearnedForecastIsTheRunningRateBaseline) {
  // Samples 20 minutes apart, replayed as logged: every other step is a
  // gap, so no past moment is followed by a gap-free stretch and the
  // forecaster always extrapolates, exactly as the baseline that reads its
  // running rates does.
  EvalOptions o = SmallOptions(1, 6);
  o.replay.as_logged = true;
  const LogEvaluation r = Evaluate(ConstantDischarge(4, 20), o);
  ASSERT_GT(r.points.made, 0u);
  EXPECT_EQ(r.points.learned, 0u);
  for (const HorizonResult& h : r.horizons) {
    for (int c = 0; c < kConditionCount; ++c) {
      EXPECT_DOUBLE_EQ(h.level[c][kForecaster].Mean(),
                       h.level[c][kRunningRates].Mean());
    }
  }
  // The level shows 20 % (rounded) from 159 h on: the forecasts of the 4
  // hours before find it to within a step or two.
  EvalOptions low = o;
  low.every_ms = kHourMs;
  low.low_percent = 20;
  const LogEvaluation lr = Evaluate(ConstantDischarge(7, 20), low);
  EXPECT_GE(lr.low.events, 3u);
  EXPECT_LE(lr.low.minutes[kFreeForecast][kRunningRates].Mean(), 30.0);
  EXPECT_EQ(lr.low.misses[kFreeForecast][kPersistence], lr.low.events);
}

TEST(Evaluation, RepeatedDayIsLearnedAndYesterdayIsExact) {
  const EvalOptions o = SmallOptions(3, 3);
  const LogEvaluation r = Evaluate(RepeatedDay(6), o);
  ASSERT_GT(r.points.made, 20u);
  EXPECT_EQ(r.points.learned, r.points.made);
  for (const HorizonResult& h : r.horizons) {
    SCOPED_TRACE(h.horizon_ms / kHourMs);
    EXPECT_LT(h.level[kFreeForecast][kYesterday].Mean(), 1e-6);
    EXPECT_EQ(h.charging[kYesterday].Brier(), 0.0);
    const double learned = h.level[kFreeForecast][kForecaster].Mean();
    EXPECT_LT(learned, 2.0);
    EXPECT_LT(learned, h.level[kFreeForecast][kPersistence].Mean());
    EXPECT_LT(h.charging[kForecaster].Brier(), 0.05);
  }
  EXPECT_EQ(r.points.seasonal_missing[0], 0u);
  EXPECT_GT(r.points.seasonal_missing[1], 0u);  // no week of history yet
}

TEST(Evaluation, LogTooShortForTheWarmUpSaysSo) {
  EvalOptions o;  // 7 days of warm-up
  const LogEvaluation r = Evaluate(ConstantDischarge(2, 10), o);
  EXPECT_EQ(r.points.made, 0u);
  EXPECT_TRUE(std::isnan(Score(r)));
  const std::string text = Text(r, o);
  EXPECT_NE(text.find("less than the warm-up of 7 d"), std::string::npos);
  EXPECT_EQ(text.find("nan"), std::string::npos);
}

TEST(Evaluation, LongSilenceIsLeftOutAndCounted) {
  // Six days of the repeated day with the phone off for 20 h on day 4.
  Log log = RepeatedDay(6);
  const int64_t off = kT0 + 4 * kDayMs, on = off + 20 * kHourMs;
  Log cut;
  for (const LogSample& s : log.samples) {
    if (s.time_ms <= off || s.time_ms >= on) cut.samples.push_back(s);
  }
  const EvalOptions o = SmallOptions(2, 1);
  const LogEvaluation r = Evaluate(cut, o);
  // Points in the silence (more than 12 h after the last sample) skipped.
  EXPECT_EQ(r.points.phone_off, 7u);  // 13:00 .. 19:00 after the phone went off
  for (const HorizonResult& h : r.horizons) {
    SCOPED_TRACE(h.horizon_ms / kHourMs);
    // Forecasts made up to 12 h into the silence hold the last state;
    // their truths lie in the silence.
    EXPECT_GE(h.left_in_silence, 12u);
    EXPECT_EQ(h.pairs + h.left_in_silence + h.left_after_end,
              r.points.made);
    EXPECT_EQ(h.level[kNotCharged][kForecaster].count() +
                  h.nocharge_left_charging + h.nocharge_left_silence +
                  h.nocharge_left_after_end,
              r.points.made);
  }
  EXPECT_NE(Text(r, o).find("silences longer than 12 h"), std::string::npos);
}

TEST(Evaluation, RangeSplitsALogWithoutLookingPastIt) {
  const Log log = RepeatedDay(6);
  EvalOptions o = SmallOptions(1, 1);
  o.has_from = true;
  o.from_ms = kT0 + 4 * kDayMs + 30 * kMinuteMs;
  o.has_to = true;
  o.to_ms = kT0 + 5 * kDayMs;
  const LogEvaluation r = Evaluate(log, o);
  EXPECT_EQ(r.first_point_ms, kT0 + 4 * kDayMs + kHourMs);  // aligned up
  EXPECT_EQ(r.last_point_ms, o.to_ms);
  EXPECT_EQ(r.points.made, 24u);
  // Replayed from the start: the held-out day is forecast from memory.
  EXPECT_EQ(r.points.learned, r.points.made);
  // Truths after --to are not used: the last h hours of points lose h.
  for (const HorizonResult& h : r.horizons) {
    EXPECT_EQ(h.left_after_end,
              static_cast<size_t>(h.horizon_ms / kHourMs));
  }
}

TEST(Evaluation, ParameterRecordIsTheModelJudged) {
  const Log log = RepeatedDay(5);
  EvalOptions o = SmallOptions(3, 2);
  const LogEvaluation built_in = Evaluate(log, o);
  // Initializing again with the default record changes nothing: the memory
  // base is rebuilt from scratch, not extended.
  vorn::MobilePowerPredictorParameter defaults;
  o.parameter = &defaults;
  const LogEvaluation again = Evaluate(log, o);
  EXPECT_EQ(Score(again), Score(built_in));
  EXPECT_EQ(again.points.learned, built_in.points.learned);
  // Another model gives other forecasts.
  vorn::MobilePowerPredictorParameter other;
  other.setting1 = 1;  // one neighbour
  other.weight[0] = 1.0;
  o.parameter = &other;
  EXPECT_NE(Score(Evaluate(log, o)), Score(built_in));
}

TEST(Evaluation, CombinePoolsPairsAndCounts) {
  const EvalOptions o = SmallOptions(1, 6);
  const LogEvaluation a = Evaluate(ConstantDischarge(3, 10), o);
  const LogEvaluation b = Evaluate(ConstantDischarge(4, 10), o);
  const LogEvaluation all = Combine({a, b});
  EXPECT_EQ(all.logs, 2u);
  EXPECT_EQ(all.points.made, a.points.made + b.points.made);
  const HorizonResult& h = all.horizons[0];
  EXPECT_EQ(h.pairs, a.horizons[0].pairs + b.horizons[0].pairs);
  EXPECT_NEAR(h.level[kFreeForecast][kPersistence].Mean(), 0.5, 1e-4);
}

TEST(Evaluation, UnusableOptionsAreRejected) {
  LogEvaluation r;
  std::string error;
  EvalOptions o;
  o.horizons_ms = {15 * kMinuteMs};
  EXPECT_FALSE(EvaluateLog(ConstantDischarge(1, 10), o, &r, &error));
  EXPECT_NE(error.find("multiples of 10 minutes"), std::string::npos);
  o.horizons_ms = {2 * kHourMs, kHourMs};
  EXPECT_FALSE(CheckOptions(o, &error));
  o = EvalOptions();
  o.has_from = o.has_to = true;
  o.from_ms = 2;
  o.to_ms = 1;
  EXPECT_FALSE(CheckOptions(o, &error));
}

}  // namespace
}  // namespace kez_tools
