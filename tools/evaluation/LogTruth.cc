#include "LogTruth.h"

#include <algorithm>
#include <cmath>

#include "LoggedState.h"

namespace kez_tools {


LogTruth::LogTruth(const kez_tools::Log& log, int64_t max_silence_ms)
    : log_(log), max_silence_ms_(max_silence_ms) {}

ptrdiff_t LogTruth::LastAtOrBefore(int64_t time_ms) const {
  const auto& s = log_.samples;
  auto after = std::upper_bound(
      s.begin(), s.end(), time_ms,
      [](int64_t t, const LogSample& x) { return t < x.time_ms; });
  return (after - s.begin()) - 1;
}

bool LogTruth::LevelAt(int64_t time_ms, double* percent) const {
  const LogSample* a = LoggedStateAt(log_, time_ms, max_silence_ms_);
  if (a == nullptr) return false;
  if (a->time_ms == time_ms) {
    *percent = a->level_percent;
    return true;
  }
  // Between two samples no more than the silence limit apart.
  const LogSample* b = a + 1;
  double f = static_cast<double>(time_ms - a->time_ms) /
             static_cast<double>(b->time_ms - a->time_ms);
  *percent = a->level_percent + (b->level_percent - a->level_percent) * f;
  return true;
}

bool LogTruth::ChargingAt(int64_t time_ms, bool* charging) const {
  const LogSample* a = LoggedStateAt(log_, time_ms, max_silence_ms_);
  if (a == nullptr) return false;
  *charging = a->charging > 0.5;
  return true;
}

bool LogTruth::KnownLevelAt(int64_t time_ms, int64_t now_ms,
                            double* percent) const {
  const auto& s = log_.samples;
  ptrdiff_t i = LastAtOrBefore(time_ms);
  if (i < 0) return false;
  const LogSample& a = s[static_cast<size_t>(i)];
  if (a.time_ms == time_ms) {
    *percent = a.level_percent;
    return true;
  }
  bool next_known = static_cast<size_t>(i) + 1 < s.size() &&
                    s[static_cast<size_t>(i) + 1].time_ms <= now_ms;
  if (!next_known) {
    // Nothing newer was known at now_ms: the level is held, as a host that
    // repeats its last reading would.
    if (time_ms - a.time_ms > max_silence_ms_) return false;
    *percent = a.level_percent;
    return true;
  }
  return LevelAt(time_ms, percent);
}

bool LogTruth::KnownChargingAt(int64_t time_ms, int64_t now_ms,
                               bool* charging) const {
  const auto& s = log_.samples;
  ptrdiff_t i = LastAtOrBefore(time_ms);
  if (i < 0) return false;
  const LogSample& a = s[static_cast<size_t>(i)];
  if (a.time_ms != time_ms) {
    bool next_known = static_cast<size_t>(i) + 1 < s.size() &&
                      s[static_cast<size_t>(i) + 1].time_ms <= now_ms;
    int64_t silence = next_known
                          ? s[static_cast<size_t>(i) + 1].time_ms - a.time_ms
                          : time_ms - a.time_ms;
    if (silence > max_silence_ms_) return false;
  }
  *charging = a.charging > 0.5;
  return true;
}

Outlook LogTruth::LookAhead(int64_t from_ms, int64_t until_ms,
                            double low_percent) const {
  Outlook o;
  const auto& s = log_.samples;
  ptrdiff_t i = LastAtOrBefore(from_ms);
  size_t k = i < 0 ? 0 : static_cast<size_t>(i);
  for (; k < s.size() && s[k].time_ms <= until_ms; ++k) {
    if (s[k].time_ms > from_ms) {
      if (o.first_charging_ms < 0 && s[k].charging > 0.5) {
        o.first_charging_ms = s[k].time_ms;
      }
      if (o.first_low_ms < 0 &&
          std::round(s[k].level_percent) <= low_percent) {
        o.first_low_ms = s[k].time_ms;
      }
    }
    if (o.first_silence_ms < 0 && k + 1 < s.size() &&
        s[k + 1].time_ms - s[k].time_ms > max_silence_ms_) {
      o.first_silence_ms = s[k].time_ms;
    }
  }
  return o;
}

}  // namespace kez_tools
