// kez-tune: tunes the forecaster on recorded battery logs: its eleven
// weights (default), or, with --features, the feature set of its memory
// base. See docs/TUNING.md.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "CliArgs.h"
#include "CommonOptions.h"
#include "FeatureTuner.h"
#include "HorizonList.h"
#include "LogReader.h"
#include "ParameterFile.h"
#include "TimeText.h"
#include "TunePlan.h"
#include "TuneReport.h"
#include "WeightTuner.h"
#include "kez/kez.h"
#include "TextFormat.h"

namespace {

const kez_tools::ToolMessages kMessages("kez-tune");
int Usage(const std::string& error) { return kMessages.Usage(error); }
int Fail(const std::string& error) { return kMessages.Fail(error); }

using namespace kez_tools;
using kez_tools::kHourMs;
using kez_tools::kMinuteMs;
using kez_tools::kStepMs;

const char kUsage[] =
    "usage: kez-tune [options] LOG...\n"
    "       kez-tune --features [options] LOG...\n"
    "\n"
    "Tunes the forecaster on battery logs (CSV with time_ms, level_percent,\n"
    "charging). Each log is split in time: the forecasts of the first part\n"
    "(--split) are used for the search, those of the rest are held out and\n"
    "only reported, beside the start's. The objective is the mean absolute\n"
    "error of the forecast level, in percentage points, averaged over the\n"
    "objective horizons (lower is better).\n"
    "\n"
    "mode:\n"
    "  --weights          search the model's eleven weights (the default);\n"
    "                     the three integer settings stay as they are\n"
    "  --features         evolve the feature set of the memory base, judged\n"
    "                     by the core's forecast of all channels (level)\n"
    "search:\n"
    "  --seed N           random seed (default 1)\n"
    "  --generations N    generations to run (default 30; 0: no limit, then\n"
    "                     --seconds must be given)\n"
    "  --seconds S        start no new generation after S seconds (default:\n"
    "                     no limit); a run stopped by time is not repeatable\n"
    "  --threads N        evaluations at the same time (default 2); results\n"
    "                     do not depend on it\n"
    "  --offspring N      candidates per generation (default 8 for weights,\n"
    "                     2 for features)\n"
    "  --parents N        weights: candidates kept per generation (default 4)\n"
    "  --step X           weights: initial mutation step, natural logarithm\n"
    "                     (default 0.5; self-adapting within 0.01 .. 2)\n"
    "  --share X          weights: chance that a weight moves (default 0.5)\n"
    "  --start FILE       weights: start from this parameter file (default:\n"
    "                     the built-in model)\n"
    "  --level N          features: mutation level (default 1: add, replace,\n"
    "                     modify or remove a function; 0: modify only)\n"
    "measure:\n"
    "  --split X          share of each log's forecast span used for tuning\n"
    "                     (default 0.7; the rest is held out)\n"
    "  --warmup DAYS      first forecast after DAYS of log (default 7)\n"
    "  --every HOURS      hours between forecasts while searching (default 3)\n"
    "  --final-every HOURS  hours between forecasts in the final comparison\n"
    "                     (default 1)\n"
    "  --horizons LIST    objective horizons in hours, comma-separated\n"
    "                     (default 4,8,12,24)\n"
    "  --report-horizons LIST  horizons of the held-out table (default\n"
    "                     1,2,4,8,12,24)\n"
    "replay:\n"
    "  --status-lines     the logs hold the host's status lines, not CSV\n"
    KEZ_REPLAY_OPTIONS_HELP
    "reading:\n"
    KEZ_READ_OPTIONS_HELP
    "output:\n"
    "  --out FILE         weights: write the result as a parameter file\n"
    "                     (accuracy = its objective on the tuning part);\n"
    "                     features: write its genome, one number a line\n"
    "  --quiet            no progress line per generation (standard error)\n"
    "\n"
    "  -h, --help         this text;  --version  the library's version\n"
    "\n"
    "Exit status: 0 when done, 1 when a log or file cannot be read or\n"
    "written or no forecast could be judged, 2 for a wrong command line.\n"
    "example: kez-tune --generations 20 --out tuned.txt examples/routine-35d.csv\n";

std::string Change(double start, double best) {
  if (std::isnan(start) || std::isnan(best) || start == 0.0) return "";
  char text[32];
  std::snprintf(text, sizeof text, ", %+.1f %%", (best - start) / start * 100);
  return text;
}

std::string Of(int generation, int planned) {
  return std::to_string(generation) +
         (planned > 0 ? "/" + std::to_string(planned) : std::string());
}

void ShowWeightGeneration(const WeightGeneration& g, int planned) {
  std::cerr << "generation " << Of(g.generation, planned) << ": best "
            << Fixed(g.best_score, 3) << " (start " << Fixed(g.start_score, 3)
            << Change(g.start_score, g.best_score) << "), step "
            << Fixed(g.best_step, 3) << ", " << g.evaluations
            << " models judged, " << Fixed(g.elapsed_seconds, 1) << " s\n";
}

void ShowFeatureGeneration(const FeatureGeneration& g, int planned) {
  std::cerr << "generation " << Of(g.generation, planned) << ": best "
            << Fixed(g.best_score, 3) << " (start " << Fixed(g.start_score, 3)
            << Change(g.start_score, g.best_score) << ")";
  if (g.generation > 0) {
    std::cerr << ", best child " << Fixed(g.child_score, 3)
              << (g.improved ? " (kept)" : "");
  }
  std::cerr << ", " << g.features << " features, " << g.evaluations
            << " sets judged, " << Fixed(g.elapsed_seconds, 1) << " s\n";
}

// Writes the tuned model and reads it back as kez-eval and kez-forecast
// will (SaveToFile itself cannot report a failed write).
bool WriteParameter(const std::string& path,
                    const vorn::MobilePowerPredictorParameter& parameter,
                    std::string* error) {
  std::remove(path.c_str());
  parameter.SaveToFile(path.c_str());
  vorn::MobilePowerPredictorParameter check;
  if (!kez_tools::LoadParameterFile(path, &check, error)) {
    *error = "cannot write the parameter file " + path;
    return false;
  }
  for (int i = 0; i < kWeightCount; ++i) {
    if (check.weight[i] != parameter.weight[i]) {
      *error = path + ": the written weights do not read back as tuned";
      return false;
    }
  }
  return true;
}

bool WriteGenome(const std::string& path, const std::vector<double>& genome,
                 std::string* error) {
  std::ofstream out(path);
  char text[40];
  for (double v : genome) {
    std::snprintf(text, sizeof text, "%.17g\n", v);
    out << text;
  }
  out.flush();
  if (!out) {
    *error = "cannot write the genome to " + path;
    return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::cerr << kUsage;
    return 2;
  }
  kez_tools::CliArgs args(argc, argv);
  TunePlan plan;
  WeightSearchOptions weight_options;
  FeatureSearchOptions feature_options;
  bool features = false, quiet = false, offspring_given = false;
  kez_tools::LogFormat format = kez_tools::LogFormat::kCsv;
  std::string out_path, start_path, error;
  kez_tools::LogReadSettings read_settings;
  std::vector<std::string> paths;
  while (!args.Done()) {
    const std::string a = args.Take();
    kez_tools::OptionResult taken =
        kez_tools::TakeReplayOption(args, a, &plan.replay, &error);
    if (taken == kez_tools::OptionResult::kNotMine) {
      taken = kez_tools::TakeLogReadOption(args, a, &read_settings, &error);
    }
    if (taken == kez_tools::OptionResult::kBad) return Usage(error);
    if (taken == kez_tools::OptionResult::kTaken) continue;
    int64_t n;
    double x;
    std::string v;
    if (a == "-h" || a == "--help") {
      std::cout << kUsage;
      return 0;
    } else if (a == "--version") {
      std::cout << "kez-tune, library " << kez_tools::LibraryVersion() << "\n";
      return 0;
    } else if (a == "--weights") {
      features = false;
    } else if (a == "--features") {
      features = true;
    } else if (a == "--seed") {
      if (!args.Int(a, 0, INT64_MAX, &n, &error)) return Usage(error);
      plan.seed = static_cast<uint64_t>(n);
    } else if (a == "--generations") {
      if (!args.Int(a, 0, 1000000, &n, &error)) return Usage(error);
      plan.generations = static_cast<int>(n);
    } else if (a == "--seconds") {
      if (!args.Number(a, 0, 1e7, &x, &error)) return Usage(error);
      plan.seconds = x;
    } else if (a == "--threads") {
      if (!args.Int(a, 1, 256, &n, &error)) return Usage(error);
      plan.threads = static_cast<int>(n);
    } else if (a == "--offspring") {
      if (!args.Int(a, 1, 1000, &n, &error)) return Usage(error);
      weight_options.offspring = feature_options.offspring =
          static_cast<int>(n);
      offspring_given = true;
    } else if (a == "--parents") {
      if (!args.Int(a, 1, 1000, &n, &error)) return Usage(error);
      weight_options.parents = static_cast<int>(n);
    } else if (a == "--step") {
      if (!args.Number(a, kMinStep, kMaxStep, &x, &error)) return Usage(error);
      weight_options.initial_step = x;
    } else if (a == "--share") {
      if (!args.Number(a, 0.01, 1, &x, &error)) return Usage(error);
      weight_options.mutation_share = x;
    } else if (a == "--start") {
      if (!args.Value(a, &start_path, &error)) return Usage(error);
    } else if (a == "--level") {
      if (!args.Int(a, 0, 1, &n, &error)) return Usage(error);
      feature_options.level = static_cast<int>(n);
    } else if (a == "--split") {
      if (!args.Number(a, 0.01, 1, &x, &error)) return Usage(error);
      plan.split = x;
    } else if (a == "--warmup") {
      if (!args.Number(a, 0, 365, &x, &error)) return Usage(error);
      plan.warmup_ms = std::llround(x * 24 * kHourMs);
    } else if (a == "--every" || a == "--final-every") {
      if (!args.Number(a, 1.0 / 60, 24 * 7, &x, &error)) return Usage(error);
      (a == "--every" ? plan.search_every_ms : plan.final_every_ms) =
          std::llround(x * kHourMs);
    } else if (a == "--horizons") {
      if (!args.Value(a, &v, &error) ||
          !kez_tools::ParseHorizonList(a, v, &plan.objective_horizons_ms, &error)) {
        return Usage(error);
      }
    } else if (a == "--report-horizons") {
      if (!args.Value(a, &v, &error) ||
          !kez_tools::ParseHorizonList(a, v, &plan.report_horizons_ms, &error)) {
        return Usage(error);
      }
    } else if (a == "--status-lines") {
      format = kez_tools::LogFormat::kStatusLines;
    } else if (a == "--out") {
      if (!args.Value(a, &out_path, &error)) return Usage(error);
    } else if (a == "--quiet") {
      quiet = true;
    } else if (a.size() > 1 && a[0] == '-') {
      return Usage("unknown option '" + a + "'");
    } else {
      paths.push_back(a);
    }
  }
  if (paths.empty()) return Usage("no log given");
  if (features && !start_path.empty()) {
    return Usage("--start is for the weights; --features starts from the "
                 "default feature set");
  }
  if (!offspring_given) feature_options.offspring = 2;
  if (!CheckPlan(plan, &error)) return Usage(error);
  if (!features && !CheckSearchOptions(weight_options, &error)) {
    return Usage(error);
  }

  vorn::MobilePowerPredictorParameter start;
  if (!start_path.empty() &&
      !kez_tools::LoadParameterFile(start_path, &start, &error)) {
    return Fail(error);
  }
  kez_tools::LogReadOptions read_options;
  if (!kez_tools::ResolveLogReadOptions(read_settings, format, &read_options,
                                        &error)) {
    return Fail(error);
  }
  std::vector<kez_tools::Log> logs(paths.size());
  for (size_t i = 0; i < paths.size(); ++i) {
    if (!kMessages.ReadLog(paths[i], read_options, &logs[i], &error)) {
      return Fail(error);
    }
  }

  ReportContext context;
  context.version = kez_tools::LibraryVersion();
  context.start_name = start_path.empty()
                           ? std::string(features ? "default feature set"
                                                  : "built-in model")
                           : start_path;
  context.logs = &logs;
  context.plan = plan;

  if (features) {
    FeatureTuneResult result;
    auto progress = [&](const FeatureGeneration& g) {
      if (!quiet) ShowFeatureGeneration(g, plan.generations);
    };
    if (!TuneFeatures(logs, plan, feature_options, progress, &result,
                      &error)) {
      return Fail(error);
    }
    WriteFeatureReport(std::cout, context, result);
    if (!out_path.empty()) {
      if (!WriteGenome(out_path, result.best, &error)) return Fail(error);
      std::cout << "\nGenome written to " << out_path << "\n";
    }
  } else {
    WeightTuneResult result;
    auto progress = [&](const WeightGeneration& g) {
      if (!quiet) ShowWeightGeneration(g, plan.generations);
    };
    if (!TuneWeights(logs, start, plan, weight_options, progress, &result,
                     &error)) {
      return Fail(error);
    }
    WriteWeightReport(std::cout, context, result);
    if (!out_path.empty()) {
      if (!WriteParameter(out_path, result.parameter, &error)) {
        return Fail(error);
      }
      std::cout << "\nParameter file written to " << out_path
                << " (accuracy " << Fixed(result.parameter.accuracy, 4)
                << ": the objective on the tuning part)\n";
    }
  }
  std::cout.flush();
  return std::cout ? 0 : 1;
}
