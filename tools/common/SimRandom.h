// The simulator's random numbers: a 64-bit Mersenne twister (whose output the
// C++ standard fixes exactly) with distributions written out here, since the
// standard library's distributions differ between implementations. Only
// additions, multiplications and divisions are used, so a seed gives the
// same numbers on every platform and compiler.
#ifndef KEZ_TOOLS_SIM_RANDOM_H_
#define KEZ_TOOLS_SIM_RANDOM_H_

#include <cstdint>
#include <random>

namespace kez_tools {

class SimRandom {
 public:
  explicit SimRandom(uint64_t seed) : engine_(seed) {}

  uint64_t Next() { return engine_(); }
  // Uniform in [0, 1), from the top 53 bits.
  double Uniform() { return static_cast<double>(engine_() >> 11) * 0x1.0p-53; }
  // Uniform in [lo, hi).
  double Uniform(double lo, double hi) { return lo + (hi - lo) * Uniform(); }
  // Uniform whole number in [lo, hi], without modulo bias.
  int64_t UniformInt(int64_t lo, int64_t hi);
  // True with probability p.
  bool Chance(double p) { return Uniform() < p; }
  // Approximately normal (sum of twelve uniforms, minus 6), limited to
  // mean +- 6 sd as that sum is.
  double Normal(double mean, double sd);

 private:
  std::mt19937_64 engine_;
};

}  // namespace kez_tools

#endif  // KEZ_TOOLS_SIM_RANDOM_H_
