// Fuzz target: opening a journal (kez::Journal) on any file. It must open to
// a documented status, never crash; a journal that opens must replay
// reports that write back to lines that read as the same bits, and a report
// appended to it must be the last one replayed at the next open, after the
// same reports and nothing else.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "FuzzInput.h"
#include "journal/Journal.h"
#include "journal/JournalLine.h"

namespace {

// No waits for the disk: the fuzzer checks content, not durability.
class NoSync : public kez::JournalSystem {
 public:
  int Fdatasync(int) override { return 0; }
};

struct Collected {
  std::vector<kez::JournalRecord> records;
  int snapshots = 0;
};

bool SameBits(const kez::JournalRecord& a, const kez::JournalRecord& b) {
  char x[kez::kJournalLineMax];
  char y[kez::kJournalLineMax];
  const std::size_t n = kez::FormatJournalLine(a, x);
  return n == kez::FormatJournalLine(b, y) && std::memcmp(x, y, n) == 0;
}

int OpenAndCollect(kez::Journal* journal, const char* path, Collected* out) {
  static NoSync system;
  kez::JournalOptions options;
  options.system = &system;
  options.keepDays = 0;  // no rewrite: the second open must see the same reports
  kez::JournalHost host;
  host.report = [](void* c, const kez::JournalRecord& r) {
    static_cast<Collected*>(c)->records.push_back(r);
  };
  host.restore = [](void* c, const unsigned char*, std::size_t size) {
    KEZ_FUZZ_CHECK(size <= kez::kJournalSnapshotMax);
    ++static_cast<Collected*>(c)->snapshots;
  };
  host.context = out;
  return journal->Open(path, options, host);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kez_fuzz::TempFile file("journal", data, size);
  if (!file.ok()) return 0;
  Collected first;
  kez::Journal journal;
  const int status = OpenAndCollect(&journal, file.path(), &first);
  KEZ_FUZZ_CHECK(status == KEZ_JOURNAL_OK || status == KEZ_JOURNAL_NOT_JOURNAL ||
                 status == KEZ_JOURNAL_NEWER_VERSION);
  if (status != KEZ_JOURNAL_OK) {
    KEZ_FUZZ_CHECK(first.records.empty() && !journal.isOpen());
    return 0;
  }
  for (const kez::JournalRecord& r : first.records) {
    char line[kez::kJournalLineMax];
    const std::size_t n = kez::FormatJournalLine(r, line);
    kez::JournalRecord back;
    KEZ_FUZZ_CHECK(kez::ParseJournalLine(line, n - 1, &back) && SameBits(r, back));
  }
  kez::JournalRecord added;
  added.timeMs = 1709510445000ull;
  added.levelPercent = 50.5f;
  KEZ_FUZZ_CHECK(journal.Append(added) == KEZ_JOURNAL_OK);
  KEZ_FUZZ_CHECK(journal.Close() == KEZ_JOURNAL_OK);

  Collected second;
  KEZ_FUZZ_CHECK(OpenAndCollect(&journal, file.path(), &second) == KEZ_JOURNAL_OK);
  KEZ_FUZZ_CHECK(journal.tornLines() == 0);
  KEZ_FUZZ_CHECK(second.records.size() == first.records.size() + 1);
  for (std::size_t k = 0; k < first.records.size(); ++k) {
    KEZ_FUZZ_CHECK(SameBits(first.records[k], second.records[k]));
  }
  KEZ_FUZZ_CHECK(SameBits(second.records.back(), added));
  KEZ_FUZZ_CHECK(second.snapshots == first.snapshots);
  return 0;
}
