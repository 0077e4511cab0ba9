// The ways of forecasting that the adaptive forecaster weighs, and which of
// them serve each forecast variant.
//
//   instance        the instance's own forecast of the variant (similar past
//                   moments, or its running-rate extrapolation without any);
//   persistence     the level and the charging state stay as they are;
//   running_rates   the predictor's running-rate extrapolation, with the
//                   variant's charging state;
//   yesterday       the level change over the same hours one day earlier,
//                   from the present level (for "not charged": only the
//                   falls of the steps that were not charging);
//   last_week       the same, one week earlier;
//   charging_habit  chance of charging only: the share of the last seven
//                   days that were charging at the same time of day;
//   charge_curve    "plugged in now" only: the user's own rise per step at
//                   each level while charging (a phone that holds at 80 %
//                   learns a rise of zero there).
//
// Level methods per variant: the free forecast weighs instance,
// persistence, running_rates, yesterday and last_week; "not charged" weighs
// instance and running_rates (with the seasonal falls as well, its level at
// the anchors was a little better but its time to 20 % clearly worse on the
// simulated users: the idle hours of a seasonal path flatten it); "plugged
// in now" weighs instance, persistence, running_rates and charge_curve. The chance
// of charging of the free forecast weighs instance, persistence, yesterday,
// last_week and charging_habit.
#ifndef KEZ_ADAPTIVE_FORECASTMETHOD_H_
#define KEZ_ADAPTIVE_FORECASTMETHOD_H_

#include <cstdint>

namespace kez {
namespace adaptive {

enum Method {
  kInstance = 0,
  kPersistence,
  kRunningRates,
  kYesterday,
  kLastWeek,
  kChargingHabit,
  kChargeCurve,
  kMethodCount
};

enum Variant { kFree = 0, kNotCharged, kPluggedIn, kVariantCount };

using MethodMask = uint32_t;

constexpr MethodMask Bit(int method) { return MethodMask{1} << method; }

// "instance", "persistence", "running_rates", "yesterday", "last_week",
// "charging_habit", "charge_curve"; nullptr outside 0 .. kMethodCount - 1.
const char* MethodName(int method);

// The methods whose levels are combined for `variant`.
MethodMask LevelMethods(int variant);
// The methods whose chances of charging are combined (free forecast).
MethodMask ChargingMethods();

// The instance's charging mode and hold steps of a variant: free -1 / 0,
// "not charged" 0 / 144, "plugged in now" 1 / 144.
int ChargingMode(int variant);
int HoldSteps(int variant);

}  // namespace adaptive
}  // namespace kez

#endif  // KEZ_ADAPTIVE_FORECASTMETHOD_H_
