// The eleven weights of a model as the tuner varies them.
//
// A weight is kept exactly as the parameter file stores it: SaveToFile
// prints six digits after the point, so every candidate is rounded to that
// before it is judged, and the model written at the end is the model that
// was measured. Magnitudes stay within [kWeightFloor, kWeightCeiling]: a
// table weight below 1e-5 in magnitude would drop its feature and shift the
// later ones, which breaks the forecast's reading of features by position.
// Signs are kept (a zero becomes +kWeightFloor).
#ifndef KEZ_TOOLS_KEZ_TUNE_WEIGHTVECTOR_H_
#define KEZ_TOOLS_KEZ_TUNE_WEIGHTVECTOR_H_

#include <array>

#include "predictor/MobilePowerPredictorParameter.h"

namespace kez_tools {

constexpr int kWeightCount = vorn::MobilePowerPredictorParameter::kWeightCount;
constexpr double kWeightFloor = 1e-5;
constexpr double kWeightCeiling = 1e6;

using Weights = std::array<double, kWeightCount>;

// `w` as the tuner may use it: clamped in magnitude, then rounded to six
// decimals as the parameter file writes it.
double StoredWeight(double w);

Weights WeightsOf(const vorn::MobilePowerPredictorParameter& parameter);
// `base` with its weights replaced; accuracy and integer settings kept.
vorn::MobilePowerPredictorParameter WithWeights(
    const vorn::MobilePowerPredictorParameter& base, const Weights& weights);

// What the weights weigh, for people: "day phase", "week phase", "level",
// ... (index 6 weighs both channel 2 and channel 3).
const char* WeightName(int index);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_TUNE_WEIGHTVECTOR_H_
