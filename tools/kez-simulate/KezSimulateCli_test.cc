// kez-simulate as a person runs it: the same options write the same log, in
// CSV or as the host's status lines; without arguments it explains itself.
#include <gtest/gtest.h>

#include <stdlib.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "support/CommandRun.h"

namespace {

using CliRun = kez_testing::CommandRun;

CliRun Shell(const std::string& command) {
  return kez_testing::RunCommand(command);
}

const std::string kSimulate = KEZ_SIMULATE_BIN;

std::string TempPath(const std::string& name) {
  return testing::TempDir() + "kez_simulate_cli_" + name;
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

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
  std::string dir = testing::TempDir() + "kez_simulate_fleet_XXXXXX";
  ASSERT_NE(mkdtemp(&dir[0]), nullptr);
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
