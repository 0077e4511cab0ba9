// What a battery log says about the phone at a given moment: the truth that
// forecasts are measured against, and the history that baselines look back
// on.
//
// The level between two logged samples is interpolated linearly: logs that
// record only changes (a sample when the level moves by a percent) and logs
// that are sparse while the phone is idle would otherwise show a staircase
// that lags behind the battery and flatters a forecast that keeps the level
// still. The charging state is a state, not a quantity: it is the state of
// the last sample at or before the moment. Where two consecutive samples are
// more than `max_silence_ms` apart the log says nothing in between (the
// phone was off, or the logger was): such moments, and moments before the
// first or after the last sample, have no truth.
//
// The *Known* variants answer from what the log had shown by `now_ms`: a
// later sample is never used, so a baseline built on them cannot see the
// future. Between the last sample before `now_ms` and `now_ms` the level is
// held (at most `max_silence_ms` after that sample).
#ifndef KEZ_TOOLS_EVALUATION_LOGTRUTH_H_
#define KEZ_TOOLS_EVALUATION_LOGTRUTH_H_

#include <cstddef>
#include <cstdint>

#include "LogSample.h"

namespace kez_tools {

// What the log shows after a forecast's start, up to some moment.
struct Outlook {
  int64_t first_charging_ms = -1;  // first sample that is charging
  int64_t first_silence_ms = -1;   // start of the first silence too long
  int64_t first_low_ms = -1;       // first sample at or below the low level
};

class LogTruth {
 public:
  // `log` must outlive this object and hold at least one sample.
  LogTruth(const Log& log, int64_t max_silence_ms);

  // Level in percent at `time_ms`; false where the log says nothing.
  bool LevelAt(int64_t time_ms, double* percent) const;
  // Charging state at `time_ms`; false where the log says nothing.
  bool ChargingAt(int64_t time_ms, bool* charging) const;

  // As above, seen from `now_ms` (time_ms <= now_ms): later samples unused.
  bool KnownLevelAt(int64_t time_ms, int64_t now_ms, double* percent) const;
  bool KnownChargingAt(int64_t time_ms, int64_t now_ms, bool* charging) const;

  // Walks the samples after `from_ms` up to `until_ms` (inclusive) and notes
  // the first charging sample, the first too-long silence (the time of the
  // sample it starts after; a silence running past the log's end does not
  // count) and the first sample whose level, shown as a whole percent (as
  // forecasts are judged), is at or below `low_percent`.
  Outlook LookAhead(int64_t from_ms, int64_t until_ms,
                    double low_percent) const;

  int64_t first_ms() const { return log_.samples.front().time_ms; }
  int64_t last_ms() const { return log_.samples.back().time_ms; }
  int64_t max_silence_ms() const { return max_silence_ms_; }

 private:
  // Index of the last sample at or before `time_ms`, or -1.
  ptrdiff_t LastAtOrBefore(int64_t time_ms) const;

  const Log& log_;
  int64_t max_silence_ms_;
};

}  // namespace kez_tools

#endif  // KEZ_TOOLS_EVALUATION_LOGTRUTH_H_
