#include "ReplayDescription.h"

#include "TextFormat.h"
#include "TimeText.h"

namespace kez_tools {

std::string DescribeReplay(const ReplayOptions& o, const ReplayStats& s) {
  std::string text = Count(s.samples_read, "sample", "samples") + " read, ";
  if (o.as_logged) {
    text += "replayed as logged";
  } else {
    text += Count(s.reports_added, "report", "reports") + " added (every " +
            FormatDuration(o.interval_ms) + " between samples at most " +
            FormatDuration(o.max_silence_ms) + " apart)";
  }
  text += ", " + Count(s.gaps, "gap", "gaps") + " left";
  if (s.gaps > 0) {
    text += " (" + Count(s.gap_steps, "ten-minute step", "ten-minute steps") +
            " without a report)";
  }
  return text;
}

}  // namespace kez_tools
