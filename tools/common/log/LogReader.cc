#include "LogReader.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <vector>

#include "LogCells.h"
#include "LogColumns.h"
#include "LogFieldCells.h"
#include "interface/StatusLine.h"

namespace kez_tools {
namespace {

// A status line reaches at least to its last sample column.
constexpr int kStatusColumns = kez::StatusLine::kCountAColumn + 1;

// A fraction of 1 in percent, exactly as the decimal text says: "0.29" is
// 29, where 0.29 * 100 would be 28.999999999999996.
double FractionToPercent(const std::string& cell, double fraction) {
  if (cell.find_first_of("eE") != std::string::npos) return fraction * 100;
  return std::strtod((cell + "e2").c_str(), nullptr);
}

// A row as read, with the cells that messages and a later decided level
// scale need.
struct Row {
  LogSample sample;
  std::string time_cell;
  std::string level_cell;
};

class Reader {
 public:
  Reader(const std::string& source, const LogReadOptions& options, Log* log,
         LogReadResult* result, std::string* error)
      : source_(source), options_(options), log_(log), result_(result),
        error_(error) {}

  bool Run(std::istream& in) {
    log_->source = source_;
    log_->format = options_.format;
    log_->samples.clear();
    *result_ = LogReadResult();
    result_->format = options_.format;
    result_->duplicates = options_.duplicates;
    if (options_.format == LogFormat::kStatusLines) {
      for (int f = 0; f < kLogFieldCount; ++f) {
        result_->field[f].decided = Decided::kDefault;
      }
      result_->time_unit = TimeUnit::kMilliseconds;
      result_->level_scale = LevelScale::kPercent;
      result_->charging_codes.kind = ChargingCodes::kBoolean;
    }
    std::string line;
    bool any_line = false;
    while (std::getline(in, line)) {
      ++line_number_;
      any_line = true;
      if (IsBlankLine(line)) {
        Skip("blank line", "");
        continue;
      }
      if (line[0] == '#') {
        Skip("comment line", "");
        continue;
      }
      bool ok = options_.format == LogFormat::kCsv ? CsvLine(line)
                                                  : StatusLine(line);
      if (!ok) return false;
    }
    if (in.bad()) return Fail(0, "read error");
    if (!any_line) return Fail(0, "the log is empty");
    if (options_.format == LogFormat::kCsv && columns_.empty()) {
      return Fail(0, "the log is empty (no header)");
    }
    Finish();
    if (log_->samples.empty()) {
      std::string why = "the log holds no sample";
      if (bad_rows_skipped_ > 0) {
        why += " (" + std::to_string(bad_rows_skipped_) +
               " bad rows skipped; the first: " + first_bad_ + ")";
      }
      return Fail(0, why);
    }
    return true;
  }

 private:
  bool Fail(int line, const std::string& why) {
    *error_ = Where(line) + why;
    return false;
  }

  std::string Where(int line) const {
    return source_ + (line > 0 ? ":" + std::to_string(line) : "") + ": ";
  }

  void Skip(const std::string& reason, const std::string& message) {
    for (SkippedRows& s : result_->skipped) {
      if (s.reason == reason) {
        ++s.count;
        return;
      }
    }
    SkippedRows s;
    s.reason = reason;
    s.count = 1;
    s.first = message;
    result_->skipped.push_back(s);
  }

  // A row that cannot be read: skipped when the options say so (returns
  // true), else the end of the reading.
  bool BadRow(const std::string& reason, const std::string& why) {
    if (options_.bad_rows == BadRows::kSkip) {
      Skip(reason, Where(line_number_) + why);
      if (bad_rows_skipped_++ == 0) first_bad_ = Where(line_number_) + why;
      return true;
    }
    return Fail(line_number_, why);
  }

  bool Header(const std::vector<std::string>& names) {
    columns_ = names;
    std::string why;
    if (!ResolveLogColumns(names, options_, result_, &why)) {
      return Fail(line_number_, why);
    }
    return true;
  }

  bool CsvLine(const std::string& line) {
    std::vector<std::string> cells = SplitCells(line);
    if (columns_.empty()) return Header(cells);
    ++result_->data_rows;
    if (cells.size() != columns_.size()) {
      return BadRow("wrong number of cells",
                    std::to_string(cells.size()) +
                        " cells, but the header has " +
                        std::to_string(columns_.size()));
    }
    const FieldReading* field = result_->field;
    Row row;
    LogSample& s = row.sample;
    std::string why, reason;
    double values[kLogFieldCount] = {0, 0, 0, 0, 0, 0, 0, 0, 0};
    for (int f = 0; f < kLogFieldCount; ++f) {
      if (field[f].index < 0) continue;
      const std::string& cell = cells[field[f].index];
      if (f == kFieldTime) {
        row.time_cell = cell;
        if (!ReadTimeCell(cell, field[f].column, &result_->time_unit,
                          &s.time_ms, &why)) {
          return BadRow("time not readable", why);
        }
      } else if (f == kFieldCharging) {
        if (!ReadChargingCell(cell, field[f].column, result_->charging_codes,
                              &values[f], &why, &reason)) {
          return BadRow(reason, why);
        }
      } else {
        if (f == kFieldLevel) row.level_cell = cell;
        if (cell.empty() && f > kFieldCharging) continue;  // optional
        std::string number_why;
        if (!ParseNumberCell(cell, &values[f], &number_why)) {
          return BadRow(f == kFieldLevel ? "level not a number"
                                         : "value not a number",
                        "column '" + columns_[field[f].index] + "' " +
                            number_why);
        }
      }
    }
    s.level_percent = values[kFieldLevel];
    s.charging = values[kFieldCharging];
    s.aux1 = values[kFieldAux1];
    s.aux2 = values[kFieldAux2];
    s.aux3 = values[kFieldAux3];
    s.count_a = values[kFieldCountA];
    s.count_b1 = values[kFieldCountB1];
    s.count_b2 = values[kFieldCountB2];
    return Add(row);
  }

  bool StatusLine(const std::string& line) {
    std::vector<std::string> cells = SplitCells(line);
    ++result_->data_rows;
    if (cells.size() < kStatusColumns) {
      return BadRow("wrong number of cells",
                    std::to_string(cells.size()) +
                        " columns, but a status line has at least " +
                        std::to_string(kStatusColumns) +
                        (cells.size() < 12
                             ? " (a CSV log needs no --status-lines)"
                             : ""));
    }
    // The host's columns, as the library reads them.
    using Line = kez::StatusLine;
    static const int kColumn[kLogFieldCount] = {
        Line::kTimeColumn, Line::kLevelColumn,  Line::kChargingColumn,
        Line::kAux1Column, Line::kAux2Column,   Line::kAux3Column,
        Line::kCountAColumn, Line::kCountB1Column, Line::kCountB2Column};
    static const char* kWhat[kLogFieldCount] = {
        "time", "level", "charging", "aux1",  "aux2",
        "aux3", "countA", "countB1", "countB2"};
    double values[kLogFieldCount];
    for (int f = 0; f < kLogFieldCount; ++f) {
      const std::string& cell = cells[kColumn[f]];
      values[f] = 0;
      if (cell.empty() && f > kFieldCharging) continue;
      std::string why;
      if (!ParseNumberCell(cell, &values[f], &why)) {
        return BadRow(f == kFieldTime    ? "time not readable"
                      : f == kFieldLevel ? "level not a number"
                      : f == kFieldCharging ? "charging state not readable"
                                            : "value not a number",
                      "column " + std::to_string(kColumn[f]) + " (" +
                          kWhat[f] + ") " + why);
      }
    }
    Row row;
    LogSample& s = row.sample;
    double t = values[kFieldTime];
    if (t < 0 || t != std::floor(t) || t > 9007199254740992.0) {
      std::ostringstream m;
      m.precision(17);
      m << "time " << t << " is not a whole number of milliseconds >= 0";
      return BadRow("time not readable", m.str());
    }
    if (values[kFieldCharging] < 0 || values[kFieldCharging] > 1) {
      std::ostringstream m;
      m << "charging " << values[kFieldCharging] << " is outside 0..1";
      return BadRow("charging state outside 0..1", m.str());
    }
    s.time_ms = static_cast<int64_t>(t);
    row.time_cell = cells[kColumn[kFieldTime]];
    s.level_percent = values[kFieldLevel];
    s.charging = values[kFieldCharging];
    s.aux1 = values[kFieldAux1];
    s.aux2 = values[kFieldAux2];
    s.aux3 = values[kFieldAux3];
    s.count_a = values[kFieldCountA];
    s.count_b1 = values[kFieldCountB1];
    s.count_b2 = values[kFieldCountB2];
    s.line = line;
    if (!s.line.empty() && s.line.back() == '\r') s.line.pop_back();
    return Add(row);
  }

  // Checks the level against its scale and the time against the rows
  // before, and keeps the row.
  bool Add(Row& row) {
    LogSample& s = row.sample;
    const LevelScale scale = result_->level_scale;
    const double level = s.level_percent;
    if (scale == LevelScale::kFraction) {
      if (level < 0 || level > 1) {
        std::ostringstream m;
        m << "level " << level << " is outside 0..1 (a fraction of 1)";
        return BadRow("level outside its scale", m.str());
      }
    } else if (level < 0 || level > 100) {
      std::ostringstream m;
      m << "level " << level << " % is outside 0..100";
      return BadRow("level outside its scale", m.str());
    }
    if (!log_->samples.empty() && s.time_ms < latest_ms_) {
      if (options_.order == RowOrder::kSort) {
        ++result_->rows_moved;
      } else {
        const LogSample& prev = log_->samples.back();
        const std::string at =
            result_->time_unit == TimeUnit::kMilliseconds
                ? std::to_string(s.time_ms)
                : "'" + row.time_cell + "'";
        return BadRow("time going backwards",
                      "time goes backwards: " + at + " is " +
                          std::to_string(prev.time_ms - s.time_ms) +
                          " ms before line " +
                          std::to_string(prev.line_number) +
                          " (a log must be in time order)");
      }
    }
    s.line_number = line_number_;
    level_cells_.push_back(row.level_cell);
    latest_ms_ = std::max(latest_ms_, s.time_ms);
    log_->samples.push_back(std::move(s));
    return true;
  }

  // Decides a scale still open, sorts and merges as the options say.
  void Finish() {
    std::vector<LogSample>& samples = log_->samples;
    LogReadResult& r = *result_;
    if (r.level_scale == LevelScale::kUnset) {
      bool within_one = !samples.empty();
      bool fractional = false;
      for (const LogSample& s : samples) {
        if (s.level_percent > 1) within_one = false;
        if (s.level_percent != std::floor(s.level_percent)) fractional = true;
      }
      r.level_scale = within_one && fractional ? LevelScale::kFraction
                                               : LevelScale::kPercent;
    }
    if (r.level_scale == LevelScale::kFraction) {
      for (size_t i = 0; i < samples.size(); ++i) {
        samples[i].level_percent =
            FractionToPercent(level_cells_[i], samples[i].level_percent);
      }
    }
    if (r.time_unit == TimeUnit::kUnset) r.time_unit = TimeUnit::kMilliseconds;
    if (r.rows_moved > 0) {
      std::stable_sort(samples.begin(), samples.end(),
                       [](const LogSample& a, const LogSample& b) {
                         return a.time_ms < b.time_ms;
                       });
    }
    if (options_.duplicates != DuplicateTimes::kKeepAll) {
      std::vector<LogSample> kept;
      kept.reserve(samples.size());
      for (LogSample& s : samples) {
        if (!kept.empty() && kept.back().time_ms == s.time_ms) {
          ++r.rows_merged;
          if (options_.duplicates == DuplicateTimes::kLast) {
            kept.back() = std::move(s);
          }
          continue;
        }
        kept.push_back(std::move(s));
      }
      samples.swap(kept);
    }
    r.samples = static_cast<int>(samples.size());
  }

  std::string source_;
  const LogReadOptions& options_;
  Log* log_;
  LogReadResult* result_;
  std::string* error_;
  int line_number_ = 0;
  int bad_rows_skipped_ = 0;
  int64_t latest_ms_ = 0;  // the latest time of the rows kept
  std::string first_bad_;
  std::vector<std::string> columns_;
  std::vector<std::string> level_cells_;  // per sample, as read
};

}  // namespace

bool ReadLog(std::istream& in, const std::string& source,
             const LogReadOptions& options, Log* log, LogReadResult* result,
             std::string* error) {
  LogReadResult ignored;
  return Reader(source, options, log, result != nullptr ? result : &ignored,
                error)
      .Run(in);
}

bool ReadLogFile(const std::string& path, const LogReadOptions& options,
                 Log* log, LogReadResult* result, std::string* error) {
  if (path == "-") return ReadLog(std::cin, "-", options, log, result, error);
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
  return ReadLog(file, path, options, log, result, error);
}

bool ReadLog(std::istream& in, const std::string& source, LogFormat format,
             Log* log, std::string* error) {
  LogReadOptions options;
  options.format = format;
  return ReadLog(in, source, options, log, nullptr, error);
}

bool ReadLogFile(const std::string& path, LogFormat format, Log* log,
                 std::string* error) {
  LogReadOptions options;
  options.format = format;
  return ReadLogFile(path, options, log, nullptr, error);
}

}  // namespace kez_tools
