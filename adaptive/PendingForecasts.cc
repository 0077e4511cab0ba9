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

}  // namespace adaptive
}  // namespace kez
