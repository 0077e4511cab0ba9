// Reads a battery log (CSV with a header, or the host's status lines) into a
// Log, checking everything on the way. Never prints: what it decided and what
// it skipped is in the LogReadResult.
//
// CSV: the first line that is neither blank nor a comment is the header;
// columns are found by name, as LogReadOptions says or, for what it leaves
// open, by detection (see below). The time, the level and the charging state
// are required; aux1, aux2, aux3, countA, countB1 and countB2 are optional (0
// when there is no such column or the cell is empty); any other column is
// ignored. Names and cells are trimmed of blanks and of surrounding double
// quotes. Lines starting with '#' and blank lines are skipped (and counted).
//
// Detection (on unless options.detect is false), for each field not given:
//   time      the first of time_ms, timestamp, time, datetime, last_changed,
//             last_updated, date (letter case aside); unit: ms for a name
//             ending in _ms, s for one ending in _s or _sec, else from the
//             first row: an ISO-8601 time, or a number below 10^11 (then
//             seconds: 10^11 ms is 1973) or not (milliseconds)
//   level     level_percent, battery_level, level, currentcapacity,
//             battery_percent, percent, battery, state; scale: percent for a
//             name with "percent" in it, else a fraction of 1 when every level
//             is within 0..1 and one is not a whole number, else percent
//   charging  charging, is_charging, ischarging (0..1 or true/false),
//             battery_status, status (Android's status codes),
//             battery_plugged, plugged, battery_adaptor, adaptor, plug_type
//             (Android's plug codes)
//   the rest  aux1, aux2, aux3, countA, countB1, countB2 by these names
// With detection off, an unset field is read from the column the tools write
// (time_ms in ms, level_percent in percent, charging as 0..1, aux1, ...).
//
// Status lines: no header; each line has at least 30 comma-separated columns:
// time ms in column 0, level % in 2, charging in 3, countB1/countB2 in 19/20,
// aux1..aux3 in 24..26, countA in 29. Other columns may hold anything.
//
// Rejected, with "SOURCE:LINE: reason" (or "SOURCE: reason"): an unreadable
// file, a header that is not a log's, a line with the wrong number of cells,
// a cell that is not a number (or a time in its unit, or a known charging
// code), a non-finite number, a time that is negative or not a whole number
// of milliseconds, a level outside its scale, a charging state outside 0..1,
// a time earlier than the line before (unless options.order sorts; equal
// times are accepted and merged as options.duplicates says), and a log
// without any sample. With options.bad_rows = kSkip a bad row is skipped and
// counted by reason instead; a bad header or file still stops the reading.
#ifndef KEZ_TOOLS_COMMON_LOG_LOGREADER_H_
#define KEZ_TOOLS_COMMON_LOG_LOGREADER_H_

#include <istream>
#include <string>

#include "LogReadOptions.h"
#include "LogReadResult.h"
#include "LogSample.h"

namespace kez_tools {

// Reads `in`; `source` names it in messages. Returns false and sets *error on
// bad input (*log and *result may then hold part of the input). `result` may
// be null.
bool ReadLog(std::istream& in, const std::string& source,
             const LogReadOptions& options, Log* log, LogReadResult* result,
             std::string* error);

// Opens `path` ("-" reads standard input) and reads it as ReadLog does.
bool ReadLogFile(const std::string& path, const LogReadOptions& options,
                 Log* log, LogReadResult* result, std::string* error);

// The same with every option at its default but the format.
bool ReadLog(std::istream& in, const std::string& source, LogFormat format,
             Log* log, std::string* error);
bool ReadLogFile(const std::string& path, LogFormat format, Log* log,
                 std::string* error);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_LOG_LOGREADER_H_
