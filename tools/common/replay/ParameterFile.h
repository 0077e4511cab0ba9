// Reads a model's parameter file (as MobilePowerPredictorParameter::SaveToFile
// writes it) with the checks the library's own reader leaves out: the file
// must open and have the labels "accuracy" (line 1) and "weight" (line 4)
// and eleven weights (lines 5 to 15) that are numbers, and no line longer
// than 254 characters (the library would read it as two lines and shift
// every later value). A damaged file would otherwise load silently as
// repeated, shifted or zero weights. The integer settings
// are not in the file; the record keeps the ones it had.
#ifndef KEZ_TOOLS_COMMON_REPLAY_PARAMETERFILE_H_
#define KEZ_TOOLS_COMMON_REPLAY_PARAMETERFILE_H_

#include <string>

#include "predictor/MobilePowerPredictorParameter.h"

namespace kez_tools {

// False with *error ("PATH:LINE: reason") when the file is unreadable or not
// a parameter file; *parameter is then unchanged.
bool LoadParameterFile(const std::string& path,
                       vorn::MobilePowerPredictorParameter* parameter,
                       std::string* error);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_REPLAY_PARAMETERFILE_H_
