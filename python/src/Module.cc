// kez._native: see Bindings.h.
#include <pybind11/pybind11.h>

#include "Bindings.h"
#include "CommonOptions.h"

namespace py = pybind11;

PYBIND11_MODULE(_native, m) {
  m.doc() = "Native part of the kez package (use the kez module instead).";
  static py::exception<kez_python::LogError> log_error(m, "LogError",
                                                       PyExc_ValueError);
  py::register_exception_translator([](std::exception_ptr p) {
    try {
      if (p) std::rethrow_exception(p);
    } catch (const kez_python::LogError& e) {
      PyErr_SetString(log_error.ptr(), e.message.c_str());
    }
  });
  m.def("library_version", &kez_tools::LibraryVersion,
        "The library's version text, as the tools print it.");
  kez_python::BindForecaster(m);
  kez_python::BindLogs(m);
  kez_python::BindEvaluation(m);
  kez_python::BindTuning(m);
}
