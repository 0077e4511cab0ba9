// Evolves the feature set of the memory base for the core's forecast of all
// channels (FeatureEvaluation.h), judged on its level channel: a small
// demonstration that the offline machinery (genome, mutation, duplicate
// test) works end to end on real logs. It need not beat the default set.
//
// Method: (1 + lambda). Each generation makes `offspring` children of the
// current best, each by one VelqaSPBase::Mutate(level, pool) on a default
// model that holds the best's features, with the default model's feature
// functions as the pool (their leading operators count as shared
// preprocessing, so mutations keep them and change what follows). Children
// are judged on the tuning part (search grid); the best child replaces the
// current best when its error is lower. The default set holds one pair of
// identical chains (the level, compared once by squared difference and once
// by mismatch; Mutate's duplicate test ignores that flag), so every change
// that Mutate accepts from the default set replaces or removes one of the
// two: a re-weighting alone would leave the pair and is drawn again. Mutate draws from the process-wide
// rand(), which the tuner seeds with srand(plan seed) and draws from only in
// the calling thread, before each generation's evaluations run in parallel:
// the same seed gives the same run on any number of threads (as long as
// nothing else draws from rand() meanwhile).
//
// At the end the start (the default features) and the best are judged on
// the fine grid; the start is kept unless the best is better there on the
// tuning part; both are then judged on the held-out part.
#ifndef KEZ_TOOLS_KEZ_TUNE_FEATURETUNER_H_
#define KEZ_TOOLS_KEZ_TUNE_FEATURETUNER_H_

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "FeatureEvaluation.h"
#include "FeatureSetEvaluation.h"
#include "LogSample.h"
#include "TunePlan.h"

namespace kez_tools {

struct FeatureSearchOptions {
  int offspring = 2;  // children per generation
  int level = 1;      // Mutate level: 0 only re-weights or modifies a chain
};

// Sent after each generation (generation 0: the start judged alone).
struct FeatureGeneration {
  int generation = 0;
  size_t evaluations = 0;
  double start_score = 0;  // search grid, tuning part
  double best_score = 0;
  double child_score = 0;  // the best child of this generation
  bool improved = false;   // a child replaced the best
  int features = 0;        // feature functions of the best
  double elapsed_seconds = 0;
  std::vector<std::vector<double>> children;  // genomes judged
  std::vector<double> best;                   // genome of the best
};

struct FeatureTuneResult {
  std::vector<double> start, best;  // genomes; best may be the start
  double start_search_score = 0, best_search_score = 0;
  bool start_kept = false;
  int generations = 0;
  int improvements = 0;
  size_t evaluations = 0;
  double seconds = 0;
  FeatureSetResult start_tuning, best_tuning, start_heldout, best_heldout;
};

bool TuneFeatures(const std::vector<kez_tools::Log>& logs,
                  const TunePlan& plan, const FeatureSearchOptions& options,
                  const std::function<void(const FeatureGeneration&)>& progress,
                  FeatureTuneResult* result, std::string* error);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_TUNE_FEATURETUNER_H_
