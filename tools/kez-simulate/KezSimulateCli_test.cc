// kez-simulate as a person runs it: the same options write the same log, in
// CSV or as the host's status lines; without arguments it explains itself.
#include <gtest/gtest.h>

#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "support/CliTestSupport.h"
#include "support/CommandRun.h"
#include "support/CsvRows.h"
#include "support/ScopedTempDir.h"

namespace {

using CliRun = kez_testing::CommandRun;
using kez_testing::Shell;
using kez_testing::TempPath;
using kez_testing::ReadFile;
using kez_testing::Contains;

const std::string kSimulate = KEZ_SIMULATE_BIN;

class SimulateCli : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    log_ = TempPath("10d.csv");
    CliRun r = Shell(kSimulate + " --days 10 --seed 3 -o " + log_);
    ASSERT_EQ(r.exit_code, 0) << r.out;
  }
  static std::string log_;
};
std::string SimulateCli::log_;

TEST_F(SimulateCli, WithoutArgumentsItExplainsItself) {
  CliRun r = Shell(kSimulate);
  EXPECT_EQ(r.exit_code, 2);
  EXPECT_TRUE(Contains(r.out, "usage:")) << r.out;
  EXPECT_EQ(Shell(kSimulate + " --help").exit_code, 0);
}

// The 10 days from 2024-03-04 00:00 UTC (1709510400000 ms), read back as
// numbers: nine columns, a report within the first 5 minutes, times rising
// and within the 10 days, whole percents within 0 .. 100, charging 0 or 1,
// and about one report every 5 minutes (the phone is off now and then).
TEST_F(SimulateCli, CsvReportsEveryFewMinutesWithinTheDays) {
  const auto rows = kez_testing::CsvRows(ReadFile(log_));
  ASSERT_GT(rows.size(), 1u);
  const long long t0 = 1709510400000LL, day = 86400000LL;
  long long last = 0;
  for (std::size_t k = 1; k < rows.size(); ++k) {
    SCOPED_TRACE(k);
    ASSERT_EQ(rows[k].size(), 9u);
    const long long t = std::stoll(rows[k][0]);
    if (k == 1) {
      EXPECT_GE(t, t0);
      EXPECT_LT(t, t0 + 5 * 60000LL);
    } else {
      EXPECT_GT(t, last);
    }
    EXPECT_LT(t, t0 + 10 * day);
    last = t;
    const double level = std::stod(rows[k][1]);
    EXPECT_EQ(level, static_cast<int>(level));
    EXPECT_GE(level, 0);
    EXPECT_LE(level, 100);
    EXPECT_TRUE(rows[k][2] == "0" || rows[k][2] == "1") << rows[k][2];
  }
  const std::size_t reports = rows.size() - 1;
  EXPECT_LE(reports, 10u * 288u + 20u);
  EXPECT_GE(reports, 10u * 288u * 9u / 10u);
}

TEST_F(SimulateCli, SimulateIsDeterministicAndWritesBothFormats) {
  std::string again = TempPath("10d-again.csv");
  ASSERT_EQ(Shell(kSimulate + " --days 10 --seed 3 -o " + again).exit_code, 0);
  EXPECT_EQ(ReadFile(again), ReadFile(log_));
  std::string csv = ReadFile(log_);
  EXPECT_EQ(csv.substr(0, csv.find('\n')),
            "time_ms,level_percent,charging,aux1,aux2,aux3,countA,countB1,"
            "countB2");
  CliRun status = Shell(kSimulate + " --days 1 --format status --profile heavy");
  ASSERT_EQ(status.exit_code, 0);
  std::string first = status.out.substr(0, status.out.find('\n'));
  EXPECT_EQ(std::count(first.begin(), first.end(), ','), 31) << first;
  CliRun list = Shell(kSimulate + " --list-profiles");
  EXPECT_TRUE(Contains(list.out, "shift")) << list.out;
}

TEST_F(SimulateCli, UsersWritesAFleetFolder) {
  const std::string dir = TempPath("fleet");
  ASSERT_EQ(mkdir(dir.c_str(), 0700), 0);
  ASSERT_EQ(Shell(kSimulate + " --users 3 --days 5 --seed 4 -o " + dir + "/a")
                .exit_code,
            0);
  ASSERT_EQ(Shell(kSimulate + " --users 3 --days 5 --seed 4 -o " + dir + "/b")
                .exit_code,
            0);
  const std::string list = ReadFile(dir + "/a/fleet.csv");
  EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), 4) << list;
  EXPECT_EQ(list.substr(0, list.find('\n')),
            "name,profile,seed,start,tz_offset_hours,capacity,charger,"
            "ambient_c");
  EXPECT_TRUE(Contains(list, "\nuser-0003,")) << list;
  EXPECT_EQ(ReadFile(dir + "/b/fleet.csv"), list);
  for (const char* user : {"user-0001.csv", "user-0002.csv", "user-0003.csv"}) {
    const std::string log = ReadFile(dir + "/a/" + user);
    EXPECT_EQ(log.substr(0, log.find('\n')),
              "time_ms,level_percent,charging,aux1,aux2,aux3,countA,countB1,"
              "countB2");
    EXPECT_GT(std::count(log.begin(), log.end(), '\n'), 5 * 24 * 6) << user;
    EXPECT_EQ(ReadFile(dir + "/b/" + user), log) << user;
  }
  EXPECT_NE(ReadFile(dir + "/a/user-0001.csv"), ReadFile(dir + "/a/user-0002.csv"));
  // The routine and start are drawn per user; a fleet needs a folder.
  EXPECT_EQ(Shell(kSimulate + " --users 2 --profile heavy -o " + dir + "/c")
                .exit_code,
            2);
  EXPECT_EQ(Shell(kSimulate + " --users 2").exit_code, 2);
}

}  // namespace
