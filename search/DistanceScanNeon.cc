// The scan with two candidates per NEON register (arm64, where NEON and
// its double-precision lanes are always there). Elsewhere it runs the
// scalar version.
#include "search/DistanceScan.h"

#if defined(__aarch64__)
#include <arm_neon.h>

#include "search/DistanceScanLanes.h"
#define KEZ_SCAN_NEON 1
#endif

namespace vorn {

#if defined(KEZ_SCAN_NEON)
namespace {

struct NeonLanes {
  static const int kWidth = 2;
  typedef float64x2_t Vec;
  static Vec Zero() { return vdupq_n_f64(0.0); }
  static Vec Set1(double v) { return vdupq_n_f64(v); }
  static Vec Broadcast(const double* p) { return vld1q_dup_f64(p); }
  static Vec Sub(Vec a, Vec b) { return vsubq_f64(a, b); }
  static Vec Mul(Vec a, Vec b) { return vmulq_f64(a, b); }
  static Vec Add(Vec a, Vec b) { return vaddq_f64(a, b); }
  static Vec Mismatch(Vec d, Vec w) {
    const uint64x2_t differs = vcagtq_f64(d, vdupq_n_f64(kMismatchLimit));  // |d| > 1e-5
    return vreinterpretq_f64_u64(vandq_u64(differs, vreinterpretq_u64_f64(vnegq_f64(w))));
  }
  static unsigned NotAbove(Vec d, Vec t) {
    const uint64x2_t le = vcleq_f64(d, t);
    return static_cast<unsigned>((vgetq_lane_u64(le, 0) & 1u) | ((vgetq_lane_u64(le, 1) & 1u) << 1));
  }
  static void Store(double* out, Vec v) { vst1q_f64(out, v); }
  static void Load2(const double* p, std::ptrdiff_t step, int i, Vec& x0, Vec& x1) {
    const Vec a = vld1q_f64(p + i);         // lane 0: features i, i + 1
    const Vec b = vld1q_f64(p + step + i);  // lane 1
    x0 = vzip1q_f64(a, b);
    x1 = vzip2q_f64(a, b);
  }
  static Vec Load1(const double* p, std::ptrdiff_t step, int i) {
    return vcombine_f64(vld1_f64(p + i), vld1_f64(p + step + i));
  }
};

}  // namespace

void ScanDistancesNeon(const DistanceScanTask& task, NeighbourRanking& ranking) {
  ScanAll<NeonLanes>(task, ranking);
}

#else

void ScanDistancesNeon(const DistanceScanTask& task, NeighbourRanking& ranking) {
  ScanDistancesScalar(task, ranking);
}

#endif

}  // namespace vorn
