// A simulated fleet: N phone users from one seed, each with a routine, a
// phone and a season of their own, for studies and tuning across many users
// rather than one.
//
// User i (from 1) is a function of the fleet seed and i alone, so user 17 of
// a fleet of 20 is user 17 of a fleet of 200, and the same seed gives the
// same fleet on every platform (only uniform draws are used: see
// SeededRandom). Each user draws, in this order:
//   routine  one of the built-in routines (regular 40 %, heavy 20 %,
//            light 25 %, shift 15 %), its wake and bed times moved by up to
//            +-60 minutes and its screen sessions scaled by 0.7 to 1.4;
//   phone    a battery of 0.75 to 1.4 times the usual capacity (all drains
//            divided by it) and a charger of 0.5 to 2 times the usual speed;
//   charging the chance of plugging in at night scaled by 0.85 to 1.05
//            (at most 0.99);
//   season   a first day anywhere in 2024 and the ambient temperature of
//            that season (about 8 degrees in January, 30 in July, which moves
//            the logged battery temperature), with drains 12 % higher in the
//            coldest weeks;
//   clock    a time zone from UTC-8 to UTC+9 (whole hours);
//   seed     the simulator's own seed.
#ifndef KEZ_TOOLS_COMMON_SIMULATION_SIMFLEET_H_
#define KEZ_TOOLS_COMMON_SIMULATION_SIMFLEET_H_

#include <cstdint>
#include <string>

#include "Simulator.h"

namespace kez_tools {

struct FleetUser {
  int index = 0;     // from 1
  std::string name;  // "user-0001"
  SimOptions options;
  double capacity = 1;      // battery capacity factor
  double charger = 1;       // charger speed factor
  double ambient = 25;      // degrees Celsius
};

// User `index` (from 1) of the fleet `seed`, simulated over `days` days.
FleetUser MakeFleetUser(uint64_t seed, int index, int days);

// One line per user for people and scripts:
// "name,profile,seed,start,tz_offset_hours,capacity,charger,ambient_c".
std::string FleetHeader();
std::string FleetLine(const FleetUser& user);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_SIMULATION_SIMFLEET_H_
