#include "ForecastPoints.h"

namespace kez_tools {

int64_t AlignUp(int64_t t, int64_t every) {
  int64_t r = t % every;
  if (r < 0) r += every;
  return r == 0 ? t : t + (every - r);
}

ForecastPoints::ForecastPoints(const Log& log, const EvalOptions& o)
    : log_(log), options_(o) {
  const int64_t first_ms = log.samples.front().time_ms;
  const int64_t last_ms = log.samples.back().time_ms;
  truth_end_ms_ = o.has_to && o.to_ms < last_ms ? o.to_ms : last_ms;
  int64_t first_point = first_ms + o.warmup_ms;
  if (o.has_from && o.from_ms > first_point) first_point = o.from_ms;
  first_point_ms_ = AlignUp(first_point, o.every_ms);
}

size_t ForecastPoints::planned() const {
  if (empty()) return 0;
  return static_cast<size_t>((truth_end_ms_ - first_point_ms_) /
                             options_.every_ms) + 1;
}

bool ForecastPoints::Run(KezSession& session,
                         const std::function<bool(const ForecastPoint&)>& visit,
                         PointCounts* counts, ReplayStats* replay) const {
  const int64_t silence = options_.replay.max_silence_ms;
  counts->planned = planned();
  Replayer replayer(log_, options_.replay, session.Sink());
  int64_t previous_start = -1;
  size_t done = 0;
  for (int64_t point = first_point_ms_; point <= truth_end_ms_;
       point += options_.every_ms) {
    replayer.ReplayTo(point);
    ++done;
    if (options_.progress) options_.progress(done, counts->planned);
    const LogSample* last_logged = replayer.last_sample();
    if (last_logged == nullptr || point - last_logged->time_ms > silence) {
      ++counts->phone_off;
      continue;
    }
    const int64_t start = session.last_time_ms();
    if (start == previous_start) {
      ++counts->no_new_report;
      continue;
    }
    previous_start = start;
    ForecastPoint p;
    p.point_ms = point;
    p.start_ms = start;
    p.last = session.last_sample();
    if (!visit(p)) return false;
  }
  replayer.ReplayTo(truth_end_ms_);
  *replay = replayer.stats();
  return true;
}

}  // namespace kez_tools
