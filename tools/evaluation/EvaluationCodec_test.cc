// A result moved as bytes is the same result: every statistic, count and
// note comes back to the last bit, and pooling decoded results gives the
// pooled figures of the originals. Damaged bytes are refused.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "Evaluation.h"
#include "EvaluationCodec.h"

namespace kez_tools {
namespace {

constexpr int64_t kT0 = 1704067200000;  // 2024-01-01 00:00 UTC

// `days` of a sawtooth: down 0.7 % an hour from 95 %, on the charger for
// two hours every evening (back to 95 %), with a silence of a day in the
// middle so that points and horizons are left out and noted.
Log Sawtooth(int days, const std::string& source) {
  Log log;
  log.source = source;
  for (int64_t m = 0; m <= days * 1440LL; m += 5) {
    if (m > 9 * 1440 && m < 10 * 1440) continue;
    int64_t minute = m % 1440;
    LogSample s;
    s.time_ms = kT0 + m * kMinuteMs;
    bool charging = minute >= 20 * 60 && minute < 22 * 60;
    s.charging = charging ? 1 : 0;
    s.level_percent = charging ? 95 - 0.7 * 20 + 0.7 * 20 * (minute - 1200) / 120.0
                               : 95 - 0.7 * static_cast<double>(
                                                (minute + 120) % 1440) / 60.0;
    s.level_percent = std::round(s.level_percent);
    log.samples.push_back(s);
  }
  return log;
}

bool SameBits(double a, double b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

// Everything a report shows of a result, compared to the last bit.
void ExpectSame(const LogEvaluation& a, const LogEvaluation& b) {
  EXPECT_EQ(a.source, b.source);
  EXPECT_EQ(a.logs, b.logs);
  EXPECT_EQ(a.samples, b.samples);
  EXPECT_EQ(a.span_ms, b.span_ms);
  EXPECT_EQ(a.replay.reports_added, b.replay.reports_added);
  EXPECT_EQ(a.replay.gap_steps, b.replay.gap_steps);
  EXPECT_EQ(a.points.made, b.points.made);
  EXPECT_EQ(a.points.phone_off, b.points.phone_off);
  EXPECT_EQ(a.first_point_ms, b.first_point_ms);
  EXPECT_EQ(a.notes, b.notes);
  EXPECT_TRUE(SameBits(Score(a), Score(b)));
  ASSERT_EQ(a.horizons.size(), b.horizons.size());
  for (size_t i = 0; i < a.horizons.size(); ++i) {
    const HorizonResult& x = a.horizons[i];
    const HorizonResult& y = b.horizons[i];
    EXPECT_EQ(x.pairs, y.pairs);
    EXPECT_EQ(x.left_in_silence, y.left_in_silence);
    EXPECT_EQ(x.nocharge_left_charging, y.nocharge_left_charging);
    for (int m = 0; m < kMethodCount; ++m) {
      for (int c = 0; c < kConditionCount; ++c) {
        EXPECT_EQ(x.level[c][m].count(), y.level[c][m].count());
        EXPECT_TRUE(SameBits(x.level[c][m].Mean(), y.level[c][m].Mean()));
        EXPECT_TRUE(SameBits(x.level[c][m].Percentile90(),
                             y.level[c][m].Percentile90()));
      }
      EXPECT_TRUE(SameBits(x.charging[m].Brier(), y.charging[m].Brier()));
    }
  }
  EXPECT_EQ(a.low.events, b.low.events);
  for (int c = 0; c < kConditionCount; ++c) {
    for (int m = 0; m < kMethodCount; ++m) {
      EXPECT_TRUE(SameBits(a.low.minutes[c][m].Mean(), b.low.minutes[c][m].Mean()));
      EXPECT_EQ(a.low.misses[c][m], b.low.misses[c][m]);
    }
  }
}

class EvaluationCodecTest : public ::testing::Test {
 protected:
  void SetUp() override {
    EvalOptions options;
    options.warmup_ms = 3 * kDayMs;
    logs_ = {Sawtooth(16, "a.csv"), Sawtooth(12, "b, \"quoted\".csv")};
    results_.resize(logs_.size());
    std::string error;
    for (size_t i = 0; i < logs_.size(); ++i) {
      ASSERT_TRUE(EvaluateLog(logs_[i], options, &results_[i], &error)) << error;
    }
    // The logs are long enough to judge, and the silence is noted.
    ASSERT_GT(results_[0].points.made, 0u);
    ASSERT_GT(results_[0].points.phone_off, 0u);
    ASSERT_FALSE(results_[0].notes.empty());
  }
  std::vector<Log> logs_;
  std::vector<LogEvaluation> results_;
};

TEST_F(EvaluationCodecTest, DecodedResultIsTheResult) {
  for (const LogEvaluation& r : results_) {
    LogEvaluation back;
    std::string error;
    ASSERT_TRUE(DecodeEvaluation(EncodeEvaluation(r), &back, &error)) << error;
    ExpectSame(r, back);
    // Encoding is a function of the result: the same bytes again.
    EXPECT_EQ(EncodeEvaluation(back), EncodeEvaluation(r));
  }
}

TEST_F(EvaluationCodecTest, PoolingDecodedResultsGivesThePooledFigures) {
  std::vector<LogEvaluation> moved(results_.size());
  std::string error;
  for (size_t i = 0; i < results_.size(); ++i) {
    ASSERT_TRUE(DecodeEvaluation(EncodeEvaluation(results_[i]), &moved[i], &error));
  }
  ExpectSame(Combine(results_), Combine(moved));
  // A pooled result travels too.
  LogEvaluation pooled;
  ASSERT_TRUE(DecodeEvaluation(EncodeEvaluation(Combine(results_)), &pooled, &error));
  ExpectSame(Combine(results_), pooled);
}

TEST_F(EvaluationCodecTest, DamagedBytesAreRefused) {
  const std::string bytes = EncodeEvaluation(results_[0]);
  LogEvaluation untouched;
  untouched.source = "untouched";
  std::string error;
  const std::vector<std::string> damaged = {
      "", "KEZEVAL", "KEZEVAL2" + bytes.substr(8), bytes.substr(0, bytes.size() - 1),
      bytes.substr(0, bytes.size() / 2), bytes + "x"};
  for (const std::string& d : damaged) {
    LogEvaluation r = untouched;
    EXPECT_FALSE(DecodeEvaluation(d, &r, &error)) << d.size();
    EXPECT_FALSE(error.empty());
    EXPECT_EQ(r.source, "untouched");
  }
  // A count far beyond the bytes that follow (the source's length here).
  std::string huge = bytes;
  huge[8 + 7] = '\x7f';
  LogEvaluation r;
  EXPECT_FALSE(DecodeEvaluation(huge, &r, &error));
}

}  // namespace
}  // namespace kez_tools
