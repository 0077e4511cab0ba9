#include "table/VelqaTimeSeriesDataTable.h"

#include <cmath>

#include "gtest/gtest.h"
#include "table/TableTestUtil.h"

namespace {

using table_test::AddColumn;
using table_test::Str;

typedef VelqaTimeSeriesDataTable Table;

std::string Names(const Table& t) {
  std::string s;
  for (int c = 0; c < t.cols.count; ++c) s += (c ? " " : "") + Str(t.cols[c]->name);
  return s;
}

TEST(TableModel, ClearLeavesEightEmptyBlocks) {
  Table t;
  AddColumn(&t, "a", {1, 2});
  t.sequenceStarts.Add(0);
  t.markedCol = 0;
  t.fileName = "x.csv";
  t.Clear();
  EXPECT_EQ(0, t.cols.count + t.colCount + t.dataNames.count + t.times.count +
                   t.sequenceStarts.count + t.streams.count);
  EXPECT_EQ(-1, t.markedCol);
  EXPECT_EQ(nullptr, t.fileName.text);
  ASSERT_EQ(8, t.colBlocks.count);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(0, t.colBlocks[i]->count);
}

TEST(TableModel, ColumnsGoToTheEndOfTheirBlock) {
  Table t;
  EXPECT_EQ(0, t.InsertCol(1, "s", -1, -1, 1));
  EXPECT_EQ(1, t.InsertCol(0, "a", 0, -1, 0));  // empty block: after all
  EXPECT_EQ(2, t.InsertCol(3, "r", -1, -1, 0));
  EXPECT_EQ(2, t.InsertCol(0, "b", 0, -1, 0));  // end of block 0
  EXPECT_EQ("s a b r", Names(t));
  EXPECT_EQ(2, t.colBlocks[0]->count);
  EXPECT_EQ(4, t.colCount);
}

TEST(TableModel, LaterBlocksTakeTheInsertedBlocksFirstPlusOne) {
  // Intended layout of this format version: the later block moves to the
  // observation block's first + 1, not to its own first + 1.
  Table t;
  t.InsertCol(0, "a", 0, -1, 0);
  t.InsertCol(1, "s", -1, -1, 1);
  t.markedCol = 1;
  t.InsertCol(0, "b", 0, -1, 0);
  EXPECT_EQ(1, t.colBlocks[1]->first);
  t.InsertCol(0, "c", 0, -1, 0);
  EXPECT_EQ(1, t.colBlocks[1]->first);
  EXPECT_EQ("a b c s", Names(t));
  EXPECT_EQ(3, t.markedCol);  // still "s"
}

TEST(TableModel, RowsGrowWithDefaults) {
  Table t;
  AddColumn(&t, "a", {1, 2, 3, 4, 5});
  const int d = t.InsertCol(0, "d", 3, 7, 1);
  ASSERT_EQ(5, t.cols[d]->count);
  for (int r = 0; r < 5; ++r) EXPECT_EQ(0.0f, (*t.cols[d])[r]);
  t.SetDataName(0, "r0");
  t.SetValue(0, 9, 7.5f);
  ASSERT_EQ(10, t.dataNames.count);
  EXPECT_EQ(10, t.times.count);
  EXPECT_EQ(10, t.rowSequence.count);
  for (int r = 5; r < 10; ++r) {
    EXPECT_EQ(nullptr, t.dataNames[r]->text);
    EXPECT_EQ(0.0, t.times[r]);
    EXPECT_EQ(0.0f, (*t.cols[d])[r]);
  }
  EXPECT_EQ(7.5f, (*t.cols[0])[9]);
  EXPECT_EQ(0, t.sequenceStarts.count);
  t.IncreaseRow(4);  // never shrinks
  EXPECT_EQ(10, t.dataNames.count);
  EXPECT_EQ(0, t.SearchCol("a"));
  EXPECT_EQ(-1, t.SearchCol("A"));
}

TEST(TableModel, StreamsAndDiscreteColumns) {
  Table t;
  t.InsertCol(0, "a", 0, -1, 0);
  t.InsertCol(0, "b", 0, -1, 0);
  t.InsertCol(0, "c", 1, -1, 0);
  ASSERT_EQ(2, t.streams.count);
  EXPECT_EQ(2, t.streams[0]->count);
  EXPECT_EQ(1, (*t.streams[0])[1]);
  EXPECT_EQ(2, (*t.streams[1])[0]);
  EXPECT_EQ(1, t.cols[1]->indexInStream);
  EXPECT_EQ(0, t.cols[2]->indexInStream);
  ASSERT_EQ(2, t.streamFactors.count);
  EXPECT_EQ(1.0, t.streamFactors[1]);

  t.streamFactors[1] = 3.0;  // kept while its stream stays
  t.InsertCol(0, "d", 0, -1, 1);
  t.InsertCol(2, "e", 0, -1, 0);  // other blocks take no part
  EXPECT_EQ(3.0, t.streamFactors[1]);
  ASSERT_EQ(1, t.discreteCols.count);
  EXPECT_EQ(3, t.discreteCols[0]);
  EXPECT_EQ(1, t.discreteColFactors.count);
  EXPECT_EQ(-1, t.cols[4]->indexInStream);
  t.DeleteCol(2);
  EXPECT_EQ(1, t.streamFactors.count);
}

TEST(TableModel, UnexpectedStreamNumbersStayInsideTheStreamList) {
  Table t;
  t.InsertCol(0, "a", 0, -1, 0);
  t.InsertCol(0, "b", 5, -1, 0);   // skips ahead: lands in the new stream
  t.InsertCol(0, "c", -1, -1, 0);  // no stream
  t.InsertCol(0, "d", 1, -1, 0);
  ASSERT_EQ(2, t.streams.count);
  ASSERT_EQ(2, t.streams[1]->count);
  EXPECT_EQ(3, (*t.streams[1])[1]);
  EXPECT_EQ(-1, t.cols[2]->indexInStream);
}

TEST(TableModel, DeleteColumnsAndBlocks) {
  Table t;
  AddColumn(&t, "a", {1, 2});
  t.InsertCol(0, "b", 0, -1, 0);
  t.InsertCol(1, "s", -1, -1, 1);
  t.InsertCol(2, "e", -1, -1, 0);
  t.markedCol = 3;
  t.DeleteCol(0);
  EXPECT_EQ("b s e", Names(t));
  EXPECT_EQ(3, t.colCount);
  EXPECT_EQ(1, t.colBlocks[0]->count);
  EXPECT_EQ(1, t.colBlocks[1]->first);  // each block by its own first
  EXPECT_EQ(2, t.colBlocks[2]->first);
  EXPECT_EQ(2, t.markedCol);
  t.DeleteCol(2);
  EXPECT_EQ(-1, t.markedCol);
  t.InsertCol(1, "s2", -1, -1, 1);
  t.DeleteColBlock(1);
  EXPECT_EQ("b", Names(t));
  EXPECT_EQ(0, t.colBlocks[1]->count);
  EXPECT_EQ(2, t.cols[0]->count);
}

TEST(ColumnStatistics, RangesMeanAndDeviation) {
  VelqaTimeSeriesDataTableColInfo empty;
  empty.UpdateStatistics();
  EXPECT_EQ(0.0f, empty.min);
  EXPECT_EQ(1.0f, empty.max);
  EXPECT_EQ(0.5, empty.mean);
  EXPECT_EQ(1.0, empty.stdev);

  VelqaTimeSeriesDataTableColInfo constant;
  for (int i = 0; i < 4; ++i) constant.Add(3.0f);
  constant.UpdateStatistics();
  EXPECT_EQ(3.0f, constant.min);
  EXPECT_EQ(4.0f, constant.max);

  VelqaTimeSeriesDataTableColInfo discrete;
  discrete.valueType = 1;
  discrete.Add(2.0f);
  discrete.Add(3.0f);
  discrete.UpdateStatistics();
  EXPECT_EQ(-0.49999899f, discrete.min);  // always covers 0..1
  EXPECT_EQ(3.0f + 0.49999899f, discrete.max);

  VelqaTimeSeriesDataTableColInfo c;
  for (float v : {1.0f, 2.0f, 3.0f, 4.0f, 5.0f}) c.Add(v);
  c.UpdateStatistics();
  EXPECT_EQ(static_cast<float>(5.0 + 4.0 * 0.1), c.max);
  EXPECT_EQ(static_cast<float>(1.0 - 4.0 * 0.1), c.min);
  EXPECT_EQ(3.0, c.mean);
  EXPECT_DOUBLE_EQ(std::sqrt(2.0), c.stdev);
  // Kept as it is: the sum starts from the previous mean.
  c.UpdateStatistics();
  EXPECT_DOUBLE_EQ(3.6, c.mean);
  VelqaTimeSeriesDataTableColInfo copy(c);
  EXPECT_EQ(5, copy.count);
  EXPECT_EQ(c.mean, copy.mean);
}

TEST(TableStatistics, SequencesAndTheExpectationOutputRange) {
  Table t;
  AddColumn(&t, "a", {0, 10, 0, 0, 0, 0, 0});
  AddColumn(&t, "b", {100, 200});
  const int e1 = t.InsertCol(2, "ea", -1, -1, 0);
  const int e2 = t.InsertCol(2, "eb", -1, -1, 0);
  t.SetValue(e2, 1, -7.0f);
  t.InsertCol(1, "s", -1, -1, 1);
  t.sequenceStarts.Add(2);
  t.sequenceStarts.Add(5);
  t.UpdateStatistics();
  const int expected[] = {-1, -1, 0, 0, 0, 1, 1};
  for (int r = 0; r < 7; ++r) EXPECT_EQ(expected[r], t.rowSequence[r]) << r;
  // The k-th output shows the k-th column's range.
  EXPECT_EQ(t.cols[0]->max, t.cols[e1]->max);
  EXPECT_EQ(t.cols[0]->min, t.cols[e1]->min);
  EXPECT_EQ(t.cols[1]->max, t.cols[e2]->max);
  EXPECT_EQ(-1.0, t.cols[e2]->mean);
}

TEST(TableModel, DummyDataAndTypeNames) {
  Table t;
  t.SetDummyData();
  EXPECT_EQ("X Y", Names(t));
  EXPECT_EQ(0, t.dataNames.count);
  EXPECT_EQ(2, t.streams.count);
  EXPECT_EQ(0.5, t.cols[0]->mean);
  const char* names[] = {"Observation", "State Index", "Expectation Output",
                         "Recognized Index", "Unknown"};
  for (int i = 0; i < 5; ++i) EXPECT_EQ(names[i], Str(t.GetColTypeName(i)));
}

}  // namespace
