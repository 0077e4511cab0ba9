// What an evaluation of forecasts on a battery log is asked for: the replay,
// the grid of forecast points, the horizons, the range of the log to use and
// the model to judge. Shared by every evaluation (Evaluation.h,
// ForecastPoints.h, the tuner's feature evaluation).
#ifndef KEZ_TOOLS_EVALUATION_EVALOPTIONS_H_
#define KEZ_TOOLS_EVALUATION_EVALOPTIONS_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "Replayer.h"
#include "predictor/MobilePowerPredictorParameter.h"

namespace kez_tools {

struct EvalOptions {
  ReplayOptions replay;
  int64_t warmup_ms = 7 * kDayMs;
  int64_t every_ms = kHourMs;
  // Ascending, each a positive multiple of 10 minutes.
  std::vector<int64_t> horizons_ms = {
      1 * kHourMs, 2 * kHourMs, 4 * kHourMs,
      8 * kHourMs, 12 * kHourMs, 24 * kHourMs};
  bool has_from = false;  // forecast points at or after from_ms only
  int64_t from_ms = 0;
  bool has_to = false;    // forecast points, and their truths, up to to_ms
  int64_t to_ms = 0;
  // The model to judge; null: the built-in default model.
  const vorn::MobilePowerPredictorParameter* parameter = nullptr;
  double low_percent = 20;
  // Evaluate the adaptive forecast too (it replays the log into an
  // adaptive forecaster beside the instance; the tuner, which judges the
  // instance's model alone, turns it off).
  bool adaptive = true;
  // Called after each forecast point with (points done, points planned).
  std::function<void(size_t, size_t)> progress;
};

}  // namespace kez_tools

#endif  // KEZ_TOOLS_EVALUATION_EVALOPTIONS_H_
