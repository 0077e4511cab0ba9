// Test and benchmark support, not part of the library: the neighbour search
// written the plain way, one candidate after the other, the reference that
// VelqaSPBase::Search must match to the last bit.
//
// StraightforwardSearch is the memory base's search as it was first
// written: candidates newest first, each distance summed term by term in
// the fixed order (lag row by lag row, feature by feature), a candidate
// dropped after a complete lag row whose partial sum is above the bound,
// the result kept sorted by insertion.
//
// FullScanSearch is the same without any early abandon: every eligible
// candidate's full distance, then the ranking (a peer in the benchmarks).
//
// Both read the memory only through its public members and write only the
// search scratch (lagRows) and their own outputs.
#ifndef KEZ_SEARCH_TESTING_STRAIGHTFORWARDSEARCH_H_
#define KEZ_SEARCH_TESTING_STRAIGHTFORWARDSEARCH_H_

#include <cmath>
#include <cstdint>
#include <vector>

#include "search/VelqaSPBase.h"

namespace vorn {
namespace testing {

struct PlainRanking {
  std::vector<double> distance;
  std::vector<int> index;
  unsigned capacity;
  double bound = 1e307;

  explicit PlainRanking(unsigned k) : capacity(k) {}

  void Insert(double d, int i) {
    const int K = static_cast<int>(capacity);
    int pos = static_cast<int>(distance.size());
    if (pos < K) {
      distance.push_back(0.0);
      index.push_back(0);
    }
    while (pos > 0 && distance[pos - 1] > d) {
      if (pos < K) {
        distance[pos] = distance[pos - 1];
        index[pos] = index[pos - 1];
      }
      --pos;
    }
    if (pos < K) {
      distance[pos] = d;
      index[pos] = i;
    }
    if (static_cast<int>(distance.size()) == K) bound = distance[K - 1];
  }

  void Deliver(int& count, int* idx, double* dist) const {
    count = static_cast<int>(distance.size());
    for (int k = 0; k < count; ++k) {
      if (idx != nullptr) idx[k] = index[k];
      if (dist != nullptr) dist[k] = distance[k];
    }
  }
};

inline bool ValidAge(VelqaSPBase& b, int age) { return b.GetRAWBuffer(-age)[0] <= 1e306; }

// The window distance of candidate age c; with `abandon`, returns as soon as
// a complete lag row (not the last) leaves the sum above `bound` (the
// returned partial sum is then above it too). Kept out of line so that the
// sum stays in a register (inlined into a large caller, compilers have been
// seen to keep it in memory, which triples the time of the loop).
__attribute__((noinline)) inline double WindowDistance(const VelqaSPBase& b, int q, int c, double bound, bool abandon) {
  const int F = b.featureFunctions.count;
  const int S = b.lagStride < 1 ? 1 : b.lagStride;
  double D = 0;
  for (int m = 0, l = 0; l < q; ++m, l += S) {
    const double* now = b.lagRows[l];
    const double* then = b.lagRows[c + l];
    const double* w = b.distanceWeights + static_cast<int64_t>(m) * F;
    for (int i = 0; i < F; ++i) {
      const double d = now[i] - then[i];
      const double wi = w[i];
      if (wi >= 0) {
        D += wi * (d * d);
      } else if (wi < 0) {
        if (std::fabs(d) > 1e-5) D += -wi;
      }
    }
    if (abandon && l < q - S && D > bound) return D;
  }
  return D;
}

inline void PlainSearch(VelqaSPBase& b, int futureSteps, int& count, int* index, double* distance,
                        bool abandon) {
  count = 0;
  const int N = static_cast<int>(b.storedCount);
  const int O = b.searchOffset;
  const int L = b.lagCount;
  if (N - O <= L || O < 0 || b.neighbourMax == 0 || b.rawBuffer == nullptr) return;
  int q = 0;
  while (q < L && q < N && ValidAge(b, q)) ++q;
  for (int a = 0; a < N; ++a) b.lagRows[a] = b.GetFeatureBuffer(-a);
  if (q == 0 || N - O < q) return;
  std::vector<char> valid(static_cast<size_t>(N));
  for (int a = 0; a < N; ++a) valid[a] = ValidAge(b, a) ? 1 : 0;
  PlainRanking ranking(b.neighbourMax);
  int run = 0;
  for (int j = 0; j <= N - O - q; ++j) {
    const int c = O + j;
    if (run >= futureSteps && ranking.bound >= 0) {
      const double D = WindowDistance(b, q, c, ranking.bound, abandon);
      if (D <= ranking.bound) ranking.Insert(D, -j);
    }
    run = valid[c] ? run + 1 : 0;
  }
  ranking.Deliver(count, index, distance);
}

inline void StraightforwardSearch(VelqaSPBase& b, int futureSteps, int& count, int* index,
                                  double* distance) {
  PlainSearch(b, futureSteps, count, index, distance, true);
}

inline void FullScanSearch(VelqaSPBase& b, int futureSteps, int& count, int* index,
                           double* distance) {
  PlainSearch(b, futureSteps, count, index, distance, false);
}

}  // namespace testing
}  // namespace vorn

#endif  // KEZ_SEARCH_TESTING_STRAIGHTFORWARDSEARCH_H_
