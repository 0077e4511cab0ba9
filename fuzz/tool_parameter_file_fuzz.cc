// Fuzz target: the tools' checked reader of parameter files
// (kez_tools::LoadParameterFile, used by kez-forecast, kez-eval and
// kez-tune). Properties:
//  - a refused file has a message that starts with the file's path and a
//    line number, and leaves the record exactly as it was;
//  - an accepted file has the labels and the numbers the reader promises,
//    and the record then holds exactly those numbers: the accuracy of line 2
//    and the weights of lines 5 to 15, as strtod reads the lines (blanks
//    around them trimmed), and the integer settings it had before.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "FuzzInput.h"
#include "ParameterFile.h"
#include "predictor/MobilePowerPredictorParameter.h"

namespace {

bool SameBits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

bool SameRecord(const vorn::MobilePowerPredictorParameter& a,
                const vorn::MobilePowerPredictorParameter& b) {
  if (!SameBits(a.accuracy, b.accuracy) || a.setting1 != b.setting1 ||
      a.setting2 != b.setting2 || a.setting3 != b.setting3) {
    return false;
  }
  for (int k = 0; k < 11; ++k) {
    if (!SameBits(a.weight[k], b.weight[k])) return false;
  }
  return true;
}

// The first 15 lines of the input, each without its newline and with
// spaces, tabs and carriage returns trimmed at both ends.
std::vector<std::string> Lines(const uint8_t* data, size_t size) {
  std::vector<std::string> lines;
  std::string line;
  size_t i = 0;
  while (lines.size() < 15 && i < size) {
    const size_t start = i;
    while (i < size && data[i] != '\n') ++i;
    line.assign(reinterpret_cast<const char*>(data) + start, i - start);
    if (i < size) ++i;  // the newline
    const size_t b = line.find_first_not_of(" \t\r");
    const size_t e = line.find_last_not_of(" \t\r");
    lines.push_back(b == std::string::npos ? std::string() : line.substr(b, e - b + 1));
  }
  return lines;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // A NUL ends a line early for the readers of text; leave such inputs out.
  if (std::memchr(data, 0, size) != nullptr) return 0;
  kez_fuzz::TempFile file("tool-parameter", data, size);
  if (!file.ok()) return 0;
  vorn::MobilePowerPredictorParameter parameter;
  parameter.setting1 = 3;
  parameter.setting2 = 5;
  parameter.setting3 = 2;
  parameter.weight[4] = -7.25;
  const vorn::MobilePowerPredictorParameter before = parameter;
  std::string error;
  const bool ok = kez_tools::LoadParameterFile(file.path(), &parameter, &error);
  if (!ok) {
    KEZ_FUZZ_CHECK(error.compare(0, std::strlen(file.path()) + 1,
                                 std::string(file.path()) + ":") == 0);
    KEZ_FUZZ_CHECK(SameRecord(parameter, before));
    return 0;
  }
  KEZ_FUZZ_CHECK(error.empty());
  const std::vector<std::string> lines = Lines(data, size);
  KEZ_FUZZ_CHECK(lines.size() == 15);
  KEZ_FUZZ_CHECK(lines[0] == "accuracy");
  KEZ_FUZZ_CHECK(lines[3] == "weight");
  KEZ_FUZZ_CHECK(SameBits(parameter.accuracy, std::strtod(lines[1].c_str(), nullptr)));
  for (int k = 0; k < 11; ++k) {
    const double w = std::strtod(lines[4 + k].c_str(), nullptr);
    KEZ_FUZZ_CHECK(std::isfinite(w));
    KEZ_FUZZ_CHECK(SameBits(parameter.weight[k], w));
  }
  KEZ_FUZZ_CHECK(parameter.setting1 == 3 && parameter.setting2 == 5 && parameter.setting3 == 2);
  return 0;
}
