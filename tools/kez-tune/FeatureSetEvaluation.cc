#include "FeatureSetEvaluation.h"

#include "ParallelRunner.h"

namespace kez_tools {

bool EvaluateFeatureSets(const std::vector<kez_tools::Log>& logs,
                         const TunePlan& plan,
                         const std::vector<FeatureJob>& jobs,
                         std::vector<FeatureSetResult>* results,
                         std::string* error) {
  const size_t per_job = logs.size();
  const size_t count = jobs.size() * per_job;
  std::vector<FeatureEvaluation> done(count);
  std::vector<std::string> errors(count);
  std::vector<char> ok(count, 0);
  RunParallel(count, plan.threads, [&](size_t i) {
    const FeatureJob& job = jobs[i / per_job];
    const kez_tools::Log& log = logs[i % per_job];
    const kez_tools::EvalOptions options =
        PartOptions(log, plan, job.part, job.every_ms, job.horizons_ms);
    ok[i] = EvaluateFeatures(log, job.genome, options, &done[i], &errors[i])
                ? 1
                : 0;
  });
  for (size_t i = 0; i < count; ++i) {
    if (!ok[i]) {
      *error = errors[i];
      return false;
    }
  }
  results->assign(jobs.size(), FeatureSetResult());
  for (size_t j = 0; j < jobs.size(); ++j) {
    FeatureSetResult& r = (*results)[j];
    for (size_t l = 0; l < per_job; ++l) {
      r.logs.push_back(std::move(done[j * per_job + l]));
    }
    r.pooled = CombineFeatures(r.logs);
    r.score = FeatureScore(r.pooled, plan.objective_horizons_ms);
  }
  return true;
}

}  // namespace kez_tools
