// Searches the eleven weights of the forecaster for a lower forecast error
// on the tuning part of some logs (TunePlan.h), and compares the result with
// the starting model on the held-out part.
//
// Method: a (mu + lambda) evolution strategy in the logarithm of the
// weights' magnitudes (signs are kept). Each generation makes `offspring`
// candidates: a parent drawn at random (or, half of the time when there are
// two or more parents, the mean of two parents' log-weights), its mutation
// step multiplied by a log-normal factor (self-adaptation), then each weight
// moved with probability `mutation_share` (at least one weight) by the step
// times a standard normal draw. Candidates are rounded as the parameter file
// stores them (WeightVector.h), judged on the coarse search grid, and the
// best `parents` of parents and candidates together (identical weights
// once) go on. Scores are cached: a candidate met before is not judged again.
//
// The integer settings of the start model stay as they are. The search runs
// until the plan's budget of generations or seconds is spent (time is only
// checked between generations, so a run with a fixed number of generations
// is reproducible; a time budget is not). Then the start and the best are
// judged on the fine grid: if the best is not better there on the tuning
// part, the start is kept (the result is never worse than the start on the
// tuning part). Both are finally judged on the held-out part.
//
// All random draws come from SeededRandom seeded with the plan's seed, in the
// main thread; evaluations run in parallel but their results are collected
// in a fixed order, so the same seed gives the same result on any number of
// threads. With `evaluate_pairs`, every evaluation (search and final) is
// handed to it instead (see ModelEvaluation.h); the search is the same.
#ifndef KEZ_TOOLS_KEZ_TUNE_WEIGHTTUNER_H_
#define KEZ_TOOLS_KEZ_TUNE_WEIGHTTUNER_H_

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "LogSample.h"
#include "ModelEvaluation.h"
#include "TunePlan.h"
#include "WeightMutation.h"
#include "WeightVector.h"
#include "predictor/MobilePowerPredictorParameter.h"

namespace kez_tools {

// Sent after each generation (generation 0: the start judged alone).
struct WeightGeneration {
  int generation = 0;
  size_t evaluations = 0;  // models judged so far (cached ones not counted)
  double start_score = 0;  // objective of the start, search grid
  double best_score = 0;   // of the best so far
  double best_step = 0;    // the best's mutation step
  double elapsed_seconds = 0;
  std::vector<Weights> candidates;  // this generation's candidates
};

struct WeightTuneResult {
  Weights start{};
  Weights best{};  // the result: the search's best, or the start if kept
  double start_search_score = 0;  // objective on the search grid
  double best_search_score = 0;   // of the search's best
  bool start_kept = false;  // the search's best was not better on the fine grid
  int generations = 0;
  size_t evaluations = 0;
  double seconds = 0;
  // Fine grid, all final horizons: tuning part and held-out part.
  ModelResult start_tuning, best_tuning, start_heldout, best_heldout;
  // The model to write: the start's settings with the result's weights;
  // `accuracy` = best_tuning.score, the objective on the tuning part.
  vorn::MobilePowerPredictorParameter parameter;
};

bool TuneWeights(const std::vector<kez_tools::Log>& logs,
                 const vorn::MobilePowerPredictorParameter& start,
                 const TunePlan& plan, const WeightSearchOptions& options,
                 const std::function<void(const WeightGeneration&)>& progress,
                 WeightTuneResult* result, std::string* error,
                 const PairEvaluator& evaluate_pairs = PairEvaluator());

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_TUNE_WEIGHTTUNER_H_
