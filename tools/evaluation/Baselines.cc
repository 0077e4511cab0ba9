#include "Baselines.h"

#include <utility>

#include "Replayer.h"

namespace kez_tools {

namespace {

double Clamp(double v, double lo, double hi) {
  if (v < lo) return lo;
  if (v > hi) return hi;
  return v;
}

}  // namespace

Path PersistencePath(double level_percent, bool charging, int steps) {
  Path p;
  p.level.assign(static_cast<size_t>(steps), level_percent);
  p.charging.assign(static_cast<size_t>(steps), charging ? 1.0 : 0.0);
  return p;
}

Path RunningRatePath(const vorn::MobilePowerPredictor& predictor, int steps,
                     int charging_mode, int hold_steps) {
  std::vector<vorn::MobilePowerPredictionData> out(
      static_cast<size_t>(steps > 0 ? steps : 0));
  predictor.Extrapolate(steps, out.data(), charging_mode, hold_steps);
  Path p;
  p.level.resize(out.size());
  p.charging.resize(out.size());
  for (size_t s = 0; s < out.size(); ++s) {
    p.level[s] = out[s].level * 100.0;
    p.charging[s] = out[s].charging;
  }
  return p;
}

bool SeasonalPath(const LogTruth& truth, int64_t start_ms,
                  double level_percent, int64_t season_ms, int steps,
                  Path* path) {
  Path p;
  p.level.resize(static_cast<size_t>(steps));
  p.charging.resize(static_cast<size_t>(steps));
  int64_t base_season = 0;  // the season whose start level is in base_level
  double base_level = 0;
  for (int s = 0; s < steps; ++s) {
    const int64_t ahead = (s + 1) * kez_tools::kStepMs;
    const int64_t seasons = (ahead + season_ms - 1) / season_ms;
    const int64_t back = seasons * season_ms;
    if (seasons != base_season) {
      if (!truth.KnownLevelAt(start_ms - back, start_ms, &base_level)) {
        return false;
      }
      base_season = seasons;
    }
    double then = 0;
    bool charging = false;
    if (!truth.KnownLevelAt(start_ms + ahead - back, start_ms, &then) ||
        !truth.KnownChargingAt(start_ms + ahead - back, start_ms,
                               &charging)) {
      return false;
    }
    p.level[static_cast<size_t>(s)] =
        Clamp(level_percent + (then - base_level), 0.0, 100.0);
    p.charging[static_cast<size_t>(s)] = charging ? 1.0 : 0.0;
  }
  *path = std::move(p);
  return true;
}

}  // namespace kez_tools
