// Row deletion: a low-level edit that keeps the per-row data lists in step
// and leaves everything derived from rows to the caller.
#include "table/VelqaTimeSeriesDataTable.h"

void VelqaTimeSeriesDataTable::Delete(int row) {
  for (int c = 0; c < cols.count; ++c) cols[c]->Delete(row);
  dataNames.Delete(row);
  times.Delete(row);
  // rowSequence, sequenceStarts, statistics, blocks and streams stay as they
  // are on purpose: a caller deleting many rows repairs them once, at the end.
}
