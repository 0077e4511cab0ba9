// The exported C functions of the adaptive forecaster: thin, exception-proof
// wrappers around kez::adaptive::AdaptiveForecaster. Every function catches
// everything; a failure inside ends as the function's "nothing done" result.
#include <cstdio>
#include <cstring>
#include <new>

#include "adaptive/AdaptiveForecaster.h"
#include "adaptive/ForecastMethod.h"
#include "adaptive/HostReportLine.h"
#include "kez/kez.h"

// The opaque handle is the forecaster itself.
struct kez_adaptive {
  kez::adaptive::AdaptiveForecaster forecaster;
};

extern "C" {

kez_adaptive* kez_adaptive_init(void) {
  try {
    return new kez_adaptive();
  } catch (...) {
    return nullptr;
  }
}

int kez_adaptive_report(kez_adaptive* a, uint64_t timeMs, float levelPercent,
                        float charging, float aux1, float aux2, float aux3,
                        double countA, double countB1, double countB2) {
  if (a == nullptr) return -1;
  try {
    kez::adaptive::HostReport r;
    r.timeMs = timeMs;
    r.levelPercent = levelPercent;
    r.charging = charging;
    r.aux1 = aux1;
    r.aux2 = aux2;
    r.aux3 = aux3;
    r.countA = countA;
    r.countB1 = countB1;
    r.countB2 = countB2;
    return a->forecaster.Report(r);
  } catch (...) {
    return 0;
  }
}

int kez_adaptive_report_line(kez_adaptive* a, const char* line) {
  if (a == nullptr) return -1;
  if (line == nullptr) return 0;
  try {
    kez::adaptive::HostReport r;
    if (!kez::adaptive::HostReportFromLine(line, &r)) return 0;
    return a->forecaster.Report(r);
  } catch (...) {
    return 0;
  }
}

int kez_adaptive_predict(kez_adaptive* a, int variant, int count,
                         stMobilePowerPredictionData* out) {
  if (a == nullptr) return -1;
  try {
    return a->forecaster.Predict(variant, count, out);
  } catch (...) {
    return 0;
  }
}

int kez_adaptive_predict_raw(kez_adaptive* a, int variant, int count,
                             stMobilePowerPredictionData* out) {
  if (a == nullptr) return -1;
  try {
    return a->forecaster.PredictRaw(variant, count, out);
  } catch (...) {
    return 0;
  }
}

int kez_adaptive_method_count(void) { return kez::adaptive::kMethodCount; }

int kez_adaptive_method_name(int method, char* buffer, int size) {
  const char* name = kez::adaptive::MethodName(method);
  if (name == nullptr) return -1;
  if (buffer == nullptr || size <= 0) {
    return static_cast<int>(std::strlen(name));
  }
  std::memset(buffer, 0, static_cast<std::size_t>(size));
  return std::snprintf(buffer, static_cast<std::size_t>(size), "%s", name);
}

int kez_adaptive_weights(kez_adaptive* a, int variant, int what, int step,
                         double* weights, int count) {
  if (a == nullptr) return -1;
  if (variant < 0 || variant >= kez::adaptive::kVariantCount) return 0;
  if (what != 0 && !(what == 1 && variant == kez::adaptive::kFree)) return 0;
  if (weights == nullptr || count <= 0) return 0;
  try {
    double all[kez::adaptive::kMethodCount];
    if (what == 0) {
      a->forecaster.LevelWeights(variant, step, all);
    } else {
      a->forecaster.ChargingWeights(step, all);
    }
    const int n = count < kez::adaptive::kMethodCount
                      ? count
                      : kez::adaptive::kMethodCount;
    for (int m = 0; m < n; ++m) weights[m] = all[m];
    return n;
  } catch (...) {
    return 0;
  }
}

int kez_adaptive_weight_steps(kez_adaptive* a, int variant, int what,
                              int steps, double* weights) {
  if (a == nullptr) return -1;
  if (weights == nullptr || steps < 1) return 0;
  try {
    return a->forecaster.WeightPath(variant, what, steps, weights) ? 1 : 0;
  } catch (...) {
    return 0;
  }
}

long kez_adaptive_scored(kez_adaptive* a, int variant) {
  if (a == nullptr) return -1;
  if (variant < 0 || variant >= kez::adaptive::kVariantCount) return 0;
  return a->forecaster.Scored(variant);
}

void kez_adaptive_stop(kez_adaptive* a) {
  if (a == nullptr) return;
  try {
    delete a;
  } catch (...) {
  }
}

}  // extern "C"
