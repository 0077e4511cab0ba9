#include "ParameterFile.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <vector>

namespace kez_tools {

namespace {

// The longest line, without its newline, that the library's reader
// (MobilePowerPredictorParameter::LoadFromFile) takes as one line.
constexpr size_t kLongestLine = 254;

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
  size_t too_long = 0;  // the first line the library would split, from 1
  while (lines.size() < 15 && std::getline(in, line)) {
    if (too_long == 0 && line.size() > kLongestLine) too_long = lines.size() + 1;
    lines.push_back(Trim(line));
  }
  auto fail = [&](size_t number, const std::string& reason) {
    *error = path + ":" + std::to_string(number) + ": " + reason +
             " (a parameter file has 15 lines: \"accuracy\", its value, an "
             "empty line, \"weight\" and eleven weights)";
    return false;
  };
  // The library reads a line into 256 bytes with its newline: a longer line
  // would be read as two, and every later value would shift by one line.
  if (too_long != 0) {
    return fail(too_long, "longer than " + std::to_string(kLongestLine) +
                              " characters");
  }
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
