// kez-eval: measures how right the forecaster is on battery logs. Replays
// each log through one instance as an app reports, forecasts at regular
// points, compares with what the log shows next, and sets simple baselines
// beside it. See docs/ACCURACY.md.
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "CliArgs.h"
#include "CommonOptions.h"
#include "DisplayZone.h"
#include "ErrorChart.h"
#include "EvalReport.h"
#include "Evaluation.h"
#include "HorizonList.h"
#include "LogReader.h"
#include "ParameterFile.h"
#include "TimeText.h"
#include "kez/kez.h"
#include "TextFormat.h"

namespace {

using namespace kez_tools;
using namespace kez_tools;

const ToolMessages kMessages("kez-eval");
int Usage(const std::string& error) { return kMessages.Usage(error); }
int Fail(const std::string& error) { return kMessages.Fail(error); }

const char kUsage[] =
    "usage: kez-eval [options] LOG...\n"
    "\n"
    "Measures the forecaster's accuracy on battery logs (CSV with time_ms,\n"
    "level_percent, charging). Each log is replayed into one instance as an\n"
    "app reports; at regular forecast points the free and the \"not charged\"\n"
    "forecast are compared with what the log shows next, beside simple\n"
    "baselines: persistence, the forecaster's running rates, and the change\n"
    "over the same hours yesterday and last week. Reports the level error per\n"
    "horizon (mean and 90th percentile, percentage points), the Brier score of\n"
    "the chance of charging, the error of the time to reach a low level, and\n"
    "the share of forecasts learned from similar past moments.\n"
    "\n"
    "forecast points:\n"
    "  --warmup DAYS      first forecast after DAYS of log (default 7)\n"
    "  --every HOURS      hours between forecast points (default 1)\n"
    "  --horizons LIST    horizons in hours, comma-separated, multiples of\n"
    "                     10 minutes (default 1,2,4,8,12,24)\n"
    "  --from TIME        forecast points from TIME on (the replay always\n"
    "                     starts at the log's start)\n"
    "  --to TIME          forecast points, and the log used to judge them, up\n"
    "                     to TIME (so --to and --from split a log into a\n"
    "                     tuning part and a held-out part)\n"
    "  --level N          the low level whose time is judged, percent\n"
    "                     (default 20)\n"
    "model:\n"
    "  --params FILE      judge the model in this parameter file (as the\n"
    "                     tuning tool saves it) instead of the built-in one\n"
    "replay:\n"
    "  --status-lines     the logs hold the host's status lines, not CSV\n"
    KEZ_REPLAY_OPTIONS_HELP
    "reading:\n"
    KEZ_READ_OPTIONS_HELP
    "output:\n"
    "  --format F         text (default), csv (log,condition,method,\n"
    "                     horizon_h,metric,value,n) or json\n"
    "  --svg FILE         draw the level error against the horizon\n"
    KEZ_ZONE_OPTIONS_HELP
    "\n"
    "  -h, --help         this text;  --version  the library's version\n"
    "\n"
    "With several logs, the results of all of them pooled follow. TIME is\n"
    "YYYY-MM-DD[THH:MM] (optionally with Z or +HH:MM), or Unix ms.\n"
    "Exit status: 0 when forecasts were judged, 1 when a log cannot be read\n"
    "or no log allowed any forecast, 2 for a wrong command line.\n"
    "example: kez-eval --svg error.svg examples/routine-35d.csv\n";

// "\r<log>: 312/672 forecast points" on a terminal, nothing otherwise.
class Progress {
 public:
  explicit Progress(const std::string& name)
      : name_(name), enabled_(isatty(STDERR_FILENO) != 0) {}
  ~Progress() {
    if (enabled_ && shown_) std::cerr << "\r\033[K" << std::flush;
  }
  void operator()(size_t done, size_t total) {
    if (!enabled_ || total == 0) return;
    size_t permille = done * 1000 / total;
    if (shown_ && permille == last_) return;
    last_ = permille;
    shown_ = true;
    std::cerr << "\rkez-eval: " << name_ << ": " << done << "/" << total
              << " forecast points" << std::flush;
  }

 private:
  std::string name_;
  bool enabled_;
  bool shown_ = false;
  size_t last_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::cerr << kUsage;
    return 2;
  }
  CliArgs args(argc, argv);
  std::vector<std::string> paths;
  std::string format = "text", svg, from_text, to_text, params, error;
  LogFormat log_format = LogFormat::kCsv;
  EvalOptions options;
  LogReadSettings read_settings;
  DisplayZone zone = DisplayZone::Utc();
  while (!args.Done()) {
    std::string a = args.Take();
    OptionResult taken = TakeReplayOption(args, a, &options.replay, &error);
    if (taken == OptionResult::kNotMine) {
      taken = TakeZoneOption(args, a, &zone, &error);
    }
    if (taken == OptionResult::kNotMine) {
      taken = TakeLogReadOption(args, a, &read_settings, &error);
    }
    if (taken == OptionResult::kBad) return Usage(error);
    if (taken == OptionResult::kTaken) continue;
    int64_t n;
    double x;
    std::string v;
    if (a == "-h" || a == "--help") {
      std::cout << kUsage;
      return 0;
    } else if (a == "--version") {
      std::cout << "kez-eval, library " << LibraryVersion() << "\n";
      return 0;
    } else if (a == "--warmup") {
      if (!args.Number(a, 0, 365, &x, &error)) return Usage(error);
      options.warmup_ms = std::llround(x * kDayMs);
    } else if (a == "--every") {
      if (!args.Number(a, 1.0 / 60, 24 * 30, &x, &error)) return Usage(error);
      options.every_ms = std::llround(x * kHourMs);
    } else if (a == "--horizons") {
      if (!args.Value(a, &v, &error)) return Usage(error);
      if (!ParseHorizonList(a, v, &options.horizons_ms, &error)) return Usage(error);
    } else if (a == "--from") {
      if (!args.Value(a, &from_text, &error)) return Usage(error);
    } else if (a == "--to") {
      if (!args.Value(a, &to_text, &error)) return Usage(error);
    } else if (a == "--level") {
      if (!args.Int(a, 1, 99, &n, &error)) return Usage(error);
      options.low_percent = static_cast<double>(n);
    } else if (a == "--params") {
      if (!args.Value(a, &params, &error)) return Usage(error);
    } else if (a == "--status-lines") {
      log_format = LogFormat::kStatusLines;
    } else if (a == "--format") {
      if (!args.Value(a, &format, &error)) return Usage(error);
      if (format != "text" && format != "csv" && format != "json") {
        return Usage("--format is text, csv or json, not '" + format + "'");
      }
    } else if (a == "--svg") {
      if (!args.Value(a, &svg, &error)) return Usage(error);
    } else if (a.size() > 1 && a[0] == '-') {
      return Usage("unknown option '" + a + "'");
    } else {
      paths.push_back(a);
    }
  }
  if (paths.empty()) return Usage("no log given");
  if (!from_text.empty()) {
    if (!ParseMoment(from_text, zone, &options.from_ms, &error)) {
      return Usage("--from: " + error);
    }
    options.has_from = true;
  }
  if (!to_text.empty()) {
    if (!ParseMoment(to_text, zone, &options.to_ms, &error)) {
      return Usage("--to: " + error);
    }
    options.has_to = true;
  }
  if (!CheckOptions(options, &error)) return Usage(error);

  vorn::MobilePowerPredictorParameter parameter;
  if (!params.empty()) {
    if (!LoadParameterFile(params, &parameter, &error)) return Fail(error);
    options.parameter = &parameter;
  }

  // Every log is read before the first replay, so that a typo in the last
  // one is reported at once.
  LogReadOptions read_options;
  if (!ResolveLogReadOptions(read_settings, log_format, &read_options,
                             &error)) {
    return Fail(error);
  }
  std::vector<Log> logs(paths.size());
  for (size_t i = 0; i < paths.size(); ++i) {
    if (!kMessages.ReadLog(paths[i], read_options, &logs[i], &error)) {
      return Fail(error);
    }
    if (paths[i] == "-") logs[i].source = "standard input";
  }

  std::vector<LogEvaluation> results(logs.size());
  size_t judged = 0;
  for (size_t i = 0; i < logs.size(); ++i) {
    Progress progress(BaseName(logs[i].source));
    EvalOptions o = options;
    o.progress = [&progress](size_t done, size_t total) {
      progress(done, total);
    };
    if (!EvaluateLog(logs[i], o, &results[i], &error)) {
      return Fail(logs[i].source + ": " + error);
    }
    if (results[i].points.made > 0) ++judged;
  }
  LogEvaluation combined;
  const LogEvaluation* pooled = nullptr;
  if (results.size() > 1) {
    combined = Combine(results);
    pooled = &combined;
  }

  ReportHeader header;
  header.version = LibraryVersion();
  header.options = options;
  header.has_parameter_file = !params.empty();
  header.parameter_file = params;
  header.zone = zone;
  if (format == "text") {
    WriteReportText(std::cout, header, results, pooled);
  } else if (format == "csv") {
    WriteReportCsv(std::cout, results, pooled);
  } else {
    WriteReportJson(std::cout, header, results, pooled);
  }

  if (!svg.empty()) {
    const LogEvaluation& shown = pooled != nullptr ? *pooled : results[0];
    std::string title =
        "Forecast error against horizon: " +
        (pooled != nullptr ? std::to_string(results.size()) + " logs pooled"
                           : BaseName(results[0].source));
    std::string subtitle =
        "forecasts every " + FormatDuration(options.every_ms) + " after a " +
        FormatDuration(options.warmup_ms) + " warm-up; replay " +
        (options.replay.as_logged
             ? std::string("as logged")
             : "with a report every " +
                   FormatDuration(options.replay.interval_ms)) +
        "; " + (params.empty() ? std::string("built-in model")
                               : "model " + BaseName(params));
    std::ofstream file(svg, std::ios::binary);
    if (file) WriteErrorChart(file, shown, title, subtitle);
    file.flush();
    if (!file) return Fail("cannot write the chart to " + svg);
  }
  std::cout.flush();
  if (!std::cout) return 1;
  if (judged == 0) {
    std::cerr << "kez-eval: no forecast could be judged (see the notes)\n";
    return 1;
  }
  return 0;
}
