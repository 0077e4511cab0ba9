// PriorErrors: the errors the adaptive forecaster assumes for each method
// before it has scored any of its own (the cold start), per variant,
// situation and anchor horizon. They depend on the charging state at the
// start only (situation % 2): the parts of the day are in Unix time, which
// is a different time of day for every time zone. Where they come from is
// stated in PriorErrors.cc.
#ifndef KEZ_ADAPTIVE_PRIORERRORS_H_
#define KEZ_ADAPTIVE_PRIORERRORS_H_

#include "adaptive/AnchorHorizons.h"
#include "adaptive/ForecastMethod.h"
#include "adaptive/ForecastScorebook.h"

namespace kez {
namespace adaptive {

// kMethodCount mean absolute level errors (fractions).
const double* LevelPrior(int variant, int start, int anchor);
// kMethodCount Brier scores of the chance of charging (free forecast).
const double* ChargingPrior(int start, int anchor);

}  // namespace adaptive
}  // namespace kez

#endif  // KEZ_ADAPTIVE_PRIORERRORS_H_
