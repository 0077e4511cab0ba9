#include "LogColumns.h"

#include <algorithm>

#include "LogCells.h"

namespace kez_tools {
namespace {

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

bool Contains(const std::vector<std::string>& names, const std::string& n) {
  return std::find(names.begin(), names.end(), n) != names.end();
}

bool EndsWith(const std::string& s, const std::string& end) {
  return s.size() >= end.size() &&
         s.compare(s.size() - end.size(), end.size(), end) == 0;
}

class Columns {
 public:
  Columns(const std::vector<std::string>& header,
          const LogReadOptions& options, LogReadResult* result,
          std::string* why)
      : header_(header), options_(options), r_(*result), why_(why) {}

  bool Resolve() {
    for (int f = 0; f < kLogFieldCount; ++f) {
      if (!Field(f)) return false;
    }
    for (int f = 0; f < kLogFieldCount; ++f) {
      for (int g = 0; g < f; ++g) {
        if (r_.field[f].index >= 0 && r_.field[f].index == r_.field[g].index) {
          *why_ = "column '" + r_.field[f].column + "' is read as both " +
                  LogFieldName(g) + " and " + LogFieldName(f);
          return false;
        }
      }
    }
    DecideTimeUnit();
    DecideLevelScale();
    return DecideChargingCodes();
  }

 private:
  // The index of `name` in the header, exactly or else apart from letter
  // case; -1 when absent.
  int Find(const std::string& name) const {
    for (size_t i = 0; i < header_.size(); ++i) {
      if (header_[i] == name) return static_cast<int>(i);
    }
    for (size_t i = 0; i < header_.size(); ++i) {
      if (LowerCase(header_[i]) == LowerCase(name)) return static_cast<int>(i);
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

  bool Missing(int f, const std::vector<std::string>& names) {
    const std::string field = LogFieldName(f);
    *why_ = "the header has no column '" +
            std::string(LogFieldDefaultColumn(f)) + "'";
    if (options_.detect) {
      std::string others;
      for (size_t i = 1; i < names.size(); ++i) {
        others += (i > 1 ? ", " : "") + names[i];
      }
      *why_ += " nor any other " + field + " column (" + others +
               "): name it with --column " + field + "=NAME or in a mapping " +
               "file (--map)";
      if (f == kFieldCharging) {
        *why_ += "; --column charging=none reads every sample as not charging";
      }
    } else {
      *why_ += ": not a battery log (a CSV log starts with a header naming "
               "time_ms, level_percent and charging)";
    }
    double v;
    std::string ignored;
    if (!header_.empty() && ParseNumberCell(header_[0], &v, &ignored)) {
      *why_ += "; if these are the host's status lines, use --status-lines";
    }
    return false;
  }

  bool Field(int f) {
    FieldReading& fr = r_.field[f];
    const std::string& given = options_.column[f];
    const bool detect = options_.detect;
    if (!given.empty()) {
      fr.decided = Decided::kGiven;
      fr.column = given;
      if (f == kFieldCharging && given == "none") return true;
      fr.index = Find(given);
      if (fr.index < 0) {
        *why_ = "the header has no column '" + given + "' (given as the " +
                LogFieldName(f) + " column)";
        return false;
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
        if (f == kFieldTime) return Missing(f, kTimeNames);
        if (f == kFieldLevel) return Missing(f, kLevelNames);
        if (f == kFieldCharging) return Missing(f, ChargingNames());
        return true;  // optional, absent
      }
      fr.decided = detect ? Decided::kDetected : Decided::kDefault;
      fr.column = header_[fr.index];
    }
    const std::string& name = header_[fr.index];
    if (std::count(header_.begin(), header_.end(), name) > 1) {
      *why_ = "the header names column '" + name + "' twice";
      return false;
    }
    return true;
  }

  // Given, else by the column's name, else left to the first row.
  void DecideTimeUnit() {
    const std::string name = LowerCase(r_.field[kFieldTime].column);
    if (options_.time_unit != TimeUnit::kUnset) {
      r_.time_unit = options_.time_unit;
      r_.time_unit_decided = Decided::kGiven;
    } else if (!options_.detect) {
      r_.time_unit = TimeUnit::kMilliseconds;
      r_.time_unit_decided = Decided::kDefault;
    } else {
      r_.time_unit_decided = Decided::kDetected;
      if (EndsWith(name, "_ms")) {
        r_.time_unit = TimeUnit::kMilliseconds;
      } else if (EndsWith(name, "_s") || EndsWith(name, "_sec")) {
        r_.time_unit = TimeUnit::kSeconds;
      }
    }
  }

  // Given, else by the column's name, else left to all the levels.
  void DecideLevelScale() {
    const std::string name = LowerCase(r_.field[kFieldLevel].column);
    if (options_.level_scale != LevelScale::kUnset) {
      r_.level_scale = options_.level_scale;
      r_.level_scale_decided = Decided::kGiven;
    } else if (!options_.detect) {
      r_.level_scale = LevelScale::kPercent;
      r_.level_scale_decided = Decided::kDefault;
    } else {
      r_.level_scale_decided = Decided::kDetected;
      if (name.find("percent") != std::string::npos) {
        r_.level_scale = LevelScale::kPercent;
      }
    }
  }

  // Given, else by the column's name, else 0..1.
  bool DecideChargingCodes() {
    const std::string name = LowerCase(r_.field[kFieldCharging].column);
    const bool detect = options_.detect;
    if (options_.charging_codes.kind != ChargingCodes::kUnset) {
      r_.charging_codes = options_.charging_codes;
      r_.charging_codes_decided = Decided::kGiven;
      if (r_.charging_codes.kind == ChargingCodes::kCodes &&
          r_.charging_codes.charging.empty()) {
        *why_ = "not_charging_codes is given without charging_codes";
        return false;
      }
    } else if (detect && Contains(kStatusChargingNames, name)) {
      r_.charging_codes = AndroidStatusCodes();
      r_.charging_codes_decided = Decided::kDetected;
    } else if (detect && Contains(kPlugChargingNames, name)) {
      r_.charging_codes = AndroidPlugCodes();
      r_.charging_codes_decided = Decided::kDetected;
    } else {
      r_.charging_codes.kind = ChargingCodes::kBoolean;
      r_.charging_codes_decided =
          detect && Contains(kBooleanChargingNames, name) ? Decided::kDetected
                                                          : Decided::kDefault;
    }
    return true;
  }

  const std::vector<std::string>& header_;
  const LogReadOptions& options_;
  LogReadResult& r_;
  std::string* why_;
};

}  // namespace

bool ResolveLogColumns(const std::vector<std::string>& header,
                       const LogReadOptions& options, LogReadResult* result,
                       std::string* why) {
  return Columns(header, options, result, why).Resolve();
}

}  // namespace kez_tools
