// The answers people want from a forecast, found with kez_forecast_find:
//   free forecast:    when charging is expected (chance of charging >= 50 %),
//                     when the level reaches the asked level (default 20 %);
//   not charged:      when it reaches the asked level, and 0 %;
//   plugged in now:   when it reaches 80 %, and full;
//   and, with a time asked, the level there in every variant made.
// Levels are compared exactly, with the threshold N % as the fraction
// N / 100.0 ("reaches 20 %" means a forecast level of 0.2 or less; 20.3 % has
// not reached it), by the same rule as the Java API's answers. An answer is
// "now" when the last report's level already meets it (again exactly, in
// percent), and has no step when the forecast does not reach it within its
// horizon.
#ifndef KEZ_TOOLS_KEZ_FORECAST_FORECASTANSWERS_H_
#define KEZ_TOOLS_KEZ_FORECAST_FORECASTANSWERS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "Forecast.h"

namespace kez_tools {

struct AnswerOptions {
  int level_percent = 20;   // the level asked with --level
  bool has_when = false;    // a time asked with --when
  int64_t when_ms = 0;
};

struct Answer {
  enum Kind { kChargingExpected, kLevelReached, kLevelRisen, kLevelAt };
  Kind kind = kLevelReached;
  int variant = kFree;
  int percent = 0;          // the level asked (kLevelReached, kLevelRisen)
  bool now = false;         // met by the last report already
  int step = -1;            // first step that meets it; -1: not in horizon
  int64_t time_ms = -1;     // time of that step (kLevelAt: the time asked)
  double level = -1;        // kLevelAt: the level there, percent; -1 when
                            // the time lies outside the forecast
};

std::vector<Answer> ComputeAnswers(const Forecast& forecast,
                                   const AnswerOptions& options);

// The step nearest to `time_ms`; -1 before the first step's half, `steps`
// past the last step's half.
int NearestStep(const Forecast& forecast, int64_t time_ms);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_FORECAST_FORECASTANSWERS_H_
