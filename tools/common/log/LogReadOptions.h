// How a CSV battery log is to be read: which column holds the time, the level,
// the charging state and each auxiliary value, in which units, and what to do
// with rows out of order, rows with equal times and rows that cannot be read.
//
// Everything left unset is detected from the header and the values when
// `detect` is on (the tools' default); with detection off an unset field is
// read the way the tools write logs: `time_ms` in Unix milliseconds,
// `level_percent` in percent, `charging` as 0..1, `aux1`..`countB2` by their
// own names. The same settings come from the command line (--column,
// --time-unit, ...) and from a mapping file of `key = value` lines kept beside
// a data set (LogMapFile.h); both go through ApplyLogSetting, so a key means
// the same in both places.
#ifndef KEZ_TOOLS_COMMON_LOG_LOGREADOPTIONS_H_
#define KEZ_TOOLS_COMMON_LOG_LOGREADOPTIONS_H_

#include <string>
#include <vector>

#include "LogSample.h"

namespace kez_tools {

// The values a log carries per row, in LogSample's order.
enum LogField { kFieldTime, kFieldLevel, kFieldCharging, kFieldAux1,
                kFieldAux2, kFieldAux3, kFieldCountA, kFieldCountB1,
                kFieldCountB2, kLogFieldCount };

// "time", "level", "charging", "aux1", "aux2", "aux3", "countA", "countB1",
// "countB2": the names of the fields in settings and messages.
const char* LogFieldName(int field);
// The column the tools write each field to ("time_ms", "level_percent", ...).
const char* LogFieldDefaultColumn(int field);

enum class TimeUnit { kUnset, kMilliseconds, kSeconds, kIso8601 };
enum class LevelScale { kUnset, kPercent, kFraction };

// How a charging cell becomes the sample's charging state (1 plugged in,
// 0 not).
struct ChargingCodes {
  enum Kind {
    kUnset,
    kBoolean,  // a number within 0..1 (kept as read), or true / false
    kCodes,    // a cell equal to one of `charging` is 1; one of
               // `not_charging` is 0; any other value is an error, unless
               // `not_charging` is empty: then any other value is 0
  };
  Kind kind = kUnset;
  std::string preset;  // "android_status", "android_plug" or empty
  std::vector<std::string> charging;
  std::vector<std::string> not_charging;
};

// Android's battery status: 2 charging and 5 full mean plugged in; 1 unknown,
// 3 discharging and 4 not charging mean not.
ChargingCodes AndroidStatusCodes();
// Android's plug type: 1 AC, 2 USB, 4 wireless and 8 dock mean plugged in;
// 0 means on battery.
ChargingCodes AndroidPlugCodes();

enum class RowOrder { kRefuse, kSort };
// Rows with the same time: all kept (the default), or merged into one row:
// the first or the last of them.
enum class DuplicateTimes { kKeepAll, kFirst, kLast };
enum class BadRows { kStop, kSkip };

struct LogReadOptions {
  LogFormat format = LogFormat::kCsv;
  // Column names, empty when not given. The charging column may be "none":
  // the log has no charging state and every sample is read as not charging.
  std::string column[kLogFieldCount];
  TimeUnit time_unit = TimeUnit::kUnset;
  LevelScale level_scale = LevelScale::kUnset;
  ChargingCodes charging_codes;
  bool detect = true;
  RowOrder order = RowOrder::kRefuse;
  DuplicateTimes duplicates = DuplicateTimes::kKeepAll;
  BadRows bad_rows = BadRows::kStop;

  // True when a column, unit, scale or code setting is given or detection is
  // off: settings that only a CSV log's header gives a meaning.
  bool AnyColumnSetting() const;
};

// Applies one setting, named as in a mapping file:
//   time, level, charging, aux1, aux2, aux3, countA, countB1, countB2 = COLUMN
//   time_unit = ms | s | iso8601
//   level_scale = percent | fraction
//   charging_codes = boolean | android_status | android_plug | CODE[,CODE...]
//   not_charging_codes = CODE[,CODE...]
//   order = refuse | sort
//   duplicates = keep | first | last
//   bad_rows = stop | skip
//   detect = on | off
// False with *why on an unknown key or value.
bool ApplyLogSetting(const std::string& key, const std::string& value,
                     LogReadOptions* options, std::string* why);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_LOG_LOGREADOPTIONS_H_
