// Reports allocate nothing of the adaptive forecaster's own, counted with
// the counting operator new of tests/support/CountingAllocator.h.
//
// What is allowed, exactly: the first report of each hour records what the
// methods forecast, and the instance's own forecast allocates its working
// arrays and frees them before it returns; every other report allocates no
// block at all, and no report leaves a byte more in use.
#include <gtest/gtest.h>

#include <vector>

#include "adaptive/AdaptiveForecaster.h"
#include "adaptive/testing/RoutineReports.h"
#include "support/CountingAllocator.h"

namespace kez {
namespace adaptive {
namespace {

using testing::kMinuteMs;
using testing::kReportMs;
using testing::kRoutineStartMs;
using testing::RoutineReport;

constexpr uint64_t kHourMs = 60 * kMinuteMs;
constexpr uint64_t kDayMs = 24 * kHourMs;

TEST(AdaptiveAllocationTest, ReportsAllocateNothingOfTheirOwn) {
  AdaptiveForecaster f;
  const uint64_t warm = kRoutineStartMs + 9 * kDayMs;
  testing::FeedRoutine(&f, kRoutineStartMs, warm);
  long hourly = 0;
  for (uint64_t t = warm; t < warm + 2 * kDayMs; t += kReportMs) {
    const long blocks = kez_testing::heap.blocks;
    const long live = kez_testing::heap.liveBytes;
    ASSERT_EQ(f.Report(RoutineReport(t)), 1);
    ASSERT_EQ(kez_testing::heap.liveBytes, live) << t;
    if (t % kHourMs < kReportMs) {
      ++hourly;
    } else {
      ASSERT_EQ(kez_testing::heap.blocks, blocks) << t;
    }
  }
  EXPECT_EQ(hourly, 48);
}

TEST(AdaptiveAllocationTest, ForecastsFreeWhatTheyTake) {
  AdaptiveForecaster f;
  testing::FeedRoutine(&f, kRoutineStartMs, kRoutineStartMs + 9 * kDayMs);
  std::vector<stMobilePowerPredictionData> out(1000);
  for (int count : {1, 144, 288, 1000}) {
    const long live = kez_testing::heap.liveBytes;
    ASSERT_EQ(f.Predict(kFree, count, out.data()), 1);
    EXPECT_EQ(kez_testing::heap.liveBytes, live) << count;
  }
}

TEST(AdaptiveAllocationTest, AForecastWithoutMemoryFailsCleanly) {
  AdaptiveForecaster f;
  testing::FeedRoutine(&f, kRoutineStartMs, kRoutineStartMs + 9 * kDayMs);
  std::vector<stMobilePowerPredictionData> out(400);
  const long live = kez_testing::heap.liveBytes;
  // The first allocation inside is the instance's; then its own scratch.
  kez_testing::heap.failIn = 1;
  EXPECT_EQ(f.Predict(kFree, 400, out.data()), 0);
  kez_testing::heap.failIn = 0;
  EXPECT_EQ(kez_testing::heap.liveBytes, live);
  EXPECT_EQ(f.Predict(kFree, 400, out.data()), 1);
}

}  // namespace
}  // namespace adaptive
}  // namespace kez
