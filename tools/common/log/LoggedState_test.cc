// The logged state at a moment: the last sample at or before it, nothing
// before the first sample, after the last, or inside a silence longer than
// the limit.
#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "LoggedState.h"
#include "TimeUnits.h"

namespace kez_tools {
namespace {

constexpr int64_t kT0 = 1700000000000;

Log MakeLog(const std::vector<std::pair<int64_t, double>>& minutes_levels) {
  Log log;
  for (const auto& ml : minutes_levels) {
    LogSample s;
    s.time_ms = kT0 + ml.first * kMinuteMs;
    s.level_percent = ml.second;
    log.samples.push_back(s);
  }
  return log;
}

TEST(LoggedState, IsTheLastSampleAtOrBeforeWithinTheSilenceLimit) {
  Log log = MakeLog({{0, 80}, {10, 70}, {800, 60}});
  const int64_t h = 12 * kHourMs;
  EXPECT_EQ(LoggedStateAt(log, kT0 - 1, h), nullptr);
  EXPECT_EQ(LoggedStateAt(log, kT0, h), &log.samples[0]);
  EXPECT_EQ(LoggedStateAt(log, kT0 + 9 * kMinuteMs, h), &log.samples[0]);
  EXPECT_EQ(LoggedStateAt(log, kT0 + 10 * kMinuteMs, h), &log.samples[1]);
  EXPECT_EQ(LoggedStateAt(log, kT0 + 11 * kMinuteMs, h), nullptr);  // off
  EXPECT_EQ(LoggedStateAt(log, kT0 + 800 * kMinuteMs, h), &log.samples[2]);
  EXPECT_EQ(LoggedStateAt(log, kT0 + 801 * kMinuteMs, h), nullptr);
}

}  // namespace
}  // namespace kez_tools
