// Hostile input through the exported C functions: times of 0 and 2^64 - 1,
// samples going backwards, non-finite and absurd values, broken status
// lines, hostile forecast counts, thousands of instances, and memory running
// out at every allocation an exported function makes. Nothing may crash,
// leak (the sanitizer build checks) or throw, and every function keeps the
// results that kez.h documents.
//
// Not asserted, on purpose: the values of forecasts made after non-finite
// samples. Nothing is validated on the way in, so a NaN level makes NaN
// forecasts; only the return codes and the instance's survival are checked
// there.
#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "interface/KEZ.h"
#include "kez/kez.h"
#include "support/CountingAllocator.h"

#if defined(__SANITIZE_ADDRESS__)
// Absurd forecast counts rely on failed allocations returning null.
extern "C" __attribute__((visibility("default"), used)) const char*
__asan_default_options() {
  return "allocator_may_return_null=1";
}
#endif

namespace {

constexpr uint64_t kMinuteMs = 60000ULL;
constexpr uint64_t kDayMs = 86400000ULL;
// 2024-03-04 00:00 UTC, a Monday.
constexpr uint64_t kStartMs = 1709510400000ULL;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr float kNaNf = std::numeric_limits<float>::quiet_NaN();
constexpr float kInff = std::numeric_limits<float>::infinity();

bool InUnitRange(double v) { return std::isfinite(v) && v >= 0.0 && v <= 1.0; }

// A plain routine: charged 23:00 to 07:00, discharged by day; 5-minute
// reports from `fromMs` for `days` days.
void FeedRoutine(kez_handle h, uint64_t fromMs, int days) {
  for (uint64_t t = fromMs; t < fromMs + days * kDayMs; t += 5 * kMinuteMs) {
    const double hour = static_cast<double>(t % kDayMs) / 3600000.0;
    const bool charging = hour >= 23.0 || hour < 7.0;
    const float level = charging ? static_cast<float>(hour < 7.0 ? 40.0 + 8.0 * hour : 40.0)
                                 : static_cast<float>(96.0 - 3.5 * (hour - 7.0));
    ASSERT_EQ(1, kez_addStatusValue(h, t, level, charging ? 1.0f : 0.0f, 25.0f, 4.0f, 0.0f,
                                    10.0, 3.0, 4.0));
  }
}

// Runs all three forecast variants; each must succeed and overwrite `out`.
void ForecastAllVariants(kez_handle h, int count, bool valuesMustBeSane) {
  using Fn = int (*)(kez_handle, int, stMobilePowerPredictionData*);
  const Fn variants[3] = {kez_predict, kez_predict_without_charging,
                          kez_predict_at_charging_starting};
  std::vector<stMobilePowerPredictionData> out(static_cast<std::size_t>(count));
  for (Fn f : variants) {
    for (auto& r : out) r = {7.0, 7.0, 7.0};
    ASSERT_EQ(1, f(h, count, out.data()));
    for (int k = 0; k < count; ++k) {
      ASSERT_NE(7.0, out[k].level) << "step " << k;  // written
      if (!valuesMustBeSane) continue;
      ASSERT_TRUE(InUnitRange(out[k].level)) << "step " << k << ": " << out[k].level;
      ASSERT_TRUE(InUnitRange(out[k].charging)) << "step " << k << ": " << out[k].charging;
    }
    if (valuesMustBeSane) {
      ASSERT_TRUE(std::isfinite(out[0].distance));
      ASSERT_GE(out[0].distance, 0.0);
    }
  }
}

class HostileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    h = kez_init();
    ASSERT_NE(nullptr, h);
  }
  void TearDown() override { kez_stop(h); }
  kez_handle h = nullptr;
};

// ---- Times ----------------------------------------------------------------

TEST_F(HostileTest, ExtremeAndBackwardTimesAreTakenAndForecastsStaySane) {
  FeedRoutine(h, kStartMs, 3);
  const uint64_t now = kStartMs + 3 * kDayMs;
  const uint64_t times[] = {0,
                            1,
                            UINT64_MAX,
                            UINT64_MAX - 1,
                            9223372036854775808ULL,  // 2^63
                            now - 2 * kDayMs,        // backwards by two days
                            now - 2 * kDayMs,        // the same time again
                            now - 20 * kMinuteMs,
                            now};
  for (uint64_t t : times) {
    ASSERT_EQ(1, kez_addStatusValue(h, t, 55.0f, 0.0f, 25.0f, 4.0f, 0.0f, 10.0, 3.0, 4.0))
        << t;
    ForecastAllVariants(h, 36, true);
  }
  // Time running backwards for a whole day, then forwards again.
  for (uint64_t t = now; t > now - kDayMs; t -= 5 * kMinuteMs) {
    ASSERT_EQ(1, kez_addStatusValue(h, t, 50.0f, 0.0f, 25.0f, 4.0f, 0.0f, 10.0, 3.0, 4.0));
  }
  ForecastAllVariants(h, 144, true);
  FeedRoutine(h, now + kDayMs, 2);
  ForecastAllVariants(h, 144, true);
  EXPECT_GT(kez_similar_moments(h, 144), 0);
}

TEST_F(HostileTest, NonFiniteTimesInStatusLinesAreTaken) {
  FeedRoutine(h, kStartMs, 2);
  const char* const lines[] = {
      "nan,x,50,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,1,2,0,0,0,25,4,0,0,0,7",
      "inf,x,50,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,1,2,0,0,0,25,4,0,0,0,7",
      "-inf,x,50,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,1,2,0,0,0,25,4,0,0,0,7",
      "1e400,x,50,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,1,2,0,0,0,25,4,0,0,0,7",
      "-1e400,x,50,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,1,2,0,0,0,25,4,0,0,0,7",
      "-86400000,x,50,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,1,2,0,0,0,25,4,0,0,0,7",
      "1e300,x,50,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,1,2,0,0,0,25,4,0,0,0,7",
  };
  for (const char* line : lines) {
    kez_addStatusValues(h, line);
    ForecastAllVariants(h, 24, true);
  }
  FeedRoutine(h, kStartMs + 2 * kDayMs, 1);
  ForecastAllVariants(h, 144, true);
}

// ---- Sample values ----------------------------------------------------------

TEST_F(HostileTest, NonFiniteAndAbsurdSampleValuesNeitherCrashNorStopTheInstance) {
  FeedRoutine(h, kStartMs, 2);
  uint64_t t = kStartMs + 2 * kDayMs;
  const float floats[] = {kNaNf, kInff, -kInff, -50.0f, 1e9f, FLT_MAX, -FLT_MAX, FLT_MIN, -0.0f};
  const double doubles[] = {kNaN, kInf, -kInf, DBL_MAX, -DBL_MAX, DBL_MIN, -0.0, 1.0, 1e300};
  for (float f : floats) {
    for (double d : doubles) {
      t += kMinuteMs;
      ASSERT_EQ(1, kez_addStatusValue(h, t, f, 0.0f, 25.0f, 4.0f, 0.0f, 10.0, 3.0, 4.0));
      ASSERT_EQ(1, kez_addStatusValue(h, t, 50.0f, f, f, f, f, d, d, -d));
      ASSERT_EQ(1, kez_addStatusValue(h, t, 50.0f, 0.0f, 25.0f, 4.0f, 0.0f, d, 1.0, d));
    }
    ForecastAllVariants(h, 12, false);
  }
  // Sane samples again: the instance goes on taking them and forecasting.
  FeedRoutine(h, t + kMinuteMs, 2);
  ForecastAllVariants(h, 144, false);
  EXPECT_GT(kez_similar_moments(h, 144), 0);  // the sane days are still found similar
}

TEST_F(HostileTest, BrokenStatusLinesAreSurvived) {
  std::vector<std::string> lines = {
      "",
      ",",
      ",,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,",
      "7,7",
      "\x01\x02\x03\xff\xfe,\x80,\xc3\xa9,nan",
      "1709510400000,x,50,1",  // short: missing columns read as 0
      "1709510400000,x,nan,nan,nan,nan,nan,nan,nan,nan,nan,nan,nan,nan,nan,nan,nan,nan,nan,nan,"
      "nan,nan,nan,nan,nan,nan,nan,nan,nan,nan",
      "1709510400000,x,1e999,-1e999,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,1e999,-1e999,0,0,0,1e999,"
      "-1e999,nan,0,0,1e999",
      "0x1p1023,x,0x10,0x1,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0",
  };
  lines.push_back(std::string(20000, ','));                // 20001 empty fields
  lines.push_back(std::string(100000, '9'));               // one enormous number
  lines.push_back("1709510400000," + std::string(100000, '5') + ",5");
  std::string many;
  for (int i = 0; i < 20000; ++i) many += std::to_string(i) + ",";
  lines.push_back(many);
  for (const std::string& line : lines) {
    kez_addStatusValues(h, line.c_str());
    ForecastAllVariants(h, 6, false);
  }
  kez_addStatusValues(h, nullptr);
  FeedRoutine(h, kStartMs + kDayMs, 2);
  ForecastAllVariants(h, 144, false);
}

// ---- Forecast counts ----------------------------------------------------------

TEST(HostileCountTest, EmptyInstanceAnswersEveryCount) {
  kez_handle h = kez_init();
  ASSERT_NE(nullptr, h);
  stMobilePowerPredictionData out[2] = {{7, 7, 7}, {7, 7, 7}};
  for (int count : {0, -1, -144, INT_MIN}) {
    EXPECT_EQ(1, kez_predict(h, count, out)) << count;
    EXPECT_EQ(1, kez_predict_without_charging(h, count, out)) << count;
    EXPECT_EQ(1, kez_predict_at_charging_starting(h, count, nullptr)) << count;
    EXPECT_EQ(0, kez_similar_moments(h, count)) << count;
  }
  EXPECT_EQ(7.0, out[0].level);  // a count below 1 writes nothing
  EXPECT_EQ(7.0, out[0].distance);
  ASSERT_EQ(1, kez_predict(h, 2, out));
  EXPECT_EQ(100.0, out[0].distance);  // nothing similar: extrapolation
  EXPECT_TRUE(InUnitRange(out[1].level));
  EXPECT_EQ(0, kez_similar_moments(h, 2));
  kez_stop(h);
}

TEST_F(HostileTest, LargeAndAbsurdCounts) {
  FeedRoutine(h, kStartMs, 3);
  // Far beyond the memory: the search finds nothing followed by that many
  // steps and the forecast extrapolates, all 100000 steps of it.
  ForecastAllVariants(h, 100000, true);
  EXPECT_EQ(0, kez_similar_moments(h, 100000));
  EXPECT_EQ(0, kez_similar_moments(h, INT_MAX));
  stMobilePowerPredictionData out[1] = {{7, 7, 7}};
  for (int count : {INT_MAX, INT_MAX - 1}) {
    EXPECT_EQ(0, kez_predict(h, count, out)) << count;
    EXPECT_EQ(0, kez_predict_at_charging_starting(h, count, out)) << count;
  }
  EXPECT_EQ(7.0, out[0].level);
  EXPECT_EQ(1, kez_predict(h, 1, out));
  EXPECT_TRUE(InUnitRange(out[0].level));
}

TEST(HostileCountTest, SearchOnAnInstanceWithoutImplementationIsRefused) {
  kez::KEZ instance;
  kez::KEZ::kezImpl* impl = instance.impl;
  instance.impl = nullptr;
  EXPECT_EQ(-1, kez_similar_moments(&instance, 10));
  instance.impl = impl;
  EXPECT_EQ(0, kez_similar_moments(&instance, 10));
}

// ---- Many instances ------------------------------------------------------------

TEST(HostileInstancesTest, ThousandsOfInstancesComeAndGo) {
  stMobilePowerPredictionData out[4];
  for (int i = 0; i < 2000; ++i) {
    kez_handle h = kez_init();
    ASSERT_NE(nullptr, h) << i;
    if (i % 100 == 0) {
      ASSERT_EQ(1, kez_addStatusValue(h, kStartMs + i * kMinuteMs, 50.0f, 0.0f, 0, 0, 0, 0, 0, 0));
      ASSERT_EQ(1, kez_predict(h, 4, out));
      EXPECT_EQ(100.0, out[0].distance);
    }
    kez_stop(h);
  }
  // Many alive at once, each with a state of its own.
  std::vector<kez_handle> alive;
  for (int i = 0; i < 200; ++i) {
    alive.push_back(kez_init());
    ASSERT_NE(nullptr, alive.back());
    ASSERT_EQ(1, kez_addStatusValue(alive.back(), kStartMs, static_cast<float>(i % 100), 0.0f, 0,
                                    0, 0, 0, 0, 0));
  }
  for (int i = 0; i < 200; ++i) {
    ASSERT_EQ(1, kez_predict(alive[i], 1, out));
    EXPECT_EQ(static_cast<double>(static_cast<float>(i % 100) * 0.01f) +
                  (i % 100 == 0 ? 0.0 : -0.000983),
              out[0].level)
        << i;
  }
  for (kez_handle h : alive) kez_stop(h);
}

// ---- Memory running out ---------------------------------------------------------

// Every allocation of kez_init in turn: null, and (the sanitizer build
// checks) nothing leaked.
TEST(HostileMemoryTest, CreationFailsCleanlyAtEveryAllocation) {
  const long before = kez_testing::heap.blocks;
  kez_stop(kez_init());
  const long allocations = kez_testing::heap.blocks - before;
  ASSERT_GT(allocations, 10);
  for (long k = 1; k <= allocations; ++k) {
    kez_testing::heap.failIn = k;
    kez_handle h = kez_init();
    kez_testing::heap.failIn = 0;
    EXPECT_EQ(nullptr, h) << "allocation " << k;
    kez_stop(h);
  }
}

TEST_F(HostileTest, SamplesAndLinesSurviveAFailedAllocation) {
  FeedRoutine(h, kStartMs, 2);
  uint64_t t = kStartMs + 2 * kDayMs + 3 * 3600000ULL;  // after a 3-hour gap
  // The first steps after a gap regrow the operator histories; fail each of
  // the allocations of that path in turn.
  int refused = 0;
  for (long k = 1; k <= 4; ++k) {
    for (int i = 0; i < 4; ++i, t += 5 * kMinuteMs) {
      kez_testing::heap.failIn = k;
      const int taken =
          kez_addStatusValue(h, t, 60.0f, 0.0f, 25.0f, 4.0f, 0.0f, 10.0, 3.0, 4.0);
      const bool failed = kez_testing::heap.failIn == 0;
      kez_testing::heap.failIn = 0;
      EXPECT_EQ(failed ? 0 : 1, taken) << "allocation " << k << ", sample " << i;
      if (failed) ++refused;
    }
    t += 3 * 3600000ULL;  // another gap
  }
  EXPECT_GT(refused, 0);
  // The text path copies and splits the line: every allocation there.
  const std::string line =
      "1709700000000,x,61,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,1,2,0,0,0,25,4,0,0,0,7";
  for (long k = 1; k <= 80; ++k) {
    kez_testing::heap.failIn = k;
    kez_addStatusValues(h, line.c_str());
    kez_testing::heap.failIn = 0;
  }
  // Forecasts: each scratch array in turn.
  stMobilePowerPredictionData out[3] = {{7, 7, 7}, {7, 7, 7}, {7, 7, 7}};
  int failedForecasts = 0;
  for (long k = 1; k <= 4; ++k) {
    kez_testing::heap.failIn = k;
    const int done = kez_predict(h, 3, out);
    const bool failed = kez_testing::heap.failIn == 0;
    kez_testing::heap.failIn = 0;
    EXPECT_EQ(failed ? 0 : 1, done) << "allocation " << k;
    if (failed) {
      ++failedForecasts;
      EXPECT_EQ(7.0, out[2].level) << "allocation " << k;
    }
  }
  EXPECT_EQ(4, failedForecasts);  // every scratch array is needed
  // The instance goes on as before.
  FeedRoutine(h, t, 2);
  ForecastAllVariants(h, 144, true);
  EXPECT_GT(kez_similar_moments(h, 144), 0);
}

}  // namespace
