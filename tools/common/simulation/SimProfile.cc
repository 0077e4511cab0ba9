#include "SimProfile.h"

namespace kez_tools {
namespace {

std::vector<SimProfile> MakeProfiles() {
  std::vector<SimProfile> all;

  SimProfile regular;
  regular.name = "regular";
  regular.description =
      "office hours, up at 6:45 on weekdays, charges almost every night";
  all.push_back(regular);

  SimProfile shift = regular;
  shift.name = "shift";
  shift.description =
      "rotating early/late/night shifts, a week each; irregular charging";
  shift.rotating_shifts = true;
  shift.wake_sd = 35;
  shift.bed_sd = 40;
  shift.night_charge = 0.8;
  shift.night_charge_low = 0.9;
  shift.topup_per_hour = 0.05;
  shift.weekend_use = 1.0;
  shift.off_per_day = 0.03;
  all.push_back(shift);

  SimProfile heavy = regular;
  heavy.name = "heavy";
  heavy.description =
      "heavy user, late nights, tops up during the day and sometimes runs flat";
  heavy.wake_weekday = 435;
  heavy.wake_weekend = 540;
  heavy.bed_weekday = 1470;
  heavy.bed_weekend = 1530;
  heavy.bed_sd = 35;
  heavy.night_charge = 0.88;
  heavy.night_charge_low = 0.95;
  heavy.topup_per_hour = 0.08;
  heavy.low_plug_per_hour = 0.4;
  heavy.sessions_day = 4.0;
  heavy.sessions_evening = 5.5;
  heavy.session_minutes = 7;
  heavy.screen_drain = 16;
  heavy.idle_drain = 2.2;
  heavy.sleep_drain = 0.6;
  heavy.notifications = 0.12;
  heavy.messages = 0.03;
  all.push_back(heavy);

  SimProfile light = regular;
  light.name = "light";
  light.description =
      "light user, charges only when the battery is below about half";
  light.wake_weekday = 390;
  light.wake_weekend = 450;
  light.bed_weekday = 1350;
  light.bed_weekend = 1380;
  light.night_charge = 0.25;
  light.night_charge_low = 0.9;
  light.topup_per_hour = 0.005;
  light.sessions_day = 1.5;
  light.sessions_evening = 2.0;
  light.session_minutes = 5;
  light.idle_drain = 1.2;
  light.sleep_drain = 0.3;
  light.notifications = 0.02;
  light.messages = 0.005;
  all.push_back(light);
  return all;
}

}  // namespace

const std::vector<SimProfile>& SimProfiles() {
  static const std::vector<SimProfile> profiles = MakeProfiles();
  return profiles;
}

bool FindSimProfile(const std::string& name, SimProfile* profile) {
  for (const SimProfile& p : SimProfiles()) {
    if (p.name == name) {
      *profile = p;
      return true;
    }
  }
  return false;
}

}  // namespace kez_tools
