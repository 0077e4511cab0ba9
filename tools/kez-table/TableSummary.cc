#include "TableSummary.h"

#include <cmath>
#include <string>

#include "TableOperations.h"

namespace kez_table_tool {

namespace {

std::string Text(const vorn::FString& s) { return s.text ? s.text : ""; }

std::string Number(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.6g", v);
  return buf;
}

std::string Sequences(const VelqaTimeSeriesDataTable& t) {
  const int n = t.sequenceStarts.count;
  std::string s = std::to_string(n);
  if (n == 0) return s;
  s += n == 1 ? ", starting at row " : ", starting at rows ";
  const int shown = n < 10 ? n : 10;
  for (int k = 0; k < shown; ++k) {
    s += (k ? ", " : "") + std::to_string(t.sequenceStarts[k]);
  }
  if (shown < n) s += ", ...";
  return s;
}

}  // namespace

void PrintSummary(const VelqaTimeSeriesDataTable& t, const std::string& source,
                  bool headerForm, FILE* out) {
  const int rows = t.dataNames.count;
  std::fprintf(out, "file       %s (%s form)\n", source.c_str(),
               headerForm ? "header" : "plain");
  if (t.headerLines.count > 0) {
    std::fprintf(out, "preamble   %d line%s\n", t.headerLines.count,
                 t.headerLines.count == 1 ? "" : "s");
  }
  std::fprintf(out, "rows       %d\n", rows);
  if (rows > 0) {
    std::fprintf(out, "times      %s .. %s\n", TimeText(t.times[0]).c_str(),
                 TimeText(t.times[rows - 1]).c_str());
  }
  std::fprintf(out, "sequences  %s\n", Sequences(t).c_str());
  std::fprintf(out, "columns    %d\n", t.cols.count);
  if (t.cols.count == 0) return;

  int nameWidth = 4;
  for (int c = 0; c < t.cols.count; ++c) {
    const int len = static_cast<int>(Text(t.cols[c]->name).size());
    if (len > nameWidth) nameWidth = len;
  }
  std::fprintf(out, "  %3s  %-*s  %-18s  %-9s  %6s  %11s  %11s  %11s  %11s\n",
               "#", nameWidth, "name", "type", "value", "stream", "min", "max",
               "mean", "stdev");
  for (int c = 0; c < t.cols.count; ++c) {
    const VelqaTimeSeriesDataTableColInfo& col = *t.cols[c];
    std::string lo = "-", hi = "-", mean = "-", dev = "-";
    if (col.count > 0) {
      double min = col[0], max = col[0], sum = 0.0;
      for (int r = 0; r < col.count; ++r) {
        if (col[r] < min) min = col[r];
        if (col[r] > max) max = col[r];
        sum += col[r];
      }
      const double m = sum / col.count;
      double squares = 0.0;
      for (int r = 0; r < col.count; ++r) {
        squares += (col[r] - m) * (col[r] - m);
      }
      lo = Number(min);
      hi = Number(max);
      mean = Number(m);
      dev = Number(std::sqrt(squares / col.count));
    }
    const std::string stream = col.stream >= 0 ? std::to_string(col.stream) : "-";
    std::fprintf(out, "  %3d  %-*s  %-18s  %-9s  %6s  %11s  %11s  %11s  %11s\n",
                 c, nameWidth, Text(col.name).c_str(),
                 Text(t.GetColTypeName(col.colType)).c_str(),
                 col.valueType ? "Discrete" : "Numerical", stream.c_str(),
                 lo.c_str(), hi.c_str(), mean.c_str(), dev.c_str());
  }
}

}  // namespace kez_table_tool
