// The replay policy on small hand-built logs: when reports are added and
// what they carry, the silence limit, as-logged replay, that nothing from
// the future leaks, incremental replay, the counts, and the logged truth.
#include <gtest/gtest.h>

#include <vector>

#include "Replayer.h"

namespace kez_tools {
namespace {

constexpr int64_t kT0 = 1700000000000;  // a multiple of 10 minutes

Log MakeLog(const std::vector<std::pair<int64_t, double>>& minutes_levels) {
  Log log;
  for (const auto& ml : minutes_levels) {
    LogSample s;
    s.time_ms = kT0 + ml.first * kMinuteMs;
    s.level_percent = ml.second;
    s.charging = ml.second > 90 ? 1 : 0;
    s.aux1 = ml.second / 2;
    log.samples.push_back(s);
  }
  return log;
}

struct Seen {
  int64_t minute;
  double level;
  double aux1;
  bool added;
};

std::vector<Seen> Replay(const Log& log, const ReplayOptions& o,
                         int64_t to_minute, ReplayStats* stats = nullptr) {
  std::vector<Seen> seen;
  Replayer r(log, o, [&](const Report& rep) {
    seen.push_back({(rep.time_ms - kT0) / kMinuteMs, rep.sample->level_percent,
                    rep.sample->aux1, rep.added});
  });
  r.ReplayTo(kT0 + to_minute * kMinuteMs);
  if (stats) *stats = r.stats();
  return seen;
}

TEST(Replayer, RepeatsTheLastLoggedStateEveryIntervalBetweenSamples) {
  Log log = MakeLog({{0, 80}, {17, 79}, {20, 78}});
  std::vector<Seen> seen = Replay(log, ReplayOptions(), 20);
  std::vector<int64_t> minutes;
  for (const Seen& s : seen) minutes.push_back(s.minute);
  EXPECT_EQ(minutes, (std::vector<int64_t>{0, 5, 10, 15, 17, 20}));
  // The repeats carry the earlier sample's whole state.
  EXPECT_TRUE(seen[1].added);
  EXPECT_EQ(seen[3].level, 80);
  EXPECT_EQ(seen[3].aux1, 40);
  EXPECT_FALSE(seen[4].added);
  EXPECT_EQ(seen[4].level, 79);
}

TEST(Replayer, RepeatOnTheNextSamplesTimeIsLeftToTheSample) {
  Log log = MakeLog({{0, 80}, {10, 79}});
  std::vector<Seen> seen = Replay(log, ReplayOptions(), 10);
  ASSERT_EQ(seen.size(), 3u);
  EXPECT_EQ(seen[2].minute, 10);
  EXPECT_FALSE(seen[2].added);
}

TEST(Replayer, SilencesLongerThanTheLimitStayGaps) {
  ReplayOptions o;
  o.max_silence_ms = 12 * kHourMs;
  // 12 h exactly is filled, 12 h 1 min is not.
  Log log = MakeLog({{0, 80}, {720, 70}, {1441, 60}});
  ReplayStats stats;
  std::vector<Seen> seen = Replay(log, o, 1441, &stats);
  EXPECT_EQ(stats.samples_read, 3u);
  EXPECT_EQ(stats.reports_added, 143u);  // minutes 5 .. 715
  for (const Seen& s : seen) {
    EXPECT_FALSE(s.added && s.minute > 720) << s.minute;
  }
  EXPECT_EQ(stats.gaps, 1u);
  EXPECT_EQ(stats.gap_steps, 71u);  // steps 73 .. 143 have no report
}

TEST(Replayer, AsLoggedAddsNothingAndCountsTheGaps) {
  ReplayOptions o;
  o.as_logged = true;
  Log log = MakeLog({{0, 80}, {5, 80}, {35, 79}, {41, 78}});
  ReplayStats stats;
  std::vector<Seen> seen = Replay(log, o, 100, &stats);
  EXPECT_EQ(seen.size(), 4u);
  EXPECT_EQ(stats.reports_added, 0u);
  EXPECT_EQ(stats.gaps, 1u);       // steps 1 and 2 empty
  EXPECT_EQ(stats.gap_steps, 2u);
  EXPECT_EQ(stats.first_report_ms, kT0);
  EXPECT_EQ(stats.last_report_ms, kT0 + 41 * kMinuteMs);
}

TEST(Replayer, NothingFromTheFutureLeaks) {
  // Replaying up to minute 23, inside the silence before a drop to 10 %.
  Log log = MakeLog({{0, 80}, {60, 10}});
  std::vector<Seen> seen = Replay(log, ReplayOptions(), 23);
  ASSERT_EQ(seen.size(), 5u);  // 0, 5, 10, 15, 20
  for (const Seen& s : seen) {
    EXPECT_LE(s.minute, 23);
    EXPECT_EQ(s.level, 80);
  }
  // A moment later than the limit after the last sample adds nothing,
  // whenever the next sample comes.
  ReplayOptions short_limit;
  short_limit.max_silence_ms = 20 * kMinuteMs;
  EXPECT_EQ(Replay(log, short_limit, 23).size(), 1u);
  EXPECT_EQ(Replay(log, short_limit, 20).size(), 5u);
}

TEST(Replayer, IncrementalReplayGoesOnWhereItStopped) {
  Log log = MakeLog({{0, 80}, {17, 79}, {44, 78}, {50, 77}});
  std::vector<int64_t> once, parts;
  Replayer a(log, ReplayOptions(), [&](const Report& r) {
    once.push_back(r.time_ms);
  });
  a.ReplayAll();
  Replayer b(log, ReplayOptions(), [&](const Report& r) {
    parts.push_back(r.time_ms);
  });
  for (int64_t m : {3, 17, 18, 30, 30, 50}) {
    b.ReplayTo(kT0 + m * kMinuteMs);
    EXPECT_LE(parts.back(), kT0 + m * kMinuteMs);
  }
  EXPECT_EQ(parts, once);
  EXPECT_TRUE(b.done());
  EXPECT_EQ(b.last_sample(), &log.samples.back());
  EXPECT_EQ(b.stats().samples_read, 4u);
}

TEST(Replayer, ReplayPastTheEndGoesOnReportingWithinTheLimit) {
  Log log = MakeLog({{0, 80}});
  EXPECT_EQ(Replay(log, ReplayOptions(), 30).size(), 7u);
  ReplayOptions o;
  o.interval_ms = 7 * kMinuteMs;
  EXPECT_EQ(Replay(log, o, 30).back().minute, 28);
}


}  // namespace
}  // namespace kez_tools
