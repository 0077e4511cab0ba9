// Forecast accuracy of one forecaster instance on a battery log, against
// simple baselines, the measure by which models and changes are judged (the
// evaluation tool prints it, the tuning tool optimises it).
//
// The log is replayed from its start into one instance with the Replayer's
// policy, as a host reports. At each forecast point (ForecastPoints.h: a
// regular grid after the warm-up) the instance forecasts the free and the "not charged" variant over the
// longest horizon, and the baselines (Baselines.h) forecast from the same
// moment; so does the adaptive forecaster, fed the same reports (unless
// the options turn it off: then its statistics stay empty). Each forecast
// starts at the instance's last report; the level at a
// horizon h is compared with the log's level at start + h (LogTruth.h:
// linear between samples), the chance of charging with the charging state
// logged then.
//
// What is left out, and counted:
//   - forecast points that ForecastPoints skips (the phone was off, or no
//     new report since the point before);
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
// moments, else it extrapolated the running rates.
//
// With a parameter record, the instance is re-initialised with it before the
// first sample (MobilePowerPredictor::Initialize rebuilds the memory base
// from scratch), so a tuned model is judged exactly as the default one.
#ifndef KEZ_TOOLS_EVALUATION_EVALUATION_H_
#define KEZ_TOOLS_EVALUATION_EVALUATION_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "ErrorStats.h"
#include "EvalOptions.h"
#include "ForecastPoints.h"
#include "LogSample.h"
#include "Replayer.h"

namespace kez_tools {

enum Method {
  kForecaster = 0,
  kAdaptive,  // the adaptive forecaster (adaptive/AdaptiveForecaster.h)
  kPersistence,
  kRunningRates,
  kYesterday,
  kLastWeek,
  kMethodCount
};
// "forecaster", "adaptive", "persistence", "running_rates", "yesterday",
// "last_week"
const char* MethodName(int method);
// "forecaster", "adaptive", "persistence", "running rates", "yesterday",
// "last week"
const char* MethodTitle(int method);

enum Condition { kFreeForecast = 0, kNotCharged, kConditionCount };
// "free", "nocharge"
const char* ConditionName(int condition);
// "free forecast", "not charged"
const char* ConditionTitle(int condition);

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

}  // namespace kez_tools

#endif  // KEZ_TOOLS_EVALUATION_EVALUATION_H_
