// The horizons at which the adaptive forecaster scores its methods: 1, 2,
// 4, 8, 12 and 24 hours, as counts of 10-minute steps after the forecast's
// start (step index k of a forecast lies k + 1 steps ahead).
//
// A forecast step between two anchors takes weights interpolated linearly
// in its distance ahead; steps before the first anchor take the first
// anchor's, steps after the last the last anchor's.
#ifndef KEZ_ADAPTIVE_ANCHORHORIZONS_H_
#define KEZ_ADAPTIVE_ANCHORHORIZONS_H_

namespace kez {
namespace adaptive {

constexpr int kAnchorCount = 6;
constexpr int kAnchorSteps[kAnchorCount] = {6, 12, 24, 48, 72, 144};
constexpr int kLongestAnchorSteps = 144;

// For a step `ahead` steps after the start (1 or more): the lower anchor
// *low and the share *t (0 .. 1) of the next anchor, so that a value is
// (1 - t) x value[low] + t x value[low + 1] (t is 0 at and beyond the ends).
void AnchorPosition(int ahead, int* low, double* t);

}  // namespace adaptive
}  // namespace kez

#endif  // KEZ_ADAPTIVE_ANCHORHORIZONS_H_
