// CombinationRule: how the scored errors of the methods become their
// weights.
//
// For each method m allowed by the mask, the error it is judged by is its
// forgetting mean shrunk towards a prior error:
//     e_m = (sum_m + n0 x prior_m) / (weight_m + n0)
// where sum_m and weight_m come from the scorebook and n0 (priorWeight) is
// how many scored forecasts the prior is worth. With nothing scored yet the
// prior decides alone (the cold start); after many scored forecasts the
// user's own errors do. Errors below kErrorFloor count as kErrorFloor, so a
// method that was right by chance does not take all the weight.
//
// The weight of m is e_m ^ -power, normalised so that the weights sum to 1:
// power 0 is a plain average, a large power follows the leader.
//
// Example (hand-checkable): errors 0.02 and 0.04, no prior (n0 = 0), power
// 2: raw weights 2500 and 625, normalised 0.8 and 0.2.
#ifndef KEZ_ADAPTIVE_COMBINATIONRULE_H_
#define KEZ_ADAPTIVE_COMBINATIONRULE_H_

#include "adaptive/ForecastMethod.h"
#include "adaptive/ForecastScorebook.h"

namespace kez {
namespace adaptive {

constexpr double kErrorFloor = 0.001;

struct CombinationSettings {
  double power = 8.0;
  double priorWeight = 24.0;
};

// cells[m] and prior[m] for m = 0 .. kMethodCount - 1; writes weights[m]
// for every m (0 outside `mask`). An empty mask gives all zeros.
void CombineWeights(const ErrorCell* cells, const double* prior,
                    MethodMask mask, const CombinationSettings& settings,
                    double* weights);

}  // namespace adaptive
}  // namespace kez

#endif  // KEZ_ADAPTIVE_COMBINATIONRULE_H_
