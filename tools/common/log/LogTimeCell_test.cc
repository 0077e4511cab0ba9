// Time cells in Unix seconds and ISO-8601, exactly to the millisecond; the
// expected values are worked out by hand from the calendar (2024-01-01 is day
// 19723 after 1970-01-01).
#include <gtest/gtest.h>

#include <cstdint>

#include "LogTimeCell.h"

namespace kez_tools {
namespace {

TEST(LogTimeCell, SecondsAndIsoTimesExactly) {
  int64_t t = -1;
  EXPECT_TRUE(ParseUnixSecondsCell("0", &t));
  EXPECT_EQ(t, 0);
  EXPECT_TRUE(ParseUnixSecondsCell("1612130332.5", &t));
  EXPECT_EQ(t, 1612130332500);
  EXPECT_TRUE(ParseUnixSecondsCell("1612130332.0019", &t));  // rounded down
  EXPECT_EQ(t, 1612130332001);
  for (const char* bad : {"", "-1", "1e9", "1.", ".5", "12 ", "0x10"}) {
    EXPECT_FALSE(ParseUnixSecondsCell(bad, &t)) << bad;
  }
  // 1970-01-01T00:00Z, and the same moment elsewhere.
  EXPECT_TRUE(ParseIsoTimeCell("1970-01-01T00:00Z", &t));
  EXPECT_EQ(t, 0);
  EXPECT_TRUE(ParseIsoTimeCell("1970-01-01T05:30:00+05:30", &t));
  EXPECT_EQ(t, 0);
  EXPECT_TRUE(ParseIsoTimeCell("1969-12-31 19:00:00.25 -0500", &t));
  EXPECT_EQ(t, 250);
  // 2024-02-29 is day 19723 + 59.
  EXPECT_TRUE(ParseIsoTimeCell("2024-02-29T12:00:00+00", &t));
  EXPECT_EQ(t, (int64_t{19782} * 86400 + 43200) * 1000);
  for (const char* bad :
       {"2024-02-29T12:00:00", "2023-02-29T12:00Z", "2024-13-01T00:00Z",
        "2024-01-01T24:00Z", "2024-01-01", "1969-12-31T23:59Z",
        "2024-01-01T00:00Zulu", "2024-1-01T00:00Z", "2024-01-01T00:00+5"}) {
    EXPECT_FALSE(ParseIsoTimeCell(bad, &t)) << bad;
  }
}

}  // namespace
}  // namespace kez_tools
