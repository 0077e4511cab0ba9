#include "LogTimeCell.h"

#include "CivilTime.h"

namespace kez_tools {
namespace {

constexpr int64_t kMaxMs = int64_t{1} << 53;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Reads exactly `n` digits at s[*at].
bool Digits(const std::string& s, size_t* at, int n, int* value) {
  int v = 0;
  for (int i = 0; i < n; ++i) {
    if (*at >= s.size() || !IsDigit(s[*at])) return false;
    v = v * 10 + (s[*at] - '0');
    ++*at;
  }
  *value = v;
  return true;
}

// Reads "." and one or more digits at s[*at] (if there) as milliseconds,
// rounded down.
bool Fraction(const std::string& s, size_t* at, int* ms) {
  *ms = 0;
  if (*at >= s.size() || s[*at] != '.') return true;
  ++*at;
  int n = 0;
  while (*at < s.size() && IsDigit(s[*at])) {
    if (n < 3) *ms = *ms * 10 + (s[*at] - '0');
    ++n;
    ++*at;
  }
  if (n == 0) return false;
  for (int i = n; i < 3; ++i) *ms *= 10;
  return true;
}

}  // namespace

bool ParseUnixSecondsCell(const std::string& cell, int64_t* utc_ms) {
  size_t at = 0;
  int64_t seconds = 0;
  while (at < cell.size() && IsDigit(cell[at])) {
    seconds = seconds * 10 + (cell[at] - '0');
    if (seconds > kMaxMs / 1000) return false;
    ++at;
  }
  if (at == 0) return false;
  int ms = 0;
  if (!Fraction(cell, &at, &ms) || at != cell.size()) return false;
  int64_t t = seconds * 1000 + ms;
  if (t > kMaxMs) return false;
  *utc_ms = t;
  return true;
}

bool ParseIsoTimeCell(const std::string& cell, int64_t* utc_ms) {
  size_t at = 0;
  int year, month, day, hour, minute, second = 0, ms = 0;
  auto expect = [&](char c) {
    if (at >= cell.size() || cell[at] != c) return false;
    ++at;
    return true;
  };
  if (!Digits(cell, &at, 4, &year) || !expect('-') ||
      !Digits(cell, &at, 2, &month) || !expect('-') ||
      !Digits(cell, &at, 2, &day)) {
    return false;
  }
  if (at >= cell.size() || (cell[at] != 'T' && cell[at] != ' ')) return false;
  ++at;
  if (!Digits(cell, &at, 2, &hour) || !expect(':') ||
      !Digits(cell, &at, 2, &minute)) {
    return false;
  }
  if (at < cell.size() && cell[at] == ':') {
    ++at;
    if (!Digits(cell, &at, 2, &second) || !Fraction(cell, &at, &ms)) {
      return false;
    }
  }
  if (at < cell.size() && cell[at] == ' ') ++at;
  if (at >= cell.size()) return false;  // no offset
  int offset_minutes = 0;
  if (cell[at] == 'Z') {
    ++at;
  } else if (cell[at] == '+' || cell[at] == '-') {
    const int sign = cell[at] == '-' ? -1 : 1;
    ++at;
    int oh, om = 0;
    if (!Digits(cell, &at, 2, &oh)) return false;
    if (at < cell.size()) {
      if (cell[at] == ':') ++at;
      if (!Digits(cell, &at, 2, &om)) return false;
    }
    if (oh > 23 || om > 59) return false;
    offset_minutes = sign * (oh * 60 + om);
  } else {
    return false;
  }
  if (at != cell.size()) return false;
  if (month < 1 || month > 12 || day < 1 || day > DaysInMonth(year, month) ||
      hour > 23 || minute > 59 || second > 59) {
    return false;
  }
  int64_t t = DaysFromCivil(year, month, day) * 86400000 +
              ((hour * 60 + minute - offset_minutes) * 60 + second) *
                  int64_t{1000} +
              ms;
  if (t < 0 || t > kMaxMs) return false;
  *utc_ms = t;
  return true;
}

}  // namespace kez_tools
