// Command-line options that several tools share, read in one place so that
// they mean the same everywhere:
//   --interval MIN      report every MIN minutes between logged samples
//   --max-silence H     samples more than H hours apart leave a gap
//   --as-logged         feed the logged samples only
//   --tz-offset HOURS   show and read times at this offset from UTC
//   --local             show and read times in the local time zone (TZ)
//   --map FILE, --column F=NAME, --time-unit U, --level-scale S,
//   --charging-codes C, --order O, --duplicates D, --skip-bad-rows,
//   --no-detect         how a CSV log is read (LogReadOptions)
// and the tools' messages: "TOOL: error" on standard error with exit status 2
// for a wrong command line (Usage) or 1 for a failure (Fail).
#ifndef KEZ_TOOLS_COMMON_CLI_COMMONOPTIONS_H_
#define KEZ_TOOLS_COMMON_CLI_COMMONOPTIONS_H_

#include <string>
#include <utility>
#include <vector>

#include "CliArgs.h"
#include "DisplayZone.h"
#include "LogReadOptions.h"
#include "LogSample.h"
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
// Help lines of the log-reading options.
#define KEZ_READ_OPTIONS_HELP                                                 \
  "  --map FILE         read CSV logs as this mapping file says (columns,\n" \
  "                     units, charging codes; see docs/TOOLS.md)\n"        \
  "  --column F=NAME    read F (time, level, charging, aux1, aux2, aux3,\n"  \
  "                     countA, countB1, countB2) from column NAME;\n"      \
  "                     charging=none: the log has no charging state\n"     \
  "  --time-unit U      ms, s or iso8601 (with a UTC offset)\n"             \
  "  --level-scale S    percent or fraction\n"                               \
  "  --charging-codes C boolean (0/1, true/false), android_status,\n"       \
  "                     android_plug, or the codes meaning charging (2,5)\n" \
  "  --order O          rows out of time order: refuse (default) or sort\n" \
  "  --duplicates D     rows with one time: keep (default), first or last\n" \
  "  --skip-bad-rows    skip rows that cannot be read, and count them\n"    \
  "  --no-detect        read what is not given from time_ms (ms),\n"        \
  "                     level_percent and charging; by default other\n"     \
  "                     columns and units are detected, and the tool says\n" \
  "                     on standard error what it found\n"

namespace kez_tools {

// What a Take...Option call did with the argument `a` just taken.
enum class OptionResult { kNotMine, kTaken, kBad };

// Reads `a` (and its value from `args`) when it is a replay option.
OptionResult TakeReplayOption(CliArgs& args, const std::string& a,
                              ReplayOptions* replay, std::string* error);
// Reads `a` (and its value) when it is a time zone option.
OptionResult TakeZoneOption(CliArgs& args, const std::string& a,
                            DisplayZone* zone, std::string* error);

// The log-reading options of a command line: the mapping file and, over it,
// the settings given one by one (in mapping-file terms).
struct LogReadSettings {
  std::string map_path;
  std::vector<std::pair<std::string, std::string>> settings;
};

// Reads `a` (and its value) when it is a log-reading option.
OptionResult TakeLogReadOption(CliArgs& args, const std::string& a,
                               LogReadSettings* settings, std::string* error);
// Takes the log-reading options out of `args` (for a tool with a parser of
// its own); false with *error on a bad one.
bool ExtractLogReadOptions(std::vector<std::string>* args,
                           LogReadSettings* settings, std::string* error);
// The options to read logs with: the mapping file's settings, then the
// command line's. False with *error when the file cannot be read, or when
// column settings are given for status lines (which have fixed columns).
bool ResolveLogReadOptions(const LogReadSettings& settings, LogFormat format,
                           LogReadOptions* options, std::string* error);

class ToolMessages {
 public:
  explicit ToolMessages(std::string tool) : tool_(std::move(tool)) {}
  // Prints the error and a pointer to --help; returns 2.
  int Usage(const std::string& error) const;
  // Prints the error; returns 1.
  int Fail(const std::string& error) const;
  // Prints a note ("TOOL: note") on standard error.
  void Note(const std::string& note) const;
  // Reads the log at `path` as `options` say and, unless it was read the
  // way the tools write logs, notes how it was read: "TOOL: PATH: read ...".
  bool ReadLog(const std::string& path, const LogReadOptions& options,
               Log* log, std::string* error) const;

 private:
  std::string tool_;
};

// The library's version text ("1.04.21").
std::string LibraryVersion();

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_CLI_COMMONOPTIONS_H_
