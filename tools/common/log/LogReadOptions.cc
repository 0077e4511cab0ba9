#include "LogReadOptions.h"

namespace kez_tools {
namespace {

const char* const kFieldNames[kLogFieldCount] = {
    "time", "level", "charging", "aux1", "aux2",
    "aux3", "countA", "countB1", "countB2"};
const char* const kDefaultColumns[kLogFieldCount] = {
    "time_ms", "level_percent", "charging", "aux1", "aux2",
    "aux3", "countA", "countB1", "countB2"};

std::string TrimBlanks(const std::string& s) {
  size_t b = 0;
  size_t e = s.size();
  while (b < e && (s[b] == ' ' || s[b] == '\t')) ++b;
  while (e > b && (s[e - 1] == ' ' || s[e - 1] == '\t')) --e;
  return s.substr(b, e - b);
}

// "2, 5" -> {"2", "5"}; false when a code is empty.
bool SplitCodes(const std::string& text, std::vector<std::string>* codes) {
  codes->clear();
  size_t start = 0;
  while (true) {
    size_t comma = text.find(',', start);
    std::string code = TrimBlanks(text.substr(
        start, comma == std::string::npos ? std::string::npos : comma - start));
    if (code.empty()) return false;
    codes->push_back(code);
    if (comma == std::string::npos) return true;
    start = comma + 1;
  }
}

}  // namespace

const char* LogFieldName(int field) { return kFieldNames[field]; }
const char* LogFieldDefaultColumn(int field) { return kDefaultColumns[field]; }

ChargingCodes AndroidStatusCodes() {
  ChargingCodes c;
  c.kind = ChargingCodes::kCodes;
  c.preset = "android_status";
  c.charging = {"2", "5"};
  c.not_charging = {"1", "3", "4"};
  return c;
}

ChargingCodes AndroidPlugCodes() {
  ChargingCodes c;
  c.kind = ChargingCodes::kCodes;
  c.preset = "android_plug";
  c.charging = {"1", "2", "4", "8"};
  c.not_charging = {"0"};
  return c;
}

bool LogReadOptions::AnyColumnSetting() const {
  for (const std::string& c : column) {
    if (!c.empty()) return true;
  }
  return time_unit != TimeUnit::kUnset || level_scale != LevelScale::kUnset ||
         charging_codes.kind != ChargingCodes::kUnset || !detect;
}

bool ApplyLogSetting(const std::string& key, const std::string& value,
                     LogReadOptions* o, std::string* why) {
  auto bad = [&](const std::string& allowed) {
    *why = key + " is " + allowed + ", not '" + value + "'";
    return false;
  };
  for (int f = 0; f < kLogFieldCount; ++f) {
    if (key != kFieldNames[f]) continue;
    if (value.empty()) {
      *why = key + " needs a column name";
      return false;
    }
    if (value == "none" && f != kFieldCharging) {
      *why = "only the charging column may be 'none'";
      return false;
    }
    o->column[f] = value;
    return true;
  }
  if (key == "time_unit") {
    if (value == "ms") {
      o->time_unit = TimeUnit::kMilliseconds;
    } else if (value == "s") {
      o->time_unit = TimeUnit::kSeconds;
    } else if (value == "iso8601") {
      o->time_unit = TimeUnit::kIso8601;
    } else {
      return bad("ms, s or iso8601");
    }
  } else if (key == "level_scale") {
    if (value == "percent") {
      o->level_scale = LevelScale::kPercent;
    } else if (value == "fraction") {
      o->level_scale = LevelScale::kFraction;
    } else {
      return bad("percent or fraction");
    }
  } else if (key == "charging_codes") {
    if (value == "boolean") {
      o->charging_codes = ChargingCodes();
      o->charging_codes.kind = ChargingCodes::kBoolean;
    } else if (value == "android_status") {
      o->charging_codes = AndroidStatusCodes();
    } else if (value == "android_plug") {
      o->charging_codes = AndroidPlugCodes();
    } else {
      std::vector<std::string> codes;
      if (!SplitCodes(value, &codes)) {
        return bad("boolean, android_status, android_plug or a list of codes");
      }
      // A list given after not_charging_codes keeps that list.
      std::vector<std::string> keep = o->charging_codes.preset.empty()
                                          ? o->charging_codes.not_charging
                                          : std::vector<std::string>();
      o->charging_codes = ChargingCodes();
      o->charging_codes.kind = ChargingCodes::kCodes;
      o->charging_codes.charging = codes;
      o->charging_codes.not_charging = keep;
    }
  } else if (key == "not_charging_codes") {
    std::vector<std::string> codes;
    if (!SplitCodes(value, &codes)) return bad("a list of codes");
    if (!o->charging_codes.preset.empty()) {
      *why = "not_charging_codes goes with a list of charging_codes, not with "
             "the preset " + o->charging_codes.preset;
      return false;
    }
    o->charging_codes.kind = ChargingCodes::kCodes;
    o->charging_codes.not_charging = codes;
  } else if (key == "order") {
    if (value == "refuse") {
      o->order = RowOrder::kRefuse;
    } else if (value == "sort") {
      o->order = RowOrder::kSort;
    } else {
      return bad("refuse or sort");
    }
  } else if (key == "duplicates") {
    if (value == "keep") {
      o->duplicates = DuplicateTimes::kKeepAll;
    } else if (value == "first") {
      o->duplicates = DuplicateTimes::kFirst;
    } else if (value == "last") {
      o->duplicates = DuplicateTimes::kLast;
    } else {
      return bad("keep, first or last");
    }
  } else if (key == "bad_rows") {
    if (value == "stop") {
      o->bad_rows = BadRows::kStop;
    } else if (value == "skip") {
      o->bad_rows = BadRows::kSkip;
    } else {
      return bad("stop or skip");
    }
  } else if (key == "detect") {
    if (value == "on") {
      o->detect = true;
    } else if (value == "off") {
      o->detect = false;
    } else {
      return bad("on or off");
    }
  } else {
    *why = "unknown setting '" + key + "'";
    return false;
  }
  return true;
}

}  // namespace kez_tools
