#include "table/Spline.h"

#include <cstddef>
#include <cstdint>

namespace {

// Element count for an array of `n` doubles, saturated so that an absurd
// knot count makes the allocator fail instead of wrapping the size.
std::size_t Slots(long long n) {
  const long long limit =
      static_cast<long long>(SIZE_MAX / sizeof(double) / 2);
  if (n < 0) return 0;
  if (n > limit) return static_cast<std::size_t>(limit);
  return static_cast<std::size_t>(n);
}

}  // namespace

Spline::Spline() {}

Spline::~Spline() { ClearFx(); }

void Spline::ClearFx() {
  if (segments != 0) {
    delete[] a;
    delete[] b;
    delete[] c;
    delete[] d;
    a = b = c = d = nullptr;
    segments = 0;
  }
  cursor = 0;
}

int Spline::Learn() {
  ClearFx();
  const int n = knots.count;
  if (n < 2) return 0;
  const int m = n - 1;
  segments = m;

  double* h = new double[Slots(m)];
  double* diag = new double[Slots(m)]();
  double* rhs = new double[Slots(m)]();
  double* mu = new double[Slots(m)];
  double* z = new double[Slots(m)];
  a = new double[Slots(static_cast<long long>(m) + 1)];
  b = new double[Slots(m)];
  c = new double[Slots(static_cast<long long>(m) + 1)];
  d = new double[Slots(m)];

  const SplineData_* k = knots.data;
  for (int i = 0; i <= m; ++i) a[i] = k[i].y;
  for (int i = 0; i < m; ++i) h[i] = k[i + 1].x - k[i].x;

  // Tridiagonal system of the interior knots.
  for (int i = 1; i < m; ++i) {
    const double twice = h[i] + h[i - 1];
    diag[i] = twice + twice;
    rhs[i] = 3.0 * ((a[i + 1] - a[i]) / h[i] - (a[i] - a[i - 1]) / h[i - 1]);
  }
  if (m >= 2) {
    mu[1] = h[1] / diag[1];
    z[1] = rhs[1] / diag[1];
    for (int i = 2; i < m; ++i) {
      mu[i] = h[i] / (diag[i] - h[i - 1] * mu[i - 1]);
      z[i] = (rhs[i] - h[i - 1] * z[i - 1]) / (diag[i] - h[i - 1] * mu[i - 1]);
    }
  }

  // Natural ends; with a single segment there is no interior knot and the
  // fit is the straight line through the two knots.
  for (int i = 0; i <= m; ++i) c[i] = 0.0;
  if (m >= 2) {
    c[m - 1] = z[m - 1];
    for (int j = m - 2; j >= 1; --j) c[j] = z[j] - mu[j] * c[j + 1];
  }

  for (int j = 0; j < m; ++j) {
    b[j] = (a[j + 1] - a[j]) / h[j] - h[j] * (c[j + 1] + 2.0 * c[j]) / 3.0;
    d[j] = (c[j + 1] - c[j]) / (3.0 * h[j]);
  }

  delete[] h;
  delete[] diag;
  delete[] rhs;
  delete[] mu;
  delete[] z;
  return 1;
}

double Spline::GetData(double x) {
  if (segments == 0) return 0.0;
  const SplineData_* k = knots.data;
  const int last = segments;  // index of the last fitted knot
  if (x <= k[0].x) return a[0];
  int i = cursor;
  for (;;) {
    if (i >= last) return a[last];
    if (k[i + 1].x < x) {
      ++i;
    } else if (k[i].x > x) {
      --i;
      if (i < 0) return a[last];
    } else {
      break;
    }
  }
  cursor = i;
  const double t = x - k[i].x;
  return a[i] + t * (b[i] + t * (c[i] + t * d[i]));
}
