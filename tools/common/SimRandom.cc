#include "SimRandom.h"

namespace kez_tools {

int64_t SimRandom::UniformInt(int64_t lo, int64_t hi) {
  if (hi <= lo) return lo;
  uint64_t range = static_cast<uint64_t>(hi - lo) + 1;
  if (range == 0) return static_cast<int64_t>(engine_());  // the full range
  uint64_t limit = UINT64_MAX - UINT64_MAX % range;
  uint64_t x;
  do {
    x = engine_();
  } while (x >= limit);
  return lo + static_cast<int64_t>(x % range);
}

double SimRandom::Normal(double mean, double sd) {
  double sum = 0.0;
  for (int i = 0; i < 12; ++i) sum += Uniform();
  return mean + sd * (sum - 6.0);
}

}  // namespace kez_tools
