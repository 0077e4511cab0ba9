#include "SimFleet.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "CivilTime.h"
#include "LogWriter.h"
#include "SeededRandom.h"
#include "SimProfile.h"

namespace kez_tools {

namespace {

// A well-mixed 64-bit value of `x` (the finaliser of splitmix64), so that
// neighbouring users get unrelated generators.
uint64_t Mix(uint64_t x) {
  x += 0x9e3779b97f4a7c15ULL;
  x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9ULL;
  x = (x ^ (x >> 27)) * 0x94d049bb133111ebULL;
  return x ^ (x >> 31);
}

// Ambient temperature on day `day_of_year` (0 = 1 January): lowest in mid
// January, highest in mid July, straight lines in between.
double Ambient(int64_t day_of_year) {
  const double from_july = std::abs(static_cast<double>(day_of_year) - 196.0);
  return 8.0 + 22.0 * (1.0 - std::min(from_july, 182.5) / 182.5);
}

}  // namespace

FleetUser MakeFleetUser(uint64_t seed, int index, int days) {
  SeededRandom r(Mix(seed ^ Mix(static_cast<uint64_t>(index))));
  FleetUser u;
  u.index = index;
  char name[32];
  std::snprintf(name, sizeof name, "user-%04d", index);
  u.name = name;
  SimOptions& o = u.options;
  o.days = days;

  // Routine.
  const double pick = r.Uniform();
  const char* routine = pick < 0.40   ? "regular"
                        : pick < 0.60 ? "heavy"
                        : pick < 0.85 ? "light"
                                      : "shift";
  FindSimProfile(routine, &o.profile);
  SimProfile& p = o.profile;
  const double wake_shift = r.Uniform(-60, 60);
  const double bed_shift = r.Uniform(-60, 60);
  p.wake_weekday += wake_shift;
  p.wake_weekend += wake_shift;
  p.bed_weekday += bed_shift;
  p.bed_weekend += bed_shift;
  const double use = r.Uniform(0.7, 1.4);
  p.sessions_day *= use;
  p.sessions_evening *= use;

  // Phone.
  u.capacity = r.Uniform(0.75, 1.4);
  u.charger = r.Uniform(0.5, 2.0);
  p.charge_rate *= u.charger;

  // Charging habit.
  const double habit = r.Uniform(0.85, 1.05);
  p.night_charge = std::min(0.99, p.night_charge * habit);
  p.night_charge_low = std::min(0.99, p.night_charge_low * habit);

  // Season.
  const int64_t first_day = DaysFromCivil(2024, 1, 1);
  const int64_t day_of_year = r.UniformInt(0, 365);
  o.start_day = first_day + day_of_year;
  u.ambient = Ambient(day_of_year);
  p.ambient = u.ambient;
  double drain = 1.0 / u.capacity;
  if (u.ambient < 12) drain *= 1.12;
  p.screen_drain *= drain;
  p.idle_drain *= drain;
  p.sleep_drain *= drain;

  // Clock and the simulator's seed.
  o.tz_offset_minutes = static_cast<int>(r.UniformInt(-8, 9)) * 60;
  o.seed = r.Next();
  return u;
}

std::string FleetHeader() {
  return "name,profile,seed,start,tz_offset_hours,capacity,charger,ambient_c";
}

std::string FleetLine(const FleetUser& u) {
  const CivilTime day = CivilFromMs(u.options.start_day * 86400000);
  char start[16];
  std::snprintf(start, sizeof start, "%04d-%02d-%02d", day.year, day.month,
                day.day);
  return u.name + "," + u.options.profile.name + "," +
         std::to_string(u.options.seed) + "," + start + "," +
         std::to_string(u.options.tz_offset_minutes / 60) + "," +
         FormatNumber(u.capacity) + "," + FormatNumber(u.charger) + "," +
         FormatNumber(u.ambient);
}

}  // namespace kez_tools
