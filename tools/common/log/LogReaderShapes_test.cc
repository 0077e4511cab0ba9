// Reading logs as they come from other loggers: a sensing framework's export
// (seconds, Android status codes), a phone's power log (ISO-8601 times,
// IsCharging), a home-automation export (last_changed,state with text
// levels), fraction levels; sorting, merging and skipping; and each bad case
// with its exact message. Every expected time was worked
// out by hand from the calendar (2024-01-01 is day 19723 after 1970-01-01,
// 2025-01-01 day 20089).
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "LogMapFile.h"
#include "LogReader.h"

namespace kez_tools {
namespace {

struct Read {
  bool ok = false;
  Log log;
  LogReadResult result;
  std::string error;
};

// Reads `text` as `source` with the settings of the mapping file `map`.
Read ReadWith(const std::string& text, const std::string& map = "",
              const std::string& source = "t.csv") {
  Read r;
  LogReadOptions options;
  std::istringstream map_in(map);
  std::string map_error;
  EXPECT_TRUE(ReadLogMap(map_in, "map.txt", &options, &map_error))
      << map_error;
  std::istringstream in(text);
  r.ok = ReadLog(in, source, options, &r.log, &r.result, &r.error);
  return r;
}

// A sensing framework's export: Unix seconds, Android's status codes.
const char kSensing[] =
    "time,battery_level,battery_status,battery_health,battery_adaptor\n"
    "1612130332.55,45,3,2,0\n"
    "1612130632,44,3,2,0\n"
    "1612130932,44,2,2,1\n"
    "1612131232,46,5,2,1\n";

TEST(LogReaderShapes, SensingExportTimeInSecondsAndStatusCodes) {
  Read r = ReadWith(kSensing, "", "a.csv");
  ASSERT_TRUE(r.ok) << r.error;
  ASSERT_EQ(r.log.samples.size(), 4u);
  const int64_t times[] = {1612130332550, 1612130632000, 1612130932000,
                           1612131232000};
  const double levels[] = {45, 44, 44, 46};
  const double charging[] = {0, 0, 1, 1};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(r.log.samples[i].time_ms, times[i]) << i;
    EXPECT_EQ(r.log.samples[i].level_percent, levels[i]) << i;
    EXPECT_EQ(r.log.samples[i].charging, charging[i]) << i;
    EXPECT_EQ(r.log.samples[i].line_number, i + 2);
  }
  EXPECT_FALSE(r.result.Plain());
  EXPECT_EQ(DescribeLogReading(r.result),
            "time = 'time' (Unix seconds; detected), level = 'battery_level' "
            "(percent; detected), charging = 'battery_status' (Android "
            "battery status: charging 2|5, not 1|3|4; detected); 4 samples");

  // The adaptor column instead, by name: Android's plug codes.
  r = ReadWith(kSensing, "charging = battery_adaptor\n", "a.csv");
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.log.samples[1].charging, 0);
  EXPECT_EQ(r.log.samples[2].charging, 1);
  EXPECT_EQ(DescribeLogReading(r.result),
            "time = 'time' (Unix seconds; detected), level = 'battery_level' "
            "(percent; detected), charging = 'battery_adaptor' (Android plug "
            "type: charging 1|2|4|8, not 0; column given, codes detected); "
            "4 samples");

  // An unknown code stops the reading where it is.
  std::string bad = kSensing;
  bad.replace(bad.find("44,2,2,1"), 8, "44,7,2,1");
  r = ReadWith(bad, "", "a.csv");
  EXPECT_FALSE(r.ok);
  EXPECT_EQ(r.error,
            "a.csv:4: column 'battery_status' holds an unknown charging code: "
            "'7' (Android battery status: charging 2|5, not 1|3|4)");

  // Seconds that are not a number.
  bad = kSensing;
  bad.replace(bad.find("1612130632,"), 11, "1612130632x,");
  r = ReadWith(bad, "", "a.csv");
  EXPECT_EQ(r.error,
            "a.csv:3: column 'time' is not a time in Unix seconds: "
            "'1612130632x'");
}

// A phone's power log: ISO-8601 times with offsets, IsCharging as text.
const char kPower[] =
    "timestamp,CurrentCapacity,IsCharging,Temperature\n"
    "2025-12-26T00:17:56+01:00,18,true,33.29\n"
    "2025-12-26 00:22:56.500+01:00,20,TRUE,34\n"
    "2025-12-26T00:27:56Z,21,false,33.8\n";

const char kPowerMap[] =
    "# phone power log export\n"
    "time = timestamp\n"
    "time_unit = iso8601\n"
    "\n"
    "level = CurrentCapacity\n"
    "charging = IsCharging\n"
    "aux1 = Temperature\n";

TEST(LogReaderShapes, PowerLogIsoTimesAndIsCharging) {
  // 2025-12-25T23:17:56Z: day 20089 + 358, 83876 s into the day.
  const int64_t first = (int64_t{20447} * 86400 + 83876) * 1000;
  for (const char* map : {"", kPowerMap}) {
    Read r = ReadWith(kPower, map, "p.csv");
    ASSERT_TRUE(r.ok) << r.error;
    ASSERT_EQ(r.log.samples.size(), 3u);
    EXPECT_EQ(r.log.samples[0].time_ms, first);
    EXPECT_EQ(r.log.samples[1].time_ms, first + 300500);
    EXPECT_EQ(r.log.samples[2].time_ms, first + 3600000 + 600000);
    EXPECT_EQ(r.log.samples[0].level_percent, 18);
    EXPECT_EQ(r.log.samples[2].level_percent, 21);
    EXPECT_EQ(r.log.samples[0].charging, 1);
    EXPECT_EQ(r.log.samples[1].charging, 1);
    EXPECT_EQ(r.log.samples[2].charging, 0);
    // Only the mapping file names an auxiliary column.
    EXPECT_EQ(r.log.samples[0].aux1, map[0] ? 33.29 : 0);
  }
  Read r = ReadWith(kPower, kPowerMap, "p.csv");
  EXPECT_EQ(DescribeLogReading(r.result),
            "time = 'timestamp' (ISO-8601; given), level = 'CurrentCapacity' "
            "(percent; column given, scale detected), charging = "
            "'IsCharging' (0..1 or true/false; column given, codes "
            "detected), aux1 = 'Temperature' (given); 3 samples");

  // A time without its offset does not say which moment it is.
  std::string bad = kPower;
  bad.replace(bad.find("2025-12-26 00:22:56.500+01:00"), 29,
              "2025-12-26 00:22:56");
  r = ReadWith(bad, "", "p.csv");
  EXPECT_FALSE(r.ok);
  EXPECT_EQ(r.error,
            "p.csv:3: column 'timestamp' is not an ISO-8601 time with a UTC "
            "offset: '2025-12-26 00:22:56'");

  // Out of order: refused with both lines named, or sorted on request.
  const std::string unordered =
      "timestamp,CurrentCapacity,IsCharging\n"
      "2025-12-26T00:17:56+01:00,18,1\n"
      "2025-12-26T00:12:56+01:00,17,1\n"
      "2025-12-26T00:22:56+01:00,19,1\n";
  r = ReadWith(unordered, "", "p.csv");
  EXPECT_FALSE(r.ok);
  EXPECT_EQ(r.error,
            "p.csv:3: time goes backwards: '2025-12-26T00:12:56+01:00' is "
            "300000 ms before line 2 (a log must be in time order)");
  r = ReadWith(unordered, "order = sort\n", "p.csv");
  ASSERT_TRUE(r.ok) << r.error;
  ASSERT_EQ(r.log.samples.size(), 3u);
  EXPECT_EQ(r.log.samples[0].level_percent, 17);
  EXPECT_EQ(r.log.samples[0].line_number, 3);
  EXPECT_EQ(r.log.samples[1].level_percent, 18);
  EXPECT_EQ(r.log.samples[2].level_percent, 19);
  EXPECT_EQ(r.result.rows_moved, 1);
}

// A home-automation export: the level as text, states that are not levels,
// no charging state at all.
const char kHome[] =
    "last_changed,state\n"
    "2024-03-01T10:15:42.123456+00:00,\"87\"\n"
    "2024-03-01T10:20:42.000001+00:00,\"86.5\"\n"
    "2024-03-01T10:25:00+00:00,unavailable\n"
    "2024-03-01T10:30:00+00:00,85\n";

TEST(LogReaderShapes, HomeAutomationExportTextLevelsWithoutCharging) {
  // Without a charging column nothing is assumed.
  Read r = ReadWith(kHome, "", "h.csv");
  EXPECT_FALSE(r.ok);
  EXPECT_EQ(r.error,
            "h.csv:1: the header has no column 'charging' nor any other "
            "charging column (is_charging, ischarging, battery_status, "
            "status, battery_plugged, plugged, battery_adaptor, adaptor, "
            "plug_type): name it with --column charging=NAME or in a mapping "
            "file (--map); --column charging=none reads every sample as not "
            "charging");
  // Saying so reads it, up to the first state that is not a level.
  r = ReadWith(kHome, "charging = none\n", "h.csv");
  EXPECT_FALSE(r.ok);
  EXPECT_EQ(r.error, "h.csv:4: column 'state' is not a number: 'unavailable'");
  // Skipping bad rows keeps the others and counts what was left out.
  r = ReadWith(kHome, "charging = none\nbad_rows = skip\n", "h.csv");
  ASSERT_TRUE(r.ok) << r.error;
  // 2024-03-01: day 19723 + 60; 10:15:42 is 36942 s into the day.
  const int64_t first = (int64_t{19783} * 86400 + 36942) * 1000 + 123;
  ASSERT_EQ(r.log.samples.size(), 3u);
  EXPECT_EQ(r.log.samples[0].time_ms, first);
  EXPECT_EQ(r.log.samples[1].time_ms, first - 123 + 300000);
  EXPECT_EQ(r.log.samples[2].time_ms, first - 123 + 858000);
  EXPECT_EQ(r.log.samples[0].level_percent, 87);
  EXPECT_EQ(r.log.samples[1].level_percent, 86.5);
  EXPECT_EQ(r.log.samples[2].level_percent, 85);
  EXPECT_EQ(r.log.samples[2].line_number, 5);
  for (const LogSample& s : r.log.samples) EXPECT_EQ(s.charging, 0);
  ASSERT_EQ(r.result.skipped.size(), 1u);
  EXPECT_EQ(r.result.skipped[0].reason, "level not a number");
  EXPECT_EQ(r.result.skipped[0].count, 1);
  EXPECT_EQ(r.result.skipped[0].first,
            "h.csv:4: column 'state' is not a number: 'unavailable'");
  EXPECT_EQ(DescribeLogReading(r.result),
            "time = 'last_changed' (ISO-8601; detected), level = 'state' "
            "(percent; detected), charging = none (every sample read as not "
            "charging; given); 3 samples; skipped 1 line (1 level not a "
            "number)");
}

TEST(LogReaderShapes, FractionLevels) {
  // Detected: every level within 0..1, one not whole.
  Read r = ReadWith("time_ms,level,charging\n1000,0.5,0\n2000,0.29,0\n"
                    "3000,1,1\n");
  ASSERT_TRUE(r.ok) << r.error;
  ASSERT_EQ(r.log.samples.size(), 3u);
  EXPECT_EQ(r.log.samples[0].level_percent, 50);
  EXPECT_EQ(r.log.samples[1].level_percent, 29);  // not 0.29 * 100
  EXPECT_EQ(r.log.samples[2].level_percent, 100);
  EXPECT_EQ(r.result.level_scale, LevelScale::kFraction);
  EXPECT_EQ(DescribeLogReading(r.result),
            "time = 'time_ms' (Unix ms; detected), level = 'level' (fraction "
            "of 1; detected), charging = 'charging' (0..1 or true/false; "
            "detected); 3 samples");
  // Whole levels within 0..1 are percent: 0 % and 1 % are levels too.
  r = ReadWith("time_ms,level,charging\n1000,1,0\n2000,0,0\n");
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.log.samples[0].level_percent, 1);
  EXPECT_EQ(r.result.level_scale, LevelScale::kPercent);
  // Given as a fraction, a level above 1 is outside its scale.
  r = ReadWith("time_ms,level,charging\n1000,0.5,0\n2000,1.5,0\n",
               "level_scale = fraction\n");
  EXPECT_FALSE(r.ok);
  EXPECT_EQ(r.error, "t.csv:3: level 1.5 is outside 0..1 (a fraction of 1)");
  // And in percent, above 100.
  r = ReadWith("time,battery_level,charging\n1000,101,0\n");
  EXPECT_EQ(r.error, "t.csv:2: level 101 % is outside 0..100");
}

TEST(LogReaderShapes, ChargingCodesAsTextAnyOtherMeaningNot) {
  // A list without not_charging_codes: every other value means not charging.
  Read r = ReadWith(
      "time_ms,level_percent,state\n1000,50,Charging\n2000,51,FULL\n"
      "3000,50,discharging\n4000,49,unplugged\n",
      "charging = state\ncharging_codes = Charging, Full\n");
  ASSERT_TRUE(r.ok) << r.error;
  ASSERT_EQ(r.log.samples.size(), 4u);
  EXPECT_EQ(r.log.samples[0].charging, 1);
  EXPECT_EQ(r.log.samples[1].charging, 1);
  EXPECT_EQ(r.log.samples[2].charging, 0);
  EXPECT_EQ(r.log.samples[3].charging, 0);
  // The level column's name says percent; 'state' is not taken for it.
  EXPECT_EQ(DescribeLogReading(r.result),
            "time = 'time_ms' (Unix ms; detected), level = 'level_percent' "
            "(percent; detected), charging = 'state' (codes: charging "
            "Charging|Full, not any other; given); 4 samples");
}

TEST(LogReaderShapes, TheToolsOwnLogsAndJournalCommentsArePlain) {
  Read r = ReadWith("# kez journal 1\ntime_ms,level_percent,charging,aux1\n"
                    "1000,50,0,21\n\n2000,49,0,21\n");
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.log.samples.size(), 2u);
  EXPECT_EQ(r.result.Skipped("comment line"), 1);
  EXPECT_EQ(r.result.Skipped("blank line"), 1);
  EXPECT_TRUE(r.result.Plain());
  EXPECT_EQ(DescribeLogReading(r.result),
            "time = 'time_ms' (Unix ms; detected), level = 'level_percent' "
            "(percent; detected), charging = 'charging' (0..1 or true/false; "
            "detected), aux1 = 'aux1' (detected); 2 samples; skipped 2 lines "
            "(1 comment line, 1 blank line)");
}

TEST(LogReaderShapes, RepeatedTimesAreKeptOrMergedAsAsked) {
  const std::string text =
      "time_ms,level_percent,charging\n1000,50,0\n2000,49,0\n2000,48,1\n"
      "2000,47,1\n3000,46,1\n";
  Read r = ReadWith(text);
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.log.samples.size(), 5u);
  EXPECT_TRUE(r.result.Plain());
  r = ReadWith(text, "duplicates = first\n");
  ASSERT_EQ(r.log.samples.size(), 3u);
  EXPECT_EQ(r.log.samples[1].level_percent, 49);
  EXPECT_EQ(r.log.samples[1].line_number, 3);
  EXPECT_EQ(r.result.rows_merged, 2);
  r = ReadWith(text, "duplicates = last\n");
  ASSERT_EQ(r.log.samples.size(), 3u);
  EXPECT_EQ(r.log.samples[1].level_percent, 47);
  EXPECT_EQ(r.log.samples[1].charging, 1);
  EXPECT_EQ(r.log.samples[1].line_number, 5);
  EXPECT_EQ(DescribeLogReading(r.result),
            "time = 'time_ms' (Unix ms; detected), level = 'level_percent' "
            "(percent; detected), charging = 'charging' (0..1 or true/false; "
            "detected); 3 samples; 2 rows with a repeated time merged (kept "
            "the last)");
}

TEST(LogReaderShapes, BadCasesStopWithFileLineColumnAndValue) {
  struct Case {
    std::string text, map, message;
  } cases[] = {
      {"", "", "t.csv: the log is empty"},
      {"time,battery_level,battery_status\n", "",
       "t.csv: the log holds no sample"},
      {"time,battery_level,battery_status\nyesterday,50,2\n", "",
       "t.csv:2: column 'time' holds neither a Unix time nor an ISO-8601 "
       "time with a UTC offset: 'yesterday' (see --time-unit)"},
      {"time,battery_level,battery_status\n1000,50,2\n1000.5,50,2\n",
       "time_unit = ms\n",
       "t.csv:3: time 1000.5 is not a whole number of milliseconds >= 0"},
      {"time,level,charging\n2000,50,0\n1000,50,0\n", "",
       "t.csv:3: time goes backwards: '1000' is 1000000 ms before line 2 (a "
       "log must be in time order)"},
      {"time,level,charging\n1000,50,0\n", "level = Battery\n",
       "t.csv:1: the header has no column 'Battery' (given as the level "
       "column)"},
      {"time,level,charging\n1000,50,yes\n", "",
       "t.csv:2: column 'charging' is not a number: 'yes'"},
      {"time,level,charging\n1000,50,3\n", "charging_codes = 1,2\n"
       "not_charging_codes = 0\n",
       "t.csv:2: column 'charging' holds an unknown charging code: '3' "
       "(codes: charging 1|2, not 0)"},
      {"time,level,charging\n1000,50,0\n", "time = level\n",
       "t.csv:1: column 'level' is read as both time and level"},
      {"time,level,charging\n1,2,0\n", "detect = off\n",
       "t.csv:1: the header has no column 'time_ms': not a battery log (a CSV "
       "log starts with a header naming time_ms, level_percent and "
       "charging)"},
      {"time,level,charging\nx,2,0\nx,3,0\n", "bad_rows = skip\n",
       "t.csv: the log holds no sample (2 bad rows skipped; the first: "
       "t.csv:2: column 'time' holds neither a Unix time nor an ISO-8601 "
       "time with a UTC offset: 'x' (see --time-unit))"},
  };
  for (const Case& c : cases) {
    Read r = ReadWith(c.text, c.map);
    EXPECT_FALSE(r.ok) << c.text;
    EXPECT_EQ(r.error, c.message) << c.text;
  }
}

TEST(LogReaderShapes, SkippedRowsAreCountedByReason) {
  Read r = ReadWith(
      "time,level,charging\n"
      "1000,50,0\n"
      "1300,fifty,0\n"   // level not a number
      "1600,50\n"        // wrong number of cells
      "1900,150,0\n"     // level outside its scale
      "2200,49,maybe\n"  // charging state not readable
      "2500,48,0\n"
      "1100,49,0\n"      // time going backwards
      "2800,47,1\n",
      "bad_rows = skip\n");
  ASSERT_TRUE(r.ok) << r.error;
  ASSERT_EQ(r.log.samples.size(), 3u);
  EXPECT_EQ(r.log.samples[0].time_ms, 1000000);
  EXPECT_EQ(r.log.samples[1].time_ms, 2500000);
  EXPECT_EQ(r.log.samples[2].time_ms, 2800000);
  EXPECT_EQ(r.result.Skipped("level not a number"), 1);
  EXPECT_EQ(r.result.Skipped("wrong number of cells"), 1);
  EXPECT_EQ(r.result.Skipped("level outside its scale"), 1);
  EXPECT_EQ(r.result.Skipped("charging state not readable"), 1);
  EXPECT_EQ(r.result.Skipped("time going backwards"), 1);
  EXPECT_EQ(r.result.skipped[1].first, "t.csv:4: 2 cells, but the header has 3");
  EXPECT_EQ(r.result.data_rows, 8);
}

}  // namespace
}  // namespace kez_tools
