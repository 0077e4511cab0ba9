// Fuzz target: the predictor's parameter text file
// (MobilePowerPredictorParameter::LoadFromFile), then a predictor built from
// the loaded model, fed a few samples and asked for a forecast. Any weights
// a file can hold (NaN, infinite, tiny ones that drop a feature) must give a
// working predictor: nothing may crash or read out of bounds.
#include <cstddef>
#include <cstdint>

#include "FuzzInput.h"
#include "predictor/MobilePowerPredictor.h"
#include "predictor/MobilePowerPredictorParameter.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kez_fuzz::TempFile file("parameter", data, size);
  if (!file.ok()) return 0;
  vorn::MobilePowerPredictorParameter parameter;
  const vorn::MobilePowerPredictorParameter defaults;
  parameter.LoadFromFile(file.path());
  // The integer settings are never read from the file.
  KEZ_FUZZ_CHECK(parameter.setting1 == defaults.setting1);
  KEZ_FUZZ_CHECK(parameter.setting2 == defaults.setting2);
  KEZ_FUZZ_CHECK(parameter.setting3 == defaults.setting3);

  vorn::MobilePowerPredictor predictor(parameter);
  vorn::MobilePowerInputData input;
  vorn::MobilePowerPredictionData out[8];
  // Two days of 10-minute steps, discharging by day and charging by night.
  for (int step = 0; step < 288; ++step) {
    const bool charging = step % 144 >= 100;
    input.level = charging ? 0.3 + 0.01 * (step % 144 - 100) : 1.0 - 0.007 * (step % 144);
    input.charging = charging ? 1.0 : 0.0;
    predictor.AddRawData(19000.0 + step / 144.0, &input, 0.99);
  }
  KEZ_FUZZ_CHECK(predictor.Predict(8, out, -1, 0));
  KEZ_FUZZ_CHECK(predictor.Predict(8, out, 1, 144));
  return 0;
}
