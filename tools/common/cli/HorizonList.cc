#include "HorizonList.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "CliArgs.h"
#include "Replayer.h"

namespace kez_tools {

bool ParseHorizonList(const std::string& name, const std::string& text,
                      std::vector<int64_t>* horizons, std::string* error) {
  horizons->clear();
  std::stringstream in(text);
  std::string item;
  while (std::getline(in, item, ',')) {
    double hours;
    if (!kez_tools::ParseNumber(item, 1e-9, 720, &hours)) {
      *error = name + " takes hours from 1/6 to 720, comma-separated, not '" +
               item + "'";
      return false;
    }
    const int64_t ms = std::llround(hours * kez_tools::kHourMs);
    if (ms % kez_tools::kStepMs != 0) {
      *error = name + ": " + item + " h is not a whole number of 10-minute steps";
      return false;
    }
    horizons->push_back(ms);
  }
  if (horizons->empty()) {
    *error = name + " needs at least one horizon";
    return false;
  }
  std::sort(horizons->begin(), horizons->end());
  horizons->erase(std::unique(horizons->begin(), horizons->end()),
                  horizons->end());
  return true;
}

}  // namespace kez_tools
