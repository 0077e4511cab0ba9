// MobilePowerPredictionData: one step of a battery forecast.
//
// Step s (from 0) is the 10-minute step that follows the newest stored step
// by s. `level` is the forecast level as a fraction, always clamped to
// 0.0 .. 1.0; `charging` the forecast charging state, 0.0 .. 1.0 (with
// similar past moments: the weighted share of them that were charging).
// `distance` is written in element 0 only: (100 + the sum of the neighbour
// distances) / (neighbours + 1), 100.0 when the forecast is an extrapolation;
// every other element holds 0.0. The layout equals the C record
// stMobilePowerPredictionData, which is filled from it field by field.
#ifndef KEZ_PREDICTOR_MOBILEPOWERPREDICTIONDATA_H_
#define KEZ_PREDICTOR_MOBILEPOWERPREDICTIONDATA_H_

#include "kez/export.h"

namespace vorn {

class KEZ_EXPORT MobilePowerPredictionData {
 public:
  double level = 0.0;
  double charging = 0.0;
  double distance = 0.0;
};

}  // namespace vorn

#endif  // KEZ_PREDICTOR_MOBILEPOWERPREDICTIONDATA_H_
