// Benchmark support: a forecaster whose 30-day memory is full, filled the
// way a phone fills it. A realistic log from the tools' simulator ("regular"
// profile, 40 days, seed 1) is replayed into one kez instance with a report
// every 5 minutes; the instance's memory base is then reachable for
// search-level measurements on exactly the windows a forecast compares.
#ifndef KEZ_BENCH_SIMULATED_MEMORY_H_
#define KEZ_BENCH_SIMULATED_MEMORY_H_

#include <cstdint>
#include <vector>

#include "KezSession.h"
#include "Replayer.h"
#include "Simulator.h"

namespace kez_bench {

struct SimulatedMemory {
  kez_tools::Log log;
  std::vector<kez_tools::Report> reports;  // every report the replay made
  kez_tools::KezSession session;           // fed all of them

  vorn::MobilePowerPredictor& predictor() { return session.predictor(); }
};

// Built once per process (a few hundred milliseconds).
inline SimulatedMemory& FullMemory(int days = 40, uint64_t seed = 1) {
  static SimulatedMemory* memory = [days, seed] {
    SimulatedMemory* m = new SimulatedMemory;
    kez_tools::SimOptions options;
    kez_tools::FindSimProfile("regular", &options.profile);
    options.days = days;
    options.seed = seed;
    options.interval_minutes = 5;
    m->log = kez_tools::Simulate(options);
    kez_tools::ReplayOptions replay;
    replay.interval_ms = 5 * kez_tools::kMinuteMs;
    kez_tools::Replayer replayer(m->log, replay, [m](const kez_tools::Report& r) {
      m->reports.push_back(r);
      m->session.Feed(r);
    });
    replayer.ReplayAll();
    return m;
  }();
  return *memory;
}

}  // namespace kez_bench

#endif  // KEZ_BENCH_SIMULATED_MEMORY_H_
