// The scan with four candidates per AVX2 register (x86-64). This file is
// compiled for AVX2 (without FMA) and is only entered when the processor has
// AVX2 (see DistanceScan.cc). Elsewhere it runs the scalar version.
#include <cstddef>
#include <cstdint>

#include "search/DistanceScan.h"
#include "search/NeighbourRanking.h"

#if (defined(__x86_64__) || defined(_M_X64)) && (defined(__GNUC__) || defined(__clang__))
#include <immintrin.h>
// Everything below, the shared scan loop included, is compiled for AVX2.
#define KEZ_SCAN_AVX2 1
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2")
#endif
#include "search/DistanceScanLanes.h"
#endif

namespace vorn {

#if defined(KEZ_SCAN_AVX2)
namespace {

struct Avx2Lanes {
  static const int kWidth = 4;
  typedef __m256d Vec;
  static Vec Zero() { return _mm256_setzero_pd(); }
  static Vec Set1(double v) { return _mm256_set1_pd(v); }
  static Vec Broadcast(const double* p) { return _mm256_broadcast_sd(p); }
  static Vec Sub(Vec a, Vec b) { return _mm256_sub_pd(a, b); }
  static Vec Mul(Vec a, Vec b) { return _mm256_mul_pd(a, b); }
  static Vec Add(Vec a, Vec b) { return _mm256_add_pd(a, b); }
  static Vec Mismatch(Vec d, Vec w) {
    const Vec sign = _mm256_set1_pd(-0.0);
    const Vec magnitude = _mm256_andnot_pd(sign, d);
    return _mm256_and_pd(_mm256_cmp_pd(magnitude, _mm256_set1_pd(kMismatchLimit), _CMP_GT_OQ),
                         _mm256_xor_pd(w, sign));
  }
  static unsigned NotAbove(Vec d, Vec t) {
    return static_cast<unsigned>(_mm256_movemask_pd(_mm256_cmp_pd(d, t, _CMP_LE_OQ)));
  }
  static void Store(double* out, Vec v) { _mm256_storeu_pd(out, v); }
  static void Load2(const double* p, std::ptrdiff_t step, int i, Vec& x0, Vec& x1) {
    // a = lanes 0 and 2, b = lanes 1 and 3, each (feature i, feature i + 1).
    const Vec a = _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_loadu_pd(p + i)),
                                       _mm_loadu_pd(p + 2 * step + i), 1);
    const Vec b = _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_loadu_pd(p + step + i)),
                                       _mm_loadu_pd(p + 3 * step + i), 1);
    x0 = _mm256_unpacklo_pd(a, b);
    x1 = _mm256_unpackhi_pd(a, b);
  }
  static Vec Load1(const double* p, std::ptrdiff_t step, int i) {
    return _mm256_set_pd(p[3 * step + i], p[2 * step + i], p[step + i], p[i]);
  }
};

}  // namespace

void ScanDistancesAvx2(const DistanceScanTask& task, NeighbourRanking& ranking) {
  ScanAll<Avx2Lanes>(task, ranking);
}

#else

void ScanDistancesAvx2(const DistanceScanTask& task, NeighbourRanking& ranking) {
  ScanDistancesScalar(task, ranking);
}

#endif

}  // namespace vorn

#if defined(KEZ_SCAN_AVX2)
#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif
#endif
