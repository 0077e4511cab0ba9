#include "adaptive/ChargeCurve.h"

#include <cmath>

namespace kez {
namespace adaptive {

namespace {
// Steps of learning a band needs before it counts as known.
constexpr double kKnownSteps = 1.0;
}  // namespace

ChargeCurve::ChargeCurve(double forget) : forget_(forget) {
  for (int b = 0; b < kBands; ++b) {
    rise_[b] = 0.0;
    steps_[b] = 0.0;
  }
}

int ChargeCurve::Band(double level) {
  if (!(level > 0.0)) return 0;
  int b = static_cast<int>(level * kBands);
  return b >= kBands ? kBands - 1 : b;
}

void ChargeCurve::Add(double level, double rise, double steps) {
  if (!std::isfinite(level) || !std::isfinite(rise) || !std::isfinite(steps) ||
      !(steps > 0.0) || steps > 6.0) {
    return;
  }
  const int b = Band(level);
  rise_[b] = rise_[b] * forget_ + rise;
  steps_[b] = steps_[b] * forget_ + steps;
}

bool ChargeCurve::known() const {
  for (int b = 0; b < kBands; ++b) {
    if (steps_[b] >= kKnownSteps) return true;
  }
  return false;
}

double ChargeCurve::RiseAt(double level) const {
  const int b = Band(level);
  for (int d = b; d >= 0; --d) {
    if (steps_[d] >= kKnownSteps) return rise_[d] / steps_[d];
  }
  for (int d = b + 1; d < kBands; ++d) {
    if (steps_[d] >= kKnownSteps) return rise_[d] / steps_[d];
  }
  return 0.0;
}

void ChargeCurve::Save(StateWriter* out) const {
  for (int b = 0; b < kBands; ++b) {
    out->Put(rise_[b]);
    out->Put(steps_[b]);
  }
}

void ChargeCurve::Restore(StateReader* in) {
  for (int b = 0; b < kBands; ++b) {
    rise_[b] = in->Get<double>();
    steps_[b] = in->Get<double>();
  }
}

}  // namespace adaptive
}  // namespace kez
