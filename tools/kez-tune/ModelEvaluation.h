// Judges parameter records (models) on the logs of a tuning run, several at
// a time on the plan's threads. Every (model, log) pair is one evaluation
// with an instance of its own (kez_tools::EvaluateLog); results are pooled
// per model over the logs (kez_tools::Combine) and scored with the plan's
// objective. The results do not depend on the number of threads.
//
// The pairs may also be evaluated elsewhere (other processes or machines,
// e.g. the Python package's fleet tuning): a PairEvaluator is handed the
// jobs and returns every pair's evaluation, each made as EvaluatePair makes
// it; pooling and scoring stay here.
#ifndef KEZ_TOOLS_KEZ_TUNE_MODELEVALUATION_H_
#define KEZ_TOOLS_KEZ_TUNE_MODELEVALUATION_H_

#include <cstdint>
#include <functional>
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

// Evaluates every job on every log: (*evaluations)[j * logs + l] is job j
// on log l. False with *error when an evaluation fails.
using PairEvaluator = std::function<bool(
    const std::vector<ModelJob>& jobs,
    std::vector<kez_tools::LogEvaluation>* evaluations, std::string* error)>;

// One job on one log, as every PairEvaluator must evaluate it.
bool EvaluatePair(const kez_tools::Log& log, const TunePlan& plan,
                  const ModelJob& job, kez_tools::LogEvaluation* result,
                  std::string* error);

// Runs every job on every log, with `evaluate_pairs` when given, else on the
// plan's threads. False with *error when an evaluation fails (the first
// failure in job order is reported).
bool EvaluateModels(const std::vector<kez_tools::Log>& logs,
                    const TunePlan& plan, const std::vector<ModelJob>& jobs,
                    std::vector<ModelResult>* results, std::string* error,
                    const PairEvaluator& evaluate_pairs = PairEvaluator());

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_TUNE_MODELEVALUATION_H_
