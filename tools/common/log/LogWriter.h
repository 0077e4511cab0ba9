// Writes a Log as text: CSV with the header
// "time_ms,level_percent,charging,aux1,aux2,aux3,countA,countB1,countB2",
// or as the host's status lines (32 columns, the values at the positions that
// kez_addStatusValues reads; see WriteStatusLines). Numbers are written in the
// shortest form that reads back to the same double. LogReader reads both
// back to the same samples.
#ifndef KEZ_TOOLS_COMMON_LOG_LOGWRITER_H_
#define KEZ_TOOLS_COMMON_LOG_LOGWRITER_H_

#include <ostream>
#include <string>

#include "DisplayZone.h"
#include "LogSample.h"

namespace kez_tools {

// The shortest decimal text that reads back as `value` ("87", "27.3").
std::string FormatNumber(double value);

void WriteCsv(std::ostream& out, const Log& log);

// One line per sample, 32 columns:
//   0 time ms, 1 wall-clock time in `zone` (ISO), 2 level %, 3 charging,
//   4 plug type (1 = charger, 0 = none), 5 health (2 = good),
//   6 temperature in tenths of a degree, 7 voltage in mV,
//   8 screen used since the last line (0/1), 9..18 reserved (0),
//   19 countB1, 20 countB2, 21..23 reserved (0), 24 aux1, 25 aux2, 26 aux3,
//   27..28 reserved (0), 29 countA, 30 reserved (0), 31 the text "sim".
// The last column is text so that the line never ends in two equal fields.
void WriteStatusLines(std::ostream& out, const Log& log,
                      const DisplayZone& zone);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_LOG_LOGWRITER_H_
