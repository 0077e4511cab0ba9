// Writes synthetic phone logs: weeks of a daily routine (sleep, use,
// overnight charging, missed charges, top-ups, the phone switched off or run
// flat), reported the way a host app reports: every `interval_minutes` with
// some seconds of jitter, never more than 10 minutes apart while the phone
// is on, plus a report when the charger is plugged or unplugged; nothing
// while the phone is off.
//
// The result depends only on the options: the same seed gives the same log
// on every platform (see SeededRandom). Each sample holds:
//   level_percent  whole percent, as phones report it
//   charging       1 while plugged in
//   aux1           battery temperature, degrees Celsius (one decimal)
//   aux2           battery voltage, volts (three decimals)
//   aux3           minutes the screen was on since the previous report
//   countA         apps opened since the previous report
//   countB1        notifications since the previous report
//   countB2        messages and calls since the previous report
#ifndef KEZ_TOOLS_COMMON_SIMULATION_SIMULATOR_H_
#define KEZ_TOOLS_COMMON_SIMULATION_SIMULATOR_H_

#include <cstdint>

#include "LogSample.h"
#include "SimProfile.h"

namespace kez_tools {

struct SimOptions {
  int days = 35;
  uint64_t seed = 1;
  int64_t start_day = 19786;      // days since 1970-01-01 (2024-03-04, Mon)
  int tz_offset_minutes = 0;      // the routine runs on this wall clock
  int interval_minutes = 5;       // 1 to 10
  SimProfile profile;             // "regular" unless set
};

// Simulates `options.days` days from local midnight of the start day.
Log Simulate(const SimOptions& options);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_SIMULATION_SIMULATOR_H_
