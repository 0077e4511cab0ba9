// A feature set (a genome as VelqaSPBase::EncodeFeature writes it) in words,
// one line per feature function: its weight, ", mismatch" when it is
// compared by mismatch, and its operator chain, e.g.
//   "weight 1.00731: differential(level) > posi(0)".
// The first operator's inputs are named after the raw record's elements
// (day sin, day cos, week sin, week cos, level, charging, aux1, aux2, aux3,
// countA, countB, extra); a later operator's inputs are positions in the
// output of the operator before it. A lo_pass_filter shows its factor in
// brackets.
#ifndef KEZ_TOOLS_KEZ_TUNE_FEATUREDESCRIPTION_H_
#define KEZ_TOOLS_KEZ_TUNE_FEATUREDESCRIPTION_H_

#include <string>
#include <vector>

namespace kez_tools {

std::vector<std::string> DescribeFeatures(const std::vector<double>& genome);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_KEZ_TUNE_FEATUREDESCRIPTION_H_
