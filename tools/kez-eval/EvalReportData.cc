// The machine-readable reports: CSV (one value a row) and JSON.
#include <cmath>
#include <cstdio>

#include "EvalReport.h"
#include "MarkupText.h"

namespace kez_tools {

namespace {


std::string HoursNumber(int64_t ms) {
  char b[32];
  std::snprintf(b, sizeof b, "%g", static_cast<double>(ms) / 3600000.0);
  return b;
}

std::string CsvField(const std::string& s) {
  if (s.find_first_of(",\"\n") == std::string::npos) return s;
  std::string q = "\"";
  for (char c : s) {
    if (c == '"') q += '"';
    q += c;
  }
  return q + "\"";
}

std::string CsvNumber(double v) {
  if (std::isnan(v)) return "";
  char b[64];
  std::snprintf(b, sizeof b, "%.6g", v);
  return b;
}

std::string JsonNumber(double v) {
  if (std::isnan(v)) return "null";
  char b[64];
  std::snprintf(b, sizeof b, "%.6g", v);
  return b;
}

void WriteCsvRows(std::ostream& out, const LogEvaluation& r,
                  const std::string& name) {
  const std::string log = CsvField(name);
  auto row = [&](const std::string& condition, const std::string& method,
                 const std::string& horizon, const char* metric,
                 const std::string& value, size_t n) {
    out << log << "," << condition << "," << method << "," << horizon << ","
        << metric << "," << value << "," << n << "\n";
  };
  for (const HorizonResult& h : r.horizons) {
    const std::string hh = HoursNumber(h.horizon_ms);
    row("free", "forecaster", hh, "pairs", std::to_string(h.pairs), h.pairs);
    row("free", "forecaster", hh, "learned_share",
        CsvNumber(h.pairs == 0 ? NAN
                               : static_cast<double>(h.learned) /
                                     static_cast<double>(h.pairs)),
        h.pairs);
    row("free", "forecaster", hh, "left_in_silence",
        std::to_string(h.left_in_silence), h.left_in_silence);
    row("free", "forecaster", hh, "left_after_end",
        std::to_string(h.left_after_end), h.left_after_end);
    row("nocharge", "forecaster", hh, "left_charging",
        std::to_string(h.nocharge_left_charging), h.nocharge_left_charging);
    for (int c = 0; c < kConditionCount; ++c) {
      for (int m = 0; m < kMethodCount; ++m) {
        const ErrorStats& e = h.level[c][m];
        row(ConditionName(c), MethodName(m), hh, "mae_pp",
            CsvNumber(e.Mean()), e.count());
        row(ConditionName(c), MethodName(m), hh, "p90_pp",
            CsvNumber(e.Percentile90()), e.count());
      }
    }
    for (int m = 0; m < kMethodCount; ++m) {
      row("free", MethodName(m), hh, "brier",
          CsvNumber(h.charging[m].Brier()), h.charging[m].count());
    }
  }
  for (int c = 0; c < kConditionCount; ++c) {
    for (int m = 0; m < kMethodCount; ++m) {
      row(ConditionName(c), MethodName(m), "", "low_level_mae_min",
          CsvNumber(r.low.minutes[c][m].Mean()), r.low.events);
      row(ConditionName(c), MethodName(m), "", "low_level_misses",
          std::to_string(r.low.misses[c][m]), r.low.events);
    }
  }
}

void WriteJsonResult(std::ostream& out, const LogEvaluation& r,
                     const std::string& indent) {
  const std::string in = indent + "  ";
  out << "{\n";
  out << in << "\"source\": " << JsonString(r.source) << ",\n";
  out << in << "\"logs\": " << r.logs << ",\n";
  out << in << "\"samples\": " << r.samples << ",\n";
  out << in << "\"span_hours\": " << JsonNumber(r.span_ms / 3600000.0)
      << ",\n";
  out << in << "\"replay\": {\"samples_read\": " << r.replay.samples_read
      << ", \"reports_added\": " << r.replay.reports_added
      << ", \"gaps\": " << r.replay.gaps
      << ", \"gap_steps\": " << r.replay.gap_steps << "},\n";
  out << in << "\"forecast_points\": {\"planned\": " << r.points.planned
      << ", \"made\": " << r.points.made
      << ", \"learned\": " << r.points.learned
      << ", \"phone_off\": " << r.points.phone_off
      << ", \"no_new_report\": " << r.points.no_new_report
      << ", \"yesterday_missing\": " << r.points.seasonal_missing[0]
      << ", \"last_week_missing\": " << r.points.seasonal_missing[1]
      << "},\n";
  if (r.logs == 1 && r.first_point_ms >= 0) {
    out << in << "\"first_point_ms\": " << r.first_point_ms << ",\n";
    out << in << "\"last_point_ms\": " << r.last_point_ms << ",\n";
  }
  out << in << "\"score\": " << JsonNumber(Score(r)) << ",\n";
  out << in << "\"horizons\": [";
  for (size_t i = 0; i < r.horizons.size(); ++i) {
    const HorizonResult& h = r.horizons[i];
    const std::string hin = in + "  ";
    out << (i == 0 ? "\n" : ",\n") << hin << "{\"hours\": "
        << HoursNumber(h.horizon_ms) << ", \"pairs\": " << h.pairs
        << ", \"learned\": " << h.learned
        << ", \"left_in_silence\": " << h.left_in_silence
        << ", \"left_after_end\": " << h.left_after_end
        << ", \"nocharge_left_charging\": " << h.nocharge_left_charging
        << ", \"nocharge_left_silence\": " << h.nocharge_left_silence
        << ", \"nocharge_left_after_end\": " << h.nocharge_left_after_end;
    for (int c = 0; c < kConditionCount; ++c) {
      out << ",\n" << hin << " \"" << ConditionName(c) << "\": {";
      for (int m = 0; m < kMethodCount; ++m) {
        const ErrorStats& e = h.level[c][m];
        out << (m == 0 ? "" : ", ") << "\"" << MethodName(m)
            << "\": {\"pairs\": " << e.count()
            << ", \"mae_pp\": " << JsonNumber(e.Mean())
            << ", \"p90_pp\": " << JsonNumber(e.Percentile90());
        if (c == kFreeForecast) {
          out << ", \"brier\": " << JsonNumber(h.charging[m].Brier());
        }
        out << "}";
      }
      out << "}";
    }
    out << "}";
  }
  out << "\n" << in << "],\n";
  out << in << "\"low_level\": {\"percent\": " << JsonNumber(r.low_percent)
      << ", \"events\": " << r.low.events;
  for (int c = 0; c < kConditionCount; ++c) {
    out << ",\n" << in << " \"" << ConditionName(c) << "\": {";
    for (int m = 0; m < kMethodCount; ++m) {
      out << (m == 0 ? "" : ", ") << "\"" << MethodName(m)
          << "\": {\"mae_min\": " << JsonNumber(r.low.minutes[c][m].Mean())
          << ", \"misses\": " << r.low.misses[c][m] << "}";
    }
    out << "}";
  }
  out << "},\n";
  out << in << "\"notes\": [";
  for (size_t i = 0; i < r.notes.size(); ++i) {
    out << (i == 0 ? "" : ", ") << JsonString(r.notes[i]);
  }
  out << "]\n" << indent << "}";
}

}  // namespace

void WriteReportCsv(std::ostream& out, const std::vector<LogEvaluation>& results,
                    const LogEvaluation* combined) {
  out << "log,condition,method,horizon_h,metric,value,n\n";
  for (const LogEvaluation& r : results) WriteCsvRows(out, r, r.source);
  if (combined != nullptr) WriteCsvRows(out, *combined, "all");
}

void WriteReportJson(std::ostream& out, const ReportHeader& header,
                     const std::vector<LogEvaluation>& results,
                     const LogEvaluation* combined) {
  const EvalOptions& o = header.options;
  out << "{\n  \"version\": " << JsonString(header.version) << ",\n";
  out << "  \"model\": "
      << (header.has_parameter_file ? JsonString(header.parameter_file)
                                    : std::string("null"))
      << ",\n";
  out << "  \"options\": {\"warmup_hours\": "
      << JsonNumber(o.warmup_ms / 3600000.0)
      << ", \"every_hours\": " << JsonNumber(o.every_ms / 3600000.0)
      << ", \"horizons_hours\": [";
  for (size_t i = 0; i < o.horizons_ms.size(); ++i) {
    out << (i == 0 ? "" : ", ") << HoursNumber(o.horizons_ms[i]);
  }
  out << "], \"interval_minutes\": "
      << JsonNumber(o.replay.interval_ms / 60000.0)
      << ", \"max_silence_hours\": "
      << JsonNumber(o.replay.max_silence_ms / 3600000.0)
      << ", \"as_logged\": " << (o.replay.as_logged ? "true" : "false");
  if (o.has_from) out << ", \"from_ms\": " << o.from_ms;
  if (o.has_to) out << ", \"to_ms\": " << o.to_ms;
  out << ", \"low_percent\": " << JsonNumber(o.low_percent) << "},\n";
  out << "  \"logs\": [";
  for (size_t i = 0; i < results.size(); ++i) {
    out << (i == 0 ? "\n    " : ",\n    ");
    WriteJsonResult(out, results[i], "    ");
  }
  out << "\n  ]";
  if (combined != nullptr) {
    out << ",\n  \"combined\": ";
    WriteJsonResult(out, *combined, "  ");
  }
  out << "\n}\n";
}

}  // namespace kez_tools
