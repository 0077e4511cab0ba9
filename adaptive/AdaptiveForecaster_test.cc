// The adaptive forecaster end to end, as a host sees it: no leak from the
// future, determinism, the instance's own forecast kept reachable, bad
// input, and that it learns which method to trust.
#include "adaptive/AdaptiveForecaster.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "adaptive/testing/RoutineReports.h"
#include "interface/HostTime.h"
#include "kez/kez.h"

namespace kez {
namespace adaptive {
namespace {

using testing::FeedRoutine;
using testing::kMinuteMs;
using testing::kReportMs;
using testing::kRoutineStartMs;
using testing::RoutineReport;

constexpr uint64_t kDayMs = 24 * 60 * kMinuteMs;
constexpr int kSteps = 144;

std::vector<stMobilePowerPredictionData> Forecast(AdaptiveForecaster& f,
                                                  int variant,
                                                  int steps = kSteps) {
  std::vector<stMobilePowerPredictionData> out(steps);
  EXPECT_EQ(f.Predict(variant, steps, out.data()), 1);
  return out;
}

// Bit-for-bit equality of two forecasts.
bool Same(const std::vector<stMobilePowerPredictionData>& a,
          const std::vector<stMobilePowerPredictionData>& b) {
  return a.size() == b.size() &&
         std::memcmp(a.data(), b.data(),
                     a.size() * sizeof(stMobilePowerPredictionData)) == 0;
}

void ExpectSane(const std::vector<stMobilePowerPredictionData>& f) {
  for (const auto& s : f) {
    ASSERT_TRUE(s.level >= 0.0 && s.level <= 1.0) << s.level;
    ASSERT_TRUE(s.charging >= 0.0 && s.charging <= 1.0) << s.charging;
  }
}

// A user that is not quite regular, so that the methods disagree: the
// routine, with the phone left off the charger every third night.
HostReport Irregular(uint64_t t) {
  HostReport r = RoutineReport(t);
  const uint64_t day = (t - kRoutineStartMs + kDayMs / 24) / kDayMs;
  if (day % 3 == 2 && r.charging > 0.5f) {
    r.charging = 0.0f;
    r.levelPercent = 50.0f;
  }
  return r;
}

void FeedIrregular(AdaptiveForecaster* f, uint64_t from, uint64_t to) {
  for (uint64_t t = from; t < to; t += kReportMs) f->Report(Irregular(t));
}

TEST(AdaptiveForecasterTest, AForecastDependsOnlyOnWhatWasReportedBeforeIt) {
  const uint64_t t = kRoutineStartMs + 12 * kDayMs + 15 * 60 * kMinuteMs;
  AdaptiveForecaster a, b, c;
  // A asks for forecasts all along, B never: asking changes nothing.
  for (uint64_t s = kRoutineStartMs; s < t; s += kReportMs) {
    a.Report(Irregular(s));
    if ((s / kReportMs) % 7 == 0) Forecast(a, kFree, 30);
  }
  FeedIrregular(&b, kRoutineStartMs, t);
  FeedIrregular(&c, kRoutineStartMs, t);
  const auto atA = Forecast(a, kFree);
  const auto atB = Forecast(b, kFree);
  const auto ncA = Forecast(a, kNotCharged);
  // A and B go on with different futures; the forecasts they made at t stay
  // what C, which never saw any future, makes at t.
  FeedIrregular(&a, t, t + 3 * kDayMs);
  FeedRoutine(&b, t, t + 3 * kDayMs);
  EXPECT_TRUE(Same(atA, Forecast(c, kFree)));
  EXPECT_TRUE(Same(atB, Forecast(c, kFree)));
  EXPECT_TRUE(Same(ncA, Forecast(c, kNotCharged)));
  // And the two futures really lead elsewhere.
  EXPECT_FALSE(Same(Forecast(a, kFree), Forecast(b, kFree)));
}

TEST(AdaptiveForecasterTest, ReplayingTheSameReportsGivesTheSameForecasts) {
  const uint64_t end = kRoutineStartMs + 10 * kDayMs + 7 * kReportMs;
  AdaptiveForecaster a, b;
  FeedIrregular(&a, kRoutineStartMs, end);
  FeedIrregular(&b, kRoutineStartMs, end);
  for (int v = 0; v < kVariantCount; ++v) {
    EXPECT_TRUE(Same(Forecast(a, v), Forecast(b, v))) << v;
  }
  double wa[kMethodCount], wb[kMethodCount];
  a.LevelWeights(kFree, 40, wa);
  b.LevelWeights(kFree, 40, wb);
  EXPECT_EQ(std::memcmp(wa, wb, sizeof wa), 0);
}

TEST(AdaptiveForecasterTest, TheRawForecastIsTheInstancesOwn) {
  const uint64_t end = kRoutineStartMs + 9 * kDayMs + 3 * kReportMs;
  AdaptiveForecaster a;
  kez_handle plain = kez_init();
  ASSERT_NE(plain, nullptr);
  for (uint64_t t = kRoutineStartMs; t < end; t += kReportMs) {
    const HostReport r = Irregular(t);
    a.Report(r);
    kez_addStatusValue(plain, r.timeMs, r.levelPercent, r.charging, r.aux1,
                       r.aux2, r.aux3, r.countA, r.countB1, r.countB2);
  }
  std::vector<stMobilePowerPredictionData> mine(kSteps), theirs(kSteps);
  int (*const exported[3])(kez_handle, int, stMobilePowerPredictionData*) = {
      kez_predict, kez_predict_without_charging,
      kez_predict_at_charging_starting};
  for (int v = 0; v < kVariantCount; ++v) {
    ASSERT_EQ(a.PredictRaw(v, kSteps, mine.data()), 1);
    ASSERT_EQ(exported[v](plain, kSteps, theirs.data()), 1);
    EXPECT_TRUE(Same(mine, theirs)) << v;
  }
  kez_stop(plain);
}

TEST(AdaptiveForecasterTest, BadValuesAreRefusedAndLeaveNoTrace) {
  const uint64_t end = kRoutineStartMs + 9 * kDayMs;
  AdaptiveForecaster clean, dirty;
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float inf = std::numeric_limits<float>::infinity();
  int refused = 0;
  for (uint64_t t = kRoutineStartMs; t < end; t += kReportMs) {
    const HostReport r = Irregular(t);
    clean.Report(r);
    ASSERT_EQ(dirty.Report(r), 1);
    if ((t / kReportMs) % 11 == 0) {
      HostReport bad = Irregular(t + kMinuteMs);
      switch ((t / kReportMs) % 5) {
        case 0: bad.levelPercent = nan; break;
        case 1: bad.charging = inf; break;
        case 2: bad.aux2 = -inf; break;
        case 3: bad.countB1 = std::numeric_limits<double>::quiet_NaN(); break;
        default:  // late: ten minutes before the last report
          bad.timeMs = t - 10 * kMinuteMs;
          break;
      }
      refused += dirty.Report(bad) == 0;
    }
  }
  EXPECT_GT(refused, 100);
  for (int v = 0; v < kVariantCount; ++v) {
    EXPECT_TRUE(Same(Forecast(clean, v), Forecast(dirty, v))) << v;
  }
}

TEST(AdaptiveForecasterTest, KeepsWorkingThroughClockJumpsAndLongGaps) {
  AdaptiveForecaster f;
  uint64_t t = kRoutineStartMs;
  FeedIrregular(&f, t, t + 9 * kDayMs);
  t += 9 * kDayMs;
  // The clock jumps back two days: taken, and forecasts go on.
  EXPECT_EQ(f.Report(Irregular(t - 2 * kDayMs)), 1);
  FeedIrregular(&f, t - 2 * kDayMs + kReportMs, t);
  for (int v = 0; v < kVariantCount; ++v) ExpectSane(Forecast(f, v));
  // Four days without a report, then the user again.
  t += 4 * kDayMs;
  FeedIrregular(&f, t, t + 2 * kDayMs);
  for (int v = 0; v < kVariantCount; ++v) ExpectSane(Forecast(f, v));
  // Levels beyond 0 .. 100 reach the instance as they are but are kept
  // within range in everything the forecaster forms itself.
  HostReport odd = Irregular(t + 2 * kDayMs);
  odd.levelPercent = 250.0f;
  EXPECT_EQ(f.Report(odd), 1);
  odd.timeMs += kReportMs;
  odd.levelPercent = -40.0f;
  EXPECT_EQ(f.Report(odd), 1);
  for (int v = 0; v < kVariantCount; ++v) ExpectSane(Forecast(f, v));
  double w[kMethodCount];
  for (int v = 0; v < kVariantCount; ++v) {
    f.LevelWeights(v, 20, w);
    double sum = 0.0;
    for (double x : w) {
      ASSERT_TRUE(std::isfinite(x));
      sum += x;
    }
    EXPECT_NEAR(sum, 1.0, 1e-12);
  }
}

TEST(AdaptiveForecasterTest, TheWeightPathHoldsEachStepsWeights) {
  AdaptiveForecaster f;
  FeedIrregular(&f, kRoutineStartMs, kRoutineStartMs + 9 * kDayMs + kReportMs);
  const int steps = 200;
  std::vector<double> path(static_cast<size_t>(steps) * kMethodCount);
  double one[kMethodCount];
  for (int what = 0; what < 2; ++what) {
    for (int v = 0; v < kVariantCount; ++v) {
      const bool known = what == 0 || v == kFree;
      ASSERT_EQ(f.WeightPath(v, what, steps, path.data()), known);
      if (!known) continue;
      for (int k = 0; k < steps; ++k) {
        if (what == 0) {
          f.LevelWeights(v, k, one);
        } else {
          f.ChargingWeights(k, one);
        }
        ASSERT_EQ(std::memcmp(one, &path[static_cast<size_t>(k) * kMethodCount],
                              sizeof one), 0) << v << " " << k;
      }
    }
  }
}

TEST(AdaptiveForecasterTest, BeforeAnyReportItIsTheInstancesForecast) {
  AdaptiveForecaster f;
  std::vector<stMobilePowerPredictionData> a(10), b(10);
  ASSERT_EQ(f.Predict(kFree, 10, a.data()), 1);
  ASSERT_EQ(f.PredictRaw(kFree, 10, b.data()), 1);
  EXPECT_TRUE(Same(a, b));
  EXPECT_EQ(f.Predict(3, 10, a.data()), 0);
  EXPECT_EQ(f.Predict(-1, 10, a.data()), 0);
  EXPECT_EQ(f.Predict(kFree, 5, nullptr), 0);
}

TEST(AdaptiveForecasterTest, LongForecastsAreCombinedToTheEnd) {
  // Longer than the forecaster's scratch: the running rates get an array
  // of their own for the call.
  AdaptiveForecaster f;
  FeedIrregular(&f, kRoutineStartMs, kRoutineStartMs + 9 * kDayMs);
  const auto longer = Forecast(f, kFree, 600);
  ExpectSane(longer);
  std::vector<stMobilePowerPredictionData> raw(600);
  ASSERT_EQ(f.PredictRaw(kFree, 600, raw.data()), 1);
  EXPECT_FALSE(Same(longer, raw));
  EXPECT_EQ(longer[0].distance, raw[0].distance);
}

TEST(AdaptiveForecasterTest, LearnsThatTheSeasonalMethodsAreRightForAStrictRoutine) {
  // The routine repeats exactly every day: yesterday and last week are
  // never wrong, so after a few weeks they carry most of the weight once
  // the user's own record decides alone (no prior).
  AdaptiveSettings own;
  own.level.priorWeight = 0.0;
  AdaptiveForecaster f(own);
  FeedRoutine(&f, kRoutineStartMs, kRoutineStartMs + 21 * kDayMs +
                                       10 * 60 * kMinuteMs);
  EXPECT_GT(f.Scored(kFree), 300);
  double w[kMethodCount];
  f.LevelWeights(kFree, 47, w);  // 8 hours ahead
  EXPECT_GT(w[kYesterday] + w[kLastWeek], 0.9);
  // And the forecast follows the routine: the last report is at 09:55 at
  // 92 % (1 % every 20 minutes since 07:00); 8 hours later, at 17:55, the
  // routine is at 100 - 655 / 20 = 68 % (whole percent steps).
  const auto day = Forecast(f, kFree);
  EXPECT_NEAR(day[47].level, 0.68, 0.005);
}

}  // namespace
}  // namespace adaptive
}  // namespace kez
