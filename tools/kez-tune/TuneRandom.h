// The tuner's own random numbers: a 64-bit Mersenne Twister (its output is
// fixed by the C++ standard) with the distributions written out here, because
// the standard library's distributions differ between implementations. The
// same seed therefore gives the same search on every platform whose libm
// rounds log and exp alike.
#ifndef KEZ_TOOLS_TUNE_TUNE_RANDOM_H_
#define KEZ_TOOLS_TUNE_TUNE_RANDOM_H_

#include <cstdint>
#include <random>

namespace kez_tune {

class TuneRandom {
 public:
  explicit TuneRandom(uint64_t seed) : engine_(seed) {}

  // Uniform in [0, 1), 53 random bits.
  double Uniform();
  // Uniform whole number in [0, n); n > 0. Unbiased (rejection).
  uint64_t Below(uint64_t n);
  // Standard normal (Marsaglia's polar method; the second value of each
  // pair is kept for the next call).
  double Normal();

 private:
  std::mt19937_64 engine_;
  bool has_spare_ = false;
  double spare_ = 0;
};

}  // namespace kez_tune

#endif  // KEZ_TOOLS_TUNE_TUNE_RANDOM_H_
