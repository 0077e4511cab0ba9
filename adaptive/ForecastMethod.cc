#include "adaptive/ForecastMethod.h"

namespace kez {
namespace adaptive {

const char* MethodName(int method) {
  static const char* const kNames[kMethodCount] = {
      "instance",  "persistence",    "running_rates", "yesterday",
      "last_week", "charging_habit", "charge_curve"};
  if (method < 0 || method >= kMethodCount) return nullptr;
  return kNames[method];
}

MethodMask LevelMethods(int variant) {
  if (variant == kPluggedIn) {
    return Bit(kInstance) | Bit(kPersistence) | Bit(kRunningRates) |
           Bit(kChargeCurve);
  }
  if (variant == kNotCharged) {
    return Bit(kInstance) | Bit(kRunningRates);
  }
  return Bit(kInstance) | Bit(kPersistence) | Bit(kRunningRates) |
         Bit(kYesterday) | Bit(kLastWeek);
}

MethodMask ChargingMethods() {
  return Bit(kInstance) | Bit(kPersistence) | Bit(kYesterday) |
         Bit(kLastWeek) | Bit(kChargingHabit);
}

int ChargingMode(int variant) {
  return variant == kFree ? -1 : variant == kNotCharged ? 0 : 1;
}

int HoldSteps(int variant) { return variant == kFree ? 0 : 144; }

}  // namespace adaptive
}  // namespace kez
