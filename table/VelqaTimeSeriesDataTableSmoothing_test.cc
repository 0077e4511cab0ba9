#include <cmath>
#include <cstring>

#include "gtest/gtest.h"
#include "table/VelqaTimeSeriesDataTable.h"
#include "table/TableTestUtil.h"

namespace {

using table_test::AddColumn;
using table_test::Values;

typedef VelqaTimeSeriesDataTable Table;

// A table with one column and the given sequence starts.
void Make(Table* t, std::initializer_list<float> values,
          std::initializer_list<int> starts = {0}) {
  AddColumn(t, "v", values);
  for (int s : starts) t->sequenceStarts.Add(s);
}

// Weight of a run as the kernel sees row t, from the bell curve itself.
double Weight(double centre, double length, double t) {
  const double z = (centre - t) / length;
  return std::exp(-3.14159265358979 / 2 * z * z) / length;
}

TEST(Smoothing, KernelSmoothsAStaircase) {
  Table t;
  Make(&t, {0, 0, 0, 0, 4, 4, 4, 4});
  t.Smoothing(0, 0);
  const VelqaTimeSeriesDataTableColInfo& v = *t.cols[0];
  for (int r = 0; r < 8; ++r) {
    const double low = Weight(1.5, 4, r);
    const double high = Weight(5.5, 4, r);
    EXPECT_NEAR(4 * high / (low + high), v[r], 1e-5) << r;
  }
  EXPECT_GT(v[0], 0.0f);
  EXPECT_NEAR(4.0, v[3] + v[4], 1e-6);  // symmetric about the step

  Table single;  // every row its own run: still smoothed
  Make(&single, {0, 1, 0, 1, 0});
  single.Smoothing(0, 0);
  EXPECT_GT((*single.cols[0])[0], 0.0f);
  EXPECT_LT((*single.cols[0])[1], 1.0f);
}

TEST(Smoothing, SequencesAreSmoothedIndependently) {
  Table t;
  Make(&t, {0, 0, 0, 0, 4, 4, 4, 4, 10, 10, 10, 10, 10, 7}, {0, 8, 13});
  t.Smoothing(0, 0);
  Table alone;
  Make(&alone, {0, 0, 0, 0, 4, 4, 4, 4});
  alone.Smoothing(0, 0);
  EXPECT_EQ(0, std::memcmp(alone.cols[0]->data, t.cols[0]->data, 8 * 4));
  for (int r = 8; r < 13; ++r) EXPECT_EQ(10.0f, (*t.cols[0])[r]) << r;
  EXPECT_EQ(7.0f, (*t.cols[0])[13]);  // a one-row sequence keeps its value
}

TEST(Smoothing, SplineThroughTheRunCentres) {
  Table t;  // knots (1.5, 0), (5.5, 4): a line, flat outside
  Make(&t, {0, 0, 0, 0, 4, 4, 4, 4});
  t.Smoothing(0, 1);
  EXPECT_EQ("0 0 0.5 1.5 2.5 3.5 4 4", Values(t, 0));

  Table u;  // knots (0.5, 0), (2.5, 1), (4.5, 0), solved by hand
  Make(&u, {0, 0, 1, 1, 0, 0});
  u.Smoothing(0, 1);
  EXPECT_EQ("0 0.3671875 0.9140625 0.9140625 0.3671875 0", Values(u, 0));

  // One run gives one knot, which cannot be fitted: an unfitted spline
  // reads 0, where the kernel keeps the value.
  Table flat;
  Make(&flat, {3, 3, 3});
  flat.Smoothing(0, 1);
  EXPECT_EQ("0 0 0", Values(flat, 0));
  Table kept;
  Make(&kept, {3, 3, 3});
  kept.Smoothing(0, 0);
  EXPECT_EQ("3 3 3", Values(kept, 0));
}

TEST(Smoothing, DiscreteColumnsSplitRunsButKeepTheirValues) {
  Table plain;
  Make(&plain, {0, 0, 0, 0, 4, 4, 4, 4});
  plain.Smoothing(0, 1);
  Table t;
  Make(&t, {0, 0, 0, 0, 4, 4, 4, 4});
  const int d = t.InsertCol(0, "state", 0, -1, 1);
  for (int r = 2; r < 8; ++r) t.SetValue(d, r, 1);
  t.Smoothing(0, 1);
  EXPECT_EQ("0 0 1 1 1 1 1 1", Values(t, d));
  EXPECT_NE(Values(plain, 0), Values(t, 0));  // a knot more, at 0.5
}

TEST(Smoothing, CasesThatChangeNothing) {
  Table t;
  Make(&t, {0, 0, 4, 4}, {});
  t.Smoothing(0, 0);  // no sequences
  t.sequenceStarts.Add(0);
  t.Smoothing(0, 2);
  t.Smoothing(0, -1);
  t.Smoothing(5, 0);  // an empty block
  t.Smoothing(5, 1);
  const int s = t.InsertCol(1, "s", -1, -1, 0);
  t.SetValue(s, 2, 9);
  t.Smoothing(1, 0);  // another block
  EXPECT_EQ("0 0 4 4", Values(t, 0));
  EXPECT_NE("0 0 9 0", Values(t, s));
}

}  // namespace
