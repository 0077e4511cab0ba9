#include "Forecast.h"

namespace kez_tools {

const char* VariantName(int variant) {
  static const char* const kNames[kVariantCount] = {"free", "nocharge",
                                                    "charge"};
  return kNames[variant];
}

const char* VariantTitle(int variant) {
  static const char* const kTitles[kVariantCount] = {"free", "not charged",
                                                     "plugged in now"};
  return kTitles[variant];
}

bool MakeForecast(kez_handle handle, int steps, const bool wanted[3],
                  int64_t start_ms, const LogSample& last, Forecast* forecast,
                  std::string* error) {
  using Predict = int (*)(kez_handle, int, stMobilePowerPredictionData*);
  static const Predict kPredict[kVariantCount] = {
      kez_predict, kez_predict_without_charging,
      kez_predict_at_charging_starting};
  Forecast f;
  f.start_ms = start_ms;
  f.level_now = last.level_percent;
  f.charging_now = last.charging > 0.5;
  f.steps = steps;
  bool distance_set = false;
  for (int v = 0; v < kVariantCount; ++v) {
    if (!wanted[v]) continue;
    f.records[v].assign(steps > 0 ? steps : 1, stMobilePowerPredictionData{});
    int rc = kPredict[v](handle, steps, f.records[v].data());
    if (rc != 1) {
      *error = std::string("the ") + VariantTitle(v) +
               " forecast failed (result " + std::to_string(rc) + ")";
      return false;
    }
    f.has[v] = true;
    if (!distance_set) {
      f.distance = f.records[v][0].distance;
      distance_set = true;
    }
  }
  f.similar_moments = kez_similar_moments(handle, steps);
  if (f.similar_moments < 0) {
    *error = "the forecaster has no instance";
    return false;
  }
  *forecast = std::move(f);
  return true;
}

}  // namespace kez_tools
