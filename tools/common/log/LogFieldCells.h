// Reading the time and the charging cell of a CSV row in the unit and the
// codes decided for the log (LogColumns). Messages name the column and quote
// the cell: "column 'time' is not a time in Unix seconds: '16x'".
#ifndef KEZ_TOOLS_COMMON_LOG_LOGFIELDCELLS_H_
#define KEZ_TOOLS_COMMON_LOG_LOGFIELDCELLS_H_

#include <cstdint>
#include <string>

#include "LogReadOptions.h"

namespace kez_tools {

// Reads a time in *unit into *utc_ms. When *unit is kUnset the cell decides
// it first: ISO-8601 text, or a number below 10^11 (Unix seconds: 10^11 ms is
// 1973, 10^11 s the year 5138), or else milliseconds. False with *why.
bool ReadTimeCell(const std::string& cell, const std::string& column,
                  TimeUnit* unit, int64_t* utc_ms, std::string* why);

// Reads a charging state as `codes` say: 1 or 0, or a number within 0..1 as
// it stands. False with *why and *reason ("unknown charging code", "charging
// state not readable", "charging state outside 0..1").
bool ReadChargingCell(const std::string& cell, const std::string& column,
                      const ChargingCodes& codes, double* value,
                      std::string* why, std::string* reason);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_LOG_LOGFIELDCELLS_H_
