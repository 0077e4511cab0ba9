// The gap rule of the predictor's ingestion, worked out by hand: a step is
// stored when the first sample of a later step arrives, and when at least
// one whole step between the two had no sample, exactly one gap record
// (every element 1e307) follows it, however many steps were skipped. What
// counts is the step index (time / step length, truncated), not the time
// elapsed: samples 1.96 steps apart in adjacent steps leave no gap, while
// samples 1.04 steps apart with an empty step between them leave one.
#include <gtest/gtest.h>

#include <vector>

#include "predictor/MobilePowerPredictor.h"

namespace vorn {
namespace {

constexpr double kStep = MobilePowerPredictor::kStepDays;
constexpr double kGap = 1e307;

MobilePowerInputData Sample(double level) {
  MobilePowerInputData input;
  input.level = level;
  input.charging = 0.0;
  input.aux1 = input.aux2 = input.aux3 = 0.0;
  input.logCountA = input.logCountB = 0.0;
  return input;
}

// Time of a sample at fraction `within` (0 .. 1) of step `step` of day 20000.
double At(int step, double within) { return (20000 * 144 + step + within) * kStep; }

bool IsGap(const double* raw) {
  for (int i = 0; i < 12; ++i) {
    if (raw[i] != kGap) return false;
  }
  return true;
}

// The stored records from the oldest to the newest, as their level channel
// (raw element 4), with the gap records as -1.
std::vector<double> StoredLevels(MobilePowerPredictor& p) {
  std::vector<double> levels;
  const int n = static_cast<int>(p.storedCount);
  for (int i = -(n - 1); i <= 0; ++i) {
    const double* raw = p.GetRAWBuffer(i);
    levels.push_back(IsGap(raw) ? -1.0 : raw[4]);
  }
  return levels;
}

class GapRuleTest : public ::testing::Test {
 protected:
  // Feeds one sample; returns what AddRawData returned.
  int Feed(int step, double within, double level) {
    const MobilePowerInputData input = Sample(level);
    return p.AddRawData(At(step, within), &input, 0.99);
  }
  MobilePowerPredictor p{MobilePowerPredictorParameter()};
};

TEST_F(GapRuleTest, SamplesOneStepApartStoreNoGapWhateverTheJitter) {
  // Steps 10, 11, 12, 13 with the samples early, late, early and mid-step,
  // late: 1.96, 0.04 and 0.58 steps apart in time, always adjacent steps.
  EXPECT_EQ(Feed(10, 0.02, 0.5), 1);  // commits time 0 and its gap
  EXPECT_EQ(Feed(11, 0.98, 0.25), 1);
  EXPECT_EQ(Feed(12, 0.02, 0.75), 1);
  EXPECT_EQ(Feed(12, 0.5, 0.125), 0);  // same step: averaged
  EXPECT_EQ(Feed(13, 0.08, 0.375), 1);
  // Time 0 record (channels zero), its gap, then steps 10, 11 and 12 (the
  // mean of 0.75 and 0.125); step 13 is still open.
  const std::vector<double> expected = {0.0, -1.0, 0.5, 0.25, 0.4375};
  EXPECT_EQ(StoredLevels(p), expected);
}

TEST_F(GapRuleTest, OneSkippedStepStoresOneGapRecord) {
  // Step 20 late, step 22 early: 1.04 steps apart in time, but step 21 had
  // no sample, so step 20 is followed by one gap record.
  Feed(20, 0.98, 0.5);
  EXPECT_EQ(Feed(22, 0.02, 0.25), 1);
  // Step 22 early, step 24 late: 2.96 steps apart, again one empty step.
  EXPECT_EQ(Feed(24, 0.98, 0.75), 1);
  EXPECT_EQ(Feed(25, 0.5, 0.125), 1);
  const std::vector<double> expected = {0.0, -1.0, 0.5, -1.0, 0.25, -1.0, 0.75};
  EXPECT_EQ(StoredLevels(p), expected);
  // The gap record's phases are gap markers too, not those of a sample.
  EXPECT_TRUE(IsGap(p.GetRAWBuffer(-1)));
}

TEST_F(GapRuleTest, TwoSkippedStepsStoreOneGapRecordAsWell) {
  // Steps 30, 33 and 36, 3 steps apart (2.15 and 3.85 steps in time).
  Feed(30, 0.9, 0.5);
  EXPECT_EQ(Feed(33, 0.05, 0.25), 1);
  EXPECT_EQ(Feed(36, 0.9, 0.75), 1);
  EXPECT_EQ(Feed(37, 0.1, 0.125), 1);
  const std::vector<double> expected = {0.0, -1.0, 0.5, -1.0, 0.25, -1.0, 0.75};
  EXPECT_EQ(StoredLevels(p), expected);
}

TEST_F(GapRuleTest, AFollowingSearchSeesTheGapAsTheEndOfTheHistory) {
  // A day of samples every step, then one skipped step: the newest stored
  // record is the gap, so the present has no valid history to compare and
  // nothing similar is found.
  for (int k = 0; k < 144; ++k) Feed(k, 0.5, 0.5);
  int found = -1;
  p.Search(1, found, nullptr, nullptr);
  EXPECT_GT(found, 0);
  Feed(145, 0.5, 0.5);  // step 144 skipped
  EXPECT_TRUE(IsGap(p.GetRAWBuffer(0)));
  p.Search(1, found, nullptr, nullptr);
  EXPECT_EQ(found, 0);
}

}  // namespace
}  // namespace vorn
