// kez._native.Log and the functions that make logs: read a file (the
// tools' reader, with its checks and messages), build one from arrays (the
// same checks: the arrays are written as CSV and read back, which the
// writer guarantees to be exact), simulate one user or user i of a fleet,
// and write a log as CSV.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cmath>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Bindings.h"
#include "LogReader.h"
#include "LogWriter.h"
#include "SimFleet.h"
#include "SimProfile.h"
#include "Simulator.h"

namespace py = pybind11;

namespace kez_python {

namespace {

using Array = py::array_t<double, py::array::c_style | py::array::forcecast>;
using TimeArray = py::array_t<int64_t, py::array::c_style | py::array::forcecast>;

const char* const kValueColumns[] = {"level_percent", "charging", "aux1",
                                     "aux2", "aux3", "countA", "countB1",
                                     "countB2"};

double* Field(kez_tools::LogSample& s, int column) {
  double* fields[] = {&s.level_percent, &s.charging, &s.aux1,    &s.aux2,
                      &s.aux3,          &s.count_a,  &s.count_b1, &s.count_b2};
  return fields[column];
}

py::dict Columns(const PyLog& log) {
  const auto& samples = log.log.samples;
  const py::ssize_t n = static_cast<py::ssize_t>(samples.size());
  py::dict d;
  TimeArray t(n);
  auto tt = t.mutable_unchecked<1>();
  for (py::ssize_t i = 0; i < n; ++i) tt(i) = samples[i].time_ms;
  d["time_ms"] = t;
  for (int c = 0; c < 8; ++c) {
    Array a(n);
    auto aa = a.mutable_unchecked<1>();
    for (py::ssize_t i = 0; i < n; ++i) {
      aa(i) = *Field(const_cast<kez_tools::LogSample&>(samples[i]), c);
    }
    d[kValueColumns[c]] = a;
  }
  return d;
}

// `columns`: time_ms and level_percent and charging, optionally the others.
PyLog FromArrays(const std::string& source, const py::dict& columns) {
  for (const char* required : {"time_ms", "level_percent", "charging"}) {
    if (!columns.contains(required)) {
      throw std::invalid_argument(std::string("the log has no column '") +
                                  required + "'");
    }
  }
  TimeArray t = columns["time_ms"].cast<TimeArray>();
  if (t.ndim() != 1) throw std::invalid_argument("time_ms is not one-dimensional");
  const py::ssize_t n = t.size();
  kez_tools::Log log;
  log.source = source;
  log.samples.resize(static_cast<size_t>(n));
  auto tt = t.unchecked<1>();
  for (py::ssize_t i = 0; i < n; ++i) log.samples[i].time_ms = tt(i);
  for (int c = 0; c < 8; ++c) {
    if (!columns.contains(kValueColumns[c])) continue;
    Array a = columns[kValueColumns[c]].cast<Array>();
    if (a.ndim() != 1 || a.size() != n) {
      throw std::invalid_argument(std::string("column '") + kValueColumns[c] +
                                  "' differs in length from time_ms");
    }
    auto aa = a.unchecked<1>();
    for (py::ssize_t i = 0; i < n; ++i) {
      if (!std::isfinite(aa(i))) {
        throw std::invalid_argument(std::string("column '") + kValueColumns[c] +
                                    "' holds " +
                                    (std::isnan(aa(i)) ? "NaN" : "an infinity") +
                                    " at row " + std::to_string(i));
      }
      *Field(log.samples[i], c) = aa(i);
    }
  }
  // Written and read back: the reader's checks, and its messages (with the
  // line of the text, which is row + 2).
  std::stringstream text;
  kez_tools::WriteCsv(text, log);
  PyLog result;
  std::string error;
  if (!kez_tools::ReadLog(text, source, kez_tools::LogFormat::kCsv,
                          &result.log, &error)) {
    throw LogError{error};
  }
  for (kez_tools::LogSample& s : result.log.samples) s.line_number = 0;
  return result;
}

kez_tools::SimProfile Profile(const std::string& name) {
  kez_tools::SimProfile profile;
  if (!kez_tools::FindSimProfile(name, &profile)) {
    throw std::invalid_argument("unknown profile '" + name +
                                "' (regular, shift, heavy, light)");
  }
  return profile;
}

PyLog SimulateOne(const std::string& profile, int days, uint64_t seed,
                  int64_t start_day, double tz_offset_hours,
                  int interval_minutes) {
  if (days < 1 || days > 3650) throw std::invalid_argument("days is from 1 to 3650");
  if (interval_minutes < 1 || interval_minutes > 10) {
    throw std::invalid_argument("interval_minutes is from 1 to 10");
  }
  if (!(tz_offset_hours >= -14 && tz_offset_hours <= 14)) {
    throw std::invalid_argument("tz_offset_hours is from -14 to 14");
  }
  kez_tools::SimOptions o;
  o.profile = Profile(profile);
  o.days = days;
  o.seed = seed;
  o.start_day = start_day;
  o.tz_offset_minutes = static_cast<int>(std::lround(tz_offset_hours * 60));
  o.interval_minutes = interval_minutes;
  PyLog log;
  log.log = kez_tools::Simulate(o);
  return log;
}

// (name, log, description line of kez-simulate's fleet.csv).
py::tuple FleetUser(uint64_t seed, int index, int days) {
  if (days < 1 || days > 3650) throw std::invalid_argument("days is from 1 to 3650");
  if (index < 1) throw std::invalid_argument("users are numbered from 1");
  kez_tools::FleetUser u = kez_tools::MakeFleetUser(seed, index, days);
  PyLog log;
  log.log = kez_tools::Simulate(u.options);
  log.log.source = u.name;
  return py::make_tuple(u.name, log, kez_tools::FleetLine(u));
}

void WriteCsvFile(const PyLog& log, const std::string& path) {
  std::ofstream file(path, std::ios::binary);
  if (file) kez_tools::WriteCsv(file, log.log);
  file.flush();
  if (!file) throw std::runtime_error("cannot write " + path);
}

}  // namespace

kez_tools::Log ReadLogOrThrow(const std::string& path, bool status_lines) {
  kez_tools::Log log;
  std::string error;
  if (!kez_tools::ReadLogFile(path,
                              status_lines ? kez_tools::LogFormat::kStatusLines
                                           : kez_tools::LogFormat::kCsv,
                              &log, &error)) {
    throw LogError{error};
  }
  return log;
}

void BindLogs(py::module_& m) {
  py::class_<PyLog>(m, "Log")
      .def_property_readonly("source",
                             [](const PyLog& l) { return l.log.source; })
      .def("__len__", [](const PyLog& l) { return l.log.samples.size(); })
      .def("columns", &Columns)
      .def("line_numbers", [](const PyLog& l) {
        std::vector<int> lines;
        for (const auto& s : l.log.samples) lines.push_back(s.line_number);
        return lines;
      });
  m.def("read_log", [](const std::string& path, bool status_lines) {
    PyLog log;
    log.log = ReadLogOrThrow(path, status_lines);
    return log;
  }, py::arg("path"), py::arg("status_lines") = false);
  m.def("log_from_arrays", &FromArrays, py::arg("source"), py::arg("columns"));
  m.def("simulate", &SimulateOne, py::arg("profile"), py::arg("days"),
        py::arg("seed"), py::arg("start_day"), py::arg("tz_offset_hours"),
        py::arg("interval_minutes"));
  m.def("fleet_user", &FleetUser, py::arg("seed"), py::arg("index"),
        py::arg("days"));
  m.def("fleet_header", &kez_tools::FleetHeader);
  m.def("profiles", []() {
    std::vector<std::pair<std::string, std::string>> all;
    for (const auto& p : kez_tools::SimProfiles()) all.emplace_back(p.name, p.description);
    return all;
  });
  m.def("write_csv", &WriteCsvFile, py::arg("log"), py::arg("path"));
}

}  // namespace kez_python
