#include "CommonOptions.h"

#include <cmath>
#include <iostream>

#include "kez/kez.h"

namespace kez_tools {

OptionResult TakeReplayOption(CliArgs& args, const std::string& a,
                              ReplayOptions* replay, std::string* error) {
  double x = 0;
  if (a == "--interval") {
    if (!args.Number(a, 0.1, 60, &x, error)) return OptionResult::kBad;
    replay->interval_ms = std::llround(x * kMinuteMs);
  } else if (a == "--max-silence") {
    if (!args.Number(a, 0, 24 * 366, &x, error)) return OptionResult::kBad;
    replay->max_silence_ms = std::llround(x * kHourMs);
  } else if (a == "--as-logged") {
    replay->as_logged = true;
  } else {
    return OptionResult::kNotMine;
  }
  return OptionResult::kTaken;
}

OptionResult TakeZoneOption(CliArgs& args, const std::string& a,
                            DisplayZone* zone, std::string* error) {
  double x = 0;
  if (a == "--tz-offset") {
    if (!args.Number(a, -14, 14, &x, error)) return OptionResult::kBad;
    *zone = DisplayZone::FixedOffset(static_cast<int>(std::lround(x * 60)));
  } else if (a == "--local") {
    *zone = DisplayZone::Local();
  } else {
    return OptionResult::kNotMine;
  }
  return OptionResult::kTaken;
}

int ToolMessages::Usage(const std::string& error) const {
  std::cerr << tool_ << ": " << error << "\n"
            << "run " << tool_ << " --help for the options\n";
  return 2;
}

int ToolMessages::Fail(const std::string& error) const {
  std::cerr << tool_ << ": " << error << "\n";
  return 1;
}

std::string LibraryVersion() {
  char buffer[32];
  kez_get_version(buffer, sizeof buffer);
  return buffer;
}

}  // namespace kez_tools
