// Helpers shared by the table tests: scratch files and small tables.
#ifndef KEZ_TABLE_TABLE_TEST_UTIL_H_
#define KEZ_TABLE_TABLE_TEST_UTIL_H_


#include <cstdio>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <string>

#include "gtest/gtest.h"
#include "support/ScopedTempDir.h"
#include "table/VelqaTimeSeriesDataTable.h"

namespace table_test {

// A path in a fresh directory of the test process, removed at its exit.
inline std::string TempPath(const std::string& name) {
  static const kez_testing::ScopedTempDir dir;
  return dir.File(name);
}

inline void WriteText(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

inline std::string ReadText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

inline std::string Str(const vorn::FString& s) { return s.text ? s.text : ""; }

// Appends a numerical observation column in stream 0 holding `values`,
// growing the table as needed; returns its index.
inline int AddColumn(VelqaTimeSeriesDataTable* t, const char* name,
                     std::initializer_list<float> values) {
  const int col = t->InsertCol(0, name, 0, -1, 0);
  int row = 0;
  for (float v : values) t->SetValue(col, row++, v);
  return col;
}

// The values of a column, "%.9g" each, separated by spaces.
inline std::string Values(const VelqaTimeSeriesDataTable& t, int col) {
  std::string s;
  const VelqaTimeSeriesDataTableColInfo& c = *t.cols[col];
  for (int i = 0; i < c.count; ++i) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%s%.9g", i ? " " : "", c[i]);
    s += buf;
  }
  return s;
}

}  // namespace table_test

#endif  // KEZ_TABLE_TABLE_TEST_UTIL_H_
