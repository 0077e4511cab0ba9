// NeighbourRanking: the sorted result list of a neighbour search.
//
// Holds up to `capacity` (distance, index) pairs in two caller-owned arrays,
// ascending by distance; among equal distances the pair inserted first stays
// first. `bound` is what a new candidate must not exceed to be worth
// offering: 1e307 while the list has room, then the distance of the last
// (capacity-th) entry. It never rises.
//
// Insert() does not test the bound itself (the searches differ in how they
// treat a NaN distance); it places the pair behind every entry that is not
// strictly farther, drops the entry pushed past the end, and refuses a pair
// whose place would be past the end (a full list does not take a tie with
// its last entry). Allocates nothing.
#ifndef KEZ_SEARCH_NEIGHBOURRANKING_H_
#define KEZ_SEARCH_NEIGHBOURRANKING_H_

#include <cstdint>

namespace vorn {

struct NeighbourRanking {
  double* distance;   // capacity elements
  int32_t* index;     // capacity elements
  int capacity;       // at least 1
  int size = 0;
  double bound = 1e307;

  NeighbourRanking(double* distances, int32_t* indices, int count)
      : distance(distances), index(indices), capacity(count) {}

  // Defined out of line on purpose: the vector scan kernels are compiled for
  // other instruction sets and must not share inline copies with the rest.
  void Insert(double d, int32_t i);
};

}  // namespace vorn

#endif  // KEZ_SEARCH_NEIGHBOURRANKING_H_
