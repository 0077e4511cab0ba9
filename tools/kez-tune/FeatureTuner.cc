#include "FeatureTuner.h"

#include <chrono>
#include <cmath>
#include <cstdlib>

#include "FeatureDescription.h"
#include "TuneClock.h"
#include "foundation/FList.h"
#include "predictor/MobilePowerPredictor.h"

namespace kez_tools {

namespace {

// A child of `parent`: one Mutate of a default model holding its features.
std::vector<double> MutateGenome(const std::vector<double>& parent,
                                 const vorn::FListP<vorn::VelqaSPFunction*>& pool,
                                 int level) {
  vorn::MobilePowerPredictor model{vorn::MobilePowerPredictorParameter()};
  model.DecodeFeature(parent.data(), static_cast<int>(parent.size()));
  model.Mutate(level, pool);
  vorn::FListT<double> code;
  model.EncodeFeature(code);
  return std::vector<double>(code.data, code.data + code.count);
}

int FeatureCount(const std::vector<double>& genome) {
  return static_cast<int>(DescribeFeatures(genome).size());
}

}  // namespace

bool TuneFeatures(const std::vector<kez_tools::Log>& logs,
                  const TunePlan& plan, const FeatureSearchOptions& options,
                  const std::function<void(const FeatureGeneration&)>& progress,
                  FeatureTuneResult* result, std::string* error) {
  if (!CheckPlan(plan, error) || !CheckLogs(logs, plan, error)) return false;
  if (options.offspring < 1) {
    *error = "at least one child per generation is needed";
    return false;
  }
  const auto began = std::chrono::steady_clock::now();
  std::srand(static_cast<unsigned>(plan.seed));
  const vorn::MobilePowerPredictor defaults{
      vorn::MobilePowerPredictorParameter()};
  FeatureTuneResult r;
  r.start = DefaultFeatureGenome();
  r.best = r.start;

  auto judge = [&](const std::vector<std::vector<double>>& genomes,
                   std::vector<double>* scores) {
    std::vector<FeatureJob> jobs;
    for (const std::vector<double>& g : genomes) {
      FeatureJob job;
      job.genome = g;
      job.part = kTuningPart;
      job.every_ms = plan.search_every_ms;
      job.horizons_ms = plan.objective_horizons_ms;
      jobs.push_back(std::move(job));
    }
    std::vector<FeatureSetResult> results;
    if (!EvaluateFeatureSets(logs, plan, jobs, &results, error)) return false;
    scores->clear();
    for (const FeatureSetResult& s : results) scores->push_back(s.score);
    r.evaluations += genomes.size();
    return true;
  };

  std::vector<double> scores;
  if (!judge({r.start}, &scores)) return false;
  r.start_search_score = scores[0];
  r.best_search_score = scores[0];
  if (std::isnan(r.start_search_score)) {
    *error =
        "no forecast of the tuning part could be judged: the logs are too "
        "short for the warm-up and the horizons";
    return false;
  }
  FeatureGeneration report;
  report.start_score = r.start_search_score;
  auto send = [&](int generation, double child, bool improved,
                  std::vector<std::vector<double>> children) {
    if (!progress) return;
    report.generation = generation;
    report.evaluations = r.evaluations;
    report.best_score = r.best_search_score;
    report.child_score = child;
    report.improved = improved;
    report.features = FeatureCount(r.best);
    report.elapsed_seconds = SecondsSince(began);
    report.children = std::move(children);
    report.best = r.best;
    progress(report);
  };
  send(0, r.start_search_score, false, {});

  int generation = 0;
  for (;;) {
    if (plan.generations > 0 && generation >= plan.generations) break;
    if (plan.seconds > 0 && SecondsSince(began) >= plan.seconds) break;
    ++generation;
    std::vector<std::vector<double>> children;
    for (int j = 0; j < options.offspring; ++j) {
      children.push_back(
          MutateGenome(r.best, defaults.featureFunctions, options.level));
    }
    if (!judge(children, &scores)) return false;
    size_t pick = 0;
    for (size_t j = 1; j < scores.size(); ++j) {
      if (Better(scores[j], scores[pick])) pick = j;
    }
    const bool improved = Better(scores[pick], r.best_search_score);
    if (improved) {
      r.best = children[pick];
      r.best_search_score = scores[pick];
      ++r.improvements;
    }
    send(generation, scores[pick], improved, std::move(children));
  }
  r.generations = generation;

  const std::vector<int64_t> horizons = FinalHorizons(plan);
  std::vector<FeatureJob> jobs(4);
  const std::vector<double>* genomes[4] = {&r.start, &r.best, &r.start,
                                           &r.best};
  for (int j = 0; j < 4; ++j) {
    jobs[j].genome = *genomes[j];
    jobs[j].part = j < 2 ? kTuningPart : kHeldOutPart;
    jobs[j].every_ms = plan.final_every_ms;
    jobs[j].horizons_ms = horizons;
  }
  std::vector<FeatureSetResult> finals;
  if (!EvaluateFeatureSets(logs, plan, jobs, &finals, error)) return false;
  r.start_tuning = finals[0];
  r.start_heldout = finals[2];
  r.start_kept = !Better(finals[1].score, finals[0].score);
  if (r.start_kept) {
    r.best = r.start;
    r.best_tuning = finals[0];
    r.best_heldout = finals[2];
  } else {
    r.best_tuning = finals[1];
    r.best_heldout = finals[3];
  }
  r.seconds = SecondsSince(began);
  *result = std::move(r);
  return true;
}

}  // namespace kez_tools
