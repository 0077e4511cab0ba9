// The step history: steps held, emptied by gaps, forgotten after a week and
// a day, never rewritten from the past.
#include "adaptive/StepHistory.h"

#include <gtest/gtest.h>

namespace kez {
namespace adaptive {
namespace {

TEST(StepHistoryTest, HoldsTheLastReportOfEachStep) {
  StepHistory h;
  EXPECT_TRUE(h.empty());
  h.Add(1000, 0.50, false);
  h.Add(1000, 0.49, true);  // same step: the later report wins
  h.Add(1001, 0.48, false);
  double level = 0;
  bool charging = false;
  ASSERT_TRUE(h.Level(1000, &level));
  ASSERT_TRUE(h.Charging(1000, &charging));
  EXPECT_FLOAT_EQ(level, 0.49f);
  EXPECT_TRUE(charging);
  EXPECT_EQ(h.newest(), 1001);
  EXPECT_FALSE(h.Level(1002, &level));  // not yet reported
  EXPECT_FALSE(h.Level(999, &level));   // before the first report
}

TEST(StepHistoryTest, GapsAreEmptyAndLateReportsAreIgnored) {
  StepHistory h;
  h.Add(10, 0.9, false);
  h.Add(14, 0.8, false);  // steps 11 .. 13 had no report
  EXPECT_EQ(h.CountHeld(10, 14), 2);
  h.Add(12, 0.1, true);  // late: ignored
  double level = 0;
  EXPECT_FALSE(h.Level(12, &level));
  EXPECT_EQ(h.newest(), 14);
}

TEST(StepHistoryTest, KeepsAWeekAndADay) {
  StepHistory h;
  for (int64_t s = 0; s < 3000; ++s) h.Add(s, (s % 100) / 100.0, s % 2 == 0);
  double level = 0;
  EXPECT_TRUE(h.Level(2999 - StepHistory::kSteps + 1, &level));
  EXPECT_FALSE(h.Level(2999 - StepHistory::kSteps, &level));
  ASSERT_TRUE(h.Level(2999 - 1008, &level));
  EXPECT_FLOAT_EQ(level, static_cast<float>((1991 % 100) / 100.0));
  // A gap longer than the ring empties all of it.
  h.Add(9000, 0.3, false);
  EXPECT_EQ(h.CountHeld(9000 - StepHistory::kSteps + 1, 9000), 1);
  h.Clear();
  EXPECT_TRUE(h.empty());
  EXPECT_EQ(h.CountHeld(0, 10000), 0);
}

TEST(StepHistoryTest, LevelsAreKeptWithinZeroToOne) {
  StepHistory h;
  h.Add(5, 2.5, false);
  h.Add(6, -1.0, false);
  double a = 0, b = 0;
  ASSERT_TRUE(h.Level(5, &a));
  ASSERT_TRUE(h.Level(6, &b));
  EXPECT_EQ(a, 1.0);
  EXPECT_EQ(b, 0.0);
}

}  // namespace
}  // namespace adaptive
}  // namespace kez
