// Prints the outcome of a tuning run for people: what was measured and how,
// the objective of the start and of the result on the search grid and on the
// fine grid of the tuning part and of the held-out part, the weights (or the
// feature set), and per log and horizon the level error of the start and of
// the result on the held-out part.
#ifndef KEZ_TOOLS_KEZ_TUNE_TUNEREPORT_H_
#define KEZ_TOOLS_KEZ_TUNE_TUNEREPORT_H_

#include <ostream>
#include <string>
#include <vector>

#include "FeatureTuner.h"
#include "LogSample.h"
#include "TunePlan.h"
#include "WeightTuner.h"

namespace kez_tools {

struct ReportContext {
  std::string version;     // the library's version text
  std::string start_name;  // "built-in model" or the start file
  const std::vector<kez_tools::Log>* logs = nullptr;
  TunePlan plan;
};

void WriteWeightReport(std::ostream& out, const ReportContext& context,
                       const WeightTuneResult& result);

void WriteFeatureReport(std::ostream& out, const ReportContext& context,
                        const FeatureTuneResult& result);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_TUNE_TUNEREPORT_H_
