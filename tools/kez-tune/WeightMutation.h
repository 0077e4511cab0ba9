// How the weight search makes a candidate from its parents (see
// WeightTuner.h for the whole strategy). Weights move in the logarithm of
// their magnitude, so a step changes a weight of 277 and one of 0.1 by the
// same factor; signs never change. Every candidate is rounded as the
// parameter file stores it and stays within the weight floor and ceiling
// (WeightVector.h).
#ifndef KEZ_TOOLS_KEZ_TUNE_WEIGHTMUTATION_H_
#define KEZ_TOOLS_KEZ_TUNE_WEIGHTMUTATION_H_

#include <string>
#include <vector>

#include "SeededRandom.h"
#include "WeightVector.h"

namespace kez_tools {

struct WeightSearchOptions {
  int parents = 4;              // mu
  int offspring = 8;            // lambda, per generation
  double initial_step = 0.5;    // mutation step of the start (natural log)
  double mutation_share = 0.5;  // chance that a weight is moved
};

bool CheckSearchOptions(const WeightSearchOptions& options,
                        std::string* error);

// Bounds of the self-adapted step.
constexpr double kMinStep = 0.01;
constexpr double kMaxStep = 2.0;

struct WeightIndividual {
  Weights weights{};
  double step = 0.5;
  double score = 0;  // objective; NaN when it could not be measured
};

// One candidate from `parents` (not empty). Draws, in this order: the
// parent; with two or more parents, whether to recombine and the second
// parent; the step's factor; then per weight whether it moves and, if so,
// how far (plus one weight index when none moved).
WeightIndividual MakeOffspring(const std::vector<WeightIndividual>& parents,
                               const WeightSearchOptions& options,
                               SeededRandom& random);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_TUNE_WEIGHTMUTATION_H_
