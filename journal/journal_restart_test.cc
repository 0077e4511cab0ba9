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
// the last bits.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "journal/Journal.h"
#include "journal/journal_test_util.h"
#include "interface/KEZ.h"
#include "kez/kez.h"
#include "predictor/MobilePowerPredictor.h"

namespace kez {
namespace {

using journal_test::NoSyncSystem;
using journal_test::TempFolder;

constexpr int kSteps = 144;

std::vector<JournalRecord> ReadBundledLog() {
  std::vector<JournalRecord> records;
  std::ifstream in(std::string(KEZ_SOURCE_DIR) + "/examples/routine-35d.csv");
  std::string line;
  std::getline(in, line);  // header: time_ms,level_percent,charging,aux1..countB2
  while (std::getline(in, line)) {
    std::stringstream cells(line);
    std::string c[9];
    for (std::string& cell : c) std::getline(cells, cell, ',');
    JournalRecord r;
    r.timeMs = std::strtoull(c[0].c_str(), nullptr, 10);
    r.levelPercent = std::strtof(c[1].c_str(), nullptr);
    r.charging = std::strtof(c[2].c_str(), nullptr);
    r.aux1 = std::strtof(c[3].c_str(), nullptr);
    r.aux2 = std::strtof(c[4].c_str(), nullptr);
    r.aux3 = std::strtof(c[5].c_str(), nullptr);
    r.countA = std::strtod(c[6].c_str(), nullptr);
    r.countB1 = std::strtod(c[7].c_str(), nullptr);
    r.countB2 = std::strtod(c[8].c_str(), nullptr);
    records.push_back(r);
  }
  return records;
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

vorn::MobilePowerPredictor* Predictor(kez_handle h) {
  return static_cast<KEZ*>(h)->impl->predictor;
}

std::size_t SaveRates(void* h, unsigned char* out, std::size_t capacity) {
  const vorn::MobilePowerPredictor* p = Predictor(h);
  const double rates[4] = {p->chargeRise, p->chargeSteps, p->dischargeChange,
                           p->dischargeSteps};
  if (capacity < sizeof rates) return 0;
  std::memcpy(out, rates, sizeof rates);
  return sizeof rates;
}

void RestoreRates(void* h, const unsigned char* data, std::size_t size) {
  double rates[4];
  if (size != sizeof rates) return;
  std::memcpy(rates, data, sizeof rates);
  vorn::MobilePowerPredictor* p = Predictor(h);
  p->chargeRise = rates[0];
  p->chargeSteps = rates[1];
  p->dischargeChange = rates[2];
  p->dischargeSteps = rates[3];
}

void ReplayReport(void* h, const JournalRecord& r) { Report(h, r); }

JournalHost HostOf(kez_handle h) {
  JournalHost host;
  host.report = ReplayReport;
  host.snapshot = SaveRates;
  host.restore = RestoreRates;
  host.context = h;
  return host;
}

TEST(JournalRestart, ForecastsAfterReopeningAreBitIdentical) {
  const std::vector<JournalRecord> log = ReadBundledLog();
  ASSERT_GT(log.size(), 9000u);
  TempFolder folder;
  const std::string path = folder.Path("history.csv");
  NoSyncSystem system;
  JournalOptions options;
  options.system = &system;

  std::mt19937 random(35);
  std::vector<std::size_t> restarts;
  while (restarts.size() < 20) {
    const std::size_t at = std::uniform_int_distribution<std::size_t>(1, log.size() - 1)(random);
    if (std::find(restarts.begin(), restarts.end(), at) == restarts.end()) restarts.push_back(at);
  }
  std::sort(restarts.begin(), restarts.end());
  // At least one restart after the rewrite (day 34).
  ASSERT_GT(log[restarts.back() - 1].timeMs - log.front().timeMs, 34 * 86400000ull);

  kez_handle steady = kez_init();
  kez_handle restarted = kez_init();
  Journal journal;
  ASSERT_EQ(journal.Open(path.c_str(), options, HostOf(restarted)), KEZ_JOURNAL_OK);
  std::size_t next = 0;
  for (std::size_t i = 0; i < log.size(); ++i) {
    if (next < restarts.size() && restarts[next] == i) {
      ++next;
      ASSERT_EQ(journal.Close(), KEZ_JOURNAL_OK);
      kez_stop(restarted);
      restarted = kez_init();
      ASSERT_EQ(journal.Open(path.c_str(), options, HostOf(restarted)), KEZ_JOURNAL_OK);
      ASSERT_TRUE(Forecasts(restarted) == Forecasts(steady))
          << "restart before report " << i << " after " << journal.replayedReports()
          << " replayed, " << journal.compactions() << " rewrites";
    }
    Report(steady, log[i]);
    Report(restarted, log[i]);
    ASSERT_EQ(journal.Append(log[i]), KEZ_JOURNAL_OK);
  }
  EXPECT_TRUE(Forecasts(restarted) == Forecasts(steady));
  // The rewrite happened before the last restart.
  EXPECT_LT(journal.replayedReports(), log.size());
  EXPECT_EQ(journal.replayedSnapshots(), 1u);
  kez_stop(steady);
  kez_stop(restarted);
}

}  // namespace
}  // namespace kez
