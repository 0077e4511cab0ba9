// The mapping file: every line it does not understand is refused with the
// file, the line and the reason. (What its settings do is tested where logs
// are read with them, in LogReaderShapes_test.cc.)
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "LogMapFile.h"

namespace kez_tools {
namespace {

TEST(LogMapFile, RejectsWhatItDoesNotUnderstand) {
  struct Case {
    std::string text, message;
  } cases[] = {
      {"time timestamp\n", "m:1: not a 'key = value' line: 'time timestamp'"},
      {"# x\ntimezone = UTC\n", "m:2: unknown setting 'timezone'"},
      {"time_unit = minutes\n",
       "m:1: time_unit is ms, s or iso8601, not 'minutes'"},
      {"level_scale = permille\n",
       "m:1: level_scale is percent or fraction, not 'permille'"},
      {"level = a\nlevel = b\n", "m:2: 'level' is set twice"},
      {"time =\n", "m:1: time needs a column name"},
      {"level = none\n", "m:1: only the charging column may be 'none'"},
      {"charging_codes = 2,,5\n",
       "m:1: charging_codes is boolean, android_status, android_plug or a "
       "list of codes, not '2,,5'"},
      {"charging_codes = android_plug\nnot_charging_codes = 3\n",
       "m:2: not_charging_codes goes with a list of charging_codes, not with "
       "the preset android_plug"},
      {"duplicates = average\n",
       "m:1: duplicates is keep, first or last, not 'average'"},
  };
  for (const Case& c : cases) {
    LogReadOptions options;
    std::istringstream in(c.text);
    std::string error;
    EXPECT_FALSE(ReadLogMap(in, "m", &options, &error)) << c.text;
    EXPECT_EQ(error, c.message);
  }
  LogReadOptions options;
  std::string error;
  EXPECT_FALSE(LoadLogMapFile("/nonexistent/map.txt", &options, &error));
  EXPECT_EQ(error.rfind("/nonexistent/map.txt: cannot open: ", 0), 0u);
}

}  // namespace
}  // namespace kez_tools
