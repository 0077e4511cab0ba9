// The simple forecasts that the forecaster has to beat, made at the same
// moment from the same information, as step-by-step paths of the same
// length: step k is (k + 1) x 10 minutes after the forecast's start.
//
//   persistence    the level and the charging state stay as they are;
//   running rates  the forecaster's own extrapolation
//                  (MobilePowerPredictor::Extrapolate, called on the
//                  instance's predictor at the forecast's start): its
//                  running charge and discharge rates applied from the last
//                  sample's level;
//   seasonal       the level change over the same hours one season (a day,
//                  a week) earlier, added to the present level and clamped to
//                  0 .. 100 %; the chance of charging is the state logged
//                  then. Steps more than one season ahead repeat the change
//                  over the same stretch of the season before that, so
//                  nothing after the start is ever used.
//
// Levels are in percent, charging chances 0 .. 1.
#ifndef KEZ_TOOLS_EVALUATION_BASELINES_H_
#define KEZ_TOOLS_EVALUATION_BASELINES_H_

#include <cstdint>
#include <vector>

#include "LogTruth.h"
#include "predictor/MobilePowerPredictor.h"

namespace kez_tools {

struct Path {
  std::vector<double> level;     // percent, per step
  std::vector<double> charging;  // chance of charging, per step
};

Path PersistencePath(double level_percent, bool charging, int steps);

// `predictor`'s extrapolation of `steps` steps, in percent. chargingMode < 0:
// free; 0 or 1: that state for the steps below holdSteps.
Path RunningRatePath(const vorn::MobilePowerPredictor& predictor, int steps,
                     int charging_mode, int hold_steps);

// False (and *path untouched) when the log, as known at `start_ms`, lacks
// the level at a moment that the path needs.
bool SeasonalPath(const LogTruth& truth, int64_t start_ms,
                  double level_percent, int64_t season_ms, int steps,
                  Path* path);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_EVALUATION_BASELINES_H_
