// The tools' units of time, in the milliseconds of a log's time column.
#ifndef KEZ_TOOLS_COMMON_LOG_TIMEUNITS_H_
#define KEZ_TOOLS_COMMON_LOG_TIMEUNITS_H_

#include <cstdint>

namespace kez_tools {

constexpr int64_t kMinuteMs = 60 * 1000;
constexpr int64_t kHourMs = 60 * kMinuteMs;
constexpr int64_t kDayMs = 24 * kHourMs;
constexpr int64_t kStepMs = 10 * kMinuteMs;  // one forecast step

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_LOG_TIMEUNITS_H_
