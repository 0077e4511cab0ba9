#include "adaptive/HostReportLine.h"

#include <cmath>

#include "interface/HostTime.h"
#include "interface/StatusLine.h"

namespace kez {
namespace adaptive {

bool HostReportFromLine(const char* line, HostReport* report) {
  const StatusLine s = StatusLine::Parse(line);
  const double ms = std::round(s.days * kMillisecondsPerDay);
  if (!(ms >= 0.0) || !(ms < 18446744073709551616.0)) return false;
  HostReport r;
  r.timeMs = static_cast<uint64_t>(ms);
  r.levelPercent = static_cast<float>(static_cast<double>(s.level) * 100.0);
  r.charging = s.charging;
  r.aux1 = s.aux1;
  r.aux2 = s.aux2;
  r.aux3 = s.aux3;
  r.countA = s.countA;
  r.countB1 = s.countB1;
  r.countB2 = s.countB2;
  *report = r;
  return true;
}

}  // namespace adaptive
}  // namespace kez
