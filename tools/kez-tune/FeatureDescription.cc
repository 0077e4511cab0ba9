#include "FeatureDescription.h"

#include <cstdio>

#include "search/VelqaSPFunction.h"
#include "search/VelqaSPOperator.h"

namespace kez_tools {

namespace {

const char* ElementName(int e) {
  static const char* const kNames[] = {
      "day sin", "day cos", "week sin", "week cos", "level", "charging",
      "aux1",    "aux2",    "aux3",     "countA",   "countB", "extra"};
  return e >= 0 && e < 12 ? kNames[e] : "?";
}

std::string KindName(int code) {
  if (code == vorn::kSelectKind) return "select";
  for (const vorn::VelqaSPOperatorKind& k : vorn::kOperatorKinds) {
    if (k.code == code) return k.name;
  }
  char text[16];
  std::snprintf(text, sizeof text, "0x%x", code);
  return text;
}

std::string Number(double v) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", v);
  return text;
}

}  // namespace

std::vector<std::string> DescribeFeatures(const std::vector<double>& genome) {
  std::vector<std::string> lines;
  const double* p = genome.data();
  int remaining = static_cast<int>(genome.size());
  while (remaining > 0) {
    vorn::VelqaSPFunction f;
    f.Decode(p, remaining);
    std::string line = "weight " + Number(f.weight);
    if (f.discrete) line += ", mismatch";
    line += ":";
    for (int k = 0; k < f.OperatorCount(); ++k) {
      const vorn::VelqaSPOperator& op = f.Operator(k);
      line += k == 0 ? " " : " > ";
      line += KindName(op.kind);
      for (int j = 0; j < op.doubleParams.count; ++j) {
        line += "[" + Number(op.doubleParams[j]) + "]";
      }
      line += "(";
      for (int j = 0; j < op.inputs.count; ++j) {
        if (j > 0) line += ",";
        line += k == 0 ? ElementName(op.inputs[j]) : std::to_string(op.inputs[j]);
      }
      line += ")";
    }
    lines.push_back(line);
  }
  return lines;
}

}  // namespace kez_tools
