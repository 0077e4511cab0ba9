// The portable version of the scan: one candidate at a time.
#include "search/DistanceScanLanes.h"

namespace vorn {

void ScanDistancesScalar(const DistanceScanTask& task, NeighbourRanking& ranking) {
  ScanAll<ScalarLanes>(task, ranking);
}

}  // namespace vorn
