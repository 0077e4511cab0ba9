#include "WeightVector.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace kez_tools {

double StoredWeight(double w) {
  const double sign = std::signbit(w) && w != 0.0 ? -1.0 : 1.0;
  double m = std::fabs(w);
  if (!(m >= kWeightFloor)) m = kWeightFloor;  // also NaN
  if (m > kWeightCeiling) m = kWeightCeiling;
  char text[64];
  std::snprintf(text, sizeof text, "%f", m);
  m = std::strtod(text, nullptr);
  if (m < kWeightFloor) m = kWeightFloor;
  return sign * m;
}

Weights WeightsOf(const vorn::MobilePowerPredictorParameter& parameter) {
  Weights w;
  for (int i = 0; i < kWeightCount; ++i) w[i] = parameter.weight[i];
  return w;
}

vorn::MobilePowerPredictorParameter WithWeights(
    const vorn::MobilePowerPredictorParameter& base, const Weights& weights) {
  vorn::MobilePowerPredictorParameter p = base;
  for (int i = 0; i < kWeightCount; ++i) p.weight[i] = weights[i];
  return p;
}

const char* WeightName(int index) {
  static const char* const kNames[kWeightCount] = {
      "day phase",     "week phase",     "level",
      "level rise",    "level fall",     "charging",
      "aux1 and aux2", "aux3",           "count A (log)",
      "count B (log)", "level mismatch"};
  return index >= 0 && index < kWeightCount ? kNames[index] : "?";
}

}  // namespace kez_tools
