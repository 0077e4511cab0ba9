// Prints what kez-forecast found: what the replay did, whether the forecast
// was learned from similar moments or extrapolated, the answers, and the
// forecast table, as readable text, CSV (one row per step) or JSON.
#ifndef KEZ_TOOLS_KEZ_FORECAST_FORECASTOUTPUT_H_
#define KEZ_TOOLS_KEZ_FORECAST_FORECASTOUTPUT_H_

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "DisplayZone.h"
#include "Forecast.h"
#include "ForecastAnswers.h"
#include "LogSample.h"
#include "ReplayDescription.h"
#include "Replayer.h"

namespace kez_tools {

struct ForecastView {
  std::string source;         // the log's name
  LogFormat format = LogFormat::kCsv;
  size_t log_samples = 0;     // samples in the whole log
  int64_t log_first_ms = 0;
  int64_t log_last_ms = 0;
  int64_t at_ms = -1;         // the --at moment, or -1 for the end of the log
  ReplayOptions replay;
  ReplayStats stats;
  Forecast forecast;
  std::vector<Answer> answers;
  DisplayZone zone = DisplayZone::Utc();
  int every = 3;              // text table: one row per this many steps
  std::string version;        // the library's version text
};

void WriteForecastText(std::ostream& out, const ForecastView& view);
void WriteForecastCsv(std::ostream& out, const ForecastView& view);
void WriteForecastJson(std::ostream& out, const ForecastView& view);

// "learned from 16 similar past moments (search distance 3.12)" or the
// extrapolation notice.
std::string DescribeForecastSource(const Forecast& forecast);
// The answer as a short phrase: "Mon 16:40, in 16 h 42 min", "now",
// "not within 24 h".
std::string DescribeAnswerTime(const Answer& answer, const Forecast& forecast,
                               const DisplayZone& zone);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_FORECAST_FORECASTOUTPUT_H_
