// MobilePowerPredictorParameter: the tuned model of the power predictor.
//
// Three integer settings of the neighbour search and eleven feature weights,
// with the accuracy figure of the tuning run beside them. The constructor
// sets the built-in default model, the one every instance uses;
// MobilePowerPredictor::Initialize turns a record into the predictor's
// configuration. The record is a plain value without resources.
//
// Text file (offline tools only), one value a line:
//   "accuracy", accuracy ("%0.10f"), an empty line, "weight",
//   then weight[0] .. weight[10] ("%f", six digits after the point).
// The integer settings are neither written nor read on purpose: a saved model
// keeps only its weights and accuracy, and loading keeps whatever settings the
// record already had. Reading never checks the labels; when the file ends
// early the last line read is used again for every later value, and text that
// is not a number reads as 0.0.
#ifndef KEZ_PREDICTOR_MOBILEPOWERPREDICTORPARAMETER_H_
#define KEZ_PREDICTOR_MOBILEPOWERPREDICTORPARAMETER_H_

#include <cstdint>

#include "kez/export.h"

namespace vorn {

class KEZ_EXPORT MobilePowerPredictorParameter {
 public:
  static constexpr int kWeightCount = 11;

  double accuracy;             // quality figure; saved and loaded, not used
  int32_t setting1;            // neighbourMax: neighbours per search
  int32_t setting2;            // lagCount: past steps compared by a search
  int32_t setting3;            // lagStride: step between compared past steps
  double weight[kWeightCount]; // [0] day phase, [1] week phase, [2..10] table

  // The default model.
  MobilePowerPredictorParameter();

  // Writes the text file. 0 when the file cannot be opened (nothing is
  // written), otherwise the result of closing it (0 on success).
  int SaveToFile(const char* path) const;
  // Reads the text file into accuracy and the weights. 0 when the file cannot
  // be opened (the record is left as it was), otherwise the result of closing
  // it.
  int LoadFromFile(const char* path);
};

}  // namespace vorn

#endif  // KEZ_PREDICTOR_MOBILEPOWERPREDICTORPARAMETER_H_
