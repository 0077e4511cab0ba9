// The forecast points of an evaluation, and the one loop that replays a log
// up to each of them.
//
// The points lie on a regular grid: every `every_ms`, aligned to whole
// multiples of it in Unix time, from the end of the warm-up on (or from
// `from_ms` when later), up to the log's last sample (or `to_ms` when
// earlier: the truth ends there too). At each point the log is replayed into
// the session up to the point, as a host reports, and the caller forecasts
// from the session's last report. A point gets no forecast, and is counted,
// when the last logged sample is more than max_silence_ms old (the phone was
// off: a host makes no forecast), or when there was no new report since the
// point before (replayed as logged: the same forecast again).
//
// After the last point the replay goes on to the end of the truth, so that
// the replay's counts describe all of it.
#ifndef KEZ_TOOLS_EVALUATION_FORECASTPOINTS_H_
#define KEZ_TOOLS_EVALUATION_FORECASTPOINTS_H_

#include <cstddef>
#include <cstdint>
#include <functional>

#include "EvalOptions.h"
#include "KezSession.h"
#include "LogSample.h"
#include "Replayer.h"

namespace kez_tools {

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

// One point that gets a forecast.
struct ForecastPoint {
  int64_t point_ms = 0;  // the grid's moment
  int64_t start_ms = 0;  // the session's last report: the forecast's start
  const LogSample* last = nullptr;  // the state that report carried
};

class ForecastPoints {
 public:
  // `log` (at least one sample) must outlive this object.
  ForecastPoints(const Log& log, const EvalOptions& options);

  // No point on the grid (a log shorter than the warm-up, or a range that
  // holds no grid moment).
  bool empty() const { return first_point_ms_ > truth_end_ms_; }
  size_t planned() const;
  int64_t truth_end_ms() const { return truth_end_ms_; }

  // Replays the log into `session` point by point and calls `visit` at each
  // point that gets a forecast; counts the planned and skipped points into
  // *counts, and leaves the replay's counts in *replay. Stops early, and
  // returns false, when `visit` returns false.
  bool Run(KezSession& session,
           const std::function<bool(const ForecastPoint&)>& visit,
           PointCounts* counts, ReplayStats* replay) const;

 private:
  const Log& log_;
  const EvalOptions& options_;
  int64_t first_point_ms_ = 0;
  int64_t truth_end_ms_ = 0;
};

// The first multiple of `every` at or after `t`.
int64_t AlignUp(int64_t t, int64_t every);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_EVALUATION_FORECASTPOINTS_H_
