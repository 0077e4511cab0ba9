// The combination rule on cases worked out by hand.
#include "adaptive/CombinationRule.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace kez {
namespace adaptive {
namespace {

struct Case {
  ErrorCell cells[kMethodCount];
  double prior[kMethodCount] = {};
  double weights[kMethodCount] = {};
};

void Scored(Case* c, int method, double meanError, double count) {
  c->cells[method].sum = meanError * count;
  c->cells[method].weight = count;
}

TEST(CombinationRuleTest, WeightsFollowTheInversePowerOfTheErrors) {
  Case c;
  Scored(&c, kInstance, 0.02, 50);
  Scored(&c, kPersistence, 0.04, 50);
  CombinationSettings s{2.0, 0.0};
  CombineWeights(c.cells, c.prior, Bit(kInstance) | Bit(kPersistence), s,
                 c.weights);
  // 0.02^-2 = 2500, 0.04^-2 = 625: 2500 / 3125 and 625 / 3125.
  EXPECT_NEAR(c.weights[kInstance], 0.8, 1e-12);
  EXPECT_NEAR(c.weights[kPersistence], 0.2, 1e-12);
  // Power 0 is a plain average; power 8 nearly follows the leader
  // (2^8 = 256 to 1).
  s.power = 0.0;
  CombineWeights(c.cells, c.prior, Bit(kInstance) | Bit(kPersistence), s,
                 c.weights);
  EXPECT_NEAR(c.weights[kInstance], 0.5, 1e-12);
  s.power = 8.0;
  CombineWeights(c.cells, c.prior, Bit(kInstance) | Bit(kPersistence), s,
                 c.weights);
  EXPECT_NEAR(c.weights[kInstance], 256.0 / 257.0, 1e-12);
}

TEST(CombinationRuleTest, ThePriorDecidesAtFirstAndGivesWayToScoredErrors) {
  Case c;
  c.prior[kInstance] = 0.05;
  c.prior[kYesterday] = 0.10;
  const MethodMask mask = Bit(kInstance) | Bit(kYesterday);
  CombinationSettings s{1.0, 10.0};
  // Nothing scored: errors 0.05 and 0.10, weights 20 and 10 of 30.
  CombineWeights(c.cells, c.prior, mask, s, c.weights);
  EXPECT_NEAR(c.weights[kInstance], 2.0 / 3.0, 1e-12);
  // Ten forecasts scored, mean errors 0.09 and 0.02: shrunk errors
  // (0.9 + 0.5) / 20 = 0.07 and (0.2 + 1.0) / 20 = 0.06; weights
  // 1/0.07 and 1/0.06, that is 6/13 and 7/13.
  Scored(&c, kInstance, 0.09, 10);
  Scored(&c, kYesterday, 0.02, 10);
  CombineWeights(c.cells, c.prior, mask, s, c.weights);
  EXPECT_NEAR(c.weights[kInstance], 6.0 / 13.0, 1e-12);
  EXPECT_NEAR(c.weights[kYesterday], 7.0 / 13.0, 1e-12);
}

TEST(CombinationRuleTest, OnlyMethodsInTheMaskWeigh) {
  Case c;
  for (int m = 0; m < kMethodCount; ++m) Scored(&c, m, 0.05, 5);
  CombinationSettings s{8.0, 0.0};
  CombineWeights(c.cells, c.prior, Bit(kLastWeek) | Bit(kRunningRates) |
                                       Bit(kChargeCurve), s, c.weights);
  for (int m = 0; m < kMethodCount; ++m) {
    const bool in = m == kLastWeek || m == kRunningRates || m == kChargeCurve;
    EXPECT_NEAR(c.weights[m], in ? 1.0 / 3.0 : 0.0, 1e-12) << m;
  }
  CombineWeights(c.cells, c.prior, 0, s, c.weights);
  for (double w : c.weights) EXPECT_EQ(w, 0.0);
}

TEST(CombinationRuleTest, ErrorsBelowTheFloorAndBrokenErrorsCountAsTheFloor) {
  Case c;
  Scored(&c, kInstance, 0.0, 20);       // right by chance, every time
  Scored(&c, kPersistence, 0.0005, 20);  // below the floor as well
  c.cells[kYesterday].sum = std::numeric_limits<double>::quiet_NaN();
  c.cells[kYesterday].weight = 3;
  CombinationSettings s{8.0, 0.0};
  CombineWeights(c.cells, c.prior,
                 Bit(kInstance) | Bit(kPersistence) | Bit(kYesterday), s,
                 c.weights);
  for (int m : {kInstance, kPersistence, kYesterday}) {
    EXPECT_NEAR(c.weights[m], 1.0 / 3.0, 1e-12) << m;
  }
}

}  // namespace
}  // namespace adaptive
}  // namespace kez
