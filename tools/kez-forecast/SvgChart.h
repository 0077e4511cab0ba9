// Draws a forecast as an SVG chart a person can read at a glance: the recent
// logged level (with the logged charging periods shaded), the forecast
// variants from the last report on, the forecast chance of charging as a
// shaded band, a "now" line, time and percent axes and a legend. When the
// log goes on after the forecast point (kez-forecast --at), what it logged
// next is drawn dashed for comparison.
#ifndef KEZ_TOOLS_KEZ_FORECAST_SVGCHART_H_
#define KEZ_TOOLS_KEZ_FORECAST_SVGCHART_H_

#include <cstdint>
#include <ostream>
#include <string>

#include "DisplayZone.h"
#include "Forecast.h"
#include "LogSample.h"

namespace kez_tools {

struct ChartInput {
  const Log* log = nullptr;
  int64_t cut_ms = 0;          // samples after this were not replayed
  int64_t history_ms = 48 * 3600 * 1000LL;
  int64_t max_silence_ms = 12 * 3600 * 1000LL;  // longer silences break lines
  Forecast forecast;
  DisplayZone zone = DisplayZone::Utc();
  std::string title;
  std::string subtitle;
};

void WriteSvgChart(std::ostream& out, const ChartInput& input);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_FORECAST_SVGCHART_H_
