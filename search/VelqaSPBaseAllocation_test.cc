// Proves that a configured memory base does not allocate on its run-time
// path, with the counting operator new of tests/support/CountingAllocator.h.
//
// What is allowed, exactly: a gap record resets every function, which
// releases the history block of each stateful operator; at the next step each
// such operator grows its history once more (one block). So the step that
// follows a gap, and the first step after configuration, allocate exactly
// one block per stateful operator; every other step allocates nothing, and
// Search and kNNSearch never allocate.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <new>

#include "search/VelqaSPBase.h"
#include "support/CountingAllocator.h"

namespace vorn {
namespace {

long Counted(void (*body)(void*), void* arg) {
  const long before = kez_testing::heap.blocks;
  body(arg);
  return kez_testing::heap.blocks - before;
}

VelqaSPOperator Op(int kind, int input) {
  VelqaSPOperator op;
  op.kind = kind;
  op.inputs.Add(input);
  op.SetOutputDim(1);
  return op;
}

void AddFeature(VelqaSPBase& b, int element, double weight, int secondKind = 0, int discrete = 0) {
  VelqaSPFunction f;
  VelqaSPOperator first = Op(secondKind ? 0x300 : 0x200, element);
  f.AddOperator(first);
  if (secondKind) {
    VelqaSPOperator second = Op(secondKind, 0);
    f.AddOperator(second);
  }
  f.weight = weight;
  f.discrete = discrete;
  b.AddFeatureFunction(f);
}

// The battery model's 14 features over a 12-value record, plus a smoothed
// prediction function: three stateful operators in all.
const int kStatefulOperators = 3;

void Configure(VelqaSPBase& b) {
  for (int e = 0; e < 4; ++e) AddFeature(b, e, e < 2 ? 277.0 : 1.68);
  AddFeature(b, 4, 50.0);
  AddFeature(b, 4, 900.0, 0x130);  // rise
  AddFeature(b, 4, 900.0, 0x140);  // fall
  for (int e = 5; e < 11; ++e) AddFeature(b, e, 3.0);
  AddFeature(b, 4, 2.0, 0, 1);     // level, compared by mismatch
  VelqaSPFunction smooth;
  VelqaSPOperator filter = Op(0x320, 4);
  filter.doubleParams.Add(0.2);
  smooth.AddOperator(filter);
  b.AddPredictionFunction(smooth);
  b.SetSize(600, 12);
  b.ClearBuf();
  b.lagCount = 16;
  b.lagStride = 1;
  b.neighbourMax = 16;
  b.lagDecay = 0.95;
  b.AllocBuf();
}

struct Step {
  VelqaSPBase* base;
  double raw[12];
};

void AddStep(void* arg) {
  Step* s = static_cast<Step*>(arg);
  s->base->AddMemory(s->raw);
}

struct Query {
  VelqaSPBase* base;
  int futureSteps;
  int count;
  int index[16];
  double distance[16];
};

void RunSearch(void* arg) {
  Query* q = static_cast<Query*>(arg);
  q->base->Search(q->futureSteps, q->count, q->index, q->distance);
}

void RunKnn(void* arg) {
  Query* q = static_cast<Query*>(arg);
  q->base->kNNSearch(q->base->GetFeatureBuffer(0), q->count, q->index, q->distance);
}

TEST(SearchAllocTest, OnlyTheStepAfterAGapRegrowsOperatorHistories) {
  VelqaSPBase b;
  Configure(b);
  Step step{&b, {}};
  Query query{&b, 0, 0, {}, {}};
  bool previousWasGap = true;  // the first step after configuration
  int gaps = 0, searches = 0, found = 0;
  long steadyAllocations = 0;
  for (int t = 0; t < 4000; ++t) {
    const bool gap = t % 173 == 50 || t % 173 == 51 || t % 401 == 7;  // some gaps come in pairs
    const double day = t / 144.0;
    for (double& v : step.raw) v = 1e307;
    if (!gap) {
      step.raw[0] = std::sin(day * 6.2831852);
      step.raw[1] = std::cos(day * 6.2831852);
      step.raw[2] = std::sin(day / 7 * 6.2831852);
      step.raw[3] = std::cos(day / 7 * 6.2831852);
      step.raw[4] = 0.5 + 0.4 * std::sin(day * 6.2831852 * 1.3);
      for (int c = 5; c < 12; ++c) step.raw[c] = std::fmod(t * 0.37 * c, 1.0);
    }
    const long allocations = Counted(AddStep, &step);
    ASSERT_EQ(previousWasGap ? kStatefulOperators : 0, allocations) << "step " << t;
    if (!previousWasGap) steadyAllocations += allocations;
    previousWasGap = gap;
    if (gap) ++gaps;

    if (t % 10 == 9) {
      query.futureSteps = t % 20 == 9 ? 144 : 6;
      ASSERT_EQ(0, Counted(RunSearch, &query)) << "search at step " << t;
      ASSERT_EQ(0, Counted(RunKnn, &query)) << "kNN search at step " << t;
      ++searches;
      if (query.count > 0) ++found;
    }
  }
  EXPECT_EQ(0, steadyAllocations);
  EXPECT_GT(gaps, 20);
  EXPECT_EQ(400, searches);
  EXPECT_GT(found, 100);  // the searches did real work
  EXPECT_EQ(600u, b.storedCount);
}

}  // namespace
}  // namespace vorn
