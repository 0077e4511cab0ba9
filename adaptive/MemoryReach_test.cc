// MemoryReach: where the newest places of the instance's memory begin,
// worked out by hand from day counts.
#include "adaptive/MemoryReach.h"

#include <cstdint>

#include "gtest/gtest.h"

namespace kez {
namespace adaptive {
namespace {

constexpr uint64_t kDay = 86400000;
constexpr uint64_t kStep = 600000;

// One report every 10 minutes (each a place of its own) on days
// [first, last], skipping days [skipFrom, skipTo).
void Feed(MemoryReach* reach, uint64_t first, uint64_t last,
          uint64_t skipFrom = 0, uint64_t skipTo = 0) {
  for (uint64_t t = first * kDay; t < (last + 1) * kDay; t += kStep) {
    const uint64_t day = t / kDay;
    if (day >= skipFrom && day < skipTo) continue;
    reach->Add(t, true);
  }
}

TEST(MemoryReach, CountsWholeDaysBackUntilThePlacesAreTaken) {
  MemoryReach reach;
  EXPECT_EQ(reach.Since(1), 0u);  // nothing yet: keep everything
  Feed(&reach, 100, 139);  // 40 days of 144 places
  // 31 days of places: days 109 to 139.
  EXPECT_EQ(reach.Since(31 * 144), 109 * kDay);
  // One place more reaches into day 108, whose start is named.
  EXPECT_EQ(reach.Since(31 * 144 + 1), 108 * kDay);
  // More places than 40 days hold: keep everything.
  EXPECT_EQ(reach.Since(40 * 144 + 1), 0u);
  // A second report in the same step takes no place.
  reach.Add(139 * kDay + 86000000, false);
  EXPECT_EQ(reach.Since(31 * 144), 109 * kDay);
}

TEST(MemoryReach, DaysWithoutReportsReachFurtherBack) {
  MemoryReach reach;
  Feed(&reach, 100, 159, 120, 126);  // six days off
  // Days 159 .. 126: 34 days; 31 days of places end at day 129.
  EXPECT_EQ(reach.Since(31 * 144), 129 * kDay);
  // 40 days of places: 34 after the gap, 6 before it (days 119 .. 114).
  EXPECT_EQ(reach.Since(40 * 144), 114 * kDay);
}

TEST(MemoryReach, AClockJumpingBackRestartsTheCount) {
  MemoryReach reach;
  Feed(&reach, 100, 139);
  reach.Add(90 * kDay, true);
  EXPECT_EQ(reach.Since(2), 0u);
  EXPECT_EQ(reach.Since(1), 90 * kDay);
}

TEST(MemoryReach, OlderThanItsDaysIsForgotten) {
  MemoryReach reach;
  Feed(&reach, 0, 0);
  reach.Add(MemoryReach::kDays * kDay, true);  // day 0 falls out
  EXPECT_EQ(reach.Since(2), 0u);
  EXPECT_EQ(reach.Since(1), MemoryReach::kDays * kDay);
}

TEST(MemoryReach, SavedAndRestored) {
  MemoryReach reach;
  Feed(&reach, 100, 159, 120, 126);
  unsigned char blob[1024];
  StateWriter out(blob, sizeof blob);
  reach.Save(&out);
  ASSERT_TRUE(out.ok());
  MemoryReach copy;
  StateReader in(blob, out.size());
  copy.Restore(&in);
  EXPECT_TRUE(in.ok() && in.atEnd());
  EXPECT_EQ(copy.Since(40 * 144), 114 * kDay);
}

}  // namespace
}  // namespace adaptive
}  // namespace kez
