// Command-line options that several tools share, read in one place so that
// they mean the same everywhere:
//   --interval MIN      report every MIN minutes between logged samples
//   --max-silence H     samples more than H hours apart leave a gap
//   --as-logged         feed the logged samples only
//   --tz-offset HOURS   show and read times at this offset from UTC
//   --local             show and read times in the local time zone (TZ)
// and the tools' messages: "TOOL: error" on standard error with exit status 2
// for a wrong command line (Usage) or 1 for a failure (Fail).
#ifndef KEZ_TOOLS_COMMON_CLI_COMMONOPTIONS_H_
#define KEZ_TOOLS_COMMON_CLI_COMMONOPTIONS_H_

#include <string>

#include "CliArgs.h"
#include "DisplayZone.h"
#include "Replayer.h"

// Help lines of the replay and time-zone options, for the tools' usage texts.
#define KEZ_REPLAY_OPTIONS_HELP                                              \
  "  --interval MIN     report every MIN minutes between logged samples\n"  \
  "                     (default 5)\n"                                      \
  "  --max-silence H    samples more than H hours apart leave a gap: the\n" \
  "                     phone was off (default 12)\n"                       \
  "  --as-logged        feed the logged samples only, add no reports\n"
#define KEZ_ZONE_OPTIONS_HELP                                                \
  "  --tz-offset HOURS  show and read times at this offset from UTC\n"      \
  "  --local            show and read times in the local time zone (TZ)\n"

namespace kez_tools {

// What a Take...Option call did with the argument `a` just taken.
enum class OptionResult { kNotMine, kTaken, kBad };

// Reads `a` (and its value from `args`) when it is a replay option.
OptionResult TakeReplayOption(CliArgs& args, const std::string& a,
                              ReplayOptions* replay, std::string* error);
// Reads `a` (and its value) when it is a time zone option.
OptionResult TakeZoneOption(CliArgs& args, const std::string& a,
                            DisplayZone* zone, std::string* error);

class ToolMessages {
 public:
  explicit ToolMessages(std::string tool) : tool_(std::move(tool)) {}
  // Prints the error and a pointer to --help; returns 2.
  int Usage(const std::string& error) const;
  // Prints the error; returns 1.
  int Fail(const std::string& error) const;

 private:
  std::string tool_;
};

// The library's version text ("1.04.21").
std::string LibraryVersion();

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_CLI_COMMONOPTIONS_H_
