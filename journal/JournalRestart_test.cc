// A restart loses nothing: a forecaster that is stopped and rebuilt from its
// journal at 20 random moments of the bundled 35-day log forecasts
// bit-identically to one that never stopped, in all three variants, at each
// restart and at the end. The journal is rewritten once on the way (after
// 34 days), so restarts after that replay only the last 31 days and the
// snapshot the rewrite saved.
//
// The forecaster here is the library's instance, driven through its C
// functions; its snapshot is what it learned beyond 31 days: the running
// charge and discharge rates, sums that forget by 0.99 a report (charging
// reports are few, so a month does not wash out the older ones). Without
// the snapshot, the "plugged in now" forecast after the rewrite differs in
// the last bits. A second run goes over the log twice with six days
// without reports in the middle: the instance's memory then reaches six
// days further back, the host tells the journal (oldestNeeded), and without
// that the forecasts after later rewrites differ.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "journal/Journal.h"
#include "journal/testing/BundledLog.h"
#include "journal/JournalTestUtil.h"
#include "interface/KEZ.h"
#include "kez/kez.h"
#include "predictor/MobilePowerPredictor.h"

namespace kez {
namespace {

using journal_test::NoSyncSystem;
using journal_test::TempFolder;

constexpr int kSteps = 144;

std::vector<JournalRecord> ReadBundledLog() {
  return journal_testing::ReadBundledLog(KEZ_SOURCE_DIR);
}

void Report(kez_handle h, const JournalRecord& r) {
  kez_addStatusValue(h, r.timeMs, r.levelPercent, r.charging, r.aux1, r.aux2,
                     r.aux3, r.countA, r.countB1, r.countB2);
}

// The three forecasts of a day, as bytes.
std::string Forecasts(kez_handle h) {
  std::vector<stMobilePowerPredictionData> out(3 * kSteps);
  EXPECT_EQ(kez_predict(h, kSteps, out.data()), 1);
  EXPECT_EQ(kez_predict_without_charging(h, kSteps, out.data() + kSteps), 1);
  EXPECT_EQ(kez_predict_at_charging_starting(h, kSteps, out.data() + 2 * kSteps), 1);
  return std::string(reinterpret_cast<const char*>(out.data()),
                     out.size() * sizeof(stMobilePowerPredictionData));
}

std::size_t SaveRates(const vorn::MobilePowerPredictor* p, unsigned char* out,
                      std::size_t capacity) {
  const double rates[4] = {p->chargeRise, p->chargeSteps, p->dischargeChange,
                           p->dischargeSteps};
  if (capacity < sizeof rates) return 0;
  std::memcpy(out, rates, sizeof rates);
  return sizeof rates;
}

void RestoreRates(vorn::MobilePowerPredictor* p, const unsigned char* data,
                  std::size_t size) {
  double rates[4];
  if (size != sizeof rates) return;
  std::memcpy(rates, data, sizeof rates);
  p->chargeRise = rates[0];
  p->chargeSteps = rates[1];
  p->dischargeChange = rates[2];
  p->dischargeSteps = rates[3];
}

// The forecaster as its journal sees it: the instance (owned here, so that
// its predictor's rates can be saved and restored; reported to through the
// C interface), and how much further back than 31 days its memory reaches.
struct Host {
  explicit Host(uint64_t extra) : extraMs(extra) { Restart(); }
  void Restart() {
    owned = std::make_unique<KEZ>();
    instance = owned.get();
  }

  std::unique_ptr<KEZ> owned;
  kez_handle instance = nullptr;
  uint64_t extraMs = 0;
  uint64_t lastMs = 0;

  static void Take(void* c, const JournalRecord& r) {
    Host* h = static_cast<Host*>(c);
    Report(h->instance, r);
    h->lastMs = r.timeMs;
  }
  static std::size_t Save(void* c, unsigned char* out, std::size_t capacity) {
    return SaveRates(static_cast<Host*>(c)->owned->impl->predictor, out,
                     capacity);
  }
  static void Restore(void* c, const unsigned char* data, std::size_t size) {
    RestoreRates(static_cast<Host*>(c)->owned->impl->predictor, data, size);
  }
  static uint64_t Needed(void* c) {
    const Host* h = static_cast<const Host*>(c);
    const uint64_t back = 31 * 86400000ull + h->extraMs;
    return h->lastMs > back ? h->lastMs - back : 0;
  }
  JournalHost Journal() {
    JournalHost host;
    host.report = Take;
    host.snapshot = Save;
    host.restore = Restore;
    host.oldestNeeded = Needed;
    host.context = this;
    return host;
  }
};

// Reports `log` to a forecaster that never stops and to one that is
// rebuilt from its journal at 20 random moments, comparing their forecasts
// after each restart and at the end. Returns the rewrites seen.
uint64_t RunRestarts(const std::vector<JournalRecord>& log, uint64_t extraMs,
                     unsigned seed) {
  TempFolder folder;
  const std::string path = folder.Path("history.csv");
  NoSyncSystem system;
  JournalOptions options;
  options.system = &system;

  std::mt19937 random(seed);
  std::vector<std::size_t> restarts;
  while (restarts.size() < 20) {
    const std::size_t at = std::uniform_int_distribution<std::size_t>(1, log.size() - 1)(random);
    if (std::find(restarts.begin(), restarts.end(), at) == restarts.end()) restarts.push_back(at);
  }
  std::sort(restarts.begin(), restarts.end());

  kez_handle steady = kez_init();
  Host restarted(extraMs);
  uint64_t rewrites = 0;
  Journal journal;
  EXPECT_EQ(journal.Open(path.c_str(), options, restarted.Journal()), KEZ_JOURNAL_OK);
  std::size_t next = 0;
  for (std::size_t i = 0; i < log.size(); ++i) {
    if (next < restarts.size() && restarts[next] == i) {
      ++next;
      rewrites += journal.compactions();
      EXPECT_EQ(journal.Close(), KEZ_JOURNAL_OK);
      restarted.Restart();
      EXPECT_EQ(journal.Open(path.c_str(), options, restarted.Journal()), KEZ_JOURNAL_OK);
      EXPECT_TRUE(Forecasts(restarted.instance) == Forecasts(steady))
          << "restart before report " << i << " after " << journal.replayedReports()
          << " replayed, " << rewrites << " rewrites";
    }
    Report(steady, log[i]);
    Host::Take(&restarted, log[i]);
    EXPECT_EQ(journal.Append(log[i]), KEZ_JOURNAL_OK);
  }
  rewrites += journal.compactions();
  EXPECT_TRUE(Forecasts(restarted.instance) == Forecasts(steady));
  kez_stop(steady);
  return rewrites;
}

TEST(JournalRestart, ForecastsAfterReopeningAreBitIdentical) {
  const std::vector<JournalRecord> log = ReadBundledLog();
  ASSERT_GT(log.size(), 9000u);
  EXPECT_EQ(RunRestarts(log, 0, 35), 1u);  // the rewrite after 34 days
}

// The phone off for six days: the memory of 4320 steps then reaches six
// days further back than 30 days, and the host says so.
TEST(JournalRestart, AfterDaysWithoutReports) {
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
  EXPECT_GE(RunRestarts(log, 6 * 86400000ull, 46), 2u);
}

}  // namespace
}  // namespace kez
