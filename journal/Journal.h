// Journal: the file in which a forecaster keeps every report it took, so
// that after a restart it can replay them and forecast as if it had never
// stopped. Format: JournalLine.h (the tools' CSV log format).
//
// Open(path) creates the file when missing (with the parent folder
// existing), takes an advisory lock on it (flock: one writer per file, in
// this process or another), reads it and hands every report to the replay
// function in file order, then drops a torn last line. Open returns 0 or a
// negative KEZ_JOURNAL_* code (kez_journal.h). KEZ_JOURNAL_DISK_FULL and
// KEZ_JOURNAL_WRITE_FAILED leave it open and replayed (a new journal's
// first lines, or the removal of a torn end, could not be written yet; the
// next report tries again); on any other negative code it is closed and the
// reports replayed so far must be discarded.
//
// Durability:
//  - Append writes the report's line to the file (one pwrite, no sync, no
//    allocation) before it returns, so once it returned, a kill of the
//    process loses nothing: the line is in the operating system's hands.
//  - Sync puts everything written on the disk (fdatasync; the folder too
//    after the file was created; nothing when nothing was written since the
//    last sync, except that the first Sync after Open always syncs, for
//    what an earlier process wrote). It runs by itself every
//    `syncEveryReports` reports, with the first report whose time is
//    `syncEveryMs` or more after the last report synced, after a rewrite
//    and on Close; a host calls it when it wants (when the app goes to the
//    background). A power cut loses at most the reports written since the
//    last sync (unsyncedReports()).
//  - When a write fails (a full disk, an I/O error), Append keeps the report
//    in memory (up to `pendingCapacity` reports, the oldest dropped beyond
//    that and counted in lostReports()), returns the failure, and every
//    later Append or Sync first writes what is held. Held reports
//    (pendingReports()) are lost if the process dies before they are
//    written.
//
// Bounded size: once the oldest report is older than the last report's time
// by more than keepDays + slackDays (or the file exceeds
// compactAboveBytes), the journal is rewritten keeping the reports after the
// last one older than keepDays (or than the host's oldestNeeded, when
// older; a rewrite that would drop nothing is not made, and the next one
// waits until the journal reaches slackDays further back): written under a temporary name in the same
// folder (path + ".tmp"), synced, renamed over the journal, the folder
// synced. A crash at any moment leaves the old or the new journal, whole.
// Damaged lines are dropped by the rewrite, and the host's snapshot is
// written after the reports kept (see JournalHost), so that a replay of the
// shorter journal ends in the same state as the forecaster that took every
// report. A failed rewrite (no space)
// leaves the journal as it was and is tried again `compactRetryReports`
// reports later.
//
// One owner thread, like the forecaster. Needs a POSIX system (Linux,
// Android).
#ifndef KEZ_JOURNAL_JOURNAL_H_
#define KEZ_JOURNAL_JOURNAL_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

#include "journal/JournalRecord.h"
#include "journal/JournalSystem.h"
#include "kez/kez.h"

namespace kez {

struct JournalOptions {
  int syncEveryReports = 12;          // an hour of 5-minute reports
  uint64_t syncEveryMs = 3600000;     // an hour of report time
  double keepDays = 31;               // <= 0: never rewritten
  double slackDays = 3;               // growth allowed before a rewrite
  uint64_t compactAboveBytes = 8u << 20;  // also rewritten above this size
  int compactRetryReports = 288;      // after a failed rewrite
  std::size_t pendingCapacity = 2016; // a week of 5-minute reports
  JournalSystem* system = nullptr;    // null: the operating system's
};

// The forecaster the journal belongs to, as the journal sees it.
struct JournalHost {
  // Takes one replayed report, as the forecaster's report call does.
  void (*report)(void* context, const JournalRecord& record) = nullptr;
  // Saves into `out` (`capacity` bytes, kJournalSnapshotMax) what the
  // forecaster learned that it cannot learn again from the reports of the
  // last keepDays (sums that forget slowly, say): called by a rewrite after
  // the forecaster took the journal's last report. Returns the size, 0 for
  // nothing to save. May be null.
  std::size_t (*snapshot)(void* context, unsigned char* out, std::size_t capacity) = nullptr;
  // The time of the oldest report the forecaster needs replayed to be
  // rebuilt (its memory of 30 days of 10-minute steps reaches further back
  // than 30 days when the phone was off for a while). A rewrite keeps the
  // reports from min(this, last report - keepDays) on. May be null.
  uint64_t (*oldestNeeded)(void* context) = nullptr;
  // Puts back, during a replay, what `snapshot` saved at that point of the
  // reports. May be null.
  void (*restore)(void* context, const unsigned char* data, std::size_t size) = nullptr;
  void* context = nullptr;
};

using JournalReplayFn = void (*)(void* context, const JournalRecord& record);

class Journal {
 public:
  Journal() = default;
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;
  ~Journal();  // closes

  int Open(const char* path, const JournalOptions& options, const JournalHost& host);

  // Open for a host that only takes reports.
  int Open(const char* path, const JournalOptions& options,
           JournalReplayFn replay, void* context);

  // Open with any callable taking a const JournalRecord&.
  template <class F, class = std::enable_if_t<!std::is_same<F, JournalHost>::value>>
  int Open(const char* path, const JournalOptions& options, F& replay) {
    return Open(path, options,
                [](void* c, const JournalRecord& r) { (*static_cast<F*>(c))(r); },
                &replay);
  }

  // Takes one report: 0, or KEZ_JOURNAL_DISK_FULL / KEZ_JOURNAL_WRITE_FAILED
  // when it (or an earlier one) is held in memory, or a sync failed.
  // KEZ_JOURNAL_CANNOT_OPEN when the journal is not open.
  int Append(const JournalRecord& record);

  // Writes what is held and puts everything on the disk: 0 or a code.
  int Sync();

  // Syncs and closes (releasing the lock); reports still held are lost and
  // counted. Returns what Sync returned. Does nothing when not open.
  int Close();

  bool isOpen() const { return fd_ >= 0; }
  uint64_t pendingReports() const { return pendingCount_; }
  uint64_t unsyncedReports() const { return unsynced_; }
  uint64_t lostReports() const { return lost_; }
  uint64_t replayedReports() const { return replayed_; }
  uint64_t replayedSnapshots() const { return snapshots_; }
  uint64_t damagedLines() const { return damaged_; }
  uint64_t tornLines() const { return torn_; }
  uint64_t compactions() const { return compactions_; }
  uint64_t fileBytes() const { return goodEnd_; }

 private:
  int WriteAt(const char* data, std::size_t size);
  int Flush();
  void Hold(const JournalRecord& record);
  void Written(const JournalRecord& record);
  int SyncFolder();
  void MaybeCompact();
  uint64_t Cutoff() const;  // reports older than this may go
  bool Compact();
  void Release();
  void Reset();

  JournalOptions options_;
  JournalHost host_;
  JournalSystem* system_ = nullptr;
  std::string path_;
  std::string tempPath_;
  std::string folder_;
  int fd_ = -1;
  uint64_t goodEnd_ = 0;          // end of the last whole line written
  bool truncateFirst_ = false;    // bytes after goodEnd_ must go
  const char* prefix_ = nullptr;  // first lines still to write
  std::size_t prefixSize_ = 0;
  bool folderSynced_ = true;
  bool dirty_ = true;  // written (or opened) since the last sync

  JournalRecord* pending_ = nullptr;  // ring of held reports
  std::size_t pendingHead_ = 0;
  std::size_t pendingCount_ = 0;

  uint64_t records_ = 0;  // reports in the file
  uint64_t minTimeMs_ = 0;
  uint64_t lastTimeMs_ = 0;
  uint64_t syncBaseMs_ = 0;  // time of the last report the last sync covered
  bool syncBaseSet_ = false;
  uint64_t unsynced_ = 0;
  uint64_t lost_ = 0;
  uint64_t replayed_ = 0;
  uint64_t damaged_ = 0;
  uint64_t torn_ = 0;
  uint64_t snapshots_ = 0;
  uint64_t compactions_ = 0;
  uint64_t compactAbove_ = 0;
  uint64_t spanLimit_ = 0;  // rewrite when the reports span more (ms)
  int compactWait_ = 0;  // reports to wait before the next rewrite attempt
};

}  // namespace kez

#endif  // KEZ_JOURNAL_JOURNAL_H_
