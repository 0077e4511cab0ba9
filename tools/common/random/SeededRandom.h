// The tools' random numbers, for the simulator and the tuner: a 64-bit
// Mersenne twister (whose output the C++ standard fixes exactly) with the
// distributions written out here, since the standard library's
// distributions differ between implementations. A seed gives the same
// sequence of raw draws everywhere; the distributions built only from
// additions, multiplications and divisions (all but StandardNormal) give
// the same values on every platform and compiler as well. StandardNormal
// also calls sqrt and log, which IEEE 754 does not fix to the last bit on
// every platform.
//
// Moved here from the simulator and the tuner, which had one generator each.
#ifndef KEZ_TOOLS_COMMON_RANDOM_SEEDEDRANDOM_H_
#define KEZ_TOOLS_COMMON_RANDOM_SEEDEDRANDOM_H_

#include <cstdint>
#include <random>

namespace kez_tools {

class SeededRandom {
 public:
  explicit SeededRandom(uint64_t seed) : engine_(seed) {}

  uint64_t Next() { return engine_(); }
  // Uniform in [0, 1), from the top 53 bits.
  double Uniform() { return static_cast<double>(engine_() >> 11) * 0x1.0p-53; }
  // Uniform in [lo, hi).
  double Uniform(double lo, double hi) { return lo + (hi - lo) * Uniform(); }
  // Uniform whole number in [lo, hi], without modulo bias (draws past the
  // largest multiple of the range are drawn again).
  int64_t UniformInt(int64_t lo, int64_t hi);
  // Uniform whole number in [0, n); n > 0. Always takes at least one draw
  // (also for n = 1, unlike UniformInt(0, 0)).
  uint64_t Below(uint64_t n);
  // True with probability p.
  bool Chance(double p) { return Uniform() < p; }
  // Approximately normal (sum of twelve uniforms, minus 6), limited to
  // mean +- 6 sd as that sum is.
  double Normal(double mean, double sd);
  // Standard normal (Marsaglia's polar method; the second value of each
  // pair is kept for the next call).
  double StandardNormal();

 private:
  std::mt19937_64 engine_;
  bool has_spare_ = false;
  double spare_ = 0;
};

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_RANDOM_SEEDEDRANDOM_H_
