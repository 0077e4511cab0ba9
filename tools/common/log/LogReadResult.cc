#include "LogReadResult.h"

namespace kez_tools {
namespace {

const char* DecidedText(Decided d) {
  switch (d) {
    case Decided::kGiven:
      return "given";
    case Decided::kDetected:
      return "detected";
    default:
      return "default";
  }
}

std::string Join(const std::vector<std::string>& codes) {
  std::string s;
  for (size_t i = 0; i < codes.size(); ++i) s += (i ? "|" : "") + codes[i];
  return s;
}

std::string UnitText(TimeUnit u) {
  switch (u) {
    case TimeUnit::kSeconds:
      return "Unix seconds";
    case TimeUnit::kIso8601:
      return "ISO-8601";
    default:
      return "Unix ms";
  }
}

}  // namespace

std::string ChargingCodesText(const ChargingCodes& c) {
  if (c.kind != ChargingCodes::kCodes) return "0..1 or true/false";
  std::string s = c.preset == "android_status" ? "Android battery status: "
                  : c.preset == "android_plug" ? "Android plug type: "
                                               : "codes: ";
  s += "charging " + Join(c.charging) + ", not ";
  s += c.not_charging.empty() ? "any other" : Join(c.not_charging);
  return s;
}

namespace {

// "(Unix seconds; detected)", or "(ISO-8601; column given, unit detected)".
std::string How(const std::string& text, const char* what, Decided column,
                Decided decided) {
  std::string s = "(" + text + "; ";
  if (column == decided) return s + DecidedText(column) + ")";
  return s + "column " + DecidedText(column) + ", " + what + " " +
         DecidedText(decided) + ")";
}

std::string Plural(int n, const std::string& one) {
  return std::to_string(n) + " " + one + (n == 1 ? "" : "s");
}

}  // namespace

int LogReadResult::Skipped(const std::string& reason) const {
  for (const SkippedRows& s : skipped) {
    if (s.reason == reason) return s.count;
  }
  return 0;
}

bool LogReadResult::Plain() const {
  if (format == LogFormat::kStatusLines) {
    return skipped.size() == static_cast<size_t>(Skipped("blank line") > 0) +
                                 (Skipped("comment line") > 0) &&
           rows_moved == 0 && rows_merged == 0;
  }
  for (int f = 0; f < kLogFieldCount; ++f) {
    if (field[f].index >= 0 && field[f].column != LogFieldDefaultColumn(f)) {
      return false;
    }
    if (f <= kFieldCharging && field[f].index < 0) return false;
  }
  for (const SkippedRows& s : skipped) {
    if (s.reason != "blank line" && s.reason != "comment line") return false;
  }
  return time_unit == TimeUnit::kMilliseconds &&
         level_scale == LevelScale::kPercent &&
         charging_codes.kind == ChargingCodes::kBoolean && rows_moved == 0 &&
         rows_merged == 0;
}

std::string DescribeLogReading(const LogReadResult& r) {
  std::string s;
  if (r.format == LogFormat::kStatusLines) {
    s = "status lines (the host's columns)";
  } else {
    const FieldReading* f = r.field;
    s = "time = '" + f[kFieldTime].column + "' " +
        How(UnitText(r.time_unit), "unit", f[kFieldTime].decided,
            r.time_unit_decided);
    s += ", level = '" + f[kFieldLevel].column + "' " +
         How(r.level_scale == LevelScale::kFraction ? "fraction of 1"
                                                    : "percent",
             "scale", f[kFieldLevel].decided, r.level_scale_decided);
    if (f[kFieldCharging].index < 0) {
      s += ", charging = none (every sample read as not charging; given)";
    } else {
      s += ", charging = '" + f[kFieldCharging].column + "' " +
           How(ChargingCodesText(r.charging_codes), "codes",
               f[kFieldCharging].decided,
               r.charging_codes_decided);
    }
    for (int k = kFieldAux1; k < kLogFieldCount; ++k) {
      if (f[k].index < 0) continue;
      s += std::string(", ") + LogFieldName(k) + " = '" + f[k].column +
           "' (" + DecidedText(f[k].decided) + ")";
    }
  }
  s += "; " + Plural(r.samples, "sample");
  int skipped = 0;
  std::string reasons;
  for (const SkippedRows& k : r.skipped) {
    skipped += k.count;
    reasons += (reasons.empty() ? "" : ", ") + std::to_string(k.count) + " " +
               k.reason;
  }
  if (skipped > 0) {
    s += "; skipped " + Plural(skipped, "line") + " (" + reasons + ")";
  }
  if (r.rows_moved > 0) {
    s += "; " + Plural(r.rows_moved, "row") + " sorted into time order";
  }
  if (r.rows_merged > 0) {
    s += "; " + Plural(r.rows_merged, "row") +
         " with a repeated time merged (kept the " +
         (r.duplicates == DuplicateTimes::kFirst ? "first" : "last") + ")";
  }
  return s;
}

}  // namespace kez_tools
