// Reads a list of forecast horizons given on a command line: hours,
// comma-separated ("1,2,4,8,12,24"), each a whole number of 10-minute steps
// from 1/6 h to 720 h. The result is sorted and without repeats.
#ifndef KEZ_TOOLS_COMMON_CLI_HORIZONLIST_H_
#define KEZ_TOOLS_COMMON_CLI_HORIZONLIST_H_

#include <cstdint>
#include <string>
#include <vector>

namespace kez_tools {

// False with *error (naming the option `name`) when `text` is not such a
// list; *horizons then holds what was read before the fault.
bool ParseHorizonList(const std::string& name, const std::string& text,
                      std::vector<int64_t>* horizons, std::string* error);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_CLI_HORIZONLIST_H_
