// Reading a log's time cell in the units a log may use, exactly: Unix seconds
// with up to millisecond decimals, and ISO-8601 times with a UTC offset.
// Digits finer than a millisecond are dropped (the time is rounded down).
#ifndef KEZ_TOOLS_COMMON_LOG_LOGTIMECELL_H_
#define KEZ_TOOLS_COMMON_LOG_LOGTIMECELL_H_

#include <cstdint>
#include <string>

namespace kez_tools {

// "1612130332" or "1612130332.55" -> Unix milliseconds. Digits only, with an
// optional decimal point; false for anything else, for times before 1970 and
// for times beyond 2^53 milliseconds.
bool ParseUnixSecondsCell(const std::string& cell, int64_t* utc_ms);

// "2025-12-26T10:05:00+01:00", "2025-12-26 10:05:00.250Z",
// "2025-12-26T10:05+0100", "2025-12-26 10:05:00 +01" -> Unix milliseconds.
// Seconds and their decimals are optional; the offset (Z, +HH, +HHMM or
// +HH:MM, or - for west of UTC) is not: a time without one does not say which
// moment it is. False for anything else, for impossible dates and clock
// times, and for times before 1970.
bool ParseIsoTimeCell(const std::string& cell, int64_t* utc_ms);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_LOG_LOGTIMECELL_H_
