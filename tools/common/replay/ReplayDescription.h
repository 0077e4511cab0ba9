// What a replay did, in one line for people: the tools print it in their
// summaries (kez-forecast's "Replay" line, kez-eval's per-log header).
#ifndef KEZ_TOOLS_COMMON_REPLAY_REPLAYDESCRIPTION_H_
#define KEZ_TOOLS_COMMON_REPLAY_REPLAYDESCRIPTION_H_

#include <string>

#include "Replayer.h"

namespace kez_tools {

// One line on what the replay did, e.g. "9811 samples read, 512 reports
// added (every 5 min between samples at most 12 h apart), 1 gap left
// (48 ten-minute steps without a report)".
std::string DescribeReplay(const ReplayOptions& options,
                           const ReplayStats& stats);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_REPLAY_REPLAYDESCRIPTION_H_
