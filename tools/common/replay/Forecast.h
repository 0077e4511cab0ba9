// A forecast as the tools use it: up to three variants of the same number of
// 10-minute steps, made by the instance exactly as the exported forecast
// functions make them, with the moment they start from and what the search
// found.
//
// Step k (from 0) is at start_ms + (k + 1) x 10 minutes, where start_ms is
// the time of the last report fed to the instance.
#ifndef KEZ_TOOLS_COMMON_REPLAY_FORECAST_H_
#define KEZ_TOOLS_COMMON_REPLAY_FORECAST_H_

#include <cstdint>
#include <string>
#include <vector>

#include "Replayer.h"
#include "adaptive/AdaptiveForecaster.h"
#include "interface/KEZ.h"
#include "kez/kez.h"

namespace kez_tools {

enum Variant { kFree = 0, kNoCharge = 1, kCharge = 2, kVariantCount = 3 };

// "free", "nocharge", "charge" (option and machine names).
const char* VariantName(int variant);
// "free", "not charged", "plugged in now" (for people).
const char* VariantTitle(int variant);

struct Forecast {
  int64_t start_ms = 0;     // time of the last report
  double level_now = 0;     // its level, percent
  bool charging_now = false;
  int steps = 0;
  bool has[kVariantCount] = {false, false, false};
  std::vector<stMobilePowerPredictionData> records[kVariantCount];
  double distance = 100.0;  // element 0's distance
  int similar_moments = 0;  // 0: extrapolated from the running rates
  // Made by the adaptive forecaster: per variant, the weights with which
  // each step's level combined the methods, step-major
  // (weights[v][k * kez::adaptive::kMethodCount + method]).
  bool adaptive = false;
  std::vector<double> weights[kVariantCount];

  int64_t StepTime(int k) const { return start_ms + (k + 1) * kStepMs; }
  bool learned() const { return similar_moments > 0; }
};

// Forecasts `steps` steps of the wanted variants with `instance`, whose last
// report was at `start_ms` carrying `last`: free (chargingMode -1), not
// charged (0 for 144 steps), plugged in now (1 for 144 steps), as
// kez_predict and its two variants do. False with *error when the instance
// refuses.
bool MakeForecast(kez::KEZ& instance, int steps, const bool wanted[3],
                  int64_t start_ms, const LogSample& last, Forecast* forecast,
                  std::string* error);
// The same with the adaptive forecaster: its forecasts of the wanted
// variants and the weights they were combined with; what the search found
// is its instance's.
bool MakeAdaptiveForecast(kez::adaptive::AdaptiveForecaster& adaptive,
                          int steps, const bool wanted[3], int64_t start_ms,
                          const LogSample& last, Forecast* forecast,
                          std::string* error);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_REPLAY_FORECAST_H_
