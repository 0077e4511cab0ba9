#include "ErrorStats.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace kez_tools {

namespace {
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
}

void ErrorStats::Add(double absolute_error) {
  errors_.push_back(absolute_error);
  sum_ += absolute_error;
}

void ErrorStats::Merge(const ErrorStats& other) {
  errors_.insert(errors_.end(), other.errors_.begin(), other.errors_.end());
  sum_ += other.sum_;
}

ErrorStats ErrorStats::FromState(std::vector<double> errors, double sum) {
  ErrorStats e;
  e.errors_ = std::move(errors);
  e.sum_ = sum;
  return e;
}

double ErrorStats::Mean() const {
  return errors_.empty() ? kNaN : sum_ / static_cast<double>(errors_.size());
}

double ErrorStats::Percentile90() const {
  if (errors_.empty()) return kNaN;
  std::vector<double> sorted = errors_;
  // Nearest rank: the ceil(0.9 n)-th smallest error.
  size_t rank = (sorted.size() * 9 + 9) / 10;
  std::nth_element(sorted.begin(), sorted.begin() + (rank - 1), sorted.end());
  return sorted[rank - 1];
}

void ProbabilityScore::Add(double probability, bool outcome) {
  double d = probability - (outcome ? 1.0 : 0.0);
  sum_ += d * d;
  ++count_;
}

void ProbabilityScore::Merge(const ProbabilityScore& other) {
  sum_ += other.sum_;
  count_ += other.count_;
}

ProbabilityScore ProbabilityScore::FromState(double sum, size_t count) {
  ProbabilityScore p;
  p.sum_ = sum;
  p.count_ = count;
  return p;
}

double ProbabilityScore::Brier() const {
  return count_ == 0 ? kNaN : sum_ / static_cast<double>(count_);
}

}  // namespace kez_tools
