#include "Baselines.h"

#include <utility>

#include "Replayer.h"
#include "interface/KEZ.h"

namespace kez_eval {

namespace {

double Clamp(double v, double lo, double hi) {
  if (v < lo) return lo;
  if (v > hi) return hi;
  return v;
}

}  // namespace

bool ReadRunningRates(kez_handle handle, RunningRates* rates) {
  if (handle == nullptr) return false;
  const kez::KEZ* instance = static_cast<const kez::KEZ*>(handle);
  if (instance->impl == nullptr || instance->impl->predictor == nullptr) {
    return false;
  }
  const vorn::MobilePowerPredictor& p = *instance->impl->predictor;
  rates->charge_rise = p.chargeRise;
  rates->charge_steps = p.chargeSteps;
  rates->discharge_change = p.dischargeChange;
  rates->discharge_steps = p.dischargeSteps;
  rates->level0 = p.lastInput.level;
  rates->charging0 = p.lastInput.charging;
  return true;
}

Path PersistencePath(double level_percent, bool charging, int steps) {
  Path p;
  p.level.assign(static_cast<size_t>(steps), level_percent);
  p.charging.assign(static_cast<size_t>(steps), charging ? 1.0 : 0.0);
  return p;
}

Path RunningRatePath(const RunningRates& r, int steps, int charging_mode,
                     int hold_steps) {
  // The same arithmetic as the forecaster's extrapolation, in fractions; a
  // rate whose step sum is not positive adds nothing.
  const double charge_rate =
      r.charge_steps > 0.0 ? r.charge_rise / r.charge_steps : 0.0;
  const double discharge_rate =
      r.discharge_steps > 0.0 ? r.discharge_change / r.discharge_steps : 0.0;
  Path p;
  p.level.resize(static_cast<size_t>(steps));
  p.charging.resize(static_cast<size_t>(steps));
  double level = r.level0;
  for (int s = 0; s < steps; ++s) {
    double charging = r.charging0;
    if (charging_mode >= 0 && s < hold_steps) {
      charging = static_cast<double>(charging_mode);
    }
    level = Clamp(level + (charging > 0.5 ? charge_rate : discharge_rate),
                  0.0, 1.0);
    p.level[static_cast<size_t>(s)] = level * 100.0;
    p.charging[static_cast<size_t>(s)] = charging;
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

}  // namespace kez_eval
