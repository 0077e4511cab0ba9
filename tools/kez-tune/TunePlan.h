// What a tuning run measures and how long it searches, shared by both
// modes of kez-tune (weights and feature sets).
//
// Each log is split in time. Its forecast points run from the end of the
// warm-up to its last sample; the first `split` share of that span is the
// tuning part and the rest is held out. A tuning evaluation makes forecasts
// at points up to the split and judges them only against the log up to the
// split (the evaluation's `to`), so the search never sees the held-out part; a
// held-out evaluation replays the whole log from its start (the memory
// learns from the past as a phone's would) but judges only forecasts made
// after the split.
//
// The objective is the forecaster's mean absolute error of the level of
// the free forecast, in percentage points, averaged over the objective
// horizons (each horizon counts the same; horizons without any pair are
// left out). By default those are 4, 8, 12 and 24 hours: the horizons at
// which a forecast is worth more than the running rates. Lower is better.
#ifndef KEZ_TOOLS_KEZ_TUNE_TUNEPLAN_H_
#define KEZ_TOOLS_KEZ_TUNE_TUNEPLAN_H_

#include <cstdint>
#include <string>
#include <vector>

#include "Evaluation.h"
#include "LogSample.h"
#include "Replayer.h"

namespace kez_tools {

enum Part { kTuningPart = 0, kHeldOutPart = 1 };

struct TunePlan {
  kez_tools::ReplayOptions replay;
  int64_t warmup_ms = 7 * kez_tools::kDayMs;
  double split = 0.7;  // share of each log's forecast span used for tuning
  // Forecast grid while searching (coarse: fast) and for the final
  // evaluations of the start and the result (fine).
  int64_t search_every_ms = 3 * kez_tools::kHourMs;
  int64_t final_every_ms = kez_tools::kHourMs;
  std::vector<int64_t> objective_horizons_ms = {
      4 * kez_tools::kHourMs, 8 * kez_tools::kHourMs,
      12 * kez_tools::kHourMs, 24 * kez_tools::kHourMs};
  // Horizons of the held-out comparison.
  std::vector<int64_t> report_horizons_ms = {
      1 * kez_tools::kHourMs, 2 * kez_tools::kHourMs, 4 * kez_tools::kHourMs,
      8 * kez_tools::kHourMs, 12 * kez_tools::kHourMs,
      24 * kez_tools::kHourMs};
  uint64_t seed = 1;
  int generations = 30;  // 0: no limit (then `seconds` must be set)
  double seconds = 0;    // no new generation after this long; 0: no limit
  int threads = 2;
};

// False with *error when the plan cannot be run.
bool CheckPlan(const TunePlan& plan, std::string* error);

// False with *error ("SOURCE: reason") when a log is too short to have any
// forecast point after the warm-up.
bool CheckLogs(const std::vector<kez_tools::Log>& logs, const TunePlan& plan,
               std::string* error);

// The moment that splits `log`: forecast points at or before it tune, those
// after it are held out. -1 when the log is shorter than the warm-up.
int64_t SplitTime(const kez_tools::Log& log, const TunePlan& plan);

// Evaluation options for one part of `log` on a grid of `every_ms`.
kez_tools::EvalOptions PartOptions(const kez_tools::Log& log,
                                  const TunePlan& plan, Part part,
                                  int64_t every_ms,
                                  const std::vector<int64_t>& horizons_ms);

// The objective and report horizons together, ascending, each once.
std::vector<int64_t> FinalHorizons(const TunePlan& plan);

// The objective of an evaluation: the mean over `horizons_ms` (those it
// has pairs for) of the forecaster's mean absolute level error of the free
// forecast. NaN when there is no pair at all.
double ObjectiveScore(const kez_tools::LogEvaluation& result,
                      const std::vector<int64_t>& horizons_ms);

// "4 h, 8 h, 12 h, 24 h" for people.
std::string HorizonList(const std::vector<int64_t>& horizons_ms);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_TUNE_TUNEPLAN_H_
