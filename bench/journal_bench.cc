// The history journal's costs (docs/PERFORMANCE.md):
//   BM_JournalAppend          one report appended, no sync, no rewrite
//   BM_JournalAppendDefaults  the same with the default policy: a sync every
//                             12 reports and a rewrite every 3 days of
//                             reports, averaged over the reports
//   BM_JournalOpenReplay      opening a journal of the bundled log's last
//                             30 days (5-minute reports) and replaying it:
//                             into nothing, and into a fresh instance of
//                             the library (kez_addStatusValue); closing
//                             (which syncs) is not timed
//   BM_AdaptiveOpen           the same journal opened by the adaptive
//                             forecaster, kez_adaptive_open: what an app
//                             waits for at a restart (stopping not timed)
// The counter `journal_bytes` is the size of that 30-day journal.
// Journals go to a folder made with mkdtemp under $TMPDIR (or /tmp): the
// figures are those of that file system.
#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "journal/Journal.h"
#include "journal/testing/BundledLog.h"
#include "kez/kez.h"

namespace {

using kez::Journal;
using kez::JournalOptions;
using kez::JournalRecord;

class Folder {
 public:
  Folder() {
    const char* base = std::getenv("TMPDIR");
    std::string pattern = std::string(base != nullptr ? base : "/tmp") + "/kez_journal_bench_XXXXXX";
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    if (mkdtemp(name.data()) != nullptr) path_ = name.data();
  }
  ~Folder() {
    std::error_code ec;
    if (!path_.empty()) std::filesystem::remove_all(path_, ec);
  }
  std::string Path(const char* name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

std::vector<JournalRecord> BundledLog() {
  return journal_testing::ReadBundledLog(KEZ_SOURCE_DIR);
}

// The log's reports over and over, moved on in time, so that values are
// real ones and times keep increasing.
class Reports {
 public:
  Reports() : log_(BundledLog()) {}
  bool ok() const { return !log_.empty(); }
  JournalRecord Next() {
    JournalRecord r = log_[i_ % log_.size()];
    const uint64_t span = log_.back().timeMs - log_.front().timeMs + 300000;
    r.timeMs += (i_ / log_.size()) * span;
    ++i_;
    return r;
  }

 private:
  std::vector<JournalRecord> log_;
  uint64_t i_ = 0;
};

void Append(benchmark::State& state, const JournalOptions& options) {
  Folder folder;
  Reports reports;
  Journal journal;
  if (!reports.ok() ||
      journal.Open(folder.Path("history.csv").c_str(), options,
                   [](void*, const JournalRecord&) {}, nullptr) != KEZ_JOURNAL_OK) {
    state.SkipWithError("cannot open a journal or read the bundled log");
    return;
  }
  for (auto _ : state) {
    if (journal.Append(reports.Next()) != KEZ_JOURNAL_OK) {
      state.SkipWithError("append failed");
      break;
    }
  }
  state.counters["rewrites"] = static_cast<double>(journal.compactions());
}

void BM_JournalAppend(benchmark::State& state) {
  JournalOptions options;
  options.syncEveryReports = 1 << 30;
  options.syncEveryMs = UINT64_MAX;
  options.keepDays = 0;
  Append(state, options);
}
BENCHMARK(BM_JournalAppend);

void BM_JournalAppendDefaults(benchmark::State& state) { Append(state, JournalOptions()); }
BENCHMARK(BM_JournalAppendDefaults);

void Take(void* handle, const JournalRecord& r) {
  kez_addStatusValue(handle, r.timeMs, r.levelPercent, r.charging, r.aux1, r.aux2,
                     r.aux3, r.countA, r.countB1, r.countB2);
}

void BM_JournalOpenReplay(benchmark::State& state) {
  const bool intoInstance = state.range(0) != 0;
  Folder folder;
  const std::string path = folder.Path("history.csv");
  const std::vector<JournalRecord> log = BundledLog();
  if (log.empty()) {
    state.SkipWithError("cannot read the bundled log");
    return;
  }
  {
    JournalOptions options;
    options.keepDays = 0;
    Journal journal;
    journal.Open(path.c_str(), options, [](void*, const JournalRecord&) {}, nullptr);
    const uint64_t from = log.back().timeMs - 30ull * 86400000ull;
    int reports = 0;
    for (const JournalRecord& r : log) {
      if (r.timeMs >= from && journal.Append(r) == KEZ_JOURNAL_OK) ++reports;
    }
    state.counters["journal_bytes"] = static_cast<double>(journal.fileBytes());
    state.counters["reports"] = reports;
    journal.Close();
  }
  for (auto _ : state) {
    Journal journal;
    kez_handle instance = intoInstance ? kez_init() : nullptr;
    int status;
    if (intoInstance) {
      status = journal.Open(path.c_str(), JournalOptions(), Take, instance);
    } else {
      status = journal.Open(path.c_str(), JournalOptions(), [](void*, const JournalRecord&) {}, nullptr);
    }
    if (status != KEZ_JOURNAL_OK) state.SkipWithError("open failed");
    benchmark::DoNotOptimize(journal.replayedReports());
    state.PauseTiming();  // closing syncs once: not part of opening
    journal.Close();
    if (instance != nullptr) kez_stop(instance);
    state.ResumeTiming();
  }
}
BENCHMARK(BM_JournalOpenReplay)->Arg(0)->Arg(1)->ArgName("into_instance")->Unit(benchmark::kMillisecond);

void BM_AdaptiveOpen(benchmark::State& state) {
  Folder folder;
  const std::string path = folder.Path("history.csv");
  const std::vector<JournalRecord> log = BundledLog();
  if (log.empty()) {
    state.SkipWithError("cannot read the bundled log");
    return;
  }
  {
    JournalOptions options;
    options.keepDays = 0;
    Journal journal;
    journal.Open(path.c_str(), options, [](void*, const JournalRecord&) {}, nullptr);
    const uint64_t from = log.back().timeMs - 30ull * 86400000ull;
    for (const JournalRecord& r : log) {
      if (r.timeMs >= from) journal.Append(r);
    }
    journal.Close();
  }
  for (auto _ : state) {
    int status = 1;
    kez_adaptive* a = kez_adaptive_open(path.c_str(), &status);
    if (a == nullptr || status != KEZ_JOURNAL_OK) state.SkipWithError("open failed");
    benchmark::DoNotOptimize(kez_adaptive_journal_count(a, KEZ_JOURNAL_REPLAYED));
    state.PauseTiming();  // stopping syncs once: not part of opening
    kez_adaptive_stop(a);
    state.ResumeTiming();
  }
}
BENCHMARK(BM_AdaptiveOpen)->Unit(benchmark::kMillisecond);

}  // namespace
