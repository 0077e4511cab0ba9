// Compares VelqaSPBase::Search and kNNSearch with a plain reference on random
// histories: wrapped rings, gaps, discrete features, quantised values (many
// ties), strides, offsets and decays.
//
// The reference reads the memory only through the public getters, computes
// every candidate's full distance (no early abandon, no running bound), and
// ranks by a stable sort. That the real search's early abandon and sorted
// insertion select the same neighbours in the same order with bit-identical
// distances is what this test holds it to; a faster search must pass it
// unchanged.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "search/VelqaSPBase.h"

namespace vorn {
namespace {

struct Neighbour {
  double distance;
  int index;
  bool operator==(const Neighbour& o) const { return distance == o.distance && index == o.index; }
};

std::ostream& operator<<(std::ostream& os, const Neighbour& n) {
  return os << "(" << n.distance << ", " << n.index << ")";
}

bool Valid(VelqaSPBase& b, int age) { return b.GetRAWBuffer(-age)[0] <= 1e306; }

std::vector<Neighbour> KBest(std::vector<Neighbour> all, unsigned k) {
  std::stable_sort(all.begin(), all.end(),
                   [](const Neighbour& x, const Neighbour& y) { return x.distance < y.distance; });
  if (all.size() > k) all.resize(k);
  return all;
}

std::vector<Neighbour> ReferenceSearch(VelqaSPBase& b, int futureSteps) {
  const int N = static_cast<int>(b.storedCount);
  const int O = b.searchOffset;
  const int L = b.lagCount;
  const int S = b.lagStride;
  const int F = b.featureFunctions.count;
  if (N - O <= L) return {};
  int q = 0;
  while (q < L && Valid(b, q)) ++q;
  if (q == 0) return {};
  std::vector<Neighbour> all;
  for (int j = 0; j <= N - O - q; ++j) {
    const int c = O + j;
    // The futureSteps steps that followed the candidate are stored and valid.
    bool followed = true;
    for (int t = 1; t <= futureSteps; ++t) {
      if (c - t < O || !Valid(b, c - t)) followed = false;
    }
    if (!followed) continue;
    double D = 0;
    for (int m = 0; m * S < q; ++m) {
      const int l = m * S;
      const double* now = b.GetFeatureBuffer(-l);
      const double* then = b.GetFeatureBuffer(-(c + l));
      for (int i = 0; i < F; ++i) {
        const double d = now[i] - then[i];
        const double w = b.distanceWeights[m * F + i];
        if (w >= 0) {
          D += w * (d * d);
        } else if (std::fabs(d) > 1e-5) {
          D += -w;
        }
      }
    }
    if (D <= 1e307) all.push_back({D, -j});
  }
  return KBest(all, b.neighbourMax);
}

std::vector<Neighbour> ReferenceKnn(VelqaSPBase& b, const double* query) {
  const int N = static_cast<int>(b.storedCount);
  const int O = b.searchOffset;
  const int L = b.lagCount;
  const int F = b.featureFunctions.count;
  if (N - O <= L) return {};
  std::vector<Neighbour> all;
  for (int j = 0; j <= N - O - L; ++j) {
    const double* row = b.GetFeatureBuffer(-(O + j));
    double D = 0;
    for (int i = 0; i < F; ++i) {
      const double d = query[i] - row[i];
      D += b.distanceWeights[i] * (d * d);
    }
    if (D <= 1e307) all.push_back({D, -j});
  }
  return KBest(all, b.neighbourMax);
}

std::vector<Neighbour> RealSearch(VelqaSPBase& b, int futureSteps) {
  std::vector<int> index(b.neighbourMax);
  std::vector<double> distance(b.neighbourMax);
  int count = 0;
  b.Search(futureSteps, count, index.data(), distance.data());
  std::vector<Neighbour> r;
  for (int k = 0; k < count; ++k) r.push_back({distance[k], index[k]});
  return r;
}

std::vector<Neighbour> RealKnn(VelqaSPBase& b, const double* query) {
  std::vector<int> index(b.neighbourMax);
  std::vector<double> distance(b.neighbourMax);
  int count = 0;
  b.kNNSearch(query, count, index.data(), distance.data());
  std::vector<Neighbour> r;
  for (int k = 0; k < count; ++k) r.push_back({distance[k], index[k]});
  return r;
}

void AddFunction(VelqaSPBase& b, int kind, int input, double weight, int discrete) {
  VelqaSPOperator op;
  op.kind = kind;
  op.inputs.Add(input);
  op.SetOutputDim(1);
  if (kind == 0x320) op.doubleParams.Add(0.3);
  VelqaSPFunction f;
  f.AddOperator(op);
  f.weight = weight;
  f.discrete = discrete;
  b.AddFeatureFunction(f);
}

TEST(SearchReferenceTest, SearchAndKnnMatchTheReferenceOnRandomHistories) {
  std::mt19937 rng(20240611);
  auto pick = [&rng](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
  int compared = 0;
  int nonEmpty = 0;
  for (int trial = 0; trial < 240; ++trial) {
    VelqaSPBase b;
    AddFunction(b, 0x200, 0, 1.0, 0);
    AddFunction(b, 0x200, 1, pick(1, 3) * 0.5, 0);
    AddFunction(b, 0x300, 0, 2.0, 0);
    AddFunction(b, 0x200, 2, 3.0, 1);  // compared by mismatch
    if (pick(0, 1)) AddFunction(b, 0x320, 1, 0.25, 0);
    const int M = pick(8, 60);
    b.SetSize(M, 3);
    b.ClearBuf();
    b.lagCount = pick(1, 6);
    b.lagStride = pick(1, 3);
    b.neighbourMax = static_cast<uint32_t>(pick(1, 9));
    const double decays[] = {1.0, 0.95, 0.5};
    b.lagDecay = decays[pick(0, 2)];
    b.searchOffset = pick(0, 3) == 0 ? pick(1, 3) : 0;
    b.AllocBuf();

    const int levels = pick(2, 4);  // few distinct values: many exact ties
    const int gapOdds = pick(0, 3) == 0 ? 0 : pick(4, 25);
    const int steps = pick(1, 3 * M);
    for (int s = 0; s < steps; ++s) {
      double raw[3];
      if (gapOdds != 0 && pick(1, gapOdds) == 1) {
        raw[0] = raw[1] = raw[2] = 1e307;
      } else {
        raw[0] = pick(0, levels - 1) * 0.25;
        raw[1] = pick(0, levels);
        raw[2] = pick(0, 1) == 0 ? 0.0 : (pick(0, 1) ? 1e-5 : 1.0);
      }
      b.AddMemory(raw);
      if (s % 7 != 6 && s != steps - 1) continue;
      const int futureSteps = pick(-1, 6);
      const std::vector<Neighbour> expected = ReferenceSearch(b, futureSteps);
      ASSERT_EQ(expected, RealSearch(b, futureSteps))
          << "trial " << trial << " step " << s << " futureSteps " << futureSteps;
      ASSERT_EQ(expected, RealSearch(b, futureSteps));  // a second run gives the same
      ++compared;
      if (!expected.empty()) ++nonEmpty;

      const double* query = b.GetFeatureBuffer(-pick(0, static_cast<int>(b.storedCount) - 1));
      ASSERT_EQ(ReferenceKnn(b, query), RealKnn(b, query)) << "trial " << trial << " step " << s;
    }
  }
  EXPECT_GT(nonEmpty, compared / 3);  // the comparisons are not mostly trivial
}

}  // namespace
}  // namespace vorn
