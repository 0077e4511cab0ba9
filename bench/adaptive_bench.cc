// The adaptive forecaster's cost beside the instance's: a forecast on a full
// memory (adaptive against the instance's own, same reports), and replaying
// 30 days of 5-minute reports into a fresh adaptive forecaster, hourly
// self-evaluation included (against a fresh instance). The log is the
// simulated one of SimulatedMemory.h.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "adaptive/AdaptiveForecaster.h"
#include "bench/SimulatedMemory.h"
#include "interface/HostTime.h"
#include "interface/KEZ.h"
#include "kez/kez.h"

namespace {

using kez::adaptive::AdaptiveForecaster;
using kez::adaptive::HostReport;

HostReport ToHost(const kez_tools::Report& r) {
  const kez_tools::LogSample& s = *r.sample;
  HostReport h;
  h.timeMs = static_cast<uint64_t>(r.time_ms);
  h.levelPercent = static_cast<float>(s.level_percent);
  h.charging = static_cast<float>(s.charging);
  h.aux1 = static_cast<float>(s.aux1);
  h.aux2 = static_cast<float>(s.aux2);
  h.aux3 = static_cast<float>(s.aux3);
  h.countA = s.count_a;
  h.countB1 = s.count_b1;
  h.countB2 = s.count_b2;
  return h;
}

// The reports of the simulated log as the host sends them.
const std::vector<HostReport>& Reports() {
  static const std::vector<HostReport>* reports = [] {
    auto* v = new std::vector<HostReport>;
    for (const kez_tools::Report& r : kez_bench::FullMemory().reports) {
      v->push_back(ToHost(r));
    }
    return v;
  }();
  return *reports;
}

// An adaptive forecaster fed the whole simulated log (its instance is fed
// exactly as the full memory's).
AdaptiveForecaster& FullAdaptive() {
  static AdaptiveForecaster* f = [] {
    auto* a = new AdaptiveForecaster();
    for (const HostReport& r : Reports()) a->Report(r);
    return a;
  }();
  return *f;
}

void BM_RawForecast(benchmark::State& state) {
  kez_handle h = kez_bench::FullMemory().session.handle();
  const int steps = static_cast<int>(state.range(0));
  std::vector<stMobilePowerPredictionData> out(steps);
  for (auto _ : state) {
    benchmark::DoNotOptimize(kez_predict(h, steps, out.data()));
  }
}
BENCHMARK(BM_RawForecast)->Arg(144)->Arg(288)->Unit(benchmark::kMicrosecond);

void BM_AdaptiveForecast(benchmark::State& state) {
  AdaptiveForecaster& f = FullAdaptive();
  const int steps = static_cast<int>(state.range(0));
  const int variant = static_cast<int>(state.range(1));
  std::vector<stMobilePowerPredictionData> out(steps);
  for (auto _ : state) {
    benchmark::DoNotOptimize(f.Predict(variant, steps, out.data()));
  }
}
BENCHMARK(BM_AdaptiveForecast)
    ->Args({144, kez::adaptive::kFree})
    ->Args({144, kez::adaptive::kNotCharged})
    ->Args({144, kez::adaptive::kPluggedIn})
    ->Args({288, kez::adaptive::kFree})
    ->Unit(benchmark::kMicrosecond);

// 30 days of 5-minute reports (8640), from the log's start.
constexpr size_t kMonthReports = 30 * 288;

void BM_ReplayMonthAdaptive(benchmark::State& state) {
  const std::vector<HostReport>& reports = Reports();
  for (auto _ : state) {
    AdaptiveForecaster f;
    for (size_t i = 0; i < kMonthReports && i < reports.size(); ++i) {
      f.Report(reports[i]);
    }
    benchmark::DoNotOptimize(f.Scored(0));
  }
  state.counters["reports"] = static_cast<double>(kMonthReports);
}
BENCHMARK(BM_ReplayMonthAdaptive)->Unit(benchmark::kMillisecond);

void BM_ReplayMonthRaw(benchmark::State& state) {
  const std::vector<HostReport>& reports = Reports();
  for (auto _ : state) {
    kez::KEZ instance;
    for (size_t i = 0; i < kMonthReports && i < reports.size(); ++i) {
      const HostReport& r = reports[i];
      instance.addStatusValue(kez::MillisecondsToDays(r.timeMs),
                              r.levelPercent, r.charging, r.aux1, r.aux2,
                              r.aux3, r.countA, r.countB1, r.countB2);
    }
    benchmark::DoNotOptimize(instance.impl);
  }
}
BENCHMARK(BM_ReplayMonthRaw)->Unit(benchmark::kMillisecond);

}  // namespace
