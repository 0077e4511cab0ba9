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

namespace {

void SaveCells(const ErrorCell* cells, int n, StateWriter* out) {
  for (int i = 0; i < n; ++i) {
    out->Put(cells[i].sum);
    out->Put(cells[i].weight);
  }
}

void RestoreCells(ErrorCell* cells, int n, StateReader* in) {
  for (int i = 0; i < n; ++i) {
    cells[i].sum = in->Get<double>();
    cells[i].weight = in->Get<double>();
  }
}

constexpr int kLevelCells =
    kVariantCount * kStartStates * kAnchorCount * kMethodCount;
constexpr int kChargingCells = kStartStates * kAnchorCount * kMethodCount;

}  // namespace

void ForecastScorebook::Save(StateWriter* out) const {
  SaveCells(&level_[0][0][0][0], kLevelCells, out);
  SaveCells(&charging_[0][0][0], kChargingCells, out);
}

void ForecastScorebook::Restore(StateReader* in) {
  RestoreCells(&level_[0][0][0][0], kLevelCells, in);
  RestoreCells(&charging_[0][0][0], kChargingCells, in);
}

}  // namespace adaptive
}  // namespace kez
