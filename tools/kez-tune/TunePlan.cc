#include "TunePlan.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "TimeText.h"

namespace kez_tools {


namespace {

bool CheckHorizons(const std::vector<int64_t>& horizons, const char* what,
                   std::string* error) {
  if (horizons.empty()) {
    *error = std::string("no ") + what + " horizon given";
    return false;
  }
  int64_t previous = 0;
  for (int64_t h : horizons) {
    if (h <= 0 || h % kStepMs != 0 || h <= previous ||
        h > 30 * kez_tools::kDayMs) {
      *error = std::string(what) +
               " horizons must be ascending positive multiples of 10 minutes "
               "up to 30 days";
      return false;
    }
    previous = h;
  }
  return true;
}

}  // namespace

bool CheckPlan(const TunePlan& plan, std::string* error) {
  if (!CheckHorizons(plan.objective_horizons_ms, "objective", error) ||
      !CheckHorizons(plan.report_horizons_ms, "report", error)) {
    return false;
  }
  if (!(plan.split > 0.0 && plan.split <= 1.0)) {
    *error = "the tuning share of each log must be above 0 and at most 1";
    return false;
  }
  if (plan.search_every_ms <= 0 || plan.final_every_ms <= 0) {
    *error = "the interval between forecast points must be positive";
    return false;
  }
  if (plan.warmup_ms < 0) {
    *error = "the warm-up must not be negative";
    return false;
  }
  if (plan.generations < 0 || plan.seconds < 0) {
    *error = "the budget must not be negative";
    return false;
  }
  if (plan.generations == 0 && plan.seconds <= 0) {
    *error = "no budget: give a number of generations or of seconds";
    return false;
  }
  if (plan.threads < 1) {
    *error = "at least one thread is needed";
    return false;
  }
  if (plan.replay.interval_ms <= 0) {
    *error = "the replay's report interval must be positive";
    return false;
  }
  return true;
}

bool CheckLogs(const std::vector<kez_tools::Log>& logs, const TunePlan& plan,
               std::string* error) {
  if (logs.empty()) {
    *error = "no log given";
    return false;
  }
  for (const kez_tools::Log& log : logs) {
    if (SplitTime(log, plan) < 0) {
      const int64_t span =
          log.samples.empty()
              ? 0
              : log.samples.back().time_ms - log.samples.front().time_ms;
      *error = log.source + ": the log spans " +
               kez_tools::FormatDuration(span) + ", less than the warm-up of " +
               kez_tools::FormatDuration(plan.warmup_ms) +
               " (a shorter warm-up: --warmup)";
      return false;
    }
  }
  return true;
}

int64_t SplitTime(const kez_tools::Log& log, const TunePlan& plan) {
  if (log.samples.empty()) return -1;
  const int64_t start = log.samples.front().time_ms + plan.warmup_ms;
  const int64_t last = log.samples.back().time_ms;
  if (start > last) return -1;
  return start + std::llround(static_cast<double>(last - start) * plan.split);
}

kez_tools::EvalOptions PartOptions(const kez_tools::Log& log,
                                  const TunePlan& plan, Part part,
                                  int64_t every_ms,
                                  const std::vector<int64_t>& horizons_ms) {
  kez_tools::EvalOptions o;
  o.adaptive = false;  // the tuner judges the instance's model alone
  o.replay = plan.replay;
  o.warmup_ms = plan.warmup_ms;
  o.every_ms = every_ms;
  o.horizons_ms = horizons_ms;
  const int64_t split = SplitTime(log, plan);
  if (split >= 0) {
    if (part == kTuningPart) {
      o.has_to = true;
      o.to_ms = split;
    } else {
      o.has_from = true;
      o.from_ms = split + 1;
    }
  }
  return o;
}

std::vector<int64_t> FinalHorizons(const TunePlan& plan) {
  std::vector<int64_t> all = plan.report_horizons_ms;
  all.insert(all.end(), plan.objective_horizons_ms.begin(),
             plan.objective_horizons_ms.end());
  std::sort(all.begin(), all.end());
  all.erase(std::unique(all.begin(), all.end()), all.end());
  return all;
}

double ObjectiveScore(const kez_tools::LogEvaluation& result,
                      const std::vector<int64_t>& horizons_ms) {
  double sum = 0;
  int n = 0;
  for (int64_t h : horizons_ms) {
    for (const kez_tools::HorizonResult& r : result.horizons) {
      if (r.horizon_ms != h) continue;
      const kez_tools::ErrorStats& e =
          r.level[kez_tools::kFreeForecast][kez_tools::kForecaster];
      if (e.count() > 0) {
        sum += e.Mean();
        ++n;
      }
    }
  }
  return n == 0 ? std::numeric_limits<double>::quiet_NaN()
                : sum / static_cast<double>(n);
}

std::string HorizonList(const std::vector<int64_t>& horizons_ms) {
  std::string text;
  for (int64_t h : horizons_ms) {
    if (!text.empty()) text += ", ";
    text += kez_tools::FormatDuration(h);
  }
  return text;
}

}  // namespace kez_tools
