// Fuzz target: the host's status log lines (kez_addStatusValues) on a live
// instance. The input is split at newlines; a fresh instance takes every
// line in turn and then forecasts in all three variants. Nothing may
// crash or read out of bounds; the values of the forecasts are not checked
// (nothing is validated on the way in, so NaN results are allowed).
#include <cstddef>
#include <cstdint>
#include <string>

#include "kez/kez.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kez_handle h = kez_init();
  if (h == nullptr) return 0;
  const char* text = reinterpret_cast<const char*>(data);
  size_t start = 0;
  while (start <= size) {
    size_t end = start;
    while (end < size && text[end] != '\n') ++end;
    const std::string line(text + start, end - start);  // stops at a NUL
    kez_addStatusValues(h, line.c_str());
    start = end + 1;
  }
  stMobilePowerPredictionData out[16];
  kez_predict(h, 16, out);
  kez_predict_without_charging(h, 16, out);
  kez_predict_at_charging_starting(h, 16, out);
  kez_similar_moments(h, 16);
  kez_stop(h);
  return 0;
}
