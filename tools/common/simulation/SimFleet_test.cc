// A simulated fleet: users that differ in routine, phone, season and clock,
// each a function of the fleet's seed and the user's number only.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "CivilTime.h"
#include "SimFleet.h"

namespace kez_tools {
namespace {

TEST(SimFleetTest, UsersVaryWithinTheDocumentedRanges) {
  std::map<std::string, int> routines;
  std::set<int> zones;
  std::set<int64_t> starts;
  const int64_t first = DaysFromCivil(2024, 1, 1);
  const int64_t last = DaysFromCivil(2024, 12, 31);
  for (int i = 1; i <= 200; ++i) {
    const FleetUser u = MakeFleetUser(3, i, 20);
    EXPECT_EQ(u.options.days, 20);
    ++routines[u.options.profile.name];
    zones.insert(u.options.tz_offset_minutes);
    starts.insert(u.options.start_day);
    EXPECT_GE(u.options.start_day, first);
    EXPECT_LE(u.options.start_day, last);
    EXPECT_EQ(u.options.tz_offset_minutes % 60, 0);
    EXPECT_GE(u.options.tz_offset_minutes, -8 * 60);
    EXPECT_LE(u.options.tz_offset_minutes, 9 * 60);
    EXPECT_GE(u.capacity, 0.75);
    EXPECT_LT(u.capacity, 1.4);
    EXPECT_GE(u.charger, 0.5);
    EXPECT_LT(u.charger, 2.0);
    EXPECT_GE(u.ambient, 8.0);
    EXPECT_LE(u.ambient, 30.0);
    EXPECT_LE(u.options.profile.night_charge, 0.99);
  }
  // All four routines, roughly in their shares (40/20/25/15 % of 200).
  ASSERT_EQ(routines.size(), 4u);
  EXPECT_NEAR(routines["regular"], 80, 25);
  EXPECT_NEAR(routines["heavy"], 40, 20);
  EXPECT_NEAR(routines["light"], 50, 20);
  EXPECT_NEAR(routines["shift"], 30, 18);
  EXPECT_GE(zones.size(), 12u);
  // 200 draws of 366 days: about 154 different days expected.
  EXPECT_GE(starts.size(), 130u);
}

TEST(SimFleetTest, SeasonSetsTheAmbientTemperature) {
  // Mid July is the warm end (30 degrees), mid January the cold one.
  for (int i = 1; i <= 300; ++i) {
    const FleetUser u = MakeFleetUser(9, i, 10);
    const CivilTime day = CivilFromMs(u.options.start_day * 86400000);
    if (day.month == 7 && day.day >= 10 && day.day <= 20) EXPECT_GT(u.ambient, 28.5);
    if (day.month == 1 && day.day <= 20) EXPECT_LT(u.ambient, 9.5);
  }
}

TEST(SimFleetTest, AUserDependsOnTheSeedAndTheNumberOnly) {
  const FleetUser a = MakeFleetUser(3, 17, 30);
  const FleetUser b = MakeFleetUser(3, 17, 30);
  EXPECT_EQ(FleetLine(a), FleetLine(b));
  EXPECT_EQ(a.name, "user-0017");
  EXPECT_NE(FleetLine(a), FleetLine(MakeFleetUser(4, 17, 30)));
  EXPECT_NE(FleetLine(a), FleetLine(MakeFleetUser(3, 18, 30)));
  const Log la = Simulate(a.options);
  const Log lb = Simulate(b.options);
  ASSERT_EQ(la.samples.size(), lb.samples.size());
  EXPECT_EQ(la.samples.back().time_ms, lb.samples.back().time_ms);
  // The manifest line names what was drawn.
  EXPECT_EQ(FleetHeader(),
            "name,profile,seed,start,tz_offset_hours,capacity,charger,ambient_c");
  EXPECT_EQ(FleetLine(a).rfind("user-0017," + a.options.profile.name + ",", 0), 0u);
}

}  // namespace
}  // namespace kez_tools
