#include "CliArgs.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace kez_tools {

CliArgs::CliArgs(int argc, char** argv)
    : CliArgs(std::vector<std::string>(argv + (argc > 0 ? 1 : 0),
                                       argv + (argc > 0 ? argc : 0))) {}

CliArgs::CliArgs(std::vector<std::string> args) {
  for (const std::string& a : args) {
    size_t eq = a.find('=');
    if (a.size() > 2 && a[0] == '-' && a[1] == '-' && eq != std::string::npos) {
      args_.push_back(a.substr(0, eq));
      args_.push_back(a.substr(eq + 1));
    } else {
      args_.push_back(a);
    }
  }
}

bool CliArgs::Value(const std::string& name, std::string* value,
                    std::string* error) {
  if (Done()) {
    *error = name + " needs a value";
    return false;
  }
  *value = Take();
  return true;
}

bool CliArgs::Int(const std::string& name, int64_t lo, int64_t hi,
                  int64_t* value, std::string* error) {
  std::string text;
  if (!Value(name, &text, error)) return false;
  if (!ParseInt(text, lo, hi, value)) {
    *error = name + " takes a whole number from " + std::to_string(lo) +
             " to " + std::to_string(hi) + ", not '" + text + "'";
    return false;
  }
  return true;
}

bool CliArgs::Number(const std::string& name, double lo, double hi,
                     double* value, std::string* error) {
  std::string text;
  if (!Value(name, &text, error)) return false;
  if (!ParseNumber(text, lo, hi, value)) {
    char range[64];
    std::snprintf(range, sizeof range, "%g to %g", lo, hi);
    *error = name + " takes a number from " + range + ", not '" + text + "'";
    return false;
  }
  return true;
}

bool ParseInt(const std::string& text, int64_t lo, int64_t hi,
              int64_t* value) {
  if (text.empty()) return false;
  char* end = nullptr;
  errno = 0;
  long long v = std::strtoll(text.c_str(), &end, 10);
  if (*end != '\0' || errno == ERANGE || v < lo || v > hi) return false;
  *value = v;
  return true;
}

bool ParseNumber(const std::string& text, double lo, double hi,
                 double* value) {
  if (text.empty()) return false;
  char* end = nullptr;
  double v = std::strtod(text.c_str(), &end);
  if (*end != '\0' || !std::isfinite(v) || v < lo || v > hi) return false;
  *value = v;
  return true;
}

}  // namespace kez_tools
