// A simple, fully known user for the adaptive forecaster's tests: a report
// every 5 minutes; unplugged at 07:00 (Unix time) at 100 %, down 1 % every
// 20 minutes until 23:00 (52 %), then on the charger, up 4 % every 10
// minutes until full, held at 100 % until 07:00. `day` 0 starts at
// kRoutineStartMs (a midnight).
#ifndef KEZ_ADAPTIVE_TESTING_ROUTINEREPORTS_H_
#define KEZ_ADAPTIVE_TESTING_ROUTINEREPORTS_H_

#include <cstdint>

#include "adaptive/AdaptiveForecaster.h"

namespace kez {
namespace adaptive {
namespace testing {

constexpr uint64_t kMinuteMs = 60000;
constexpr uint64_t kRoutineStartMs = 1700006400000ULL;  // 2023-11-15 00:00 UTC
constexpr uint64_t kReportMs = 5 * kMinuteMs;

inline HostReport RoutineReport(uint64_t timeMs) {
  const uint64_t minute = (timeMs / kMinuteMs) % (24 * 60);
  HostReport r;
  r.timeMs = timeMs;
  if (minute >= 7 * 60 && minute < 23 * 60) {
    r.levelPercent = static_cast<float>(100 - (minute - 7 * 60) / 20);
    r.charging = 0.0f;
  } else {
    const uint64_t since = minute >= 23 * 60 ? minute - 23 * 60 : minute + 60;
    const uint64_t level = 52 + 4 * (since / 10);
    r.levelPercent = static_cast<float>(level > 100 ? 100 : level);
    r.charging = 1.0f;
  }
  return r;
}

// Reports every 5 minutes from `fromMs` (inclusive) to `toMs` (exclusive).
inline void FeedRoutine(AdaptiveForecaster* f, uint64_t fromMs, uint64_t toMs) {
  for (uint64_t t = fromMs; t < toMs; t += kReportMs) f->Report(RoutineReport(t));
}

}  // namespace testing
}  // namespace adaptive
}  // namespace kez

#endif  // KEZ_ADAPTIVE_TESTING_ROUTINEREPORTS_H_
