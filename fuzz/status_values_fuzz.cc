// Fuzz target: samples as nine values (kez_addStatusValue) with any bit
// patterns: NaN and infinite levels and counts, times of 0 and 2^64 - 1,
// times going backwards. Each 52-byte record of the input is one sample
// (time, five floats, three doubles); a trailing byte picks a forecast
// count from -2 to 253. Nothing may crash; every sample is taken (1) and
// every forecast is made (1); at most 16 similar moments are found.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "FuzzInput.h"
#include "kez/kez.h"

namespace {

constexpr size_t kRecord = 8 + 5 * 4 + 3 * 8;

template <class T>
T Take(const uint8_t*& p) {
  T v;
  std::memcpy(&v, p, sizeof v);
  p += sizeof v;
  return v;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kez_handle h = kez_init();
  if (h == nullptr) return 0;
  const uint8_t* p = data;
  size_t left = size;
  for (; left >= kRecord; left -= kRecord) {
    const uint64_t timeMs = Take<uint64_t>(p);
    const float level = Take<float>(p);
    const float charging = Take<float>(p);
    const float aux1 = Take<float>(p);
    const float aux2 = Take<float>(p);
    const float aux3 = Take<float>(p);
    const double countA = Take<double>(p);
    const double countB1 = Take<double>(p);
    const double countB2 = Take<double>(p);
    KEZ_FUZZ_CHECK(kez_addStatusValue(h, timeMs, level, charging, aux1, aux2, aux3, countA,
                                      countB1, countB2) == 1);
  }
  const int count = left > 0 ? static_cast<int>(*p) - 2 : 16;
  static stMobilePowerPredictionData out[256];
  KEZ_FUZZ_CHECK(kez_predict(h, count, out) == 1);
  KEZ_FUZZ_CHECK(kez_predict_without_charging(h, count, out) == 1);
  KEZ_FUZZ_CHECK(kez_predict_at_charging_starting(h, count, out) == 1);
  const int found = kez_similar_moments(h, count);
  KEZ_FUZZ_CHECK(found >= 0 && found <= 16);  // the model keeps 16 neighbours at most
  kez_stop(h);
  return 0;
}
