#include "gtest/gtest.h"
#include "table/VelqaTimeSeriesDataTable.h"
#include "table/TableTestUtil.h"

namespace {

using table_test::AddColumn;
using table_test::Str;
using table_test::Values;

typedef VelqaTimeSeriesDataTable Table;

TEST(Differential, WithinEachSequence) {
  Table t;
  AddColumn(&t, "v", {1, 3, 6});
  AddColumn(&t, "w", {5, 5, 5});
  t.sequenceStarts.Add(0);
  t.Differential(0);
  EXPECT_EQ("0 2 3", Values(t, 0));
  EXPECT_EQ("5 5 5", Values(t, 1));
  EXPECT_EQ(static_cast<float>(3 + 0.3), t.cols[0]->max);  // rebuilt

  Table u;  // a one-row sequence becomes a single 0
  AddColumn(&u, "v", {1, 3, 10, 12, 20});
  for (int s : {0, 2, 4}) u.sequenceStarts.Add(s);
  u.Differential(0);
  EXPECT_EQ("0 2 0 2 0", Values(u, 0));
  EXPECT_EQ(2, u.rowSequence[4]);
}

TEST(UpSampling, InterpolatesAndHoldsTheLastRow) {
  Table t;
  AddColumn(&t, "v", {0, 10});
  AddColumn(&t, "w", {4, 2});
  t.UpSampling(2);
  EXPECT_EQ("0 5 10 10", Values(t, 0));
  EXPECT_EQ("4 3 2 2", Values(t, 1));

  Table u;
  AddColumn(&u, "v", {0, 10, 40});
  u.UpSampling(3);
  const float expected[] = {0, 10.0f / 3, 20.0f / 3, 10, 20, 30, 40, 40, 40};
  ASSERT_EQ(9, u.cols[0]->count);
  for (int r = 0; r < 9; ++r) EXPECT_FLOAT_EQ(expected[r], (*u.cols[0])[r]);

  Table same;
  AddColumn(&same, "v", {1.5f, -2, 7});
  same.UpSampling(1);
  same.UpSampling(0);
  same.UpSampling(-3);
  EXPECT_EQ("1.5 -2 7", Values(same, 0));
}

TEST(UpSampling, OnlyValuesMove) {
  // Labels, times and sequence starts stay on the first rows; added rows
  // get the defaults; statistics are left as they were.
  Table t;
  AddColumn(&t, "v", {0, 6});
  t.SetDataName(1, "*b");
  t.SetTime(1, 200);
  t.sequenceStarts.Add(0);
  t.sequenceStarts.Add(1);
  t.UpdateStatistics();
  const float max = t.cols[0]->max;
  t.UpSampling(3);
  ASSERT_EQ(6, t.dataNames.count);
  EXPECT_EQ("0 2 4 6 6 6", Values(t, 0));
  EXPECT_EQ("*b", Str(*t.dataNames[1]));
  EXPECT_EQ(200.0, t.times[1]);
  for (int r = 2; r < 6; ++r) {
    EXPECT_EQ(nullptr, t.dataNames[r]->text);
    EXPECT_EQ(0.0, t.times[r]);
  }
  EXPECT_EQ(1, t.sequenceStarts[1]);
  EXPECT_EQ(max, t.cols[0]->max);
}

}  // namespace
