// JournalRecord: one report as a journal keeps it, the nine values that a
// host reports per moment, with the types the report call takes them in
// (kez_addStatusValue): Unix time in milliseconds, level in percent,
// charging 1 or 0, three auxiliary readings, three counts. Values are kept
// exactly as reported, whatever they are (NaN and infinities included).
#ifndef KEZ_JOURNAL_JOURNALRECORD_H_
#define KEZ_JOURNAL_JOURNALRECORD_H_

#include <cstdint>

namespace kez {

struct JournalRecord {
  uint64_t timeMs = 0;
  float levelPercent = 0;
  float charging = 0;
  float aux1 = 0;
  float aux2 = 0;
  float aux3 = 0;
  double countA = 0;
  double countB1 = 0;
  double countB2 = 0;
};

}  // namespace kez

#endif  // KEZ_JOURNAL_JOURNALRECORD_H_
