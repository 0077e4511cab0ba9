#include "search/DistanceScan.h"

#include <atomic>

namespace vorn {

namespace {

bool HasAvx2() {
#if (defined(__x86_64__) || defined(_M_X64)) && (defined(__GNUC__) || defined(__clang__))
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx2") != 0;
#else
  return false;
#endif
}

// -1: none forced; else a ScanPath.
std::atomic<int> g_forced{-1};

}  // namespace

bool ScanPathAvailable(ScanPath path) {
  switch (path) {
    case ScanPath::kScalar:
      return true;
    case ScanPath::kSse2:
#if defined(__x86_64__) || defined(_M_X64)
      return true;
#else
      return false;
#endif
    case ScanPath::kAvx2: {
      static const bool has = HasAvx2();
      return has;
    }
    case ScanPath::kNeon:
#if defined(__aarch64__)
      return true;
#else
      return false;
#endif
  }
  return false;
}

ScanPath BestScanPath() {
  if (ScanPathAvailable(ScanPath::kAvx2)) return ScanPath::kAvx2;
  if (ScanPathAvailable(ScanPath::kNeon)) return ScanPath::kNeon;
  if (ScanPathAvailable(ScanPath::kSse2)) return ScanPath::kSse2;
  return ScanPath::kScalar;
}

const char* ScanPathName(ScanPath path) {
  switch (path) {
    case ScanPath::kScalar:
      return "scalar";
    case ScanPath::kSse2:
      return "sse2";
    case ScanPath::kAvx2:
      return "avx2";
    case ScanPath::kNeon:
      return "neon";
  }
  return "?";
}

void ForceScanPath(ScanPath path) { g_forced.store(static_cast<int>(path), std::memory_order_relaxed); }

void ResetScanPath() { g_forced.store(-1, std::memory_order_relaxed); }

void ScanDistancesOn(ScanPath path, const DistanceScanTask& task, NeighbourRanking& ranking) {
  if (!ScanPathAvailable(path)) path = ScanPath::kScalar;
  switch (path) {
    case ScanPath::kSse2:
      ScanDistancesSse2(task, ranking);
      return;
    case ScanPath::kAvx2:
      ScanDistancesAvx2(task, ranking);
      return;
    case ScanPath::kNeon:
      ScanDistancesNeon(task, ranking);
      return;
    case ScanPath::kScalar:
      break;
  }
  ScanDistancesScalar(task, ranking);
}

void ScanDistances(const DistanceScanTask& task, NeighbourRanking& ranking) {
  static const ScanPath best = BestScanPath();
  const int forced = g_forced.load(std::memory_order_relaxed);
  ScanDistancesOn(forced < 0 ? best : static_cast<ScanPath>(forced), task, ranking);
}

}  // namespace vorn
