// The simple forecasts that the forecaster has to beat, made at the same
// moment from the same information, as step-by-step paths of the same
// length: step k is (k + 1) x 10 minutes after the forecast's start.
//
//   persistence    the level and the charging state stay as they are;
//   running rates  the forecaster's own extrapolation: its running charge
//                  and discharge rates, read from the instance at the
//                  forecast's start, applied from the last sample's level
//                  (the rate is chosen once from the last charging state;
//                  with a forced charging state, per step from that state;
//                  each step clamped to 0 .. 1);
//   seasonal       the level change over the same hours one season (a day,
//                  a week) earlier, added to the present level and clamped to
//                  0 .. 100 %; the chance of charging is the state logged
//                  then. Steps more than one season ahead repeat the change
//                  over the same stretch of the season before that, so
//                  nothing after the start is ever used.
//
// Levels are in percent, charging chances 0 .. 1.
#ifndef KEZ_TOOLS_EVAL_BASELINES_H_
#define KEZ_TOOLS_EVAL_BASELINES_H_

#include <cstdint>
#include <vector>

#include "LogTruth.h"
#include "kez/kez.h"

namespace kez_eval {

struct Path {
  std::vector<double> level;     // percent, per step
  std::vector<double> charging;  // chance of charging, per step
};

// The forecaster's running state at the forecast's start.
struct RunningRates {
  double charge_rise = 0;
  double charge_steps = 0;
  double discharge_change = 0;
  double discharge_steps = 0;
  double level0 = 0;     // the last sample's level, a fraction
  double charging0 = 0;  // the last sample's charging state
};

// Reads the running state of the instance behind `handle` (made by
// kez_init). False for a null handle or an instance without a predictor.
bool ReadRunningRates(kez_handle handle, RunningRates* rates);

Path PersistencePath(double level_percent, bool charging, int steps);

// chargingMode < 0: free; 0 or 1: that state for the steps below holdSteps.
Path RunningRatePath(const RunningRates& rates, int steps, int charging_mode,
                     int hold_steps);

// False (and *path untouched) when the log, as known at `start_ms`, lacks
// the level at a moment that the path needs.
bool SeasonalPath(const LogTruth& truth, int64_t start_ms,
                  double level_percent, int64_t season_ms, int steps,
                  Path* path);

}  // namespace kez_eval

#endif  // KEZ_TOOLS_EVAL_BASELINES_H_
