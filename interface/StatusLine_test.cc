#include "interface/StatusLine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kez {
namespace {

// A line of `columns` fields, field i = values[i] where given, else "0".
std::string Line(int columns, const std::vector<std::pair<int, std::string>>& values) {
  std::vector<std::string> fields(columns, "0");
  for (const auto& v : values) fields[v.first] = v.second;
  std::string line;
  for (int i = 0; i < columns; ++i) {
    if (i > 0) line += ",";
    line += fields[i];
  }
  return line;
}

TEST(StatusLineTest, ReadsTheSampleColumns) {
  const std::string line =
      Line(35, {{0, "1600000000000"}, {1, "text"}, {2, "50"}, {3, "1"},
                {19, "60"}, {20, "40"}, {24, "1.5"}, {25, "-2"}, {26, "3.25"},
                {29, "100"}, {30, "999"}, {34, "1"}});
  const StatusLine s = StatusLine::Parse(line.c_str());
  EXPECT_EQ(s.fieldCount, 35);
  EXPECT_EQ(s.days, 1600000000000.0 / 86400000.0);
  EXPECT_NEAR(s.days, 18518.518518518518, 1e-9);
  EXPECT_EQ(s.level, 0.5f);
  EXPECT_EQ(s.charging, 1.0f);
  EXPECT_EQ(s.countB1, 60.0);
  EXPECT_EQ(s.countB2, 40.0);
  EXPECT_EQ(s.aux1, 1.5f);
  EXPECT_EQ(s.aux2, -2.0f);
  EXPECT_EQ(s.aux3, 3.25f);
  EXPECT_EQ(s.countA, 100.0);
}

TEST(StatusLineTest, LevelIsScaledInDoubleThenRounded) {
  // 33 x 0.01 in double, then single precision: not 33.0f x 0.01f.
  const StatusLine s = StatusLine::Parse(Line(30, {{2, "33"}}).c_str());
  EXPECT_EQ(s.level, static_cast<float>(33.0 * 0.01));
  EXPECT_NE(s.level, 33.0f * 0.01f);
}

TEST(StatusLineTest, EmptyFieldsKeepTheirPosition) {
  const StatusLine s = StatusLine::Parse("5,,70,1");
  EXPECT_EQ(s.fieldCount, 4);
  EXPECT_EQ(s.level, 0.7f);
  EXPECT_EQ(s.charging, 1.0f);
  EXPECT_EQ(s.days, 5.0 / 86400000.0);
}

TEST(StatusLineTest, SplittingStopsWhenAFieldEqualsTheRest) {
  EXPECT_EQ(StatusLine::Parse("7,7").fieldCount, 0);
  EXPECT_EQ(StatusLine::Parse("1,2,5,5").fieldCount, 2);
  EXPECT_EQ(StatusLine::Parse("1,2,5,6").fieldCount, 4);
  EXPECT_EQ(StatusLine::Parse("1,2,").fieldCount, 2);
  EXPECT_EQ(StatusLine::Parse("").fieldCount, 0);
  EXPECT_EQ(StatusLine::Parse(nullptr).fieldCount, 0);

  // Columns 28 and 29 equal: both are lost, so countA reads as missing.
  const StatusLine s =
      StatusLine::Parse(Line(30, {{2, "80"}, {28, "5"}, {29, "5"}}).c_str());
  EXPECT_EQ(s.fieldCount, 28);
  EXPECT_EQ(s.level, 0.8f);
  EXPECT_EQ(s.countA, 0.0);
}

TEST(StatusLineTest, MissingColumnsAndTextReadAsZero) {
  const StatusLine s = StatusLine::Parse("86400000,x,abc");
  EXPECT_EQ(s.fieldCount, 3);
  EXPECT_EQ(s.days, 1.0);
  EXPECT_EQ(s.level, 0.0f);
  EXPECT_EQ(s.charging, 0.0f);
  EXPECT_EQ(s.countA, 0.0);
  EXPECT_EQ(s.aux3, 0.0f);
}

}  // namespace
}  // namespace kez
