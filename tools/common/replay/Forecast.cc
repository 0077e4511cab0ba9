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

bool MakeForecast(kez::KEZ& instance, int steps, const bool wanted[3],
                  int64_t start_ms, const LogSample& last, Forecast* forecast,
                  std::string* error) {
  // chargingMode and holdSteps of each variant.
  static const int kMode[kVariantCount][2] = {{-1, 0}, {0, 144}, {1, 144}};
  if (instance.impl == nullptr || instance.impl->predictor == nullptr) {
    *error = "the forecaster has no instance";
    return false;
  }
  Forecast f;
  f.start_ms = start_ms;
  f.level_now = last.level_percent;
  f.charging_now = last.charging > 0.5;
  f.steps = steps;
  bool distance_set = false;
  for (int v = 0; v < kVariantCount; ++v) {
    if (!wanted[v]) continue;
    f.records[v].assign(steps > 0 ? steps : 1, stMobilePowerPredictionData{});
    int rc = instance.predict(steps, f.records[v].data(), kMode[v][0],
                              kMode[v][1]);
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
  instance.impl->predictor->Search(steps, f.similar_moments, nullptr, nullptr);
  *forecast = std::move(f);
  return true;
}

bool MakeAdaptiveForecast(kez::adaptive::AdaptiveForecaster& adaptive,
                          int steps, const bool wanted[3], int64_t start_ms,
                          const LogSample& last, Forecast* forecast,
                          std::string* error) {
  // The tools' variants are the adaptive forecaster's, in the same order.
  static_assert(static_cast<int>(kFree) == kez::adaptive::kFree &&
                    static_cast<int>(kNoCharge) == kez::adaptive::kNotCharged &&
                    static_cast<int>(kCharge) == kez::adaptive::kPluggedIn,
                "variant numbers");
  kez::KEZ& instance = adaptive.instance();
  if (instance.impl == nullptr || instance.impl->predictor == nullptr) {
    *error = "the forecaster has no instance";
    return false;
  }
  Forecast f;
  f.start_ms = start_ms;
  f.level_now = last.level_percent;
  f.charging_now = last.charging > 0.5;
  f.steps = steps;
  f.adaptive = true;
  bool distance_set = false;
  constexpr int kMethods = kez::adaptive::kMethodCount;
  for (int v = 0; v < kVariantCount; ++v) {
    if (!wanted[v]) continue;
    f.records[v].assign(steps > 0 ? steps : 1, stMobilePowerPredictionData{});
    const int rc = adaptive.Predict(v, steps, f.records[v].data());
    if (rc != 1) {
      *error = std::string("the adaptive ") + VariantTitle(v) +
               " forecast failed (result " + std::to_string(rc) + ")";
      return false;
    }
    f.has[v] = true;
    f.weights[v].assign(static_cast<size_t>(steps) * kMethods, 0.0);
    if (steps > 0) adaptive.WeightPath(v, 0, steps, f.weights[v].data());
    if (!distance_set) {
      f.distance = f.records[v][0].distance;
      distance_set = true;
    }
  }
  instance.impl->predictor->Search(steps, f.similar_moments, nullptr, nullptr);
  *forecast = std::move(f);
  return true;
}

}  // namespace kez_tools
