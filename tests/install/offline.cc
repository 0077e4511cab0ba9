// kez-install-offline: a C++ user of the exported offline classes of an
// installed libkez (the kez::offline target, or pkg-config kez-offline).
// Loads a recorded log as a time-series table and a parameter file, and
// prints what they hold:
//   table rows R columns C                  (the data rows and value columns)
//   parameter accuracy A weight0 W          (A as %.10f, W as %.6f)
//
// Usage: kez-install-offline LOG.csv PARAMETERS.txt
#include <cstdio>

#include "foundation/FString.h"
#include "predictor/MobilePowerPredictorParameter.h"
#include "table/VelqaTimeSeriesDataTable.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: kez-install-offline LOG.csv PARAMETERS.txt\n");
    return 2;
  }
  VelqaTimeSeriesDataTable table;
  if (!table.LoadFromFile(vorn::FString(argv[1]), 0, 0, 0, 1)) {
    std::fprintf(stderr, "kez-install-offline: cannot load %s\n", argv[1]);
    return 1;
  }
  std::printf("table rows %d columns %d\n", table.dataNames.Count(),
              table.colCount);
  vorn::MobilePowerPredictorParameter parameter;
  // Gives 0 both when the file is read and when it cannot be opened; a file
  // that was not read shows as the default model's figures below.
  parameter.LoadFromFile(argv[2]);
  std::printf("parameter accuracy %.10f weight0 %.6f\n", parameter.accuracy,
              parameter.weight[0]);
  return 0;
}
