// A restart loses nothing, through the C functions an app calls: an adaptive
// forecaster opened with a journal (kez_adaptive_open) that is stopped and
// opened again at 20 random moments of the bundled 35-day log forecasts
// bit-identically to one that never stopped: all three variants, the
// weights of every step and the scored counts, at each restart and at the
// end. The journal is rewritten once on the way (after 34 days), so the
// restarts after that replay only the last 31 days and the state the
// rewrite saved. A second run goes over the log twice with six days without
// reports in the middle (the instance's memory then reaches six days further
// back, and the journal must keep those reports).
//
// Also: the status codes of opening (a second open of the same file, a file
// that is not a journal, a missing folder), the counts, and reports the
// forecaster refused staying out of the file.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "journal/JournalRecord.h"
#include "journal/JournalTestUtil.h"
#include "journal/testing/BundledLog.h"
#include "kez/kez.h"

namespace {

using journal_test::ReadText;
using journal_test::TempFolder;
using journal_test::WriteText;
using kez::JournalRecord;

constexpr int kSteps = 144;

std::vector<JournalRecord> ReadBundledLog() {
  return journal_testing::ReadBundledLog(KEZ_SOURCE_DIR);
}

int Report(kez_adaptive* a, const JournalRecord& r) {
  return kez_adaptive_report(a, r.timeMs, r.levelPercent, r.charging, r.aux1,
                             r.aux2, r.aux3, r.countA, r.countB1, r.countB2);
}

template <class T>
void Append(std::string* bytes, const std::vector<T>& values) {
  bytes->append(reinterpret_cast<const char*>(values.data()),
                values.size() * sizeof(T));
}

// Everything a host can read from the forecaster, as bytes: the three
// forecasts of a day, the weights of each of their steps, the scored counts.
std::string Everything(kez_adaptive* a) {
  std::string bytes;
  const int methods = kez_adaptive_method_count();
  for (int variant = 0; variant < 3; ++variant) {
    std::vector<stMobilePowerPredictionData> out(kSteps);
    EXPECT_EQ(kez_adaptive_predict(a, variant, kSteps, out.data()), 1);
    Append(&bytes, out);
    std::vector<double> weights(static_cast<std::size_t>(kSteps * methods));
    EXPECT_EQ(kez_adaptive_weight_steps(a, variant, 0, kSteps, weights.data()), 1);
    Append(&bytes, weights);
    const long scored = kez_adaptive_scored(a, variant);
    bytes.append(reinterpret_cast<const char*>(&scored), sizeof scored);
  }
  std::vector<double> weights(static_cast<std::size_t>(kSteps * methods));
  EXPECT_EQ(kez_adaptive_weight_steps(a, KEZ_VARIANT_FREE, 1, kSteps, weights.data()), 1);
  Append(&bytes, weights);
  return bytes;
}

// Returns how many reports the last reopening replayed.
long long RunRestarts(const std::vector<JournalRecord>& log, unsigned seed) {
  TempFolder folder;
  EXPECT_TRUE(folder.ok());
  const std::string path = folder.Path("history.csv");
  std::mt19937 random(seed);
  std::vector<std::size_t> restarts;
  while (restarts.size() < 20) {
    const std::size_t at =
        std::uniform_int_distribution<std::size_t>(1, log.size() - 1)(random);
    if (std::find(restarts.begin(), restarts.end(), at) == restarts.end()) {
      restarts.push_back(at);
    }
  }
  std::sort(restarts.begin(), restarts.end());

  kez_adaptive* steady = kez_adaptive_init();
  int status = 1;
  kez_adaptive* restarted = kez_adaptive_open(path.c_str(), &status);
  EXPECT_EQ(status, KEZ_JOURNAL_OK);
  EXPECT_NE(restarted, nullptr);
  long long replayed = 0;
  std::size_t next = 0;
  for (std::size_t i = 0; i < log.size(); ++i) {
    if (next < restarts.size() && restarts[next] == i) {
      ++next;
      kez_adaptive_stop(restarted);
      restarted = kez_adaptive_open(path.c_str(), &status);
      EXPECT_EQ(status, KEZ_JOURNAL_OK);
      if (restarted == nullptr) return -1;
      replayed = kez_adaptive_journal_count(restarted, KEZ_JOURNAL_REPLAYED);
      EXPECT_TRUE(Everything(restarted) == Everything(steady))
          << "restart before report " << i << " after " << replayed
          << " replayed";
    }
    EXPECT_EQ(Report(steady, log[i]), 1);
    EXPECT_EQ(Report(restarted, log[i]), 1);
  }
  EXPECT_TRUE(Everything(restarted) == Everything(steady));
  kez_adaptive_stop(steady);
  kez_adaptive_stop(restarted);
  return replayed;
}

TEST(KezAdaptiveJournal, ForecastsAfterReopeningAreBitIdentical) {
  const std::vector<JournalRecord> log = ReadBundledLog();
  ASSERT_GT(log.size(), 9000u);
  const long long replayed = RunRestarts(log, 35);
  // The last restart came after the rewrite: it replayed the last 31 days
  // (and the state saved), not the whole log.
  EXPECT_GT(replayed, 0);
  EXPECT_LT(replayed, static_cast<long long>(log.size()) * 33 / 35);
}

// The phone off for six days in the middle of two passes over the log.
TEST(KezAdaptiveJournal, AfterDaysWithoutReports) {
  const std::vector<JournalRecord> once = ReadBundledLog();
  ASSERT_GT(once.size(), 9000u);
  const uint64_t start = once.front().timeMs;
  const uint64_t span = once.back().timeMs - start + 300000;
  std::vector<JournalRecord> log;
  for (int copy = 0; copy < 2; ++copy) {
    for (JournalRecord r : once) {
      r.timeMs += copy * span;
      const uint64_t day = (r.timeMs - start) / 86400000ull;
      if (day < 40 || day >= 46) log.push_back(r);
    }
  }
  EXPECT_GT(RunRestarts(log, 46), 0);
}

TEST(KezAdaptiveJournal, StatusCodesAndCounts) {
  TempFolder folder;
  ASSERT_TRUE(folder.ok());
  const std::string path = folder.Path("history.csv");
  int status = 1;
  EXPECT_EQ(kez_adaptive_open(nullptr, &status), nullptr);
  EXPECT_EQ(status, KEZ_JOURNAL_CANNOT_OPEN);
  EXPECT_EQ(kez_adaptive_open(folder.Path("missing/history.csv").c_str(), &status), nullptr);
  EXPECT_EQ(status, KEZ_JOURNAL_CANNOT_OPEN);

  const std::string other = folder.Path("notes.txt");
  WriteText(other, "shopping list\n");
  EXPECT_EQ(kez_adaptive_open(other.c_str(), &status), nullptr);
  EXPECT_EQ(status, KEZ_JOURNAL_NOT_JOURNAL);
  EXPECT_EQ(ReadText(other), "shopping list\n");  // left unchanged

  kez_adaptive* a = kez_adaptive_open(path.c_str(), nullptr);
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(kez_adaptive_open(path.c_str(), &status), nullptr);
  EXPECT_EQ(status, KEZ_JOURNAL_LOCKED);

  const uint64_t t0 = 1709510400000ull;
  EXPECT_EQ(kez_adaptive_report(a, t0, 50.0f, 0.0f, 0, 0, 0, 0, 0, 0), 1);
  EXPECT_EQ(kez_adaptive_report(a, t0 + 300000, 49.5f, 0.0f, 0, 0, 0, 0, 0, 0), 1);
  // Refused: a value that is not finite, and a report ten minutes late.
  EXPECT_EQ(kez_adaptive_report(a, t0 + 600000, 0.0f / 0.0f, 0.0f, 0, 0, 0, 0, 0, 0), 0);
  EXPECT_EQ(kez_adaptive_report(a, t0 - 300000, 49.0f, 0.0f, 0, 0, 0, 0, 0, 0), 0);
  EXPECT_EQ(kez_adaptive_report_line(a, "1709511000000,49,0,0,0,0,0,0,0"), 1);
  EXPECT_EQ(kez_adaptive_journal_count(a, KEZ_JOURNAL_UNSAFE), 3);
  EXPECT_EQ(kez_adaptive_journal_count(a, KEZ_JOURNAL_HELD), 0);
  EXPECT_EQ(kez_adaptive_journal_count(a, KEZ_JOURNAL_LAST_STATUS), KEZ_JOURNAL_OK);
  EXPECT_EQ(kez_adaptive_sync(a), KEZ_JOURNAL_OK);
  EXPECT_EQ(kez_adaptive_journal_count(a, KEZ_JOURNAL_UNSAFE), 0);
  EXPECT_EQ(kez_adaptive_journal_count(a, 99), -1);
  EXPECT_EQ(kez_adaptive_journal_count(nullptr, KEZ_JOURNAL_UNSAFE), -1);
  EXPECT_EQ(kez_adaptive_sync(nullptr), -1);
  kez_adaptive_stop(a);

  a = kez_adaptive_open(path.c_str(), &status);
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(status, KEZ_JOURNAL_OK);
  EXPECT_EQ(kez_adaptive_journal_count(a, KEZ_JOURNAL_REPLAYED), 3);
  EXPECT_EQ(kez_adaptive_journal_count(a, KEZ_JOURNAL_DAMAGED), 0);
  kez_adaptive_stop(a);

  // A forecaster without a journal: nothing to sync, nothing counted.
  a = kez_adaptive_init();
  EXPECT_EQ(kez_adaptive_sync(a), KEZ_JOURNAL_OK);
  EXPECT_EQ(kez_adaptive_journal_count(a, KEZ_JOURNAL_UNSAFE), 0);
  kez_adaptive_stop(a);
}

}  // namespace
