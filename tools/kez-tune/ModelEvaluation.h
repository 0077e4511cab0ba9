// Judges parameter records (models) on the logs of a tuning run, several at
// a time on the plan's threads. Every (model, log) pair is one evaluation
// with an instance of its own (kez_tools::EvaluateLog); results are pooled
// per model over the logs (kez_tools::Combine) and scored with the plan's
// objective. The results do not depend on the number of threads.
#ifndef KEZ_TOOLS_KEZ_TUNE_MODELEVALUATION_H_
#define KEZ_TOOLS_KEZ_TUNE_MODELEVALUATION_H_

#include <cstdint>
#include <string>
#include <vector>

#include "Evaluation.h"
#include "LogSample.h"
#include "TunePlan.h"
#include "predictor/MobilePowerPredictorParameter.h"

namespace kez_tools {

struct ModelJob {
  vorn::MobilePowerPredictorParameter model;
  Part part = kTuningPart;
  int64_t every_ms = kez_tools::kHourMs;
  std::vector<int64_t> horizons_ms;
};

struct ModelResult {
  std::vector<kez_tools::LogEvaluation> logs;  // one per log, in log order
  kez_tools::LogEvaluation pooled;             // all logs together
  double score = 0;  // the objective on `pooled` (NaN without pairs)
};

// Runs every job on every log. False with *error when an evaluation fails
// (the first failure in job order is reported).
bool EvaluateModels(const std::vector<kez_tools::Log>& logs,
                    const TunePlan& plan, const std::vector<ModelJob>& jobs,
                    std::vector<ModelResult>* results, std::string* error);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_TUNE_MODELEVALUATION_H_
