#include "search/NeighbourRanking.h"

namespace vorn {

void NeighbourRanking::Insert(double d, int32_t i) {
  int pos = size;
  // Entries strictly farther move down (the one pushed past the end falls
  // off); equal distances keep the earlier entry first.
  while (pos > 0 && distance[pos - 1] > d) {
    if (pos < capacity) {
      distance[pos] = distance[pos - 1];
      index[pos] = index[pos - 1];
    }
    --pos;
  }
  if (pos < capacity) {
    distance[pos] = d;
    index[pos] = i;
  }
  if (size < capacity) ++size;
  if (size == capacity) bound = distance[capacity - 1];
}

}  // namespace vorn
