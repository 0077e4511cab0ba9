// Replays a Log into a forecaster the way a host app reports.
//
// The host's contract is to report at least every 10 minutes, also when
// nothing changed; a log that records only changes must therefore be filled.
// Between two consecutive logged samples at most `max_silence_ms` apart, the
// replay adds a report every `interval_ms` after the earlier sample (at
// t + P, t + 2P, ... strictly before the later sample) that repeats the
// earlier sample's state (level, charging, aux values; counts too, as the
// host would send its last readings). A longer silence is taken as the phone
// being off and stays a gap. `as_logged` replays the samples alone.
//
// Nothing from the future leaks: a report carries the values of the last
// logged sample at or before its own time, and ReplayTo(T) never reports after
// T. When T falls inside a silence, whether to fill up to T is decided from
// what is known at T (T is at most `max_silence_ms` after the last sample),
// not from when the next sample will come.
//
// Incremental: ReplayTo may be called again with a later time and goes on
// where it stopped, so a caller can replay up to a forecast point, forecast,
// and continue on the same instance.
#ifndef KEZ_TOOLS_COMMON_REPLAY_REPLAYER_H_
#define KEZ_TOOLS_COMMON_REPLAY_REPLAYER_H_

#include <cstddef>
#include <cstdint>
#include <functional>

#include "LogSample.h"
#include "TimeUnits.h"

namespace kez_tools {

struct ReplayOptions {
  int64_t interval_ms = 5 * kMinuteMs;     // P: spacing of added reports
  int64_t max_silence_ms = 12 * kHourMs;   // H: longer silences stay gaps
  bool as_logged = false;                  // feed the logged samples only
};

// One report handed to the sink.
struct Report {
  int64_t time_ms = 0;
  const LogSample* sample = nullptr;  // the logged state it carries
  bool added = false;                 // true: a repeat made by the replay
};

struct ReplayStats {
  size_t samples_read = 0;   // logged samples fed so far
  size_t reports_added = 0;  // repeats made by the replay
  size_t gaps = 0;           // silences with at least one empty step
  size_t gap_steps = 0;      // 10-minute steps without any report, in total
  int64_t first_report_ms = -1;
  int64_t last_report_ms = -1;
};

class Replayer {
 public:
  using Sink = std::function<void(const Report&)>;

  // `log` must outlive the replayer; options must have interval_ms > 0.
  Replayer(const Log& log, const ReplayOptions& options, Sink sink);

  // Reports everything at or before `time_ms`. Later calls continue.
  void ReplayTo(int64_t time_ms);
  // Reports the whole log (up to its last sample).
  void ReplayAll();

  // Index of the next logged sample that has not been fed.
  size_t next_sample() const { return next_; }
  bool done() const { return next_ >= log_.samples.size(); }
  // The last logged sample fed, or nullptr.
  const LogSample* last_sample() const;
  const ReplayStats& stats() const { return stats_; }
  const ReplayOptions& options() const { return options_; }

 private:
  void Emit(int64_t time_ms, const LogSample* sample, bool added);
  // Adds repeats of the last sample before `until` (or at it if inclusive).
  void Fill(int64_t until, bool inclusive);

  const Log& log_;
  ReplayOptions options_;
  Sink sink_;
  size_t next_ = 0;
  int64_t next_fill_ms_ = 0;  // time of the next repeat of the last sample
  int64_t last_step_ = 0;     // 10-minute step of the last report
  ReplayStats stats_;
};

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_REPLAY_REPLAYER_H_
