// Differential and up-sampling: in-place transformations of the columns.
#include <climits>

#include "table/VelqaTimeSeriesDataTable.h"

void VelqaTimeSeriesDataTable::Differential(int col) {
  VelqaTimeSeriesDataTableColInfo& values = *cols[col];
  for (int k = 0; k < sequenceStarts.count; ++k) {
    int s;
    int e;
    SequenceBounds(k, &s, &e);
    if (s >= e) continue;
    // Downwards, so that each difference uses the previous row's old value.
    for (int i = e - 1; i > s; --i) values[i] = values[i] - values[i - 1];
    values[s] = 0.0f;
  }
  UpdateStatistics();
}

void VelqaTimeSeriesDataTable::UpSampling(int factor) {
  const int n = dataNames.count;
  const long long total = static_cast<long long>(n) * factor;
  if (total < 1 || total > INT_MAX) return;
  // From the last target row down, so that source rows are read before they
  // are overwritten (only a weight of exactly 0 may meet a row already
  // rewritten, at factor 1 and at row 0).
  for (int t = static_cast<int>(total) - 1; t >= 0; --t) {
    const double x = static_cast<double>(t) / factor;
    const int i = static_cast<int>(x);
    const double f = x - i;
    const int j = i < n - 1 ? i + 1 : i;
    IncreaseRow(t);
    for (int c = 0; c < cols.count; ++c) {
      VelqaTimeSeriesDataTableColInfo& col = *cols[c];
      const double v = (1.0 - f) * static_cast<double>(col[i]) +
                       f * static_cast<double>(col[j]);
      col[t] = static_cast<float>(v);
    }
  }
}
