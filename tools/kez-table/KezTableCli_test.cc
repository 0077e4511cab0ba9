// Runs the built kez-table binary end to end: files in, summary and files
// out, errors and exit codes.
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "gtest/gtest.h"
#include "support/ScopedTempDir.h"

namespace {

// Files of this test binary, in a directory of its own removed at exit.
std::string Temp(const std::string& name) {
  static const kez_testing::ScopedTempDir dir;
  return dir.File(name);
}

void Write(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

std::string Read(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

bool Exists(const std::string& path) { return std::ifstream(path).good(); }

struct ToolRun {
  int status = -1;
  std::string out;
  std::string err;
};

// Runs kez-table with `args` (already quoted for the shell).
ToolRun Tool(const std::string& args) {
  const std::string out = Temp("stdout");
  const std::string err = Temp("stderr");
  const std::string command = std::string("'") + KEZ_TABLE_BIN + "' " + args +
                              " >'" + out + "' 2>'" + err + "'";
  ToolRun r;
  const int raw = std::system(command.c_str());
  r.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  r.out = Read(out);
  r.err = Read(err);
  std::remove(out.c_str());
  std::remove(err.c_str());
  return r;
}

std::string Q(const std::string& path) { return "'" + path + "'"; }

// Data lines (after the four header lines) of a saved table.
std::string DataOf(const std::string& saved) {
  size_t at = 0;
  for (int i = 0; i < 4 && at != std::string::npos; ++i) {
    at = saved.find('\n', at);
    if (at != std::string::npos) ++at;
  }
  return at == std::string::npos ? "" : saved.substr(at);
}

class KezTableTool : public ::testing::Test {
 protected:
  void SetUp() override {
    in_ = Temp("in.csv");
    out_ = Temp("out.csv");
    Write(in_, "# logged by hand\nt,a,b\n0,0,5\n10,0,5\n20,4,5\n30,4,7\n");
  }
  void TearDown() override {
    std::remove(in_.c_str());
    std::remove(out_.c_str());
  }
  std::string in_;
  std::string out_;
};

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST_F(KezTableTool, ExplainsItself) {
  const ToolRun none = Tool("");
  EXPECT_EQ(2, none.status);
  EXPECT_PRED2(Has, none.out, "Usage: kez-table");
  const ToolRun help = Tool("--help");
  EXPECT_EQ(0, help.status);
  EXPECT_PRED2(Has, help.out, "--smooth BLOCK kernel|spline");
}

TEST_F(KezTableTool, SummarySavesAndReadsBack) {
  const ToolRun r = Tool(Q(in_) + " --keep-labels -o " + Q(out_));
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ("", r.err);
  EXPECT_PRED2(Has, r.out, "(plain form)");
  EXPECT_PRED2(Has, r.out, "preamble   1 line\n");
  EXPECT_PRED2(Has, r.out, "rows       4\n");
  EXPECT_PRED2(Has, r.out, "times      0 .. 30\n");
  EXPECT_PRED2(Has, r.out, "sequences  1, starting at row 0\n");
  EXPECT_PRED2(Has, r.out, "Observation");
  EXPECT_PRED2(Has, r.out, "5.5");  // mean of b
  EXPECT_EQ(
      "Name,a,b\nCol type,Observation,Observation\n"
      "Value type,Numerical,Numerical\nStream,0,0\n"
      "0,0,5\n10,0,5\n20,4,5\n30,4,7\n",
      Read(out_));

  const ToolRun back = Tool(Q(out_) + " -q");
  EXPECT_EQ(0, back.status) << back.err;
  EXPECT_EQ("", back.out);
  const ToolRun again = Tool(Q(out_));
  EXPECT_PRED2(Has, again.out, "(header form)");
  EXPECT_PRED2(Has, again.out, "times      0 .. 30\n");
}

TEST_F(KezTableTool, OperationsRunInTheOrderGiven) {
  ASSERT_EQ(0, Tool(Q(in_) + " --keep-labels --diff a --delete-col 1 -o " +
                    Q(out_)).status);
  EXPECT_EQ("0,0\n10,0\n20,4\n30,0\n", DataOf(Read(out_)));
  // Deleting column "a" first makes "b" column 0, which is then
  // differentiated.
  ASSERT_EQ(0, Tool(Q(in_) + " --keep-labels --delete-col a --diff 0 -o " +
                    Q(out_)).status);
  EXPECT_EQ("0,0\n10,0\n20,0\n30,2\n", DataOf(Read(out_)));
}

TEST_F(KezTableTool, SequencesTravelInTheLabels) {
  const ToolRun r = Tool(Q(in_) + " --keep-labels --mark-sequence 2 --diff a -o " +
                     Q(out_));
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_PRED2(Has, r.out, "sequences  2, starting at rows 0, 2\n");
  EXPECT_EQ("0,0,5\n10,0,5\n*20,0,5\n30,0,7\n", DataOf(Read(out_)));
  const ToolRun back = Tool(Q(out_));
  EXPECT_PRED2(Has, back.out, "sequences  2, starting at rows 0, 2\n");

  // Deleting the row that starts a sequence hands the start on.
  ASSERT_EQ(0, Tool(Q(out_) + " --delete-row 2 -o " + Q(out_)).status);
  EXPECT_EQ("0,0,5\n10,0,5\n*30,0,7\n", DataOf(Read(out_)));
}

TEST_F(KezTableTool, UpsamplingInterpolatesTimesAndRelabels) {
  const ToolRun r = Tool(Q(in_) + " --upsample 2 -o " + Q(out_));
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_EQ("", r.err);  // labels were rewritten, so times survive
  EXPECT_EQ(
      "0,0,5\n5,0,5\n10,0,5\n15,2,5\n20,4,5\n25,4,6\n30,4,7\n30,4,7\n",
      DataOf(Read(out_)));
}

TEST_F(KezTableTool, SmoothingByKernelAndSpline) {
  ASSERT_EQ(0, Tool(Q(in_) + " --keep-labels --smooth Observation spline -o " +
                    Q(out_)).status);
  // Runs (a, b): rows 0-1, row 2, row 3; spline knots at 0.5, 2 and 3.
  const std::string spline = DataOf(Read(out_));
  EXPECT_EQ(0u, spline.find("0,0,5\n"));
  EXPECT_PRED2(Has, spline, "\n30,4,7\n");
  ASSERT_EQ(0, Tool(Q(in_) + " --keep-labels --smooth 0 kernel -o " +
                    Q(out_)).status);
  EXPECT_NE(spline, DataOf(Read(out_)));
}

TEST_F(KezTableTool, RecordedBatteryLog) {
  const std::string log =
      std::string(KEZ_SOURCE_DIR) + "/../shared/data/android-aware-2021-02.csv";
  if (!Exists(log)) GTEST_SKIP() << "no recorded log at " << log;
  const ToolRun r = Tool(Q(log) + " --keep-labels --line-step 10 -o " + Q(out_));
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_PRED2(Has, r.out, "rows       446\n");
  EXPECT_PRED2(Has, r.out, "level_percent");
  EXPECT_PRED2(Has, r.out, "battery_adaptor");
  EXPECT_EQ(0u, DataOf(Read(out_)).find("1612130332550,45,0,3,0\n"));
}

TEST_F(KezTableTool, FilesThatDoNotLoad) {
  ToolRun r = Tool(Q(Temp("missing.csv")));
  EXPECT_EQ(1, r.status);
  EXPECT_PRED2(Has, r.err, "cannot read");

  Write(in_, "just one line\n");
  r = Tool(Q(in_));
  EXPECT_EQ(1, r.status);
  EXPECT_PRED2(Has, r.err, "no line of column names");

  Write(in_, "");
  r = Tool(Q(in_));
  EXPECT_EQ(1, r.status);
  EXPECT_PRED2(Has, r.err, "no lines of data");

  // Types that do not stand together would put values in other columns.
  Write(in_,
        "Name,a,s,b\nCol type,Observation,State Index,Observation\n"
        "Value type,Numerical,Discrete,Numerical\nStream,0,0,0\n0,1,2,3\n");
  r = Tool(Q(in_) + " -o " + Q(out_));
  EXPECT_EQ(1, r.status);
  EXPECT_PRED2(Has, r.err, "do not stand together");
  EXPECT_FALSE(Exists(out_));

  Write(in_,
        "Name,a\nCol type,Observation\nValue type,Numerical\nStream,0\n0,1\n");
  r = Tool(Q(in_) + " --plain");
  EXPECT_EQ(1, r.status);
  EXPECT_PRED2(Has, r.err, "header form");
  r = Tool(Q(in_) + " --keep-labels");
  EXPECT_EQ(0, r.status);
  EXPECT_PRED2(Has, r.err, "--keep-labels has no effect");
}

TEST_F(KezTableTool, OperationsOnThingsThatDoNotExist) {
  ToolRun r = Tool(Q(in_) + " --diff nosuch -o " + Q(out_));
  EXPECT_EQ(1, r.status);
  EXPECT_PRED2(Has, r.err, "no column 'nosuch' (columns: a, b)");
  EXPECT_FALSE(Exists(out_));

  r = Tool(Q(in_) + " --delete-col 2");
  EXPECT_EQ(1, r.status);
  EXPECT_PRED2(Has, r.err, "no column '2'");

  r = Tool(Q(in_) + " --delete-row 4");
  EXPECT_EQ(1, r.status);
  EXPECT_PRED2(Has, r.err, "no row 4 (rows 0 to 3)");

  r = Tool(Q(in_) + " --mark-sequence 9");
  EXPECT_EQ(1, r.status);

  r = Tool(Q(in_) + " --smooth 'State Index' kernel");
  EXPECT_EQ(1, r.status);
  EXPECT_PRED2(Has, r.err, "no \"State Index\" columns");

  // A step that fails after others leaves nothing written.
  r = Tool(Q(in_) + " --diff a --delete-row 10 -o " + Q(out_));
  EXPECT_EQ(1, r.status);
  EXPECT_FALSE(Exists(out_));
}

TEST_F(KezTableTool, CommandLineMistakes) {
  EXPECT_EQ(2, Tool(Q(in_) + " --upsample 0").status);
  EXPECT_EQ(2, Tool(Q(in_) + " --upsample x").status);
  EXPECT_EQ(2, Tool(Q(in_) + " --delete-row -1").status);
  EXPECT_EQ(2, Tool(Q(in_) + " --line-step 0").status);
  EXPECT_EQ(2, Tool(Q(in_) + " --smooth Observation wavelet").status);
  EXPECT_EQ(2, Tool(Q(in_) + " --smooth Nowhere kernel").status);
  EXPECT_EQ(2, Tool(Q(in_) + " --diff").status);
  EXPECT_EQ(2, Tool(Q(in_) + " " + Q(in_)).status);
  const ToolRun r = Tool(Q(in_) + " --frobnicate");
  EXPECT_EQ(2, r.status);
  EXPECT_PRED2(Has, r.err, "unknown option --frobnicate");
  EXPECT_EQ(2, Tool("--keep-labels").status);  // no input file
}

TEST_F(KezTableTool, WarnsAboutWhatWouldBeLost) {
  // Without labels the saved file cannot carry the times.
  ToolRun r = Tool(Q(in_) + " -o " + Q(out_));
  EXPECT_EQ(0, r.status);
  EXPECT_PRED2(Has, r.err, "3 of 4 rows will read back");
  r = Tool(Q(in_) + " --relabel -o " + Q(out_));
  EXPECT_EQ("", r.err);
  EXPECT_EQ("0,0,5\n10,0,5\n20,4,5\n30,4,7\n", DataOf(Read(out_)));

  Write(in_, "t,a\n0,1\n1,2\n2\n3,4\n");
  r = Tool(Q(in_));
  EXPECT_EQ(0, r.status);
  EXPECT_PRED2(Has, r.err, "reading stopped at line 4");
  EXPECT_PRED2(Has, r.out, "rows       2\n");

  r = Tool(Q(in_) + " -q -o " + Q(Temp("no-such-dir") + "/x.csv"));
  EXPECT_EQ(1, r.status);
  EXPECT_PRED2(Has, r.err, "cannot write");
}

}  // namespace
