#include "adaptive/PendingForecasts.h"

namespace kez {
namespace adaptive {

RecordedForecast* PendingForecasts::Add(uint64_t startMs, bool startCharging) {
  RecordedForecast* r = &records_[next_];
  next_ = (next_ + 1) % kCapacity;
  r->active = true;
  r->startCharging = startCharging;
  r->chargingSeen = false;
  r->idleSeen = false;
  r->done = 0;
  r->startMs = startMs;
  for (int v = 0; v < kVariantCount; ++v) r->recorded[v] = 0;
  return r;
}

void PendingForecasts::Clear() {
  for (int i = 0; i < kCapacity; ++i) records_[i].active = false;
  next_ = 0;
}

void PendingForecasts::Save(StateWriter* out) const {
  out->Put(static_cast<int32_t>(next_));
  for (const RecordedForecast& r : records_) {
    out->PutBool(r.active);
    out->PutBool(r.startCharging);
    out->PutBool(r.chargingSeen);
    out->PutBool(r.idleSeen);
    out->Put(r.done);
    out->Put(r.startMs);
    for (int v = 0; v < kVariantCount; ++v) out->Put(r.recorded[v]);
    for (int v = 0; v < kVariantCount; ++v) {
      for (int a = 0; a < kAnchorCount; ++a) {
        for (int m = 0; m < kMethodCount; ++m) out->Put(r.level[v][a][m]);
      }
    }
    for (int a = 0; a < kAnchorCount; ++a) {
      for (int m = 0; m < kMethodCount; ++m) out->Put(r.charging[a][m]);
    }
  }
}

void PendingForecasts::Restore(StateReader* in) {
  const int32_t next = in->Get<int32_t>();
  next_ = next >= 0 && next < kCapacity ? next : 0;
  for (RecordedForecast& r : records_) {
    r.active = in->GetBool();
    r.startCharging = in->GetBool();
    r.chargingSeen = in->GetBool();
    r.idleSeen = in->GetBool();
    r.done = in->Get<uint8_t>();
    r.startMs = in->Get<uint64_t>();
    for (int v = 0; v < kVariantCount; ++v) r.recorded[v] = in->Get<MethodMask>();
    for (int v = 0; v < kVariantCount; ++v) {
      for (int a = 0; a < kAnchorCount; ++a) {
        for (int m = 0; m < kMethodCount; ++m) r.level[v][a][m] = in->Get<float>();
      }
    }
    for (int a = 0; a < kAnchorCount; ++a) {
      for (int m = 0; m < kMethodCount; ++m) r.charging[a][m] = in->Get<float>();
    }
  }
}

}  // namespace adaptive
}  // namespace kez
