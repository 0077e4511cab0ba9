// The native part of the Python package kez (module kez._native): thin
// bindings over the library's C interface and the tools' layers (logs,
// replay, simulation, evaluation, tuning). Nothing is computed here that the
// tools compute elsewhere; this code converts arguments and results and
// turns the tools' error texts into Python exceptions.
//
// One Bind* function per concern, each in its own file.
#ifndef KEZ_PYTHON_BINDINGS_H_
#define KEZ_PYTHON_BINDINGS_H_

#include <pybind11/pybind11.h>

#include <string>

#include "LogSample.h"

namespace kez_python {

// Raised for a log that cannot be read: the reader's "SOURCE:LINE: reason".
// A ValueError in Python (kez.LogError).
struct LogError {
  std::string message;
};

void BindForecaster(pybind11::module_& m);
void BindLogs(pybind11::module_& m);
void BindEvaluation(pybind11::module_& m);
void BindTuning(pybind11::module_& m);

// A log held by Python (kez._native.Log).
struct PyLog {
  kez_tools::Log log;
};

// Throws LogError when `path` cannot be read as a log.
kez_tools::Log ReadLogOrThrow(const std::string& path, bool status_lines);

}  // namespace kez_python

#endif  // KEZ_PYTHON_BINDINGS_H_
