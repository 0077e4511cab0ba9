// Benchmark support: how much arithmetic a search does.
//
// fullTerms: the terms (one subtraction, two multiplications, one addition
// each) that a scan of every examined candidate without early abandon adds
// up: candidates x compared lags x features.
//
// terms: the terms a scan actually computes. With `rowEnd` false, the
// schedule of search/DistanceScanLanes.h with `width` candidates per
// register (1 = scalar): a test after the first two features of each lag
// row, a group stops when all its lanes are beyond the bound. With `rowEnd`
// true, the straightforward search's: one candidate at a time, a test after
// each complete lag row but the last. Counted on the same memory (groups
// that straddle the ring's wrap are counted as full groups).
#ifndef KEZ_BENCH_SCAN_WORK_H_
#define KEZ_BENCH_SCAN_WORK_H_

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "search/VelqaSPBase.h"

namespace kez_bench {

struct ScanWork {
  long candidates = 0;  // examined
  long fullTerms = 0;   // without early abandon
  long terms = 0;       // computed by the scan, lanes included
};

inline ScanWork CountScanWork(vorn::VelqaSPBase& b, int futureSteps, int width,
                              bool rowEnd = false) {
  ScanWork work;
  const int N = static_cast<int>(b.storedCount);
  const int L = b.lagCount;
  const int S = b.lagStride;
  const int F = b.featureFunctions.count;
  const int K = static_cast<int>(b.neighbourMax);
  auto valid = [&b](int age) { return b.GetRAWBuffer(-age)[0] <= 1e306; };
  int q = 0;
  while (q < L && valid(q)) ++q;
  if (q == 0 || N <= L) return work;
  const int n = N - q + 1;
  std::vector<char> examined(n);
  int run = 0;
  for (int j = 0; j < n; ++j) {
    examined[j] = run >= futureSteps;
    run = valid(j) ? run + 1 : 0;
    if (examined[j]) ++work.candidates;
  }
  const int rows = (q - 1) / S + 1;
  work.fullTerms = work.candidates * rows * F;
  std::vector<std::pair<double, int>> best;
  double bound = 1e307;
  std::vector<double> D(width);
  for (int j = 0; j + width <= n; j += width) {
    unsigned alive = 0;
    for (int k = 0; k < width; ++k) alive |= (examined[j + k] ? 1u : 0u) << k;
    if (alive == 0) continue;
    std::fill(D.begin(), D.end(), 0.0);
    for (int m = 0; m < rows && alive != 0; ++m) {
      const double* now = b.GetFeatureBuffer(-m * S);
      const double* w = b.distanceWeights + m * F;
      for (int i = 0; i < F; ++i) {
        if (!rowEnd && i == std::min(F, 2)) {
          for (int k = 0; k < width; ++k) {
            if (!(D[k] <= bound)) alive &= ~(1u << k);
          }
          if (alive == 0) break;
        }
        work.terms += width;
        for (int k = 0; k < width; ++k) {
          const double d = now[i] - b.GetFeatureBuffer(-(j + k + m * S))[i];
          if (w[i] >= 0) D[k] += w[i] * (d * d);
          else if (w[i] < 0 && std::fabs(d) > 1e-5) D[k] += -w[i];
        }
      }
      if (rowEnd && m < rows - 1 && !(D[0] <= bound)) alive = 0;
    }
    for (int k = 0; k < width; ++k) {
      if (((alive >> k) & 1u) == 0 || !(D[k] <= bound)) continue;
      best.push_back({D[k], j + k});
      std::stable_sort(best.begin(), best.end(),
                       [](const std::pair<double, int>& x, const std::pair<double, int>& y) {
                         return x.first < y.first;
                       });
      if (static_cast<int>(best.size()) > K) best.resize(K);
      if (static_cast<int>(best.size()) == K) bound = best.back().first;
    }
  }
  return work;
}

}  // namespace kez_bench

#endif  // KEZ_BENCH_SCAN_WORK_H_
