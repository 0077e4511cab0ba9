#include "TuneRandom.h"

#include <cmath>

namespace kez_tune {

double TuneRandom::Uniform() {
  return static_cast<double>(engine_() >> 11) * (1.0 / 9007199254740992.0);
}

uint64_t TuneRandom::Below(uint64_t n) {
  // The largest multiple of n that fits; draws at or above it are redrawn.
  const uint64_t limit = UINT64_MAX - UINT64_MAX % n;
  uint64_t x;
  do {
    x = engine_();
  } while (x >= limit);
  return x % n;
}

double TuneRandom::Normal() {
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

}  // namespace kez_tune
