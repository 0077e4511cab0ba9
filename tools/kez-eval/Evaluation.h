// Forecast accuracy of one forecaster instance on a battery log, against
// simple baselines, the measure by which models and changes are judged (the
// evaluation tool prints it, the tuning tool optimises it).
//
// The log is replayed from its start into one instance through the C
// interface with the Replayer's policy. At forecast points on a regular grid
// (every `every_ms`, aligned to whole multiples of it in Unix time, from the
// end of the warm-up on, and within [from, to] when given) the replay stops,
// the instance forecasts the free and the "not charged" variant over the
// longest horizon, and the baselines (Baselines.h) forecast from the same
// moment. Each forecast starts at the instance's last report; the level at a
// horizon h is compared with the log's level at start + h (LogTruth.h:
// linear between samples), the chance of charging with the charging state
// logged then.
//
// What is left out, and counted:
//   - forecast points where the last logged sample is more than
//     max_silence_ms old (the phone was off: a host makes no forecast), and,
//     when replaying as logged, points with no new report since the previous
//     point (the same forecast again);
//   - a horizon whose moment lies in a silence longer than max_silence_ms,
//     or after the log's last sample, or after `to` when given (so that a
//     tuning run on the earlier part of a log never sees the later part);
//   - for the "not charged" variant, horizons up to which the log shows
//     charging (from the start on), or a silence.
// The time to reach the low level (20 %) is judged where the phone is not
// charging at the start, is above the level, and the log reaches it within
// the longest horizon with no charging and no silence before; a forecast
// that does not reach it within the horizon counts as reaching it 10 minutes
// after the horizon's end (its error is then a lower bound) and as a miss.
//
// A forecast is "learned" when the neighbour search found similar past
// moments (kez_similar_moments > 0), else it extrapolated the running rates.
//
// With a parameter record, the instance is re-initialised with it before the
// first sample (MobilePowerPredictor::Initialize rebuilds the memory base
// from scratch), so a tuned model is judged exactly as the default one.
#ifndef KEZ_TOOLS_EVAL_EVALUATION_H_
#define KEZ_TOOLS_EVAL_EVALUATION_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "ErrorStats.h"
#include "LogSample.h"
#include "Replayer.h"
#include "predictor/MobilePowerPredictorParameter.h"

namespace kez_eval {

constexpr int64_t kDayMs = 24 * kez_tools::kHourMs;

enum Method {
  kForecaster = 0,
  kPersistence,
  kRunningRates,
  kYesterday,
  kLastWeek,
  kMethodCount
};
// "forecaster", "persistence", "running_rates", "yesterday", "last_week"
const char* MethodName(int method);
// "forecaster", "persistence", "running rates", "yesterday", "last week"
const char* MethodTitle(int method);

enum Condition { kFreeForecast = 0, kNotCharged, kConditionCount };
// "free", "nocharge"
const char* ConditionName(int condition);
// "free forecast", "not charged"
const char* ConditionTitle(int condition);

struct EvalOptions {
  kez_tools::ReplayOptions replay;
  int64_t warmup_ms = 7 * kDayMs;
  int64_t every_ms = kez_tools::kHourMs;
  // Ascending, each a positive multiple of 10 minutes.
  std::vector<int64_t> horizons_ms = {
      1 * kez_tools::kHourMs, 2 * kez_tools::kHourMs, 4 * kez_tools::kHourMs,
      8 * kez_tools::kHourMs, 12 * kez_tools::kHourMs, 24 * kez_tools::kHourMs};
  bool has_from = false;  // forecast points at or after from_ms only
  int64_t from_ms = 0;
  bool has_to = false;    // forecast points, and their truths, up to to_ms
  int64_t to_ms = 0;
  // The model to judge; null: the built-in default model.
  const vorn::MobilePowerPredictorParameter* parameter = nullptr;
  double low_percent = 20;
  // Called after each forecast point with (points done, points planned).
  std::function<void(size_t, size_t)> progress;
};

struct HorizonResult {
  int64_t horizon_ms = 0;
  // Free forecast.
  size_t pairs = 0;             // forecasts with a truth at this horizon
  size_t learned = 0;           // of them, learned from similar moments
  size_t left_in_silence = 0;   // truth moment inside a silence
  size_t left_after_end = 0;    // truth moment after the log (or `to`)
  // level[condition][method]: absolute level errors, percentage points.
  ErrorStats level[kConditionCount][kMethodCount];
  ProbabilityScore charging[kMethodCount];  // free forecast only
  // "Not charged": pairs are level[kNotCharged][m].count().
  size_t nocharge_left_charging = 0;  // charging logged up to the horizon
  size_t nocharge_left_silence = 0;
  size_t nocharge_left_after_end = 0;
};

struct LowLevelResult {
  size_t events = 0;  // forecasts whose log reaches the low level
  // minutes[condition][method]: absolute error of the time to reach it.
  ErrorStats minutes[kConditionCount][kMethodCount];
  size_t misses[kConditionCount][kMethodCount] = {};
};

struct PointCounts {
  size_t planned = 0;        // moments on the forecast grid
  size_t made = 0;           // forecasts made and judged
  size_t learned = 0;        // of them, learned from similar moments
  size_t phone_off = 0;      // skipped: last sample older than max silence
  size_t no_new_report = 0;  // skipped: same last report as the point before
  // Seasonal baselines that lacked the history they need and kept the level
  // (persistence) instead: [0] yesterday, [1] last week.
  size_t seasonal_missing[2] = {0, 0};
};

struct LogEvaluation {
  std::string source;
  size_t logs = 1;  // logs pooled in this result
  size_t samples = 0;
  int64_t first_ms = 0, last_ms = 0;  // span of the (first) log
  int64_t span_ms = 0;                // total span of the pooled logs
  bool any_charging = false;
  kez_tools::ReplayStats replay;
  int64_t first_point_ms = -1, last_point_ms = -1;
  PointCounts points;
  std::vector<HorizonResult> horizons;
  LowLevelResult low;
  double low_percent = 20;
  // Plain sentences on what was left out and why, for people.
  std::vector<std::string> notes;
};

// Checks `options` (horizons, intervals); false with *error when unusable.
bool CheckOptions(const EvalOptions& options, std::string* error);

// Evaluates `log` (as read by ReadLog: samples in time order, at least one).
// A log too short for the warm-up, or without any usable forecast point,
// gives a result with no pairs and a note that says why. False with *error
// only for unusable options or when the library fails.
bool EvaluateLog(const kez_tools::Log& log, const EvalOptions& options,
                 LogEvaluation* result, std::string* error);

// Pools the pairs of several results (same options) into one.
LogEvaluation Combine(const std::vector<LogEvaluation>& results);

// The single figure to minimise: the forecaster's mean absolute level error
// of the free forecast, averaged over the horizons with pairs (each horizon
// counts the same). NaN when there is no pair.
double Score(const LogEvaluation& result);

}  // namespace kez_eval

#endif  // KEZ_TOOLS_EVAL_EVALUATION_H_
