// A year in the life of the forecaster: 365 days of simulated 1-minute
// samples ("regular" profile, seed 1) replayed into one instance, with a
// forecast of a day (144 steps) at every full hour. Prints the time spent
// taking samples and forecasting, and a checksum of all forecasts (equal
// checksums: equal forecasts, for comparing builds).
//
//   replay_year [days] [interval_minutes] [forecast_steps]
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "KezSession.h"
#include "Replayer.h"
#include "Simulator.h"
#include "kez/kez.h"

namespace {

double Seconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

uint64_t Mix(uint64_t h, double v) {
  uint64_t bits;
  std::memcpy(&bits, &v, sizeof bits);
  return (h ^ bits) * 1099511628211ull;
}

}  // namespace

int main(int argc, char** argv) {
  const int days = argc > 1 ? std::atoi(argv[1]) : 365;
  const int interval = argc > 2 ? std::atoi(argv[2]) : 1;
  const int steps = argc > 3 ? std::atoi(argv[3]) : 144;

  kez_tools::SimOptions options;
  kez_tools::FindSimProfile("regular", &options.profile);
  options.days = days;
  options.seed = 1;
  options.interval_minutes = interval;
  const double t0 = Seconds();
  const kez_tools::Log log = kez_tools::Simulate(options);
  const double simulated = Seconds() - t0;

  kez_tools::KezSession session;
  std::vector<stMobilePowerPredictionData> out(steps > 0 ? steps : 1);
  double feedSeconds = 0, forecastSeconds = 0;
  long samples = 0, forecasts = 0, found = 0;
  uint64_t checksum = 1469598103934665603ull;
  int64_t nextHour = -1;
  kez_tools::ReplayOptions replay;
  replay.interval_ms = interval * kez_tools::kMinuteMs;
  kez_tools::Replayer replayer(log, replay, [&](const kez_tools::Report& r) {
    if (nextHour < 0) nextHour = (r.time_ms / kez_tools::kHourMs + 1) * kez_tools::kHourMs;
    if (r.time_ms >= nextHour) {
      const double f0 = Seconds();
      kez_predict(session.handle(), steps, out.data());
      forecastSeconds += Seconds() - f0;
      ++forecasts;
      if (out[0].distance != 100.0) ++found;
      for (int s = 0; s < steps; ++s) checksum = Mix(Mix(checksum, out[s].level), out[s].charging);
      checksum = Mix(checksum, out[0].distance);
      nextHour = (r.time_ms / kez_tools::kHourMs + 1) * kez_tools::kHourMs;
    }
    const double s0 = Seconds();
    session.Feed(r);
    feedSeconds += Seconds() - s0;
    ++samples;
  });
  const double r0 = Seconds();
  replayer.ReplayAll();
  const double total = Seconds() - r0;

  std::printf("days %d, a sample every %d min, forecasts of %d steps every hour\n", days, interval, steps);
  std::printf("simulation        %.2f s (not counted below)\n", simulated);
  std::printf("replay in all     %.2f s\n", total);
  std::printf("samples           %ld, %.3f s, %.2f us each\n", samples, feedSeconds,
              samples ? feedSeconds / samples * 1e6 : 0.0);
  std::printf("forecasts         %ld (%ld with neighbours), %.3f s, %.1f us each\n", forecasts, found,
              forecastSeconds, forecasts ? forecastSeconds / forecasts * 1e6 : 0.0);
  std::printf("checksum          %016" PRIx64 "\n", checksum);
  return 0;
}
