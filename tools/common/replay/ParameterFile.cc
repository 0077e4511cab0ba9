#include "ParameterFile.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <vector>

namespace kez_tools {

namespace {

std::string Trim(const std::string& s) {
  size_t b = s.find_first_not_of(" \t\r");
  if (b == std::string::npos) return "";
  size_t e = s.find_last_not_of(" \t\r");
  return s.substr(b, e - b + 1);
}

bool IsNumber(const std::string& text) {
  if (text.empty()) return false;
  char* end = nullptr;
  double v = std::strtod(text.c_str(), &end);
  return *end == '\0' && std::isfinite(v);
}

}  // namespace

bool LoadParameterFile(const std::string& path,
                       vorn::MobilePowerPredictorParameter* parameter,
                       std::string* error) {
  std::ifstream in(path);
  if (!in) {
    *error = path + ": cannot open the parameter file";
    return false;
  }
  std::vector<std::string> lines;
  std::string line;
  while (lines.size() < 15 && std::getline(in, line)) {
    lines.push_back(Trim(line));
  }
  auto fail = [&](size_t number, const std::string& reason) {
    *error = path + ":" + std::to_string(number) + ": " + reason +
             " (a parameter file has 15 lines: \"accuracy\", its value, an "
             "empty line, \"weight\" and eleven weights)";
    return false;
  };
  if (lines.empty() || lines[0] != "accuracy") {
    return fail(1, "expected the label \"accuracy\"");
  }
  if (lines.size() < 2 || !IsNumber(lines[1])) {
    return fail(2, "expected the accuracy, a number");
  }
  if (lines.size() < 4 || lines[3] != "weight") {
    return fail(4, "expected the label \"weight\"");
  }
  for (size_t k = 4; k < 15; ++k) {
    if (k >= lines.size()) {
      return fail(k + 1, "the file ends before weight " + std::to_string(k - 4));
    }
    if (!IsNumber(lines[k])) {
      return fail(k + 1, "weight " + std::to_string(k - 4) +
                             " is not a number: '" + lines[k] + "'");
    }
  }
  vorn::MobilePowerPredictorParameter loaded = *parameter;
  loaded.LoadFromFile(path.c_str());
  *parameter = loaded;
  return true;
}

}  // namespace kez_tools
