// Accumulators for forecast errors, kept whole so that results of several
// logs can be pooled exactly (Merge) and percentiles taken afterwards.
//
// ErrorStats holds absolute errors (percentage points, or minutes): their
// mean, their 90th percentile (nearest rank: the smallest error that at least
// 90 % of the errors do not exceed) and their count. ProbabilityScore holds
// the squared differences between a forecast probability and what happened
// (the Brier score). Every statistic of an empty accumulator is NaN, never a
// division by zero; printers show it as "-".
#ifndef KEZ_TOOLS_EVALUATION_ERRORSTATS_H_
#define KEZ_TOOLS_EVALUATION_ERRORSTATS_H_

#include <cstddef>
#include <vector>

namespace kez_tools {

class ErrorStats {
 public:
  void Add(double absolute_error);
  void Merge(const ErrorStats& other);

  size_t count() const { return errors_.size(); }
  double Mean() const;
  double Percentile90() const;

  // The whole state, for moving results between processes
  // (EvaluationCodec.h): the errors in the order added, and their running
  // sum (kept, not summed again, so that a moved result pools to the same
  // last digit).
  const std::vector<double>& errors() const { return errors_; }
  double sum() const { return sum_; }
  static ErrorStats FromState(std::vector<double> errors, double sum);

 private:
  std::vector<double> errors_;
  double sum_ = 0;
};

class ProbabilityScore {
 public:
  // `probability` forecast for an event that happened (`outcome` 1) or not.
  void Add(double probability, bool outcome);
  void Merge(const ProbabilityScore& other);

  size_t count() const { return count_; }
  double Brier() const;

  // The whole state (see ErrorStats::errors).
  double sum() const { return sum_; }
  static ProbabilityScore FromState(double sum, size_t count);

 private:
  double sum_ = 0;
  size_t count_ = 0;
};

}  // namespace kez_tools

#endif  // KEZ_TOOLS_EVALUATION_ERRORSTATS_H_
