// kez-forecast: replays a battery log through the library's C interface the
// way a host app reports, then prints the forecast: a table of the three
// variants, what the forecast was learned from, and the answers people ask
// for (when will it be empty, full, charged). See docs/TOOLS.md.
#include <cmath>
#include <fstream>
#include <iostream>
#include <string>

#include "CliArgs.h"
#include "CommonOptions.h"
#include "DisplayZone.h"
#include "Forecast.h"
#include "ForecastAnswers.h"
#include "ForecastOutput.h"
#include "KezSession.h"
#include "LogReader.h"
#include "ParameterFile.h"
#include "Replayer.h"
#include "SvgChart.h"
#include "TimeText.h"
#include "kez/kez.h"
#include "predictor/MobilePowerPredictorParameter.h"

namespace {

using namespace kez_tools;

const ToolMessages kMessages("kez-forecast");
int Usage(const std::string& error) { return kMessages.Usage(error); }
int Fail(const std::string& error) { return kMessages.Fail(error); }

const char kUsage[] =
    "usage: kez-forecast [options] LOG\n"
    "\n"
    "Replays a battery log (CSV with time_ms, level_percent, charging; - reads\n"
    "standard input) into the forecaster as an app reports, then prints the\n"
    "forecast of the coming hours and when the battery will be low, empty,\n"
    "full or on the charger.\n"
    "\n"
    "forecast:\n"
    "  --steps N          10-minute steps to forecast (default 144, one day)\n"
    "  --variant V        free, nocharge, charge or all (default all)\n"
    "  --at TIME          forecast from TIME: replay only the log up to it\n"
    "  --level N          the low level to ask about, percent (default 20)\n"
    "  --when TIME        also tell the level at TIME (HH:MM: next such time)\n"
    "model:\n"
    "  --params FILE      forecast with the model in this parameter file (as\n"
    "                     kez-tune writes it) instead of the built-in one\n"
    "output:\n"
    "  --format F         text (default), csv (one row per step) or json\n"
    "  --every N          text table: one row per N steps (default 3)\n"
    "  --svg FILE         also draw a chart of the last 2 days and the forecast\n"
    KEZ_ZONE_OPTIONS_HELP
    "                     (default: UTC)\n"
    "replay:\n"
    "  --status-lines     LOG holds the host's status lines, not CSV\n"
    KEZ_REPLAY_OPTIONS_HELP
    "reading:\n"
    KEZ_READ_OPTIONS_HELP
    "\n"
    "  -h, --help         this text;  --version  the library's version\n"
    "\n"
    "TIME is YYYY-MM-DDTHH:MM (optionally with Z or +HH:MM), or Unix ms.\n"
    "example: kez-forecast --at 2024-04-07T18:00 --svg chart.svg log.csv\n";

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::cerr << kUsage;
    return 2;
  }
  CliArgs args(argc, argv);
  std::string path, format = "text", svg, at_text, when_text, params, error;
  bool has_path = false;
  LogFormat log_format = LogFormat::kCsv;
  ReplayOptions replay;
  LogReadSettings read_settings;
  int steps = 144, every = 3, level = 20;
  bool wanted[kVariantCount] = {true, true, true};
  DisplayZone zone = DisplayZone::Utc();
  while (!args.Done()) {
    std::string a = args.Take();
    OptionResult taken = TakeReplayOption(args, a, &replay, &error);
    if (taken == OptionResult::kNotMine) {
      taken = TakeZoneOption(args, a, &zone, &error);
    }
    if (taken == OptionResult::kNotMine) {
      taken = TakeLogReadOption(args, a, &read_settings, &error);
    }
    if (taken == OptionResult::kBad) return Usage(error);
    if (taken == OptionResult::kTaken) continue;
    int64_t n;
    std::string v;
    if (a == "-h" || a == "--help") {
      std::cout << kUsage;
      return 0;
    } else if (a == "--version") {
      std::cout << "kez-forecast, library " << LibraryVersion() << "\n";
      return 0;
    } else if (a == "--steps") {
      if (!args.Int(a, 1, 4320, &n, &error)) return Usage(error);
      steps = static_cast<int>(n);
    } else if (a == "--variant") {
      if (!args.Value(a, &v, &error)) return Usage(error);
      bool all = v == "all";
      for (int k = 0; k < kVariantCount; ++k) wanted[k] = all || v == VariantName(k);
      if (!all && !wanted[kFree] && !wanted[kNoCharge] && !wanted[kCharge]) {
        return Usage("--variant is free, nocharge, charge or all, not '" + v +
                     "'");
      }
    } else if (a == "--at") {
      if (!args.Value(a, &at_text, &error)) return Usage(error);
    } else if (a == "--when") {
      if (!args.Value(a, &when_text, &error)) return Usage(error);
    } else if (a == "--level") {
      if (!args.Int(a, 0, 100, &n, &error)) return Usage(error);
      level = static_cast<int>(n);
    } else if (a == "--params") {
      if (!args.Value(a, &params, &error)) return Usage(error);
    } else if (a == "--format") {
      if (!args.Value(a, &format, &error)) return Usage(error);
      if (format != "text" && format != "csv" && format != "json") {
        return Usage("--format is text, csv or json, not '" + format + "'");
      }
    } else if (a == "--every") {
      if (!args.Int(a, 1, 4320, &n, &error)) return Usage(error);
      every = static_cast<int>(n);
    } else if (a == "--svg") {
      if (!args.Value(a, &svg, &error)) return Usage(error);
    } else if (a == "--status-lines") {
      log_format = LogFormat::kStatusLines;
    } else if (a.size() > 1 && a[0] == '-') {
      return Usage("unknown option '" + a + "'");
    } else if (has_path) {
      return Usage("one log at a time ('" + path + "' and '" + a + "')");
    } else {
      path = a;
      has_path = true;
    }
  }
  if (!has_path) return Usage("no log given");

  // Times given on the command line are read before the log, so that a typo
  // is reported at once.
  int64_t at_ms = -1;
  if (!at_text.empty() && !ParseMoment(at_text, zone, &at_ms, &error)) {
    return Usage("--at: " + error);
  }
  int when_clock = -1;
  int64_t when_ms = -1;
  if (!when_text.empty() && !ParseClock(when_text, &when_clock) &&
      !ParseMoment(when_text, zone, &when_ms, &error)) {
    return Usage("--when: '" + when_text + "' is neither HH:MM nor a time");
  }

  vorn::MobilePowerPredictorParameter parameter;
  if (!params.empty() &&
      !kez_tools::LoadParameterFile(params, &parameter, &error)) {
    return Fail(error);
  }

  LogReadOptions read_options;
  if (!ResolveLogReadOptions(read_settings, log_format, &read_options,
                             &error)) {
    return Fail(error);
  }
  Log log;
  if (!kMessages.ReadLog(path, read_options, &log, &error)) return Fail(error);
  const int64_t first = log.samples.front().time_ms;
  const int64_t last = log.samples.back().time_ms;
  if (at_ms >= 0 && at_ms < first) {
    return Fail("--at " + FormatDateTime(at_ms, zone) + " " +
                zone.Name(at_ms) + " is before the log's first sample (" +
                FormatDateTime(first, zone) + ")");
  }

  KezSession session;
  if (!params.empty() && !session.UseModel(parameter)) {
    return Fail("the library could not create an instance");
  }
  Replayer replayer(log, replay, session.Sink());
  replayer.ReplayTo(at_ms >= 0 ? at_ms : last);

  Forecast forecast;
  if (!MakeForecast(session.instance(), steps, wanted, session.last_time_ms(),
                    *session.last_sample(), &forecast, &error)) {
    return Fail(error);
  }
  AnswerOptions answer_options;
  answer_options.level_percent = level;
  if (when_clock >= 0) {
    when_ms = NextClockTime(forecast.start_ms, when_clock, zone);
  }
  if (!when_text.empty()) {
    answer_options.has_when = true;
    answer_options.when_ms = when_ms;
  }

  ForecastView view;
  view.source = path == "-" ? "standard input" : path;
  view.format = log_format;
  view.log_samples = log.samples.size();
  view.log_first_ms = first;
  view.log_last_ms = last;
  view.at_ms = at_ms;
  view.replay = replay;
  view.stats = replayer.stats();
  view.forecast = forecast;
  view.answers = ComputeAnswers(forecast, answer_options);
  view.zone = zone;
  view.every = every;
  view.version = LibraryVersion();

  if (format == "text") {
    WriteForecastText(std::cout, view);
  } else if (format == "csv") {
    WriteForecastCsv(std::cout, view);
  } else {
    WriteForecastJson(std::cout, view);
  }

  if (!svg.empty()) {
    ChartInput chart;
    chart.log = &log;
    chart.cut_ms = at_ms >= 0 ? at_ms : last;
    chart.max_silence_ms = replay.max_silence_ms;
    chart.forecast = forecast;
    chart.zone = zone;
    std::string name = view.source;
    size_t slash = name.find_last_of('/');
    if (slash != std::string::npos) name = name.substr(slash + 1);
    chart.title = "Battery forecast: " + name;
    chart.subtitle = "from " +
                     FormatDayClock(forecast.start_ms, zone).substr(0, 4) +
                     FormatDateTime(forecast.start_ms, zone) + " " +
                     zone.Name(forecast.start_ms) + ", " +
                     (forecast.learned()
                          ? DescribeForecastSource(forecast)
                          : std::string("extrapolated from the running rates "
                                        "(no similar past moment yet)"));
    std::ofstream file(svg, std::ios::binary);
    if (file) WriteSvgChart(file, chart);
    file.flush();
    if (!file) return Fail("cannot write the chart to " + svg);
  }
  std::cout.flush();
  return std::cout ? 0 : 1;
}
