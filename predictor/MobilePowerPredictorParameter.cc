#include "predictor/MobilePowerPredictorParameter.h"

#include <cstdio>
#include <cstdlib>

namespace vorn {

MobilePowerPredictorParameter::MobilePowerPredictorParameter()
    : accuracy(0.0),
      setting1(16),
      setting2(16),
      setting3(1),
      weight{277.591529, 1.681682, 3.169692, 1.007308, 2.153802, 0.315476,
             1.0,        4.322219, 0.721791, 0.260737, 0.1} {}

int MobilePowerPredictorParameter::SaveToFile(const char* path) const {
  FILE* f = std::fopen(path, "wt");
  if (f == nullptr) return 0;
  std::fprintf(f, "accuracy\n");
  std::fprintf(f, "%0.10f\n", accuracy);
  std::fprintf(f, "\n");
  std::fprintf(f, "weight\n");
  for (int k = 0; k < kWeightCount; ++k) std::fprintf(f, "%f\n", weight[k]);
  return std::fclose(f);
}

int MobilePowerPredictorParameter::LoadFromFile(const char* path) {
  FILE* f = std::fopen(path, "rt");
  if (f == nullptr) return 0;
  // A failed read leaves the buffer as it was, so a short file repeats its
  // last line for every later value; that is the file format's rule.
  char line[256] = {0};
  auto next = [&]() { (void)std::fgets(line, sizeof line, f); };
  next();  // "accuracy"
  next();
  accuracy = std::atof(line);
  next();  // empty line
  next();  // "weight"
  next();
  for (int k = 0; k < kWeightCount - 1; ++k) {
    weight[k] = std::atof(line);
    next();
  }
  weight[kWeightCount - 1] = std::atof(line);
  return std::fclose(f);
}

}  // namespace vorn
