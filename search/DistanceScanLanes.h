// The scan loop of DistanceScan, written once for any lane width.
//
// Include it only from a DistanceScan*.cc file, after that file's
// instruction-set settings: everything here has internal linkage, so each
// file gets its own copy compiled for its own instruction set and no copy is
// shared with code that runs on processors without that set.
//
// A lane policy V provides: kWidth, the register type Vec, Zero, Set1,
// Broadcast, Sub, Mul, Add, Mismatch(d, w) (-w where |d| > 1e-5, else +0.0,
// per lane),
// NotAbove(D, T) (bit k set when lane k has D <= T; NaN gives 0), Store, and
// Load2(p, step, i, x0, x1) / Load1(p, step, i) (features i and i + 1, or i
// alone, of the rows p + k * step, one row per lane k).
//
// Adding +0.0 for a feature that does not count leaves every sum the scan
// can meet unchanged (sums are +0.0, positive, +inf or NaN), so the vector
// mismatch term may add it where the scalar one adds nothing.
#ifndef KEZ_SEARCH_DISTANCESCANLANES_H_
#define KEZ_SEARCH_DISTANCESCANLANES_H_

#include <cstddef>
#include <cstdint>

#include "search/DistanceScan.h"

namespace vorn {
namespace {

const double kMismatchLimit = 1e-5;  // |d| above it is a mismatch

// One lane: the plain version, also the tail of the vector versions.
struct ScalarLanes {
  static const int kWidth = 1;
  typedef double Vec;
  static Vec Zero() { return 0.0; }
  static Vec Set1(double v) { return v; }
  static Vec Broadcast(const double* p) { return *p; }
  static Vec Sub(Vec a, Vec b) { return a - b; }
  static Vec Mul(Vec a, Vec b) { return a * b; }
  static Vec Add(Vec a, Vec b) { return a + b; }
  static Vec Mismatch(Vec d, Vec w) {
    const Vec magnitude = d < 0 ? -d : d;
    return magnitude > kMismatchLimit ? -w : 0.0;
  }
  static unsigned NotAbove(Vec d, Vec t) { return d <= t ? 1u : 0u; }
  static void Store(double* out, Vec v) { out[0] = v; }
  static void Load2(const double* p, std::ptrdiff_t, int i, Vec& x0, Vec& x1) {
    x0 = p[i];
    x1 = p[i + 1];
  }
  static Vec Load1(const double* p, std::ptrdiff_t, int i) { return p[i]; }
};

// Adds feature term (m, i) for every lane: `x` holds the candidates'
// values, `now` points at the present value, `w` at the weight, `kind` is
// the weight's kind (kScanSquare, kScanMismatch or kScanNothing).
//
// d is formed as x - now: exactly the negative of now - x (subtraction is
// correctly rounded, and rounding to nearest is symmetric), so d * d and |d|
// are the same bits as with now - x.
template <class V>
inline typename V::Vec AddTerm(typename V::Vec D, typename V::Vec x, const double* now,
                               const double* w, uint8_t kind) {
  typedef typename V::Vec Vec;
  if (kind == kScanSquare) {
    const Vec d = V::Sub(x, V::Broadcast(now));
    return V::Add(D, V::Mul(V::Mul(d, d), V::Broadcast(w)));
  }
  if (kind == kScanMismatch) {
    const Vec d = V::Sub(x, V::Broadcast(now));
    return V::Add(D, V::Mismatch(d, V::Broadcast(w)));
  }
  return D;  // a NaN weight adds nothing
}

// Scans the candidates j .. end - 1 in groups of kWidth (end - j a multiple
// of it). A group whose rows are not one contiguous run of the ring (it
// straddles the ring's wrap) is scanned one candidate at a time.
template <class V>
void ScanGroups(const DistanceScanTask& t, NeighbourRanking& ranking, int j, int end) {
  typedef typename V::Vec Vec;
  const int W = V::kWidth;
  const int F = t.features;
  const int q = t.queryLength;
  const int S = t.stride;
  // Lane k of a group reads the row one slot older than lane k - 1.
  const std::ptrdiff_t step = -static_cast<std::ptrdiff_t>(F);
  // Features added before the first test of each row: the first two (in the
  // battery model the day phase, which decides most candidates at once).
  const int head = F < 2 ? F : 2;
  for (; j < end; j += W) {
    unsigned alive = 0;
    for (int k = 0; k < W; ++k) alive |= (t.examined[j + k] != 0 ? 1u : 0u) << k;
    if (alive == 0) continue;
    const double* const* group = t.rows + t.firstAge + j;  // group[a]: age firstAge + j + a
    const std::ptrdiff_t last = W - 1 + q - 1;  // oldest age of the group's window, relative
    if (W > 1 && reinterpret_cast<std::uintptr_t>(group[0]) -
                         reinterpret_cast<std::uintptr_t>(group[last]) !=
                     static_cast<std::uintptr_t>(last * F) * sizeof(double)) {
      ScanGroups<ScalarLanes>(t, ranking, j, j + W);
      continue;
    }
    const double bound = ranking.bound;
    // A bound that is not >= 0 (never the case: distances are >= 0) would
    // stop every later examination, as it never rises.
    if (!(bound >= 0)) return;
    const Vec T = V::Set1(bound);
    Vec D = V::Zero();
    for (int l = 0, m = 0; l < q; l += S, ++m) {
      const double* now = t.rows[l];
      const double* w = t.weights + static_cast<std::ptrdiff_t>(m) * F;
      const uint8_t* kind = t.kinds + static_cast<std::ptrdiff_t>(m) * F;
      const double* p = group[l];  // lane k: p + k * step
      int i = 0;
      if (head == 2) {
        Vec x0, x1;
        V::Load2(p, step, 0, x0, x1);
        D = AddTerm<V>(D, x0, now, w, kind[0]);
        D = AddTerm<V>(D, x1, now + 1, w + 1, kind[1]);
        i = 2;
      } else if (head == 1) {
        D = AddTerm<V>(D, V::Load1(p, step, 0), now, w, kind[0]);
        i = 1;
      }
      alive &= V::NotAbove(D, T);
      if (alive == 0) break;
      for (; i + 2 <= F; i += 2) {
        Vec x0, x1;
        V::Load2(p, step, i, x0, x1);
        D = AddTerm<V>(D, x0, now + i, w + i, kind[i]);
        D = AddTerm<V>(D, x1, now + i + 1, w + i + 1, kind[i + 1]);
      }
      if (i < F) D = AddTerm<V>(D, V::Load1(p, step, i), now + i, w + i, kind[i]);
    }
    if (alive == 0) continue;
    double d[W];
    V::Store(d, D);
    for (int k = 0; k < W; ++k) {
      // The bound may have fallen since the group began: test each lane
      // against the bound at its own turn.
      if (((alive >> k) & 1u) != 0 && d[k] <= ranking.bound) ranking.Insert(d[k], -(j + k));
    }
  }
}

// The whole scan: groups of V's width, the rest one by one.
template <class V>
void ScanAll(const DistanceScanTask& t, NeighbourRanking& ranking) {
  const int grouped = t.candidates - t.candidates % V::kWidth;
  ScanGroups<V>(t, ranking, 0, grouped);
  ScanGroups<ScalarLanes>(t, ranking, grouped, t.candidates);
}

}  // namespace
}  // namespace vorn

#endif  // KEZ_SEARCH_DISTANCESCANLANES_H_
