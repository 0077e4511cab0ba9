#include "journal/Journal.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>

#include "journal/JournalLine.h"
#include "journal/JournalScan.h"

namespace kez {
namespace {

constexpr std::size_t kScanBuffer = 64 * 1024;
static_assert(kScanBuffer > kJournalSnapshotLineMax, "a snapshot line fits the buffer");
constexpr double kMsPerDay = 86400000.0;

int WriteStatus(int error) {
  return error == ENOSPC || error == EDQUOT || error == EFBIG
             ? KEZ_JOURNAL_DISK_FULL
             : KEZ_JOURNAL_WRITE_FAILED;
}

uint64_t DaysToMs(double days) {
  if (!(days > 0)) return 0;
  if (days > 1e6) days = 1e6;
  return static_cast<uint64_t>(days * kMsPerDay);
}

void ReplayRecord(void* c, const JournalRecord& record, const char*, std::size_t) {
  const JournalHost* host = static_cast<const JournalHost*>(c);
  if (host->report != nullptr) host->report(host->context, record);
}

void ReplaySnapshot(void* c, const unsigned char* data, std::size_t size) {
  const JournalHost* host = static_cast<const JournalHost*>(c);
  if (host->restore != nullptr) host->restore(host->context, data, size);
}

// Pass one of a rewrite: the index of the last report older than the cutoff.
struct OldestContext {
  uint64_t cutoff;
  uint64_t index = 0;
  uint64_t lastOld = 0;  // index + 1 of the last old report; 0: none
};

void OldestVisit(void* c, const JournalRecord& record, const char*, std::size_t) {
  OldestContext* oc = static_cast<OldestContext*>(c);
  ++oc->index;
  if (record.timeMs < oc->cutoff) oc->lastOld = oc->index;
}

// Pass two: copies the lines after the last old report into the new file.
struct CopyContext {
  JournalSystem* system;
  int fd;
  uint64_t skip;  // reports to leave out
  char* out;
  std::size_t outSize;
  uint64_t index = 0;
  std::size_t used = 0;
  uint64_t written = 0;  // file offset
  uint64_t kept = 0;
  uint64_t minTimeMs = 0;
  bool failed = false;

  void Put(const char* data, std::size_t size) {
    if (failed) return;
    if (used + size > outSize) Drain();
    std::memcpy(out + used, data, size);
    used += size;
  }
  void Drain() {
    std::size_t done = 0;
    while (!failed && done < used) {
      const ssize_t n = system->Pwrite(fd, out + done, used - done,
                                       static_cast<off_t>(written));
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) {
        failed = true;
        break;
      }
      done += static_cast<std::size_t>(n);
      written += static_cast<uint64_t>(n);
    }
    used = 0;
  }
};

void CopyVisit(void* c, const JournalRecord& record, const char* line,
               std::size_t length) {
  CopyContext* cc = static_cast<CopyContext*>(c);
  if (cc->index++ < cc->skip) return;
  if (cc->kept == 0 || record.timeMs < cc->minTimeMs) cc->minTimeMs = record.timeMs;
  ++cc->kept;
  cc->Put(line, length);
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  if (slash == 0) return "/";
  return path.substr(0, slash);
}

}  // namespace

Journal::~Journal() { Close(); }

void Journal::Reset() {
  goodEnd_ = 0;
  truncateFirst_ = false;
  prefix_ = nullptr;
  prefixSize_ = 0;
  folderSynced_ = true;
  dirty_ = true;  // what an earlier process wrote may not be on the disk yet
  records_ = minTimeMs_ = lastTimeMs_ = syncBaseMs_ = 0;
  syncBaseSet_ = false;
  unsynced_ = lost_ = replayed_ = snapshots_ = damaged_ = torn_ = compactions_ = 0;
  compactAbove_ = 0;
  spanLimit_ = 0;
  compactWait_ = 0;
}

void Journal::Release() {
  if (fd_ >= 0) ::close(fd_);  // also releases the lock
  fd_ = -1;
  delete[] pending_;
  pending_ = nullptr;
  pendingHead_ = 0;
  pendingCount_ = 0;
}

int Journal::Open(const char* path, const JournalOptions& options,
                  JournalReplayFn replay, void* context) {
  JournalHost host;
  host.report = replay;
  host.context = context;
  return Open(path, options, host);
}

int Journal::Open(const char* path, const JournalOptions& options,
                  const JournalHost& host) {
  Close();
  Reset();
  host_ = host;
  if (path == nullptr || path[0] == '\0') return KEZ_JOURNAL_CANNOT_OPEN;
  options_ = options;
  system_ = options.system != nullptr ? options.system : PosixJournalSystem();
  try {
    path_ = path;
    tempPath_ = path_ + ".tmp";
    folder_ = FolderOf(path_);
  } catch (...) {
    return KEZ_JOURNAL_NO_MEMORY;
  }

  // Opens and locks, then checks that the locked file still has the name: a
  // writer that was rewriting the journal may have renamed a new file over
  // it after it was opened here.
  int fd = -1;
  for (int attempt = 0;; ++attempt) {
    fd = ::open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0) {
      return errno == ENOSPC || errno == EDQUOT ? KEZ_JOURNAL_DISK_FULL
                                                : KEZ_JOURNAL_CANNOT_OPEN;
    }
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
      const int error = errno;
      ::close(fd);
      return error == EWOULDBLOCK ? KEZ_JOURNAL_LOCKED : KEZ_JOURNAL_CANNOT_OPEN;
    }
    struct stat opened;
    struct stat named;
    if (::fstat(fd, &opened) != 0 || !S_ISREG(opened.st_mode)) {
      ::close(fd);
      return KEZ_JOURNAL_CANNOT_OPEN;
    }
    if (::stat(path, &named) == 0 && named.st_dev == opened.st_dev &&
        named.st_ino == opened.st_ino) {
      folderSynced_ = opened.st_size != 0;
      break;
    }
    ::close(fd);
    if (attempt == 8) return KEZ_JOURNAL_LOCKED;
  }
  fd_ = fd;
  // A temporary file left by a rewrite that stopped half way.
  ::unlink(tempPath_.c_str());

  char* buffer = new (std::nothrow) char[kScanBuffer];
  if (buffer == nullptr) {
    Release();
    return KEZ_JOURNAL_NO_MEMORY;
  }
  JournalVisitor visitor;
  visitor.record = ReplayRecord;
  visitor.snapshot = ReplaySnapshot;
  visitor.context = &host_;
  const JournalScanResult scan = ScanJournal(fd_, buffer, kScanBuffer, visitor);
  delete[] buffer;
  if (scan.status != KEZ_JOURNAL_OK) {
    Release();
    return scan.status;
  }
  replayed_ = scan.records;
  snapshots_ = scan.snapshots;
  records_ = scan.records;
  damaged_ = scan.damagedLines;
  torn_ = scan.tornBytes > 0 ? 1 : 0;
  minTimeMs_ = scan.minTimeMs;
  lastTimeMs_ = scan.lastTimeMs;
  syncBaseMs_ = scan.lastTimeMs;
  syncBaseSet_ = scan.records > 0;
  compactAbove_ = options_.compactAboveBytes;
  if (scan.fresh) {
    goodEnd_ = 0;
    prefix_ = kJournalPrologue;
    prefixSize_ = kJournalPrologueLength;
  } else {
    goodEnd_ = scan.goodEnd;
    if (!scan.headerSeen) {
      // The marker is there, the header line was cut short.
      const std::size_t marker =
          static_cast<std::size_t>(std::strchr(kJournalPrologue, '\n') - kJournalPrologue) + 1;
      prefix_ = kJournalPrologue + marker;
      prefixSize_ = kJournalPrologueLength - marker;
    }
  }
  truncateFirst_ = scan.tornBytes > 0;
  // A new or repaired journal is written at once; a failure here is a full
  // disk or an I/O error, and the journal stays open to try again.
  int status = Flush();
  if (status == KEZ_JOURNAL_OK && scan.fresh) status = Sync();
  if (status == KEZ_JOURNAL_OK) MaybeCompact();
  return status;
}

int Journal::WriteAt(const char* data, std::size_t size) {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t n = system_->Pwrite(fd_, data + done, size - done,
                                      static_cast<off_t>(goodEnd_ + done));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      const int error = n < 0 ? errno : ENOSPC;
      if (done > 0) truncateFirst_ = true;
      return WriteStatus(error);
    }
    done += static_cast<std::size_t>(n);
  }
  goodEnd_ += size;
  dirty_ = true;
  return KEZ_JOURNAL_OK;
}

int Journal::Flush() {
  if (truncateFirst_) {
    if (system_->Ftruncate(fd_, static_cast<off_t>(goodEnd_)) != 0) {
      return WriteStatus(errno);
    }
    truncateFirst_ = false;
    dirty_ = true;
  }
  if (prefixSize_ > 0) {
    const int status = WriteAt(prefix_, prefixSize_);
    if (status != KEZ_JOURNAL_OK) return status;
    prefix_ = nullptr;
    prefixSize_ = 0;
  }
  char line[kJournalLineMax];
  while (pendingCount_ > 0) {
    const JournalRecord& record = pending_[pendingHead_];
    const int status = WriteAt(line, FormatJournalLine(record, line));
    if (status != KEZ_JOURNAL_OK) return status;
    Written(record);
    pendingHead_ = (pendingHead_ + 1) % options_.pendingCapacity;
    --pendingCount_;
  }
  return KEZ_JOURNAL_OK;
}

void Journal::Hold(const JournalRecord& record) {
  if (pending_ == nullptr) {
    if (options_.pendingCapacity == 0) {
      ++lost_;
      return;
    }
    pending_ = new (std::nothrow) JournalRecord[options_.pendingCapacity];
    if (pending_ == nullptr) {
      ++lost_;
      return;
    }
  }
  if (pendingCount_ == options_.pendingCapacity) {
    pendingHead_ = (pendingHead_ + 1) % options_.pendingCapacity;
    --pendingCount_;
    ++lost_;
  }
  pending_[(pendingHead_ + pendingCount_) % options_.pendingCapacity] = record;
  ++pendingCount_;
}

void Journal::Written(const JournalRecord& record) {
  if (records_ == 0 || record.timeMs < minTimeMs_) minTimeMs_ = record.timeMs;
  lastTimeMs_ = record.timeMs;
  ++records_;
  ++unsynced_;
  if (!syncBaseSet_) {
    syncBaseMs_ = record.timeMs;
    syncBaseSet_ = true;
  }
}

int Journal::Append(const JournalRecord& record) {
  if (fd_ < 0) return KEZ_JOURNAL_CANNOT_OPEN;
  int status;
  if (pendingCount_ == 0 && !truncateFirst_ && prefixSize_ == 0) {
    char line[kJournalLineMax];
    status = WriteAt(line, FormatJournalLine(record, line));
    if (status == KEZ_JOURNAL_OK) {
      Written(record);
    } else {
      Hold(record);
    }
  } else {
    Hold(record);
    status = Flush();
  }
  if (status != KEZ_JOURNAL_OK) return status;
  if (unsynced_ >= static_cast<uint64_t>(options_.syncEveryReports) ||
      (lastTimeMs_ > syncBaseMs_ && lastTimeMs_ - syncBaseMs_ >= options_.syncEveryMs)) {
    status = Sync();
  }
  if (compactWait_ > 0) --compactWait_;
  if (status == KEZ_JOURNAL_OK) MaybeCompact();
  return status;
}

int Journal::SyncFolder() {
  const int dir = ::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dir < 0) return KEZ_JOURNAL_WRITE_FAILED;
  const int result = ::fsync(dir);
  ::close(dir);
  return result == 0 ? KEZ_JOURNAL_OK : KEZ_JOURNAL_WRITE_FAILED;
}

int Journal::Sync() {
  if (fd_ < 0) return KEZ_JOURNAL_CANNOT_OPEN;
  const int status = Flush();
  if (status != KEZ_JOURNAL_OK) return status;
  if (!dirty_ && folderSynced_) return KEZ_JOURNAL_OK;
  if (system_->Fdatasync(fd_) != 0) return WriteStatus(errno);
  dirty_ = false;
  unsynced_ = 0;
  syncBaseMs_ = lastTimeMs_;
  syncBaseSet_ = records_ > 0;
  if (!folderSynced_) {
    if (SyncFolder() != KEZ_JOURNAL_OK) return KEZ_JOURNAL_WRITE_FAILED;
    folderSynced_ = true;
  }
  return KEZ_JOURNAL_OK;
}

int Journal::Close() {
  if (fd_ < 0) return KEZ_JOURNAL_OK;
  const int status = Sync();
  lost_ += pendingCount_;
  Release();
  return status;
}

void Journal::MaybeCompact() {
  const uint64_t keepMs = DaysToMs(options_.keepDays);
  if (compactWait_ > 0 || records_ == 0 || keepMs == 0) return;
  const uint64_t slackMs = DaysToMs(options_.slackDays);
  const uint64_t span = lastTimeMs_ > minTimeMs_ ? lastTimeMs_ - minTimeMs_ : 0;
  if (spanLimit_ == 0) spanLimit_ = keepMs + slackMs;
  const bool old = span > spanLimit_;
  const bool big = goodEnd_ > compactAbove_;
  if (!old && !big) return;
  if (!big && minTimeMs_ >= Cutoff()) {
    // Nothing to drop: the host still needs every report.
    spanLimit_ = span + slackMs;
    return;
  }
  if (!Compact()) {
    compactWait_ = options_.compactRetryReports;
    return;
  }
  // A journal that still reaches further back after a rewrite (the host
  // needs older reports) or stays big (a host that reports very often)
  // grows by the slack, or to twice its size, before the next one.
  const uint64_t kept = lastTimeMs_ > minTimeMs_ ? lastTimeMs_ - minTimeMs_ : 0;
  spanLimit_ = (kept > keepMs ? kept : keepMs) + slackMs;
  if (goodEnd_ > compactAbove_ / 2) compactAbove_ = 2 * goodEnd_;
}

uint64_t Journal::Cutoff() const {
  const uint64_t keepMs = DaysToMs(options_.keepDays);
  uint64_t cutoff = lastTimeMs_ > keepMs ? lastTimeMs_ - keepMs : 0;
  if (host_.oldestNeeded != nullptr) {
    const uint64_t needed = host_.oldestNeeded(host_.context);
    if (needed < cutoff) cutoff = needed;
  }
  return cutoff;
}

bool Journal::Compact() {
  if (pendingCount_ > 0 || truncateFirst_ || prefixSize_ > 0) return false;
  char* buffer = new (std::nothrow) char[2 * kScanBuffer];
  if (buffer == nullptr) return false;

  OldestContext oldest{Cutoff()};
  JournalVisitor visitor;
  visitor.record = OldestVisit;
  visitor.context = &oldest;
  JournalScanResult scan = ScanJournal(fd_, buffer, kScanBuffer, visitor);
  if (scan.status != KEZ_JOURNAL_OK) {
    delete[] buffer;
    return false;
  }

  const int temp = ::open(tempPath_.c_str(),
                          O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (temp < 0) {
    delete[] buffer;
    return false;
  }
  // The new file is locked before it gets the journal's name.
  bool ok = ::flock(temp, LOCK_EX | LOCK_NB) == 0;
  system_->Reached(CompactionStep::kTempCreated);
  CopyContext copy{system_, temp, oldest.lastOld, buffer + kScanBuffer, kScanBuffer};
  if (ok) {
    copy.Put(kJournalPrologue, kJournalPrologueLength);
    visitor.record = CopyVisit;
    visitor.context = &copy;
    scan = ScanJournal(fd_, buffer, kScanBuffer, visitor);
    // The host's state after the last report, where a replay will meet it;
    // the scan buffer is free again and holds each snapshot line.
    if (host_.snapshot != nullptr) {
      unsigned char* data = new (std::nothrow) unsigned char[kJournalSnapshotMax];
      if (data == nullptr) {
        copy.failed = true;
      } else {
        const std::size_t size = host_.snapshot(host_.context, data, kJournalSnapshotMax);
        if (size > kJournalSnapshotMax) {
          copy.failed = true;
        } else if (size > 0) {
          const int parts = static_cast<int>((size + kJournalSnapshotPart - 1) / kJournalSnapshotPart);
          for (int part = 0; part < parts; ++part) {
            const std::size_t at = static_cast<std::size_t>(part) * kJournalSnapshotPart;
            const std::size_t n = size - at < kJournalSnapshotPart ? size - at : kJournalSnapshotPart;
            copy.Put(buffer, FormatSnapshotLine(part, parts, data + at, n, buffer));
          }
        }
        delete[] data;
      }
    }
    copy.Drain();
    ok = scan.status == KEZ_JOURNAL_OK && !copy.failed;
  }
  delete[] buffer;
  if (ok) {
    system_->Reached(CompactionStep::kTempWritten);
    ok = system_->Fdatasync(temp) == 0;
  }
  if (ok) {
    system_->Reached(CompactionStep::kTempSynced);
    ok = system_->Rename(tempPath_.c_str(), path_.c_str()) == 0;
  }
  if (!ok) {
    ::close(temp);
    ::unlink(tempPath_.c_str());
    return false;
  }
  system_->Reached(CompactionStep::kRenamed);
  // The rename is done; a failed folder sync only leaves it less durable
  // until the next one.
  folderSynced_ = SyncFolder() == KEZ_JOURNAL_OK;
  system_->Reached(CompactionStep::kFolderSynced);
  ::close(fd_);
  fd_ = temp;
  goodEnd_ = copy.written;
  records_ = copy.kept;
  minTimeMs_ = copy.minTimeMs;
  unsynced_ = 0;
  dirty_ = false;
  syncBaseMs_ = lastTimeMs_;
  ++compactions_;
  return true;
}

}  // namespace kez
