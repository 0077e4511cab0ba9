// A status log line becomes the report the host would have sent.
#include "adaptive/HostReportLine.h"

#include <gtest/gtest.h>

namespace kez {
namespace adaptive {
namespace {

TEST(HostReportLineTest, ColumnsBecomeTheNineValues) {
  // time 0, level 2, charging 3, countB1/B2 19/20, aux 24..26, countA 29.
  const char* line =
      "1766708276821,x,57,1,,,,,,,,,,,,,,,,60,40,,,,0.5,0.25,3,,,100";
  HostReport r;
  ASSERT_TRUE(HostReportFromLine(line, &r));
  EXPECT_EQ(r.timeMs, 1766708276821ULL);
  EXPECT_FLOAT_EQ(r.levelPercent, 57.0f);
  EXPECT_EQ(r.charging, 1.0f);
  EXPECT_EQ(r.aux1, 0.5f);
  EXPECT_EQ(r.aux2, 0.25f);
  EXPECT_EQ(r.aux3, 3.0f);
  EXPECT_EQ(r.countA, 100.0);
  EXPECT_EQ(r.countB1, 60.0);
  EXPECT_EQ(r.countB2, 40.0);
}

TEST(HostReportLineTest, EveryMillisecondComesBack) {
  HostReport r;
  for (unsigned long long t = 1600000000000ULL; t < 1600000000000ULL + 5000;
       t += 7) {
    const std::string line = std::to_string(t) + ",0,50,0";
    ASSERT_TRUE(HostReportFromLine(line.c_str(), &r));
    ASSERT_EQ(r.timeMs, t);
  }
}

TEST(HostReportLineTest, ImpossibleTimesAreRefused) {
  HostReport r;
  r.timeMs = 7;
  EXPECT_FALSE(HostReportFromLine("-5000,0,50,0", &r));
  EXPECT_FALSE(HostReportFromLine("1e30,0,50,0", &r));
  EXPECT_EQ(r.timeMs, 7u);
}

}  // namespace
}  // namespace adaptive
}  // namespace kez
