#include "LogFieldCells.h"

#include <cmath>
#include <sstream>
#include <vector>

#include "LogCells.h"
#include "LogReadResult.h"
#include "LogTimeCell.h"

namespace kez_tools {
namespace {

// Below it a numeric time is read as seconds.
constexpr double kSecondsBelow = 1e11;

// A charging code matches a cell when both are the same number, or else the
// same text apart from letter case.
bool CodeMatches(const std::string& code, const std::string& cell) {
  double a, b;
  std::string ignored;
  if (ParseNumberCell(code, &a, &ignored) &&
      ParseNumberCell(cell, &b, &ignored)) {
    return a == b;
  }
  return LowerCase(code) == LowerCase(cell);
}

bool AnyCodeMatches(const std::vector<std::string>& codes,
                    const std::string& cell) {
  for (const std::string& c : codes) {
    if (CodeMatches(c, cell)) return true;
  }
  return false;
}

}  // namespace

bool ReadTimeCell(const std::string& cell, const std::string& column,
                  TimeUnit* unit, int64_t* utc_ms, std::string* why) {
  const std::string named = "column '" + column + "' ";
  if (*unit == TimeUnit::kUnset) {
    double v;
    int64_t t;
    std::string ignored;
    if (ParseNumberCell(cell, &v, &ignored)) {
      *unit = v < kSecondsBelow ? TimeUnit::kSeconds : TimeUnit::kMilliseconds;
    } else if (ParseIsoTimeCell(cell, &t)) {
      *unit = TimeUnit::kIso8601;
    } else {
      *why = named + "holds neither a Unix time nor an ISO-8601 time with a "
             "UTC offset: '" + cell + "' (see --time-unit)";
      return false;
    }
  }
  if (*unit == TimeUnit::kSeconds) {
    if (ParseUnixSecondsCell(cell, utc_ms)) return true;
    *why = named + "is not a time in Unix seconds: '" + cell + "'";
    return false;
  }
  if (*unit == TimeUnit::kIso8601) {
    if (ParseIsoTimeCell(cell, utc_ms)) return true;
    *why = named + "is not an ISO-8601 time with a UTC offset: '" + cell + "'";
    return false;
  }
  double t;
  std::string number_why;
  if (!ParseNumberCell(cell, &t, &number_why)) {
    *why = named + number_why;
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
  *utc_ms = static_cast<int64_t>(t);
  return true;
}

bool ReadChargingCell(const std::string& cell, const std::string& column,
                      const ChargingCodes& codes, double* value,
                      std::string* why, std::string* reason) {
  const std::string named = "column '" + column + "' ";
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
    *why = named + "holds an unknown charging code: '" + cell + "' (" +
           ChargingCodesText(codes) + ")";
    return false;
  }
  const std::string lower = LowerCase(cell);
  if (lower == "true" || lower == "false") {
    *value = lower == "true" ? 1 : 0;
    return true;
  }
  std::string number_why;
  if (!ParseNumberCell(cell, value, &number_why)) {
    *reason = "charging state not readable";
    *why = named + number_why;
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

}  // namespace kez_tools
