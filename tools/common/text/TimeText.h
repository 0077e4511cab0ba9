// Wall-clock times and durations as text, both ways, for the tools' options
// and output. Every time is Unix milliseconds (UTC); the DisplayZone decides
// the wall clock that people see and type.
#ifndef KEZ_TOOLS_COMMON_TEXT_TIMETEXT_H_
#define KEZ_TOOLS_COMMON_TEXT_TIMETEXT_H_

#include <cstdint>
#include <string>

#include "DisplayZone.h"

namespace kez_tools {

// "2024-04-07 23:57"
std::string FormatDateTime(int64_t utc_ms, const DisplayZone& zone);
// "Sun 23:57"
std::string FormatDayClock(int64_t utc_ms, const DisplayZone& zone);
// "23:57"
std::string FormatClock(int64_t utc_ms, const DisplayZone& zone);
// "2024-04-07T23:57:12+02:00" (or ...Z in UTC), for machine-readable output.
std::string FormatIso(int64_t utc_ms, const DisplayZone& zone);
// "45 min", "6 h 20 min", "30 h", "2 d 3 h" (days from 48 h on); rounded
// to whole minutes.
std::string FormatDuration(int64_t ms);

// Reads a moment: a whole number of Unix milliseconds, or an ISO date and
// time "YYYY-MM-DD", "YYYY-MM-DDTHH:MM[:SS]" (a space may replace the T)
// with an optional zone "Z", "+HH", "+HH:MM" or "-HH:MM"; without a zone the
// time is on the wall clock of `zone`. Returns false with *error on failure.
bool ParseMoment(const std::string& text, const DisplayZone& zone,
                 int64_t* utc_ms, std::string* error);

// Reads "HH:MM" (00:00 to 23:59) as minutes after midnight.
bool ParseClock(const std::string& text, int* minute_of_day);

// The first moment at or after `after_ms` whose wall clock in `zone` shows
// `minute_of_day` (seconds 0).
int64_t NextClockTime(int64_t after_ms, int minute_of_day,
                      const DisplayZone& zone);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_TEXT_TIMETEXT_H_
