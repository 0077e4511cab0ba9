// PendingForecasts: the forecasts the adaptive forecaster recorded at its
// cadence and whose outcomes have not all been reported yet.
//
// A record keeps, for each anchor horizon, what every method forecast for
// the level of each recorded variant and for the chance of charging (free
// forecast), plus what the reports since its start have shown (any charging,
// any time without), which decides whether the "not charged" and "plugged in
// now" variants can be judged. A fixed ring of kCapacity records (a day of
// hourly records and some to spare); when it is full the oldest record is
// dropped. Nothing here allocates after construction.
#ifndef KEZ_ADAPTIVE_PENDINGFORECASTS_H_
#define KEZ_ADAPTIVE_PENDINGFORECASTS_H_

#include <cstdint>

#include "adaptive/AnchorHorizons.h"
#include "adaptive/ForecastMethod.h"
#include "adaptive/StateBytes.h"

namespace kez {
namespace adaptive {

struct RecordedForecast {
  bool active = false;
  bool startCharging = false;  // charging at the start
  bool chargingSeen = false;   // a later report was charging
  bool idleSeen = false;       // a later report was not charging
  uint8_t done = 0;            // anchors judged (or given up), one bit each
  uint64_t startMs = 0;        // time of the report it starts from
  // Methods recorded per variant; 0 for a variant not recorded.
  MethodMask recorded[kVariantCount] = {0, 0, 0};
  float level[kVariantCount][kAnchorCount][kMethodCount] = {};
  float charging[kAnchorCount][kMethodCount] = {};  // free forecast
};

class PendingForecasts {
 public:
  static constexpr int kCapacity = 28;

  PendingForecasts() = default;

  // A fresh record starting at `startMs` (the oldest is dropped when full).
  RecordedForecast* Add(uint64_t startMs, bool startCharging);
  void Clear();

  // Every record (inactive ones too) and the next place, for a restart.
  void Save(StateWriter* out) const;
  void Restore(StateReader* in);

  RecordedForecast& operator[](int i) { return records_[i]; }
  const RecordedForecast& operator[](int i) const { return records_[i]; }

 private:
  RecordedForecast records_[kCapacity];
  int next_ = 0;
};

}  // namespace adaptive
}  // namespace kez

#endif  // KEZ_ADAPTIVE_PENDINGFORECASTS_H_
