// Which column of a CSV log's header holds each value, and in which unit:
// as LogReadOptions says, else detected, else (detection off) the columns the
// tools write. The names a detection looks for are listed in LogReader.h.
#ifndef KEZ_TOOLS_COMMON_LOG_LOGCOLUMNS_H_
#define KEZ_TOOLS_COMMON_LOG_LOGCOLUMNS_H_

#include <string>
#include <vector>

#include "LogReadOptions.h"
#include "LogReadResult.h"

namespace kez_tools {

// Fills result->field, the time unit, the level scale and the charging codes
// with how each was decided. The time unit is left kUnset when the first
// row's time must decide it, the level scale when all the levels must.
// False with *why when the header lacks a column needed, names one twice, or
// one column would be read as two values.
bool ResolveLogColumns(const std::vector<std::string>& header,
                       const LogReadOptions& options, LogReadResult* result,
                       std::string* why);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_LOG_LOGCOLUMNS_H_
