// JournalScan: reads a journal file from its start and hands every whole,
// undamaged report to a visitor, in file order.
//
// What it finds:
//  - the first line must be the journal's marker, else the file is not a
//    journal (or one of a newer version) and nothing is visited;
//  - a file that is empty, or holds only the start of a new journal's first
//    two lines, is a journal that was being created: `fresh`;
//  - bytes after the last '\n' are a torn line (a write cut short): they are
//    not visited, and `goodEnd` is where they start;
//  - a snapshot (JournalLine.h) is handed to the visitor once its last part
//    was read; a snapshot with a part missing or damaged is dropped;
//  - any whole line that is neither a report nor a snapshot with a
//    matching check, the header in second place, nor another '#' comment is
//    damaged: skipped, counted.
// Reads in chunks through the caller's buffer; allocates only room for a
// snapshot when it meets one and has a visitor for it.
#ifndef KEZ_JOURNAL_JOURNALSCAN_H_
#define KEZ_JOURNAL_JOURNALSCAN_H_

#include <cstddef>
#include <cstdint>

#include "journal/JournalRecord.h"

namespace kez {

struct JournalScanResult {
  int status = 0;            // 0, or KEZ_JOURNAL_CANNOT_OPEN (read error),
                             // KEZ_JOURNAL_NOT_JOURNAL, KEZ_JOURNAL_NEWER_VERSION
  bool fresh = false;        // empty or a torn start: write the journal anew
  bool headerSeen = false;   // the second line is there (whole or damaged)
  uint64_t goodEnd = 0;      // file offset after the last whole line
  uint64_t records = 0;      // reports visited
  uint64_t snapshots = 0;    // snapshots visited
  uint64_t damagedLines = 0;
  uint64_t tornBytes = 0;    // bytes after the last '\n' (0: not torn)
  uint64_t minTimeMs = 0;    // smallest and last report time (records > 0)
  uint64_t lastTimeMs = 0;
};

// What a scan hands on; either function may be null.
struct JournalVisitor {
  // Each report with its line's text ('\n' included).
  void (*record)(void* context, const JournalRecord& record, const char* line,
                 std::size_t length) = nullptr;
  // Each snapshot's bytes.
  void (*snapshot)(void* context, const unsigned char* data, std::size_t size) = nullptr;
  void* context = nullptr;
};

// Scans the file open as `fd` from offset 0 with `buffer` (`bufferSize`
// bytes, more than kJournalSnapshotLineMax). An allocation that fails drops
// the snapshot.
JournalScanResult ScanJournal(int fd, char* buffer, std::size_t bufferSize,
                              const JournalVisitor& visit);

}  // namespace kez

#endif  // KEZ_JOURNAL_JOURNALSCAN_H_
