// kez._native.RawForecaster: one instance of the library, fed and asked
// through its C interface exactly as an app does (kez_addStatusValue,
// kez_predict and its two variants), plus a replay of a whole log the way
// the tools replay it (KezSession and Replayer), and an optional tuned model.
// With `adaptive`, every report also goes to an adaptive forecaster beside
// the instance (as kez-forecast feeds it), and forecasts are its forecasts.
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
#include "adaptive/AdaptiveForecaster.h"
#include "adaptive/ForecastMethod.h"
#include "Replayer.h"
#include "kez/kez.h"

namespace py = pybind11;

namespace kez_python {

namespace {

using Array = py::array_t<double, py::array::c_style | py::array::forcecast>;
using TimeArray = py::array_t<int64_t, py::array::c_style | py::array::forcecast>;

class RawForecaster {
 public:
  RawForecaster(const std::string& model_path, bool adaptive) {
    session_ = std::make_unique<kez_tools::KezSession>();
    if (adaptive) session_->EnableAdaptive();
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
    ReportAdaptive(time_ms, level, charging, aux1, aux2, aux3, count_a,
                   count_b1, count_b2);
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
      ReportAdaptive(t(i), l(i), c(i), v[0], v[1], v[2], v[3], v[4], v[5]);
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
    kez::adaptive::AdaptiveForecaster* adaptive = session().adaptive();
    if (adaptive != nullptr) {
      rc = adaptive->Predict(VariantIndex(variant), steps, out.data());
    } else if (variant == "free") {
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

  // The weights (steps x methods) with which the adaptive forecast of
  // `variant` combines its methods' levels (what "level") or, for the free
  // forecast, their chances of charging (what "charging").
  Array Weights(int steps, const std::string& variant, const std::string& what) {
    kez::adaptive::AdaptiveForecaster* adaptive = session().adaptive();
    if (adaptive == nullptr) {
      throw std::invalid_argument("only the adaptive forecaster weighs methods");
    }
    if (steps < 1 || steps > 10000) {
      throw std::invalid_argument("steps is from 1 to 10000");
    }
    if (what != "level" && what != "charging") {
      throw std::invalid_argument("what is 'level' or 'charging', not '" + what + "'");
    }
    const int methods = kez::adaptive::kMethodCount;
    Array weights({static_cast<py::ssize_t>(steps), static_cast<py::ssize_t>(methods)});
    adaptive->WeightPath(VariantIndex(variant), what == "level" ? 0 : 1, steps,
                         weights.mutable_data());
    return weights;
  }

  static std::vector<std::string> MethodNames() {
    std::vector<std::string> names;
    for (int m = 0; m < kez::adaptive::kMethodCount; ++m) {
      names.push_back(kez::adaptive::MethodName(m));
    }
    return names;
  }

  int64_t last_ms() const { return last_ms_; }
  double last_level() const { return last_level_; }

 private:
  kez_tools::KezSession& session() {
    if (!session_) throw std::runtime_error("the forecaster is closed");
    return *session_;
  }
  kez_handle handle() { return session().handle(); }

  static int VariantIndex(const std::string& variant) {
    if (variant == "free") return 0;
    if (variant == "nocharge") return 1;
    if (variant == "charge") return 2;
    throw std::invalid_argument("variant is 'free', 'nocharge' or 'charge', not '" +
                                variant + "'");
  }

  void ReportAdaptive(int64_t time_ms, double level, double charging,
                      double aux1, double aux2, double aux3, double count_a,
                      double count_b1, double count_b2) {
    kez::adaptive::AdaptiveForecaster* adaptive = session().adaptive();
    if (adaptive == nullptr) return;
    kez::adaptive::HostReport r;
    r.timeMs = static_cast<uint64_t>(time_ms);
    r.levelPercent = static_cast<float>(level);
    r.charging = static_cast<float>(charging);
    r.aux1 = static_cast<float>(aux1);
    r.aux2 = static_cast<float>(aux2);
    r.aux3 = static_cast<float>(aux3);
    r.countA = count_a;
    r.countB1 = count_b1;
    r.countB2 = count_b2;
    adaptive->Report(r);
  }

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
      .def(py::init<const std::string&, bool>(), py::arg("model_path") = "",
           py::arg("adaptive") = false)
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
      .def("weights", &RawForecaster::Weights, py::arg("steps"),
           py::arg("variant"), py::arg("what"))
      .def_static("method_names", &RawForecaster::MethodNames)
      .def("time_predict", &RawForecaster::TimePredict)
      .def_property_readonly("last_ms", &RawForecaster::last_ms)
      .def_property_readonly("last_level", &RawForecaster::last_level);
}

}  // namespace kez_python
