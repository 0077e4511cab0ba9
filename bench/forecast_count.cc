// N forecasts on a full 30-day memory of a simulated log (the setting of
// forecast_bench), for counting instructions per forecast, e.g.
//
//   valgrind --tool=callgrind --toggle-collect=kez_predict forecast_count 20 144
//
// counts only what runs inside kez_predict: divide by N. The arguments after
// the first two, in any order:
//
//   scalar, sse2, avx2, neon   force that version of the distance scan
//   predict                    N calls of kez_predict (the default)
//   search                     N calls of the memory base's Search alone, as
//                              kez_predict makes it for that many steps
//   fullscan                   N straightforward full scans instead: every
//                              candidate's whole distance, no early abandon
//                              (search/testing/StraightforwardSearch.h)
//   firstwritten               N runs of the search as first written (early
//                              abandon after each complete lag row)
//
// Each search mode runs inside a function of its own, never inlined, named
// CountedSearch, CountedFullScan or CountedFirstWritten, so that a counter
// can be limited to it (callgrind --toggle-collect='CountedFullScan*'). The
// runs differ only in N, so the difference of two runs' counts over the
// whole program leaves only those calls (how the arm64 counts are taken).
// Prints a checksum of the forecasts or of the neighbours found.
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "bench/SimulatedMemory.h"
#include "kez/kez.h"
#include "search/DistanceScan.h"
#include "search/testing/StraightforwardSearch.h"

namespace {

enum class Mode { kPredict, kSearch, kFullScan, kFirstWritten };

const int kMaxNeighbours = 64;

uint64_t Mix(uint64_t checksum, const void* p, std::size_t bytes) {
  const unsigned char* c = static_cast<const unsigned char*>(p);
  for (std::size_t k = 0; k < bytes; ++k) checksum = (checksum ^ c[k]) * 1099511628211ull;
  return checksum;
}

}  // namespace

// What one search found.
struct Found {
  int count = 0;
  int index[kMaxNeighbours];
  double distance[kMaxNeighbours];
};

// Out of line and with external names, for the instruction counters.
__attribute__((noinline)) void CountedSearch(vorn::VelqaSPBase& b, int futureSteps, Found& f) {
  b.Search(futureSteps, f.count, f.index, f.distance);
}

__attribute__((noinline)) void CountedFullScan(vorn::VelqaSPBase& b, int futureSteps, Found& f) {
  vorn::testing::FullScanSearch(b, futureSteps, f.count, f.index, f.distance);
}

__attribute__((noinline)) void CountedFirstWritten(vorn::VelqaSPBase& b, int futureSteps,
                                                   Found& f) {
  vorn::testing::StraightforwardSearch(b, futureSteps, f.count, f.index, f.distance);
}

int main(int argc, char** argv) {
  const int n = argc > 1 ? std::atoi(argv[1]) : 20;
  const int steps = argc > 2 ? std::atoi(argv[2]) : 144;
  Mode mode = Mode::kPredict;
  for (int a = 3; a < argc; ++a) {
    bool known = false;
    for (vorn::ScanPath p : {vorn::ScanPath::kScalar, vorn::ScanPath::kSse2, vorn::ScanPath::kAvx2,
                             vorn::ScanPath::kNeon}) {
      if (std::strcmp(argv[a], vorn::ScanPathName(p)) == 0) {
        if (!vorn::ScanPathAvailable(p)) {
          std::fprintf(stderr, "this processor lacks the %s version\n", argv[a]);
          return 1;
        }
        vorn::ForceScanPath(p);
        known = true;
      }
    }
    const struct {
      const char* name;
      Mode mode;
    } modes[] = {{"predict", Mode::kPredict},
                 {"search", Mode::kSearch},
                 {"fullscan", Mode::kFullScan},
                 {"firstwritten", Mode::kFirstWritten}};
    for (const auto& m : modes) {
      if (std::strcmp(argv[a], m.name) == 0) {
        mode = m.mode;
        known = true;
      }
    }
    if (!known) {
      std::fprintf(stderr,
                   "usage: forecast_count [N [steps [scalar|sse2|avx2|neon] "
                   "[predict|search|fullscan|firstwritten]]]\n");
      return 2;
    }
  }
  kez_bench::SimulatedMemory& memory = kez_bench::FullMemory();
  uint64_t checksum = 1469598103934665603ull;
  if (mode == Mode::kPredict) {
    std::vector<stMobilePowerPredictionData> out(steps > 0 ? steps : 1);
    for (int k = 0; k < n; ++k) {
      kez_predict(memory.session.handle(), steps, out.data());
      for (int s = 0; s < steps; ++s) {
        uint64_t bits;
        std::memcpy(&bits, &out[s].level, sizeof bits);
        checksum = (checksum ^ bits) * 1099511628211ull;
      }
    }
    std::printf("%d forecasts of %d steps, distance %.17g, checksum %016" PRIx64 "\n", n, steps,
                out[0].distance, checksum);
    return 0;
  }
  vorn::VelqaSPBase& base = memory.predictor();
  if (base.neighbourMax > static_cast<unsigned>(kMaxNeighbours)) {
    std::fprintf(stderr, "more than %d neighbours\n", kMaxNeighbours);
    return 1;
  }
  Found found;
  for (int k = 0; k < n; ++k) {
    if (mode == Mode::kSearch) CountedSearch(base, steps, found);
    if (mode == Mode::kFullScan) CountedFullScan(base, steps, found);
    if (mode == Mode::kFirstWritten) CountedFirstWritten(base, steps, found);
  }
  // Every run finds the same: the last one stands for all (and nothing but
  // the searches runs in the loop).
  checksum = Mix(checksum, found.index, sizeof(int) * found.count);
  checksum = Mix(checksum, found.distance, sizeof(double) * found.count);
  std::printf("%d searches for %d steps, %d neighbours, nearest %.17g, checksum %016" PRIx64 "\n",
              n, steps, found.count, found.count > 0 ? found.distance[0] : 0.0, checksum);
  return 0;
}
