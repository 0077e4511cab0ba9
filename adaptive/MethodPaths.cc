#include "adaptive/MethodPaths.h"

namespace kez {
namespace adaptive {

namespace {

double Clamp01(double v) {
  if (!(v >= 0.0)) return 0.0;  // also NaN
  return v > 1.0 ? 1.0 : v;
}

// Steps after the start for which the variants force the charging state.
constexpr int kHoldSteps = 144;

}  // namespace

void MethodPaths::Start(int variant, const PresentState& present,
                        const StepHistory& history, const ChargeCurve& curve,
                        const stMobilePowerPredictionData* instance,
                        const vorn::MobilePowerPredictionData* rates) {
  variant_ = variant;
  present_ = present;
  history_ = &history;
  curve_ = &curve;
  instance_ = instance;
  rates_ = rates;
  available_ = Bit(kInstance) | Bit(kPersistence) | Bit(kRunningRates);
  StartSeason(&day_, kStepsPerDay);
  StartSeason(&week_, kStepsPerWeek);
  if (day_.available) available_ |= Bit(kYesterday);
  if (week_.available) available_ |= Bit(kLastWeek);
  if (variant == kFree) available_ |= Bit(kChargingHabit);
  if (variant == kPluggedIn && curve.known()) available_ |= Bit(kChargeCurve);
  curveLevel_ = present.level;
}

void MethodPaths::StartSeason(Season* s, int steps) {
  s->steps = steps;
  s->change = 0.0;
  s->charging = present_.charging;
  const int held = history_->CountHeld(present_.step - steps, present_.step);
  s->available = 4 * held >= 3 * (steps + 1);
}

void MethodPaths::StepSeason(Season* s, int ahead) {
  // The step of the season before that corresponds to `ahead`; beyond one
  // season the same stretch repeats, so nothing after the start is used.
  const int64_t at =
      present_.step - s->steps + 1 + static_cast<int64_t>((ahead - 1) % s->steps);
  double now = 0.0, before = 0.0;
  bool charging = false, chargingBefore = false;
  const bool held = history_->Level(at, &now) &&
                    history_->Charging(at, &charging);
  if (held) s->charging = charging;
  if (held && history_->Level(at - 1, &before) &&
      history_->Charging(at - 1, &chargingBefore)) {
    const double change = now - before;
    if (variant_ != kNotCharged) {
      s->change += change;
    } else if (!charging && !chargingBefore && change < 0.0) {
      s->change += change;  // "not charged": only the falls of idle steps
    }
  }
}

double MethodPaths::HabitAt(int ahead) const {
  const int64_t target = present_.step + ahead;
  const int first = (ahead + kStepsPerDay - 1) / kStepsPerDay;
  int seen = 0, charging = 0;
  for (int i = first; i < first + 7; ++i) {
    bool c = false;
    if (history_->Charging(target - static_cast<int64_t>(i) * kStepsPerDay, &c)) {
      ++seen;
      if (c) ++charging;
    }
  }
  if (seen == 0) return present_.charging ? 1.0 : 0.0;
  return static_cast<double>(charging) / seen;
}

void MethodPaths::Step(int k, double* level, double* charging) {
  const int ahead = k + 1;
  const bool held = ahead <= kHoldSteps;
  double forced = present_.charging ? 1.0 : 0.0;
  if (variant_ == kNotCharged && held) forced = 0.0;
  if (variant_ == kPluggedIn && held) forced = 1.0;

  level[kInstance] = Clamp01(instance_[k].level);
  charging[kInstance] = Clamp01(instance_[k].charging);
  level[kPersistence] = present_.level;
  charging[kPersistence] = forced;
  level[kRunningRates] = Clamp01(rates_[k].level);
  charging[kRunningRates] = Clamp01(rates_[k].charging);
  if (day_.available) {
    StepSeason(&day_, ahead);
    level[kYesterday] = Clamp01(present_.level + day_.change);
    charging[kYesterday] =
        variant_ == kFree ? (day_.charging ? 1.0 : 0.0) : forced;
  }
  if (week_.available) {
    StepSeason(&week_, ahead);
    level[kLastWeek] = Clamp01(present_.level + week_.change);
    charging[kLastWeek] =
        variant_ == kFree ? (week_.charging ? 1.0 : 0.0) : forced;
  }
  if (available_ & Bit(kChargingHabit)) {
    level[kChargingHabit] = present_.level;
    charging[kChargingHabit] = HabitAt(ahead);
  }
  if (available_ & Bit(kChargeCurve)) {
    const double rise = held ? curve_->RiseAt(curveLevel_)
                             : present_.dischargeRate;
    curveLevel_ = Clamp01(curveLevel_ + rise);
    level[kChargeCurve] = curveLevel_;
    charging[kChargeCurve] = forced;
  }
}

}  // namespace adaptive
}  // namespace kez
