// The time zone in which tools show and read wall-clock times: UTC (the
// default), a fixed offset from UTC, or the system's local time (the TZ
// environment variable, through the C library).
#ifndef KEZ_TOOLS_COMMON_TEXT_DISPLAYZONE_H_
#define KEZ_TOOLS_COMMON_TEXT_DISPLAYZONE_H_

#include <cstdint>
#include <string>

#include "CivilTime.h"

namespace kez_tools {

class DisplayZone {
 public:
  static DisplayZone Utc() { return DisplayZone(kUtc, 0); }
  static DisplayZone FixedOffset(int offset_minutes) {
    return DisplayZone(offset_minutes == 0 ? kUtc : kFixed, offset_minutes);
  }
  static DisplayZone Local() { return DisplayZone(kLocal, 0); }

  // Milliseconds to add to a UTC time to get the wall-clock time.
  int64_t OffsetMs(int64_t utc_ms) const;
  // "UTC", "UTC+02:00", or the local zone's abbreviation ("CEST").
  std::string Name(int64_t utc_ms) const;
  // The wall-clock date and time of a UTC moment.
  CivilTime ToCivil(int64_t utc_ms) const {
    return CivilFromMs(utc_ms + OffsetMs(utc_ms));
  }
  // The UTC moment of a wall-clock time given as milliseconds since
  // 1970-01-01 00:00 on the wall clock.
  int64_t FromWall(int64_t wall_ms) const;

 private:
  enum Kind { kUtc, kFixed, kLocal };
  DisplayZone(Kind kind, int offset_minutes)
      : kind_(kind), offset_minutes_(offset_minutes) {}

  Kind kind_;
  int offset_minutes_;
};

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_TEXT_DISPLAYZONE_H_
