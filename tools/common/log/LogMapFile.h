// The mapping file: how the CSV logs of one data set are to be read, kept
// beside them so that nobody has to remember the options. One setting per
// line, `key = value`, with the keys and values of ApplyLogSetting; blank
// lines and lines starting with '#' are ignored. For example:
//
//   # phone power log export
//   time = timestamp
//   time_unit = iso8601
//   level = CurrentCapacity
//   charging = IsCharging
//   aux1 = Temperature
//
// A key given twice is an error, so that a file never says two things.
#ifndef KEZ_TOOLS_COMMON_LOG_LOGMAPFILE_H_
#define KEZ_TOOLS_COMMON_LOG_LOGMAPFILE_H_

#include <istream>
#include <string>

#include "LogReadOptions.h"

namespace kez_tools {

// Applies the settings of `in` to *options; `source` names it in messages
// ("SOURCE:LINE: reason"). False with *error on the first bad line.
bool ReadLogMap(std::istream& in, const std::string& source,
                LogReadOptions* options, std::string* error);

// Opens `path` and reads it as ReadLogMap does.
bool LoadLogMapFile(const std::string& path, LogReadOptions* options,
                    std::string* error);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_LOG_LOGMAPFILE_H_
