// MemoryReach: how far back in time the instance's memory reaches, so that
// a journal keeps every report a replay needs to rebuild it.
//
// The instance remembers its last 4320 10-minute steps, and a run of steps
// without reports takes one place in that memory, whatever its length: after
// days without reports the memory reaches that much further back than 30
// days. MemoryReach counts, per day (Unix time), the reports that start a
// new step (the places they take), for the last kDays days, and answers the
// start of the day from which on the newest `places` were taken. Rounded
// down to a whole day, it errs on the side of keeping more. When the days
// counted hold fewer places (a phone that reported little, or a clock that
// jumped back and restarted the count) it answers 0: keep everything.
//
// 2 x kDays bytes of counts; nothing allocated.
#ifndef KEZ_ADAPTIVE_MEMORYREACH_H_
#define KEZ_ADAPTIVE_MEMORYREACH_H_

#include <cstdint>

#include "adaptive/StateBytes.h"

namespace kez {
namespace adaptive {

class MemoryReach {
 public:
  static constexpr int kDays = 128;

  MemoryReach();

  // One report at `timeMs`; `newPlace` when it starts a step of its own.
  void Add(uint64_t timeMs, bool newPlace);
  // The time from which on the newest `places` were taken; 0 when fewer.
  uint64_t Since(int places) const;

  void Save(StateWriter* out) const;
  void Restore(StateReader* in);

 private:
  void Clear();

  bool any_ = false;
  uint64_t newestDay_ = 0;
  uint16_t count_[kDays];
};

}  // namespace adaptive
}  // namespace kez

#endif  // KEZ_ADAPTIVE_MEMORYREACH_H_
