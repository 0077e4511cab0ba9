// The exported functions and the instance behind them, end to end.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "interface/KEZ.h"
#include "kez/kez.h"

#if defined(__SANITIZE_ADDRESS__)
// The absurd-count test relies on failed allocations returning null.
extern "C" __attribute__((visibility("default"), used)) const char*
__asan_default_options() {
  return "allocator_may_return_null=1";
}
#endif

namespace {

constexpr uint64_t kDayMs = 86400000ULL;
// 2024-01-01 00:00 UTC, a Monday.
constexpr uint64_t kStartMs = 1704067200000ULL;

// The exported functions work on an instance owned here, so that the tests
// can look at its predictor's state through the typed classes.
class KezApiTest : public ::testing::Test {
 protected:
  vorn::MobilePowerPredictor& Predictor(kez_handle) {
    return *instance.impl->predictor;
  }
  kez::KEZ instance;
  kez_handle handle = &instance;
};

TEST(KezLifecycleTest, InitGivesAnInstanceThatForecastsAndStopFreesIt) {
  kez_handle h = kez_init();
  ASSERT_NE(h, nullptr);
  EXPECT_EQ(kez_addStatusValue(h, kStartMs, 50, 0, 0, 0, 0, 0, 0, 0), 1);
  stMobilePowerPredictionData out[1] = {{7, 7, 7}};
  EXPECT_EQ(kez_predict(h, 1, out), 1);
  EXPECT_EQ(out[0].distance, 100.0);  // nothing similar yet: extrapolated
  kez_stop(h);  // the sanitizer builds check that nothing is left
}

TEST(KezVersionTest, PrintsIntoBuffersOfAnySize) {
  char big[256];
  std::memset(big, 'x', sizeof big);
  EXPECT_EQ(kez_get_version(big, 256), 7);
  EXPECT_STREQ(big, "1.04.21");
  for (int i = 7; i < 256; ++i) ASSERT_EQ(big[i], 0) << i;

  char small[8];
  std::memset(small, 'x', sizeof small);
  EXPECT_EQ(kez_get_version(small, 4), 7);
  EXPECT_STREQ(small, "1.0");
  EXPECT_EQ(small[4], 'x');  // nothing beyond `size` is touched

  EXPECT_EQ(kez_get_version(nullptr, 0), 7);
  EXPECT_EQ(kez_get_version(small, -1), 7);
}

TEST(KezNullHandleTest, EveryFunctionToleratesANullHandle) {
  stMobilePowerPredictionData out[2] = {{7, 7, 7}, {7, 7, 7}};
  EXPECT_EQ(kez_predict(nullptr, 2, out), -1);
  EXPECT_EQ(kez_predict_without_charging(nullptr, 2, out), -1);
  EXPECT_EQ(kez_predict_at_charging_starting(nullptr, 2, out), -1);
  for (const auto& d : out) {
    EXPECT_EQ(d.level, 7.0);
    EXPECT_EQ(d.charging, 7.0);
    EXPECT_EQ(d.distance, 7.0);
  }
  EXPECT_EQ(kez_addStatusValue(nullptr, kStartMs, 50, 0, 0, 0, 0, 0, 0, 0), 0);
  kez_addStatusValues(nullptr, "1,2,3");
  EXPECT_EQ(kez_similar_moments(nullptr, 10), -1);
  kez_stop(nullptr);
}

TEST(KezInstanceTest, NullImplementationIsReported) {
  kez::KEZ instance;
  kez::KEZ::kezImpl* impl = instance.impl;
  instance.impl = nullptr;
  stMobilePowerPredictionData out[1] = {{7, 7, 7}};
  EXPECT_EQ(instance.predict(1, out, -1, 0), -1);
  EXPECT_EQ(instance.addStatusValue(1.0, 50, 0, 0, 0, 0, 0, 0, 0), 0);
  std::string line = "1,2,3";
  EXPECT_EQ(instance.addStatusValues(line), 0);
  EXPECT_EQ(out[0].level, 7.0);
  instance.impl = impl;
}

TEST_F(KezApiTest, SampleValuesAreConverted) {
  EXPECT_EQ(kez_addStatusValue(handle, kStartMs, 100.0f, 1.0f, 1.5f, 2.5f,
                               3.5f, 100.0, 60.0, 40.0),
            1);
  const vorn::MobilePowerPredictor& p = Predictor(handle);
  EXPECT_EQ(p.lastTime, static_cast<double>(kStartMs) / 86400000.0);
  EXPECT_EQ(p.lastInput.level, 1.0);  // 100 x 0.01f is exactly 1.0f
  EXPECT_EQ(p.lastInput.charging, 1.0);
  EXPECT_EQ(p.lastInput.aux1, 1.5);
  EXPECT_EQ(p.lastInput.aux2, 2.5);
  EXPECT_EQ(p.lastInput.aux3, 3.5);
  EXPECT_EQ(p.lastInput.logCountA, 2.0);
  EXPECT_EQ(p.lastInput.logCountB, 1.0);
  EXPECT_EQ(p.lastInput.extra, 0);

  // Scaled in single precision: 33 x 0.01f, which differs from 0.33
  // rounded to single precision.
  kez_addStatusValue(handle, kStartMs + 60000, 33.0f, 0.0f, 0, 0, 0, 1.0, 0.5,
                     0.5);
  EXPECT_EQ(p.lastInput.level, static_cast<double>(33.0f * 0.01f));
  EXPECT_NE(p.lastInput.level, static_cast<double>(static_cast<float>(0.33)));
  EXPECT_EQ(p.lastInput.logCountA, 0.0);  // a count of exactly 1
  EXPECT_EQ(p.lastInput.logCountB, 0.0);  // a sum of exactly 1

  kez_addStatusValue(handle, kStartMs + 120000, 33.0f, 0.0f, 0, 0, 0, -5.0,
                     -3.0, 0.0);
  EXPECT_EQ(p.lastInput.logCountA, 0.0);
  EXPECT_EQ(p.lastInput.logCountB, 0.0);
}

TEST_F(KezApiTest, TimesFromTwoToTheSixtyThreeAreUnsigned) {
  const uint64_t huge = 9223372036854775808ULL;  // 2^63
  EXPECT_EQ(kez_addStatusValue(handle, huge, 40, 0, 0, 0, 0, 0, 0, 0), 1);
  const vorn::MobilePowerPredictor& p = Predictor(handle);
  EXPECT_EQ(p.lastTime, 9223372036854775808.0 / 86400000.0);
  EXPECT_GT(p.lastTime, 0.0);
  EXPECT_EQ(kez_addStatusValue(handle, UINT64_MAX, 39, 0, 0, 0, 0, 0, 0, 0), 1);
  EXPECT_GT(p.lastTime, 2.1e11);
  stMobilePowerPredictionData out[3];
  ASSERT_EQ(kez_predict(handle, 3, out), 1);
  EXPECT_NEAR(out[0].level, 0.39, 2e-3);
}

TEST_F(KezApiTest, StatusLinesFeedTheSameSample) {
  // 35 columns: time, level 50 %, charging, countA 1000 in column 29.
  std::vector<std::string> fields(35, "0");
  fields[0] = "1600000000000";
  fields[2] = "50";
  fields[3] = "1";
  fields[29] = "1000";
  std::string joined;
  for (int i = 0; i < 35; ++i) joined += (i ? "," : "") + fields[i];
  kez_addStatusValues(handle, joined.c_str());
  const vorn::MobilePowerPredictor& p = Predictor(handle);
  EXPECT_EQ(p.lastTime, 1600000000000.0 / 86400000.0);
  EXPECT_EQ(p.lastInput.level, 0.5);
  EXPECT_EQ(p.lastInput.charging, 1.0);
  EXPECT_DOUBLE_EQ(p.lastInput.logCountA, 3.0);

  fields[29] = "1";
  joined.clear();
  for (int i = 0; i < 35; ++i) joined += (i ? "," : "") + fields[i];
  kez_addStatusValues(handle, joined.c_str());
  EXPECT_EQ(p.lastInput.logCountA, 0.0);

  // "7,7" keeps no field: a sample of zeros is taken all the same.
  kez_addStatusValues(handle, "7,7");
  EXPECT_EQ(p.lastTime, 0.0);
  EXPECT_EQ(p.lastInput.level, 0.0);
}

TEST_F(KezApiTest, DirectSamplesTakeTheLevelAsAFraction) {
  kez::KEZ::kezImpl& impl = *instance.impl;
  EXPECT_EQ(impl.addStatusValueBySpecifiedData(19000.5, 0.625f, 0.0f, 0, 0, 0,
                                               10.0, 0, 0),
            1);
  EXPECT_EQ(Predictor(handle).lastInput.level, 0.625);
  EXPECT_EQ(Predictor(handle).lastInput.logCountA, 1.0);
  stMobilePowerPredictionData out[2];
  EXPECT_EQ(impl.predict(2, out, -1, 0), 1);
  EXPECT_EQ(out[0].level, 0.625 + -0.000983);
}

TEST_F(KezApiTest, CountBelowOneWritesNothing) {
  kez_addStatusValue(handle, kStartMs, 50, 0, 0, 0, 0, 0, 0, 0);
  stMobilePowerPredictionData out[1] = {{7, 7, 7}};
  EXPECT_EQ(kez_predict(handle, 0, out), 1);
  EXPECT_EQ(kez_predict_without_charging(handle, -3, out), 1);
  EXPECT_EQ(kez_predict_at_charging_starting(handle, 0, nullptr), 1);
  EXPECT_EQ(out[0].level, 7.0);
  EXPECT_EQ(out[0].charging, 7.0);
  EXPECT_EQ(out[0].distance, 7.0);
  EXPECT_EQ(kez_predict(handle, 1, nullptr), 0);
}

TEST_F(KezApiTest, AbsurdCountFailsWithoutTouchingTheOutput) {
  kez_addStatusValue(handle, kStartMs, 50, 0, 0, 0, 0, 0, 0, 0);
  stMobilePowerPredictionData out[1] = {{7, 7, 7}};
  EXPECT_EQ(kez_predict(handle, INT_MAX, out), 0);
  EXPECT_EQ(out[0].level, 7.0);
  EXPECT_EQ(out[0].distance, 7.0);
  // The instance still works afterwards.
  EXPECT_EQ(kez_predict(handle, 1, out), 1);
  EXPECT_EQ(out[0].distance, 100.0);
}

TEST_F(KezApiTest, EmptyMemoryFallsBackInAllThreeVariants) {
  kez_addStatusValue(handle, kStartMs, 50, 0, 0, 0, 0, 0, 0, 0);
  EXPECT_EQ(kez_similar_moments(handle, 144), 0);
  std::vector<stMobilePowerPredictionData> out(150);
  ASSERT_EQ(kez_predict(handle, 150, out.data()), 1);
  EXPECT_EQ(out[0].distance, 100.0);
  EXPECT_EQ(out[0].level, 0.5 + -0.000983);
  EXPECT_EQ(out[149].charging, 0.0);

  ASSERT_EQ(kez_predict_at_charging_starting(handle, 150, out.data()), 1);
  EXPECT_EQ(out[0].level, 0.55);
  EXPECT_EQ(out[143].level, 1.0);
  EXPECT_EQ(out[143].charging, 1.0);
  EXPECT_EQ(out[144].charging, 0.0);
  EXPECT_EQ(out[144].level, 1.0 + -0.000983);

  ASSERT_EQ(kez_predict_without_charging(handle, 150, out.data()), 1);
  EXPECT_EQ(out[0].charging, 0.0);
  EXPECT_EQ(out[0].level, 0.5 + -0.000983);
}

// A phone used by day and charged overnight: unplugged at 07:00 full,
// discharged evenly to 30 % by 22:00, plugged in at 22:00, full by about
// 00:30 and left on the charger until 07:00. Reported every 5 minutes.
void RoutineSample(uint64_t timeMs, float* level, float* charging) {
  const double hour = static_cast<double>(timeMs % kDayMs) / 3600000.0;
  if (hour >= 7.0 && hour < 22.0) {
    *level = static_cast<float>(100.0 - 70.0 * (hour - 7.0) / 15.0);
    *charging = 0.0f;
  } else {
    const double since = hour >= 22.0 ? hour - 22.0 : hour + 2.0;
    *level = static_cast<float>(std::fmin(100.0, 30.0 + 28.0 * since));
    *charging = 1.0f;
  }
}

uint64_t FeedRoutine(kez_handle h, uint64_t from, uint64_t until) {
  uint64_t t = from;
  for (; t <= until; t += 5 * 60000) {
    float level, charging;
    RoutineSample(t, &level, &charging);
    kez_addStatusValue(h, t, level, charging, 0.5f, 0.25f, 0.0f, 20.0, 5.0,
                       5.0);
  }
  return t - 5 * 60000;
}

TEST_F(KezApiTest, ForecastFollowsARepeatingDay) {
  // Twelve days, then up to 12:00 of the thirteenth.
  const uint64_t last =
      FeedRoutine(handle, kStartMs, kStartMs + 12 * kDayMs + 12 * 3600000ULL);
  EXPECT_EQ(kez_similar_moments(handle, 144), 16);
  std::vector<stMobilePowerPredictionData> out(144);
  ASSERT_EQ(kez_predict(handle, 144, out.data()), 1);
  EXPECT_LT(out[0].distance, 100.0);

  // Step k is about (k + 1) x 10 minutes after the last sample.
  for (int k = 0; k < 144; ++k) {
    const uint64_t t = last + static_cast<uint64_t>(k + 1) * 600000ULL;
    float level, charging;
    RoutineSample(t, &level, &charging);
    const double hour = static_cast<double>(t % kDayMs) / 3600000.0;
    const bool nearSwitch = std::fabs(hour - 22.0) < 0.4 ||
                            std::fabs(hour - 7.0) < 0.4;
    if (!nearSwitch) {
      EXPECT_EQ(out[k].charging > 0.5, charging > 0.5) << k;
      EXPECT_NEAR(out[k].level, level / 100.0, 0.06) << k;
    }
    EXPECT_GE(out[k].level, 0.0);
    EXPECT_LE(out[k].level, 1.0);
  }

  // 35 % is reached at about 20:56, nine hours after 12:00; the phone is
  // plugged in at 22:00.
  const int low = kez_forecast_find(out.data(), 144,
                                    KEZ_QUERY_LEVEL_AT_OR_BELOW, 0.35);
  EXPECT_NEAR(low, 53, 2);
  const int plug = kez_forecast_find(out.data(), 144,
                                     KEZ_QUERY_CHARGING_AT_OR_ABOVE, 0.5);
  EXPECT_NEAR(plug, 60, 2);

  // Not plugged in tonight: the level keeps falling and never rises.
  ASSERT_EQ(kez_predict_without_charging(handle, 144, out.data()), 1);
  for (int k = 1; k < 144; ++k) {
    EXPECT_EQ(out[k].charging, 0.0);
    EXPECT_LE(out[k].level, out[k - 1].level) << k;
  }
  EXPECT_LT(out[143].level, 0.3);

  // Plugged in now: full within about two hours and held there.
  ASSERT_EQ(kez_predict_at_charging_starting(handle, 144, out.data()), 1);
  const int full = kez_forecast_find(out.data(), 144,
                                     KEZ_QUERY_LEVEL_AT_OR_ABOVE, 0.999);
  EXPECT_GE(full, 0);
  EXPECT_LT(full, 18);
  for (int k = 1; k < 144; ++k) {
    EXPECT_EQ(out[k].charging, 1.0);
    EXPECT_GE(out[k].level, out[k - 1].level) << k;
  }
}

TEST(KezForecastFindTest, FindsTheFirstStepMeetingTheQuery) {
  const stMobilePowerPredictionData r[4] = {
      {0.6, 0.0, 9.0}, {0.4, 0.2, 0.0}, {0.3, 0.7, 0.0}, {0.8, 1.0, 0.0}};
  EXPECT_EQ(kez_forecast_find(r, 4, KEZ_QUERY_LEVEL_AT_OR_BELOW, 0.4), 1);
  EXPECT_EQ(kez_forecast_find(r, 4, KEZ_QUERY_LEVEL_AT_OR_BELOW, 0.1), -1);
  EXPECT_EQ(kez_forecast_find(r, 4, KEZ_QUERY_LEVEL_AT_OR_ABOVE, 0.7), 3);
  EXPECT_EQ(kez_forecast_find(r, 4, KEZ_QUERY_CHARGING_AT_OR_ABOVE, 0.5), 2);
  EXPECT_EQ(kez_forecast_find(r, 2, KEZ_QUERY_CHARGING_AT_OR_ABOVE, 0.5), -1);
  EXPECT_EQ(kez_forecast_find(r, 4, 17, 0.5), -1);
  EXPECT_EQ(kez_forecast_find(r, 0, KEZ_QUERY_LEVEL_AT_OR_ABOVE, 0.0), -1);
  EXPECT_EQ(kez_forecast_find(nullptr, 4, KEZ_QUERY_LEVEL_AT_OR_ABOVE, 0.0),
            -1);
}

}  // namespace
