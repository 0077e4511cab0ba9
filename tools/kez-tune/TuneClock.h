// Small helpers shared by the tuners: the time spent since a moment, and the
// order of scores (lower is better; a score that could not be measured, NaN,
// is worst).
#ifndef KEZ_TOOLS_KEZ_TUNE_TUNECLOCK_H_
#define KEZ_TOOLS_KEZ_TUNE_TUNECLOCK_H_

#include <chrono>
#include <cmath>

namespace kez_tools {

inline double SecondsSince(std::chrono::steady_clock::time_point since) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - since)
      .count();
}

inline bool Better(double a, double b) {
  if (std::isnan(a)) return false;
  if (std::isnan(b)) return true;
  return a < b;
}

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_TUNE_TUNECLOCK_H_
