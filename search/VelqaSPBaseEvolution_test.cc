// Model evolution on a memory base: feature genome, spread, reordering and
// duplicate-free mutation.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

#include "search/VelqaSPBase.h"

namespace vorn {
namespace {

VelqaSPFunction& Feature(VelqaSPBase& b, int i) { return **b.featureFunctions[i]; }

void AddSelect(VelqaSPBase& b, int element, double weight = 1.0) {
  VelqaSPOperator op;
  op.kind = 0x200;
  op.inputs.Add(element);
  op.SetOutputDim(1);
  VelqaSPFunction f;
  f.AddOperator(op);
  f.weight = weight;
  b.AddFeatureFunction(f);
}

bool HasDuplicates(VelqaSPBase& b) {
  for (int i = 0; i < b.featureFunctions.count; ++i) {
    for (int j = i + 1; j < b.featureFunctions.count; ++j) {
      if (Feature(b, i).IsSame(Feature(b, j))) return true;
    }
  }
  return false;
}

// A base of `count` random features over 6 raw values, with some history.
void RandomBase(VelqaSPBase& b, int count, const FListP<VelqaSPFunction*>& pool) {
  for (int k = 0; k < count; ++k) {
    VelqaSPFunction f;
    f.GenerateRandomly(6, pool);
    b.AddFeatureFunction(f);
  }
  b.SetSize(32, 6);
  for (int s = 0; s < 40; ++s) {
    const double raw[6] = {s * 0.1, std::sin(s * 1.0), 1.0, -2.0 + s % 3, 0.5, s % 2 * 1.0};
    b.AddMemory(raw);
  }
}

TEST(VelqaSPBaseEvolutionTest, EncodeThenDecodeRebuildsTheSameFeaturesOnAnEmptyMemory) {
  srand(31);
  FListP<VelqaSPFunction*> pool;
  VelqaSPBase b;
  RandomBase(b, 5, pool);
  Feature(b, 2).discrete = 1;
  VelqaSPFunction prediction(Feature(b, 0));
  b.AddPredictionFunction(prediction);
  const VelqaSPBase original(b);
  const double raw[6] = {1, 2, 3, 4, 5, 6};
  for (int s = 0; s < 3; ++s) b.AddMemory(raw);

  FListT<double> code;
  b.EncodeFeature(code);
  b.DecodeFeature(code.data, code.count);
  ASSERT_EQ(5, b.featureFunctions.count);
  for (int i = 0; i < 5; ++i) {
    EXPECT_TRUE(Feature(b, i).IsSame(**original.featureFunctions[i]));
    EXPECT_EQ((**original.featureFunctions[i]).weight, Feature(b, i).weight);
  }
  EXPECT_EQ(-Feature(b, 2).weight, b.distanceWeights[2]);
  EXPECT_EQ(1, b.predictionFunctions.count);
  EXPECT_EQ(0u, b.storedCount);

  b.DecodeFeature(code.data, 0);
  EXPECT_EQ(0, b.featureFunctions.count);
  EXPECT_EQ(1, b.predictionFunctions.count);
}

TEST(VelqaSPBaseEvolutionTest, FeatureSpreadIsThePopulationDeviationOverStoredSteps) {
  VelqaSPBase b;
  AddSelect(b, 0);
  AddSelect(b, 1);
  b.SetSize(4, 2);
  EXPECT_TRUE(std::isnan(b.GetFeatureStDev(0)));
  for (double v : {9.0, 1.0, 2.0, 3.0, 4.0}) {  // 9 falls out of the ring
    const double raw[2] = {v, 5.0};
    b.AddMemory(raw);
  }
  EXPECT_EQ(std::sqrt(1.25), b.GetFeatureStDev(0));
  EXPECT_EQ(0.0, b.GetFeatureStDev(1));
}

TEST(VelqaSPBaseEvolutionTest, OptimizeFeatureOrderSortsBySpreadDescendingAndStably) {
  // Spreads 1, 3, 3, 2 for the features reading elements 0, 1, 2, 3.
  VelqaSPBase b;
  for (int e = 0; e < 4; ++e) AddSelect(b, e, 10.0 + e);
  b.SetSize(8, 4);
  for (int s = 0; s < 6; ++s) {
    const double sign = s % 2 == 0 ? 1.0 : -1.0;
    const double raw[4] = {sign, 3 * sign, -3 * sign, 2 * sign};
    b.AddMemory(raw);
  }
  b.OptimizeFeatureOrder();
  const int expected[] = {1, 2, 3, 0};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(expected[i], Feature(b, i).Operator(0).inputs[0]);
    EXPECT_EQ(10.0 + expected[i], b.distanceWeights[i]);  // the weight table follows
  }
  EXPECT_EQ(0u, b.storedCount);
}

TEST(VelqaSPBaseEvolutionTest, LevelZeroModifiesExactlyOneExistingFunction) {
  FListP<VelqaSPFunction*> pool;
  for (unsigned seed = 1; seed <= 30; ++seed) {
    srand(seed);
    VelqaSPBase b;
    RandomBase(b, 4, pool);
    const VelqaSPBase before(b);
    b.Mutate(0, pool);
    ASSERT_EQ(4, b.featureFunctions.count);
    // Level 0 is also the function's own mutation level: only a weight moves.
    int changed = 0;
    for (int i = 0; i < 4; ++i) {
      const VelqaSPFunction& was = **before.featureFunctions[i];
      EXPECT_TRUE(Feature(b, i).IsSame(was));
      if (Feature(b, i).weight != was.weight) ++changed;
    }
    EXPECT_EQ(1, changed) << seed;
    EXPECT_EQ(0u, b.storedCount);
  }
}

TEST(VelqaSPBaseEvolutionTest, ASingleFeatureIsNeverRemoved) {
  FListP<VelqaSPFunction*> pool;
  for (unsigned seed = 1; seed <= 60; ++seed) {
    srand(seed);
    VelqaSPBase b;
    RandomBase(b, 1, pool);
    b.Mutate(1, pool);
    EXPECT_GE(b.featureFunctions.count, 1);
  }
}

TEST(VelqaSPBaseEvolutionTest, MutationNeverLeavesTwoIdenticalChains) {
  srand(41);
  FListP<VelqaSPFunction*> pool;
  VelqaSPFunction* shared = new VelqaSPFunction;
  shared->GenerateRandomly(6, pool);
  pool.Add(new VelqaSPFunction*(shared));
  VelqaSPBase b;
  RandomBase(b, 3, pool);
  for (int step = 0; step < 150; ++step) {
    b.Mutate(1 + step % 2, pool);
    ASSERT_FALSE(HasDuplicates(b)) << step;
    ASSERT_GE(b.featureFunctions.count, 1);
  }
  delete shared;
}

TEST(VelqaSPBaseEvolutionTest, MutateMarksTheOperatorsSharedWithThePool) {
  srand(43);
  FListP<VelqaSPFunction*> empty;
  VelqaSPFunction* shared = new VelqaSPFunction;
  do {
    shared->GenerateRandomly(6, empty);
  } while (shared->OperatorCount() < 2);
  FListP<VelqaSPFunction*> pool;
  pool.Add(new VelqaSPFunction*(shared));

  VelqaSPBase b;
  VelqaSPFunction grown;
  grown.GenerateRandomly(6, pool);  // the pool member's chain and more
  grown.fixedCount = 0;
  b.AddFeatureFunction(grown);
  AddSelect(b, 0);
  b.SetSize(8, 6);
  b.Mutate(0, pool);
  EXPECT_EQ(shared->OperatorCount(), Feature(b, 0).fixedCount);
  EXPECT_EQ(0, Feature(b, 1).fixedCount);
  for (int k = 0; k < shared->OperatorCount(); ++k) {
    EXPECT_TRUE(Feature(b, 0).Operator(k).IsSame(shared->Operator(k)));
  }
  delete shared;
}

TEST(VelqaSPBaseEvolutionTest, AChangeThatCreatesADuplicateIsUndone) {
  // Two identical chains: adding keeps them and is always undone; only a
  // change to one of the pair, or removing one, can stand.
  FListP<VelqaSPFunction*> pool;
  for (unsigned seed = 1; seed <= 40; ++seed) {
    srand(seed);
    VelqaSPBase b;
    RandomBase(b, 1, pool);
    VelqaSPFunction twin(Feature(b, 0));
    b.AddFeatureFunction(twin);
    b.Mutate(1, pool);
    EXPECT_LE(b.featureFunctions.count, 2) << seed;
    EXPECT_FALSE(HasDuplicates(b)) << seed;
  }
}

}  // namespace
}  // namespace vorn
