// Heap bytes of one adaptive forecaster against one instance, counted by
// this program's own operator new / delete: what kez_adaptive_init and
// kez_init allocate, what each holds after 40 days of 5-minute reports, and
// the extra peak of one adaptive forecast of 288 steps.
#include <cstdio>
#include <vector>

#include "bench/SimulatedMemory.h"
#include "kez/kez.h"
#include "support/CountingAllocator.h"

int main() {
  kez_bench::SimulatedMemory& memory = kez_bench::FullMemory();
  long before = kez_testing::heap.liveBytes;
  kez_handle raw = kez_init();
  const long raw_init = kez_testing::heap.liveBytes - before;
  before = kez_testing::heap.liveBytes;
  kez_adaptive* adaptive = kez_adaptive_init();
  const long adaptive_init = kez_testing::heap.liveBytes - before;
  std::printf("kez_init             %ld bytes\n", raw_init);
  std::printf("kez_adaptive_init    %ld bytes (%+ld)\n", adaptive_init,
              adaptive_init - raw_init);
  long raw_start = 0, adaptive_growth = 0;
  for (const kez_tools::Report& r : memory.reports) {
    const kez_tools::LogSample& s = *r.sample;
    long mark = kez_testing::heap.liveBytes;
    kez_addStatusValue(raw, static_cast<uint64_t>(r.time_ms),
                       static_cast<float>(s.level_percent),
                       static_cast<float>(s.charging), static_cast<float>(s.aux1),
                       static_cast<float>(s.aux2), static_cast<float>(s.aux3),
                       s.count_a, s.count_b1, s.count_b2);
    raw_start += kez_testing::heap.liveBytes - mark;
    mark = kez_testing::heap.liveBytes;
    kez_adaptive_report(adaptive, static_cast<uint64_t>(r.time_ms),
                        static_cast<float>(s.level_percent),
                        static_cast<float>(s.charging),
                        static_cast<float>(s.aux1), static_cast<float>(s.aux2),
                        static_cast<float>(s.aux3), s.count_a, s.count_b1,
                        s.count_b2);
    adaptive_growth += kez_testing::heap.liveBytes - mark;
  }
  std::printf("after 40 days        instance %+ld bytes, adaptive %+ld bytes (%zu reports)\n",
              raw_start, adaptive_growth, memory.reports.size());
  std::vector<stMobilePowerPredictionData> out(288);
  long held = kez_testing::heap.liveBytes;
  kez_testing::heap.peakBytes = held;
  kez_predict(raw, 288, out.data());
  const long raw_peak = kez_testing::heap.peakBytes - held;
  held = kez_testing::heap.liveBytes;
  kez_testing::heap.peakBytes = held;
  kez_adaptive_predict(adaptive, 0, 288, out.data());
  std::printf("forecast of 288      instance peak %+ld bytes, adaptive peak %+ld bytes, %+ld after\n",
              raw_peak, kez_testing::heap.peakBytes - held,
              kez_testing::heap.liveBytes - held);
  kez_adaptive_stop(adaptive);
  kez_stop(raw);
  return 0;
}
