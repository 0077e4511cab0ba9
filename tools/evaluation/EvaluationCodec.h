// One log's evaluation as bytes, so that logs can be evaluated in other
// processes or on other machines and pooled afterwards exactly as in one
// process: every error, every running sum and every count travels as its
// exact bits, so Combine on decoded results gives the same figures, to the
// last digit, as Combine on the originals (given the same order).
//
// The bytes are a format of this version of the tools (a short tag, then
// little-endian integers and IEEE 754 doubles); they are for moving results
// between processes of one build, not for storage.
#ifndef KEZ_TOOLS_EVALUATION_EVALUATIONCODEC_H_
#define KEZ_TOOLS_EVALUATION_EVALUATIONCODEC_H_

#include <string>

#include "Evaluation.h"

namespace kez_tools {

std::string EncodeEvaluation(const LogEvaluation& result);

// False with *error when `bytes` is not an encoded evaluation (wrong tag,
// cut short, trailing bytes, absurd sizes); *result is then unchanged.
bool DecodeEvaluation(const std::string& bytes, LogEvaluation* result,
                      std::string* error);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_EVALUATION_EVALUATIONCODEC_H_
