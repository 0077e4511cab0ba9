// The shared log-reading options as a tool takes them: from its command line
// and a mapping file beside the data, the command line winning; typos as
// usage errors; and the note the tool prints about how a log was read.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "CommonOptions.h"
#include "support/ScopedTempDir.h"

namespace kez_tools {
namespace {

// This test binary's own directory, removed at exit.
std::string TempDir() {
  static const kez_testing::ScopedTempDir dir;
  EXPECT_FALSE(dir.path().empty());
  return dir.path();
}

// Takes every argument as the tools do; the ones not taken are returned.
std::vector<std::string> Take(std::vector<std::string> argv,
                              LogReadSettings* settings, std::string* error) {
  CliArgs args(argv);
  std::vector<std::string> rest;
  while (!args.Done()) {
    std::string a = args.Take();
    OptionResult r = TakeLogReadOption(args, a, settings, error);
    if (r == OptionResult::kBad) return {"BAD"};
    if (r == OptionResult::kNotMine) rest.push_back(a);
  }
  return rest;
}

TEST(CommonOptions, ReadingFromTheCommandLineOverAMappingFile) {
  const std::string dir = TempDir();
  const std::string map = dir + "/power.map";
  std::ofstream(map) << "# phone\ntime = timestamp\nlevel = CurrentCapacity\n"
                        "level_scale = fraction\n";
  LogReadSettings settings;
  std::string error;
  std::vector<std::string> rest =
      Take({"--map", map, "--level-scale=percent", "--steps", "3",
            "--column", "aux1=Temperature", "--skip-bad-rows", "log.csv"},
           &settings, &error);
  EXPECT_EQ(rest, (std::vector<std::string>{"--steps", "3", "log.csv"}));
  LogReadOptions options;
  ASSERT_TRUE(ResolveLogReadOptions(settings, LogFormat::kCsv, &options,
                                    &error))
      << error;
  EXPECT_EQ(options.column[kFieldTime], "timestamp");
  EXPECT_EQ(options.column[kFieldLevel], "CurrentCapacity");
  EXPECT_EQ(options.column[kFieldAux1], "Temperature");
  EXPECT_EQ(options.level_scale, LevelScale::kPercent);
  EXPECT_EQ(options.bad_rows, BadRows::kSkip);
  EXPECT_TRUE(options.detect);

  // Column settings mean nothing for status lines.
  EXPECT_FALSE(ResolveLogReadOptions(settings, LogFormat::kStatusLines,
                                     &options, &error));
  EXPECT_EQ(error,
            "column, unit and charging-code settings are for CSV logs; status "
            "lines have fixed columns");
  // A mapping file that is not there.
  settings.map_path = dir + "/missing.map";
  EXPECT_FALSE(ResolveLogReadOptions(settings, LogFormat::kCsv, &options,
                                     &error));
  EXPECT_EQ(error.rfind(dir + "/missing.map: cannot open: ", 0), 0u) << error;
  std::remove(map.c_str());
}

TEST(CommonOptions, ReadingOptionTyposAreUsageErrors) {
  struct Case {
    std::vector<std::string> argv;
    std::string message;
  } cases[] = {
      {{"--time-unit", "minutes"},
       "--time-unit: time_unit is ms, s or iso8601, not 'minutes'"},
      {{"--column", "temperature"},
       "--column takes FIELD=NAME with FIELD one of time, level, charging, "
       "aux1, aux2, aux3, countA, countB1, countB2, not 'temperature'"},
      {{"--column", "temp=Temperature"},
       "--column takes FIELD=NAME with FIELD one of time, level, charging, "
       "aux1, aux2, aux3, countA, countB1, countB2, not 'temp=Temperature'"},
      {{"--charging-codes"}, "--charging-codes needs a value"},
      {{"--order", "reverse"}, "--order: order is refuse or sort, not "
                               "'reverse'"},
  };
  for (const Case& c : cases) {
    LogReadSettings settings;
    std::string error;
    EXPECT_EQ(Take(c.argv, &settings, &error),
              std::vector<std::string>{"BAD"});
    EXPECT_EQ(error, c.message);
  }
}

TEST(CommonOptions, ReadingOptionsExtractedForAToolWithAParserOfItsOwn) {
  std::vector<std::string> args = {"--keep-labels", "--column=charging=none",
                                   "log.csv", "--no-detect", "-o", "t.csv"};
  LogReadSettings settings;
  std::string error;
  ASSERT_TRUE(ExtractLogReadOptions(&args, &settings, &error)) << error;
  EXPECT_EQ(args, (std::vector<std::string>{"--keep-labels", "log.csv", "-o",
                                            "t.csv"}));
  ASSERT_EQ(settings.settings.size(), 2u);
  EXPECT_EQ(settings.settings[0].first, "charging");
  EXPECT_EQ(settings.settings[0].second, "none");
  EXPECT_EQ(settings.settings[1].first, "detect");
  EXPECT_EQ(settings.settings[1].second, "off");
}

TEST(ToolMessages, SaysHowALogWasReadUnlessItIsTheToolsOwn) {
  const std::string dir = TempDir();
  const std::string aware = dir + "/aware.csv";
  const std::string own = dir + "/own.csv";
  std::ofstream(aware) << "time,battery_level,battery_status\n"
                          "1612130332,45,3\n1612130632,44,2\n";
  std::ofstream(own) << "# journal 1\ntime_ms,level_percent,charging\n"
                        "1612130332000,45,0\n";
  const ToolMessages messages("kez-x");
  LogReadOptions options;
  Log log;
  std::string error;
  testing::internal::CaptureStderr();
  ASSERT_TRUE(messages.ReadLog(aware, options, &log, &error)) << error;
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "kez-x: " + aware +
                ": read time = 'time' (Unix seconds; detected), level = "
                "'battery_level' (percent; detected), charging = "
                "'battery_status' (Android battery status: charging 2|5, not "
                "1|3|4; detected); 2 samples\n");
  EXPECT_EQ(log.samples[1].time_ms, 1612130632000);
  EXPECT_EQ(log.samples[1].charging, 1);
  testing::internal::CaptureStderr();
  ASSERT_TRUE(messages.ReadLog(own, options, &log, &error)) << error;
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  std::remove(aware.c_str());
  std::remove(own.c_str());
}

}  // namespace
}  // namespace kez_tools
