#include "TimeText.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>

namespace kez_tools {
namespace {

const char* const kWeekday[7] = {"Sun", "Mon", "Tue", "Wed",
                                 "Thu", "Fri", "Sat"};

// Reads exactly `digits` decimal digits at text[*pos].
bool Digits(const std::string& text, size_t* pos, int digits, int* value) {
  if (*pos + digits > text.size()) return false;
  int v = 0;
  for (int i = 0; i < digits; ++i) {
    char c = text[*pos + i];
    if (!std::isdigit(static_cast<unsigned char>(c))) return false;
    v = v * 10 + (c - '0');
  }
  *pos += digits;
  *value = v;
  return true;
}

bool Expect(const std::string& text, size_t* pos, char c) {
  if (*pos < text.size() && text[*pos] == c) {
    ++*pos;
    return true;
  }
  return false;
}

}  // namespace

std::string FormatDateTime(int64_t utc_ms, const DisplayZone& zone) {
  CivilTime c = zone.ToCivil(utc_ms);
  char b[48];
  std::snprintf(b, sizeof b, "%04d-%02d-%02d %02d:%02d", c.year, c.month,
                c.day, c.hour, c.minute);
  return b;
}

std::string FormatDayClock(int64_t utc_ms, const DisplayZone& zone) {
  CivilTime c = zone.ToCivil(utc_ms);
  char b[32];
  std::snprintf(b, sizeof b, "%s %02d:%02d", kWeekday[c.weekday], c.hour,
                c.minute);
  return b;
}

std::string FormatClock(int64_t utc_ms, const DisplayZone& zone) {
  CivilTime c = zone.ToCivil(utc_ms);
  char b[16];
  std::snprintf(b, sizeof b, "%02d:%02d", c.hour, c.minute);
  return b;
}

std::string FormatIso(int64_t utc_ms, const DisplayZone& zone) {
  int64_t offset = zone.OffsetMs(utc_ms);
  CivilTime c = CivilFromMs(utc_ms + offset);
  char b[64];
  int n = std::snprintf(b, sizeof b, "%04d-%02d-%02dT%02d:%02d:%02d", c.year,
                        c.month, c.day, c.hour, c.minute, c.second);
  if (offset == 0) {
    std::snprintf(b + n, sizeof b - n, "Z");
  } else {
    int64_t m = offset / 60000;
    char sign = m < 0 ? '-' : '+';
    if (m < 0) m = -m;
    std::snprintf(b + n, sizeof b - n, "%c%02d:%02d", sign,
                  static_cast<int>(m / 60), static_cast<int>(m % 60));
  }
  return b;
}

std::string FormatDuration(int64_t ms) {
  std::string sign = ms < 0 ? "-" : "";
  if (ms < 0) ms = -ms;
  int64_t minutes = (ms + 30000) / 60000;
  int64_t days = minutes / 1440;
  int64_t hours = minutes >= 48 * 60 ? minutes / 60 % 24 : minutes / 60;
  int64_t mins = minutes % 60;
  std::string text;
  if (minutes >= 48 * 60) {
    text = std::to_string(days) + " d";
    if (hours > 0) text += " " + std::to_string(hours) + " h";
    return sign + text;
  }
  if (hours > 0) {
    text = std::to_string(hours) + " h";
    if (mins > 0) text += " " + std::to_string(mins) + " min";
    return sign + text;
  }
  return sign + std::to_string(mins) + " min";
}

bool ParseMoment(const std::string& text, const DisplayZone& zone,
                 int64_t* utc_ms, std::string* error) {
  bool all_digits = !text.empty();
  for (char c : text) {
    if (!std::isdigit(static_cast<unsigned char>(c))) all_digits = false;
  }
  if (all_digits && text.size() > 8) {
    if (text.size() > 16) {
      *error = "'" + text + "' is too large for a time in milliseconds";
      return false;
    }
    *utc_ms = std::strtoll(text.c_str(), nullptr, 10);
    return true;
  }
  const std::string bad =
      "'" + text +
      "' is not a time (use YYYY-MM-DDTHH:MM, optionally with Z or +HH:MM, "
      "or Unix milliseconds)";
  size_t pos = 0;
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
  if (!Digits(text, &pos, 4, &year) || !Expect(text, &pos, '-') ||
      !Digits(text, &pos, 2, &month) || !Expect(text, &pos, '-') ||
      !Digits(text, &pos, 2, &day)) {
    *error = bad;
    return false;
  }
  if (pos < text.size() && (text[pos] == 'T' || text[pos] == ' ')) {
    ++pos;
    if (!Digits(text, &pos, 2, &hour) || !Expect(text, &pos, ':') ||
        !Digits(text, &pos, 2, &minute)) {
      *error = bad;
      return false;
    }
    if (Expect(text, &pos, ':') && !Digits(text, &pos, 2, &second)) {
      *error = bad;
      return false;
    }
  }
  if (month < 1 || month > 12 || day < 1 || day > DaysInMonth(year, month) ||
      hour > 23 || minute > 59 || second > 59) {
    *error = "'" + text + "' is not a valid date and time";
    return false;
  }
  int64_t wall = (DaysFromCivil(year, month, day) * 86400 + hour * 3600 +
                  minute * 60 + second) * 1000;
  if (pos == text.size()) {
    *utc_ms = zone.FromWall(wall);
    return true;
  }
  if (Expect(text, &pos, 'Z') && pos == text.size()) {
    *utc_ms = wall;
    return true;
  }
  if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) {
    int sign = text[pos] == '-' ? -1 : 1;
    ++pos;
    int oh = 0, om = 0;
    if (Digits(text, &pos, 2, &oh) &&
        (pos == text.size() ||
         (Expect(text, &pos, ':') && Digits(text, &pos, 2, &om))) &&
        pos == text.size() && oh <= 14 && om <= 59) {
      *utc_ms = wall - sign * (oh * 60 + om) * int64_t{60000};
      return true;
    }
  }
  *error = bad;
  return false;
}

bool ParseClock(const std::string& text, int* minute_of_day) {
  size_t pos = 0;
  int h, m;
  if (text.size() == 4) {  // "7:30"
    if (!Digits(text, &pos, 1, &h)) return false;
  } else if (!Digits(text, &pos, 2, &h)) {
    return false;
  }
  if (!Expect(text, &pos, ':') || !Digits(text, &pos, 2, &m) ||
      pos != text.size() || h > 23 || m > 59) {
    return false;
  }
  *minute_of_day = h * 60 + m;
  return true;
}

int64_t NextClockTime(int64_t after_ms, int minute_of_day,
                      const DisplayZone& zone) {
  int64_t wall_now = after_ms + zone.OffsetMs(after_ms);
  int64_t day = FloorDiv(wall_now, 86400000);
  for (int i = 0; i < 3; ++i) {
    int64_t t = zone.FromWall((day + i) * 86400000 +
                              int64_t{minute_of_day} * 60000);
    if (t >= after_ms) return t;
  }
  return after_ms;
}

}  // namespace kez_tools
