// The table's comma-separated text file: the header form (written and read)
// and the plain form (read only).
#include <cstdio>
#include <cstring>

#include "table/VelqaTimeSeriesDataTable.h"

using vorn::FListT;
using vorn::FString;
using vorn::FStringList;

namespace {

// Walks the cells of one line. The line is copied once and every cell is
// cut out in place, so a long line is read in linear time.
class CellCursor {
 public:
  explicit CellCursor(const FString& line) : copy_(line) {
    rest_ = copy_.text ? copy_.text : empty_;
  }
  CellCursor(const CellCursor&) = delete;
  CellCursor& operator=(const CellCursor&) = delete;

  // True while text is left after the cells taken so far. A separator at the
  // very end leaves nothing, so "a,b," has the cells "a" and "b" here.
  bool HasText() const { return *rest_ != '\0'; }

  // True when at least `n` separators are left: the line then still has
  // n + 1 cells, a trailing empty one included.
  bool HasSeparators(int n) const {
    const char* p = rest_;
    for (int found = 0; found < n; ++found) {
      p = std::strchr(p, ',');
      if (p == nullptr) return false;
      ++p;
    }
    return true;
  }

  // The next cell (up to the next separator or the end of the line).
  const char* Next() {
    char* cell = rest_;
    char* comma = std::strchr(rest_, ',');
    if (comma != nullptr) {
      *comma = '\0';
      rest_ = comma + 1;
    } else {
      rest_ += std::strlen(rest_);
    }
    return cell;
  }

 private:
  FString copy_;
  char empty_[1] = {'\0'};
  char* rest_;
};

// Number of cells after the first: the number of separators of the line.
int CountValueCells(const FString& line) {
  int n = 0;
  for (const char* p = line.text; p != nullptr && *p != '\0'; ++p) {
    if (*p == ',') ++n;
  }
  return n;
}

// The cells of line `line` after the first one.
void ValueCells(const FString& line, FStringList* cells) {
  cells->SplitStr(line, ",");
  cells->Delete(0);
}

}  // namespace

FString VelqaTimeSeriesDataTable::GetTableString(int gridCol,
                                                 int gridLine) const {
  if (gridLine < 0) return FString();
  if (gridCol == 0) {
    switch (gridLine) {
      case 0: return FString("Name");
      case 1: return FString("Col type");
      case 2: return FString("Value type");
      case 3: return FString("Stream");
      default: return *dataNames[gridLine - 4];
    }
  }
  const VelqaTimeSeriesDataTableColInfo& col = *cols[gridCol - 1];
  switch (gridLine) {
    case 0: return col.name;
    case 1: return GetColTypeName(col.colType);
    case 2: return FString(col.valueType != 0 ? "Discrete" : "Numerical");
    case 3: return col.stream >= 0 ? FString(col.stream) : FString();
    default: return FString(col[gridLine - 4]);
  }
}

void VelqaTimeSeriesDataTable::SaveToFile(FString path) {
  FILE* f = path.text ? std::fopen(path.text, "wt") : nullptr;
  if (f == nullptr) return;
  const int lines = dataNames.count + 4;
  for (int line = 0; line < lines; ++line) {
    FString text = GetTableString(0, line);
    for (int c = 1; c <= cols.count; ++c) {
      text += ",";
      text += GetTableString(c, line);
    }
    std::fprintf(f, "%s\n", text.text ? text.text : "");
  }
  std::fclose(f);
  fileName = path;
}

bool VelqaTimeSeriesDataTable::LoadFromFile(FString path, int keepLabels,
                                            int colCountHint,
                                            unsigned maxBytes, int lineStep) {
  Clear();
  FStringList lines;
  if (!lines.LoadFromFile(path.text ? path.text : "", maxBytes)) return false;

  // Header form: names, type names, value types and streams of equal count.
  if (lines.count >= 4) {
    FStringList names;
    FStringList typeCells;
    FStringList valueCells;
    FStringList streamCells;
    ValueCells(*lines[0], &names);
    ValueCells(*lines[1], &typeCells);
    ValueCells(*lines[2], &valueCells);
    ValueCells(*lines[3], &streamCells);
    FListT<int> valueTypes;
    for (int i = 0; i < valueCells.count; ++i) {
      if (*valueCells[i] == "Discrete") {
        valueTypes.Add(1);
      } else if (*valueCells[i] == "Numerical") {
        valueTypes.Add(0);
      }
      // Any other word is dropped; the counts then disagree.
    }
    const int n = names.count;
    if (n >= 1 && typeCells.count == n && valueTypes.count == n &&
        streamCells.count == n) {
      for (int i = 0; i < n; ++i) {
        int type = 4;
        for (int t = 0; t < 5; ++t) {
          if (*typeCells[i] == GetColTypeName(t)) {
            type = t;
            break;
          }
        }
        // The value of file column k goes to table column k below; files
        // whose types do not stand together therefore load with their values
        // in other columns, which this format accepts.
        InsertCol(type, *names[i], streamCells[i]->AsInt(), -1, valueTypes[i]);
      }
      const int colsInFile = cols.count;
      float* values = new float[colsInFile];
      for (int li = 4, row = 0; li < lines.count; ++li, ++row) {
        CellCursor cells(*lines[li]);
        FString label(cells.Next());
        int found = 0;
        while (found < colsInFile && cells.HasText()) {
          values[found++] =
              static_cast<float>(FString::StrFloat(cells.Next()));
        }
        if (found < colsInFile) break;
        IncreaseRow(row);
        *dataNames[row] = label;
        for (int c = 0; c < colsInFile; ++c) (*cols[c])[row] = values[c];
        if (label.text != nullptr && label.text[0] == '*') {
          sequenceStarts.Add(row);
          times[row] = FString::StrFloat(label.text + 1);
        } else {
          times[row] = label.AsFloat();
          if (row == 0) sequenceStarts.Add(0);
        }
      }
      delete[] values;
      UpdateStatistics();
      UpdateStreamInfo();
      return true;
    }
  }

  // Plain form: preamble lines, one line of column names, data lines.
  while (lines.count > 0 && lines[lines.count - 1]->Length() == 0) {
    lines.Delete(lines.count - 1);
  }
  if (lines.count == 0) return false;
  const int n =
      colCountHint != 0 ? colCountHint : CountValueCells(*lines[lines.count - 1]);
  if (lines.count < 2) return false;
  int header = -1;
  for (int li = 0; li < lines.count - 1; ++li) {
    if (CountValueCells(*lines[li]) == n) {
      header = li;
      break;
    }
    headerLines.Add(new FString(*lines[li]));
  }
  if (header < 0) return false;

  FStringList names;
  ValueCells(*lines[header], &names);
  for (int i = 0; i < names.count; ++i) InsertCol(0, *names[i], 0, -1, 0);

  const int step = lineStep < 1 ? 1 : lineStep;
  const int firstData = header + 1;
  int row = 0;
  for (int li = firstData; li < lines.count; ++row) {
    CellCursor cells(*lines[li]);
    if (!cells.HasSeparators(n)) break;
    const char* first = cells.Next();
    IncreaseRow(row);
    if (keepLabels != 0) *dataNames[row] = first;
    times[row] = FString::StrFloat(first);
    if (row == 0) sequenceStarts.Add(row);
    for (int c = 0; c < n; ++c) {
      (*cols[c])[row] = static_cast<float>(FString::StrFloat(cells.Next()));
    }
    if (step > lines.count - li) break;
    li += step;
  }
  UpdateStatistics();
  UpdateStreamInfo();
  return true;
}
