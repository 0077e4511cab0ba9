#include "ModelEvaluation.h"

#include "ParallelRunner.h"

namespace kez_tools {

bool EvaluateModels(const std::vector<kez_tools::Log>& logs,
                    const TunePlan& plan, const std::vector<ModelJob>& jobs,
                    std::vector<ModelResult>* results, std::string* error) {
  const size_t per_job = logs.size();
  const size_t count = jobs.size() * per_job;
  std::vector<kez_tools::LogEvaluation> done(count);
  std::vector<std::string> errors(count);
  std::vector<char> ok(count, 0);
  RunParallel(count, plan.threads, [&](size_t i) {
    const ModelJob& job = jobs[i / per_job];
    const kez_tools::Log& log = logs[i % per_job];
    kez_tools::EvalOptions options =
        PartOptions(log, plan, job.part, job.every_ms, job.horizons_ms);
    options.parameter = &job.model;
    ok[i] = kez_tools::EvaluateLog(log, options, &done[i], &errors[i]) ? 1 : 0;
  });
  for (size_t i = 0; i < count; ++i) {
    if (!ok[i]) {
      *error = errors[i];
      return false;
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
