// Judges feature sets (genomes) on the logs of a tuning run, several at a
// time on the plan's threads: every (set, log) pair is one
// EvaluateFeatures with an instance of its own; results are pooled per set
// and scored with the plan's objective horizons. The results do not depend
// on the number of threads.
#ifndef KEZ_TOOLS_KEZ_TUNE_FEATURESETEVALUATION_H_
#define KEZ_TOOLS_KEZ_TUNE_FEATURESETEVALUATION_H_

#include <cstdint>
#include <string>
#include <vector>

#include "FeatureEvaluation.h"
#include "LogSample.h"
#include "TunePlan.h"

namespace kez_tools {

struct FeatureJob {
  std::vector<double> genome;
  Part part = kTuningPart;
  int64_t every_ms = kez_tools::kHourMs;
  std::vector<int64_t> horizons_ms;
};

// The result of one feature set on all logs.
struct FeatureSetResult {
  std::vector<FeatureEvaluation> logs;  // in log order
  FeatureEvaluation pooled;
  double score = 0;  // objective on `pooled` (NaN without pairs)
};

// Runs every job on every log. False with *error when an evaluation fails
// (the first failure in job order is reported).
bool EvaluateFeatureSets(const std::vector<kez_tools::Log>& logs,
                         const TunePlan& plan,
                         const std::vector<FeatureJob>& jobs,
                         std::vector<FeatureSetResult>* results,
                         std::string* error);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_TUNE_FEATURESETEVALUATION_H_
