// JournalSystem: the few file operations of a journal whose failures matter,
// behind one seam so that tests can make them fail (a full disk, an I/O
// error) or stop the process between the steps of a rewrite. The default,
// PosixJournalSystem(), calls the operating system and does nothing at the
// steps. Every function returns what its POSIX namesake returns and leaves
// errno set on failure.
#ifndef KEZ_JOURNAL_JOURNALSYSTEM_H_
#define KEZ_JOURNAL_JOURNALSYSTEM_H_

#include <sys/types.h>

#include <cstddef>

namespace kez {

// The steps of a rewrite that drops old reports, in order. A process that
// stops after any of them leaves either the old or the new journal, whole.
enum class CompactionStep {
  kTempCreated,   // the new file exists under its temporary name, empty
  kTempWritten,   // ... holds the whole new journal
  kTempSynced,    // ... is on the disk
  kRenamed,       // the new journal has the journal's name
  kFolderSynced,  // the rename is on the disk
};

class JournalSystem {
 public:
  virtual ~JournalSystem() = default;
  virtual ssize_t Pwrite(int fd, const void* data, std::size_t size, off_t offset);
  virtual int Ftruncate(int fd, off_t size);
  virtual int Fdatasync(int fd);
  virtual int Rename(const char* from, const char* to);
  virtual void Reached(CompactionStep step);
};

// The operating system's own operations (one shared, stateless object).
JournalSystem* PosixJournalSystem();

}  // namespace kez

#endif  // KEZ_JOURNAL_JOURNALSYSTEM_H_
