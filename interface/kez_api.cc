// The exported C functions: thin, exception-proof wrappers around kez::KEZ.
// Every function catches everything; a failure inside ends as the function's
// "nothing done" result.
#include <cstdio>
#include <cstring>
#include <new>
#include <string>

#include "interface/HostTime.h"
#include "interface/KEZ.h"
#include "kez/kez.h"

namespace {

kez::KEZ* Instance(kez_handle handle) { return static_cast<kez::KEZ*>(handle); }

int Forecast(kez_handle handle, int count, stMobilePowerPredictionData* out,
             int chargingMode, int holdSteps) {
  if (handle == nullptr) return -1;
  try {
    return Instance(handle)->predict(count, out, chargingMode, holdSteps);
  } catch (...) {
    return 0;
  }
}

}  // namespace

extern "C" {

int kez_get_version(char* buffer, int size) {
  // The version text is the format string itself.
  if (buffer == nullptr || size <= 0) return std::snprintf(nullptr, 0, "1.04.21");
  std::memset(buffer, 0, static_cast<std::size_t>(size));
  return std::snprintf(buffer, static_cast<std::size_t>(size), "1.04.21");
}

kez_handle kez_init(void) {
  try {
    return new kez::KEZ();
  } catch (...) {
    return nullptr;
  }
}

void kez_addStatusValues(kez_handle handle, const char* line) {
  if (handle == nullptr || line == nullptr) return;
  try {
    std::string copy(line);
    Instance(handle)->addStatusValues(copy);
  } catch (...) {
  }
}

int kez_addStatusValue(kez_handle handle, uint64_t timeMs, float levelPercent,
                       float charging, float aux1, float aux2, float aux3,
                       double countA, double countB1, double countB2) {
  if (handle == nullptr) return 0;
  try {
    return Instance(handle)->addStatusValue(kez::MillisecondsToDays(timeMs),
                                            levelPercent, charging, aux1, aux2,
                                            aux3, countA, countB1, countB2);
  } catch (...) {
    return 0;
  }
}

int kez_predict(kez_handle handle, int count, stMobilePowerPredictionData* out) {
  return Forecast(handle, count, out, -1, 0);
}

int kez_predict_without_charging(kez_handle handle, int count,
                                 stMobilePowerPredictionData* out) {
  return Forecast(handle, count, out, 0, 144);
}

int kez_predict_at_charging_starting(kez_handle handle, int count,
                                     stMobilePowerPredictionData* out) {
  return Forecast(handle, count, out, 1, 144);
}

void kez_stop(kez_handle handle) {
  if (handle == nullptr) return;
  try {
    delete Instance(handle);
  } catch (...) {
  }
}

int kez_similar_moments(kez_handle handle, int count) {
  if (handle == nullptr) return -1;
  try {
    kez::KEZ* instance = Instance(handle);
    if (instance->impl == nullptr || instance->impl->predictor == nullptr) {
      return -1;
    }
    int found = 0;
    instance->impl->predictor->Search(count, found, nullptr, nullptr);
    return found;
  } catch (...) {
    return 0;
  }
}

}  // extern "C"
