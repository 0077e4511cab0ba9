// The scan with two candidates per SSE2 register (x86-64, where SSE2 is part
// of the base instruction set). Elsewhere it runs the scalar version.
#include "search/DistanceScan.h"

#if defined(__x86_64__) || defined(_M_X64)
#include <emmintrin.h>

#include "search/DistanceScanLanes.h"
#define KEZ_SCAN_SSE2 1
#endif

namespace vorn {

#if defined(KEZ_SCAN_SSE2)
namespace {

struct Sse2Lanes {
  static const int kWidth = 2;
  typedef __m128d Vec;
  static Vec Zero() { return _mm_setzero_pd(); }
  static Vec Set1(double v) { return _mm_set1_pd(v); }
  static Vec Broadcast(const double* p) { return _mm_load1_pd(p); }
  static Vec Sub(Vec a, Vec b) { return _mm_sub_pd(a, b); }
  static Vec Mul(Vec a, Vec b) { return _mm_mul_pd(a, b); }
  static Vec Add(Vec a, Vec b) { return _mm_add_pd(a, b); }
  static Vec Mismatch(Vec d, Vec w) {
    const Vec sign = _mm_set1_pd(-0.0);
    const Vec magnitude = _mm_andnot_pd(sign, d);
    return _mm_and_pd(_mm_cmpgt_pd(magnitude, _mm_set1_pd(kMismatchLimit)), _mm_xor_pd(w, sign));
  }
  static unsigned NotAbove(Vec d, Vec t) {
    return static_cast<unsigned>(_mm_movemask_pd(_mm_cmple_pd(d, t)));
  }
  static void Store(double* out, Vec v) { _mm_storeu_pd(out, v); }
  static void Load2(const double* p, std::ptrdiff_t step, int i, Vec& x0, Vec& x1) {
    const Vec a = _mm_loadu_pd(p + i);         // lane 0: features i, i + 1
    const Vec b = _mm_loadu_pd(p + step + i);  // lane 1
    x0 = _mm_unpacklo_pd(a, b);
    x1 = _mm_unpackhi_pd(a, b);
  }
  static Vec Load1(const double* p, std::ptrdiff_t step, int i) {
    return _mm_loadh_pd(_mm_load_sd(p + i), p + step + i);
  }
};

}  // namespace

void ScanDistancesSse2(const DistanceScanTask& task, NeighbourRanking& ranking) {
  ScanAll<Sse2Lanes>(task, ranking);
}

#else

void ScanDistancesSse2(const DistanceScanTask& task, NeighbourRanking& ranking) {
  ScanDistancesScalar(task, ranking);
}

#endif

}  // namespace vorn
