#include "SeededRandom.h"

#include <cmath>

namespace kez_tools {

int64_t SeededRandom::UniformInt(int64_t lo, int64_t hi) {
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

uint64_t SeededRandom::Below(uint64_t n) {
  // The largest multiple of n that fits; draws at or above it are redrawn.
  const uint64_t limit = UINT64_MAX - UINT64_MAX % n;
  uint64_t x;
  do {
    x = engine_();
  } while (x >= limit);
  return x % n;
}

double SeededRandom::Normal(double mean, double sd) {
  double sum = 0.0;
  for (int i = 0; i < 12; ++i) sum += Uniform();
  return mean + sd * (sum - 6.0);
}

double SeededRandom::StandardNormal() {
  if (has_spare_) {
    has_spare_ = false;
    return spare_;
  }
  double u, v, s;
  do {
    u = 2.0 * Uniform() - 1.0;
    v = 2.0 * Uniform() - 1.0;
    s = u * u + v * v;
  } while (s >= 1.0 || s == 0.0);
  const double factor = std::sqrt(-2.0 * std::log(s) / s);
  spare_ = v * factor;
  has_spare_ = true;
  return u * factor;
}

}  // namespace kez_tools
