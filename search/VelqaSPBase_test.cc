// Memory base: the ring, gaps, configuration, copies and the search's rules
// on small hand-made histories. VelqaSPBaseReference_test.cc compares the search
// with a brute-force reference on random histories.
#include "search/VelqaSPBase.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>
#include <vector>

namespace vorn {
namespace {

const double kGap = 2e306;

void Append(VelqaSPFunction& f, int kind, int input) {
  VelqaSPOperator op;
  op.kind = kind;
  op.inputs.Add(input);
  op.SetOutputDim(1);
  f.AddOperator(op);
}

void AddSelect(VelqaSPBase& b, int element, double weight = 1.0, int discrete = 0) {
  VelqaSPFunction f;
  Append(f, 0x200, element);
  f.weight = weight;
  f.discrete = discrete;
  b.AddFeatureFunction(f);
}

void AddDifferential(VelqaSPBase& b, int element) {
  VelqaSPFunction f;
  Append(f, 0x300, element);
  b.AddFeatureFunction(f);
}

void Tune(VelqaSPBase& b, int lagCount, int neighbourMax, double decay = 1.0, int stride = 1) {
  b.ClearBuf();
  b.lagCount = lagCount;
  b.lagStride = stride;
  b.neighbourMax = static_cast<uint32_t>(neighbourMax);
  b.lagDecay = decay;
  b.AllocBuf();
}

// One feature that selects raw[0]; `values` are fed oldest first.
void OneFeature(VelqaSPBase& b, int lagCount, int neighbourMax,
                std::initializer_list<double> values, double weight = 1.0, int discrete = 0,
                double decay = 1.0) {
  AddSelect(b, 0, weight, discrete);
  b.SetSize(64, 1);
  Tune(b, lagCount, neighbourMax, decay);
  for (double v : values) b.AddMemory(&v);
}

using Result = std::vector<std::pair<double, int>>;  // (distance, index), best first

Result Search(VelqaSPBase& b, int futureSteps) {
  std::vector<int> index(b.neighbourMax + 1, 99);
  std::vector<double> distance(b.neighbourMax + 1, -1.0);
  int count = -1;
  b.Search(futureSteps, count, index.data(), distance.data());
  Result r;
  for (int k = 0; k < count; ++k) r.emplace_back(distance[k], index[k]);
  EXPECT_EQ(99, index[count]);  // nothing written past the result
  return r;
}

Result Knn(VelqaSPBase& b, std::initializer_list<double> query) {
  std::vector<int> index(b.neighbourMax);
  std::vector<double> distance(b.neighbourMax);
  int count = -1;
  b.kNNSearch(query.begin(), count, index.data(), distance.data());
  Result r;
  for (int k = 0; k < count; ++k) r.emplace_back(distance[k], index[k]);
  return r;
}

TEST(VelqaSPBaseTest, WeightTableDecaysPerComparedLagAndNegatesDiscreteFeatures) {
  VelqaSPBase b;
  AddSelect(b, 0, 2.0);
  AddSelect(b, 1, 3.0, 1);
  b.SetSize(16, 2);
  Tune(b, 5, 4, 0.5, 2);  // lags 0, 2, 4: three rows
  const double expected[] = {2.0, -3.0, 1.0, -1.5, 0.5, -0.75};
  for (int k = 0; k < 6; ++k) EXPECT_EQ(expected[k], b.distanceWeights[k]) << k;

  // A stride below 1 is taken as 1 instead of never ending the row loop.
  Tune(b, 3, 4, 0.5, 0);
  EXPECT_EQ(1, b.lagStride);
  EXPECT_EQ(-0.75, b.distanceWeights[5]);
  Tune(b, 3, 4, 0.5, -4);
  EXPECT_EQ(1, b.lagStride);
}

TEST(VelqaSPBaseTest, RingWrapsAfterMemorySizeSteps) {
  VelqaSPBase b;
  AddSelect(b, 1);
  b.SetSize(4, 2);
  for (int i = 0; i < 5; ++i) {
    const double raw[] = {static_cast<double>(i), 10.0 + i};
    b.AddMemory(raw);
  }
  EXPECT_EQ(4u, b.storedCount);
  EXPECT_EQ(1u, b.writePos);
  EXPECT_EQ(4.0, b.GetRAWBuffer(0)[0]);
  EXPECT_EQ(14.0, b.GetFeatureBuffer(0)[0]);
  EXPECT_EQ(3.0, b.GetRAWBuffer(-1)[0]);
  EXPECT_EQ(1.0, b.GetRAWBuffer(-3)[0]);  // the oldest stored step
  EXPECT_EQ(11.0, b.GetFeatureBuffer(-3)[0]);
  EXPECT_EQ(1.0, b.GetRAWBuffer(1)[0]);  // the slot the next step overwrites
}

TEST(VelqaSPBaseTest, GapIsStoredButFunctionsReadTheLastValidRecordAndRestart) {
  VelqaSPBase b;
  AddSelect(b, 0);
  AddDifferential(b, 0);
  VelqaSPFunction prediction;
  Append(prediction, 0x300, 1);
  b.AddPredictionFunction(prediction);
  b.SetSize(8, 2);
  for (double v : {1.0, 3.0, kGap, 10.0, 11.0}) {
    const double raw[] = {v, v * 2};
    b.AddMemory(raw);
  }
  EXPECT_EQ(kGap, b.GetRAWBuffer(-2)[0]);
  EXPECT_EQ(3.0, b.GetFeatureBuffer(-2)[0]);   // the held record
  EXPECT_EQ(0.0, b.GetFeatureBuffer(-2)[1]);   // 3 - 3
  EXPECT_EQ(0.0, b.GetFeatureBuffer(-1)[1]);   // restarted after the gap
  EXPECT_EQ(1.0, b.GetFeatureBuffer(0)[1]);
  EXPECT_EQ(0.0, b.GetPredictionBuffer(-1)[0]);
  EXPECT_EQ(2.0, b.GetPredictionBuffer(0)[0]);
  EXPECT_EQ(11.0, b.rawInput[0]);
}

TEST(VelqaSPBaseTest, ConfigurationChangesAndResetEmptyTheMemory) {
  VelqaSPBase b;
  AddDifferential(b, 0);
  b.SetSize(8, 1);
  for (double v : {1.0, 2.0}) b.AddMemory(&v);
  EXPECT_EQ(2u, b.storedCount);

  b.ResetValue();
  EXPECT_EQ(0u, b.storedCount);
  EXPECT_EQ(0u, b.writePos);
  double v = 7.0;
  b.AddMemory(&v);
  EXPECT_EQ(0.0, b.GetFeatureBuffer(0)[0]);  // the differential restarted

  AddSelect(b, 0);
  EXPECT_EQ(0u, b.storedCount);
  b.AddMemory(&v);
  b.SetSize(8, 1);
  EXPECT_EQ(0u, b.storedCount);
  b.AddMemory(&v);
  Tune(b, 2, 3);
  EXPECT_EQ(0u, b.storedCount);
}

TEST(VelqaSPBaseTest, CopiesAreIndependent) {
  VelqaSPBase b;
  AddSelect(b, 0, 2.0);
  AddDifferential(b, 0);
  b.SetSize(6, 1);
  Tune(b, 2, 3, 0.9);
  b.searchOffset = 1;
  for (double v : {5.0, 1.0, 4.0, 2.0, 6.0, 3.0, 1.5, 4.5}) b.AddMemory(&v);

  VelqaSPBase copy(b);
  EXPECT_EQ(b.storedCount, copy.storedCount);
  EXPECT_EQ(b.writePos, copy.writePos);
  EXPECT_EQ(1, copy.searchOffset);
  EXPECT_EQ(0.9, copy.lagDecay);
  EXPECT_NE(b.featureFunctions[0], copy.featureFunctions[0]);
  for (int a = 0; a > -6; --a) EXPECT_EQ(b.GetFeatureBuffer(a)[1], copy.GetFeatureBuffer(a)[1]);
  EXPECT_EQ(Search(b, 1), Search(copy, 1));

  // The copy's functions start without history; the original keeps its own.
  double v = 10.0;
  copy.AddMemory(&v);
  b.AddMemory(&v);
  EXPECT_EQ(0.0, copy.GetFeatureBuffer(0)[1]);
  EXPECT_EQ(5.5, b.GetFeatureBuffer(0)[1]);
  copy.AddMemory(&v);
  EXPECT_EQ(10.0, b.GetRAWBuffer(0)[0]);
  EXPECT_EQ(4.5, b.GetRAWBuffer(-1)[0]);

  VelqaSPBase assigned;
  AddSelect(assigned, 0);
  assigned = b;
  EXPECT_EQ(2, assigned.featureFunctions.count);
  EXPECT_EQ(Search(b, 0), Search(assigned, 0));
  assigned = assigned;
  EXPECT_EQ(2, assigned.featureFunctions.count);
}

TEST(VelqaSPBaseTest, CopyTakesLagCountTimesPredictionCountWeightsAsTheyStand) {
  // Two features, one prediction function, two lags: the copy takes the
  // first 2 x 1 weights from the source, the rest are its own.
  VelqaSPBase b;
  AddSelect(b, 0, 2.0);
  AddSelect(b, 0, 3.0);
  VelqaSPFunction p;
  Append(p, 0x200, 0);
  b.AddPredictionFunction(p);
  b.SetSize(4, 1);
  Tune(b, 2, 2);
  for (int k = 0; k < 4; ++k) b.distanceWeights[k] = 99.0;
  VelqaSPBase copy(b);
  EXPECT_EQ(99.0, copy.distanceWeights[0]);
  EXPECT_EQ(99.0, copy.distanceWeights[1]);
  EXPECT_EQ(2.0, copy.distanceWeights[2]);
  EXPECT_EQ(3.0, copy.distanceWeights[3]);

  // More prediction than feature functions: the copy stops at the table's
  // own L x F values.
  VelqaSPBase wide;
  AddSelect(wide, 0, 2.0);
  for (int k = 0; k < 3; ++k) wide.AddPredictionFunction(p);
  wide.SetSize(4, 1);
  Tune(wide, 2, 2);
  wide.distanceWeights[0] = wide.distanceWeights[1] = 7.0;
  VelqaSPBase wideCopy(wide);
  EXPECT_EQ(7.0, wideCopy.distanceWeights[0]);
  EXPECT_EQ(7.0, wideCopy.distanceWeights[1]);
}

TEST(VelqaSPBaseTest, SearchNeedsMoreThanLagCountStoredSteps) {
  VelqaSPBase b;
  OneFeature(b, 2, 8, {1.0, 2.0});
  EXPECT_TRUE(Search(b, 0).empty());
  double v = 4.0;
  b.AddMemory(&v);
  // N = L + 1: the present itself (index 0) and one more candidate.
  EXPECT_EQ((Result{{0.0, 0}, {5.0, -1}}), Search(b, 0));
  EXPECT_EQ((Result{{5.0, -1}}), Search(b, 1));  // nothing follows index 0
  EXPECT_TRUE(Search(b, 2).empty());
  EXPECT_EQ(Search(b, 0), Search(b, -3));
}

TEST(VelqaSPBaseTest, SearchWithTheNewestStepAGapFindsNothing) {
  VelqaSPBase b;
  OneFeature(b, 1, 8, {1.0, 2.0, 3.0, kGap});
  EXPECT_TRUE(Search(b, 0).empty());
}

TEST(VelqaSPBaseTest, GapInsideTheQueryWindowShortensTheQuery) {
  // Features by age: 2, 1, 3 (the gap holds the record before it), 3, 4, 5.
  // Only ages 0 and 1 are compared; the second lag row weighs 0.5.
  VelqaSPBase b;
  OneFeature(b, 3, 8, {5.0, 4.0, 3.0, kGap, 1.0, 2.0}, 1.0, 0, 0.5);
  EXPECT_EQ((Result{{0.0, 0}, {3.0, -1}, {3.0, -2}, {5.5, -3}, {12.0, -4}}), Search(b, 0));
}

TEST(VelqaSPBaseTest, CandidatesNeedFutureStepsOfValidHistory) {
  // Ages: 0:0 1:10 2:1 3:2 4:gap (holds the older 0) 5:0 6:0.
  VelqaSPBase b;
  OneFeature(b, 1, 8, {0.0, 0.0, kGap, 2.0, 1.0, 10.0, 0.0});
  // Index 0 and -1 lack two following steps; -5 and -6 are followed by the
  // gap; the gap step itself is a candidate (its own validity is not tested).
  EXPECT_EQ((Result{{0.0, -4}, {1.0, -2}, {4.0, -3}}), Search(b, 2));
  EXPECT_EQ((Result{{0.0, 0}, {0.0, -4}, {0.0, -5}, {0.0, -6}, {1.0, -2}, {4.0, -3}, {100.0, -1}}),
            Search(b, 0));
}

TEST(VelqaSPBaseTest, TiesKeepTheNewerCandidateAndAFullListRefusesATie) {
  // Distances by index: -1: 4, -2: 1, -3: 4, -4: 1.
  VelqaSPBase b;
  OneFeature(b, 1, 2, {-1.0, 2.0, 1.0, 2.0, 0.0});
  EXPECT_EQ((Result{{1.0, -2}, {1.0, -4}}), Search(b, 1));
  Tune(b, 1, 3);
  for (double v : {-1.0, 2.0, 1.0, 2.0, 0.0}) b.AddMemory(&v);
  EXPECT_EQ((Result{{1.0, -2}, {1.0, -4}, {4.0, -1}}), Search(b, 1));
  Tune(b, 1, 1);
  for (double v : {1.0, 2.0, 1.0, 2.0, 1.0}) b.AddMemory(&v);
  EXPECT_EQ((Result{{0.0, -2}}), Search(b, 1));
}

TEST(VelqaSPBaseTest, DiscreteFeatureCountsMismatchesInSearchAndSubtractsInKnn) {
  // Ages: 0:0 1:1e-5 2:2e-5 3:1000. Weight 5, compared by mismatch.
  VelqaSPBase b;
  OneFeature(b, 1, 8, {1000.0, 2e-5, 1e-5, 0.0}, 5.0, 1);
  EXPECT_EQ(-5.0, b.distanceWeights[0]);
  EXPECT_EQ((Result{{0.0, 0}, {0.0, -1}, {5.0, -2}, {5.0, -3}}), Search(b, 0));

  const double d1 = -1e-5, d2 = -2e-5, d3 = -1000.0;
  const Result expected{
      {-5.0 * (d3 * d3), -3}, {-5.0 * (d2 * d2), -2}, {-5.0 * (d1 * d1), -1}, {0.0, 0}};
  EXPECT_EQ(expected, Knn(b, {0.0}));
}

TEST(VelqaSPBaseTest, KnnComparesOneRowAndLeavesTheOldestLagsOut) {
  VelqaSPBase b;
  OneFeature(b, 2, 2, {7.0, 1.0, 3.0, 6.0, 0.0}, 2.0);
  // Candidates are ages 0 .. N - L = 3; the best two for query 2.5.
  EXPECT_EQ((Result{{0.5, -2}, {4.5, -3}}), Knn(b, {2.5}));
  Tune(b, 2, 8);
  for (double v : {7.0, 1.0, 3.0, 6.0, 0.0}) b.AddMemory(&v);
  EXPECT_EQ((Result{{0.5, -2}, {4.5, -3}, {12.5, 0}, {24.5, -1}}), Knn(b, {2.5}));
  Tune(b, 5, 8);
  for (double v : {7.0, 1.0, 3.0, 6.0, 0.0}) b.AddMemory(&v);
  EXPECT_TRUE(Knn(b, {2.5}).empty());
}

TEST(VelqaSPBaseTest, SearchOffsetSkipsTheNewestCandidates) {
  VelqaSPBase b;
  OneFeature(b, 1, 8, {3.0, 2.0, 1.0, 0.0});
  b.searchOffset = 1;
  // Candidates at ages 1, 2, 3 with indices 0, -1, -2.
  EXPECT_EQ((Result{{1.0, 0}, {4.0, -1}, {9.0, -2}}), Search(b, 0));
  b.searchOffset = -1;
  EXPECT_TRUE(Search(b, 0).empty());
}

TEST(VelqaSPBaseTest, NullOutputsAreSkipped) {
  VelqaSPBase b;
  OneFeature(b, 1, 8, {3.0, 2.0, 1.0, 0.0});
  int count = 0;
  b.Search(0, count, nullptr, nullptr);
  EXPECT_EQ(4, count);
  const double query[] = {0.0};
  b.kNNSearch(query, count, nullptr, nullptr);
  EXPECT_EQ(4, count);
}

}  // namespace
}  // namespace vorn
