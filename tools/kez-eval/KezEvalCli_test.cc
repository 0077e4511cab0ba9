// kez-eval as a person runs it: a table, CSV, JSON and a chart from small
// logs, several logs pooled, a tuned model from a parameter file, and bad
// input (no arguments, unreadable or malformed logs, a log too short, a
// damaged parameter file) ending with a clear message and a non-zero exit.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "predictor/MobilePowerPredictorParameter.h"
#include "support/CommandRun.h"

namespace {

using CliRun = kez_testing::CommandRun;

CliRun Eval(const std::string& arguments) {
  return kez_testing::RunCommand(std::string(KEZ_EVAL_BIN) + " " + arguments);
}

std::string TempPath(const std::string& name) {
  return testing::TempDir() + "kez_eval_cli_" + name;
}

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
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

  r = Eval(std::string("--format csv ") + kSmall + log);
  ASSERT_EQ(r.exit_code, 0) << r.out;
  EXPECT_EQ(r.out.rfind("log,condition,method,horizon_h,metric,value,n\n", 0),
            0u);
  EXPECT_TRUE(Contains(r.out, ",free,yesterday,4,mae_pp,"));

  r = Eval(std::string("--format json ") + kSmall + log);
  ASSERT_EQ(r.exit_code, 0) << r.out;
  EXPECT_EQ(r.out[0], '{');
  EXPECT_TRUE(Contains(r.out, "\"horizons_hours\": [1, 4]"));
  EXPECT_TRUE(Contains(r.out, "\"last_week\": {\"pairs\""));

  const std::string svg = TempPath("error.svg");
  std::remove(svg.c_str());
  r = Eval(std::string("--svg ") + svg + " " + kSmall + log);
  ASSERT_EQ(r.exit_code, 0) << r.out;
  std::ifstream in(svg);
  std::stringstream chart;
  chart << in.rdbuf();
  EXPECT_TRUE(Contains(chart.str(), "<svg"));
  EXPECT_TRUE(Contains(chart.str(), "running rates"));
  EXPECT_TRUE(Contains(chart.str(), "</svg>"));
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
  ASSERT_EQ(defaults.SaveToFile(params.c_str()), 0);
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
