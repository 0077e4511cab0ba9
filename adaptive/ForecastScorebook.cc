#include "adaptive/ForecastScorebook.h"

#include <cmath>

namespace kez {
namespace adaptive {

ForecastScorebook::ForecastScorebook(double forget) : forget_(forget) {}

bool ForecastScorebook::Add(ErrorCell* cell, double error) {
  if (!std::isfinite(error) || error < 0.0) return false;
  cell->sum = cell->sum * forget_ + error;
  cell->weight = cell->weight * forget_ + 1.0;
  return true;
}

bool ForecastScorebook::AddLevel(int variant, int start, int anchor,
                                 int method, double error) {
  return Add(&level_[variant][start][anchor][method], error);
}

bool ForecastScorebook::AddCharging(int start, int anchor, int method,
                                    double error) {
  return Add(&charging_[start][anchor][method], error);
}

}  // namespace adaptive
}  // namespace kez
