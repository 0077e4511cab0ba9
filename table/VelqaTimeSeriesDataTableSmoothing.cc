// Smoothing of staircase data: runs of held values become one point each,
// and every row is recomputed from the points by a Gaussian kernel or a
// natural cubic spline, one sequence at a time.
#include <cmath>

#include "table/Spline.h"
#include "table/VelqaTimeSeriesDataTable.h"

using vorn::FListP;
using vorn::FListT;

void VelqaTimeSeriesDataTable::Smoothing(int colType, int mode) {
  if (mode != 0 && mode != 1) return;
  for (int k = 0; k < sequenceStarts.count; ++k) {
    int begin;
    int end;
    SequenceBounds(k, &begin, &end);
    if (begin < end) SmoothSequence(colType, mode, begin, end);
  }
}

void VelqaTimeSeriesDataTable::SmoothSequence(int colType, int mode, int s,
                                              int e) {
  const int first = colBlocks[colType]->first;
  const int width = colBlocks[colType]->count;

  // 1-3. Runs of rows in which no column of the block changes (exact float
  // equality, discrete columns included), one point per run. The values are
  // copied out first: the rows are rewritten while the points are still read.
  FListT<double> centres;
  FListT<int> lengths;
  FListT<float> values;  // run-major: values[i * width + j]
  int p = s;
  for (int j = s + 1; j <= e; ++j) {
    bool same = j < e;
    for (int c = 0; same && c < width; ++c) {
      const VelqaTimeSeriesDataTableColInfo& col = *cols[first + c];
      if (!(col[j] == col[j - 1])) same = false;
    }
    if (same) continue;
    centres.Add(static_cast<double>(p + (j - 1)) * 0.5);
    lengths.Add(j - p);
    for (int c = 0; c < width; ++c) values.Add((*cols[first + c])[p]);
    p = j;
  }
  const int runs = centres.count;

  if (mode == 0) {
    FListT<double> sums;
    for (int c = 0; c < width; ++c) sums.Add(0.0);
    for (int t = s; t < e; ++t) {
      double total = 0.0;
      for (int c = 0; c < width; ++c) sums[c] = 0.0;
      for (int i = 0; i < runs; ++i) {
        const double z = (centres[i] - t) / lengths[i];
        double a = (z * z) / -0.6366197723675813;  // -(pi / 2) z^2
        if (a > 10.0) a = 10.0;
        const double w = std::exp(a) * 0.7071067872175183 / lengths[i];
        total += w;
        for (int c = 0; c < width; ++c) {
          sums[c] += w * static_cast<double>(values[i * width + c]);
        }
      }
      if (width >= 1 && total > 0.0) {
        for (int c = 0; c < width; ++c) {
          VelqaTimeSeriesDataTableColInfo& col = *cols[first + c];
          if (col.valueType == 0) col[t] = static_cast<float>(sums[c] / total);
        }
      }
    }
    return;
  }

  // Mode 1: one spline per column of the block; discrete columns get an
  // empty one that is never trained or read.
  FListP<Spline> splines;
  for (int c = 0; c < width; ++c) {
    Spline* spline = new Spline();
    splines.Add(spline);
    if (cols[first + c]->valueType != 0) continue;
    for (int i = 0; i < runs; ++i) {
      SplineData_ knot;
      knot.x = centres[i];
      knot.y = static_cast<double>(values[i * width + c]);
      spline->knots.Add(knot);
    }
    spline->Learn();
  }
  for (int t = s; t < e; ++t) {
    for (int c = 0; c < width; ++c) {
      VelqaTimeSeriesDataTableColInfo& col = *cols[first + c];
      if (col.valueType == 0) {
        col[t] = static_cast<float>(splines[c]->GetData(t));
      }
    }
  }
}
