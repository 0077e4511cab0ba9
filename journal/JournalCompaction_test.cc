// The journal stays bounded, and rewriting it is atomic: a year of reports
// leaves about the last month, and a process that stops between any two
// steps of a rewrite (or whose rewrite fails for want of space) leaves a
// whole journal, the old one or the new one.
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "gtest/gtest.h"
#include "journal/Journal.h"
#include "journal/JournalTestUtil.h"

namespace kez {
namespace {

using journal_test::NoSyncSystem;
using journal_test::OpenAndReplay;
using journal_test::ReadText;
using journal_test::Replayed;
using journal_test::ReplayOnce;
using journal_test::Report;
using journal_test::SameBits;
using journal_test::TempFolder;

constexpr uint64_t kDayReports = 288;  // five-minute reports

void ExpectRun(const std::vector<JournalRecord>& got, uint64_t first, uint64_t count) {
  ASSERT_EQ(got.size(), count);
  for (uint64_t k = 0; k < count; ++k) {
    ASSERT_TRUE(SameBits(got[k], Report(first + k))) << "record " << k;
  }
}

bool Exists(const std::string& path) {
  struct stat s;
  return stat(path.c_str(), &s) == 0;
}

TEST(JournalCompaction, AYearOfReportsKeepsAboutAMonth) {
  TempFolder folder;
  const std::string path = folder.Path("history.csv");
  NoSyncSystem system;
  JournalOptions options;  // 31 days kept, rewritten after 34
  options.system = &system;
  const uint64_t total = 365 * kDayReports;
  uint64_t largest = 0;
  {
    Journal journal;
    ASSERT_EQ(OpenAndReplay(&journal, path, options).status, KEZ_JOURNAL_OK);
    for (uint64_t i = 0; i < total; ++i) {
      ASSERT_EQ(journal.Append(Report(i)), KEZ_JOURNAL_OK);
      if (journal.fileBytes() > largest) largest = journal.fileBytes();
    }
    // One rewrite every three days once the month is full.
    EXPECT_GE(journal.compactions(), 100u);
    EXPECT_LE(journal.compactions(), 112u);
  }
  Replayed got = ReplayOnce(path, options);
  ASSERT_EQ(got.status, KEZ_JOURNAL_OK);
  // Everything after the last report older than 31 days, at most 34 days.
  ASSERT_FALSE(got.records.empty());
  const uint64_t first = (got.records.front().timeMs - Report(0).timeMs) / 300000;
  ExpectRun(got.records, first, total - first);
  EXPECT_GE(got.records.size(), 31 * kDayReports);
  EXPECT_LE(got.records.size(), 34 * kDayReports + 1);
  // These made-up reports take about 110 bytes a line (real ones about 50).
  EXPECT_LT(largest, 34 * kDayReports * 120 + 200);
  EXPECT_FALSE(Exists(path + ".tmp"));
}

// Writes 40 days of reports with rewrites off and returns the file's text.
std::string FortyDays(const std::string& path) {
  NoSyncSystem system;
  JournalOptions options;
  options.keepDays = 0;
  options.system = &system;
  Journal journal;
  EXPECT_EQ(OpenAndReplay(&journal, path, options).status, KEZ_JOURNAL_OK);
  for (uint64_t i = 0; i < 40 * kDayReports; ++i) journal.Append(Report(i));
  journal.Close();
  return ReadText(path);
}

// Stops the process when the rewrite reaches `stop`.
class StoppingSystem : public JournalSystem {
 public:
  explicit StoppingSystem(CompactionStep stop) : stop_(stop) {}
  void Reached(CompactionStep step) override {
    if (step == stop_) _exit(0);
  }

 private:
  CompactionStep stop_;
};

TEST(JournalCompaction, StoppedBetweenStepsLeavesAWholeJournal) {
  TempFolder folder;
  const std::string path = folder.Path("history.csv");
  const std::string forty = FortyDays(path);
  const uint64_t total = 40 * kDayReports;
  // The new journal: reports after the last one older than 31 days before
  // the last report.
  const uint64_t keptFirst = total - 1 - 31 * kDayReports;
  const CompactionStep steps[] = {
      CompactionStep::kTempCreated, CompactionStep::kTempWritten,
      CompactionStep::kTempSynced, CompactionStep::kRenamed,
      CompactionStep::kFolderSynced};
  for (CompactionStep step : steps) {
    journal_test::WriteText(path, forty);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      StoppingSystem system(step);
      JournalOptions options;
      options.system = &system;
      Journal journal;
      journal.Open(path.c_str(), options, [](void*, const JournalRecord&) {}, nullptr);
      _exit(1);  // the rewrite did not reach the step
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);

    JournalOptions readOnly;
    readOnly.keepDays = 0;
    Journal journal;
    Replayed got = OpenAndReplay(&journal, path, readOnly);
    ASSERT_EQ(got.status, KEZ_JOURNAL_OK);
    EXPECT_EQ(journal.damagedLines(), 0u);
    EXPECT_EQ(journal.tornLines(), 0u);
    if (step == CompactionStep::kRenamed || step == CompactionStep::kFolderSynced) {
      ExpectRun(got.records, keptFirst, total - keptFirst);
    } else {
      ExpectRun(got.records, 0, total);
      EXPECT_EQ(ReadText(path), forty);
    }
    EXPECT_FALSE(Exists(path + ".tmp"));  // a leftover is removed on opening
  }
}

// At every step of a rewrite, a second writer is refused: the old file is
// locked until the new one, locked before it gets the name, replaces it.
class ProbingSystem : public NoSyncSystem {
 public:
  explicit ProbingSystem(std::string path) : path_(std::move(path)) {}
  std::vector<int> statuses;  // what another process got, step by step
  void Reached(CompactionStep) override {
    const pid_t child = fork();
    if (child == 0) {
      Journal other;
      _exit(-OpenAndReplay(&other, path_).status);
    }
    int status = 0;
    waitpid(child, &status, 0);
    statuses.push_back(WIFEXITED(status) ? -WEXITSTATUS(status) : 1);
  }

 private:
  std::string path_;
};

TEST(JournalCompaction, NoSecondWriterDuringARewrite) {
  TempFolder folder;
  const std::string path = folder.Path("history.csv");
  FortyDays(path);
  ProbingSystem system(path);
  JournalOptions options;
  options.system = &system;
  Journal journal;
  ASSERT_EQ(OpenAndReplay(&journal, path, options).status, KEZ_JOURNAL_OK);
  EXPECT_EQ(journal.compactions(), 1u);
  EXPECT_EQ(system.statuses, std::vector<int>(5, KEZ_JOURNAL_LOCKED));
  journal.Close();
  EXPECT_EQ(ReplayOnce(path).status, KEZ_JOURNAL_OK);
}

// A host that saves a counter in its snapshot and logs what a replay does.
struct CountingHost {
  uint64_t taken = 0;     // reports taken (replayed or reported)
  std::vector<std::string> events;

  static void Take(void* c, const JournalRecord&) {
    CountingHost* h = static_cast<CountingHost*>(c);
    ++h->taken;
    h->events.push_back("report");
  }
  static std::size_t Save(void* c, unsigned char* out, std::size_t capacity) {
    const CountingHost* h = static_cast<const CountingHost*>(c);
    if (capacity < sizeof h->taken) return 0;
    std::memcpy(out, &h->taken, sizeof h->taken);
    return sizeof h->taken;
  }
  static void Restore(void* c, const unsigned char* data, std::size_t size) {
    CountingHost* h = static_cast<CountingHost*>(c);
    if (size == sizeof h->taken) std::memcpy(&h->taken, data, size);
    h->events.push_back("restore");
  }
  JournalHost Host() {
    JournalHost host;
    host.report = Take;
    host.snapshot = Save;
    host.restore = Restore;
    host.context = this;
    return host;
  }
};

TEST(JournalCompaction, SnapshotComesBackWhereItWasTaken) {
  TempFolder folder;
  const std::string path = folder.Path("history.csv");
  NoSyncSystem system;
  JournalOptions options;
  options.system = &system;
  const uint64_t total = 40 * kDayReports;
  uint64_t after = 0;  // reports appended after the last rewrite
  {
    CountingHost host;
    Journal journal;
    ASSERT_EQ(journal.Open(path.c_str(), options, host.Host()), KEZ_JOURNAL_OK);
    for (uint64_t i = 0; i < total; ++i) {
      ++host.taken;  // the forecaster takes the report, then the journal
      const uint64_t rewrites = journal.compactions();
      ASSERT_EQ(journal.Append(Report(i)), KEZ_JOURNAL_OK);
      after = journal.compactions() > rewrites ? 0 : after + 1;
    }
    EXPECT_EQ(journal.compactions(), 2u);  // after 34 and 37 days
  }
  // A replay meets the kept reports, the snapshot of the count after them,
  // then the later reports, and so counts every report ever taken.
  CountingHost restarted;
  Journal journal;
  ASSERT_EQ(journal.Open(path.c_str(), options, restarted.Host()), KEZ_JOURNAL_OK);
  EXPECT_EQ(journal.replayedSnapshots(), 1u);
  EXPECT_EQ(restarted.taken, total);
  const std::size_t events = restarted.events.size();
  ASSERT_EQ(events, journal.replayedReports() + 1);
  ASSERT_GT(after, 0u);
  EXPECT_EQ(restarted.events[events - 1 - after], "restore");
}

// A snapshot larger than a part: written in parts, restored whole; with a
// part damaged it is not restored at all.
struct BigSnapshotHost {
  std::vector<unsigned char> saved;
  std::vector<unsigned char> restored;
  int restores = 0;

  static std::size_t Save(void* c, unsigned char* out, std::size_t capacity) {
    const BigSnapshotHost* h = static_cast<const BigSnapshotHost*>(c);
    if (capacity < h->saved.size()) return 0;
    std::memcpy(out, h->saved.data(), h->saved.size());
    return h->saved.size();
  }
  static void Restore(void* c, const unsigned char* data, std::size_t size) {
    BigSnapshotHost* h = static_cast<BigSnapshotHost*>(c);
    h->restored.assign(data, data + size);
    ++h->restores;
  }
  JournalHost Host() {
    JournalHost host;
    host.report = [](void*, const JournalRecord&) {};
    host.snapshot = Save;
    host.restore = Restore;
    host.context = this;
    return host;
  }
};

TEST(JournalCompaction, LargeSnapshotInParts) {
  TempFolder folder;
  const std::string path = folder.Path("history.csv");
  journal_test::WriteText(path, FortyDays(path));
  BigSnapshotHost host;
  for (int i = 0; i < 10000; ++i) host.saved.push_back(static_cast<unsigned char>(i * 7));
  NoSyncSystem system;
  JournalOptions options;
  options.system = &system;
  {
    Journal journal;  // rewrites at the open
    ASSERT_EQ(journal.Open(path.c_str(), options, host.Host()), KEZ_JOURNAL_OK);
    EXPECT_EQ(journal.compactions(), 1u);
  }
  const std::string text = ReadText(path);
  EXPECT_NE(text.find("# snapshot 0/3 "), std::string::npos);
  EXPECT_NE(text.find("# snapshot 2/3 "), std::string::npos);
  BigSnapshotHost again;
  {
    Journal journal;
    ASSERT_EQ(journal.Open(path.c_str(), options, again.Host()), KEZ_JOURNAL_OK);
    EXPECT_EQ(journal.replayedSnapshots(), 1u);
  }
  EXPECT_EQ(again.restores, 1);
  EXPECT_TRUE(again.restored == host.saved);

  std::string damaged = text;
  damaged[text.find("# snapshot 1/3 ") + 100] ^= 0x01;
  journal_test::WriteText(path, damaged);
  BigSnapshotHost lost;
  Journal journal;
  ASSERT_EQ(journal.Open(path.c_str(), options, lost.Host()), KEZ_JOURNAL_OK);
  EXPECT_EQ(lost.restores, 0);
  EXPECT_EQ(journal.replayedSnapshots(), 0u);
  EXPECT_EQ(journal.damagedLines(), 2u);  // the damaged part and the one after
}

// A host whose memory reaches further back than keepDays keeps the
// reports it needs; the next rewrite waits for three more days.
TEST(JournalCompaction, KeepsWhatTheHostStillNeeds) {
  TempFolder folder;
  const std::string path = folder.Path("history.csv");
  journal_test::WriteText(path, FortyDays(path));
  struct Host {
    uint64_t oldest;
    static uint64_t Needed(void* c) { return static_cast<Host*>(c)->oldest; }
  } host{Report(4 * kDayReports).timeMs};  // day 4 of 40
  JournalHost journalHost;
  journalHost.oldestNeeded = Host::Needed;
  journalHost.context = &host;
  NoSyncSystem system;
  JournalOptions options;
  options.system = &system;
  Journal journal;
  ASSERT_EQ(journal.Open(path.c_str(), options, journalHost), KEZ_JOURNAL_OK);
  EXPECT_EQ(journal.compactions(), 1u);
  journal.Close();
  ExpectRun(ReplayOnce(path).records, 4 * kDayReports, 36 * kDayReports);

  ASSERT_EQ(journal.Open(path.c_str(), options, journalHost), KEZ_JOURNAL_OK);
  // While the host needs them, the old reports stay.
  uint64_t i = 40 * kDayReports;
  for (; i < 50 * kDayReports; ++i) ASSERT_EQ(journal.Append(Report(i)), KEZ_JOURNAL_OK);
  EXPECT_EQ(journal.compactions(), 0u);
  // Once it needs nothing older than 31 days, they go within three days.
  host.oldest = UINT64_MAX;
  for (uint64_t waited = 0; journal.compactions() == 0 && waited <= 3 * kDayReports; ++waited) {
    ASSERT_EQ(journal.Append(Report(i++)), KEZ_JOURNAL_OK);
  }
  EXPECT_EQ(journal.compactions(), 1u);
  journal.Close();
  const uint64_t keptFirst = i - 1 - 31 * kDayReports;
  ExpectRun(ReplayOnce(path).records, keptFirst, i - keptFirst);
}

// No space for the new file: the old journal stays, reports go on, and the
// rewrite is tried again later.
class FullForNewFiles : public NoSyncSystem {
 public:
  bool full = true;
  int journalFd = -1;
  ssize_t Pwrite(int fd, const void* data, std::size_t size, off_t offset) override {
    if (full && fd != journalFd) {
      errno = ENOSPC;
      return -1;
    }
    return JournalSystem::Pwrite(fd, data, size, offset);
  }
};

TEST(JournalCompaction, NoSpaceForTheRewriteKeepsTheOldJournal) {
  TempFolder folder;
  const std::string path = folder.Path("history.csv");
  const std::string forty = FortyDays(path);
  const uint64_t total = 40 * kDayReports;
  FullForNewFiles system;
  JournalOptions options;
  options.system = &system;
  options.compactRetryReports = 10;
  Journal journal;
  // The journal's own descriptor is the lowest free one at the open.
  system.journalFd = dup(0);
  close(system.journalFd);
  Replayed got = OpenAndReplay(&journal, path, options);
  ASSERT_EQ(got.status, KEZ_JOURNAL_OK);
  ExpectRun(got.records, 0, total);
  EXPECT_EQ(journal.compactions(), 0u);
  EXPECT_FALSE(Exists(path + ".tmp"));
  for (uint64_t i = total; i < total + 9; ++i) ASSERT_EQ(journal.Append(Report(i)), KEZ_JOURNAL_OK);
  EXPECT_EQ(journal.compactions(), 0u);
  system.full = false;
  ASSERT_EQ(journal.Append(Report(total + 9)), KEZ_JOURNAL_OK);
  EXPECT_EQ(journal.compactions(), 1u);
  journal.Close();
  Replayed after = ReplayOnce(path);
  const uint64_t end = total + 10;
  const uint64_t keptFirst = end - 1 - 31 * kDayReports;
  ExpectRun(after.records, keptFirst, end - keptFirst);
}

}  // namespace
}  // namespace kez
