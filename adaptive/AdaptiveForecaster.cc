#include "adaptive/AdaptiveForecaster.h"

#include <cmath>
#include <cstddef>

#include "adaptive/AnchorHorizons.h"
#include "adaptive/PriorErrors.h"
#include "interface/HostTime.h"
#include "predictor/MobilePowerPredictor.h"
#include "predictor/WorkArray.h"

namespace kez {
namespace adaptive {

namespace {

constexpr uint64_t kHourMs = 3600000;
// A report earlier than the last one by more than this is a clock jump.
constexpr uint64_t kLateMs = kHourMs;
// An outcome is read between two reports at most this far apart.
constexpr uint64_t kTruthGapMs = kHourMs;

bool Finite(const HostReport& r) {
  return std::isfinite(r.levelPercent) && std::isfinite(r.charging) &&
         std::isfinite(r.aux1) && std::isfinite(r.aux2) &&
         std::isfinite(r.aux3) && std::isfinite(r.countA) &&
         std::isfinite(r.countB1) && std::isfinite(r.countB2);
}

bool ValidVariant(int variant) { return variant >= 0 && variant < kVariantCount; }

}  // namespace

AdaptiveForecaster::AdaptiveForecaster()
    : AdaptiveForecaster(AdaptiveSettings()) {}

AdaptiveForecaster::AdaptiveForecaster(const AdaptiveSettings& settings)
    : settings_(settings),
      instance_(),
      history_(),
      curve_(settings.curveForget),
      scorebook_(settings.forget),
      pending_() {}

void AdaptiveForecaster::Reset() {
  history_.Clear();
  pending_.Clear();
  hasLast_ = false;
  hasRecord_ = false;
}

int AdaptiveForecaster::Report(const HostReport& r) {
  if (!Finite(r)) return 0;
  if (hasLast_ && r.timeMs < lastMs_) {
    if (lastMs_ - r.timeMs <= kLateMs) return 0;
    Reset();
  }
  reach_.Add(r.timeMs, !hasLast_ || StepOf(r.timeMs) != StepOf(lastMs_));
  instance_.addStatusValue(MillisecondsToDays(r.timeMs), r.levelPercent,
                           r.charging, r.aux1, r.aux2, r.aux3, r.countA,
                           r.countB1, r.countB2);
  // The level as the instance takes it: scaled in single precision.
  double level = static_cast<double>(r.levelPercent * 0.01f);
  if (level < 0.0) level = 0.0;
  if (level > 1.0) level = 1.0;
  const bool charging = r.charging > 0.5f;

  if (hasLast_) {
    Score(r, level, charging);
    const uint64_t dt = r.timeMs - lastMs_;
    if (charging && lastCharging_ && dt <= kHourMs) {
      curve_.Add(lastLevel_, level - lastLevel_,
                 static_cast<double>(dt) / static_cast<double>(kStepMs));
    }
  }
  for (int i = 0; i < PendingForecasts::kCapacity; ++i) {
    RecordedForecast& p = pending_[i];
    if (!p.active) continue;
    if (charging) p.chargingSeen = true;
    else p.idleSeen = true;
  }
  history_.Add(StepOf(r.timeMs), level, charging);
  hasLast_ = true;
  lastMs_ = r.timeMs;
  lastLevel_ = level;
  lastCharging_ = charging;

  const uint64_t hour = r.timeMs / kHourMs;
  if (!hasRecord_ || hour != lastRecordHour_) {
    hasRecord_ = true;
    lastRecordHour_ = hour;
    Record();
  }
  return 1;
}

void AdaptiveForecaster::Score(const HostReport& now, double level,
                               bool charging) {
  const uint64_t span = now.timeMs - lastMs_;
  const uint8_t all = (1u << kAnchorCount) - 1;
  for (int i = 0; i < PendingForecasts::kCapacity; ++i) {
    RecordedForecast& p = pending_[i];
    if (!p.active) continue;
    for (int a = 0; a < kAnchorCount; ++a) {
      if (p.done & (1u << a)) continue;
      const uint64_t target =
          p.startMs + static_cast<uint64_t>(kAnchorSteps[a]) * kStepMs;
      if (target > now.timeMs) continue;
      p.done |= static_cast<uint8_t>(1u << a);
      if (target <= lastMs_ || span > kTruthGapMs || span == 0) continue;
      const double share = static_cast<double>(target - lastMs_) /
                           static_cast<double>(span);
      const double truth = lastLevel_ + (level - lastLevel_) * share;
      const double truthCharging =
          (target == now.timeMs ? charging : lastCharging_) ? 1.0 : 0.0;
      const int start = Situation(p.startMs, p.startCharging);
      for (int v = 0; v < kVariantCount; ++v) {
        if (p.recorded[v] == 0) continue;
        if (v == kNotCharged && (p.startCharging || p.chargingSeen)) continue;
        if (v == kPluggedIn && (!p.startCharging || p.idleSeen)) continue;
        if (a == 0) ++scored_[v];
        for (int m = 0; m < kMethodCount; ++m) {
          if ((p.recorded[v] & Bit(m)) == 0) continue;
          if (LevelMethods(v) & Bit(m)) {
            scorebook_.AddLevel(v, start, a, m,
                                std::fabs(p.level[v][a][m] - truth));
          }
          if (v == kFree && (ChargingMethods() & Bit(m))) {
            const double d = p.charging[a][m] - truthCharging;
            scorebook_.AddCharging(start, a, m, d * d);
          }
        }
      }
    }
    if (p.done == all) p.active = false;
  }
}

void AdaptiveForecaster::WriteState(StateWriter* out) const {
  out->Put(kStateVersion);
  const vorn::MobilePowerPredictor* p = instance_.impl->predictor;
  out->Put(p->chargeRise);
  out->Put(p->chargeSteps);
  out->Put(p->dischargeChange);
  out->Put(p->dischargeSteps);
  scorebook_.Save(out);
  curve_.Save(out);
  pending_.Save(out);
  reach_.Save(out);
  out->PutBool(hasLast_);
  out->Put(lastMs_);
  out->Put(lastLevel_);
  out->PutBool(lastCharging_);
  out->Put(lastRecordHour_);
  out->PutBool(hasRecord_);
  for (long s : scored_) out->Put(static_cast<int64_t>(s));
}

std::size_t AdaptiveForecaster::StateSize() const {
  StateWriter counter(nullptr, 0);
  WriteState(&counter);
  return counter.size();
}

std::size_t AdaptiveForecaster::SaveState(unsigned char* out,
                                          std::size_t capacity) const {
  if (out == nullptr || capacity < StateSize()) return 0;
  StateWriter writer(out, capacity);
  WriteState(&writer);
  return writer.ok() ? writer.size() : 0;
}

bool AdaptiveForecaster::RestoreState(const unsigned char* data,
                                      std::size_t size) {
  if (data == nullptr || size != StateSize() || data[0] != kStateVersion) {
    return false;
  }
  StateReader in(data, size);
  in.Get<uint8_t>();
  vorn::MobilePowerPredictor* p = instance_.impl->predictor;
  p->chargeRise = in.Get<double>();
  p->chargeSteps = in.Get<double>();
  p->dischargeChange = in.Get<double>();
  p->dischargeSteps = in.Get<double>();
  scorebook_.Restore(&in);
  curve_.Restore(&in);
  pending_.Restore(&in);
  reach_.Restore(&in);
  hasLast_ = in.GetBool();
  lastMs_ = in.Get<uint64_t>();
  lastLevel_ = in.Get<double>();
  lastCharging_ = in.GetBool();
  lastRecordHour_ = in.Get<uint64_t>();
  hasRecord_ = in.GetBool();
  for (long& s : scored_) s = static_cast<long>(in.Get<int64_t>());
  return in.ok() && in.atEnd();
}

uint64_t AdaptiveForecaster::OldestNeeded() const {
  // The instance's 4320 places and a day more: the step history's 8 days
  // lie well inside.
  return reach_.Since(vorn::MobilePowerPredictor::kMemorySteps + 144);
}

bool AdaptiveForecaster::StartCharging(int variant) const {
  if (variant == kNotCharged) return false;
  if (variant == kPluggedIn) return true;
  return lastCharging_;
}

int AdaptiveForecaster::Situation(uint64_t timeMs, bool charging) const {
  int parts = settings_.dayParts;
  if (parts < 1) parts = 1;
  if (parts > kDayParts) parts = kDayParts;
  const uint64_t msOfDay = timeMs % (24 * kHourMs);
  const int part = static_cast<int>(msOfDay * static_cast<uint64_t>(parts) /
                                    (24 * kHourMs));
  return (charging ? 1 : 0) + 2 * part;
}

PresentState AdaptiveForecaster::Present() const {
  PresentState s;
  s.step = StepOf(lastMs_);
  s.level = lastLevel_;
  s.charging = lastCharging_;
  s.dischargeRate = instance_.impl->predictor->DischargeRate();
  return s;
}

void AdaptiveForecaster::Record() {
  RecordedForecast* record = pending_.Add(lastMs_, lastCharging_);
  RecordVariant(record, kFree);
  RecordVariant(record, lastCharging_ ? kPluggedIn : kNotCharged);
}

void AdaptiveForecaster::RecordVariant(RecordedForecast* record, int variant) {
  const int steps = kLongestAnchorSteps;
  if (instance_.predict(steps, recordPath_, ChargingMode(variant),
                        HoldSteps(variant)) != 1) {
    return;
  }
  instance_.impl->predictor->Extrapolate(steps, rates_, ChargingMode(variant),
                                         HoldSteps(variant));
  MethodPaths paths;
  paths.Start(variant, Present(), history_, curve_, recordPath_, rates_);
  double level[kMethodCount] = {};
  double charging[kMethodCount] = {};
  int a = 0;
  for (int k = 0; k < steps && a < kAnchorCount; ++k) {
    paths.Step(k, level, charging);
    if (k + 1 != kAnchorSteps[a]) continue;
    for (int m = 0; m < kMethodCount; ++m) {
      record->level[variant][a][m] = static_cast<float>(level[m]);
      if (variant == kFree) {
        record->charging[a][m] = static_cast<float>(charging[m]);
      }
    }
    ++a;
  }
  const MethodMask wanted =
      LevelMethods(variant) | (variant == kFree ? ChargingMethods() : 0);
  record->recorded[variant] = paths.available() & wanted;
}

void AdaptiveForecaster::AnchorWeights(int variant, int start,
                                       MethodMask available,
                                       double (*weights)[kMethodCount]) const {
  for (int a = 0; a < kAnchorCount; ++a) {
    ErrorCell cells[kMethodCount];
    for (int m = 0; m < kMethodCount; ++m) {
      cells[m] = scorebook_.Level(variant, start, a, m);
    }
    CombineWeights(cells, LevelPrior(variant, start, a),
                   LevelMethods(variant) & available, settings_.level,
                   weights[a]);
  }
}

void AdaptiveForecaster::AnchorChargingWeights(
    int start, MethodMask available, double (*weights)[kMethodCount]) const {
  for (int a = 0; a < kAnchorCount; ++a) {
    ErrorCell cells[kMethodCount];
    for (int m = 0; m < kMethodCount; ++m) {
      cells[m] = scorebook_.Charging(start, a, m);
    }
    CombineWeights(cells, ChargingPrior(start, a),
                   ChargingMethods() & available, settings_.charging,
                   weights[a]);
  }
}

namespace {

void WeightsAt(const double (*anchor)[kMethodCount], int k, double* out) {
  int low = 0;
  double t = 0.0;
  AnchorPosition(k + 1, &low, &t);
  for (int m = 0; m < kMethodCount; ++m) {
    out[m] = t == 0.0 ? anchor[low][m]
                      : (1.0 - t) * anchor[low][m] + t * anchor[low + 1][m];
  }
}

}  // namespace

int AdaptiveForecaster::PredictRaw(int variant, int count,
                                   stMobilePowerPredictionData* out) {
  if (!ValidVariant(variant)) return 0;
  return instance_.predict(count, out, ChargingMode(variant),
                           HoldSteps(variant));
}

int AdaptiveForecaster::Predict(int variant, int count,
                                stMobilePowerPredictionData* out) {
  if (!ValidVariant(variant)) return 0;
  const int raw = PredictRaw(variant, count, out);
  if (raw != 1 || count < 1 || !hasLast_) return raw;

  vorn::WorkArray<vorn::MobilePowerPredictionData> extra(
      count > kScratchSteps ? static_cast<std::size_t>(count) : 0);
  vorn::MobilePowerPredictionData* rates = rates_;
  if (count > kScratchSteps) {
    if (!extra.ok()) return 0;
    rates = extra.get();
  }
  instance_.impl->predictor->Extrapolate(count, rates, ChargingMode(variant),
                                         HoldSteps(variant));
  MethodPaths paths;
  paths.Start(variant, Present(), history_, curve_, out, rates);
  const int start = Situation(lastMs_, StartCharging(variant));
  double levelWeights[kAnchorCount][kMethodCount];
  double chargingWeights[kAnchorCount][kMethodCount];
  AnchorWeights(variant, start, paths.available(), levelWeights);
  if (variant == kFree) {
    AnchorChargingWeights(start, paths.available(), chargingWeights);
  }
  double level[kMethodCount] = {};
  double charging[kMethodCount] = {};
  double w[kMethodCount];
  for (int k = 0; k < count; ++k) {
    // Step k of the instance is read before it is overwritten below.
    paths.Step(k, level, charging);
    WeightsAt(levelWeights, k, w);
    double sum = 0.0;
    for (int m = 0; m < kMethodCount; ++m) {
      if (w[m] != 0.0) sum += w[m] * level[m];
    }
    double combined = sum < 0.0 ? 0.0 : sum > 1.0 ? 1.0 : sum;
    // While the variant holds the charging state, the weights moving
    // between anchors must not make an unplugged phone gain charge or a
    // plugged one lose it.
    if (k > 0 && k < HoldSteps(variant)) {
      if (variant == kNotCharged && combined > out[k - 1].level) {
        combined = out[k - 1].level;
      }
      if (variant == kPluggedIn && combined < out[k - 1].level) {
        combined = out[k - 1].level;
      }
    }
    out[k].level = combined;
    if (variant == kFree) {
      WeightsAt(chargingWeights, k, w);
      double chance = 0.0;
      for (int m = 0; m < kMethodCount; ++m) {
        if (w[m] != 0.0) chance += w[m] * charging[m];
      }
      out[k].charging = chance < 0.0 ? 0.0 : chance > 1.0 ? 1.0 : chance;
    }
  }
  return 1;
}

void AdaptiveForecaster::LevelWeights(int variant, int k,
                                      double* weights) const {
  for (int m = 0; m < kMethodCount; ++m) weights[m] = 0.0;
  if (!ValidVariant(variant)) return;
  MethodPaths paths;
  paths.Start(variant, Present(), history_, curve_, nullptr, nullptr);
  double anchor[kAnchorCount][kMethodCount];
  AnchorWeights(variant, Situation(lastMs_, StartCharging(variant)),
                paths.available(), anchor);
  WeightsAt(anchor, k < 0 ? 0 : k, weights);
}

void AdaptiveForecaster::ChargingWeights(int k, double* weights) const {
  MethodPaths paths;
  paths.Start(kFree, Present(), history_, curve_, nullptr, nullptr);
  double anchor[kAnchorCount][kMethodCount];
  AnchorChargingWeights(Situation(lastMs_, lastCharging_), paths.available(),
                        anchor);
  WeightsAt(anchor, k < 0 ? 0 : k, weights);
}

bool AdaptiveForecaster::WeightPath(int variant, int what, int count,
                                    double* weights) const {
  if (!ValidVariant(variant) || (what != 0 && !(what == 1 && variant == kFree))) {
    return false;
  }
  MethodPaths paths;
  paths.Start(variant, Present(), history_, curve_, nullptr, nullptr);
  double anchor[kAnchorCount][kMethodCount];
  if (what == 0) {
    AnchorWeights(variant, Situation(lastMs_, StartCharging(variant)),
                  paths.available(), anchor);
  } else {
    AnchorChargingWeights(Situation(lastMs_, lastCharging_), paths.available(),
                          anchor);
  }
  for (int k = 0; k < count; ++k) {
    WeightsAt(anchor, k, weights + static_cast<std::ptrdiff_t>(k) * kMethodCount);
  }
  return true;
}

}  // namespace adaptive
}  // namespace kez
