#include "DisplayZone.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace kez_tools {
namespace {

std::string OffsetName(int64_t offset_ms) {
  int64_t minutes = offset_ms / 60000;
  char sign = minutes < 0 ? '-' : '+';
  if (minutes < 0) minutes = -minutes;
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "UTC%c%02d:%02d", sign,
                static_cast<int>(minutes / 60), static_cast<int>(minutes % 60));
  return buffer;
}

bool LocalTm(int64_t utc_ms, std::tm* tm) {
  std::time_t t = static_cast<std::time_t>(FloorDiv(utc_ms, 1000));
  return localtime_r(&t, tm) != nullptr;
}

}  // namespace

int64_t DisplayZone::OffsetMs(int64_t utc_ms) const {
  switch (kind_) {
    case kUtc:
      return 0;
    case kFixed:
      return static_cast<int64_t>(offset_minutes_) * 60000;
    case kLocal: {
      std::tm tm{};
      if (!LocalTm(utc_ms, &tm)) return 0;
      return static_cast<int64_t>(tm.tm_gmtoff) * 1000;
    }
  }
  return 0;
}

std::string DisplayZone::Name(int64_t utc_ms) const {
  switch (kind_) {
    case kUtc:
      return "UTC";
    case kFixed:
      return OffsetName(OffsetMs(utc_ms));
    case kLocal: {
      std::tm tm{};
      if (LocalTm(utc_ms, &tm) && tm.tm_zone != nullptr && tm.tm_zone[0]) {
        return tm.tm_zone;
      }
      return OffsetName(OffsetMs(utc_ms));
    }
  }
  return "UTC";
}

int64_t DisplayZone::FromWall(int64_t wall_ms) const {
  // Two rounds settle the offset except inside a daylight-saving jump, where
  // the nearer of the two candidate moments is as good as any.
  int64_t guess = wall_ms - OffsetMs(wall_ms);
  guess = wall_ms - OffsetMs(guess);
  return guess;
}

}  // namespace kez_tools
