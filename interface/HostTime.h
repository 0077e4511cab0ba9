// The host's clock and the predictor's: the host reports Unix time in
// milliseconds, the predictor counts days as a double. Every path that feeds
// an instance converts with this one function, so that a sample reported
// through the C interface, the JNI binding, the adaptive forecaster or an
// offline tool lands on exactly the same time.
#ifndef KEZ_INTERFACE_HOSTTIME_H_
#define KEZ_INTERFACE_HOSTTIME_H_

#include <cstdint>

namespace kez {

constexpr double kMillisecondsPerDay = 86400000.0;

// Unix milliseconds to days, converted as an unsigned value.
inline double MillisecondsToDays(uint64_t timeMs) {
  return static_cast<double>(timeMs) / kMillisecondsPerDay;
}

}  // namespace kez

#endif  // KEZ_INTERFACE_HOSTTIME_H_
