#include "TableOperations.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace kez_table_tool {

namespace {

using vorn::FString;

std::string Text(const FString& s) { return s.text ? s.text : ""; }

std::string ColumnList(const VelqaTimeSeriesDataTable& t) {
  if (t.cols.count == 0) return "the table has no columns";
  std::string list = "columns:";
  for (int c = 0; c < t.cols.count; ++c) {
    list += (c ? ", " : " ") + Text(t.cols[c]->name);
  }
  return list;
}

bool Column(const VelqaTimeSeriesDataTable& t, const Operation& op, int* col,
            std::string* error) {
  *col = FindColumn(t, op.args[0]);
  if (*col < 0) {
    *error = op.text + ": no column '" + op.args[0] + "' (" + ColumnList(t) + ")";
    return false;
  }
  return true;
}

bool Row(const VelqaTimeSeriesDataTable& t, const Operation& op, int* row,
         std::string* error) {
  *row = std::atoi(op.args[0].c_str());  // checked by the command line
  const int rows = t.dataNames.count;
  if (*row >= rows) {
    *error = op.text + ": no row " + op.args[0] +
             (rows == 0 ? std::string(" (the table has no rows)")
                        : " (rows 0 to " + std::to_string(rows - 1) + ")");
    return false;
  }
  return true;
}

void MarkLabel(VelqaTimeSeriesDataTable* t, int row) {
  if (row == 0) return;  // the first row always starts a sequence
  FString& label = *t->dataNames[row];
  if (label.text == nullptr || label.text[0] != '*') label = FString("*") + label;
}

void StartsFromVector(VelqaTimeSeriesDataTable* t, const std::vector<int>& v) {
  t->sequenceStarts.Clear();
  for (int s : v) t->sequenceStarts.Add(s);
}

bool Smooth(const Operation& op, VelqaTimeSeriesDataTable* t,
            std::string* error) {
  const int block = BlockNumber(op.args[0]);
  const VelqaTimeSeriesDataTableColBlockInfo& b = *t->colBlocks[block];
  const std::string type = Text(t->GetColTypeName(block));
  int numerical = 0;
  for (int c = b.first; c < b.first + b.count; ++c) {
    if (t->cols[c]->valueType == 0) ++numerical;
  }
  if (b.count == 0) {
    *error = op.text + ": the table has no \"" + type + "\" columns";
    return false;
  }
  if (numerical == 0) {
    *error = op.text + ": the \"" + type +
             "\" columns are all discrete; only numerical ones are smoothed";
    return false;
  }
  t->Smoothing(block, op.args[1] == "spline" ? 1 : 0);
  return true;
}

bool Upsample(const Operation& op, VelqaTimeSeriesDataTable* t,
              std::string* error) {
  const int factor = std::atoi(op.args[0].c_str());
  const int n = t->dataNames.count;
  if (static_cast<long long>(n) * factor > INT_MAX) {
    *error = op.text + ": " + std::to_string(n) + " rows times " + op.args[0] +
             " is too many rows";
    return false;
  }
  if (n == 0) return true;
  std::vector<double> old(t->times.data, t->times.data + n);
  t->UpSampling(factor);
  // Times follow the values' rule: linear between neighbours, the last
  // source row held.
  const int total = n * factor;
  for (int r = 0; r < total; ++r) {
    const double x = static_cast<double>(r) / factor;
    const int i = static_cast<int>(x);
    const double f = x - i;
    const int j = i < n - 1 ? i + 1 : i;
    t->times[r] = (1.0 - f) * old[i] + f * old[j];
  }
  for (int k = 0; k < t->sequenceStarts.count; ++k) {
    t->sequenceStarts[k] *= factor;
  }
  Relabel(t);
  t->UpdateStatistics();
  return true;
}

void DeleteRow(int row, VelqaTimeSeriesDataTable* t) {
  t->Delete(row);
  const int rows = t->dataNames.count;
  std::vector<int> starts;
  bool handedOn = false;
  for (int k = 0; k < t->sequenceStarts.count; ++k) {
    int s = t->sequenceStarts[k];
    if (s == row) {
      handedOn = true;  // the next row, now at `row`, starts the sequence
    } else if (s > row) {
      --s;
    }
    if (s < rows && (starts.empty() || starts.back() != s)) starts.push_back(s);
  }
  StartsFromVector(t, starts);
  if (handedOn && row < rows) MarkLabel(t, row);
  t->UpdateStatistics();
}

void MarkSequence(int row, VelqaTimeSeriesDataTable* t) {
  std::vector<int> starts(t->sequenceStarts.data,
                          t->sequenceStarts.data + t->sequenceStarts.count);
  if (std::find(starts.begin(), starts.end(), row) == starts.end()) {
    starts.insert(std::upper_bound(starts.begin(), starts.end(), row), row);
    StartsFromVector(t, starts);
  }
  MarkLabel(t, row);
  t->UpdateStatistics();
}

}  // namespace

int FindColumn(const VelqaTimeSeriesDataTable& t, const std::string& text) {
  const int byName = t.SearchCol(text.c_str());
  if (byName >= 0) return byName;
  if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos ||
      text.size() > 9) {
    return -1;
  }
  const int index = std::atoi(text.c_str());
  return index < t.cols.count ? index : -1;
}

std::string TimeText(double time) {
  char buf[64];
  for (int digits = 15; digits <= 17; ++digits) {
    std::snprintf(buf, sizeof buf, "%.*g", digits, time);
    if (std::strtod(buf, nullptr) == time) break;
  }
  return buf;
}

void Relabel(VelqaTimeSeriesDataTable* t) {
  for (int r = 0; r < t->dataNames.count; ++r) {
    *t->dataNames[r] = TimeText(t->times[r]).c_str();
  }
  for (int k = 0; k < t->sequenceStarts.count; ++k) {
    const int s = t->sequenceStarts[k];
    if (s > 0 && s < t->dataNames.count) MarkLabel(t, s);
  }
}

int RowsWithoutTimeLabels(const VelqaTimeSeriesDataTable& t) {
  int missing = 0;
  for (int r = 0; r < t.dataNames.count; ++r) {
    const char* label = t.dataNames[r]->text;
    if (label != nullptr && label[0] == '*') ++label;
    if (FString::StrFloat(label) != t.times[r]) ++missing;
  }
  return missing;
}

bool Apply(const Operation& op, VelqaTimeSeriesDataTable* t,
           std::string* error) {
  int col = -1;
  int row = -1;
  switch (op.kind) {
    case Operation::kSmooth:
      return Smooth(op, t, error);
    case Operation::kDiff:
      if (!Column(*t, op, &col, error)) return false;
      t->Differential(col);
      return true;
    case Operation::kUpsample:
      return Upsample(op, t, error);
    case Operation::kDeleteRow:
      if (!Row(*t, op, &row, error)) return false;
      DeleteRow(row, t);
      return true;
    case Operation::kDeleteCol:
      if (!Column(*t, op, &col, error)) return false;
      t->DeleteCol(col);
      return true;
    case Operation::kMarkSequence:
      if (!Row(*t, op, &row, error)) return false;
      MarkSequence(row, t);
      return true;
    case Operation::kRelabel:
      Relabel(t);
      return true;
  }
  *error = op.text + ": unknown operation";
  return false;
}

}  // namespace kez_table_tool
