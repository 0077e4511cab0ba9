// Times as people type and read them: calendar conversion, the accepted
// forms of --at/--when, zones, and durations.
#include <gtest/gtest.h>

#include "CivilTime.h"
#include "TimeText.h"

namespace kez_tools {
namespace {

TEST(CivilTime, RoundTripsAcrossLeapYearsAndBefore1970) {
  for (int64_t day = -800000; day <= 800000; day += 997) {
    CivilTime c = CivilFromMs(day * 86400000);
    EXPECT_EQ(DaysFromCivil(c.year, c.month, c.day), day);
  }
  CivilTime c = CivilFromMs(DaysFromCivil(2024, 2, 29) * 86400000 + 3723000);
  EXPECT_EQ(c.year, 2024);
  EXPECT_EQ(c.month, 2);
  EXPECT_EQ(c.day, 29);
  EXPECT_EQ(c.hour, 1);
  EXPECT_EQ(c.minute, 2);
  EXPECT_EQ(c.second, 3);
  EXPECT_EQ(c.weekday, 4);  // a Thursday
  EXPECT_EQ(CivilFromMs(-1).weekday, 3);
  EXPECT_EQ(CivilFromMs(-1).year, 1969);
}

TEST(TimeText, ParsesMomentsInTheirZone) {
  const DisplayZone utc = DisplayZone::Utc();
  const DisplayZone plus2 = DisplayZone::FixedOffset(120);
  const int64_t noon = 1712491200000;  // 2024-04-07T12:00Z
  struct Case {
    const char* text;
    DisplayZone zone;
    int64_t expected;
  } cases[] = {
      {"2024-04-07T12:00", utc, noon},
      {"2024-04-07 12:00", utc, noon},
      {"2024-04-07T12:00:30", utc, noon + 30000},
      {"2024-04-07T14:00", plus2, noon},
      {"2024-04-07T12:00Z", plus2, noon},
      {"2024-04-07T17:30+05:30", utc, noon},
      {"2024-04-07T07:00-05", utc, noon},
      {"2024-04-07", utc, noon - 12 * 3600000},
      {"1712491200000", plus2, noon},
  };
  for (const Case& c : cases) {
    int64_t t = 0;
    std::string error;
    EXPECT_TRUE(ParseMoment(c.text, c.zone, &t, &error)) << c.text << error;
    EXPECT_EQ(t, c.expected) << c.text;
  }
  for (const char* bad : {"", "tomorrow", "2024-13-01", "2024-02-30",
                          "2024-04-07T24:00", "2024-04-07T12", "2024-04-07X",
                          "2024-04-07T12:00+99", "12345678901234567890"}) {
    int64_t t;
    std::string error;
    EXPECT_FALSE(ParseMoment(bad, utc, &t, &error)) << bad;
    EXPECT_FALSE(error.empty());
  }
}

TEST(TimeText, ClockTimesAndTheNextOccurrence) {
  int m = -1;
  EXPECT_TRUE(ParseClock("08:05", &m));
  EXPECT_EQ(m, 485);
  EXPECT_TRUE(ParseClock("7:30", &m));
  EXPECT_EQ(m, 450);
  EXPECT_FALSE(ParseClock("24:00", &m));
  EXPECT_FALSE(ParseClock("8:5", &m));
  const int64_t noon = 1712491200000;
  const DisplayZone plus2 = DisplayZone::FixedOffset(120);
  // 08:00 at +02:00 after 14:00 local is tomorrow's 06:00 UTC.
  EXPECT_EQ(NextClockTime(noon, 480, plus2), noon + 18 * 3600000);
  EXPECT_EQ(NextClockTime(noon, 14 * 60, plus2), noon);
}

TEST(TimeText, FormatsTimesAndDurations) {
  const int64_t t = 1712491200000 + 5 * 60000 + 7000;
  EXPECT_EQ(FormatDateTime(t, DisplayZone::Utc()), "2024-04-07 12:05");
  EXPECT_EQ(FormatDayClock(t, DisplayZone::FixedOffset(-90)), "Sun 10:35");
  EXPECT_EQ(FormatIso(t, DisplayZone::Utc()), "2024-04-07T12:05:07Z");
  EXPECT_EQ(FormatIso(t, DisplayZone::FixedOffset(-90)),
            "2024-04-07T10:35:07-01:30");
  EXPECT_EQ(DisplayZone::FixedOffset(330).Name(t), "UTC+05:30");
  EXPECT_EQ(FormatDuration(29000), "0 min");
  EXPECT_EQ(FormatDuration(45 * 60000), "45 min");
  EXPECT_EQ(FormatDuration(6 * 3600000 + 20 * 60000), "6 h 20 min");
  EXPECT_EQ(FormatDuration(24 * 3600000), "24 h");
  EXPECT_EQ(FormatDuration(51 * 3600000), "2 d 3 h");
}

}  // namespace
}  // namespace kez_tools
