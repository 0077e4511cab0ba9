// Prints evaluation results: a readable report (tables per log, the best
// method of each row marked, a verdict on where the forecaster loses to a
// baseline, and notes on what was left out), a tidy CSV (one value a row)
// and JSON. A statistic without any pair prints as "-" (text), an empty cell
// (CSV) or null (JSON).
#ifndef KEZ_TOOLS_KEZ_EVAL_EVALREPORT_H_
#define KEZ_TOOLS_KEZ_EVAL_EVALREPORT_H_

#include <ostream>
#include <string>
#include <vector>

#include "DisplayZone.h"
#include "Evaluation.h"

namespace kez_tools {

struct ReportHeader {
  std::string version;  // the library's version text
  EvalOptions options;
  bool has_parameter_file = false;
  std::string parameter_file;
  kez_tools::DisplayZone zone = kez_tools::DisplayZone::Utc();
};

// One section per result; `combined` (may be null) is printed last.
void WriteReportText(std::ostream& out, const ReportHeader& header,
                     const std::vector<LogEvaluation>& results,
                     const LogEvaluation* combined);

// Columns: log,condition,method,horizon_h,metric,value,n. Metrics per
// horizon: mae_pp, p90_pp (both conditions), brier (free), and, with method
// "forecaster", learned_share and the counts pairs, left_in_silence,
// left_after_end, left_charging (nocharge); per log (horizon_h empty):
// low_level_mae_min and low_level_misses, with n the number of events.
void WriteReportCsv(std::ostream& out, const std::vector<LogEvaluation>& results,
                    const LogEvaluation* combined);

void WriteReportJson(std::ostream& out, const ReportHeader& header,
                     const std::vector<LogEvaluation>& results,
                     const LogEvaluation* combined);

// The sentences of the verdict: per metric, at which horizons a baseline
// beats the forecaster (used by the text report, kept apart for tests).
std::vector<std::string> Verdict(const LogEvaluation& result);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_EVAL_EVALREPORT_H_
