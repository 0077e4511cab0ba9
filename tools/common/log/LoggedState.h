// What a battery log says the phone's state was at a moment: the one rule
// behind the truth that forecasts are judged against (LogTruth) and the
// tests that check a forecast against the log.
#ifndef KEZ_TOOLS_COMMON_LOG_LOGGEDSTATE_H_
#define KEZ_TOOLS_COMMON_LOG_LOGGEDSTATE_H_

#include <cstdint>

#include "LogSample.h"

namespace kez_tools {

// The logged state at `time_ms`: the last sample at or before it, or nullptr
// when the log says nothing there (before the first or after the last sample,
// or inside a silence longer than `max_silence_ms`). This is the truth that a
// forecast made from a replay is measured against.
const LogSample* LoggedStateAt(const Log& log, int64_t time_ms,
                               int64_t max_silence_ms);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_LOG_LOGGEDSTATE_H_
