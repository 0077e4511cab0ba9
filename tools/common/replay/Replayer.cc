#include "Replayer.h"

#include <algorithm>
#include <utility>

namespace kez_tools {

Replayer::Replayer(const Log& log, const ReplayOptions& options, Sink sink)
    : log_(log), options_(options), sink_(std::move(sink)) {
  if (options_.interval_ms <= 0) options_.interval_ms = 5 * kMinuteMs;
}

const LogSample* Replayer::last_sample() const {
  return next_ == 0 ? nullptr : &log_.samples[next_ - 1];
}

void Replayer::Emit(int64_t time_ms, const LogSample* sample, bool added) {
  // Floor division: times before 1970 still get their own steps.
  int64_t step = time_ms >= 0 ? time_ms / kStepMs
                              : -((-time_ms + kStepMs - 1) / kStepMs);
  if (stats_.samples_read + stats_.reports_added == 0) {
    stats_.first_report_ms = time_ms;
    last_step_ = step;
  } else if (step > last_step_ + 1) {
    ++stats_.gaps;
    stats_.gap_steps += static_cast<size_t>(step - last_step_ - 1);
  }
  last_step_ = std::max(last_step_, step);
  stats_.last_report_ms = time_ms;
  if (added) {
    ++stats_.reports_added;
  } else {
    ++stats_.samples_read;
  }
  if (sink_) {
    Report report;
    report.time_ms = time_ms;
    report.sample = sample;
    report.added = added;
    sink_(report);
  }
}

void Replayer::Fill(int64_t until, bool inclusive) {
  const LogSample* last = last_sample();
  if (last == nullptr || options_.as_logged) return;
  if (until - last->time_ms > options_.max_silence_ms) return;
  while (inclusive ? next_fill_ms_ <= until : next_fill_ms_ < until) {
    Emit(next_fill_ms_, last, true);
    next_fill_ms_ += options_.interval_ms;
  }
}

void Replayer::ReplayTo(int64_t time_ms) {
  while (next_ < log_.samples.size() &&
         log_.samples[next_].time_ms <= time_ms) {
    const LogSample& sample = log_.samples[next_];
    Fill(sample.time_ms, false);
    ++next_;
    next_fill_ms_ = sample.time_ms + options_.interval_ms;
    Emit(sample.time_ms, &sample, false);
  }
  Fill(time_ms, true);
}

void Replayer::ReplayAll() {
  if (!log_.samples.empty()) ReplayTo(log_.samples.back().time_ms);
}

}  // namespace kez_tools
