// Reads a battery log (CSV with a header, or the host's status lines) into a
// Log, checking everything on the way.
//
// CSV: the first non-blank line is a header; columns are found by name.
// `time_ms`, `level_percent` and `charging` are required; `aux1`, `aux2`,
// `aux3`, `countA`, `countB1`, `countB2` are optional (0 when the column is
// absent or the cell is empty); any other column is ignored. Names and cells
// are trimmed of blanks and of surrounding double quotes. Lines starting with
// '#' and blank lines are skipped.
//
// Status lines: no header; each line has at least 30 comma-separated columns:
// time ms in column 0, level % in 2, charging in 3, countB1/countB2 in 19/20,
// aux1..aux3 in 24..26, countA in 29. Other columns may hold anything.
//
// Rejected, with "SOURCE:LINE: reason" (or "SOURCE: reason"): an unreadable
// file, a header that is not a log's, a line with the wrong number of cells,
// a cell that is not a number, a non-finite number, a time that is negative
// or not a whole number of milliseconds, a level outside 0..100, a charging
// state outside 0..1, a time earlier than the line before (logs are in time
// order; equal times are accepted), and a log without any sample.
#ifndef KEZ_TOOLS_COMMON_LOG_LOGREADER_H_
#define KEZ_TOOLS_COMMON_LOG_LOGREADER_H_

#include <istream>
#include <string>

#include "LogSample.h"

namespace kez_tools {

// Reads `in`; `source` names it in messages. Returns false and sets *error on
// bad input (*log may then hold part of the input).
bool ReadLog(std::istream& in, const std::string& source, LogFormat format,
             Log* log, std::string* error);

// Opens `path` ("-" reads standard input) and reads it as ReadLog does.
bool ReadLogFile(const std::string& path, LogFormat format, Log* log,
                 std::string* error);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_LOG_LOGREADER_H_
