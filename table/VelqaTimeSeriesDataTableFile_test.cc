#include <cstdio>
#include <cstring>
#include <string>

#include "gtest/gtest.h"
#include "table/VelqaTimeSeriesDataTable.h"
#include "table/TableTestUtil.h"

namespace {

using table_test::AddColumn;
using table_test::ReadText;
using table_test::Str;
using table_test::TempPath;
using table_test::Values;
using table_test::WriteText;

typedef VelqaTimeSeriesDataTable Table;

const char kExample[] =
    "Name,a,b,s\n"
    "Col type,Observation,Observation,Observation\n"
    "Value type,Numerical,Numerical,Discrete\n"
    "Stream,0,1,0\n"
    "0.5,1.25,3,0\n"
    "*0.75,1.5,2.5,1\n";

const char kHeader2[] =
    "Name,a,b\nCol type,Observation,Observation\n"
    "Value type,Numerical,Numerical\nStream,0,0\n";

bool Load(Table* t, const std::string& text, int keepLabels = 1,
          int colCountHint = 0, unsigned maxBytes = 0, int lineStep = 1) {
  const std::string path = TempPath("load.csv");
  WriteText(path, text);
  const bool ok = t->LoadFromFile(path.c_str(), keepLabels, colCountHint,
                                  maxBytes, lineStep);
  std::remove(path.c_str());
  return ok;
}

std::string Save(Table* t) {
  const std::string path = TempPath("save.csv");
  t->SaveToFile(path.c_str());
  const std::string text = ReadText(path);
  std::remove(path.c_str());
  return text;
}

TEST(TableFile, HeaderFormExampleLoadsAndSavesUnchanged) {
  Table t;
  ASSERT_TRUE(Load(&t, kExample));
  ASSERT_EQ(3, t.cols.count);
  EXPECT_EQ(1, t.cols[2]->valueType);
  EXPECT_EQ(1, t.cols[1]->stream);
  EXPECT_EQ("*0.75", Str(*t.dataNames[1]));
  EXPECT_EQ(0.5, t.times[0]);
  EXPECT_EQ(0.75, t.times[1]);
  ASSERT_EQ(2, t.sequenceStarts.count);
  EXPECT_EQ(1, t.sequenceStarts[1]);
  EXPECT_EQ(1, t.rowSequence[1]);
  EXPECT_EQ("1.25 1.5", Values(t, 0));
  EXPECT_EQ(2, t.streams.count);
  EXPECT_EQ(1.375, t.cols[0]->mean);
  EXPECT_EQ("Discrete", Str(t.GetTableString(3, 2)));
  EXPECT_EQ("", Str(t.GetTableString(1, -1)));
  EXPECT_EQ(kExample, Save(&t));
}

TEST(TableFile, SaveThenLoadKeepsEverythingTheFormatCarries) {
  Table t;
  AddColumn(&t, "level", {0.1f, 1.0f / 3, -0.0f, 1e-20f, 3.4e38f, 7});
  t.InsertCol(0, "state", 0, -1, 1);
  t.InsertCol(0, "temp", 1, -1, 0);
  t.InsertCol(1, "phase", 2, -1, 1);
  t.InsertCol(2, "predicted", 0, -1, 0);
  t.InsertCol(4, "other", 3, -1, 0);
  for (int c = 1; c < 6; ++c) {
    for (int r = 0; r < 6; ++r) t.SetValue(c, r, c * 10.0f + r * 0.1f);
  }
  const char* labels[] = {"100", "160.5", "*220", "280", "*1e3", "1060"};
  for (int r = 0; r < 6; ++r) t.SetDataName(r, labels[r]);

  const std::string path = TempPath("roundtrip.csv");
  t.SaveToFile(path.c_str());
  EXPECT_EQ(path, Str(t.fileName));
  Table u;
  ASSERT_TRUE(u.LoadFromFile(path.c_str(), 0, 0, 0, 1));
  ASSERT_EQ(6, u.cols.count);
  for (int c = 0; c < 6; ++c) {
    const VelqaTimeSeriesDataTableColInfo& a = *t.cols[c];
    const VelqaTimeSeriesDataTableColInfo& b = *u.cols[c];
    EXPECT_EQ(Str(a.name), Str(b.name));
    EXPECT_EQ(a.colType, b.colType);
    EXPECT_EQ(a.valueType, b.valueType);
    EXPECT_EQ(a.stream, b.stream);
    ASSERT_EQ(6, b.count);
    EXPECT_EQ(0, std::memcmp(a.data, b.data, 6 * sizeof(float))) << c;
  }
  const double times[] = {100, 160.5, 220, 280, 1000, 1060};
  for (int r = 0; r < 6; ++r) {
    EXPECT_EQ(labels[r], Str(*u.dataNames[r]));
    EXPECT_EQ(times[r], u.times[r]);
  }
  ASSERT_EQ(3, u.sequenceStarts.count);
  EXPECT_EQ(2, u.sequenceStarts[1]);
  EXPECT_EQ(4, u.sequenceStarts[2]);
  EXPECT_EQ(ReadText(path), Save(&u));
  std::remove(path.c_str());
}

TEST(TableFile, WhatTheFormatDoesNotCarry) {
  // A negative stream is written as an empty cell and read back as 0; times
  // come from labels, so an empty label reads back as time 0; the preamble
  // of a plain file is not written.
  Table t;
  t.InsertCol(0, "a", -1, -1, 0);
  t.SetValue(0, 0, 1);
  t.SetTime(0, 42.0);
  t.headerLines.Add(new vorn::FString("# preamble"));
  const std::string text = Save(&t);
  EXPECT_EQ("Name,a\nCol type,Observation\nValue type,Numerical\nStream,\n,1\n",
            text);
  Table u;
  ASSERT_TRUE(Load(&u, text));
  EXPECT_EQ(0, u.cols[0]->stream);
  EXPECT_EQ(0.0, u.times[0]);

  t.fileName = "before.csv";
  t.SaveToFile("/nonexistent-dir/x/table.csv");
  EXPECT_EQ("before.csv", Str(t.fileName));
}

TEST(TableFile, HeaderFormEdges) {
  Table t;
  // Header lines only: columns, no rows; unknown type names become Unknown.
  ASSERT_TRUE(Load(&t, "Name,a,b\nCol type,State Index,Bogus\n"
                       "Value type,Discrete,Numerical\nStream,,2\n"));
  ASSERT_EQ(2, t.cols.count);
  EXPECT_EQ(4, t.cols[1]->colType);
  EXPECT_EQ(0, t.dataNames.count);

  // A short line ends the reading; extra cells are ignored; a trailing
  // separator makes no cell of its own.
  ASSERT_TRUE(Load(&t, std::string(kHeader2) +
                           "0,1,2,99\n1,3,4\n2,5,6\n3,7\n4,9,10\n"));
  EXPECT_EQ("1 3 5", Values(t, 0));
  ASSERT_TRUE(Load(&t, std::string(kHeader2) + "0,1,2\n1,3,\n"));
  EXPECT_EQ(1, t.dataNames.count);

  // "numerical" in lower case is no value type: the plain form is used,
  // with the first one-value line as the names.
  ASSERT_TRUE(Load(&t, "Name,a\nCol type,Observation\nValue type,numerical\n"
                       "Stream,0\n1,5\n"));
  EXPECT_EQ("a", Str(t.cols[0]->name));
  ASSERT_EQ(4, t.dataNames.count);
  EXPECT_EQ("Col type", Str(*t.dataNames[0]));
  EXPECT_EQ("0 0 0 5", Values(t, 0));
}

TEST(TableFile, PlainFormPreambleNamesAndTimes) {
  Table t;
  ASSERT_TRUE(Load(&t, "# phone log\n# exported\nt,x,y\n0,1,2\n1,3,4\n", 0));
  ASSERT_EQ(2, t.headerLines.count);
  EXPECT_EQ("# exported", Str(*t.headerLines[1]));
  ASSERT_EQ(2, t.cols.count);
  EXPECT_EQ("y", Str(t.cols[1]->name));
  EXPECT_EQ(0, t.cols[1]->colType + t.cols[1]->valueType + t.cols[1]->stream);
  EXPECT_EQ(1.0, t.times[1]);
  EXPECT_EQ(nullptr, t.dataNames[0]->text);
  EXPECT_EQ("2 4", Values(t, 1));
  ASSERT_EQ(1, t.sequenceStarts.count);

  // Kept labels; "*" means nothing here; empty lines at the end go.
  ASSERT_TRUE(Load(&t, "t,x\n10,1\n*20,2\n\n\n", 1));
  EXPECT_EQ("*20", Str(*t.dataNames[1]));
  EXPECT_EQ(10.0, t.times[0]);
  EXPECT_EQ(0.0, t.times[1]);
  EXPECT_EQ(1, t.sequenceStarts.count);
}

TEST(TableFile, PlainFormReadingOptions) {
  std::string ten = "t,v\n";
  for (int i = 0; i < 10; ++i) ten += std::to_string(i) + "," + std::to_string(i * 10) + "\n";
  Table t;
  ASSERT_TRUE(Load(&t, ten, 0, 0, 0, 3));
  EXPECT_EQ("0 30 60 90", Values(t, 0));
  ASSERT_TRUE(Load(&t, ten, 0, 0, 0, 0));  // below 1 counts as 1
  EXPECT_EQ(10, t.dataNames.count);

  // The value count comes from the last line unless hinted.
  const char extra[] = "t,a,b\n0,1,2\n1,3,4,5\n";
  EXPECT_FALSE(Load(&t, extra));
  EXPECT_EQ(2, t.headerLines.count);
  ASSERT_TRUE(Load(&t, extra, 0, 2));
  EXPECT_EQ("2 4", Values(t, 1));

  // 15 bytes cut the third line to "1,3", which ends the reading.
  const char cut[] = "t,a,b\n0,1,2\n1,3,4\n2,5,6\n";
  ASSERT_TRUE(Load(&t, cut, 0, 2, 15));
  EXPECT_EQ("1", Values(t, 0));
  EXPECT_FALSE(Load(&t, cut, 0, 0, 15));
}

TEST(TableFile, FilesThatDoNotMakeATable) {
  Table t;
  EXPECT_FALSE(t.LoadFromFile(TempPath("missing.csv").c_str(), 1, 0, 0, 1));
  EXPECT_FALSE(t.LoadFromFile("", 1, 0, 0, 1));
  EXPECT_FALSE(Load(&t, ""));
  EXPECT_FALSE(Load(&t, "\n\n\n"));
  EXPECT_FALSE(Load(&t, "t,a,b\n"));
  EXPECT_FALSE(Load(&t, "t,a\n0,1\n", 1, -1));
  AddColumn(&t, "z", {1});
  EXPECT_FALSE(Load(&t, "x"));
  EXPECT_EQ(0, t.cols.count);  // cleared all the same
}

TEST(TableFile, RecordedBatteryLogLoadsInThePlainForm) {
  const std::string path =
      std::string(KEZ_SOURCE_DIR) + "/../shared/data/android-aware-2021-02.csv";
  if (ReadText(path).empty()) GTEST_SKIP() << "no recorded log at " << path;
  Table t;
  ASSERT_TRUE(t.LoadFromFile(path.c_str(), 1, 0, 0, 1));
  ASSERT_EQ(4, t.cols.count);
  EXPECT_EQ("level_percent", Str(t.cols[0]->name));
  EXPECT_EQ(4460, t.dataNames.count);
  EXPECT_EQ(1612130332550.0, t.times[0]);
  EXPECT_EQ(45.0f, (*t.cols[0])[0]);

  const std::string out = TempPath("android.csv");
  t.SaveToFile(out.c_str());
  Table u;
  ASSERT_TRUE(u.LoadFromFile(out.c_str(), 0, 0, 0, 1));
  std::remove(out.c_str());
  EXPECT_EQ(t.times[4459], u.times[4459]);
  EXPECT_EQ(Values(t, 0), Values(u, 0));
}

}  // namespace
