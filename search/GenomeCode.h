// Reading and writing the flat genome code of operators and functions.
//
// Integers are stored as exact double values. A run ends with the mark -1.0;
// a reader recognises the mark the way an integer truncation toward zero
// would: any value in (-2, -1] ends a run. Reads past the end of the code
// (remaining count at 0 or below) return the end mark without touching
// memory, so a truncated code decodes into truncated operators instead of
// reading out of bounds. Internal to the search engine.
#ifndef KEZ_SEARCH_GENOMECODE_H_
#define KEZ_SEARCH_GENOMECODE_H_

#include <climits>

namespace vorn {

constexpr double kGenomeEndMark = -1.0;

inline bool IsGenomeEndMark(double v) { return v > -2.0 && v <= -1.0; }

// Truncation toward zero; NaN gives 0 and values outside int saturate.
inline int GenomeInt(double v) {
  if (!(v == v)) return 0;
  if (v >= 2147483647.0) return INT_MAX;
  if (v <= -2147483648.0) return INT_MIN;
  return static_cast<int>(v);
}

// Reads one value, advancing `p` and counting `remaining` down.
inline double ReadGenomeValue(const double*& p, int& remaining) {
  if (remaining <= 0) return kGenomeEndMark;
  --remaining;
  return *p++;
}

}  // namespace vorn

#endif  // KEZ_SEARCH_GENOMECODE_H_
