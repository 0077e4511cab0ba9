// kez._native.RawForecaster: one instance of the library, fed and asked
// through its C interface exactly as an app does (kez_addStatusValue,
// kez_predict and its two variants), plus a replay of a whole log the way
// the tools replay it (KezSession and Replayer), and an optional tuned model.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <chrono>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Bindings.h"
#include "KezSession.h"
#include "ParameterFile.h"
#include "Replayer.h"
#include "kez/kez.h"

namespace py = pybind11;

namespace kez_python {

namespace {

using Array = py::array_t<double, py::array::c_style | py::array::forcecast>;
using TimeArray = py::array_t<int64_t, py::array::c_style | py::array::forcecast>;

class RawForecaster {
 public:
  explicit RawForecaster(const std::string& model_path) {
    session_ = std::make_unique<kez_tools::KezSession>();
    if (!model_path.empty()) {
      vorn::MobilePowerPredictorParameter parameter;
      std::string error;
      if (!kez_tools::LoadParameterFile(model_path, &parameter, &error)) {
        throw std::invalid_argument(error);
      }
      session_->UseModel(parameter);
    }
  }

  void Close() { session_.reset(); }
  bool closed() const { return session_ == nullptr; }

  // One sample, as kez_addStatusValue takes it.
  void Report(int64_t time_ms, double level, double charging, double aux1,
              double aux2, double aux3, double count_a, double count_b1,
              double count_b2) {
    CheckSample(time_ms, level, charging);
    kez_addStatusValue(handle(), static_cast<uint64_t>(time_ms),
                       static_cast<float>(level), static_cast<float>(charging),
                       static_cast<float>(aux1), static_cast<float>(aux2),
                       static_cast<float>(aux3), count_a, count_b1, count_b2);
    last_ms_ = time_ms;
    last_level_ = level;
  }

  // Many samples, one C call each, in array order.
  void ReportMany(const TimeArray& time_ms, const Array& level,
                  const Array& charging, const std::vector<Array>& extra) {
    const py::ssize_t n = time_ms.size();
    if (level.size() != n || charging.size() != n) {
      throw std::invalid_argument(
          "time_ms, level_percent and charging differ in length");
    }
    for (const Array& e : extra) {
      if (e.size() != n) {
        throw std::invalid_argument("the aux and count arrays differ in length");
      }
    }
    auto t = time_ms.unchecked<1>();
    auto l = level.unchecked<1>();
    auto c = charging.unchecked<1>();
    // Everything is checked before the first report, so that a bad array
    // leaves the instance as it was.
    for (py::ssize_t i = 0; i < n; ++i) {
      CheckSample(t(i), l(i), c(i), i);
      if (i > 0 && t(i) < t(i - 1)) {
        throw std::invalid_argument("time_ms[" + std::to_string(i) +
                                    "] is earlier than the sample before");
      }
      for (const Array& e : extra) {
        if (!std::isfinite(e.at(i))) {
          throw std::invalid_argument("an aux or count value at index " +
                                      std::to_string(i) + " is not a number");
        }
      }
    }
    double v[6] = {0, 0, 0, 0, 0, 0};
    for (py::ssize_t i = 0; i < n; ++i) {
      for (size_t k = 0; k < extra.size() && k < 6; ++k) v[k] = extra[k].at(i);
      kez_addStatusValue(handle(), static_cast<uint64_t>(t(i)),
                         static_cast<float>(l(i)), static_cast<float>(c(i)),
                         static_cast<float>(v[0]), static_cast<float>(v[1]),
                         static_cast<float>(v[2]), v[3], v[4], v[5]);
      last_ms_ = t(i);
      last_level_ = l(i);
    }
  }

  // Replays `log` as the tools do (a report every interval between samples
  // at most max_silence apart), continuing after what was reported before.
  void Replay(const PyLog& log, double interval_minutes,
              double max_silence_hours, bool as_logged) {
    kez_tools::ReplayOptions options;
    options.interval_ms = std::llround(interval_minutes * kez_tools::kMinuteMs);
    options.max_silence_ms = std::llround(max_silence_hours * kez_tools::kHourMs);
    options.as_logged = as_logged;
    if (!(interval_minutes >= 0.1 && interval_minutes <= 60)) {
      throw std::invalid_argument("interval_minutes is from 0.1 to 60");
    }
    if (!(max_silence_hours >= 0 && max_silence_hours <= 24 * 366)) {
      throw std::invalid_argument("max_silence_hours is from 0 to 8784");
    }
    if (!log.log.samples.empty() && last_ms_ >= 0 &&
        log.log.samples.front().time_ms < last_ms_) {
      throw std::invalid_argument(
          "the log starts before the last sample reported");
    }
    kept_.push_back(std::make_unique<kez_tools::Log>(log.log));
    kez_tools::KezSession& session = this->session();
    kez_tools::Replayer replayer(*kept_.back(), options, session.Sink());
    replayer.ReplayAll();
    if (session.last_time_ms() >= 0) {
      last_ms_ = session.last_time_ms();
      last_level_ = session.last_sample()->level_percent;
    }
  }

  // (levels in percent, chances of charging, distance) of `steps` steps.
  py::tuple Forecast(int steps, const std::string& variant) {
    if (steps < 1 || steps > 10000) {
      throw std::invalid_argument("steps is from 1 to 10000");
    }
    std::vector<stMobilePowerPredictionData> out(static_cast<size_t>(steps));
    int rc;
    if (variant == "free") {
      rc = kez_predict(handle(), steps, out.data());
    } else if (variant == "nocharge") {
      rc = kez_predict_without_charging(handle(), steps, out.data());
    } else if (variant == "charge") {
      rc = kez_predict_at_charging_starting(handle(), steps, out.data());
    } else {
      throw std::invalid_argument("variant is 'free', 'nocharge' or 'charge', not '" +
                                  variant + "'");
    }
    if (rc != 1) {
      throw std::runtime_error("the forecast failed (result " +
                               std::to_string(rc) + ")");
    }
    Array level(steps), charging(steps);
    auto l = level.mutable_unchecked<1>();
    auto c = charging.mutable_unchecked<1>();
    for (int k = 0; k < steps; ++k) {
      l(k) = out[static_cast<size_t>(k)].level * 100.0;
      c(k) = out[static_cast<size_t>(k)].charging;
    }
    return py::make_tuple(level, charging, out[0].distance);
  }

  // Seconds per kez_predict of `steps` steps (free), timed here in C++ over
  // `repeats` calls: the C interface's own cost, for comparing with the cost
  // of a call from Python (bench/python/python_overhead.py).
  double TimePredict(int steps, int repeats) {
    std::vector<stMobilePowerPredictionData> out(static_cast<size_t>(steps));
    kez_handle h = handle();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < repeats; ++i) kez_predict(h, steps, out.data());
    const std::chrono::duration<double> took =
        std::chrono::steady_clock::now() - start;
    return took.count() / repeats;
  }

  int64_t last_ms() const { return last_ms_; }
  double last_level() const { return last_level_; }

 private:
  kez_tools::KezSession& session() {
    if (!session_) throw std::runtime_error("the forecaster is closed");
    return *session_;
  }
  kez_handle handle() { return session().handle(); }

  void CheckSample(int64_t time_ms, double level, double charging,
                   py::ssize_t index = -1) const {
    const std::string at =
        index < 0 ? std::string() : " at index " + std::to_string(index);
    if (time_ms < 0) throw std::invalid_argument("time_ms is negative" + at);
    if (!(level >= 0 && level <= 100)) {
      throw std::invalid_argument("level_percent" + at + " is " +
                                  py::str(py::float_(level)).cast<std::string>() +
                                  ", not 0 to 100");
    }
    if (!(charging >= 0 && charging <= 1)) {
      throw std::invalid_argument("charging" + at + " is " +
                                  py::str(py::float_(charging)).cast<std::string>() +
                                  ", not 0 to 1");
    }
  }

  std::unique_ptr<kez_tools::KezSession> session_;
  // Logs replayed into the session (it keeps pointers to their samples).
  std::vector<std::unique_ptr<kez_tools::Log>> kept_;
  int64_t last_ms_ = -1;
  double last_level_ = 0;
};

}  // namespace

void BindForecaster(py::module_& m) {
  py::class_<RawForecaster>(m, "RawForecaster")
      .def(py::init<const std::string&>(), py::arg("model_path") = "")
      .def("close", &RawForecaster::Close)
      .def_property_readonly("closed", &RawForecaster::closed)
      .def("report", &RawForecaster::Report, py::arg("time_ms"),
           py::arg("level_percent"), py::arg("charging"), py::arg("aux1") = 0.0,
           py::arg("aux2") = 0.0, py::arg("aux3") = 0.0,
           py::arg("count_a") = 0.0, py::arg("count_b1") = 0.0,
           py::arg("count_b2") = 0.0)
      .def("report_many", &RawForecaster::ReportMany)
      .def("replay", &RawForecaster::Replay, py::arg("log"),
           py::arg("interval_minutes") = 5.0, py::arg("max_silence_hours") = 12.0,
           py::arg("as_logged") = false)
      .def("forecast", &RawForecaster::Forecast, py::arg("steps"),
           py::arg("variant"))
      .def("time_predict", &RawForecaster::TimePredict)
      .def_property_readonly("last_ms", &RawForecaster::last_ms)
      .def_property_readonly("last_level", &RawForecaster::last_level);
}

}  // namespace kez_python
