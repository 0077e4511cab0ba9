// MethodPaths: every method's forecast of one variant, step by step, from
// the present state (the last report) and what the forecaster has kept.
//
// The instance's forecast and the running-rate extrapolation are computed by
// the instance beforehand and passed in as arrays; persistence, the seasonal
// methods, the charging habit and the charge curve are formed here, one step
// at a time, so no path is ever stored whole. Levels are fractions kept
// within 0 .. 1, chances 0 .. 1.
//
// A seasonal method is available when the history holds at least three
// quarters of the steps from one season (a day, a week) before the start up
// to the start; a step whose level or the one before it is missing adds no
// change. The charge curve is available once it has learned anything.
//
// Use: Start, then Step(k) for k = 0, 1, 2, ... in order (each call builds
// on the previous one).
#ifndef KEZ_ADAPTIVE_METHODPATHS_H_
#define KEZ_ADAPTIVE_METHODPATHS_H_

#include <cstdint>

#include "adaptive/ChargeCurve.h"
#include "adaptive/ForecastMethod.h"
#include "adaptive/StepHistory.h"
#include "kez/kez.h"
#include "predictor/MobilePowerPredictionData.h"

namespace kez {
namespace adaptive {

struct PresentState {
  int64_t step = 0;       // the step of the last report
  double level = 0.0;     // its level, a fraction
  bool charging = false;  // its charging state
  double dischargeRate = 0.0;  // the instance's, per step (negative)
};

class MethodPaths {
 public:
  // `instance` and `rates` hold at least as many steps as will be asked for
  // and must outlive the stepping.
  void Start(int variant, const PresentState& present,
             const StepHistory& history, const ChargeCurve& curve,
             const stMobilePowerPredictionData* instance,
             const vorn::MobilePowerPredictionData* rates);

  // The methods that give a forecast this time (a subset of all methods).
  MethodMask available() const { return available_; }

  // Fills level[m] and charging[m] of step k for every available method.
  void Step(int k, double* level, double* charging);

 private:
  struct Season {
    int steps = 0;         // its length
    bool available = false;
    double change = 0.0;   // summed change so far
    bool charging = false;  // state logged at the step reached
  };
  void StartSeason(Season* s, int steps);
  void StepSeason(Season* s, int ahead);
  double HabitAt(int ahead) const;

  int variant_ = kFree;
  PresentState present_;
  const StepHistory* history_ = nullptr;
  const ChargeCurve* curve_ = nullptr;
  const stMobilePowerPredictionData* instance_ = nullptr;
  const vorn::MobilePowerPredictionData* rates_ = nullptr;
  MethodMask available_ = 0;
  Season day_;
  Season week_;
  double curveLevel_ = 0.0;
};

}  // namespace adaptive
}  // namespace kez

#endif  // KEZ_ADAPTIVE_METHODPATHS_H_
