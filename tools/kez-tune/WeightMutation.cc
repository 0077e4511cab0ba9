#include "WeightMutation.h"

#include <cmath>

namespace kez_tools {

namespace {

// Learning rate of the step: 1 / sqrt(2 n), the usual choice for n
// parameters.
const double kStepRate = 1.0 / std::sqrt(2.0 * kWeightCount);

}  // namespace

bool CheckSearchOptions(const WeightSearchOptions& o, std::string* error) {
  if (o.parents < 1 || o.offspring < 1) {
    *error = "at least one parent and one candidate per generation are needed";
    return false;
  }
  if (!(o.initial_step >= kMinStep && o.initial_step <= kMaxStep)) {
    *error = "the initial step must lie between 0.01 and 2";
    return false;
  }
  if (!(o.mutation_share > 0.0 && o.mutation_share <= 1.0)) {
    *error = "the share of weights moved must be above 0 and at most 1";
    return false;
  }
  return true;
}

WeightIndividual MakeOffspring(const std::vector<WeightIndividual>& parents,
                               const WeightSearchOptions& options,
                               SeededRandom& random) {
  const size_t n = parents.size();
  const size_t ia = random.Below(n);
  const WeightIndividual& a = parents[ia];
  double log_magnitude[kWeightCount];
  for (int i = 0; i < kWeightCount; ++i) {
    log_magnitude[i] = std::log(std::fabs(a.weights[i]));
  }
  double step = a.step;
  if (n >= 2 && random.Uniform() < 0.5) {
    // Another parent than `a`: a draw among the n - 1 others.
    size_t k = random.Below(n - 1);
    if (k == ia) k = n - 1;
    const WeightIndividual& b = parents[k];
    for (int i = 0; i < kWeightCount; ++i) {
      log_magnitude[i] =
          (log_magnitude[i] + std::log(std::fabs(b.weights[i]))) * 0.5;
    }
    step = std::sqrt(a.step * b.step);
  }
  step *= std::exp(kStepRate * random.StandardNormal());
  if (step < kMinStep) step = kMinStep;
  if (step > kMaxStep) step = kMaxStep;

  bool moved = false;
  for (int i = 0; i < kWeightCount; ++i) {
    if (random.Uniform() < options.mutation_share) {
      log_magnitude[i] += step * random.StandardNormal();
      moved = true;
    }
  }
  if (!moved) {
    log_magnitude[random.Below(kWeightCount)] += step * random.StandardNormal();
  }

  WeightIndividual child;
  child.step = step;
  for (int i = 0; i < kWeightCount; ++i) {
    const double sign = std::signbit(a.weights[i]) ? -1.0 : 1.0;
    child.weights[i] = StoredWeight(sign * std::exp(log_magnitude[i]));
  }
  return child;
}

}  // namespace kez_tools
