// kez._native.Evaluation and evaluate(): one log's evaluation by the tools'
// evaluation layer (EvaluateLog), pooled by its Combine, scored by its Score,
// reported by kez-eval's own CSV and JSON writers, and moved between
// processes as bytes (EvaluationCodec). The options arrive as a dict whose
// keys are the Python names of kez-eval's options; they are converted as
// kez-eval converts its command line, so equal options give equal figures.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Bindings.h"
#include "CommonOptions.h"
#include "DisplayZone.h"
#include "EvalReport.h"
#include "Evaluation.h"
#include "EvaluationCodec.h"
#include "ParameterFile.h"
#include "TimeText.h"

namespace py = pybind11;

namespace kez_python {

namespace {

// An evaluation with the options it was made with (for the JSON header).
struct PyEvaluation {
  kez_tools::LogEvaluation result;
};

struct Settings {
  kez_tools::EvalOptions options;
  std::string model;  // parameter file, or empty
  vorn::MobilePowerPredictorParameter parameter;
};

double Number(const py::dict& d, const char* key, double lo, double hi) {
  double x = d[key].cast<double>();
  if (!(x >= lo && x <= hi)) {
    std::ostringstream s;
    s << key << " is from " << lo << " to " << hi << ", not " << x;
    throw std::invalid_argument(s.str());
  }
  return x;
}

int64_t Moment(const py::handle& v, const char* key) {
  if (py::isinstance<py::int_>(v)) return v.cast<int64_t>();
  if (py::isinstance<py::str>(v)) {
    int64_t ms;
    std::string error;
    if (!kez_tools::ParseMoment(v.cast<std::string>(),
                                kez_tools::DisplayZone::Utc(), &ms, &error)) {
      throw std::invalid_argument(std::string(key) + ": " + error);
    }
    return ms;
  }
  throw std::invalid_argument(std::string(key) +
                              " is Unix ms (int) or a time text");
}

// Keys: warmup_days, every_hours, horizons_hours, start, end, low_percent,
// model, interval_minutes, max_silence_hours, as_logged.
void MakeSettings(const py::dict& d, Settings* s) {
  kez_tools::EvalOptions& o = s->options;
  o.warmup_ms = std::llround(Number(d, "warmup_days", 0, 365) * kez_tools::kDayMs);
  o.every_ms = std::llround(Number(d, "every_hours", 1.0 / 60, 24 * 30) *
                            kez_tools::kHourMs);
  o.horizons_ms.clear();
  for (const py::handle& h : d["horizons_hours"]) {
    double hours = h.cast<double>();
    if (!(hours >= 1e-9 && hours <= 720)) {
      throw std::invalid_argument("horizons are from 1/6 to 720 hours");
    }
    int64_t ms = std::llround(hours * kez_tools::kHourMs);
    if (ms % kez_tools::kStepMs != 0) {
      throw std::invalid_argument(py::str(h).cast<std::string>() +
                                  " h is not a whole number of 10-minute steps");
    }
    o.horizons_ms.push_back(ms);
  }
  if (o.horizons_ms.empty()) throw std::invalid_argument("no horizon given");
  std::sort(o.horizons_ms.begin(), o.horizons_ms.end());
  o.horizons_ms.erase(std::unique(o.horizons_ms.begin(), o.horizons_ms.end()),
                      o.horizons_ms.end());
  if (!d["start"].is_none()) {
    o.has_from = true;
    o.from_ms = Moment(d["start"], "start");
  }
  if (!d["end"].is_none()) {
    o.has_to = true;
    o.to_ms = Moment(d["end"], "end");
  }
  const double level = Number(d, "low_percent", 1, 99);
  if (level != std::floor(level)) {
    throw std::invalid_argument("low_percent is a whole number");
  }
  o.low_percent = level;
  o.replay.interval_ms = std::llround(Number(d, "interval_minutes", 0.1, 60) *
                                      kez_tools::kMinuteMs);
  o.replay.max_silence_ms = std::llround(
      Number(d, "max_silence_hours", 0, 24 * 366) * kez_tools::kHourMs);
  o.replay.as_logged = d["as_logged"].cast<bool>();
  std::string error;
  if (!kez_tools::CheckOptions(o, &error)) throw std::invalid_argument(error);
  if (!d["model"].is_none()) {
    s->model = d["model"].cast<std::string>();
    if (!kez_tools::LoadParameterFile(s->model, &s->parameter, &error)) {
      throw std::invalid_argument(error);
    }
    o.parameter = &s->parameter;
  }
}

PyEvaluation Evaluate(const PyLog& log, const py::dict& options) {
  Settings s;
  MakeSettings(options, &s);
  PyEvaluation e;
  std::string error;
  bool ok;
  {
    py::gil_scoped_release release;
    ok = kez_tools::EvaluateLog(log.log, s.options, &e.result, &error);
  }
  if (!ok) throw std::runtime_error(log.log.source + ": " + error);
  return e;
}

PyEvaluation Combine(const std::vector<const PyEvaluation*>& parts) {
  if (parts.empty()) throw std::invalid_argument("nothing to pool");
  std::vector<kez_tools::LogEvaluation> results;
  for (const PyEvaluation* p : parts) results.push_back(p->result);
  PyEvaluation e;
  e.result = kez_tools::Combine(results);
  return e;
}

PyEvaluation FromBytes(const py::bytes& bytes) {
  PyEvaluation e;
  std::string error;
  if (!kez_tools::DecodeEvaluation(bytes, &e.result, &error)) {
    throw std::invalid_argument(error);
  }
  return e;
}

double NaNIfEmpty(size_t count, double value) {
  return count == 0 ? std::numeric_limits<double>::quiet_NaN() : value;
}

// Rows per horizon, condition and method: horizon_h, condition, method,
// pairs, mae_pp, p90_pp, brier (free only).
py::list LevelRows(const PyEvaluation& e) {
  py::list rows;
  for (const kez_tools::HorizonResult& h : e.result.horizons) {
    for (int c = 0; c < kez_tools::kConditionCount; ++c) {
      for (int m = 0; m < kez_tools::kMethodCount; ++m) {
        const kez_tools::ErrorStats& s = h.level[c][m];
        py::dict r;
        r["horizon_h"] = static_cast<double>(h.horizon_ms) / 3600000.0;
        r["condition"] = kez_tools::ConditionName(c);
        r["method"] = kez_tools::MethodName(m);
        r["pairs"] = s.count();
        r["mae_pp"] = s.Mean();
        r["p90_pp"] = s.Percentile90();
        r["brier"] = c == kez_tools::kFreeForecast
                         ? h.charging[m].Brier()
                         : std::numeric_limits<double>::quiet_NaN();
        rows.append(r);
      }
    }
  }
  return rows;
}

// Rows per horizon: what was judged and what was left out.
py::list HorizonRows(const PyEvaluation& e) {
  py::list rows;
  for (const kez_tools::HorizonResult& h : e.result.horizons) {
    py::dict r;
    r["horizon_h"] = static_cast<double>(h.horizon_ms) / 3600000.0;
    r["pairs"] = h.pairs;
    r["learned"] = h.learned;
    r["learned_share"] = NaNIfEmpty(h.pairs, static_cast<double>(h.learned) /
                                                 static_cast<double>(h.pairs));
    r["left_in_silence"] = h.left_in_silence;
    r["left_after_end"] = h.left_after_end;
    r["nocharge_left_charging"] = h.nocharge_left_charging;
    r["nocharge_left_silence"] = h.nocharge_left_silence;
    r["nocharge_left_after_end"] = h.nocharge_left_after_end;
    rows.append(r);
  }
  return rows;
}

// Rows per condition and method: the time to reach the low level.
py::list LowRows(const PyEvaluation& e) {
  py::list rows;
  const kez_tools::LowLevelResult& low = e.result.low;
  for (int c = 0; c < kez_tools::kConditionCount; ++c) {
    for (int m = 0; m < kez_tools::kMethodCount; ++m) {
      py::dict r;
      r["condition"] = kez_tools::ConditionName(c);
      r["method"] = kez_tools::MethodName(m);
      r["events"] = low.events;
      r["judged"] = low.minutes[c][m].count();
      r["mae_min"] = low.minutes[c][m].Mean();
      r["misses"] = low.misses[c][m];
      rows.append(r);
    }
  }
  return rows;
}

py::dict Summary(const PyEvaluation& e) {
  const kez_tools::LogEvaluation& r = e.result;
  py::dict d;
  d["source"] = r.source;
  d["logs"] = r.logs;
  d["samples"] = r.samples;
  d["span_hours"] = static_cast<double>(r.span_ms) / 3600000.0;
  d["samples_read"] = r.replay.samples_read;
  d["reports_added"] = r.replay.reports_added;
  d["gaps"] = r.replay.gaps;
  d["gap_steps"] = r.replay.gap_steps;
  d["points_planned"] = r.points.planned;
  d["points_made"] = r.points.made;
  d["points_learned"] = r.points.learned;
  d["points_phone_off"] = r.points.phone_off;
  d["points_no_new_report"] = r.points.no_new_report;
  d["yesterday_missing"] = r.points.seasonal_missing[0];
  d["last_week_missing"] = r.points.seasonal_missing[1];
  if (r.logs == 1 && r.first_point_ms >= 0) {
    d["first_point_ms"] = r.first_point_ms;
    d["last_point_ms"] = r.last_point_ms;
  } else {
    d["first_point_ms"] = py::none();
    d["last_point_ms"] = py::none();
  }
  d["score"] = kez_tools::Score(r);
  d["low_percent"] = r.low_percent;
  d["notes"] = r.notes;
  return d;
}

kez_tools::ReportHeader Header(const py::dict& options) {
  Settings s;
  MakeSettings(options, &s);
  kez_tools::ReportHeader header;
  header.version = kez_tools::LibraryVersion();
  header.options = s.options;
  header.options.parameter = nullptr;
  header.has_parameter_file = !s.model.empty();
  header.parameter_file = s.model;
  return header;
}

std::vector<kez_tools::LogEvaluation> Results(
    const std::vector<const PyEvaluation*>& parts) {
  std::vector<kez_tools::LogEvaluation> results;
  for (const PyEvaluation* p : parts) results.push_back(p->result);
  return results;
}

// kez-eval's CSV of `logs` (and, when `pooled` is given, the pooled rows).
std::string ReportCsv(const std::vector<const PyEvaluation*>& logs,
                      const PyEvaluation* pooled) {
  std::ostringstream out;
  kez_tools::WriteReportCsv(out, Results(logs),
                            pooled ? &pooled->result : nullptr);
  return out.str();
}

std::string ReportJson(const std::vector<const PyEvaluation*>& logs,
                       const PyEvaluation* pooled, const py::dict& options) {
  std::ostringstream out;
  kez_tools::WriteReportJson(out, Header(options), Results(logs),
                             pooled ? &pooled->result : nullptr);
  return out.str();
}

}  // namespace

void BindEvaluation(py::module_& m) {
  py::class_<PyEvaluation>(m, "Evaluation")
      .def("to_bytes",
           [](const PyEvaluation& e) {
             return py::bytes(kez_tools::EncodeEvaluation(e.result));
           })
      .def_static("from_bytes", &FromBytes)
      .def_static("combine", &Combine)
      .def("level_rows", &LevelRows)
      .def("horizon_rows", &HorizonRows)
      .def("low_rows", &LowRows)
      .def("summary", &Summary)
      .def(py::pickle(
          [](const PyEvaluation& e) {
            return py::bytes(kez_tools::EncodeEvaluation(e.result));
          },
          [](const py::bytes& b) { return FromBytes(b); }));
  m.def("evaluate", &Evaluate, py::arg("log"), py::arg("options"));
  m.def("evaluate_path",
        [](const std::string& path, bool status_lines, const py::dict& options) {
          PyLog log;
          log.log = ReadLogOrThrow(path, status_lines);
          return Evaluate(log, options);
        },
        py::arg("path"), py::arg("status_lines"), py::arg("options"));
  m.def("report_csv", &ReportCsv, py::arg("logs"), py::arg("pooled"));
  m.def("report_json", &ReportJson, py::arg("logs"), py::arg("pooled"),
        py::arg("options"));
  m.def("check_options", [](const py::dict& options) {
    Settings s;
    MakeSettings(options, &s);
  });
}

}  // namespace kez_python
