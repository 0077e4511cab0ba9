#include "LogReader.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <vector>

#include "interface/StatusLine.h"

namespace kez_tools {
namespace {

// A status line reaches at least to its last sample column.
constexpr int kStatusColumns = kez::StatusLine::kCountAColumn + 1;

std::string Trim(const std::string& s) {
  size_t b = 0;
  size_t e = s.size();
  while (b < e && (s[b] == ' ' || s[b] == '\t' || s[b] == '\r')) ++b;
  while (e > b && (s[e - 1] == ' ' || s[e - 1] == '\t' || s[e - 1] == '\r')) --e;
  if (e - b >= 2 && s[b] == '"' && s[e - 1] == '"') {
    ++b;
    --e;
  }
  return s.substr(b, e - b);
}

std::vector<std::string> Split(const std::string& line) {
  std::vector<std::string> cells;
  size_t start = 0;
  while (true) {
    size_t comma = line.find(',', start);
    if (comma == std::string::npos) {
      cells.push_back(Trim(line.substr(start)));
      return cells;
    }
    cells.push_back(Trim(line.substr(start, comma - start)));
    start = comma + 1;
  }
}

bool IsBlank(const std::string& line) {
  for (char c : line) {
    if (c != ' ' && c != '\t' && c != '\r') return false;
  }
  return true;
}

// Reads a whole cell as a finite number. On failure returns false and puts
// the reason into *why.
bool ParseNumber(const std::string& cell, double* value, std::string* why) {
  if (cell.empty()) {
    *why = "is empty";
    return false;
  }
  const char* begin = cell.c_str();
  char* end = nullptr;
  errno = 0;
  double v = std::strtod(begin, &end);
  if (end == begin || *end != '\0' ||
      // hexadecimal numbers are no log's business
      cell.find_first_of("xX") != std::string::npos) {
    *why = "is not a number: '" + cell + "'";
    return false;
  }
  if (!std::isfinite(v)) {
    *why = "is not a finite number: '" + cell + "'";
    return false;
  }
  *value = v;
  return true;
}

class Reader {
 public:
  Reader(const std::string& source, LogFormat format, Log* log,
         std::string* error)
      : source_(source), format_(format), log_(log), error_(error) {}

  bool Run(std::istream& in) {
    log_->source = source_;
    log_->format = format_;
    log_->samples.clear();
    std::string line;
    bool any_line = false;
    while (std::getline(in, line)) {
      ++line_number_;
      any_line = true;
      if (IsBlank(line) || line[0] == '#') continue;
      bool ok = format_ == LogFormat::kCsv ? CsvLine(line) : StatusLine(line);
      if (!ok) return false;
    }
    if (in.bad()) return Fail(0, "read error");
    if (!any_line) return Fail(0, "the log is empty");
    if (format_ == LogFormat::kCsv && columns_.empty()) {
      return Fail(0, "the log is empty (no header)");
    }
    if (log_->samples.empty()) return Fail(0, "the log holds no sample");
    return true;
  }

 private:
  enum Field { kTime, kLevel, kCharging, kAux1, kAux2, kAux3, kCountA,
               kCountB1, kCountB2, kFieldCount };

  bool Fail(int line, const std::string& why) {
    *error_ = source_ + (line > 0 ? ":" + std::to_string(line) : "") + ": " +
              why;
    return false;
  }

  bool Header(const std::vector<std::string>& names) {
    static const char* kNames[kFieldCount] = {
        "time_ms", "level_percent", "charging", "aux1",   "aux2",
        "aux3",    "countA",        "countB1",  "countB2"};
    for (int f = 0; f < kFieldCount; ++f) index_[f] = -1;
    for (size_t i = 0; i < names.size(); ++i) {
      for (int f = 0; f < kFieldCount; ++f) {
        if (names[i] != kNames[f]) continue;
        if (index_[f] >= 0) {
          return Fail(line_number_,
                      "the header names column '" + names[i] + "' twice");
        }
        index_[f] = static_cast<int>(i);
      }
    }
    for (int f = 0; f <= kCharging; ++f) {
      if (index_[f] >= 0) continue;
      std::string why = "the header has no column '" + std::string(kNames[f]) +
                        "': not a battery log (a CSV log starts with a header "
                        "naming time_ms, level_percent and charging)";
      double v;
      std::string ignored;
      if (!names.empty() && ParseNumber(names[0], &v, &ignored)) {
        why += "; if these are the host's status lines, use --status-lines";
      }
      return Fail(line_number_, why);
    }
    columns_ = names;
    return true;
  }

  bool CsvLine(const std::string& line) {
    std::vector<std::string> cells = Split(line);
    if (columns_.empty()) return Header(cells);
    if (cells.size() != columns_.size()) {
      return Fail(line_number_, std::to_string(cells.size()) +
                                    " cells, but the header has " +
                                    std::to_string(columns_.size()));
    }
    double values[kFieldCount] = {0, 0, 0, 0, 0, 0, 0, 0, 0};
    for (int f = 0; f < kFieldCount; ++f) {
      if (index_[f] < 0) continue;
      const std::string& cell = cells[index_[f]];
      if (cell.empty() && f > kCharging) continue;  // optional and absent
      std::string why;
      if (!ParseNumber(cell, &values[f], &why)) {
        return Fail(line_number_, "column '" + columns_[index_[f]] + "' " + why);
      }
    }
    return Add(values, std::string());
  }

  bool StatusLine(const std::string& line) {
    std::vector<std::string> cells = Split(line);
    if (cells.size() < kStatusColumns) {
      return Fail(line_number_,
                  std::to_string(cells.size()) +
                      " columns, but a status line has at least " +
                      std::to_string(kStatusColumns) +
                      (cells.size() < 12 ? " (a CSV log needs no --status-lines)"
                                         : ""));
    }
    // The host's columns, as the library reads them.
    using Line = kez::StatusLine;
    static const int kColumn[kFieldCount] = {
        Line::kTimeColumn, Line::kLevelColumn,  Line::kChargingColumn,
        Line::kAux1Column, Line::kAux2Column,   Line::kAux3Column,
        Line::kCountAColumn, Line::kCountB1Column, Line::kCountB2Column};
    static const char* kWhat[kFieldCount] = {
        "time", "level", "charging", "aux1",  "aux2",
        "aux3", "countA", "countB1", "countB2"};
    double values[kFieldCount];
    for (int f = 0; f < kFieldCount; ++f) {
      const std::string& cell = cells[kColumn[f]];
      values[f] = 0;
      if (cell.empty() && f > kCharging) continue;
      std::string why;
      if (!ParseNumber(cell, &values[f], &why)) {
        return Fail(line_number_, "column " + std::to_string(kColumn[f]) +
                                      " (" + kWhat[f] + ") " + why);
      }
    }
    std::string text = line;
    if (!text.empty() && text.back() == '\r') text.pop_back();
    return Add(values, text);
  }

  bool Add(const double* v, const std::string& text) {
    double t = v[kTime];
    // 2^53: beyond it whole milliseconds are no longer exact doubles.
    if (t < 0 || t != std::floor(t) || t > 9007199254740992.0) {
      std::ostringstream s;
      s.precision(17);
      s << "time " << t << " is not a whole number of milliseconds >= 0";
      return Fail(line_number_, s.str());
    }
    if (v[kLevel] < 0 || v[kLevel] > 100) {
      std::ostringstream s;
      s << "level " << v[kLevel] << " % is outside 0..100";
      return Fail(line_number_, s.str());
    }
    if (v[kCharging] < 0 || v[kCharging] > 1) {
      std::ostringstream s;
      s << "charging " << v[kCharging] << " is outside 0..1";
      return Fail(line_number_, s.str());
    }
    LogSample sample;
    sample.time_ms = static_cast<int64_t>(t);
    if (!log_->samples.empty() &&
        sample.time_ms < log_->samples.back().time_ms) {
      const LogSample& prev = log_->samples.back();
      return Fail(line_number_,
                  "time goes backwards: " + std::to_string(sample.time_ms) +
                      " is " + std::to_string(prev.time_ms - sample.time_ms) +
                      " ms before line " + std::to_string(prev.line_number) +
                      " (a log must be in time order)");
    }
    sample.level_percent = v[kLevel];
    sample.charging = v[kCharging];
    sample.aux1 = v[kAux1];
    sample.aux2 = v[kAux2];
    sample.aux3 = v[kAux3];
    sample.count_a = v[kCountA];
    sample.count_b1 = v[kCountB1];
    sample.count_b2 = v[kCountB2];
    sample.line_number = line_number_;
    sample.line = text;
    log_->samples.push_back(std::move(sample));
    return true;
  }

  std::string source_;
  LogFormat format_;
  Log* log_;
  std::string* error_;
  int line_number_ = 0;
  std::vector<std::string> columns_;
  int index_[kFieldCount];
};

}  // namespace

bool ReadLog(std::istream& in, const std::string& source, LogFormat format,
             Log* log, std::string* error) {
  return Reader(source, format, log, error).Run(in);
}

bool ReadLogFile(const std::string& path, LogFormat format, Log* log,
                 std::string* error) {
  if (path == "-") return ReadLog(std::cin, "-", format, log, error);
  std::error_code ec;
  if (std::filesystem::is_directory(path, ec)) {
    *error = path + ": cannot read: it is a directory";
    return false;
  }
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    *error = path + ": cannot open: " + std::strerror(errno);
    return false;
  }
  return ReadLog(file, path, format, log, error);
}

}  // namespace kez_tools
