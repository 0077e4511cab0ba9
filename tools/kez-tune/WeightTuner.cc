#include "WeightTuner.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>

#include "TuneClock.h"
#include "SeededRandom.h"

namespace kez_tools {

namespace {

ModelJob Job(const vorn::MobilePowerPredictorParameter& base,
             const Weights& weights, Part part, int64_t every_ms,
             const std::vector<int64_t>& horizons_ms) {
  ModelJob job;
  job.model = WithWeights(base, weights);
  job.part = part;
  job.every_ms = every_ms;
  job.horizons_ms = horizons_ms;
  return job;
}

// The best `count` of `pool` (stable: earlier entries win ties), each
// weight vector once.
std::vector<WeightIndividual> Select(std::vector<WeightIndividual> pool,
                                     size_t count) {
  std::stable_sort(pool.begin(), pool.end(),
                   [](const WeightIndividual& a, const WeightIndividual& b) {
                     return Better(a.score, b.score);
                   });
  std::vector<WeightIndividual> kept;
  for (const WeightIndividual& c : pool) {
    if (kept.size() >= count) break;
    bool seen = false;
    for (const WeightIndividual& k : kept) seen = seen || k.weights == c.weights;
    if (!seen) kept.push_back(c);
  }
  return kept;
}

}  // namespace

bool TuneWeights(const std::vector<kez_tools::Log>& logs,
                 const vorn::MobilePowerPredictorParameter& start,
                 const TunePlan& plan, const WeightSearchOptions& options,
                 const std::function<void(const WeightGeneration&)>& progress,
                 WeightTuneResult* result, std::string* error,
                 const PairEvaluator& evaluate_pairs) {
  if (!CheckPlan(plan, error) || !CheckSearchOptions(options, error) ||
      !CheckLogs(logs, plan, error)) {
    return false;
  }
  const auto began = std::chrono::steady_clock::now();
  SeededRandom random(plan.seed);
  WeightTuneResult r;
  for (int i = 0; i < kWeightCount; ++i) {
    r.start[i] = StoredWeight(start.weight[i]);
  }
  std::map<Weights, double> cache;

  // Judges `candidates` on the search grid, each distinct new one once.
  auto judge = [&](std::vector<WeightIndividual>* candidates) {
    std::vector<ModelJob> jobs;
    std::vector<Weights> fresh;
    for (const WeightIndividual& c : *candidates) {
      if (cache.count(c.weights) ||
          std::find(fresh.begin(), fresh.end(), c.weights) != fresh.end()) {
        continue;
      }
      fresh.push_back(c.weights);
      jobs.push_back(Job(start, c.weights, kTuningPart, plan.search_every_ms,
                         plan.objective_horizons_ms));
    }
    std::vector<ModelResult> results;
    if (!EvaluateModels(logs, plan, jobs, &results, error, evaluate_pairs)) {
      return false;
    }
    for (size_t j = 0; j < fresh.size(); ++j) cache[fresh[j]] = results[j].score;
    r.evaluations += fresh.size();
    for (WeightIndividual& c : *candidates) c.score = cache[c.weights];
    return true;
  };

  std::vector<WeightIndividual> parents(1);
  parents[0].weights = r.start;
  parents[0].step = options.initial_step;
  if (!judge(&parents)) return false;
  r.start_search_score = parents[0].score;
  if (std::isnan(r.start_search_score)) {
    *error =
        "no forecast of the tuning part could be judged: the logs are too "
        "short for the warm-up and the horizons";
    return false;
  }

  WeightGeneration report;
  report.start_score = r.start_search_score;
  auto send = [&](int generation, const std::vector<WeightIndividual>& made) {
    if (!progress) return;
    report.generation = generation;
    report.evaluations = r.evaluations;
    report.best_score = parents[0].score;
    report.best_step = parents[0].step;
    report.elapsed_seconds = SecondsSince(began);
    report.candidates.clear();
    for (const WeightIndividual& c : made) report.candidates.push_back(c.weights);
    progress(report);
  };
  send(0, parents);

  int generation = 0;
  for (;;) {
    if (plan.generations > 0 && generation >= plan.generations) break;
    if (plan.seconds > 0 && SecondsSince(began) >= plan.seconds) break;
    ++generation;
    std::vector<WeightIndividual> offspring;
    for (int j = 0; j < options.offspring; ++j) {
      offspring.push_back(MakeOffspring(parents, options, random));
    }
    if (!judge(&offspring)) return false;
    std::vector<WeightIndividual> pool = parents;
    pool.insert(pool.end(), offspring.begin(), offspring.end());
    parents = Select(std::move(pool), static_cast<size_t>(options.parents));
    send(generation, offspring);
  }
  r.generations = generation;
  r.best_search_score = parents[0].score;

  // The start and the search's best on the fine grid, both parts.
  const std::vector<int64_t> horizons = FinalHorizons(plan);
  const Weights& found = parents[0].weights;
  std::vector<ModelJob> jobs = {
      Job(start, r.start, kTuningPart, plan.final_every_ms, horizons),
      Job(start, found, kTuningPart, plan.final_every_ms, horizons),
      Job(start, r.start, kHeldOutPart, plan.final_every_ms, horizons),
      Job(start, found, kHeldOutPart, plan.final_every_ms, horizons)};
  std::vector<ModelResult> finals;
  if (!EvaluateModels(logs, plan, jobs, &finals, error, evaluate_pairs)) {
    return false;
  }
  r.start_tuning = finals[0];
  r.start_heldout = finals[2];
  r.start_kept = !Better(finals[1].score, finals[0].score);
  if (r.start_kept) {
    r.best = r.start;
    r.best_tuning = finals[0];
    r.best_heldout = finals[2];
  } else {
    r.best = found;
    r.best_tuning = finals[1];
    r.best_heldout = finals[3];
  }
  r.parameter = WithWeights(start, r.best);
  r.parameter.accuracy = r.best_tuning.score;
  r.seconds = SecondsSince(began);
  *result = std::move(r);
  return true;
}

}  // namespace kez_tools
