// The scorebook's forgetting sums, worked out by hand.
#include "adaptive/ForecastScorebook.h"

#include <gtest/gtest.h>

#include <limits>

namespace kez {
namespace adaptive {
namespace {

TEST(ForecastScorebookTest, ErrorsAreForgottenGeometrically) {
  ForecastScorebook book(0.5);
  EXPECT_TRUE(book.AddLevel(kFree, 1, 2, kYesterday, 1.0));
  EXPECT_TRUE(book.AddLevel(kFree, 1, 2, kYesterday, 3.0));
  // sum 0.5 x 1 + 3 = 3.5, weight 0.5 x 1 + 1 = 1.5
  EXPECT_DOUBLE_EQ(book.Level(kFree, 1, 2, kYesterday).sum, 3.5);
  EXPECT_DOUBLE_EQ(book.Level(kFree, 1, 2, kYesterday).weight, 1.5);
  EXPECT_EQ(book.Level(kFree, 0, 2, kYesterday).weight, 0.0);  // other cell
  EXPECT_TRUE(book.AddCharging(3, 0, kChargingHabit, 0.25));
  EXPECT_DOUBLE_EQ(book.Charging(3, 0, kChargingHabit).sum, 0.25);
}

TEST(ForecastScorebookTest, BrokenErrorsNeverEnter) {
  ForecastScorebook book(0.9);
  book.AddLevel(kNotCharged, 0, 0, kInstance, 0.2);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_FALSE(book.AddLevel(kNotCharged, 0, 0, kInstance, nan));
  EXPECT_FALSE(book.AddLevel(kNotCharged, 0, 0, kInstance, inf));
  EXPECT_FALSE(book.AddLevel(kNotCharged, 0, 0, kInstance, -0.1));
  EXPECT_FALSE(book.AddCharging(0, 0, kInstance, nan));
  EXPECT_DOUBLE_EQ(book.Level(kNotCharged, 0, 0, kInstance).sum, 0.2);
  EXPECT_DOUBLE_EQ(book.Level(kNotCharged, 0, 0, kInstance).weight, 1.0);
  EXPECT_EQ(book.Charging(0, 0, kInstance).weight, 0.0);
}

}  // namespace
}  // namespace adaptive
}  // namespace kez
