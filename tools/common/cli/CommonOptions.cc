#include "CommonOptions.h"

#include <cmath>
#include <iostream>

#include "LogMapFile.h"
#include "LogReader.h"
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

namespace {

// Command-line options that set one mapping-file key.
struct ReadOption {
  const char* option;
  const char* key;  // nullptr: --column, whose value is KEY=NAME
};
const ReadOption kReadOptions[] = {
    {"--column", nullptr},
    {"--time-unit", "time_unit"},
    {"--level-scale", "level_scale"},
    {"--charging-codes", "charging_codes"},
    {"--order", "order"},
    {"--duplicates", "duplicates"},
};

bool IsFieldName(const std::string& name) {
  for (int f = 0; f < kLogFieldCount; ++f) {
    if (name == LogFieldName(f)) return true;
  }
  return false;
}

}  // namespace

OptionResult TakeLogReadOption(CliArgs& args, const std::string& a,
                               LogReadSettings* settings, std::string* error) {
  if (a == "--map") {
    if (!args.Value(a, &settings->map_path, error)) return OptionResult::kBad;
    return OptionResult::kTaken;
  }
  if (a == "--skip-bad-rows") {
    settings->settings.emplace_back("bad_rows", "skip");
    return OptionResult::kTaken;
  }
  if (a == "--no-detect") {
    settings->settings.emplace_back("detect", "off");
    return OptionResult::kTaken;
  }
  for (const ReadOption& o : kReadOptions) {
    if (a != o.option) continue;
    std::string value;
    if (!args.Value(a, &value, error)) return OptionResult::kBad;
    std::string key = o.key != nullptr ? o.key : "";
    if (o.key == nullptr) {
      size_t eq = value.find('=');
      key = value.substr(0, eq == std::string::npos ? 0 : eq);
      if (eq == std::string::npos || !IsFieldName(key)) {
        *error = "--column takes FIELD=NAME with FIELD one of time, level, "
                 "charging, aux1, aux2, aux3, countA, countB1, countB2, not '" +
                 value + "'";
        return OptionResult::kBad;
      }
      value = value.substr(eq + 1);
    }
    // Checked now, so that a typo is a usage error.
    LogReadOptions scratch;
    std::string why;
    if (!ApplyLogSetting(key, value, &scratch, &why)) {
      *error = a + ": " + why;
      return OptionResult::kBad;
    }
    settings->settings.emplace_back(key, value);
    return OptionResult::kTaken;
  }
  return OptionResult::kNotMine;
}

bool ExtractLogReadOptions(std::vector<std::string>* args,
                           LogReadSettings* settings, std::string* error) {
  CliArgs all(*args);
  std::vector<std::string> rest;
  while (!all.Done()) {
    std::string a = all.Take();
    OptionResult taken = TakeLogReadOption(all, a, settings, error);
    if (taken == OptionResult::kBad) return false;
    if (taken == OptionResult::kNotMine) rest.push_back(a);
  }
  args->swap(rest);
  return true;
}

bool ResolveLogReadOptions(const LogReadSettings& settings, LogFormat format,
                           LogReadOptions* options, std::string* error) {
  *options = LogReadOptions();
  options->format = format;
  if (!settings.map_path.empty() &&
      !LoadLogMapFile(settings.map_path, options, error)) {
    return false;
  }
  for (const auto& s : settings.settings) {
    if (!ApplyLogSetting(s.first, s.second, options, error)) return false;
  }
  if (format == LogFormat::kStatusLines && options->AnyColumnSetting()) {
    *error = "column, unit and charging-code settings are for CSV logs; "
             "status lines have fixed columns";
    return false;
  }
  return true;
}

void ToolMessages::Note(const std::string& note) const {
  std::cerr << tool_ << ": " << note << "\n";
}

bool ToolMessages::ReadLog(const std::string& path,
                           const LogReadOptions& options, Log* log,
                           std::string* error) const {
  LogReadResult result;
  if (!ReadLogFile(path, options, log, &result, error)) return false;
  if (!result.Plain()) {
    Note((path == "-" ? std::string("standard input") : path) + ": read " +
         DescribeLogReading(result));
  }
  return true;
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
