// ForecastScorebook: how wrong each method has been for this user, per
// forecast variant, anchor horizon and situation at the forecast's start
// (charging or not, part of the day), as exponentially forgetting sums.
//
// Level errors are absolute differences of fractions (0.05 = 5 percentage
// points); charging errors are squared differences of a chance and the
// outcome (Brier). Each cell keeps a sum of errors and a sum of weights;
// every new error first multiplies both by the forgetting factor, so the
// mean (sum / weight) follows the recent errors and weight counts about
// 1 / (1 - forget) of the newest ones at most. A non-finite error is never
// added: the cell stays as it was.
#ifndef KEZ_ADAPTIVE_FORECASTSCOREBOOK_H_
#define KEZ_ADAPTIVE_FORECASTSCOREBOOK_H_

#include "adaptive/AnchorHorizons.h"
#include "adaptive/ForecastMethod.h"
#include "adaptive/StateBytes.h"

namespace kez {
namespace adaptive {

// The situation a forecast starts from: charging or not, and the part of
// the day (in Unix time, so a user's parts are always the same hours of
// their day): situation = charging + 2 x part, with at most kDayParts parts.
constexpr int kDayParts = 4;
constexpr int kStartStates = 2 * kDayParts;

struct ErrorCell {
  double sum = 0.0;
  double weight = 0.0;
};

class ForecastScorebook {
 public:
  explicit ForecastScorebook(double forget);

  // False (and nothing changed) for an error that is not finite or negative.
  bool AddLevel(int variant, int start, int anchor, int method, double error);
  bool AddCharging(int start, int anchor, int method, double error);

  const ErrorCell& Level(int variant, int start, int anchor, int method) const {
    return level_[variant][start][anchor][method];
  }
  const ErrorCell& Charging(int start, int anchor, int method) const {
    return charging_[start][anchor][method];
  }

  // Every cell, for a restart (the forgetting factor is not saved).
  void Save(StateWriter* out) const;
  void Restore(StateReader* in);

 private:
  bool Add(ErrorCell* cell, double error);

  double forget_;
  ErrorCell level_[kVariantCount][kStartStates][kAnchorCount][kMethodCount];
  ErrorCell charging_[kStartStates][kAnchorCount][kMethodCount];
};

}  // namespace adaptive
}  // namespace kez

#endif  // KEZ_ADAPTIVE_FORECASTSCOREBOOK_H_
