// Heap bytes of one forecaster instance, counted by this program's own
// operator new / delete: what kez_init allocates, what is still held after
// 40 days of 5-minute samples, and the extra peak of one forecast of 288
// steps (its working storage, freed before it returns).
#include <cstdio>
#include <cstdlib>
#include <new>
#include <vector>

#include "bench/simulated_memory.h"
#include "kez/kez.h"

namespace {

long g_live = 0;
long g_peak = 0;
long g_allocated = 0;  // bytes ever allocated
long g_blocks = 0;

void* Allocate(std::size_t n) {
  // A header in front of each block remembers its size.
  void* p = std::malloc(n + 16);
  if (p == nullptr) throw std::bad_alloc();
  *static_cast<std::size_t*>(p) = n;
  g_live += static_cast<long>(n);
  g_allocated += static_cast<long>(n);
  ++g_blocks;
  if (g_live > g_peak) g_peak = g_live;
  return static_cast<char*>(p) + 16;
}

void Free(void* p) {
  if (p == nullptr) return;
  char* block = static_cast<char*>(p) - 16;
  g_live -= static_cast<long>(*reinterpret_cast<std::size_t*>(block));
  std::free(block);
}

}  // namespace

void* operator new(std::size_t n) { return Allocate(n); }
void* operator new[](std::size_t n) { return Allocate(n); }
void* operator new(std::size_t n, const std::nothrow_t&) noexcept {
  try {
    return Allocate(n);
  } catch (...) {
    return nullptr;
  }
}
void* operator new[](std::size_t n, const std::nothrow_t& t) noexcept { return operator new(n, t); }
void operator delete(void* p) noexcept { Free(p); }
void operator delete[](void* p) noexcept { Free(p); }
void operator delete(void* p, std::size_t) noexcept { Free(p); }
void operator delete[](void* p, std::size_t) noexcept { Free(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { Free(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { Free(p); }

int main() {
  long before = g_live, blocks = g_blocks;
  kez_handle h = kez_init();
  const long init = g_live - before;
  std::printf("kez_init           %ld bytes in %ld blocks\n", init, g_blocks - blocks);
  kez_stop(h);
  std::printf("after kez_stop     %ld bytes still held\n", g_live - before);

  // A full memory, fed the way a phone feeds it (the tools' session and log
  // are counted apart: only the instance's own growth is reported).
  kez_bench::SimulatedMemory& memory = kez_bench::FullMemory();
  kez_handle fresh = kez_init();
  const long start = g_live;
  for (const kez_tools::Report& r : memory.reports) {
    const kez_tools::LogSample& s = *r.sample;
    kez_addStatusValue(fresh, static_cast<uint64_t>(r.time_ms), static_cast<float>(s.level_percent),
                       static_cast<float>(s.charging), static_cast<float>(s.aux1),
                       static_cast<float>(s.aux2), static_cast<float>(s.aux3), s.count_a,
                       s.count_b1, s.count_b2);
  }
  std::printf("after 40 days      %+ld bytes (%zu samples)\n", g_live - start, memory.reports.size());
  std::vector<stMobilePowerPredictionData> out(288);
  const long held = g_live;
  g_peak = g_live;
  kez_predict(fresh, 288, out.data());
  std::printf("kez_predict(288)   peak %+ld bytes during the call, %+ld after\n", g_peak - held,
              g_live - held);
  kez_stop(fresh);
  return 0;
}
