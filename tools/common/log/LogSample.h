// One logged status sample and a whole log, as the tools read and write them.
//
// A LogSample holds the nine values that a host reports per moment (the same
// nine that kez_addStatusValue takes) plus where it came from. Values are kept
// as read: level in percent, charging 1 or 0, the three auxiliary readings and
// the three counts (0 when the log has no such column). A status-line log also
// keeps each line's text, so that a replay can hand the host's own line to
// kez_addStatusValues.
//
// A Log is a list of samples in time order (times never decrease; the reader
// guarantees it) and never empty once read successfully.
#ifndef KEZ_TOOLS_COMMON_LOG_LOGSAMPLE_H_
#define KEZ_TOOLS_COMMON_LOG_LOGSAMPLE_H_

#include <cstdint>
#include <string>
#include <vector>

namespace kez_tools {

enum class LogFormat {
  kCsv,          // CSV with a header naming the columns
  kStatusLines,  // the host's comma-separated status lines, fixed positions
};

struct LogSample {
  int64_t time_ms = 0;        // Unix time in milliseconds
  double level_percent = 0;   // 0 to 100
  double charging = 0;        // 1 while plugged in, else 0
  double aux1 = 0;
  double aux2 = 0;
  double aux3 = 0;
  double count_a = 0;
  double count_b1 = 0;
  double count_b2 = 0;
  int line_number = 0;  // 1-based line of the source, 0 when made in memory
  std::string line;     // the status line as read (status-line logs only)
};

struct Log {
  std::string source;  // file name, or "-" for standard input
  LogFormat format = LogFormat::kCsv;
  std::vector<LogSample> samples;
};

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_LOG_LOGSAMPLE_H_
