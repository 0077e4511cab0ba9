// The readable report: tables per log, the verdict against the baselines
// and the notes.
#include "EvalReport.h"

#include <cmath>
#include <cstdio>

#include "ReplayDescription.h"
#include "TimeText.h"
#include "TextFormat.h"

namespace kez_tools {

namespace {


constexpr int kMethodWidth = 15;

std::string Hours(int64_t ms) {
  char b[32];
  std::snprintf(b, sizeof b, "%g h", static_cast<double>(ms) / 3600000.0);
  return b;
}

std::string Share(size_t part, size_t whole) {
  if (whole == 0) return "-";
  return Fixed(100.0 * static_cast<double>(part) / static_cast<double>(whole),
               1) + " %";
}

// Index of the smallest non-NaN value, or -1.
int Best(const double (&values)[kMethodCount]) {
  int best = -1;
  for (int m = 0; m < kMethodCount; ++m) {
    if (std::isnan(values[m])) continue;
    if (best < 0 || values[m] < values[best]) best = m;
  }
  return best;
}

std::string MethodHeader() {
  std::string s;
  for (int m = 0; m < kMethodCount; ++m) {
    s += Pad(MethodTitle(m), kMethodWidth, true);
  }
  return s;
}

// Cells of one row, the best (and any method level with it) marked '*'.
std::string MethodCells(const double (&values)[kMethodCount],
                        const std::string (&cells)[kMethodCount]) {
  int best = Best(values);
  std::string s;
  for (int m = 0; m < kMethodCount; ++m) {
    bool top = best >= 0 && values[m] == values[best];
    s += Pad(cells[m] + (top ? "*" : " "), kMethodWidth, true);
  }
  return s;
}

void WriteLevelTable(std::ostream& out, const LogEvaluation& r, int c) {
  if (c == kFreeForecast) {
    out << "Level, free forecast: mean absolute error (90th percentile), "
           "percentage points\n";
  } else {
    out << "Level, not charged (forecasts followed by no charging up to the "
           "horizon): mean absolute error (90th percentile), percentage "
           "points\n";
  }
  out << Pad("horizon", 8) << Pad("pairs", 6, true)
      << (c == kFreeForecast ? Pad("learned", 9, true) : std::string())
      << MethodHeader() << "  left out\n";
  for (const HorizonResult& h : r.horizons) {
    double values[kMethodCount];
    std::string cells[kMethodCount];
    for (int m = 0; m < kMethodCount; ++m) {
      values[m] = h.level[c][m].Mean();
      cells[m] = Fixed(values[m], 2) + " (" +
                 Fixed(h.level[c][m].Percentile90(), 1) + ")";
      if (std::isnan(values[m])) cells[m] = "-";
    }
    const size_t pairs = h.level[c][kForecaster].count();
    std::string left;
    auto add = [&left](size_t n, const char* what) {
      if (n == 0) return;
      if (!left.empty()) left += ", ";
      left += std::to_string(n) + " " + what;
    };
    if (c == kNotCharged) add(h.nocharge_left_charging, "charging");
    add(c == kFreeForecast ? h.left_in_silence : h.nocharge_left_silence,
        "in silences");
    add(c == kFreeForecast ? h.left_after_end : h.nocharge_left_after_end,
        "after the end");
    out << Pad(Hours(h.horizon_ms), 8)
        << Pad(std::to_string(pairs), 6, true)
        << (c == kFreeForecast ? Pad(Share(h.learned, h.pairs), 9, true)
                               : std::string())
        << MethodCells(values, cells) << "  " << (left.empty() ? "-" : left)
        << "\n";
  }
  out << "\n";
}

void WriteBrierTable(std::ostream& out, const LogEvaluation& r) {
  out << "Chance of charging, free forecast: Brier score (0 is perfect; a "
         "constant 50 % scores 0.25)\n";
  out << Pad("horizon", 8) << Pad("pairs", 6, true) << MethodHeader()
      << "\n";
  for (const HorizonResult& h : r.horizons) {
    double values[kMethodCount];
    std::string cells[kMethodCount];
    for (int m = 0; m < kMethodCount; ++m) {
      values[m] = h.charging[m].Brier();
      cells[m] = Fixed(values[m], 3);
    }
    out << Pad(Hours(h.horizon_ms), 8)
        << Pad(std::to_string(h.charging[kForecaster].count()), 6, true)
        << MethodCells(values, cells) << "\n";
  }
  out << "\n";
}

std::string Percent(double v) {
  char b[32];
  std::snprintf(b, sizeof b, "%g %%", v);
  return b;
}

void WriteLowTable(std::ostream& out, const LogEvaluation& r,
                   int64_t longest_ms) {
  out << "Time to reach " << Percent(r.low_percent)
      << ": mean absolute error in minutes [forecasts that did not reach it "
         "within "
      << Hours(longest_ms) << "]\n";
  out << "  " << Count(r.low.events, "forecast", "forecasts")
      << " where the phone was not charging and the log ran down to "
      << Percent(r.low_percent) << " within " << Hours(longest_ms)
      << " without charging\n";
  if (r.low.events == 0) {
    out << "\n";
    return;
  }
  out << Pad("variant", 14) << MethodHeader() << "\n";
  for (int c = 0; c < kConditionCount; ++c) {
    double values[kMethodCount];
    std::string cells[kMethodCount];
    for (int m = 0; m < kMethodCount; ++m) {
      values[m] = r.low.minutes[c][m].Mean();
      cells[m] = Fixed(values[m], 0) + " [" +
                 std::to_string(r.low.misses[c][m]) + "]";
    }
    out << Pad(ConditionTitle(c), 14) << MethodCells(values, cells)
        << "\n";
  }
  out << "\n";
}

void WriteSection(std::ostream& out, const ReportHeader& header,
                  const LogEvaluation& r, bool combined) {
  const kez_tools::DisplayZone& z = header.zone;
  out << "== " << r.source << " ==\n";
  if (combined) {
    out << "Logs       " << r.logs << " logs, "
        << Count(r.samples, "sample", "samples") << ", "
        << FormatDuration(r.span_ms) << " in all\n";
  } else {
    out << "Log        " << Count(r.samples, "sample", "samples") << ", "
        << FormatDateTime(r.first_ms, z) << " to "
        << FormatDateTime(r.last_ms, z) << " " << z.Name(r.last_ms) << " ("
        << FormatDuration(r.span_ms) << ")\n";
    if (r.replay.samples_read > 0) {
      out << "Replay     "
          << kez_tools::DescribeReplay(header.options.replay, r.replay)
          << "\n";
    }
  }
  out << "Forecasts  ";
  if (!combined && r.first_point_ms >= 0) {
    out << "every " << FormatDuration(header.options.every_ms) << " from "
        << FormatDateTime(r.first_point_ms, z) << " to "
        << FormatDateTime(r.last_point_ms, z) << ": ";
  }
  out << r.points.made << " made";
  if (r.points.planned != r.points.made) {
    out << " of " << r.points.planned << " points";
  }
  if (r.points.made > 0) {
    out << "; " << r.points.learned << " ("
        << Share(r.points.learned, r.points.made)
        << ") learned from similar past moments, "
        << r.points.made - r.points.learned
        << " extrapolated from the running rates";
  }
  out << "\n\n";
  if (r.points.made > 0) {
    WriteLevelTable(out, r, kFreeForecast);
    WriteLevelTable(out, r, kNotCharged);
    WriteBrierTable(out, r);
    WriteLowTable(out, r, header.options.horizons_ms.back());
    out << "(* marks the best of a row.)\n";
    std::vector<std::string> verdict = Verdict(r);
    if (!verdict.empty()) {
      out << "Against the baselines and each other:\n";
      for (const std::string& v : verdict) out << "  " << v << "\n";
    }
  }
  if (!r.notes.empty()) {
    out << "Notes:\n";
    for (const std::string& n : r.notes) out << "  " << n << "\n";
  }
  out << "\n";
}

// `subject` is "the forecaster" or "the adaptive forecast", `rivals` what
// it is measured against ("the best baseline", "the best other method").
std::string VerdictLine(const std::string& what, const std::string& subject,
                        const std::string& rival,
                        const std::vector<std::string>& beaten, size_t wins,
                        size_t ties, size_t total) {
  if (total == 0) return "";
  if (wins == total) {
    return what + ": " + subject + " is best at every horizon (" +
           std::to_string(total) + ").";
  }
  std::string s = what + ": " + subject + " is best at " +
                  std::to_string(wins) + " of " + std::to_string(total) +
                  " horizons";
  if (ties > 0) {
    s += ", level with " + rival + " at " + std::to_string(ties);
  }
  if (beaten.empty()) return s + ".";
  s += "; beaten at ";
  for (size_t i = 0; i < beaten.size(); ++i) {
    if (i > 0) s += ", ";
    s += beaten[i];
  }
  return s + ".";
}

}  // namespace

std::vector<std::string> Verdict(const LogEvaluation& r) {
  std::vector<std::string> lines;
  struct Metric {
    const char* what;
    int condition;  // -1: Brier
    int digits;
  };
  const Metric metrics[] = {{"Level, free forecast", kFreeForecast, 2},
                            {"Level, not charged", kNotCharged, 2},
                            {"Chance of charging", -1, 3}};
  // The forecaster against the baselines, then the adaptive forecast
  // against every other method (the forecaster included).
  struct Subject {
    int method;
    const char* name;
    const char* rival;
  };
  const Subject subjects[] = {
      {kForecaster, "the forecaster", "the best baseline"},
      {kAdaptive, "the adaptive forecast", "the best other method"}};
  auto best_rival = [](const double (&values)[kMethodCount], int subject) {
    int best = -1;
    for (int m = 0; m < kMethodCount; ++m) {
      if (m == subject || std::isnan(values[m])) continue;
      if (subject == kForecaster && m == kAdaptive) continue;
      if (best < 0 || values[m] < values[best]) best = m;
    }
    return best;
  };
  for (const Subject& subject : subjects) {
    const int me = subject.method;
    for (const Metric& metric : metrics) {
      std::vector<std::string> beaten;
      size_t wins = 0, ties = 0, total = 0;
      for (const HorizonResult& h : r.horizons) {
        double values[kMethodCount];
        for (int m = 0; m < kMethodCount; ++m) {
          values[m] = metric.condition < 0
                          ? h.charging[m].Brier()
                          : h.level[metric.condition][m].Mean();
        }
        if (std::isnan(values[me])) continue;
        ++total;
        int best = best_rival(values, me);
        if (best < 0 || values[me] < values[best]) {
          ++wins;
        } else if (values[me] == values[best]) {
          ++ties;
        } else {
          beaten.push_back(Hours(h.horizon_ms) + " (" + MethodTitle(best) +
                           " " + Fixed(values[best], metric.digits) +
                           " against " + Fixed(values[me], metric.digits) +
                           ")");
        }
      }
      std::string line = VerdictLine(metric.what, subject.name, subject.rival,
                                     beaten, wins, ties, total);
      if (!line.empty()) lines.push_back(line);
    }
    if (r.low.events > 0) {
      for (int c = 0; c < kConditionCount; ++c) {
        double values[kMethodCount];
        for (int m = 0; m < kMethodCount; ++m) {
          values[m] = r.low.minutes[c][m].Mean();
        }
        if (std::isnan(values[me])) continue;
        int best = best_rival(values, me);
        std::string what = "Time to " + Percent(r.low_percent) + ", " +
                           ConditionTitle(c) + ": ";
        if (best < 0 || values[me] < values[best]) {
          lines.push_back(what + subject.name + " is best (" +
                          Fixed(values[me], 0) + " min).");
        } else if (values[me] == values[best]) {
          lines.push_back(what + subject.name + " is level with " +
                          MethodTitle(best) + " (" + Fixed(values[me], 0) +
                          " min).");
        } else {
          lines.push_back(what + subject.name + " is beaten by " +
                          MethodTitle(best) + " (" + Fixed(values[best], 0) +
                          " min against " + Fixed(values[me], 0) + " min).");
        }
      }
    }
  }
  return lines;
}

void WriteReportText(std::ostream& out, const ReportHeader& header,
                     const std::vector<LogEvaluation>& results,
                     const LogEvaluation* combined) {
  const EvalOptions& o = header.options;
  out << "kez-eval: forecast accuracy on battery logs (library "
      << header.version << ", "
      << (header.has_parameter_file ? "model " + header.parameter_file
                                    : std::string("built-in model"))
      << ")\n";
  out << "Forecasts every " << FormatDuration(o.every_ms) << " after a "
      << FormatDuration(o.warmup_ms) << " warm-up";
  if (o.has_from) out << ", from " << FormatDateTime(o.from_ms, header.zone);
  if (o.has_to) out << ", to " << FormatDateTime(o.to_ms, header.zone);
  out << "; truth: the logged level, linear between samples; methods: "
         "forecaster, adaptive (the forecaster and simple methods weighed "
         "by their errors on this log so far), persistence (level stays), "
         "running rates (the forecaster's own extrapolation), yesterday / "
         "last week (the change over the same hours a day / a week "
         "before)\n\n";
  for (const LogEvaluation& r : results) WriteSection(out, header, r, false);
  if (combined != nullptr) WriteSection(out, header, *combined, true);
}

}  // namespace kez_tools
