// kez-forecast as a person runs it: kez-simulate writes a log, kez-forecast
// reads it (from a file or standard input, CSV or status lines)
// and prints a forecast, a chart and machine-readable output; bad input and
// bad options end with a message and a non-zero exit.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "support/CliTestSupport.h"
#include "support/CommandRun.h"
#include "support/CsvRows.h"
#include "support/JsonValue.h"
#include "support/ScopedTempDir.h"

namespace {

using CliRun = kez_testing::CommandRun;
using kez_testing::Shell;
using kez_testing::TempPath;
using kez_testing::ReadFile;
using kez_testing::Contains;

const std::string kForecast = KEZ_FORECAST_BIN;
const std::string kSimulate = KEZ_SIMULATE_BIN;

class ForecastCli : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    log_ = TempPath("10d.csv");
    CliRun r = Shell(kSimulate + " --days 10 --seed 3 -o " + log_);
    ASSERT_EQ(r.exit_code, 0) << r.out;
  }
  static std::string log_;
};
std::string ForecastCli::log_;

TEST_F(ForecastCli, WithoutArgumentsItExplainsItself) {
  for (const std::string& tool : {kForecast}) {
    CliRun r = Shell(tool);
    EXPECT_EQ(r.exit_code, 2);
    EXPECT_TRUE(Contains(r.out, "usage:")) << r.out;
    EXPECT_EQ(Shell(tool + " --help").exit_code, 0);
  }
}

TEST_F(ForecastCli, TheAdaptiveForecastSaysWhatItWeighedAndRawIsOnRequest) {
  CliRun adaptive = Shell(kForecast + " --format json " + log_);
  ASSERT_EQ(adaptive.exit_code, 0) << adaptive.out;
  EXPECT_TRUE(Contains(adaptive.out, "\"adaptive\": true")) << adaptive.out;
  EXPECT_TRUE(Contains(adaptive.out, "\"weights\": {\"instance\": "));
  CliRun text = Shell(kForecast + " " + log_);
  ASSERT_EQ(text.exit_code, 0) << text.out;
  EXPECT_TRUE(Contains(text.out, "Method    adaptive")) << text.out;
  EXPECT_TRUE(Contains(text.out, "Weighted  each method's weight")) << text.out;
  CliRun raw = Shell(kForecast + " --raw --format json " + log_);
  ASSERT_EQ(raw.exit_code, 0) << raw.out;
  EXPECT_TRUE(Contains(raw.out, "\"adaptive\": false")) << raw.out;
  EXPECT_FALSE(Contains(raw.out, "\"weights\""));
  EXPECT_TRUE(Contains(Shell(kForecast + " --raw " + log_).out,
                       "the forecaster's own forecast (--raw)"));
}

TEST_F(ForecastCli, ForecastPrintsTheReplayTheSourceTheAnswersAndTheTable) {
  CliRun r = Shell(kForecast + " --when 08:00 --level 30 " + log_);
  ASSERT_EQ(r.exit_code, 0) << r.out;
  for (const char* part :
       {"samples read", "reports added (every 5 min", "Now ", "Forecast  ",
        "charging expected", "not charged: reaches 30 %",
        "not charged: reaches 0 %", "plugged in now: full",
        "level at ", "level  chance", "not charged", "plugged in now"}) {
    EXPECT_TRUE(Contains(r.out, part)) << part << "\n" << r.out;
  }
  // One day in rows of 30 minutes, after the table's two header lines.
  size_t table = r.out.find("level  chance");
  ASSERT_NE(table, std::string::npos);
  std::string rows = r.out.substr(r.out.find('\n', table) + 1);
  EXPECT_EQ(std::count(rows.begin(), rows.end(), '\n'), 48) << rows;
  CliRun csv = Shell(kForecast + " --format csv --variant nocharge --steps 12 " +
                  log_);
  ASSERT_EQ(csv.exit_code, 0) << csv.out;
  EXPECT_EQ(std::count(csv.out.begin(), csv.out.end(), '\n'), 13);
  EXPECT_EQ(csv.out.substr(0, csv.out.find('\n')),
            "step,time_ms,time,nocharge_level_percent,nocharge_charging");
  const auto steps = kez_testing::CsvRows(csv.out);
  for (std::size_t k = 1; k < steps.size(); ++k) {
    ASSERT_EQ(steps[k].size(), 5u) << k;
    EXPECT_EQ(std::stoi(steps[k][0]), static_cast<int>(k) - 1);
    if (k > 1) {  // 10 minutes a step
      EXPECT_EQ(std::stoll(steps[k][1]) - std::stoll(steps[k - 1][1]), 600000);
    }
    const double level = std::stod(steps[k][3]);
    EXPECT_GE(level, 0.0);
    EXPECT_LE(level, 100.0);
    EXPECT_EQ(std::stod(steps[k][4]), 0.0);  // not charged
  }
  CliRun json = Shell(kForecast + " --format json --steps 6 " + log_);
  ASSERT_EQ(json.exit_code, 0) << json.out;
  kez_testing::JsonValue parsed;
  ASSERT_TRUE(kez_testing::JsonValue::Parse(json.out, &parsed)) << json.out;
  EXPECT_TRUE(parsed["learned"].boolean);
  EXPECT_EQ(parsed["similar_moments"].number, 16);
  EXPECT_EQ(parsed["steps"].size(), 6u);
}

// One sample, 50 % and not charging: nothing to learn from, so every variant
// of the forecaster's own forecast (--raw) extrapolates the starting rates, -0.0983 percentage points a step while
// not charging and +5 while charging: 49.9017, 49.8034, 49.7051 and 55, 60,
// 65 (printed to three decimals), one step every 10 minutes.
TEST(ForecastCliOneSample, JsonGivesTheStartingRatesFromTheOnlySample) {
  const std::string log = TempPath("one.csv");
  std::ofstream(log) << "time_ms,level_percent,charging\n1704067200000,50,0\n";
  CliRun r = Shell(kForecast + " --raw --format json --steps 3 " + log);
  ASSERT_EQ(r.exit_code, 0) << r.out;
  kez_testing::JsonValue json;
  ASSERT_TRUE(kez_testing::JsonValue::Parse(r.out, &json)) << r.out;
  EXPECT_EQ(json["log"]["samples"].number, 1);
  EXPECT_EQ(json["now"]["time_ms"].number, 1704067200000.0);
  EXPECT_EQ(json["now"]["level_percent"].number, 50);
  EXPECT_FALSE(json["now"]["charging"].boolean);
  EXPECT_FALSE(json["learned"].boolean);
  EXPECT_EQ(json["similar_moments"].number, 0);
  EXPECT_EQ(json["distance"].number, 100);
  const auto& steps = json["steps"];
  ASSERT_EQ(steps.size(), 3u);
  for (std::size_t k = 0; k < 3; ++k) {
    SCOPED_TRACE(k);
    const auto& s = steps[k];
    EXPECT_EQ(s["step"].number, k);
    EXPECT_EQ(s["time_ms"].number, 1704067200000.0 + 600000.0 * (k + 1));
    const double falling = 50 - 0.0983 * (k + 1);
    EXPECT_NEAR(s["free"]["level_percent"].number, falling, 0.0005);
    EXPECT_EQ(s["free"]["charging"].number, 0);
    EXPECT_NEAR(s["nocharge"]["level_percent"].number, falling, 0.0005);
    EXPECT_EQ(s["charge"]["level_percent"].number, 55.0 + 5.0 * k);
    EXPECT_EQ(s["charge"]["charging"].number, 1);
  }
  // No answer falls within three steps.
  for (const auto& a : json["answers"].items) {
    EXPECT_EQ(a["step"].kind, kez_testing::JsonValue::kNull) << a["kind"].text;
  }
}

TEST_F(ForecastCli, StandardInputStatusLinesAndAsLoggedReplay) {
  std::string lines = TempPath("3d.status");
  ASSERT_EQ(Shell(kSimulate + " --days 3 --format status -o " + lines).exit_code,
            0);
  CliRun r = Shell("cat " + lines + " | " + kForecast +
                " --status-lines --variant free -");
  ASSERT_EQ(r.exit_code, 0) << r.out;
  EXPECT_TRUE(Contains(r.out, "standard input")) << r.out;
  // Half a day of history is too short to learn from.
  CliRun as_logged = Shell(kForecast + " --as-logged --at 2024-03-04T12:00 " + log_);
  ASSERT_EQ(as_logged.exit_code, 0) << as_logged.out;
  EXPECT_TRUE(Contains(as_logged.out, "replayed as logged")) << as_logged.out;
  EXPECT_TRUE(Contains(as_logged.out, "extrapolated")) << as_logged.out;
}

TEST_F(ForecastCli, ChartIsAnSvgWithAxesAndLegend) {
  std::string svg = TempPath("chart.svg");
  std::remove(svg.c_str());
  CliRun r = Shell(kForecast + " --at 2024-03-09T18:00 --tz-offset 1 --svg " +
                svg + " " + log_);
  ASSERT_EQ(r.exit_code, 0) << r.out;
  std::string text = ReadFile(svg);
  EXPECT_EQ(text.rfind("<svg ", 0), 0u);
  for (const char* part : {"100 %", "battery level", "if not charged",
                           "chance of charging", "now Sat 17:5",
                           "logged after the forecast point", "</svg>"}) {
    EXPECT_TRUE(Contains(text, part)) << part;
  }
}

TEST_F(ForecastCli, BadInputEndsWithAMessageAndNonZeroExit) {
  std::string bad = TempPath("bad.csv");
  std::ofstream(bad) << "time_ms,level_percent,charging\n1000,50,0\n900,49,0\n";
  std::string header = TempPath("header.csv");
  std::ofstream(header) << "when,percent\n1,2\n";
  struct Case {
    std::string args;
    int exit_code;
    std::string message;
  } cases[] = {
      {"/nonexistent.csv", 1, "/nonexistent.csv: cannot open"},
      {bad, 1, "bad.csv:3: time goes backwards"},
      {header, 1, "header.csv:1: the header has no column 'time_ms'"},
      {"--status-lines " + log_, 1, "status line has at least 30"},
      {"--at 2020-01-01T00:00 " + log_, 1, "is before the log's first sample"},
      {"--at yesterday " + log_, 2, "--at: 'yesterday' is not a time"},
      {"--steps 0 " + log_, 2, "--steps takes a whole number from 1"},
      {"--variant maybe " + log_, 2, "--variant is free, nocharge, charge"},
      {"--frobnicate " + log_, 2, "unknown option '--frobnicate'"},
      {"--when 25:00 " + log_, 2, "--when: '25:00' is neither"},
      {log_ + " " + log_, 2, "one log at a time"},
  };
  for (const Case& c : cases) {
    CliRun r = Shell(kForecast + " " + c.args);
    EXPECT_EQ(r.exit_code, c.exit_code) << c.args << "\n" << r.out;
    EXPECT_TRUE(Contains(r.out, c.message)) << c.args << "\n" << r.out;
  }
  CliRun empty = Shell("printf '' | " + kForecast + " -");
  EXPECT_EQ(empty.exit_code, 1);
  EXPECT_TRUE(Contains(empty.out, "-: the log is empty")) << empty.out;
  EXPECT_EQ(Shell(kSimulate + " --days x").exit_code, 2);
  EXPECT_EQ(Shell(kSimulate + " --profile nobody").exit_code, 2);
  EXPECT_EQ(Shell(kSimulate + " -o /nonexistent/dir/x.csv").exit_code, 1);
}

}  // namespace
