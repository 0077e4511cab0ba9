#include "TableLoader.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "foundation/FStringList.h"

namespace kez_table_tool {

namespace {

using vorn::FString;
using vorn::FStringList;

int ValueCells(const FString& line) {
  int n = 0;
  for (const char* p = line.text; p != nullptr && *p != '\0'; ++p) {
    if (*p == ',') ++n;
  }
  return n;
}

// The reader's own test for the header form: the first four lines have the
// same number of cells after the first one, counting on the value type line
// only the cells "Numerical" and "Discrete".
bool IsHeaderForm(const FStringList& lines) {
  if (lines.count < 4) return false;
  const int n = ValueCells(*lines[0]);
  if (n < 1 || ValueCells(*lines[1]) != n || ValueCells(*lines[3]) != n) {
    return false;
  }
  FStringList cells;
  cells.SplitStr(*lines[2], ",");
  int valueTypes = 0;
  for (int i = 1; i < cells.count; ++i) {
    if (*cells[i] == "Numerical" || *cells[i] == "Discrete") ++valueTypes;
  }
  return valueTypes == n;
}

// Lines that can hold data from line `first` on, not counting empty lines at
// the end.
int DataLinesFrom(const FStringList& lines, int first) {
  int last = lines.count;
  while (last > first && lines[last - 1]->Length() == 0) {
    --last;
  }
  return last > first ? last - first : 0;
}

// The first column whose type does not sit inside its own block, or -1.
int MisplacedColumn(const VelqaTimeSeriesDataTable& t) {
  for (int c = 0; c < t.cols.count; ++c) {
    const VelqaTimeSeriesDataTableColBlockInfo& b = *t.colBlocks[t.cols[c]->colType];
    if (c < b.first || c >= b.first + b.count) return c;
  }
  return -1;
}

}  // namespace

bool LoadTable(const CommandLine& line, VelqaTimeSeriesDataTable* table,
               LoadResult* result, std::string* error) {
  const std::string& path = line.input;
  FILE* probe = std::fopen(path.c_str(), "rb");
  if (probe == nullptr) {
    *error = "cannot read " + path + ": " + std::strerror(errno);
    return false;
  }
  std::fclose(probe);

  FStringList lines;
  if (!lines.LoadFromFile(path.c_str(), line.maxBytes)) {
    *error = "cannot read " + path;
    return false;
  }
  result->headerForm = IsHeaderForm(lines);
  if (result->headerForm && line.plain) {
    *error = path + " is in the header form (Name, Col type, Value type and "
             "Stream lines), not the plain form; drop --plain to read it";
    return false;
  }
  if (result->headerForm && !line.plainOption.empty()) {
    result->warnings.push_back(line.plainOption +
                               " has no effect: " + path +
                               " is in the header form");
  }

  if (!table->LoadFromFile(path.c_str(), line.keepLabels ? 1 : 0,
                           line.columns, line.maxBytes, line.lineStep)) {
    if (DataLinesFrom(lines, 0) == 0) {
      *error = path + " holds no lines of data";
    } else if (line.columns != 0) {
      *error = path + ": no line of column names with " +
               std::to_string(line.columns) +
               " cells after the first one, followed by data lines";
    } else {
      *error = path + ": no line of column names with as many cells as the "
               "last line, followed by data lines (see --columns)";
    }
    return false;
  }

  const int rows = table->dataNames.count;
  if (result->headerForm) {
    if (MisplacedColumn(*table) >= 0) {
      *error = path + ": columns of the same type do not stand together, so "
               "their values would land in other columns; keep the columns "
               "of each type side by side";
      return false;
    }
    const int available = DataLinesFrom(lines, 4);
    if (rows < available) {
      result->warnings.push_back(
          "reading stopped at line " + std::to_string(rows + 5) + " of " +
          path + " (fewer than " + std::to_string(table->cols.count) +
          " values); the " + std::to_string(rows) + " rows before it were kept");
    }
  } else {
    // Every line before the column-name line went to the preamble.
    const int first = table->headerLines.count + 1;
    const int available = DataLinesFrom(lines, first);
    const int expected = (available + line.lineStep - 1) / line.lineStep;
    if (rows < expected) {
      const long long at =
          static_cast<long long>(first) + static_cast<long long>(rows) * line.lineStep + 1;
      result->warnings.push_back(
          "reading stopped at line " + std::to_string(at) + " of " + path +
          " (fewer than " + std::to_string(table->cols.count + 1) +
          " cells); the " + std::to_string(rows) + " rows before it were kept");
    }
  }
  return true;
}

}  // namespace kez_table_tool
