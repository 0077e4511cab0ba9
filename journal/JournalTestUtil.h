// Helpers shared by the journal tests: a fresh temporary folder per test,
// whole-file reads and writes, and reports that follow from their index.
#ifndef KEZ_JOURNAL_JOURNALTESTUTIL_H_
#define KEZ_JOURNAL_JOURNALTESTUTIL_H_

#include <stdlib.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "journal/Journal.h"
#include "support/ScopedTempDir.h"

namespace journal_test {

// A folder made with mkdtemp, removed with everything in it at the end.
class TempFolder {
 public:
  bool ok() const { return !dir_.path().empty(); }
  std::string Path(const std::string& name) const { return dir_.File(name); }

 private:
  kez_testing::ScopedTempDir dir_;
};

inline void WriteText(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

inline std::string ReadText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

// Report number i of a made-up phone: five-minute steps from a fixed start,
// values that differ from report to report in every field, with fractions
// that need all digits of a float or double.
inline kez::JournalRecord Report(uint64_t i, uint64_t stepMs = 300000) {
  kez::JournalRecord r;
  r.timeMs = 1709510445000ull + i * stepMs;
  r.levelPercent = static_cast<float>(100 - static_cast<int>(i % 97)) / 3.0f;
  r.charging = (i / 50) % 2 == 0 ? 0.0f : 1.0f;
  r.aux1 = 20.0f + static_cast<float>(i % 13) * 0.1f;
  r.aux2 = 4.0f + static_cast<float>(i % 7) / 7.0f;
  r.aux3 = static_cast<float>(i % 2);
  r.countA = static_cast<double>(i) * 1.1;
  r.countB1 = static_cast<double>(i % 11) / 3.0;
  r.countB2 = 1e-300 * static_cast<double>(i);
  return r;
}

inline bool SameBits(const kez::JournalRecord& a, const kez::JournalRecord& b) {
  return a.timeMs == b.timeMs &&
         std::memcmp(&a.levelPercent, &b.levelPercent, sizeof(float)) == 0 &&
         std::memcmp(&a.charging, &b.charging, sizeof(float)) == 0 &&
         std::memcmp(&a.aux1, &b.aux1, sizeof(float)) == 0 &&
         std::memcmp(&a.aux2, &b.aux2, sizeof(float)) == 0 &&
         std::memcmp(&a.aux3, &b.aux3, sizeof(float)) == 0 &&
         std::memcmp(&a.countA, &b.countA, sizeof(double)) == 0 &&
         std::memcmp(&a.countB1, &b.countB1, sizeof(double)) == 0 &&
         std::memcmp(&a.countB2, &b.countB2, sizeof(double)) == 0;
}

// Opens `path` and collects what it replays.
struct Replayed {
  int status = 0;
  std::vector<kez::JournalRecord> records;
};

inline Replayed OpenAndReplay(kez::Journal* journal, const std::string& path,
                              const kez::JournalOptions& options = {}) {
  Replayed out;
  auto collect = [&out](const kez::JournalRecord& r) { out.records.push_back(r); };
  out.status = journal->Open(path.c_str(), options, collect);
  return out;
}

// Syncs that only count: for tests of content, not of durability, that
// would otherwise wait for the disk thousands of times.
class NoSyncSystem : public kez::JournalSystem {
 public:
  int syncs = 0;
  int Fdatasync(int) override {
    ++syncs;
    return 0;
  }
};

inline Replayed ReplayOnce(const std::string& path,
                           const kez::JournalOptions& options = {}) {
  kez::Journal journal;
  return OpenAndReplay(&journal, path, options);
}

}  // namespace journal_test

#endif  // KEZ_JOURNAL_JOURNALTESTUTIL_H_
