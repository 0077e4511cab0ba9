#include "CivilTime.h"

namespace kez_tools {

int64_t FloorDiv(int64_t a, int64_t b) {
  int64_t q = a / b;
  if ((a % b != 0) && ((a < 0) != (b < 0))) --q;
  return q;
}

// Era-based conversion: a 400-year era has a fixed number of days.
int64_t DaysFromCivil(int year, int month, int day) {
  int64_t y = static_cast<int64_t>(year) - (month <= 2 ? 1 : 0);
  int64_t era = FloorDiv(y, 400);
  int64_t yoe = y - era * 400;
  int64_t mp = (month + 9) % 12;
  int64_t doy = (153 * mp + 2) / 5 + day - 1;
  int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

CivilTime CivilFromMs(int64_t ms) {
  int64_t days = FloorDiv(ms, 86400000);
  int64_t rest = ms - days * 86400000;
  CivilTime c;
  c.hour = static_cast<int>(rest / 3600000);
  c.minute = static_cast<int>(rest / 60000 % 60);
  c.second = static_cast<int>(rest / 1000 % 60);
  c.weekday = static_cast<int>(((days % 7) + 11) % 7);  // 1970-01-01: Thu
  int64_t z = days + 719468;
  int64_t era = FloorDiv(z, 146097);
  int64_t doe = z - era * 146097;
  int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  int64_t mp = (5 * doy + 2) / 153;
  c.day = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  c.month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  c.year = static_cast<int>(yoe + era * 400 + (c.month <= 2 ? 1 : 0));
  return c;
}

int DaysInMonth(int year, int month) {
  static const int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month == 2) {
    bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return leap ? 29 : 28;
  }
  return kDays[(month - 1) % 12];
}

}  // namespace kez_tools
