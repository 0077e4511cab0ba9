#include "LogWriter.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "TimeText.h"

namespace kez_tools {

std::string FormatNumber(double value) {
  if (value == 0) return "0";  // also for -0
  char b[40];
  for (int precision : {6, 10, 15, 17}) {
    std::snprintf(b, sizeof b, "%.*g", precision, value);
    if (std::strtod(b, nullptr) == value) break;
  }
  return b;
}

void WriteCsv(std::ostream& out, const Log& log) {
  out << "time_ms,level_percent,charging,aux1,aux2,aux3,countA,countB1,"
         "countB2\n";
  for (const LogSample& s : log.samples) {
    out << s.time_ms << ',' << FormatNumber(s.level_percent) << ','
        << FormatNumber(s.charging) << ',' << FormatNumber(s.aux1) << ','
        << FormatNumber(s.aux2) << ',' << FormatNumber(s.aux3) << ','
        << FormatNumber(s.count_a) << ',' << FormatNumber(s.count_b1) << ','
        << FormatNumber(s.count_b2) << '\n';
  }
}

void WriteStatusLines(std::ostream& out, const Log& log,
                      const DisplayZone& zone) {
  for (const LogSample& s : log.samples) {
    std::string iso = FormatIso(s.time_ms, zone);
    out << s.time_ms << ',' << iso << ',' << FormatNumber(s.level_percent)
        << ',' << FormatNumber(s.charging) << ',' << (s.charging > 0.5 ? 1 : 0)
        << ",2," << std::lround(s.aux1 * 10.0) << ','
        << std::lround(s.aux2 * 1000.0) << ',' << (s.aux3 > 0 ? 1 : 0);
    for (int c = 9; c <= 18; ++c) out << ",0";
    out << ',' << FormatNumber(s.count_b1) << ',' << FormatNumber(s.count_b2)
        << ",0,0,0," << FormatNumber(s.aux1) << ',' << FormatNumber(s.aux2)
        << ',' << FormatNumber(s.aux3) << ",0,0," << FormatNumber(s.count_a)
        << ",0,sim\n";
  }
}

}  // namespace kez_tools
