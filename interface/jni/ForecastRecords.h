// The forecast records of one JNI forecast call.
//
// Holds room for `count` records and never for fewer than one: a forecast
// always writes the distance of element 0, even for an empty Java array. The
// byte size is computed with an overflow check that saturates to the largest
// size, so that an absurd count (possible on a 32-bit phone) fails in the
// allocator instead of wrapping to a small block. The allocation does not
// throw: `Data()` is null when it failed. The records start zeroed and are
// freed with the object.
#ifndef KEZ_INTERFACE_JNI_FORECASTRECORDS_H_
#define KEZ_INTERFACE_JNI_FORECASTRECORDS_H_

#include <cstddef>
#include <cstdint>
#include <new>

#include "kez/kez.h"

namespace kez {
namespace jni {

class ForecastRecords {
 public:
  // Bytes for `count` records (at least one), SIZE_MAX when that overflows.
  static std::size_t BytesFor(std::size_t count) {
    if (count < 1) count = 1;
    const std::size_t size = sizeof(stMobilePowerPredictionData);
    if (count > SIZE_MAX / size) return SIZE_MAX;
    return count * size;
  }

  explicit ForecastRecords(std::size_t count) {
    const std::size_t bytes = BytesFor(count);
    records_ = static_cast<stMobilePowerPredictionData*>(
        ::operator new(bytes, std::nothrow));
    if (records_ == nullptr) return;
    const std::size_t n = bytes / sizeof(stMobilePowerPredictionData);
    for (std::size_t i = 0; i < n; ++i) {
      records_[i].level = 0.0;
      records_[i].charging = 0.0;
      records_[i].distance = 0.0;
    }
  }
  ~ForecastRecords() { ::operator delete(records_); }
  ForecastRecords(const ForecastRecords&) = delete;
  ForecastRecords& operator=(const ForecastRecords&) = delete;

  stMobilePowerPredictionData* Data() { return records_; }

 private:
  stMobilePowerPredictionData* records_ = nullptr;
};

}  // namespace jni
}  // namespace kez

#endif  // KEZ_INTERFACE_JNI_FORECASTRECORDS_H_
