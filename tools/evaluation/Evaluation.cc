#include "Evaluation.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <utility>

#include "Baselines.h"
#include "Forecast.h"
#include "ForecastPoints.h"
#include "KezSession.h"
#include "LogTruth.h"
#include "TextFormat.h"
#include "TimeText.h"

namespace kez_tools {

const char* MethodName(int method) {
  static const char* const kNames[kMethodCount] = {
      "forecaster",    "adaptive",  "persistence",
      "running_rates", "yesterday", "last_week"};
  return kNames[method];
}

const char* MethodTitle(int method) {
  static const char* const kTitles[kMethodCount] = {
      "forecaster",    "adaptive",  "persistence",
      "running rates", "yesterday", "last week"};
  return kTitles[method];
}

const char* ConditionName(int condition) {
  return condition == kFreeForecast ? "free" : "nocharge";
}

const char* ConditionTitle(int condition) {
  return condition == kFreeForecast ? "free forecast" : "not charged";
}

namespace {

// The step at which a path first shows the low level (levels are compared
// as they are shown, to the nearest whole percent), or -1.
int FirstLowStep(const std::vector<double>& level, double low_percent) {
  for (size_t k = 0; k < level.size(); ++k) {
    if (std::round(level[k]) <= low_percent) return static_cast<int>(k);
  }
  return -1;
}

// Paths of every method for one condition, in percent.
struct Paths {
  Forecast forecast;
  Path method[kConditionCount][kMethodCount];
};

Path FromRecords(const std::vector<stMobilePowerPredictionData>& records) {
  Path p;
  for (const stMobilePowerPredictionData& r : records) {
    p.level.push_back(r.level * 100.0);
    p.charging.push_back(r.charging);
  }
  return p;
}

void AddNotes(const EvalOptions& o, LogEvaluation* r) {
  const std::string silence = FormatDuration(o.replay.max_silence_ms);
  if (r->points.phone_off > 0) {
    r->notes.push_back(
        Count(r->points.phone_off, "forecast point", "forecast points") +
        " fell in silences longer than " + silence +
        " (the phone or its logger was off) and " +
        (r->points.phone_off == 1 ? "was" : "were") + " skipped.");
  }
  if (r->points.no_new_report > 0) {
    r->notes.push_back(
        Count(r->points.no_new_report, "forecast point", "forecast points") +
        " had no new report since the point before (replayed as logged) and " +
        (r->points.no_new_report == 1 ? "was" : "were") +
        " skipped: its forecast would have been the same.");
  }
  if (r->points.made > 0 && !r->any_charging) {
    r->notes.push_back(
        "The log never shows charging: the chance of charging is judged "
        "against 'not charging' only, and the charge rate is never learned.");
  }
  const char* season_names[2] = {"yesterday", "last week"};
  for (int s = 0; s < 2; ++s) {
    if (r->points.seasonal_missing[s] > 0) {
      r->notes.push_back(
          std::string("The '") + season_names[s] + "' baseline lacked the " +
          (s == 0 ? "day" : "week") + " before in " +
          Count(r->points.seasonal_missing[s], "forecast", "forecasts") +
          " (a silence or the log's start) and kept the level there.");
    }
  }
  if (r->points.made > 0 && r->low.events == 0) {
    char low[32];
    std::snprintf(low, sizeof low, "%g", o.low_percent);
    r->notes.push_back(
        std::string("The log never runs down to ") + low +
        " % within the horizon without charging first: no error of the time "
        "to reach it.");
  }
  size_t nocharge = 0;
  for (const HorizonResult& h : r->horizons) {
    nocharge += h.level[kNotCharged][kForecaster].count();
  }
  if (r->points.made > 0 && nocharge == 0) {
    r->notes.push_back(
        "No forecast was followed by a stretch without charging: the 'not "
        "charged' variant has no pair.");
  }
}

}  // namespace

bool CheckOptions(const EvalOptions& o, std::string* error) {
  if (o.horizons_ms.empty()) {
    *error = "no forecast horizon given";
    return false;
  }
  int64_t previous = 0;
  for (int64_t h : o.horizons_ms) {
    if (h <= 0 || h % kStepMs != 0) {
      *error = "forecast horizons must be positive multiples of 10 minutes";
      return false;
    }
    if (h <= previous) {
      *error = "forecast horizons must be given in ascending order";
      return false;
    }
    if (h > 30 * kDayMs) {
      *error = "forecast horizons are at most 30 days (the memory's length)";
      return false;
    }
    previous = h;
  }
  if (o.every_ms <= 0) {
    *error = "the interval between forecast points must be positive";
    return false;
  }
  if (o.warmup_ms < 0) {
    *error = "the warm-up must not be negative";
    return false;
  }
  if (o.replay.interval_ms <= 0) {
    *error = "the replay's report interval must be positive";
    return false;
  }
  if (o.has_from && o.has_to && o.to_ms < o.from_ms) {
    *error = "the end of the forecast range is before its start";
    return false;
  }
  return true;
}

bool EvaluateLog(const Log& log, const EvalOptions& o, LogEvaluation* result,
                 std::string* error) {
  if (!CheckOptions(o, error)) return false;
  if (log.samples.empty()) {
    *error = log.source + ": the log holds no sample";
    return false;
  }
  LogEvaluation r;
  r.source = log.source;
  r.samples = log.samples.size();
  r.first_ms = log.samples.front().time_ms;
  r.last_ms = log.samples.back().time_ms;
  r.span_ms = r.last_ms - r.first_ms;
  r.low_percent = o.low_percent;
  for (const LogSample& s : log.samples) {
    if (s.charging > 0.5) r.any_charging = true;
  }
  for (int64_t h : o.horizons_ms) {
    HorizonResult hr;
    hr.horizon_ms = h;
    r.horizons.push_back(hr);
  }

  const int64_t longest = o.horizons_ms.back();
  const int steps = static_cast<int>(longest / kStepMs);
  const int64_t silence = o.replay.max_silence_ms;
  const ForecastPoints grid(log, o);
  const int64_t truth_end = grid.truth_end_ms();

  if (grid.empty()) {
    if (r.first_ms + o.warmup_ms > r.last_ms) {
      r.notes.push_back(
          "The log spans " + FormatDuration(r.span_ms) +
          ", less than the warm-up of " + FormatDuration(o.warmup_ms) +
          ": no forecast was made (a shorter warm-up: --warmup).");
    } else {
      r.notes.push_back(
          "No forecast point lies in the range asked for (after the warm-up "
          "of " + FormatDuration(o.warmup_ms) +
          ", within the log and the --from/--to range).");
    }
    *result = std::move(r);
    return true;
  }

  LogTruth truth(log, silence);
  KezSession session;
  if (o.adaptive) session.EnableAdaptive();
  if (o.parameter != nullptr && !session.UseModel(*o.parameter)) {
    *error = "the forecaster has no instance";
    return false;
  }
  const bool wanted[kVariantCount] = {true, true, false};
  const int64_t seasons[2] = {kDayMs, 7 * kDayMs};

  auto visit = [&](const ForecastPoint& fp) -> bool {
    const int64_t point = fp.point_ms;
    const int64_t start = fp.start_ms;
    Paths paths;
    if (!MakeForecast(session.instance(), steps, wanted, start, *fp.last,
                      &paths.forecast, error)) {
      return false;
    }
    const double level_now = fp.last->level_percent;
    const bool charging_now = fp.last->charging > 0.5;
    const bool learned = paths.forecast.learned();
    ++r.points.made;
    if (learned) ++r.points.learned;
    if (r.first_point_ms < 0) r.first_point_ms = point;
    r.last_point_ms = point;

    for (int c = 0; c < kConditionCount; ++c) {
      const int variant = c == kFreeForecast ? kFree
                                              : kNoCharge;
      paths.method[c][kForecaster] =
          FromRecords(paths.forecast.records[variant]);
      if (session.adaptive() != nullptr) {
        std::vector<stMobilePowerPredictionData> records(
            static_cast<size_t>(steps));
        if (session.adaptive()->Predict(
                c == kFreeForecast ? kez::adaptive::kFree
                                   : kez::adaptive::kNotCharged,
                steps, records.data()) != 1) {
          *error = "the adaptive forecaster could not forecast";
          return false;
        }
        paths.method[c][kAdaptive] = FromRecords(records);
      }
      paths.method[c][kPersistence] =
          PersistencePath(level_now, charging_now, steps);
      paths.method[c][kRunningRates] =
          c == kFreeForecast
              ? RunningRatePath(session.predictor(), steps, -1, 0)
              : RunningRatePath(session.predictor(), steps, 0, 144);
    }
    for (int s = 0; s < 2; ++s) {
      Path seasonal;
      if (!SeasonalPath(truth, start, level_now, seasons[s], steps,
                        &seasonal)) {
        ++r.points.seasonal_missing[s];
        seasonal = paths.method[kFreeForecast][kPersistence];
      }
      // The seasonal baselines know nothing of the condition: the same path
      // stands for both variants.
      paths.method[kFreeForecast][kYesterday + s] = seasonal;
      paths.method[kNotCharged][kYesterday + s] = std::move(seasonal);
    }

    const Outlook outlook =
        truth.LookAhead(start, start + longest, o.low_percent);
    for (HorizonResult& hr : r.horizons) {
      const int64_t target = start + hr.horizon_ms;
      const size_t k = static_cast<size_t>(hr.horizon_ms / kStepMs) - 1;
      double level = 0;
      bool charging = false;
      if (target > truth_end) {
        ++hr.left_after_end;
        ++hr.nocharge_left_after_end;
        continue;
      }
      if (!truth.LevelAt(target, &level) ||
          !truth.ChargingAt(target, &charging)) {
        ++hr.left_in_silence;
        ++hr.nocharge_left_silence;
        continue;
      }
      ++hr.pairs;
      if (learned) ++hr.learned;
      for (int m = 0; m < kMethodCount; ++m) {
        const Path& p = paths.method[kFreeForecast][m];
        if (p.level.empty()) continue;  // a method not evaluated
        hr.level[kFreeForecast][m].Add(std::fabs(p.level[k] - level));
        hr.charging[m].Add(p.charging[k], charging);
      }
      if (charging_now ||
          (outlook.first_charging_ms >= 0 &&
           outlook.first_charging_ms <= target)) {
        ++hr.nocharge_left_charging;
      } else if (outlook.first_silence_ms >= 0 &&
                 outlook.first_silence_ms < target) {
        ++hr.nocharge_left_silence;
      } else {
        for (int m = 0; m < kMethodCount; ++m) {
          const Path& p = paths.method[kNotCharged][m];
          if (p.level.empty()) continue;
          hr.level[kNotCharged][m].Add(std::fabs(p.level[k] - level));
        }
      }
    }

    // Time to reach the low level.
    const int64_t low = outlook.first_low_ms;
    if (!charging_now && level_now > o.low_percent && low >= 0 &&
        low <= truth_end &&
        (outlook.first_charging_ms < 0 || outlook.first_charging_ms > low) &&
        (outlook.first_silence_ms < 0 || outlook.first_silence_ms >= low)) {
      ++r.low.events;
      const double truth_minutes =
          static_cast<double>(low - start) / kMinuteMs;
      for (int c = 0; c < kConditionCount; ++c) {
        for (int m = 0; m < kMethodCount; ++m) {
          if (paths.method[c][m].level.empty()) continue;
          int k = FirstLowStep(paths.method[c][m].level, o.low_percent);
          if (k < 0) {
            ++r.low.misses[c][m];
            k = steps;  // just after the horizon's end
          }
          const double minutes = (k + 1) * 10.0;
          r.low.minutes[c][m].Add(std::fabs(minutes - truth_minutes));
        }
      }
    }
    return true;
  };
  if (!grid.Run(session, visit, &r.points, &r.replay)) return false;
  AddNotes(o, &r);
  *result = std::move(r);
  return true;
}

LogEvaluation Combine(const std::vector<LogEvaluation>& results) {
  LogEvaluation total;
  total.logs = 0;
  total.source = "all logs";
  for (const LogEvaluation& r : results) {
    if (total.logs == 0) {
      total.horizons = r.horizons;
      for (HorizonResult& h : total.horizons) {
        int64_t horizon = h.horizon_ms;
        h = HorizonResult();
        h.horizon_ms = horizon;
      }
      total.first_ms = r.first_ms;
      total.last_ms = r.last_ms;
      total.low_percent = r.low_percent;
    }
    ++total.logs;
    total.samples += r.samples;
    total.span_ms += r.span_ms;
    total.any_charging = total.any_charging || r.any_charging;
    total.replay.samples_read += r.replay.samples_read;
    total.replay.reports_added += r.replay.reports_added;
    total.replay.gaps += r.replay.gaps;
    total.replay.gap_steps += r.replay.gap_steps;
    PointCounts& p = total.points;
    p.planned += r.points.planned;
    p.made += r.points.made;
    p.learned += r.points.learned;
    p.phone_off += r.points.phone_off;
    p.no_new_report += r.points.no_new_report;
    p.seasonal_missing[0] += r.points.seasonal_missing[0];
    p.seasonal_missing[1] += r.points.seasonal_missing[1];
    for (size_t i = 0; i < total.horizons.size() && i < r.horizons.size();
         ++i) {
      HorizonResult& t = total.horizons[i];
      const HorizonResult& h = r.horizons[i];
      t.pairs += h.pairs;
      t.learned += h.learned;
      t.left_in_silence += h.left_in_silence;
      t.left_after_end += h.left_after_end;
      t.nocharge_left_charging += h.nocharge_left_charging;
      t.nocharge_left_silence += h.nocharge_left_silence;
      t.nocharge_left_after_end += h.nocharge_left_after_end;
      for (int m = 0; m < kMethodCount; ++m) {
        for (int c = 0; c < kConditionCount; ++c) {
          t.level[c][m].Merge(h.level[c][m]);
        }
        t.charging[m].Merge(h.charging[m]);
      }
    }
    total.low.events += r.low.events;
    for (int c = 0; c < kConditionCount; ++c) {
      for (int m = 0; m < kMethodCount; ++m) {
        total.low.minutes[c][m].Merge(r.low.minutes[c][m]);
        total.low.misses[c][m] += r.low.misses[c][m];
      }
    }
  }
  total.source = "all " + std::to_string(total.logs) + " logs";
  return total;
}

double Score(const LogEvaluation& result) {
  double sum = 0;
  int n = 0;
  for (const HorizonResult& h : result.horizons) {
    const ErrorStats& e = h.level[kFreeForecast][kForecaster];
    if (e.count() == 0) continue;
    sum += e.Mean();
    ++n;
  }
  return n == 0 ? std::numeric_limits<double>::quiet_NaN()
                : sum / static_cast<double>(n);
}

}  // namespace kez_tools
