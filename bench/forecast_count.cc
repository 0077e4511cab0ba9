// N forecasts on a full 30-day memory of a simulated log (the setting of
// forecast_bench), for counting instructions per forecast, e.g.
//
//   valgrind --tool=callgrind --toggle-collect=kez_predict forecast_count 20 144
//
// counts only what runs inside kez_predict: divide by N. A third argument
// (scalar, sse2, avx2, neon) forces that version of the distance scan.
// Prints a checksum of the forecasts.
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "bench/simulated_memory.h"
#include "kez/kez.h"
#include "search/DistanceScan.h"

int main(int argc, char** argv) {
  const int n = argc > 1 ? std::atoi(argv[1]) : 20;
  const int steps = argc > 2 ? std::atoi(argv[2]) : 144;
  if (argc > 3) {
    for (vorn::ScanPath p : {vorn::ScanPath::kScalar, vorn::ScanPath::kSse2, vorn::ScanPath::kAvx2,
                             vorn::ScanPath::kNeon}) {
      if (std::strcmp(argv[3], vorn::ScanPathName(p)) == 0) vorn::ForceScanPath(p);
    }
  }
  kez_bench::SimulatedMemory& memory = kez_bench::FullMemory();
  std::vector<stMobilePowerPredictionData> out(steps > 0 ? steps : 1);
  uint64_t checksum = 1469598103934665603ull;
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
