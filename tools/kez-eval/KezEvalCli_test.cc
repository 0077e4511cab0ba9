// kez-eval as a person runs it: a table and a chart from small logs, CSV and
// JSON read back and checked by their numbers on a log whose answers are
// known by hand, several logs pooled, a tuned model from a parameter file,
// and bad input (no arguments, unreadable or malformed logs, a log too
// short, a damaged parameter file) ending with a clear message and a
// non-zero exit.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "predictor/MobilePowerPredictorParameter.h"
#include "support/CliTestSupport.h"
#include "support/CommandRun.h"
#include "support/CsvRows.h"
#include "support/JsonValue.h"
#include "support/ScopedTempDir.h"

namespace {

using CliRun = kez_testing::CommandRun;
using kez_testing::TempPath;
using kez_testing::Contains;

CliRun Eval(const std::string& arguments) {
  return kez_testing::RunCommand(std::string(KEZ_EVAL_BIN) + " " + arguments);
}

// `days` of the same day, a sample every 5 minutes: charging 00:00-07:00,
// then down from full to 30 % by midnight.
std::string WriteRepeatedDay(const std::string& name, int days) {
  const std::string path = TempPath(name);
  std::ofstream out(path);
  out << "time_ms,level_percent,charging\n";
  const long long t0 = 1704067200000LL;
  for (int m = 0; m <= days * 1440; m += 5) {
    int minute = m % 1440;
    double level = minute < 210   ? 30 + 70.0 * minute / 210
                   : minute < 420 ? 100
                                  : 100 - 70.0 * (minute - 420) / 1020;
    out << t0 + m * 60000LL << "," << level << "," << (minute < 420) << "\n";
  }
  return path;
}

// 4 days of a steady discharge, 0.5 % an hour from 100 %, a sample every 10
// minutes, never charging.
std::string WriteSteadyDischarge(const std::string& name) {
  const std::string path = TempPath(name);
  std::ofstream out(path);
  out << "time_ms,level_percent,charging\n";
  const long long t0 = 1704067200000LL;
  for (int m = 0; m <= 4 * 1440; m += 10) {
    out << t0 + m * 60000LL << "," << 100.0 - 0.5 * m / 60.0 << ",0\n";
  }
  return path;
}

const char kSmall[] = "--warmup 2 --every 6 --horizons 1,4 ";

TEST(KezEvalCli, WithoutArgumentsPrintsUsage) {
  CliRun r = Eval("");
  EXPECT_EQ(r.exit_code, 2);
  EXPECT_TRUE(Contains(r.out, "usage: kez-eval"));
  r = Eval("--frobnicate x.csv");
  EXPECT_EQ(r.exit_code, 2);
  EXPECT_TRUE(Contains(r.out, "unknown option '--frobnicate'"));
  r = Eval("--horizons 1,0.25 x.csv");
  EXPECT_EQ(r.exit_code, 2);
  EXPECT_TRUE(Contains(r.out, "10-minute steps"));
}

TEST(KezEvalCli, BadLogsEndWithTheReadersMessage) {
  CliRun r = Eval(TempPath("missing.csv"));
  EXPECT_EQ(r.exit_code, 1);
  EXPECT_TRUE(Contains(r.out, "missing.csv")) << r.out;

  const std::string bad = TempPath("bad.csv");
  std::ofstream(bad) << "time_ms,level_percent,charging\n"
                     << "1704067200000,80,0\n1704067500000,180,0\n";
  r = Eval(bad);
  EXPECT_EQ(r.exit_code, 1);
  EXPECT_TRUE(Contains(r.out, "bad.csv:3")) << r.out;
}

TEST(KezEvalCli, TooShortLogIsExplainedNotTabled) {
  CliRun r = Eval(WriteRepeatedDay("short.csv", 2));
  EXPECT_EQ(r.exit_code, 1);
  EXPECT_TRUE(Contains(r.out, "less than the warm-up of 7 d")) << r.out;
  EXPECT_TRUE(Contains(r.out, "no forecast could be judged"));
  EXPECT_FALSE(Contains(r.out, "nan"));
}

TEST(KezEvalCli, TablesCsvJsonAndChart) {
  const std::string log = WriteRepeatedDay("4d.csv", 4);
  CliRun r = Eval(kSmall + log);
  ASSERT_EQ(r.exit_code, 0) << r.out;
  EXPECT_TRUE(Contains(r.out, "Level, free forecast"));
  EXPECT_TRUE(Contains(r.out, "Chance of charging"));
  EXPECT_TRUE(Contains(r.out, "learned from similar past moments"));
  EXPECT_TRUE(Contains(r.out, "Against the baselines and each other:"));
  EXPECT_TRUE(Contains(r.out, "the adaptive forecast is"));


  const std::string svg = TempPath("error.svg");
  r = Eval(std::string("--svg ") + svg + " " + kSmall + log);
  ASSERT_EQ(r.exit_code, 0) << r.out;
  std::ifstream in(svg);
  std::stringstream chart;
  chart << in.rdbuf();
  EXPECT_TRUE(Contains(chart.str(), "<svg"));
  EXPECT_TRUE(Contains(chart.str(), "running rates"));
  EXPECT_TRUE(Contains(chart.str(), "</svg>"));
}

// The steady discharge judged every 6 h from 48 h to 96 h: 9 forecast
// points, of which the last has no truth 1 h or 4 h later (8 pairs each).
// Holding the level still (persistence) errs by the slope times the
// horizon, 0.5 and 2 percentage points; yesterday's change over the same
// hours is exact (0); no week of history, so last week's path is the
// persistence one; never charging, so a chance of 0 scores a Brier of 0.
TEST(KezEvalCli, CsvHoldsTheNumbersOfASteadyDischarge) {
  const std::string log = WriteSteadyDischarge("steady.csv");
  CliRun r = Eval(std::string("--format csv ") + kSmall + log);
  ASSERT_EQ(r.exit_code, 0) << r.out;
  const auto rows = kez_testing::CsvRows(r.out);
  ASSERT_GT(rows.size(), 1u);
  EXPECT_EQ(rows[0], std::vector<std::string>({"log", "condition", "method", "horizon_h",
                                               "metric", "value", "n"}));
  // value and n of one row, or -1 when there is no such row.
  auto value = [&rows](const std::string& condition, const std::string& method,
                       const std::string& hours, const std::string& metric, double* n) {
    for (const auto& row : rows) {
      if (row.size() == 7 && row[1] == condition && row[2] == method && row[3] == hours &&
          row[4] == metric) {
        *n = std::stod(row[6]);
        return std::stod(row[5]);
      }
    }
    return -1.0;
  };
  for (const std::string condition : {"free", "nocharge"}) {
    SCOPED_TRACE(condition);
    double n = 0;
    EXPECT_EQ(value(condition, "persistence", "1", "mae_pp", &n), 0.5);
    EXPECT_EQ(n, 8);
    EXPECT_EQ(value(condition, "persistence", "4", "mae_pp", &n), 2.0);
    EXPECT_EQ(value(condition, "persistence", "4", "p90_pp", &n), 2.0);
    EXPECT_EQ(value(condition, "yesterday", "4", "mae_pp", &n), 0.0);
    EXPECT_EQ(value(condition, "last_week", "4", "mae_pp", &n), 2.0);
  }
  double n = 0;
  EXPECT_EQ(value("free", "persistence", "4", "brier", &n), 0.0);
  EXPECT_EQ(value("free", "forecaster", "1", "pairs", &n), 8.0);
  EXPECT_EQ(value("free", "forecaster", "1", "left_after_end", &n), 1.0);
}

TEST(KezEvalCli, JsonHoldsTheNumbersOfASteadyDischarge) {
  const std::string log = WriteSteadyDischarge("steady.csv");
  CliRun r = Eval(std::string("--format json ") + kSmall + log);
  ASSERT_EQ(r.exit_code, 0) << r.out;
  kez_testing::JsonValue json;
  ASSERT_TRUE(kez_testing::JsonValue::Parse(r.out, &json)) << r.out;
  EXPECT_EQ(json["version"].text, "1.04.21");
  const auto& options = json["options"];
  EXPECT_EQ(options["warmup_hours"].number, 48);
  EXPECT_EQ(options["every_hours"].number, 6);
  ASSERT_EQ(options["horizons_hours"].size(), 2u);
  EXPECT_EQ(options["horizons_hours"][0].number, 1);
  EXPECT_EQ(options["horizons_hours"][1].number, 4);

  ASSERT_EQ(json["logs"].size(), 1u);
  const auto& one = json["logs"][0];
  EXPECT_EQ(one["samples"].number, 4 * 144 + 1);
  EXPECT_EQ(one["span_hours"].number, 96);
  EXPECT_EQ(one["forecast_points"]["made"].number, 9);
  EXPECT_EQ(one["forecast_points"]["last_week_missing"].number, 9);
  EXPECT_EQ(one["first_point_ms"].number, 1704067200000.0 + 48 * 3600000.0);
  EXPECT_EQ(one["last_point_ms"].number, 1704067200000.0 + 96 * 3600000.0);
  ASSERT_EQ(one["horizons"].size(), 2u);
  const double persistence[2] = {0.5, 2.0};
  for (std::size_t k = 0; k < 2; ++k) {
    const auto& h = one["horizons"][k];
    SCOPED_TRACE(h["hours"].number);
    EXPECT_EQ(h["pairs"].number, 8);
    EXPECT_EQ(h["left_after_end"].number, 1);
    for (const std::string condition : {"free", "nocharge"}) {
      const auto& c = h[condition];
      EXPECT_EQ(c["persistence"]["mae_pp"].number, persistence[k]);
      EXPECT_EQ(c["persistence"]["p90_pp"].number, persistence[k]);
      EXPECT_EQ(c["yesterday"]["mae_pp"].number, 0.0);
      EXPECT_EQ(c["last_week"]["mae_pp"].number, persistence[k]);
    }
    for (const std::string method : {"forecaster", "persistence", "running_rates"}) {
      EXPECT_EQ(h["free"][method]["brier"].kind, kez_testing::JsonValue::kNumber);
      EXPECT_EQ(h["free"][method]["brier"].number, 0.0);
    }
  }
  EXPECT_EQ(one["low_level"]["events"].number, 0);
}

TEST(KezEvalCli, SeveralLogsArePooled) {
  const std::string a = WriteRepeatedDay("a.csv", 3);
  const std::string b = WriteRepeatedDay("b.csv", 4);
  CliRun r = Eval(kSmall + a + " " + b);
  ASSERT_EQ(r.exit_code, 0) << r.out;
  EXPECT_TRUE(Contains(r.out, "== all 2 logs =="));
}

TEST(KezEvalCli, ParameterFileSelectsTheModel) {
  const std::string log = WriteRepeatedDay("p.csv", 4);
  const std::string params = TempPath("default.txt");
  vorn::MobilePowerPredictorParameter defaults;
  defaults.SaveToFile(params.c_str());  // loaded below, or the run fails
  const std::string csv = std::string("--format csv ") + kSmall;
  CliRun built_in = Eval(csv + log);
  CliRun loaded = Eval(csv + "--params " + params + " " + log);
  ASSERT_EQ(loaded.exit_code, 0) << loaded.out;
  EXPECT_EQ(loaded.out, built_in.out);

  const std::string damaged = TempPath("damaged.txt");
  std::ofstream(damaged) << "accuracy\n0.5\n\nweight\n1.0\n2.0\n";
  CliRun r = Eval("--params " + damaged + " " + log);
  EXPECT_EQ(r.exit_code, 1);
  EXPECT_TRUE(Contains(r.out, "damaged.txt:7: the file ends before weight 2"))
      << r.out;
}

}  // namespace
