// Heap bytes of one forecaster instance, counted by this program's own
// operator new / delete: what kez_init allocates, what is still held after
// 40 days of 5-minute samples, and the extra peak of one forecast of 288
// steps (its working storage, freed before it returns).
#include <cstdio>
#include <cstdlib>
#include <new>
#include <vector>

#include "bench/SimulatedMemory.h"
#include "kez/kez.h"
#include "support/CountingAllocator.h"

int main() {
  long before = kez_testing::heap.liveBytes, blocks = kez_testing::heap.blocks;
  kez_handle h = kez_init();
  const long init = kez_testing::heap.liveBytes - before;
  std::printf("kez_init           %ld bytes in %ld blocks\n", init, kez_testing::heap.blocks - blocks);
  kez_stop(h);
  std::printf("after kez_stop     %ld bytes still held\n", kez_testing::heap.liveBytes - before);

  // A full memory, fed the way a phone feeds it (the tools' session and log
  // are counted apart: only the instance's own growth is reported).
  kez_bench::SimulatedMemory& memory = kez_bench::FullMemory();
  kez_handle fresh = kez_init();
  const long start = kez_testing::heap.liveBytes;
  for (const kez_tools::Report& r : memory.reports) {
    const kez_tools::LogSample& s = *r.sample;
    kez_addStatusValue(fresh, static_cast<uint64_t>(r.time_ms), static_cast<float>(s.level_percent),
                       static_cast<float>(s.charging), static_cast<float>(s.aux1),
                       static_cast<float>(s.aux2), static_cast<float>(s.aux3), s.count_a,
                       s.count_b1, s.count_b2);
  }
  std::printf("after 40 days      %+ld bytes (%zu samples)\n", kez_testing::heap.liveBytes - start, memory.reports.size());
  std::vector<stMobilePowerPredictionData> out(288);
  const long held = kez_testing::heap.liveBytes;
  kez_testing::heap.peakBytes = kez_testing::heap.liveBytes;
  kez_predict(fresh, 288, out.data());
  std::printf("kez_predict(288)   peak %+ld bytes during the call, %+ld after\n", kez_testing::heap.peakBytes - held,
              kez_testing::heap.liveBytes - held);
  kez_stop(fresh);
  return 0;
}
