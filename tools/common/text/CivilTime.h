// Calendar arithmetic on Unix milliseconds, without the C library's time
// zone machinery: days since 1970-01-01 to and from year/month/day, weekday.
// Pure integer arithmetic, identical on every platform. Valid for any
// proleptic Gregorian date.
#ifndef KEZ_TOOLS_COMMON_TEXT_CIVILTIME_H_
#define KEZ_TOOLS_COMMON_TEXT_CIVILTIME_H_

#include <cstdint>

namespace kez_tools {

struct CivilTime {
  int year = 1970;
  int month = 1;  // 1..12
  int day = 1;    // 1..31
  int hour = 0;
  int minute = 0;
  int second = 0;
  int weekday = 4;  // 0 = Sunday .. 6 = Saturday
};

// Days since 1970-01-01 of the given date.
int64_t DaysFromCivil(int year, int month, int day);
// Splits Unix milliseconds (already shifted into the wanted zone).
CivilTime CivilFromMs(int64_t ms);
// Days in a month of a year.
int DaysInMonth(int year, int month);
// Floor division that also works for negative numerators.
int64_t FloorDiv(int64_t a, int64_t b);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_TEXT_CIVILTIME_H_
