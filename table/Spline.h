// Spline: a natural cubic interpolating spline through a list of knots.
//
// The caller fills `knots` (strictly increasing x), calls Learn() once and
// then reads values with GetData(). Segment i (knot i to knot i + 1) is
//   a[i] + t * (b[i] + t * (c[i] + t * d[i])),  t = x - x_i,
// with c = 0 at both ends. Two knots give the straight line through them.
// Outside the knots the spline is flat: y of the first knot to the left, y of
// the last knot to the right. GetData() starts its segment search at the
// segment where the previous evaluation ended (`cursor`), so evaluations at
// rising abscissae cost a constant number of steps each.
//
// Fewer than two knots: Learn() fits nothing and returns 0, and GetData()
// returns 0.0. Knots added after Learn() are not used until the next Learn().
// Not copyable (it owns its coefficient arrays).
#ifndef KEZ_TABLE_SPLINE_H_
#define KEZ_TABLE_SPLINE_H_

#include "foundation/FList.h"
#include "kez/export.h"
#include "table/SplineData.h"

class KEZ_EXPORT Spline {
 public:
  vorn::FListT<SplineData_> knots;  // filled by the caller; kept by ClearFx
  int segments = 0;  // fitted segments (knots - 1); 0 = no fit held
  int cursor = 0;    // segment where the last evaluation ended
  double* a = nullptr;  // segments + 1 values: y of each knot
  double* b = nullptr;  // segments linear coefficients
  double* c = nullptr;  // segments + 1 quadratic coefficients, c[0] = c[m] = 0
  double* d = nullptr;  // segments cubic coefficients

  Spline();
  Spline(const Spline&) = delete;
  Spline& operator=(const Spline&) = delete;
  virtual ~Spline();

  // Fits the coefficients to the current knots, discarding any earlier fit.
  // Returns 1, or 0 when there are fewer than 2 knots.
  int Learn();
  // Value of the fitted spline at `x`; moves the cursor.
  double GetData(double x);
  // Discards the fit (the knots stay) and resets the cursor.
  void ClearFx();
};

#endif  // KEZ_TABLE_SPLINE_H_
