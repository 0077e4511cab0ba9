#include "foundation/Random.h"

#include <cmath>
#include <cstdlib>

namespace vorn {

int rand_int() { return rand(); }

double rand_double() {
  return std::fmod(static_cast<double>(static_cast<unsigned>(rand())), 2147483648.0) /
         2147483647.0;
}

}  // namespace vorn

float gauss_rand() {
  // Exactly 2^-31 as a float.
  const float kScale = 4.656612873077393e-10f;
  float sum = static_cast<float>(rand()) * kScale + -6.0f;
  for (int i = 0; i < 11; ++i) sum += static_cast<float>(rand()) * kScale;
  return sum;
}

double gauss(double m, double s, double x) {
  // sqrt(2 * 3.1415926): built on the shortened pi on purpose.
  const double kRootTwoPi = 2.5066282532517663;
  double e = ((x - m) * (x - m)) / ((s * -2) * s);
  if (e > 10.0) e = 10.0;  // a NaN exponent stays NaN
  return (1 / (s * kRootTwoPi)) * std::exp(e);
}
