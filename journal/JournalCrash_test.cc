// A process killed at any moment loses no report whose Append had
// returned: a child reports in a loop (and tells the parent through a pipe
// after each return) until the parent kills it with SIGKILL; then the
// journal must open and hold every report told. The window is short so that
// rewrites run often and get killed half way too.
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

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

constexpr uint64_t kStepMs = 600000;  // ten minutes
constexpr uint64_t kStartMs = 1709510445000ull;

JournalOptions ShortWindow() {
  JournalOptions options;
  options.keepDays = 2;     // 288 reports
  options.slackDays = 0.5;  // a rewrite every 72 reports
  return options;
}

uint64_t IndexOf(const JournalRecord& r) { return (r.timeMs - kStartMs) / kStepMs; }

// The child: continues the journal from its last report, forever.
[[noreturn]] void ReportUntilKilled(const std::string& path, int pipe) {
  alarm(60);  // in case the parent is gone
  Journal journal;
  uint64_t next = 0;
  auto replay = [&next](const JournalRecord& r) { next = IndexOf(r) + 1; };
  if (journal.Open(path.c_str(), ShortWindow(), replay) != KEZ_JOURNAL_OK) _exit(3);
  for (;;) {
    if (journal.Append(Report(next, kStepMs)) != KEZ_JOURNAL_OK) _exit(4);
    ++next;
    if (write(pipe, &next, sizeof next) != sizeof next) _exit(5);
  }
}

// Waits up to 10 s for the child's first report of the round; false when
// none came (the child stopped or is stuck).
bool FirstReport(int pipe, uint64_t* value) {
  struct pollfd p = {pipe, POLLIN, 0};
  return poll(&p, 1, 10000) == 1 && read(pipe, value, sizeof *value) == sizeof *value;
}

TEST(JournalCrash, KilledAtRandomMomentsLosesNoReturnedReport) {
  TempFolder folder;
  ASSERT_TRUE(folder.ok());
  const std::string path = folder.Path("history.csv");
  std::mt19937 random(20261123);
  uint64_t told = 0;  // reports whose Append returned, over all children
  int kills = 0;
  int killedWhileReporting = 0;
  // At least 120 kills, and enough reports for the journal to have been
  // rewritten many times (slower machines and emulators need more rounds).
  for (int round = 0; round < 1000 && (round < 120 || told < 3000); ++round) {
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      close(fds[0]);
      ReportUntilKilled(path, fds[1]);
    }
    close(fds[1]);
    // One round in four kills at any moment, opening and replaying
    // included; the others once the child reports.
    uint64_t value = 0;
    uint64_t last = 0;
    bool any = false;
    if (round % 4 == 0) {
      usleep(std::uniform_int_distribution<int>(0, 5000)(random));
    } else {
      ASSERT_TRUE(FirstReport(fds[0], &value)) << "round " << round;
      last = value;
      any = true;
      usleep(std::uniform_int_distribution<int>(0, 20000)(random));
    }
    ASSERT_EQ(kill(child, SIGKILL), 0);
    ++kills;
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)
        << "the child stopped by itself, exit " << WEXITSTATUS(status);
    while (read(fds[0], &value, sizeof value) == sizeof value) {
      last = value;
      any = true;
    }
    close(fds[0]);
    if (any) {
      ++killedWhileReporting;
      ASSERT_GT(last, told);
      told = last;
    }

    Journal journal;
    Replayed got = OpenAndReplay(&journal, path, ShortWindow());
    ASSERT_EQ(got.status, KEZ_JOURNAL_OK) << "round " << round;
    EXPECT_EQ(journal.damagedLines(), 0u) << "round " << round;
    if (told == 0) continue;
    ASSERT_FALSE(got.records.empty()) << "round " << round;
    // Consecutive reports, each exactly as appended, up to at least the last
    // one told (one more may have been written before the kill).
    const uint64_t first = IndexOf(got.records.front());
    for (std::size_t k = 0; k < got.records.size(); ++k) {
      ASSERT_TRUE(SameBits(got.records[k], Report(first + k, kStepMs)))
          << "round " << round << ", record " << k;
    }
    const uint64_t end = first + got.records.size();
    ASSERT_GE(end, told) << "round " << round;
    ASSERT_LE(end, told + 1) << "round " << round;
    // The window: at least two days behind the last report (once the
    // journal is older), at most two and a half and one report (a rewrite
    // starts after the report that goes beyond).
    const uint64_t span = end - 1 - first;
    EXPECT_LE(span, 361u) << "round " << round;
    if (end > 400) {
      EXPECT_GE(span, 288u) << "round " << round;
    }
    told = end;  // the next child continues from here
  }
  std::printf("kills: %d, while reporting: %d, reports: %llu\n", kills,
              killedWhileReporting, static_cast<unsigned long long>(told));
  EXPECT_GE(kills, 120);
  EXPECT_GE(told, 3000u) << "too few reports to have rewritten the journal often";
}

}  // namespace
}  // namespace kez
