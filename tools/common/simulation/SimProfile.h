// A simulated phone user's routine: when they sleep, how they use and charge
// the phone. Times are minutes after local midnight (a bed time past
// midnight is above 1440). Rates are battery percent per hour.
#ifndef KEZ_TOOLS_COMMON_SIMULATION_SIMPROFILE_H_
#define KEZ_TOOLS_COMMON_SIMULATION_SIMPROFILE_H_

#include <string>
#include <vector>

namespace kez_tools {

struct SimProfile {
  std::string name;
  std::string description;
  // Sleep. Weekend mornings are Saturday and Sunday, weekend nights the
  // nights after Friday and Saturday.
  double wake_weekday = 405, wake_weekend = 510, wake_sd = 15;
  double bed_weekday = 1380, bed_weekend = 1430, bed_sd = 25;
  // Works rotating shifts (early, late, night; one week each, two days off
  // a week) instead of the weekday routine.
  bool rotating_shifts = false;
  // Chance of plugging in at bed time, when the level is at least 50 % and
  // when it is lower.
  double night_charge = 0.93, night_charge_low = 0.97;
  // Chance per awake hour of a short top-up, and of plugging in when the
  // level is below 25 %.
  double topup_per_hour = 0.015, low_plug_per_hour = 0.5;
  // Screen sessions per awake hour (daytime and evening from 18:00), their
  // mean length in minutes, and the weekend factor on the rate.
  double sessions_day = 3.0, sessions_evening = 4.5, session_minutes = 6;
  double weekend_use = 1.2;
  // Drain with the screen on, awake with the screen off, asleep.
  double screen_drain = 12, idle_drain = 1.5, sleep_drain = 0.45;
  // Charger speed below 80 %, percent per minute.
  double charge_rate = 1.0;
  // Chance per day of switching the phone off for some hours.
  double off_per_day = 0.02;
  // Notifications and messages per awake minute.
  double notifications = 0.05, messages = 0.012;
  // Air temperature around the phone, degrees Celsius: the battery's
  // temperature (logged as aux1) settles a few degrees above it.
  double ambient = 25;
};

// The built-in routines: "regular", "shift", "heavy", "light".
const std::vector<SimProfile>& SimProfiles();
// Finds a built-in routine by name; false when there is none.
bool FindSimProfile(const std::string& name, SimProfile* profile);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_SIMULATION_SIMPROFILE_H_
