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

#include "LogTimeCell.h"
#include "interface/StatusLine.h"

namespace kez_tools {
namespace {

// A status line reaches at least to its last sample column.
constexpr int kStatusColumns = kez::StatusLine::kCountAColumn + 1;

// Below it a numeric time is read as seconds: 10^11 ms is March 1973, 10^11 s
// is the year 5138.
constexpr double kSecondsBelow = 1e11;

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

std::string Lower(std::string s) {
  for (char& c : s) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return s;
}

bool EndsWith(const std::string& s, const std::string& end) {
  return s.size() >= end.size() &&
         s.compare(s.size() - end.size(), end.size(), end) == 0;
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

// A charging code matches a cell when both are the same number, or else the
// same text apart from letter case.
bool CodeMatches(const std::string& code, const std::string& cell) {
  double a, b;
  std::string ignored;
  if (ParseNumber(code, &a, &ignored) && ParseNumber(cell, &b, &ignored)) {
    return a == b;
  }
  return Lower(code) == Lower(cell);
}

bool AnyCodeMatches(const std::vector<std::string>& codes,
                    const std::string& cell) {
  for (const std::string& c : codes) {
    if (CodeMatches(c, cell)) return true;
  }
  return false;
}

// Names a detection looks for, best first, in lower case.
const std::vector<std::string> kTimeNames = {
    "time_ms", "timestamp", "time", "datetime", "last_changed",
    "last_updated", "date"};
const std::vector<std::string> kLevelNames = {
    "level_percent", "battery_level", "level", "currentcapacity",
    "battery_percent", "percent", "battery", "state"};
const std::vector<std::string> kBooleanChargingNames = {
    "charging", "is_charging", "ischarging"};
const std::vector<std::string> kStatusChargingNames = {"battery_status",
                                                       "status"};
const std::vector<std::string> kPlugChargingNames = {
    "battery_plugged", "plugged", "battery_adaptor", "adaptor", "plug_type"};

std::vector<std::string> ChargingNames() {
  std::vector<std::string> all = kBooleanChargingNames;
  all.insert(all.end(), kStatusChargingNames.begin(),
             kStatusChargingNames.end());
  all.insert(all.end(), kPlugChargingNames.begin(), kPlugChargingNames.end());
  return all;
}

std::string NameList(const std::vector<std::string>& names, size_t from) {
  std::string s;
  for (size_t i = from; i < names.size(); ++i) {
    s += (i > from ? ", " : "") + names[i];
  }
  return s;
}

bool Contains(const std::vector<std::string>& names, const std::string& n) {
  return std::find(names.begin(), names.end(), n) != names.end();
}

// A fraction of 1 in percent, exactly as the decimal text says: "0.29" is
// 29, where 0.29 * 100 would be 28.999999999999996.
double FractionToPercent(const std::string& cell, double fraction) {
  if (cell.find_first_of("eE") != std::string::npos) return fraction * 100;
  return std::strtod((cell + "e2").c_str(), nullptr);
}

// A sample before its level's scale is known (when the scale is detected
// from all the levels).
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
      if (IsBlank(line)) {
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

  // The column index of `name` in the header, exactly or else apart from
  // letter case; -1 when absent.
  int Find(const std::string& name) const {
    for (size_t i = 0; i < columns_.size(); ++i) {
      if (columns_[i] == name) return static_cast<int>(i);
    }
    for (size_t i = 0; i < columns_.size(); ++i) {
      if (Lower(columns_[i]) == Lower(name)) return static_cast<int>(i);
    }
    return -1;
  }

  // The first of `names` in the header, or -1.
  int FindFirst(const std::vector<std::string>& names) const {
    for (const std::string& n : names) {
      int i = Find(n);
      if (i >= 0) return i;
    }
    return -1;
  }

  bool MissingRequired(int f, const std::vector<std::string>& names) {
    const std::string field = LogFieldName(f);
    std::string why = "the header has no column '" +
                      std::string(LogFieldDefaultColumn(f)) + "'";
    if (options_.detect) {
      why += " nor any other " + field + " column (" + NameList(names, 1) +
             "): name it with --column " + field + "=NAME or in a mapping " +
             "file (--map)";
      if (f == kFieldCharging) {
        why += "; --column charging=none reads every sample as not charging";
      }
    } else {
      why += ": not a battery log (a CSV log starts with a header naming "
             "time_ms, level_percent and charging)";
    }
    double v;
    std::string ignored;
    if (!columns_.empty() && ParseNumber(columns_[0], &v, &ignored)) {
      why += "; if these are the host's status lines, use --status-lines";
    }
    return Fail(line_number_, why);
  }

  bool Header(const std::vector<std::string>& names) {
    columns_ = names;
    LogReadResult& r = *result_;
    const bool detect = options_.detect;
    for (int f = 0; f < kLogFieldCount; ++f) {
      FieldReading& fr = r.field[f];
      const std::string& given = options_.column[f];
      if (!given.empty()) {
        fr.decided = Decided::kGiven;
        fr.column = given;
        if (f == kFieldCharging && given == "none") continue;
        fr.index = Find(given);
        if (fr.index < 0) {
          return Fail(line_number_, "the header has no column '" + given +
                                        "' (given as the " + LogFieldName(f) +
                                        " column)");
        }
      } else {
        if (f == kFieldTime && detect) {
          fr.index = FindFirst(kTimeNames);
        } else if (f == kFieldLevel && detect) {
          fr.index = FindFirst(kLevelNames);
        } else if (f == kFieldCharging && detect) {
          fr.index = FindFirst(ChargingNames());
        } else {
          fr.index = Find(LogFieldDefaultColumn(f));
        }
        if (fr.index < 0) {
          if (f == kFieldTime) return MissingRequired(f, kTimeNames);
          if (f == kFieldLevel) return MissingRequired(f, kLevelNames);
          if (f == kFieldCharging) return MissingRequired(f, ChargingNames());
          continue;  // optional, absent
        }
        fr.decided = detect ? Decided::kDetected : Decided::kDefault;
        fr.column = columns_[fr.index];
      }
      const std::string& name = columns_[fr.index];
      if (std::count(columns_.begin(), columns_.end(), name) > 1) {
        return Fail(line_number_, "the header names column '" + name +
                                      "' twice");
      }
    }
    for (int f = 0; f < kLogFieldCount; ++f) {
      for (int g = 0; g < f; ++g) {
        if (r.field[f].index >= 0 && r.field[f].index == r.field[g].index) {
          return Fail(line_number_,
                      "column '" + r.field[f].column + "' is read as both " +
                          LogFieldName(g) + " and " + LogFieldName(f));
        }
      }
    }

    // Units: given, else by the column's name, else (time and level only)
    // from the values.
    const std::string time_name = Lower(r.field[kFieldTime].column);
    if (options_.time_unit != TimeUnit::kUnset) {
      r.time_unit = options_.time_unit;
      r.time_unit_decided = Decided::kGiven;
    } else if (!detect) {
      r.time_unit = TimeUnit::kMilliseconds;
      r.time_unit_decided = Decided::kDefault;
    } else {
      r.time_unit_decided = Decided::kDetected;
      if (EndsWith(time_name, "_ms")) {
        r.time_unit = TimeUnit::kMilliseconds;
      } else if (EndsWith(time_name, "_s") || EndsWith(time_name, "_sec")) {
        r.time_unit = TimeUnit::kSeconds;
      }  // else from the first row
    }
    const std::string level_name = Lower(r.field[kFieldLevel].column);
    if (options_.level_scale != LevelScale::kUnset) {
      r.level_scale = options_.level_scale;
      r.level_scale_decided = Decided::kGiven;
    } else if (!detect) {
      r.level_scale = LevelScale::kPercent;
      r.level_scale_decided = Decided::kDefault;
    } else {
      r.level_scale_decided = Decided::kDetected;
      if (level_name.find("percent") != std::string::npos) {
        r.level_scale = LevelScale::kPercent;
      }  // else from all the levels
    }
    const std::string charging_name = Lower(r.field[kFieldCharging].column);
    if (options_.charging_codes.kind != ChargingCodes::kUnset) {
      r.charging_codes = options_.charging_codes;
      r.charging_codes_decided = Decided::kGiven;
      if (r.charging_codes.kind == ChargingCodes::kCodes &&
          r.charging_codes.charging.empty()) {
        return Fail(0, "not_charging_codes is given without charging_codes");
      }
    } else if (detect && Contains(kStatusChargingNames, charging_name)) {
      r.charging_codes = AndroidStatusCodes();
      r.charging_codes_decided = Decided::kDetected;
    } else if (detect && Contains(kPlugChargingNames, charging_name)) {
      r.charging_codes = AndroidPlugCodes();
      r.charging_codes_decided = Decided::kDetected;
    } else {
      r.charging_codes.kind = ChargingCodes::kBoolean;
      r.charging_codes_decided =
          detect && Contains(kBooleanChargingNames, charging_name)
              ? Decided::kDetected
              : Decided::kDefault;
    }
    return true;
  }

  // Reads the time cell into *ms; false with *why (and *reason).
  bool Time(const std::string& cell, int64_t* ms, std::string* why) {
    const std::string column = "column '" + result_->field[kFieldTime].column +
                               "' ";
    TimeUnit unit = result_->time_unit;
    if (unit == TimeUnit::kUnset) {
      // The first row decides.
      double v;
      int64_t t;
      std::string ignored;
      if (ParseNumber(cell, &v, &ignored)) {
        unit = v < kSecondsBelow ? TimeUnit::kSeconds : TimeUnit::kMilliseconds;
      } else if (ParseIsoTimeCell(cell, &t)) {
        unit = TimeUnit::kIso8601;
      } else {
        *why = column + "holds neither a Unix time nor an ISO-8601 time with "
               "a UTC offset: '" + cell + "' (see --time-unit)";
        return false;
      }
      result_->time_unit = unit;
    }
    if (unit == TimeUnit::kSeconds) {
      if (!ParseUnixSecondsCell(cell, ms)) {
        *why = column + "is not a time in Unix seconds: '" + cell + "'";
        return false;
      }
      return true;
    }
    if (unit == TimeUnit::kIso8601) {
      if (!ParseIsoTimeCell(cell, ms)) {
        *why = column + "is not an ISO-8601 time with a UTC offset: '" +
               cell + "'";
        return false;
      }
      return true;
    }
    double t;
    std::string number_why;
    if (!ParseNumber(cell, &t, &number_why)) {
      *why = column + number_why;
      return false;
    }
    // 2^53: beyond it whole milliseconds are no longer exact doubles.
    if (t < 0 || t != std::floor(t) || t > 9007199254740992.0) {
      std::ostringstream s;
      s.precision(17);
      s << "time " << t << " is not a whole number of milliseconds >= 0";
      *why = s.str();
      return false;
    }
    *ms = static_cast<int64_t>(t);
    return true;
  }

  // Reads the charging cell as 1 or 0 (or, as 0..1, as it stands).
  bool Charging(const std::string& cell, double* value, std::string* why,
                std::string* reason) {
    const ChargingCodes& codes = result_->charging_codes;
    const std::string column =
        "column '" + result_->field[kFieldCharging].column + "' ";
    if (codes.kind == ChargingCodes::kCodes) {
      if (AnyCodeMatches(codes.charging, cell)) {
        *value = 1;
        return true;
      }
      if (codes.not_charging.empty() ||
          AnyCodeMatches(codes.not_charging, cell)) {
        *value = 0;
        return true;
      }
      *reason = "unknown charging code";
      *why = column + "holds an unknown charging code: '" + cell + "' (" +
             ChargingCodesText(codes) + ")";
      return false;
    }
    const std::string lower = Lower(cell);
    if (lower == "true" || lower == "false") {
      *value = lower == "true" ? 1 : 0;
      return true;
    }
    std::string number_why;
    if (!ParseNumber(cell, value, &number_why)) {
      *reason = "charging state not readable";
      *why = column + number_why;
      return false;
    }
    if (*value < 0 || *value > 1) {
      *reason = "charging state outside 0..1";
      std::ostringstream s;
      s << "charging " << *value << " is outside 0..1";
      *why = s.str();
      return false;
    }
    return true;
  }

  bool CsvLine(const std::string& line) {
    std::vector<std::string> cells = Split(line);
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
        if (!Time(cell, &s.time_ms, &why)) {
          return BadRow("time not readable", why);
        }
      } else if (f == kFieldCharging) {
        if (!Charging(cell, &values[f], &why, &reason)) {
          return BadRow(reason, why);
        }
      } else {
        if (f == kFieldLevel) row.level_cell = cell;
        if (cell.empty() && f > kFieldCharging) continue;  // optional
        std::string number_why;
        if (!ParseNumber(cell, &values[f], &number_why)) {
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
    std::vector<std::string> cells = Split(line);
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
      if (!ParseNumber(cell, &values[f], &why)) {
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
