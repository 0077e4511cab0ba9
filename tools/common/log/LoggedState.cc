#include "LoggedState.h"

#include <algorithm>
#include <vector>

namespace kez_tools {

const LogSample* LoggedStateAt(const Log& log, int64_t time_ms,
                               int64_t max_silence_ms) {
  const std::vector<LogSample>& s = log.samples;
  auto after = std::upper_bound(
      s.begin(), s.end(), time_ms,
      [](int64_t t, const LogSample& x) { return t < x.time_ms; });
  if (after == s.begin() || after == s.end()) {
    // Before the first sample, or at/after the last: only the last sample's
    // own moment is known.
    if (after == s.end() && !s.empty() && s.back().time_ms == time_ms) {
      return &s.back();
    }
    return nullptr;
  }
  const LogSample* before = &*(after - 1);
  if (before->time_ms != time_ms &&
      after->time_ms - before->time_ms > max_silence_ms) {
    return nullptr;
  }
  return before;
}

}  // namespace kez_tools
