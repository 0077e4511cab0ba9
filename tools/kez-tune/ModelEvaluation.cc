#include "ModelEvaluation.h"

#include "ParallelRunner.h"

namespace kez_tools {

bool EvaluatePair(const kez_tools::Log& log, const TunePlan& plan,
                  const ModelJob& job, kez_tools::LogEvaluation* result,
                  std::string* error) {
  kez_tools::EvalOptions options =
      PartOptions(log, plan, job.part, job.every_ms, job.horizons_ms);
  options.parameter = &job.model;
  return kez_tools::EvaluateLog(log, options, result, error);
}

bool EvaluateModels(const std::vector<kez_tools::Log>& logs,
                    const TunePlan& plan, const std::vector<ModelJob>& jobs,
                    std::vector<ModelResult>* results, std::string* error,
                    const PairEvaluator& evaluate_pairs) {
  const size_t per_job = logs.size();
  const size_t count = jobs.size() * per_job;
  std::vector<kez_tools::LogEvaluation> done(count);
  if (evaluate_pairs) {
    if (!evaluate_pairs(jobs, &done, error)) return false;
    if (done.size() != count) {
      *error = "the evaluator returned " + std::to_string(done.size()) +
               " evaluations for " + std::to_string(count) + " pairs";
      return false;
    }
  } else {
    std::vector<std::string> errors(count);
    std::vector<char> ok(count, 0);
    RunParallel(count, plan.threads, [&](size_t i) {
      ok[i] = EvaluatePair(logs[i % per_job], plan, jobs[i / per_job], &done[i],
                           &errors[i])
                  ? 1
                  : 0;
    });
    for (size_t i = 0; i < count; ++i) {
      if (!ok[i]) {
        *error = errors[i];
        return false;
      }
    }
  }
  results->assign(jobs.size(), ModelResult());
  for (size_t j = 0; j < jobs.size(); ++j) {
    ModelResult& r = (*results)[j];
    for (size_t l = 0; l < per_job; ++l) {
      r.logs.push_back(std::move(done[j * per_job + l]));
    }
    r.pooled = kez_tools::Combine(r.logs);
    r.score = ObjectiveScore(r.pooled, plan.objective_horizons_ms);
  }
  return true;
}

}  // namespace kez_tools
