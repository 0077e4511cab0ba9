#include "adaptive/StepHistory.h"

#include <cmath>
#include <limits>

namespace kez {
namespace adaptive {

StepHistory::StepHistory() { Clear(); }

void StepHistory::Clear() {
  newest_ = -1;
  for (int i = 0; i < kSteps; ++i) {
    level_[i] = std::numeric_limits<float>::quiet_NaN();
    charging_[i] = 0;
  }
}

void StepHistory::Add(int64_t step, double level, bool charging) {
  if (step < 0 || step < newest_) return;
  if (newest_ >= 0 && step > newest_ + 1) {
    // Empty the steps skipped since the newest one (at most the whole ring).
    int64_t skipped = step - newest_ - 1;
    if (skipped > kSteps) skipped = kSteps;
    for (int64_t s = step - skipped; s < step; ++s) {
      level_[Slot(s)] = std::numeric_limits<float>::quiet_NaN();
    }
  }
  if (!(level >= 0.0)) level = 0.0;  // also NaN, which callers keep out
  if (level > 1.0) level = 1.0;
  newest_ = step;
  level_[Slot(step)] = static_cast<float>(level);
  charging_[Slot(step)] = charging ? 1 : 0;
}

bool StepHistory::Holds(int64_t step) const {
  return newest_ >= 0 && step <= newest_ && step > newest_ - kSteps &&
         step >= 0 && !std::isnan(level_[Slot(step)]);
}

bool StepHistory::Level(int64_t step, double* level) const {
  if (!Holds(step)) return false;
  *level = level_[Slot(step)];
  return true;
}

bool StepHistory::Charging(int64_t step, bool* charging) const {
  if (!Holds(step)) return false;
  *charging = charging_[Slot(step)] != 0;
  return true;
}

int StepHistory::CountHeld(int64_t first, int64_t last) const {
  int n = 0;
  for (int64_t s = first; s <= last; ++s) {
    if (Holds(s)) ++n;
  }
  return n;
}

}  // namespace adaptive
}  // namespace kez
