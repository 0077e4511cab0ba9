// kez-tune as a person runs it: a short run writes a parameter file that
// kez-eval and kez-forecast accept with --params (and that changes the
// forecast), the feature mode writes a genome, and wrong command lines or
// files end with a message and the documented exit status.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "LogWriter.h"
#include "ParameterFile.h"
#include "Simulator.h"
#include "support/CliTestSupport.h"
#include "support/CommandRun.h"
#include "support/ScopedTempDir.h"

namespace {

using CliRun = kez_testing::CommandRun;
using kez_testing::Shell;
using kez_testing::TempPath;
using kez_testing::Contains;

const std::string kTune = KEZ_TUNE_BIN;
const std::string kForecast = KEZ_FORECAST_BIN;
const std::string kEval = KEZ_EVAL_BIN;

// A short run: 12 simulated days, 4 days of warm-up, coarse grids.
const char kQuick[] =
    " --generations 2 --offspring 2 --warmup 4 --every 4 --final-every 2"
    " --horizons 4,8 --report-horizons 2,8 ";

class TuneCli : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    log_ = TempPath("12d.csv");
    kez_tools::SimOptions o;
    o.days = 12;
    o.seed = 21;
    std::ofstream out(log_);
    kez_tools::WriteCsv(out, kez_tools::Simulate(o));
  }
  static std::string log_;
};
std::string TuneCli::log_;

TEST_F(TuneCli, WeightsRunWritesAFileThatTheOtherToolsUse) {
  const std::string params = TempPath("weights.txt");
  std::remove(params.c_str());
  CliRun run = Shell(kTune + kQuick + "--out " + params + " " + log_);
  ASSERT_EQ(0, run.exit_code) << run.out;
  EXPECT_TRUE(Contains(run.out, "generation 2/2: best ")) << run.out;
  EXPECT_TRUE(Contains(run.out, "Held-out part: level error")) << run.out;
  EXPECT_TRUE(Contains(run.out, "Parameter file written to " + params));

  vorn::MobilePowerPredictorParameter p;
  std::string error;
  ASSERT_TRUE(kez_tools::LoadParameterFile(params, &p, &error)) << error;
  EXPECT_GT(p.accuracy, 0.0);

  run = Shell(kEval + " --warmup 4 --params " + params + " " + log_);
  EXPECT_EQ(0, run.exit_code) << run.out;

  run = Shell(kForecast + " --format csv --params " + params + " " + log_);
  EXPECT_EQ(0, run.exit_code) << run.out;
  // A parameter file changes the forecast: a model with every weight 1
  // forecasts otherwise than the built-in one.
  std::ofstream(TempPath("far.txt"))
      << "accuracy\n0.0\n\nweight\n1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n";
  const CliRun other = Shell(kForecast + " --format json --params " +
                             TempPath("far.txt") + " " + log_);
  const CliRun builtin = Shell(kForecast + " --format json " + log_);
  EXPECT_EQ(0, other.exit_code) << other.out;
  EXPECT_NE(other.out, builtin.out);
}

TEST_F(TuneCli, FeatureRunWritesItsGenome) {
  const std::string genome = TempPath("genome.txt");
  std::remove(genome.c_str());
  const CliRun run =
      Shell(kTune + " --features" + kQuick + "--out " + genome + " " + log_);
  ASSERT_EQ(0, run.exit_code) << run.out;
  EXPECT_TRUE(Contains(run.out, "Feature set of the result")) << run.out;
  // One number a line; every encoded function ends with -1.
  std::ifstream in(genome);
  double v = 0;
  size_t values = 0, ends = 0;
  while (in >> v) {
    ++values;
    if (v == -1.0) ++ends;
  }
  EXPECT_EQ(-1.0, v);
  EXPECT_GE(values, 9u);  // the shortest function: one selection
  EXPECT_GT(ends, 0u);
}

TEST_F(TuneCli, WrongCommandLinesAndFilesAreRefused) {
  CliRun run = Shell(kTune);
  EXPECT_EQ(2, run.exit_code);
  EXPECT_TRUE(Contains(run.out, "usage: kez-tune"));
  run = Shell(kTune + " --generations 0 " + log_);
  EXPECT_EQ(2, run.exit_code);
  EXPECT_TRUE(Contains(run.out, "no budget")) << run.out;
  run = Shell(kTune + " --horizons 4,0.25 " + log_);
  EXPECT_EQ(2, run.exit_code);
  run = Shell(kTune + " --features --start x.txt " + log_);
  EXPECT_EQ(2, run.exit_code);
  run = Shell(kTune + kQuick + TempPath("missing.csv"));
  EXPECT_EQ(1, run.exit_code);
  run = Shell(kTune + kQuick + "--warmup 30 " + log_);
  EXPECT_EQ(1, run.exit_code);
  EXPECT_TRUE(Contains(run.out, "less than the warm-up")) << run.out;

  std::ofstream(TempPath("short.txt")) << "accuracy\n0.5\n\nweight\n1\n2\n";
  run = Shell(kForecast + " --params " + TempPath("short.txt") + " " + log_);
  EXPECT_EQ(1, run.exit_code);
  EXPECT_TRUE(Contains(run.out, "short.txt:7: the file ends before weight 2"))
      << run.out;
  run = Shell(kTune + kQuick + "--start " + TempPath("short.txt") + " " + log_);
  EXPECT_EQ(1, run.exit_code);
  run = Shell(kTune + kQuick + "--out /nonexistent/dir/p.txt " + log_);
  EXPECT_EQ(1, run.exit_code);
  EXPECT_TRUE(Contains(run.out, "cannot write")) << run.out;
}

}  // namespace
