#include "gtest/gtest.h"
#include "table/VelqaTimeSeriesDataTable.h"
#include "table/TableTestUtil.h"

namespace {

using table_test::AddColumn;
using table_test::Str;
using table_test::Values;

typedef VelqaTimeSeriesDataTable Table;

TEST(RowDeletion, RowsMoveUpWithTheirLabelsAndTimes) {
  Table t;
  AddColumn(&t, "a", {1, 2, 3});
  AddColumn(&t, "b", {4, 5, 6});
  for (int r = 0; r < 3; ++r) {
    t.SetDataName(r, vorn::FString(r));
    t.SetTime(r, r * 10.0);
  }
  t.Delete(0);
  EXPECT_EQ("2 3", Values(t, 0));
  EXPECT_EQ("5 6", Values(t, 1));
  EXPECT_EQ("1", Str(*t.dataNames[0]));
  EXPECT_EQ(20.0, t.times[1]);
}

TEST(RowDeletion, DerivedRowDataIsLeftAlone) {
  Table t;
  AddColumn(&t, "a", {0, 1, 2, 3, 4, 5, 6, 7});
  t.sequenceStarts.Add(0);
  t.sequenceStarts.Add(5);
  t.UpdateStatistics();
  const float max = t.cols[0]->max;
  t.Delete(7);
  EXPECT_EQ(7, t.dataNames.count);
  EXPECT_EQ(7, t.times.count);
  EXPECT_EQ(8, t.rowSequence.count);
  t.Delete(2);
  EXPECT_EQ("0 1 3 4 5 6", Values(t, 0));
  EXPECT_EQ(5, t.sequenceStarts[1]);  // now the row that was row 6
  EXPECT_EQ(max, t.cols[0]->max);
  // The caller repairs the starts and rebuilds the rest.
  t.sequenceStarts[1] = 4;
  t.UpdateStatistics();
  EXPECT_EQ(6, t.rowSequence.count);
  EXPECT_EQ(1, t.rowSequence[4]);
}

TEST(RowDeletion, RowsLeaveTheFrontWithoutMovingTheRest) {
  Table t;
  const int col = t.InsertCol(0, "a", 0, -1, 0);
  for (int r = 0; r < 1000; ++r) t.SetValue(col, r, static_cast<float>(r));
  const VelqaTimeSeriesDataTableColInfo& c = *t.cols[col];
  float* const block = c.block;
  float* const start = c.data;
  for (int k = 1; k <= 700; ++k) {
    t.Delete(0);
    ASSERT_EQ(start + k, c.data) << k;
  }
  EXPECT_EQ(block, c.block);
  EXPECT_EQ(700.0f, c[0]);
  EXPECT_EQ(999.0f, c[299]);
}

}  // namespace
