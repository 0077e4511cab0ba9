// Random numbers of the offline toolkit. All randomness comes from the C
// library's rand(); nothing here seeds it, so a tool that wants repeatable
// genomes calls srand() itself.
#ifndef KEZ_FOUNDATION_RANDOM_H_
#define KEZ_FOUNDATION_RANDOM_H_

#include "kez/export.h"

namespace vorn {

// rand() unchanged.
KEZ_EXPORT int rand_int();
// fmod((double)(unsigned)rand(), 2^31) / (2^31 - 1): a value in [0, 1].
KEZ_EXPORT double rand_double();

}  // namespace vorn

// Approximate standard normal variate: twelve uniforms summed in single
// precision, minus 6.
KEZ_EXPORT float gauss_rand();
// Normal density of x about m with deviation s; the exponent is capped at 10.
KEZ_EXPORT double gauss(double m, double s, double x);

#endif  // KEZ_FOUNDATION_RANDOM_H_
