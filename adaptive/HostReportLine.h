// HostReportLine: the status sample of one line of the host's status log
// (the line kez_addStatusValues takes, see interface/StatusLine.h) as a
// HostReport for the adaptive forecaster.
//
// The line's time, which the line parser gives in days, goes back to whole
// milliseconds (exact for any time a phone reports: the division is undone
// to well within a millisecond), its level fraction back to percent. False
// (and *report untouched) when the time is negative, not finite or beyond
// the unsigned 64-bit range.
#ifndef KEZ_ADAPTIVE_HOSTREPORTLINE_H_
#define KEZ_ADAPTIVE_HOSTREPORTLINE_H_

#include "adaptive/AdaptiveForecaster.h"

namespace kez {
namespace adaptive {

bool HostReportFromLine(const char* line, HostReport* report);

}  // namespace adaptive
}  // namespace kez

#endif  // KEZ_ADAPTIVE_HOSTREPORTLINE_H_
