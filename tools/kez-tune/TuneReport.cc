#include "TuneReport.h"

#include <cmath>
#include <cstdio>
#include <functional>

#include "DisplayZone.h"
#include "FeatureDescription.h"
#include "TimeText.h"
#include "TextFormat.h"

namespace kez_tools {

namespace {


std::string Change(double before, double after) {
  if (std::isnan(before) || std::isnan(after) || before == 0.0) return "-";
  char text[32];
  std::snprintf(text, sizeof text, "%+.1f %%", (after - before) / before * 100);
  return text;
}

void WriteHeader(std::ostream& out, const ReportContext& c, const char* what,
                 int generations, size_t evaluations, double seconds,
                 const char* judged) {
  const TunePlan& p = c.plan;
  const kez_tools::DisplayZone utc = kez_tools::DisplayZone::Utc();
  out << "kez-tune: " << what << " (library " << c.version << "), start: "
      << c.start_name << "\n";
  bool first = true;
  for (const kez_tools::Log& log : *c.logs) {
    out << (first ? "Logs       " : "           ") << BaseName(log.source)
        << ": tuning part up to "
        << kez_tools::FormatDateTime(SplitTime(log, p), utc)
        << " UTC, held out after it\n";
    first = false;
  }
  out << "Measure    forecasts after a " << FormatDuration(p.warmup_ms)
      << " warm-up; the first " << Fixed(p.split * 100, 0)
      << " % of each log's forecast span tune, the rest is held out\n"
      << "Objective  mean absolute level error, percentage points (lower is "
         "better), averaged over "
      << HorizonList(p.objective_horizons_ms) << "\n"
      << "Search     " << generations << " generations, seed " << p.seed
      << ", " << evaluations << " " << judged << " on a "
      << FormatDuration(p.search_every_ms) << " grid in "
      << Fixed(seconds, 1) << " s (" << p.threads
      << (p.threads == 1 ? " thread" : " threads") << ")\n\n";
}

void WriteObjectives(std::ostream& out, const TunePlan& p, double start_search,
                     double best_search, double start_tuning,
                     double best_tuning, double start_heldout,
                     double best_heldout) {
  const std::string fine = FormatDuration(p.final_every_ms);
  const std::string rows[3] = {
      "tuning part, every " + FormatDuration(p.search_every_ms) + " (searched)",
      "tuning part, every " + fine, "held-out part, every " + fine};
  const double v[3][2] = {{start_search, best_search},
                          {start_tuning, best_tuning},
                          {start_heldout, best_heldout}};
  out << Pad("Objective", 40) << Pad("start", 9, true) << Pad("result", 9, true)
      << Pad("change", 10, true) << "\n";
  for (int i = 0; i < 3; ++i) {
    out << Pad(rows[i], 40) << Pad(Fixed(v[i][0], 3), 9, true)
        << Pad(Fixed(v[i][1], 3), 9, true)
        << Pad(Change(v[i][0], v[i][1]), 10, true) << "\n";
  }
}

// How many forecasts the final figures rest on, and how many of them were
// learned from similar past moments (the only ones the tuning can change).
void WriteCounts(std::ostream& out, const TunePlan& p, size_t tuning_made,
                 size_t tuning_learned, size_t heldout_made,
                 size_t heldout_learned) {
  out << "Forecasts every " << FormatDuration(p.final_every_ms) << ": "
      << tuning_made << " on the tuning part (" << tuning_learned
      << " learned from similar past moments), " << heldout_made
      << " on the held-out part (" << heldout_learned << " learned)\n";
  if (tuning_made > 0 && tuning_learned == 0) {
    out << "No forecast of the tuning part was learned from similar past "
           "moments: the search cannot change anything (a log with gaps "
           "replayed as logged?).\n";
  }
}

// One held-out table: per log (and all logs pooled when there are several)
// and horizon, the pairs and the mean absolute error of start and result.
void WriteHeldOut(std::ostream& out, const ReportContext& c,
                  const std::string& title,
                  const std::function<const ErrorStats*(int, size_t, bool)>& cell) {
  const std::vector<int64_t>& horizons = c.plan.report_horizons_ms;
  out << "\n" << title << "\n"
      << Pad("log", 30) << Pad("horizon", 9) << Pad("pairs", 7, true)
      << Pad("start", 9, true) << Pad("result", 9, true)
      << Pad("change", 9, true) << "\n";
  const int logs = static_cast<int>(c.logs->size());
  // Log -1 stands for all logs pooled.
  auto rows = [&](int l) {
    const std::string name =
        l < 0 ? "all logs" : BaseName((*c.logs)[l].source);
    for (size_t h = 0; h < horizons.size(); ++h) {
      const ErrorStats* before = cell(l, h, false);
      const ErrorStats* after = cell(l, h, true);
      if (before == nullptr || after == nullptr) continue;
      const double b = before->Mean(), a = after->Mean();
      out << Pad(h == 0 ? name : "", 30) << Pad(FormatDuration(horizons[h]), 9)
          << Pad(std::to_string(after->count()), 7, true)
          << Pad(Fixed(b, 2), 9, true) << Pad(Fixed(a, 2), 9, true)
          << Pad(std::isnan(a) || std::isnan(b) ? "-" : Fixed(a - b, 2), 9,
                 true)
          << "\n";
    }
  };
  for (int l = 0; l < logs; ++l) rows(l);
  if (logs > 1) rows(-1);
}

const ErrorStats* ModelCell(const ModelResult& r, int log, int64_t horizon) {
  const kez_tools::LogEvaluation& e = log < 0 ? r.pooled : r.logs[log];
  for (const kez_tools::HorizonResult& h : e.horizons) {
    if (h.horizon_ms == horizon) {
      return &h.level[kez_tools::kFreeForecast][kez_tools::kForecaster];
    }
  }
  return nullptr;
}

const ErrorStats* FeatureCell(const FeatureSetResult& r, int log,
                              int64_t horizon) {
  const FeatureEvaluation& e = log < 0 ? r.pooled : r.logs[log];
  for (size_t h = 0; h < e.horizons_ms.size(); ++h) {
    if (e.horizons_ms[h] == horizon) return &e.level[h];
  }
  return nullptr;
}

}  // namespace

void WriteWeightReport(std::ostream& out, const ReportContext& c,
                       const WeightTuneResult& r) {
  WriteHeader(out, c, "weights of the forecaster", r.generations,
              r.evaluations, r.seconds, "models judged");
  WriteObjectives(out, c.plan, r.start_search_score, r.best_search_score,
                  r.start_tuning.score, r.best_tuning.score,
                  r.start_heldout.score, r.best_heldout.score);
  WriteCounts(out, c.plan, r.best_tuning.pooled.points.made,
              r.best_tuning.pooled.points.learned,
              r.best_heldout.pooled.points.made,
              r.best_heldout.pooled.points.learned);
  if (r.start_kept && !(r.best_search_score < r.start_search_score)) {
    out << "The search found no weights better than the start's.\n";
  } else if (r.start_kept) {
    out << "The search's best was not better than the start on the "
        << FormatDuration(c.plan.final_every_ms)
        << " grid of the tuning part: the start is kept.\n";
  }
  out << "\n"
      << Pad("Weight", 22) << Pad("start", 14, true) << Pad("result", 14, true)
      << "\n";
  for (int i = 0; i < kWeightCount; ++i) {
    out << Pad(std::to_string(i) + " " + WeightName(i), 22)
        << Pad(Fixed(r.start[i], 6), 14, true)
        << Pad(Fixed(r.best[i], 6), 14, true) << "\n";
  }
  const std::vector<int64_t>& horizons = c.plan.report_horizons_ms;
  WriteHeldOut(
      out, c,
      "Held-out part: level error of the free forecast, mean absolute error "
      "(percentage points), forecasts every " +
          FormatDuration(c.plan.final_every_ms),
      [&](int log, size_t h, bool after) {
        return ModelCell(after ? r.best_heldout : r.start_heldout, log,
                         horizons[h]);
      });
}

void WriteFeatureReport(std::ostream& out, const ReportContext& c,
                        const FeatureTuneResult& r) {
  WriteHeader(out, c, "feature set of the memory base", r.generations,
              r.evaluations, r.seconds, "feature sets judged");
  out << "The error is that of the level channel of the core's forecast of "
         "all channels, not of the app's forecast.\n\n";
  WriteObjectives(out, c.plan, r.start_search_score, r.best_search_score,
                  r.start_tuning.score, r.best_tuning.score,
                  r.start_heldout.score, r.best_heldout.score);
  WriteCounts(out, c.plan, r.best_tuning.pooled.points,
              r.best_tuning.pooled.learned, r.best_heldout.pooled.points,
              r.best_heldout.pooled.learned);
  out << r.improvements << " of " << r.generations
      << " generations improved the feature set.\n";
  if (r.start_kept && r.improvements > 0) {
    out << "The search's best was not better than the start on the "
        << FormatDuration(c.plan.final_every_ms)
        << " grid of the tuning part: the default set is kept.\n";
  }
  const std::vector<std::string> features = DescribeFeatures(r.best);
  out << "\nFeature set of the result (" << features.size()
      << " functions):\n";
  for (size_t i = 0; i < features.size(); ++i) {
    out << Pad(std::to_string(i), 4, true) << "  " << features[i] << "\n";
  }
  const std::vector<int64_t>& horizons = c.plan.report_horizons_ms;
  WriteHeldOut(
      out, c,
      "Held-out part: level error of the core's forecast, mean absolute "
      "error (percentage points), forecasts every " +
          FormatDuration(c.plan.final_every_ms),
      [&](int log, size_t h, bool after) {
        return FeatureCell(after ? r.best_heldout : r.start_heldout, log,
                           horizons[h]);
      });
}

}  // namespace kez_tools
