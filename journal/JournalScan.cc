#include "journal/JournalScan.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>

#include "journal/JournalLine.h"
#include "kez/kez.h"

namespace kez {
namespace {

class Scanner {
 public:
  explicit Scanner(const JournalVisitor& visit) : visit_(visit) {}

  // One whole line (without its '\n') that ends at file offset `end`
  // ('\n' included); `overlong` when its text did not fit the buffer.
  // Returns false when the scan must stop.
  bool Line(char* text, std::size_t length, uint64_t end, bool overlong) {
    const uint64_t index = lines_++;
    result.goodEnd = end;
    if (index == 0) {
      const JournalMarker m =
          overlong ? JournalMarker::kOther : ParseJournalMarker(text, length);
      if (m == JournalMarker::kJournal) return true;
      result.status = m == JournalMarker::kNewer ? KEZ_JOURNAL_NEWER_VERSION
                                                 : KEZ_JOURNAL_NOT_JOURNAL;
      return false;
    }
    if (index == 1) {
      result.headerSeen = true;
      if (overlong || length != std::strlen(kJournalHeader) ||
          std::memcmp(text, kJournalHeader, length) != 0) {
        ++result.damagedLines;
      }
      return true;
    }
    if (!overlong && IsSnapshotLine(text, length)) {
      SnapshotPart(text, length);
      return true;
    }
    if (!overlong && length > 0 && text[0] == '#') return true;
    JournalRecord record;
    if (overlong || !ParseJournalLine(text, length, &record)) {
      ++result.damagedLines;
      return true;
    }
    if (parts_ > 0) {  // a snapshot's parts are never split by a report
      ++result.damagedLines;
      parts_ = 0;
    }
    if (result.records == 0 || record.timeMs < result.minTimeMs) {
      result.minTimeMs = record.timeMs;
    }
    result.lastTimeMs = record.timeMs;
    ++result.records;
    if (visit_.record != nullptr) visit_.record(visit_.context, record, text, length + 1);
    return true;
  }

  // The bytes after the last '\n': `start` is their offset, `first` their
  // beginning when still in the buffer.
  void Tail(uint64_t start, uint64_t size, const char* first) {
    result.tornBytes = size;
    if (lines_ == 0) {
      // A journal torn while being created holds a start of its first lines.
      if (start == 0 && first != nullptr && size <= kJournalPrologueLength &&
          std::memcmp(first, kJournalPrologue, size) == 0) {
        result.fresh = true;
      } else {
        result.status = KEZ_JOURNAL_NOT_JOURNAL;
      }
    }
  }

  void Empty() { result.fresh = true; }

  // A snapshot left without its last part is damaged.
  void End() {
    if (parts_ > 0) ++result.damagedLines;
    parts_ = 0;
  }

  ~Scanner() { delete[] snapshot_; }

  JournalScanResult result;

 private:
  // Collects the parts of a snapshot, in order, and hands on the whole.
  void SnapshotPart(char* text, std::size_t length) {
    int part = 0;
    int parts = 0;
    std::size_t size = 0;
    if (!ParseSnapshotLine(text, length, &part, &parts, &size) ||
        (part > 0 && (part != nextPart_ || parts != parts_)) ||
        (part + 1 < parts && size != kJournalSnapshotPart)) {
      ++result.damagedLines;
      parts_ = 0;  // the snapshot is lost
      return;
    }
    if (part == 0) {
      if (parts_ > 0) ++result.damagedLines;  // an unfinished one before
      parts_ = parts;
      snapshotSize_ = 0;
      if (visit_.snapshot != nullptr && snapshot_ == nullptr) {
        snapshot_ = new (std::nothrow) unsigned char[kJournalSnapshotMax];
      }
    }
    if (snapshot_ != nullptr) std::memcpy(snapshot_ + snapshotSize_, text, size);
    snapshotSize_ += size;
    nextPart_ = part + 1;
    if (nextPart_ < parts_) return;
    parts_ = 0;
    ++result.snapshots;
    if (visit_.snapshot != nullptr && snapshot_ != nullptr) {
      visit_.snapshot(visit_.context, snapshot_, snapshotSize_);
    }
  }

  const JournalVisitor& visit_;
  unsigned char* snapshot_ = nullptr;  // kJournalSnapshotMax bytes, when needed
  std::size_t snapshotSize_ = 0;
  int parts_ = 0;  // of the snapshot being collected; 0: none
  int nextPart_ = 0;
  uint64_t lines_ = 0;
};

}  // namespace

JournalScanResult ScanJournal(int fd, char* buffer, std::size_t bufferSize,
                              const JournalVisitor& visit) {
  Scanner scanner(visit);
  uint64_t base = 0;     // file offset of buffer[0]
  std::size_t have = 0;  // bytes in the buffer
  bool overlong = false;         // the current line began before base
  uint64_t overlongStart = 0;
  for (;;) {
    if (have == bufferSize) {
      // A line longer than the buffer: forget what it holds so far.
      if (!overlong) overlongStart = base;
      overlong = true;
      base += have;
      have = 0;
    }
    const ssize_t n = ::pread(fd, buffer + have, bufferSize - have,
                              static_cast<off_t>(base + have));
    if (n < 0) {
      if (errno == EINTR) continue;
      scanner.result.status = KEZ_JOURNAL_CANNOT_OPEN;
      return scanner.result;
    }
    if (n == 0) break;
    const std::size_t end = have + static_cast<std::size_t>(n);
    std::size_t pos = 0;
    std::size_t from = have;  // bytes before `from` hold no '\n'
    have = end;
    for (;;) {
      const void* nl = std::memchr(buffer + from, '\n', end - from);
      if (nl == nullptr) break;
      const std::size_t stop = static_cast<std::size_t>(static_cast<const char*>(nl) - buffer);
      if (!scanner.Line(buffer + pos, stop - pos, base + stop + 1, overlong)) {
        return scanner.result;
      }
      overlong = false;
      pos = stop + 1;
      from = pos;
    }
    std::memmove(buffer, buffer + pos, have - pos);
    base += pos;
    have -= pos;
  }
  scanner.End();
  if (overlong) {
    scanner.Tail(overlongStart, base + have - overlongStart, nullptr);
  } else if (have > 0) {
    scanner.Tail(base, have, buffer);
  } else if (base == 0) {
    scanner.Empty();
  }
  return scanner.result;
}

}  // namespace kez
