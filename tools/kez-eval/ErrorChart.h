// Draws the mean absolute level error against the forecast horizon as an SVG
// chart: one panel for the free forecast and one for the "not charged"
// variant, one line per method (the forecaster drawn boldest), with axes,
// grid, a legend and the number of pairs under each panel. Horizons without
// pairs leave a break in the line.
#ifndef KEZ_TOOLS_KEZ_EVAL_ERRORCHART_H_
#define KEZ_TOOLS_KEZ_EVAL_ERRORCHART_H_

#include <ostream>
#include <string>

#include "Evaluation.h"

namespace kez_tools {

void WriteErrorChart(std::ostream& out, const LogEvaluation& result,
                     const std::string& title, const std::string& subtitle);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_EVAL_ERRORCHART_H_
