#include "ForecastOutput.h"

#include <cmath>
#include <cstdio>

#include "MarkupText.h"
#include "TimeText.h"
#include "TextFormat.h"

namespace kez_tools {
namespace {

std::string Printf(const char* format, double value) {
  char b[64];
  std::snprintf(b, sizeof b, format, value);
  return b;
}

std::string Percent(double percent) {
  return Printf("%.0f %%", std::round(percent));
}

std::string TrimRight(std::string s) {
  while (!s.empty() && s.back() == ' ') s.pop_back();
  return s;
}

std::string Horizon(const Forecast& f) {
  return "not within " + FormatDuration(f.steps * kStepMs);
}

std::string AnswerLabel(const Answer& a, const DisplayZone& zone) {
  switch (a.kind) {
    case Answer::kChargingExpected:
      return "charging expected";
    case Answer::kLevelReached:
      if (a.variant == kFree) {
        return "reaches " + std::to_string(a.percent) + " %";
      }
      return "not charged: reaches " + std::to_string(a.percent) + " %";
    case Answer::kLevelRisen:
      return a.percent >= 100
                 ? std::string("plugged in now: full")
                 : "plugged in now: reaches " + std::to_string(a.percent) +
                       " %";
    case Answer::kLevelAt:
      return std::string("level at ") + FormatDayClock(a.time_ms, zone) +
             " (" + VariantTitle(a.variant) + ")";
  }
  return "";
}

const char* AnswerKey(const Answer& a) {
  switch (a.kind) {
    case Answer::kChargingExpected:
      return "charging_expected";
    case Answer::kLevelReached:
      return "level_reached";
    case Answer::kLevelRisen:
      return "level_risen";
    case Answer::kLevelAt:
      return "level_at";
  }
  return "";
}

// The method's name as the tools say it: the instance is "the forecaster".
std::string MethodLabel(int method) {
  if (method == kez::adaptive::kInstance) return "forecaster";
  std::string name = kez::adaptive::MethodName(method);
  for (char& c : name) {
    if (c == '_') c = ' ';
  }
  return name;
}

// The steps whose weights the text shows: 1 h, 4 h and 24 h ahead, as far
// as the forecast reaches (at least its last step).
std::vector<int> WeightSteps(const Forecast& f) {
  std::vector<int> steps;
  for (int k : {5, 23, 143}) {
    const int s = k < f.steps ? k : f.steps - 1;
    if (s >= 0 && (steps.empty() || steps.back() != s)) steps.push_back(s);
  }
  return steps;
}

}  // namespace

std::vector<std::string> DescribeWeights(const Forecast& f) {
  std::vector<std::string> lines;
  if (!f.adaptive || f.steps < 1) return lines;
  const std::vector<int> steps = WeightSteps(f);
  constexpr int kMethods = kez::adaptive::kMethodCount;
  std::string head = "each method's weight in the level at ";
  for (size_t i = 0; i < steps.size(); ++i) {
    head += (i == 0 ? "" : i + 1 == steps.size() ? " and " : ", ") +
            FormatDuration((steps[i] + 1) * kStepMs);
  }
  lines.push_back(head + " (percent):");
  for (int v = 0; v < kVariantCount; ++v) {
    if (!f.has[v]) continue;
    std::string line = Pad(VariantTitle(v), 16);
    bool first = true;
    for (int m = 0; m < kMethods; ++m) {
      bool used = false;
      std::string cells;
      for (size_t i = 0; i < steps.size(); ++i) {
        const double w =
            f.weights[v][static_cast<size_t>(steps[i]) * kMethods + m];
        if (w > 0.0) used = true;
        cells += (i == 0 ? "" : "/") + Printf("%.0f", std::round(w * 100.0));
      }
      if (!used) continue;
      line += (first ? "" : ", ") + MethodLabel(m) + " " + cells;
      first = false;
    }
    lines.push_back(line);
  }
  return lines;
}

std::string DescribeForecastSource(const Forecast& f) {
  if (f.learned()) {
    return "learned from " +
           Count(static_cast<size_t>(f.similar_moments),
                  "similar past moment", "similar past moments") +
           " (search distance " + Printf("%.2f", f.distance) + ")";
  }
  return "extrapolated from the running charge and discharge rates: no "
         "similar past moment was found (search distance " +
         Printf("%.1f", f.distance) +
         "); forecasts learn once the log holds days of history followed by "
         "a gap-free day";
}

std::string DescribeAnswerTime(const Answer& a, const Forecast& f,
                               const DisplayZone& zone) {
  if (a.kind == Answer::kLevelAt) {
    if (a.level < 0) return "outside the forecast";
    return Percent(a.level);
  }
  if (a.now) {
    if (a.kind == Answer::kChargingExpected) return "now (charging)";
    return "now (" + Percent(f.level_now) + ")";
  }
  if (a.step < 0) return Horizon(f);
  return FormatDayClock(a.time_ms, zone) + ", in " +
         FormatDuration(a.time_ms - f.start_ms);
}

void WriteForecastText(std::ostream& out, const ForecastView& v) {
  const Forecast& f = v.forecast;
  const DisplayZone& z = v.zone;
  out << "Log       " << v.source << ": "
      << Count(v.log_samples, "sample", "samples") << ", "
      << FormatDateTime(v.log_first_ms, z) << " to "
      << FormatDateTime(v.log_last_ms, z) << " " << z.Name(v.log_last_ms)
      << "\n";
  out << "Replay    " << DescribeReplay(v.replay, v.stats);
  if (v.at_ms >= 0) out << ", up to " << FormatDateTime(v.at_ms, z);
  out << "\n";
  out << "Now       " << FormatDayClock(f.start_ms, z).substr(0, 4)
      << FormatDateTime(f.start_ms, z) << " " << z.Name(f.start_ms) << ": " << Percent(f.level_now)
      << (f.charging_now ? ", charging" : ", not charging") << "\n";
  if (v.at_ms >= 0 && v.at_ms - f.start_ms > v.replay.interval_ms) {
    const std::string gap = FormatDuration(v.at_ms - f.start_ms);
    if (v.at_ms > v.log_last_ms) {
      out << "          (the log ends " << gap
          << " before --at; the forecast starts at its last report)\n";
    } else {
      out << "          (no report in the " << gap
          << " before --at: the phone was off; the forecast starts at the "
             "last report)\n";
    }
  }
  out << "Forecast  " << DescribeForecastSource(f) << "\n";
  if (f.adaptive) {
    const std::vector<std::string> weights = DescribeWeights(f);
    out << "Method    adaptive: the forecaster and simple methods, weighed by "
           "how well each did on this log so far (the forecaster's own "
           "forecast: --raw)\n";
    for (size_t i = 0; i < weights.size(); ++i) {
      out << (i == 0 ? "Weighted  " : "          ") << weights[i] << "\n";
    }
  } else {
    out << "Method    the forecaster's own forecast (--raw)\n";
  }

  if (!v.answers.empty()) {
    out << "\nWhen\n";
    for (const Answer& a : v.answers) {
      out << "  " << Pad(AnswerLabel(a, z), 44) << DescribeAnswerTime(a, f, z)
          << "\n";
    }
  }

  out << "\nForecast every " << FormatDuration(v.every * kStepMs)
      << " (level, chance of charging), times " << z.Name(f.start_ms) << "\n";
  std::string line = "  " + Pad("", 11);
  for (int k = 0; k < kVariantCount; ++k) {
    if (f.has[k]) line += Pad(VariantTitle(k), 17);
  }
  out << TrimRight(line) << "\n";
  line = "  " + Pad("time", 11);
  for (int k = 0; k < kVariantCount; ++k) {
    if (f.has[k]) line += Pad("level  chance", 17);
  }
  out << TrimRight(line) << "\n";
  // Rows every `every` steps; a forecast shorter than that shows its last.
  const int first_row = v.every <= f.steps ? v.every - 1 : f.steps - 1;
  for (int s = first_row; s < f.steps; s += v.every) {
    line = "  " + Pad(FormatDayClock(f.StepTime(s), z), 11);
    for (int k = 0; k < kVariantCount; ++k) {
      if (!f.has[k]) continue;
      const stMobilePowerPredictionData& r = f.records[k][s];
      line += Pad(Printf("%3.0f %%", std::round(r.level * 100.0)), 7) +
              Pad(Printf("%3.0f %%", std::round(r.charging * 100.0)), 10);
    }
    out << TrimRight(line) << "\n";
  }
}

void WriteForecastCsv(std::ostream& out, const ForecastView& v) {
  const Forecast& f = v.forecast;
  out << "step,time_ms,time";
  for (int k = 0; k < kVariantCount; ++k) {
    if (!f.has[k]) continue;
    out << ',' << VariantName(k) << "_level_percent," << VariantName(k)
        << "_charging";
  }
  out << "\n";
  for (int s = 0; s < f.steps; ++s) {
    out << s << ',' << f.StepTime(s) << ',' << FormatIso(f.StepTime(s), v.zone);
    for (int k = 0; k < kVariantCount; ++k) {
      if (!f.has[k]) continue;
      const stMobilePowerPredictionData& r = f.records[k][s];
      out << ',' << Printf("%.3f", r.level * 100.0) << ','
          << Printf("%.4f", r.charging);
    }
    out << "\n";
  }
}

void WriteForecastJson(std::ostream& out, const ForecastView& v) {
  const Forecast& f = v.forecast;
  const ReplayStats& s = v.stats;
  out << "{\n";
  out << "  \"version\": " << JsonString(v.version) << ",\n";
  out << "  \"log\": {\"source\": " << JsonString(v.source)
      << ", \"format\": \""
      << (v.format == LogFormat::kCsv ? "csv" : "status-lines")
      << "\", \"samples\": " << v.log_samples << "},\n";
  out << "  \"replay\": {\"as_logged\": "
      << (v.replay.as_logged ? "true" : "false")
      << ", \"interval_ms\": " << v.replay.interval_ms
      << ", \"max_silence_ms\": " << v.replay.max_silence_ms
      << ", \"samples_read\": " << s.samples_read
      << ", \"reports_added\": " << s.reports_added
      << ", \"gaps\": " << s.gaps << ", \"gap_steps\": " << s.gap_steps
      << ", \"at_ms\": " << v.at_ms << "},\n";
  out << "  \"now\": {\"time_ms\": " << f.start_ms
      << ", \"time\": " << JsonString(FormatIso(f.start_ms, v.zone))
      << ", \"level_percent\": " << Printf("%g", f.level_now)
      << ", \"charging\": " << (f.charging_now ? "true" : "false") << "},\n";
  out << "  \"adaptive\": " << (f.adaptive ? "true" : "false") << ",\n";
  out << "  \"learned\": " << (f.learned() ? "true" : "false")
      << ",\n  \"similar_moments\": " << f.similar_moments
      << ",\n  \"distance\": " << Printf("%.6g", f.distance) << ",\n";
  out << "  \"answers\": [";
  for (size_t i = 0; i < v.answers.size(); ++i) {
    const Answer& a = v.answers[i];
    out << (i ? ",\n" : "\n") << "    {\"kind\": \"" << AnswerKey(a)
        << "\", \"variant\": \"" << VariantName(a.variant) << "\"";
    if (a.kind == Answer::kLevelReached || a.kind == Answer::kLevelRisen) {
      out << ", \"percent\": " << a.percent;
    }
    if (a.kind == Answer::kLevelAt) {
      out << ", \"time_ms\": " << a.time_ms << ", \"time\": "
          << JsonString(FormatIso(a.time_ms, v.zone)) << ", \"level_percent\": ";
      if (a.level < 0) {
        out << "null";
      } else {
        out << Printf("%.3f", a.level);
      }
    } else {
      out << ", \"now\": " << (a.now ? "true" : "false") << ", \"step\": ";
      if (a.step < 0) {
        out << "null, \"time_ms\": null, \"time\": null";
      } else {
        out << a.step << ", \"time_ms\": " << a.time_ms << ", \"time\": "
            << JsonString(FormatIso(a.time_ms, v.zone));
      }
    }
    out << "}";
  }
  out << "\n  ],\n  \"steps\": [";
  for (int st = 0; st < f.steps; ++st) {
    out << (st ? ",\n" : "\n") << "    {\"step\": " << st
        << ", \"time_ms\": " << f.StepTime(st);
    for (int k = 0; k < kVariantCount; ++k) {
      if (!f.has[k]) continue;
      const stMobilePowerPredictionData& r = f.records[k][st];
      out << ", \"" << VariantName(k) << "\": {\"level_percent\": "
          << Printf("%.3f", r.level * 100.0)
          << ", \"charging\": " << Printf("%.4f", r.charging);
      if (f.adaptive) {
        // The level's weights, by method (those that took part).
        constexpr int kMethods = kez::adaptive::kMethodCount;
        out << ", \"weights\": {";
        bool first = true;
        for (int m = 0; m < kMethods; ++m) {
          const double w = f.weights[k][static_cast<size_t>(st) * kMethods + m];
          if (!(w > 0.0)) continue;
          out << (first ? "" : ", ") << "\"" << kez::adaptive::MethodName(m)
              << "\": " << Printf("%.4f", w);
          first = false;
        }
        out << "}";
      }
      out << "}";
    }
    out << "}";
  }
  out << "\n  ]\n}\n";
}

}  // namespace kez_tools
