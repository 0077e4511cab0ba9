// A journal as a host uses it: created, appended, reopened and replayed;
// torn, damaged and foreign files; the lock; failing writes and syncs.
#include "journal/Journal.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <random>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "journal/JournalLine.h"
#include "journal/JournalTestUtil.h"

namespace kez {
namespace {

using journal_test::OpenAndReplay;
using journal_test::ReadText;
using journal_test::Replayed;
using journal_test::ReplayOnce;
using journal_test::Report;
using journal_test::SameBits;
using journal_test::TempFolder;
using journal_test::WriteText;

const std::string kPrologue =
    "# kez journal 1\n"
    "time_ms,level_percent,charging,aux1,aux2,aux3,countA,countB1,countB2,check\n";

// Writes reports 0..count-1 into a new journal at `path`.
void WriteReports(const std::string& path, uint64_t count) {
  Journal journal;
  ASSERT_EQ(OpenAndReplay(&journal, path).status, KEZ_JOURNAL_OK);
  for (uint64_t i = 0; i < count; ++i) ASSERT_EQ(journal.Append(Report(i)), KEZ_JOURNAL_OK);
  ASSERT_EQ(journal.Close(), KEZ_JOURNAL_OK);
}

void ExpectReports(const std::vector<JournalRecord>& got,
                   const std::vector<uint64_t>& indices) {
  ASSERT_EQ(got.size(), indices.size());
  for (std::size_t k = 0; k < got.size(); ++k) {
    EXPECT_TRUE(SameBits(got[k], Report(indices[k]))) << "record " << k;
  }
}

std::vector<uint64_t> Range(uint64_t from, uint64_t to) {
  std::vector<uint64_t> v;
  for (uint64_t i = from; i < to; ++i) v.push_back(i);
  return v;
}

TEST(Journal, CreatesAppendsAndReplaysInOrder) {
  TempFolder folder;
  ASSERT_TRUE(folder.ok());
  const std::string path = folder.Path("history.csv");
  {
    Journal journal;
    Replayed first = OpenAndReplay(&journal, path);
    EXPECT_EQ(first.status, KEZ_JOURNAL_OK);
    EXPECT_TRUE(first.records.empty());
    EXPECT_EQ(ReadText(path), kPrologue);  // on the disk before any report
    for (uint64_t i = 0; i < 100; ++i) EXPECT_EQ(journal.Append(Report(i)), KEZ_JOURNAL_OK);
    // Written before Append returned, though not yet synced.
    EXPECT_EQ(journal.unsyncedReports(), 100u % 12u);
    EXPECT_EQ(ReplayOnce(path).status, KEZ_JOURNAL_LOCKED);
  }
  Journal journal;
  Replayed again = OpenAndReplay(&journal, path);
  EXPECT_EQ(again.status, KEZ_JOURNAL_OK);
  ExpectReports(again.records, Range(0, 100));
  EXPECT_EQ(journal.replayedReports(), 100u);
  EXPECT_EQ(journal.damagedLines(), 0u);
  EXPECT_EQ(journal.tornLines(), 0u);
  // Appends continue after the replayed reports.
  EXPECT_EQ(journal.Append(Report(100)), KEZ_JOURNAL_OK);
  journal.Close();
  ExpectReports(ReplayOnce(path).records, Range(0, 101));
}

TEST(Journal, OneWriterPerFile) {
  TempFolder folder;
  const std::string path = folder.Path("history.csv");
  Journal first;
  ASSERT_EQ(OpenAndReplay(&first, path).status, KEZ_JOURNAL_OK);
  ASSERT_EQ(first.Append(Report(0)), KEZ_JOURNAL_OK);

  Journal second;
  EXPECT_EQ(OpenAndReplay(&second, path).status, KEZ_JOURNAL_LOCKED);
  EXPECT_FALSE(second.isOpen());
  EXPECT_EQ(second.Append(Report(1)), KEZ_JOURNAL_CANNOT_OPEN);

  // Another process is refused too.
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    Journal other;
    const int status = OpenAndReplay(&other, path).status;
    _exit(status == KEZ_JOURNAL_LOCKED ? 0 : 1);
  }
  int wait = 0;
  ASSERT_EQ(waitpid(child, &wait, 0), child);
  EXPECT_TRUE(WIFEXITED(wait) && WEXITSTATUS(wait) == 0);

  first.Close();
  Replayed after = OpenAndReplay(&second, path);
  EXPECT_EQ(after.status, KEZ_JOURNAL_OK);
  ExpectReports(after.records, {0});
}

// A write cut short leaves the start of a line at the end; every cut inside
// the last three lines replays the whole lines before it, counts the torn
// one, and the next report starts on a clean line.
TEST(Journal, TornEndAtEveryByte) {
  TempFolder folder;
  const std::string whole = folder.Path("whole.csv");
  WriteReports(whole, 20);
  const std::string text = ReadText(whole);
  std::vector<std::size_t> lineEnds;  // offsets after each report's '\n'
  for (std::size_t at = kPrologue.size(); at < text.size(); ++at) {
    if (text[at] == '\n') lineEnds.push_back(at + 1);
  }
  ASSERT_EQ(lineEnds.size(), 20u);
  const std::string path = folder.Path("cut.csv");
  for (std::size_t cut = lineEnds[16]; cut <= text.size(); ++cut) {
    WriteText(path, text.substr(0, cut));
    uint64_t wholeLines = 0;
    while (wholeLines < 20 && lineEnds[wholeLines] <= cut) ++wholeLines;
    const bool torn = lineEnds[wholeLines - 1] != cut;
    {
      Journal journal;
      Replayed got = OpenAndReplay(&journal, path);
      ASSERT_EQ(got.status, KEZ_JOURNAL_OK) << cut;
      ExpectReports(got.records, Range(0, wholeLines));
      EXPECT_EQ(journal.tornLines(), torn ? 1u : 0u) << cut;
      EXPECT_EQ(journal.damagedLines(), 0u);
      ASSERT_EQ(journal.Append(Report(wholeLines)), KEZ_JOURNAL_OK);
    }
    Journal journal;
    Replayed after = OpenAndReplay(&journal, path);
    ExpectReports(after.records, Range(0, wholeLines + 1));
    EXPECT_EQ(journal.damagedLines(), 0u) << cut;
    EXPECT_EQ(journal.tornLines(), 0u) << cut;
  }
}

TEST(Journal, TornWhileBeingCreated) {
  TempFolder folder;
  const std::string path = folder.Path("history.csv");
  for (std::size_t cut = 1; cut < kPrologue.size(); ++cut) {
    WriteText(path, kPrologue.substr(0, cut));
    Journal journal;
    Replayed got = OpenAndReplay(&journal, path);
    ASSERT_EQ(got.status, KEZ_JOURNAL_OK) << cut;
    EXPECT_TRUE(got.records.empty());
    EXPECT_EQ(ReadText(path), kPrologue) << cut;
    ASSERT_EQ(journal.Append(Report(0)), KEZ_JOURNAL_OK);
    journal.Close();
    ExpectReports(ReplayOnce(path).records, {0});
  }
}

TEST(Journal, DamagedLineInTheMiddleIsSkippedAndCounted) {
  TempFolder folder;
  const std::string whole = folder.Path("whole.csv");
  WriteReports(whole, 10);
  const std::string text = ReadText(whole);
  // Report 5's line.
  std::size_t begin = kPrologue.size();
  for (int i = 0; i < 5; ++i) begin = text.find('\n', begin) + 1;
  const std::size_t end = text.find('\n', begin);
  const std::string path = folder.Path("damaged.csv");
  std::vector<uint64_t> expected = {0, 1, 2, 3, 4, 6, 7, 8, 9};
  for (std::size_t at = begin; at < end; ++at) {
    std::string bad = text;
    bad[at] = static_cast<char>(bad[at] ^ 0x01);
    WriteText(path, bad);
    Journal journal;
    Replayed got = OpenAndReplay(&journal, path);
    ASSERT_EQ(got.status, KEZ_JOURNAL_OK);
    ExpectReports(got.records, expected);
    EXPECT_EQ(journal.damagedLines(), 1u) << at;
  }
  // A block of zeros (what a power cut can leave) over two lines.
  std::string zeros = text;
  for (std::size_t at = begin; at < end + 10; ++at) zeros[at] = '\0';
  WriteText(path, zeros);
  Journal journal;
  Replayed got = OpenAndReplay(&journal, path);
  ASSERT_EQ(got.status, KEZ_JOURNAL_OK);
  ExpectReports(got.records, {0, 1, 2, 3, 4, 7, 8, 9});
  EXPECT_EQ(journal.damagedLines(), 1u);  // one line now: zeros up to 6's end
  ASSERT_EQ(journal.Append(Report(10)), KEZ_JOURNAL_OK);
}

TEST(Journal, FilesThatAreNotJournals) {
  TempFolder folder;
  const std::string path = folder.Path("other.csv");
  std::mt19937 random(7);
  std::string noise(5000, '\0');
  for (char& c : noise) c = static_cast<char>(random());
  const std::string log =
      "time_ms,level_percent,charging,aux1,aux2,aux3,countA,countB1,countB2\n"
      "1709510445000,74,0,24.9,4.019,0,0,0,0\n";
  const std::string newer = "# kez journal 2\nsomething else\n";
  const struct {
    std::string text;
    int status;
  } cases[] = {
      {noise, KEZ_JOURNAL_NOT_JOURNAL},
      {noise.substr(0, 10), KEZ_JOURNAL_NOT_JOURNAL},
      {log, KEZ_JOURNAL_NOT_JOURNAL},  // a log, but not a journal
      {newer, KEZ_JOURNAL_NEWER_VERSION},
      {std::string(200000, 'x'), KEZ_JOURNAL_NOT_JOURNAL},
  };
  for (const auto& c : cases) {
    WriteText(path, c.text);
    Journal journal;
    EXPECT_EQ(OpenAndReplay(&journal, path).status, c.status);
    EXPECT_FALSE(journal.isOpen());
    EXPECT_EQ(ReadText(path), c.text);  // untouched
  }
}

TEST(Journal, EmptyFileFolderMissingAndDirectory) {
  TempFolder folder;
  const std::string empty = folder.Path("empty.csv");
  WriteText(empty, "");
  Journal journal;
  EXPECT_EQ(OpenAndReplay(&journal, empty).status, KEZ_JOURNAL_OK);
  EXPECT_EQ(ReadText(empty), kPrologue);
  journal.Close();

  EXPECT_EQ(ReplayOnce(folder.Path("no/such/folder.csv")).status, KEZ_JOURNAL_CANNOT_OPEN);
  const std::string dir = folder.Path("dir.csv");
  ASSERT_EQ(mkdir(dir.c_str(), 0700), 0);
  EXPECT_EQ(ReplayOnce(dir).status, KEZ_JOURNAL_CANNOT_OPEN);
  EXPECT_EQ(ReplayOnce("").status, KEZ_JOURNAL_CANNOT_OPEN);
}

// Operations that fail on request: a full disk, a write cut short, a
// failing sync.
class FailingSystem : public JournalSystem {
 public:
  int failWrites = 0;     // errno for every write, 0: none
  bool shortWrite = false;  // write half of the first failing write first
  int failSyncs = 0;
  int syncs = 0;

  ssize_t Pwrite(int fd, const void* data, std::size_t size, off_t offset) override {
    if (failWrites != 0) {
      if (shortWrite && size > 1) {
        shortWrite = false;
        return JournalSystem::Pwrite(fd, data, size / 2, offset);
      }
      errno = failWrites;
      return -1;
    }
    return JournalSystem::Pwrite(fd, data, size, offset);
  }
  int Fdatasync(int fd) override {
    if (failSyncs != 0) {
      errno = failSyncs;
      return -1;
    }
    ++syncs;
    return JournalSystem::Fdatasync(fd);
  }
};

TEST(Journal, FullDiskKeepsReportsAndWritesThemLater) {
  TempFolder folder;
  const std::string path = folder.Path("history.csv");
  FailingSystem system;
  JournalOptions options;
  options.system = &system;
  options.pendingCapacity = 5;
  Journal journal;
  ASSERT_EQ(OpenAndReplay(&journal, path, options).status, KEZ_JOURNAL_OK);
  for (uint64_t i = 0; i < 3; ++i) ASSERT_EQ(journal.Append(Report(i)), KEZ_JOURNAL_OK);

  system.failWrites = ENOSPC;
  system.shortWrite = true;
  for (uint64_t i = 3; i < 6; ++i) EXPECT_EQ(journal.Append(Report(i)), KEZ_JOURNAL_DISK_FULL);
  EXPECT_EQ(journal.pendingReports(), 3u);
  system.failWrites = EIO;
  EXPECT_EQ(journal.Append(Report(6)), KEZ_JOURNAL_WRITE_FAILED);
  EXPECT_EQ(journal.Sync(), KEZ_JOURNAL_WRITE_FAILED);
  EXPECT_EQ(journal.pendingReports(), 4u);
  EXPECT_EQ(journal.lostReports(), 0u);

  // Space is back: the next report writes everything held, in order.
  system.failWrites = 0;
  EXPECT_EQ(journal.Append(Report(7)), KEZ_JOURNAL_OK);
  EXPECT_EQ(journal.pendingReports(), 0u);
  journal.Close();
  Journal reopened;
  Replayed got = OpenAndReplay(&reopened, path);
  ExpectReports(got.records, Range(0, 8));
  EXPECT_EQ(reopened.damagedLines(), 0u);  // the half line was removed
  EXPECT_EQ(reopened.tornLines(), 0u);
}

TEST(Journal, HeldReportsAreBoundedOldestDropped) {
  TempFolder folder;
  const std::string path = folder.Path("history.csv");
  FailingSystem system;
  JournalOptions options;
  options.system = &system;
  options.pendingCapacity = 4;
  Journal journal;
  ASSERT_EQ(OpenAndReplay(&journal, path, options).status, KEZ_JOURNAL_OK);
  ASSERT_EQ(journal.Append(Report(0)), KEZ_JOURNAL_OK);
  system.failWrites = ENOSPC;
  for (uint64_t i = 1; i <= 10; ++i) journal.Append(Report(i));
  EXPECT_EQ(journal.pendingReports(), 4u);
  EXPECT_EQ(journal.lostReports(), 6u);
  system.failWrites = 0;
  EXPECT_EQ(journal.Sync(), KEZ_JOURNAL_OK);
  journal.Close();
  ExpectReports(ReplayOnce(path).records, {0, 7, 8, 9, 10});
}

TEST(Journal, FullDiskWhenCreatingThenRecovers) {
  TempFolder folder;
  const std::string path = folder.Path("history.csv");
  FailingSystem system;
  system.failWrites = ENOSPC;
  JournalOptions options;
  options.system = &system;
  Journal journal;
  EXPECT_EQ(OpenAndReplay(&journal, path, options).status, KEZ_JOURNAL_DISK_FULL);
  EXPECT_TRUE(journal.isOpen());
  EXPECT_EQ(journal.Append(Report(0)), KEZ_JOURNAL_DISK_FULL);
  system.failWrites = 0;
  EXPECT_EQ(journal.Append(Report(1)), KEZ_JOURNAL_OK);
  journal.Close();
  EXPECT_EQ(ReadText(path).substr(0, kPrologue.size()), kPrologue);
  ExpectReports(ReplayOnce(path).records, {0, 1});
}

TEST(Journal, SyncsEveryTwelveReportsOrHourAndOnDemand) {
  TempFolder folder;
  FailingSystem system;
  JournalOptions options;
  options.system = &system;
  {
    Journal journal;
    ASSERT_EQ(OpenAndReplay(&journal, folder.Path("a.csv"), options).status, KEZ_JOURNAL_OK);
    const int created = system.syncs;  // a new journal is synced at once
    EXPECT_EQ(created, 1);
    // Five-minute reports: the twelfth (55 minutes after the first) syncs.
    for (uint64_t i = 0; i < 11; ++i) journal.Append(Report(i));
    EXPECT_EQ(system.syncs, created);
    EXPECT_EQ(journal.unsyncedReports(), 11u);
    journal.Append(Report(11));
    EXPECT_EQ(system.syncs, created + 1);
    EXPECT_EQ(journal.unsyncedReports(), 0u);
    journal.Append(Report(12));
    EXPECT_EQ(journal.Sync(), KEZ_JOURNAL_OK);
    EXPECT_EQ(system.syncs, created + 2);
    system.failSyncs = EIO;
    journal.Append(Report(13));
    EXPECT_EQ(journal.Sync(), KEZ_JOURNAL_WRITE_FAILED);
    EXPECT_EQ(journal.unsyncedReports(), 1u);
    system.failSyncs = 0;
    EXPECT_EQ(journal.Close(), KEZ_JOURNAL_OK);
  }
  system.syncs = 0;
  Journal journal;
  ASSERT_EQ(OpenAndReplay(&journal, folder.Path("b.csv"), options).status, KEZ_JOURNAL_OK);
  // Reports two hours apart: each is synced.
  journal.Append(Report(0, 7200000));
  for (uint64_t i = 1; i < 4; ++i) {
    journal.Append(Report(i, 7200000));
    EXPECT_EQ(journal.unsyncedReports(), 0u);
  }
}

}  // namespace
}  // namespace kez
