// AdaptiveForecaster: a forecast that learns, per user and per horizon, how
// far to trust each way of forecasting.
//
// It owns one instance (kez::KEZ with the built-in model) and feeds it every
// report exactly as kez_addStatusValue does. Beside it it keeps a week and a
// day of 10-minute steps of level and charging (StepHistory), the user's own
// charge curve (ChargeCurve), and, at every whole hour of reports, a record
// of what each method (ForecastMethod.h) forecast at the anchor horizons
// 1, 2, 4, 8, 12 and 24 h. Each recorded forecast is scored once a report
// at or after its horizon arrives (the level then, linear between the two
// reports around it), into forgetting error sums (ForecastScorebook) kept
// apart per situation: charging or not at the start, and the quarter of the
// day (Unix time) it starts in. A forecast of the same situation combines the methods step by step with weights from those scored
// errors (CombinationRule), shrunk towards prior errors tuned offline
// (PriorErrors), interpolated between the anchors; the chance of charging of
// the free forecast is combined the same way by Brier score. During the
// day for which a variant holds the charging state, its level never rises
// ("not charged") or never falls ("plugged in now") from step to step.
//
// No leak from the future: everything a forecast uses was reported before
// it, and scoring uses only outcomes already reported. Deterministic: the
// same reports give bit-identical forecasts, whatever was asked in between
// and whenever (no clock is read). Reports allocate nothing of their own;
// at each recording the instance forecasts, and its forecast allocates and
// frees its working arrays inside the call. Forecasts longer than 288 steps
// allocate a scratch array for the call.
//
// Bad input: a report with a value that is not finite is refused (0) and
// reaches neither the instance nor anything learned. A report earlier than
// the last one by up to an hour is refused as late; one earlier by more is
// taken as the clock jumping back: the history, the pending records and the
// charge curve's last report are forgotten (the scored errors are kept) and
// the report is taken. Gaps of any length leave their steps empty; records
// whose horizon falls in a gap of more than an hour are given up unscored.
// Nothing prints; construction throws std::bad_alloc when memory is short,
// nothing else throws.
//
// Restart: SaveState writes what the forecaster learned that a replay of
// its recent reports cannot rebuild (the instance's running rates, the
// scored errors, the charge curve, the pending records, the counters), and
// RestoreState puts it back. A forecaster that takes the reports from
// OldestNeeded() on, has that state restored after the last of them, and
// then takes the later reports forecasts bit-identically to one that took
// every report (the journal's rewrite relies on it).
//
// Not thread-safe: one forecaster, one thread at a time.
#ifndef KEZ_ADAPTIVE_ADAPTIVEFORECASTER_H_
#define KEZ_ADAPTIVE_ADAPTIVEFORECASTER_H_

#include <cstddef>
#include <cstdint>

#include "adaptive/ChargeCurve.h"
#include "adaptive/CombinationRule.h"
#include "adaptive/ForecastMethod.h"
#include "adaptive/ForecastScorebook.h"
#include "adaptive/MemoryReach.h"
#include "adaptive/MethodPaths.h"
#include "adaptive/PendingForecasts.h"
#include "adaptive/StepHistory.h"
#include "interface/KEZ.h"
#include "kez/kez.h"
#include "predictor/MobilePowerPredictionData.h"

namespace kez {
namespace adaptive {

// One status sample as the host reports it (the nine values of
// kez_addStatusValue).
struct HostReport {
  uint64_t timeMs = 0;
  float levelPercent = 0.0f;
  float charging = 0.0f;
  float aux1 = 0.0f;
  float aux2 = 0.0f;
  float aux3 = 0.0f;
  double countA = 0.0;
  double countB1 = 0.0;
  double countB2 = 0.0;
};

// The settings were chosen with an offline harness on the eight simulated
// users of PriorErrors.cc (never on the logs the evaluation reports):
// inverse-error weights with power 8 for the level (2, 4, 6, 10, 12 and 20
// did worse; a minimum-variance combination from the errors' covariances did
// worse too) and 4 for the chance of charging, prior worth 24 scored
// forecasts (6 to 100 differ little), forgetting 0.994 per scored forecast
// (about a week of hourly records), four parts of the day (one or two did
// clearly worse, six or eight hardly better).
struct AdaptiveSettings {
  CombinationSettings level;     // weights of the level methods
  CombinationSettings charging = {4.0, 24.0};  // weights of the charging methods
  double forget = 0.994;         // per scored forecast of a cell
  double curveForget = 0.995;    // per charging report of a band
  int dayParts = 4;              // 1 .. kDayParts
};

class AdaptiveForecaster {
 public:
  static constexpr int kScratchSteps = 288;

  AdaptiveForecaster();
  explicit AdaptiveForecaster(const AdaptiveSettings& settings);
  AdaptiveForecaster(const AdaptiveForecaster&) = delete;
  AdaptiveForecaster& operator=(const AdaptiveForecaster&) = delete;

  // Takes one report. Returns 1 when taken, 0 when refused (see above).
  int Report(const HostReport& report);

  // The adaptive forecast of `variant` (kFree, kNotCharged, kPluggedIn):
  // `count` steps into `out`, step k (k + 1) x 10 minutes after the last
  // report; element 0's distance is the instance's. Before any report it is
  // the instance's forecast. Returns 1 when done, 0 when nothing could be
  // done (an unknown variant, a null `out` with count >= 1, no memory for
  // the forecast; `out` may then hold the instance's forecast). A count
  // below 1 writes nothing.
  int Predict(int variant, int count, stMobilePowerPredictionData* out);

  // The instance's own forecast of `variant`, as kez_predict and its two
  // variants give it.
  int PredictRaw(int variant, int count, stMobilePowerPredictionData* out);

  // The weights (summing to 1, 0 for methods not used) with which the level
  // of step k of `variant` would be combined now, indexed by Method.
  void LevelWeights(int variant, int k, double* weights) const;
  // The same for the chance of charging of the free forecast.
  void ChargingWeights(int k, double* weights) const;
  // The weights of steps 0 .. count - 1 at once, step-major (kMethodCount
  // a step): `what` 0 the level of `variant`, 1 the chance of charging of
  // the free forecast. Each step's weights equal LevelWeights' /
  // ChargingWeights'. False (nothing written) for an unknown variant or
  // `what`.
  bool WeightPath(int variant, int what, int count, double* weights) const;

  // How many forecasts have been scored at the first anchor, per variant
  // (the cold start ends as they grow).
  long Scored(int variant) const { return scored_[variant]; }

  // The saved state: a version byte, then the values in a fixed order
  // (StateBytes.h). SaveState returns the size written into `out`, or 0
  // when `capacity` is short of StateSize(). RestoreState takes a blob of
  // this version and size (as it is: the journal checks its bytes) and
  // returns true; a blob of another version or size, or none, changes
  // nothing and returns false.
  static constexpr uint8_t kStateVersion = 1;
  std::size_t StateSize() const;
  std::size_t SaveState(unsigned char* out, std::size_t capacity) const;
  bool RestoreState(const unsigned char* data, std::size_t size);

  // The time of the oldest report a replay needs to rebuild what SaveState
  // leaves out (the instance's memory of 4320 steps and the step history):
  // 0 (everything) until that is known.
  uint64_t OldestNeeded() const;

  KEZ& instance() { return instance_; }
  const ForecastScorebook& scorebook() const { return scorebook_; }

 private:
  void Reset();
  void WriteState(StateWriter* out) const;
  void Score(const HostReport& now, double level, bool charging);
  void Record();
  void RecordVariant(RecordedForecast* record, int variant);
  PresentState Present() const;
  int Situation(uint64_t timeMs, bool charging) const;
  // The charging state whose record weighs a forecast of `variant` now:
  // "not charged" is judged only from moments without charging and
  // "plugged in now" only from moments on the charger, whatever the phone
  // does now; the free forecast from the present state.
  bool StartCharging(int variant) const;
  void AnchorWeights(int variant, int start, MethodMask available,
                     double (*weights)[kMethodCount]) const;
  void AnchorChargingWeights(int start, MethodMask available,
                             double (*weights)[kMethodCount]) const;

  AdaptiveSettings settings_;
  KEZ instance_;
  StepHistory history_;
  ChargeCurve curve_;
  ForecastScorebook scorebook_;
  PendingForecasts pending_;
  MemoryReach reach_;

  bool hasLast_ = false;
  uint64_t lastMs_ = 0;
  double lastLevel_ = 0.0;  // fraction
  bool lastCharging_ = false;
  uint64_t lastRecordHour_ = 0;
  bool hasRecord_ = false;
  long scored_[kVariantCount] = {0, 0, 0};

  // Scratch of recordings and forecasts.
  stMobilePowerPredictionData recordPath_[kLongestAnchorSteps];
  vorn::MobilePowerPredictionData rates_[kScratchSteps];
};

}  // namespace adaptive
}  // namespace kez

#endif  // KEZ_ADAPTIVE_ADAPTIVEFORECASTER_H_
