// A real full disk, as the process sees it: a file-size limit (with SIGXFSZ
// ignored, writes beyond it fail with EFBIG, a write across it is cut
// short). The reports held meanwhile are all written once the limit is
// lifted, and the journal reads back whole.
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <string>

#include "gtest/gtest.h"
#include "journal/Journal.h"
#include "journal/JournalTestUtil.h"

namespace kez {
namespace {

using journal_test::OpenAndReplay;
using journal_test::Replayed;
using journal_test::Report;
using journal_test::SameBits;
using journal_test::TempFolder;

bool SetFileSizeLimit(rlim_t limit) {
  struct rlimit r;
  if (getrlimit(RLIMIT_FSIZE, &r) != 0) return false;
  r.rlim_cur = limit;
  return setrlimit(RLIMIT_FSIZE, &r) == 0;
}

// Runs in a child (the limit is the process's). Exit code 0 when every
// step went as expected, else the number of the step that did not.
int FillLiftAndGoOn(const std::string& path) {
  signal(SIGXFSZ, SIG_IGN);
  if (!SetFileSizeLimit(4000)) return 2;
  Journal journal;
  if (OpenAndReplay(&journal, path).status != KEZ_JOURNAL_OK) return 3;
  uint64_t i = 0;
  while (journal.Append(Report(i)) == KEZ_JOURNAL_OK) {
    if (++i > 100) return 4;  // the limit never hit
  }
  ++i;
  // Full: reports are held, each says so; a sync too.
  for (int k = 0; k < 20; ++k, ++i) {
    if (journal.Append(Report(i)) != KEZ_JOURNAL_DISK_FULL) return 5;
  }
  if (journal.pendingReports() != 21) return 6;
  if (journal.Sync() != KEZ_JOURNAL_DISK_FULL) return 7;
  // Space again: the next report writes everything.
  if (!SetFileSizeLimit(RLIM_INFINITY)) return 8;
  if (journal.Append(Report(i++)) != KEZ_JOURNAL_OK) return 9;
  if (journal.pendingReports() != 0 || journal.lostReports() != 0) return 10;
  if (journal.Close() != KEZ_JOURNAL_OK) return 11;
  return 100 + static_cast<int>(i);  // how many reports were taken
}

TEST(JournalDiskFull, FileSizeLimitThenSpaceAgain) {
  TempFolder folder;
  const std::string path = folder.Path("history.csv");
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) _exit(FillLiftAndGoOn(path));
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  const int code = WEXITSTATUS(status);
  ASSERT_GE(code, 100) << "step " << code << " failed";
  const uint64_t taken = static_cast<uint64_t>(code - 100);

  Journal journal;
  Replayed got = OpenAndReplay(&journal, path);
  ASSERT_EQ(got.status, KEZ_JOURNAL_OK);
  EXPECT_EQ(journal.damagedLines(), 0u);
  EXPECT_EQ(journal.tornLines(), 0u);
  ASSERT_EQ(got.records.size(), taken);
  for (uint64_t k = 0; k < taken; ++k) {
    EXPECT_TRUE(SameBits(got.records[k], Report(k))) << k;
  }
}

}  // namespace
}  // namespace kez
