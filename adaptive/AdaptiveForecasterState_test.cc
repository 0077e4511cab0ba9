// AdaptiveForecaster's saved state: a blob that is not exactly one it wrote
// (another version, cut short, too long, none) is refused and changes
// nothing; a short buffer gets nothing. That a restored state forecasts as
// the forecaster that never stopped is tested end to end through the
// journal (kez_adaptive_api_journal_test).
#include <cstring>
#include <memory>
#include <vector>

#include "adaptive/AdaptiveForecaster.h"
#include "adaptive/testing/RoutineReports.h"
#include "gtest/gtest.h"

namespace kez {
namespace adaptive {
namespace {

using testing::FeedRoutine;
using testing::kRoutineStartMs;

constexpr uint64_t kDayMs = 86400000;

std::vector<double> Levels(AdaptiveForecaster* f) {
  std::vector<double> levels;
  stMobilePowerPredictionData out[144];
  for (int v = 0; v < kVariantCount; ++v) {
    EXPECT_EQ(f->Predict(v, 144, out), 1);
    for (const auto& s : out) levels.push_back(s.level);
  }
  return levels;
}

TEST(AdaptiveForecasterState, RefusesBlobsItDidNotWrite) {
  auto a = std::make_unique<AdaptiveForecaster>();
  FeedRoutine(a.get(), kRoutineStartMs, kRoutineStartMs + 10 * kDayMs);
  const std::size_t size = a->StateSize();
  ASSERT_GT(size, 1000u);
  std::vector<unsigned char> blob(size + 1);
  EXPECT_EQ(a->SaveState(blob.data(), size - 1), 0u);
  ASSERT_EQ(a->SaveState(blob.data(), blob.size()), size);
  EXPECT_EQ(blob[0], AdaptiveForecaster::kStateVersion);

  // A forecaster that learned something else: three days, another start.
  auto b = std::make_unique<AdaptiveForecaster>();
  FeedRoutine(b.get(), kRoutineStartMs + 20 * kDayMs, kRoutineStartMs + 23 * kDayMs);
  const std::vector<double> before = Levels(b.get());
  const long scoredBefore = b->Scored(kFree);

  std::vector<unsigned char> other = blob;
  other[0] = AdaptiveForecaster::kStateVersion + 1;
  EXPECT_FALSE(b->RestoreState(other.data(), size));
  EXPECT_FALSE(b->RestoreState(blob.data(), size - 1));
  EXPECT_FALSE(b->RestoreState(blob.data(), size + 1));
  EXPECT_FALSE(b->RestoreState(nullptr, size));
  EXPECT_TRUE(Levels(b.get()) == before);
  EXPECT_EQ(b->Scored(kFree), scoredBefore);

  // Its own blob is taken: the counts come back.
  EXPECT_TRUE(b->RestoreState(blob.data(), size));
  EXPECT_EQ(b->Scored(kFree), a->Scored(kFree));
  EXPECT_NE(b->Scored(kFree), scoredBefore);
}

}  // namespace
}  // namespace adaptive
}  // namespace kez
