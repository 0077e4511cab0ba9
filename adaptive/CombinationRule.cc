#include "adaptive/CombinationRule.h"

#include <cmath>

namespace kez {
namespace adaptive {

namespace {

// x ^ -power. A whole power up to 64 is formed by multiplications alone
// (exactly rounded on every machine, so the weights are bit-identical on
// x86-64 and arm64); any other power falls back on the library's pow.
double InversePower(double x, double power) {
  if (power >= 0.0 && power <= 64.0 &&
      power == static_cast<double>(static_cast<int>(power))) {
    int n = static_cast<int>(power);
    double result = 1.0, base = x;
    while (n > 0) {
      if (n & 1) result *= base;
      base *= base;
      n >>= 1;
    }
    return 1.0 / result;
  }
  return std::pow(x, -power);
}

}  // namespace

void CombineWeights(const ErrorCell* cells, const double* prior,
                    MethodMask mask, const CombinationSettings& settings,
                    double* weights) {
  double total = 0.0;
  for (int m = 0; m < kMethodCount; ++m) {
    weights[m] = 0.0;
    if ((mask & Bit(m)) == 0) continue;
    const double n0 = settings.priorWeight;
    const double denominator = cells[m].weight + n0;
    double error = denominator > 0.0
                       ? (cells[m].sum + n0 * prior[m]) / denominator
                       : prior[m];
    if (!(error >= kErrorFloor)) error = kErrorFloor;  // also NaN
    weights[m] = InversePower(error, settings.power);
    total += weights[m];
  }
  if (!(total > 0.0) || !std::isfinite(total)) {
    for (int m = 0; m < kMethodCount; ++m) weights[m] = 0.0;
    return;
  }
  for (int m = 0; m < kMethodCount; ++m) weights[m] /= total;
}

}  // namespace adaptive
}  // namespace kez
