#include "journal/JournalSystem.h"

#include <stdio.h>
#include <unistd.h>

namespace kez {

ssize_t JournalSystem::Pwrite(int fd, const void* data, std::size_t size,
                              off_t offset) {
  return ::pwrite(fd, data, size, offset);
}

int JournalSystem::Ftruncate(int fd, off_t size) { return ::ftruncate(fd, size); }

int JournalSystem::Fdatasync(int fd) { return ::fdatasync(fd); }

int JournalSystem::Rename(const char* from, const char* to) {
  return ::rename(from, to);
}

void JournalSystem::Reached(CompactionStep) {}

JournalSystem* PosixJournalSystem() {
  static JournalSystem system;
  return &system;
}

}  // namespace kez
