// What reading a log decided and what it left out: the column each value came
// from and why, the units, and the rows skipped, sorted or merged. The reader
// fills it and never prints; DescribeLogReading makes the one line that the
// tools print so that nothing is read on a silent guess.
#ifndef KEZ_TOOLS_COMMON_LOG_LOGREADRESULT_H_
#define KEZ_TOOLS_COMMON_LOG_LOGREADRESULT_H_

#include <string>
#include <vector>

#include "LogReadOptions.h"

namespace kez_tools {

// How a setting was arrived at.
enum class Decided {
  kAbsent,    // an optional field without a column: reads as 0
  kDefault,   // the tools' own name or unit (detection off, or nothing else)
  kGiven,     // by an option or the mapping file
  kDetected,  // from the header's names or the values
};

struct FieldReading {
  std::string column;  // the header's name; "none" for no charging column
  int index = -1;      // 0-based column, -1 when absent or none
  Decided decided = Decided::kAbsent;
};

struct SkippedRows {
  std::string reason;  // "comment line", "level not a number", ...
  int count = 0;
  std::string first;   // the message of the first one ("t.csv:4: ...")
};

struct LogReadResult {
  LogFormat format = LogFormat::kCsv;
  FieldReading field[kLogFieldCount];
  TimeUnit time_unit = TimeUnit::kUnset;
  Decided time_unit_decided = Decided::kDefault;
  LevelScale level_scale = LevelScale::kUnset;
  Decided level_scale_decided = Decided::kDefault;
  ChargingCodes charging_codes;
  Decided charging_codes_decided = Decided::kDefault;
  int samples = 0;      // samples in the log read
  int data_rows = 0;    // lines after the header that are neither blank nor
                        // comments
  std::vector<SkippedRows> skipped;  // every skipped line, by reason
  int rows_moved = 0;   // rows that came earlier than a row before them and
                        // were sorted into place
  int rows_merged = 0;  // rows dropped because another row has their time
  DuplicateTimes duplicates = DuplicateTimes::kKeepAll;

  // Lines skipped for `reason` (0 when none).
  int Skipped(const std::string& reason) const;
  // True when the log was read the way the tools write logs, with nothing
  // skipped but blank and comment lines, nothing sorted and nothing merged:
  // then there is nothing worth saying.
  bool Plain() const;
};

// "Android battery status: charging 2|5, not 1|3|4", "0..1 or true/false".
std::string ChargingCodesText(const ChargingCodes& codes);

// One line: which column each value came from and how, the units, and what
// was skipped, sorted and merged. For example:
//   time = 'time' (Unix seconds; detected), level = 'battery_level'
//   (percent; detected), charging = 'battery_status' (Android battery
//   status: charging 2|5, not 1|3|4; detected); 4 samples; skipped 1 line
//   (1 comment line)
std::string DescribeLogReading(const LogReadResult& result);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_LOG_LOGREADRESULT_H_
