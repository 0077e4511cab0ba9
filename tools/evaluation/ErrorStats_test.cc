// The error statistics of an evaluation: mean and nearest-rank 90th
// percentile of absolute errors, Brier score of a chance.
#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <vector>

#include "ErrorStats.h"

namespace kez_tools {
namespace {

TEST(ErrorStats, MeanAndNearestRankPercentile) {
  ErrorStats e;
  EXPECT_TRUE(std::isnan(e.Mean()));
  EXPECT_TRUE(std::isnan(e.Percentile90()));
  for (int i = 10; i >= 1; --i) e.Add(i);
  EXPECT_DOUBLE_EQ(e.Mean(), 5.5);
  EXPECT_DOUBLE_EQ(e.Percentile90(), 9);
  e.Add(100);  // 11 errors: rank ceil(9.9) = 10
  EXPECT_DOUBLE_EQ(e.Percentile90(), 10);
  ErrorStats one;
  one.Add(3);
  EXPECT_DOUBLE_EQ(one.Percentile90(), 3);

  ProbabilityScore p;
  EXPECT_TRUE(std::isnan(p.Brier()));
  p.Add(0.8, true);
  p.Add(0.5, false);
  EXPECT_NEAR(p.Brier(), (0.04 + 0.25) / 2, 1e-15);
}

}  // namespace
}  // namespace kez_tools
