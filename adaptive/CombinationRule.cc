#include "adaptive/CombinationRule.h"

#include <cmath>

namespace kez {
namespace adaptive {

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
    weights[m] = std::pow(error, -settings.power);
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
