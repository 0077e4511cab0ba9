// For the tuners' tests: a small simulated log (12 days of the regular
// routine) and a tuning plan scaled to it (4-day warm-up, coarse forecast
// grids, three objective horizons), so that a whole tuning run takes well
// under a second.
#ifndef KEZ_TOOLS_KEZ_TUNE_SMALLTUNESETUP_H_
#define KEZ_TOOLS_KEZ_TUNE_SMALLTUNESETUP_H_

#include <cstdint>
#include <vector>

#include "Evaluation.h"
#include "LogSample.h"
#include "Simulator.h"
#include "TunePlan.h"

namespace kez_tools {

inline std::vector<kez_tools::Log> SmallSimulatedLogs(uint64_t seed) {
  kez_tools::SimOptions o;
  o.days = 12;
  o.seed = seed;
  kez_tools::Log log = kez_tools::Simulate(o);
  log.source = "sim-12d";
  return std::vector<kez_tools::Log>{log};
}

inline TunePlan SmallTunePlan(int generations, uint64_t seed) {
  using kez_tools::kHourMs;
  TunePlan plan;
  plan.warmup_ms = 4 * kez_tools::kDayMs;
  plan.search_every_ms = 4 * kHourMs;
  plan.final_every_ms = 2 * kHourMs;
  plan.objective_horizons_ms = {4 * kHourMs, 8 * kHourMs, 12 * kHourMs};
  plan.report_horizons_ms = {2 * kHourMs, 8 * kHourMs};
  plan.generations = generations;
  plan.seed = seed;
  return plan;
}

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_TUNE_SMALLTUNESETUP_H_
