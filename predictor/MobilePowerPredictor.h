// MobilePowerPredictor: the battery forecaster.
//
// A MobilePowerPredictorCore configured from a MobilePowerPredictorParameter,
// plus running charge and discharge rates. Each sample (AddRawData) updates
// the rates when it follows the previous sample by less than a day and is
// handed to the core, which resamples the stream onto 10-minute steps.
//
// Predict forecasts `count` steps of level and charging state: from the
// steps that followed the most similar past moments when the memory has any,
// else by extrapolating the running rates from the last sample. A forecast
// changes nothing the predictor has learned.
//
// Thresholds, kept asymmetric on purpose: with similar past moments a
// charging share of 0.5 or more counts as charging; in the extrapolation only
// a state above 0.5 does.
//
// Use: construct, Initialize(parameter) (the constructor taking a parameter
// record does both), then samples in time order and forecasts at any time.
// Not thread-safe; one owner thread.
#ifndef KEZ_PREDICTOR_MOBILEPOWERPREDICTOR_H_
#define KEZ_PREDICTOR_MOBILEPOWERPREDICTOR_H_

#include "kez/export.h"
#include "predictor/MobilePowerInputData.h"
#include "predictor/MobilePowerPredictionData.h"
#include "predictor/MobilePowerPredictorCore.h"
#include "predictor/MobilePowerPredictorParameter.h"

namespace vorn {

class KEZ_EXPORT MobilePowerPredictor : public MobilePowerPredictorCore {
 public:
  // Memory of the system's model: 30 days of 10-minute steps.
  static constexpr int kMemorySteps = 4320;
  // One step in days: 10 minutes.
  static constexpr double kStepDays = 0.006944444444444444;

  double chargeRise;       // decayed sum of level rises while charging
  double chargeSteps;      // decayed sum of their durations, in steps
  double dischargeChange;  // decayed sum of level changes while not charging
  double dischargeSteps;   // decayed sum of their durations, in steps
  double lastTime;         // time of the last sample, in days
  MobilePowerInputData lastInput;  // the last sample

  // Unconfigured: the starting rates, lastTime -1.0; call Initialize next.
  MobilePowerPredictor();
  // Constructed as above, then Initialize(parameter).
  explicit MobilePowerPredictor(const MobilePowerPredictorParameter& parameter);
  ~MobilePowerPredictor() override;

  // Configures the core from `parameter` (4320 steps of 1/144 day, 8
  // channels, the weight table) and resets the running state: rates +0.05
  // per step while charging and -0.000983 per step while not, lastTime 0.0,
  // lastInput zero. May be called again; that empties the memory. Returns
  // what MobilePowerPredictorCore::Initialize returns.
  int Initialize(const MobilePowerPredictorParameter& parameter);

  // Takes one sample at `time` (days); the running rates decay by `forget`
  // at each sample that follows the previous one by less than a day. Charging
  // at full level is left out of the charge rate on purpose (the level cannot
  // rise there), and a charging state of exactly 0.5 updates neither rate.
  // Returns what the core's AddRawData returns (1 when a step was committed).
  int AddRawData(double time, const MobilePowerInputData* input, double forget);

  // Forecasts `count` steps into `out`, which must have room for `count`
  // elements and for one even when count < 1 (element 0's distance is always
  // written). chargingMode < 0: the charging state is forecast freely;
  // 0 or 1: it is forced to that value for the steps below `holdSteps`.
  // Returns true, or false (and leaves `out` untouched) when the working
  // storage of the forecast cannot be had.
  bool Predict(int count, MobilePowerPredictionData* out, int chargingMode,
               int holdSteps);

  // The core's own forecast of every channel stays reachable.
  using MobilePowerPredictorCore::Predict;

  // Running rates per step; 0.0 where the step sum is not positive.
  double ChargeRate() const;
  double DischargeRate() const;

  // The forecast Predict falls back on when no similar past moment is found:
  // the running rates applied from the last sample's level, each step
  // clamped to 0 .. 1. chargingMode < 0: the rate is chosen once from the
  // last charging state (above 0.5 charges); 0 or 1: per step from the state
  // forced for the steps below holdSteps. Writes level and charging of all
  // `count` elements, and distance of none. Offline tools use it as the
  // running-rate baseline, so that it is always the forecaster's own.
  void Extrapolate(int count, MobilePowerPredictionData* out,
                   int chargingMode, int holdSteps) const;

 private:
  void ResetRunningState(double time);
};

}  // namespace vorn

#endif  // KEZ_PREDICTOR_MOBILEPOWERPREDICTOR_H_
