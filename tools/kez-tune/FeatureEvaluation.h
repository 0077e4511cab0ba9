// Judges a feature set by the core's own forecast of every status channel
// (MobilePowerPredictorCore::Predict), the forecast that stays meaningful
// whatever the features are: the main forecast reads the default features
// by position and cannot follow a changed feature list.
//
// The model is the default one with its feature list replaced by a genome
// (VelqaSPBase::EncodeFeature's code); the instance is fed exactly as a host
// feeds it (KezSession and the Replayer's policy), so every sample reaches
// the core's AddRawData through MobilePowerPredictor's channel vector. At
// each forecast point (the grid, warm-up, from/to and left-out rules of
// kez_tools::EvaluateLog) the core forecasts the longest horizon; the level
// channel (channel 0, a fraction) at step k, the moment (k + 1) x 10
// minutes after the last report, is compared with the log's level there.
// When the core finds no similar past moment its forecast is empty and the
// level is taken to stay as it is (counted as not learned), so that every
// feature set is judged on the same forecasts.
#ifndef KEZ_TOOLS_KEZ_TUNE_FEATUREEVALUATION_H_
#define KEZ_TOOLS_KEZ_TUNE_FEATUREEVALUATION_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "ErrorStats.h"
#include "Evaluation.h"
#include "LogSample.h"

namespace kez_tools {

struct FeatureEvaluation {
  std::vector<int64_t> horizons_ms;
  // Absolute level error per horizon, percentage points.
  std::vector<kez_tools::ErrorStats> level;
  size_t points = 0;   // forecasts made
  size_t learned = 0;  // of them, from similar past moments
};

// The genome of the default model's feature list.
std::vector<double> DefaultFeatureGenome();

// Judges the feature set `genome` on `log` with `options` (replay, warm-up,
// grid, horizons, from/to; `parameter` is not used). False with *error for
// unusable options or a library failure.
bool EvaluateFeatures(const kez_tools::Log& log,
                      const std::vector<double>& genome,
                      const kez_tools::EvalOptions& options,
                      FeatureEvaluation* result, std::string* error);

// Pools results made with the same horizons.
FeatureEvaluation CombineFeatures(const std::vector<FeatureEvaluation>& parts);

// Mean over `horizons_ms` (those with pairs) of the mean absolute level
// error; NaN without any pair.
double FeatureScore(const FeatureEvaluation& result,
                    const std::vector<int64_t>& horizons_ms);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_TUNE_FEATUREEVALUATION_H_
