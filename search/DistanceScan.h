// DistanceScan: the inner loop of the neighbour search, the weighted window
// distance of every candidate, with a scalar version and vector versions
// that give bit-identical results.
//
// A candidate j (0 .. candidates - 1) compares the present window (the
// feature rows of ages 0, S, 2S, ... below queryLength) with its own window
// (ages firstAge + j + 0, + S, ...). Its distance D starts at 0 and adds, for
// compared lag number m = 0, 1, ... (lag l = m * S < queryLength) and for
// every feature i in order, with d = now[i] - then[i] and w = weights[m][i]:
//   w * (d * d)          when w >= 0,
//   -w if |d| > 1e-5     when w < 0 (a mismatch count),
//   nothing              when w is NaN.
// Every term is >= 0 or NaN, so a partial sum that is above the bound, or
// NaN, can only end above it or NaN: the scans drop such a candidate at any
// point of its sum (the vector versions for a whole group of candidates at
// once). A candidate whose full D is <= the ranking's bound at its turn is
// inserted, with index -j; candidates are offered in the order of j. The
// result (neighbours, order, distances to the last bit) is that of the plain
// loop over every candidate, whatever the version.
//
// Vector versions run several candidates in the lanes of one register; each
// lane adds its terms in exactly the order above with separate multiply and
// add instructions (never fused). x86-64: SSE2 (always there) and AVX2
// (chosen at run time when the processor has it); arm64: NEON.
//
// Reads only; allocates nothing; writes only the ranking.
#ifndef KEZ_SEARCH_DISTANCESCAN_H_
#define KEZ_SEARCH_DISTANCESCAN_H_

#include <cstdint>

#include "search/NeighbourRanking.h"

namespace vorn {

// The kind of each weight, as the scans read it.
const uint8_t kScanSquare = 0;    // w >= 0: w * (d * d)
const uint8_t kScanMismatch = 1;  // w < 0: -w when |d| > 1e-5
const uint8_t kScanNothing = 2;   // NaN: no term

inline uint8_t ScanKindOf(double w) {
  if (w >= 0) return kScanSquare;
  if (w < 0) return kScanMismatch;
  return kScanNothing;
}

struct DistanceScanTask {
  const double* const* rows;  // rows[a]: the feature row of age a
  const double* weights;      // weight row m at m * features
  const uint8_t* kinds;       // ScanKindOf each weight, same layout
  const uint8_t* examined;    // examined[j] != 0: candidate j is wanted
  int features = 0;           // F
  int queryLength = 0;        // q: ages 0 .. q - 1 form the present window
  int stride = 1;             // S >= 1
  int firstAge = 0;           // age of candidate 0's newest row
  int candidates = 0;         // rows reach age firstAge + candidates - 1 + q - 1
};

enum class ScanPath { kScalar, kSse2, kAvx2, kNeon };

// Runs the scan on the fastest path this processor has (or the one forced by
// ForceScanPath).
void ScanDistances(const DistanceScanTask& task, NeighbourRanking& ranking);
// Runs it on `path`; a path this processor lacks runs the scalar version.
void ScanDistancesOn(ScanPath path, const DistanceScanTask& task, NeighbourRanking& ranking);

bool ScanPathAvailable(ScanPath path);
ScanPath BestScanPath();
const char* ScanPathName(ScanPath path);
// For tests and benchmarks: makes ScanDistances use `path` (when available)
// from now on, for every object of the process; ResetScanPath() undoes it.
void ForceScanPath(ScanPath path);
void ResetScanPath();

// The versions themselves (each exists on every platform; where its
// instruction set is missing it runs the scalar version).
void ScanDistancesScalar(const DistanceScanTask& task, NeighbourRanking& ranking);
void ScanDistancesSse2(const DistanceScanTask& task, NeighbourRanking& ranking);
void ScanDistancesAvx2(const DistanceScanTask& task, NeighbourRanking& ranking);
void ScanDistancesNeon(const DistanceScanTask& task, NeighbourRanking& ranking);

}  // namespace vorn

#endif  // KEZ_SEARCH_DISTANCESCAN_H_
