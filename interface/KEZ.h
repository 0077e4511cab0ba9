// kez::KEZ: one forecaster instance behind the exported C functions.
//
// The instance owns its implementation KEZ::kezImpl, which owns one
// vorn::MobilePowerPredictor built with the default model and holds the
// default vorn::MobilePowerPredictorParameter by value (never loaded from a
// file). Samples go in as the host's values (level in percent, time already
// converted to days) or as one line of the host's status log; forecasts come
// out as stMobilePowerPredictionData records.
//
// The KEZ methods hold the null checks (a null implementation: 0 from the
// sample methods, -1 from predict); the kezImpl twins work without them and
// are kept for direct use. Not thread-safe: one instance, one thread at a
// time. Construction throws std::bad_alloc when memory is short; nothing else
// throws.
#ifndef KEZ_INTERFACE_KEZ_H_
#define KEZ_INTERFACE_KEZ_H_

#include <string>

#include "kez/kez.h"
#include "predictor/MobilePowerPredictor.h"
#include "predictor/MobilePowerPredictorParameter.h"

namespace kez {

class KEZ {
 public:
  class kezImpl;

  kezImpl* impl;  // owned

  // Builds the implementation: default parameters, a new predictor, then
  // Initialize with those parameters.
  KEZ();
  KEZ(const KEZ&) = delete;
  KEZ& operator=(const KEZ&) = delete;
  ~KEZ();

  // One sample: `days` is the time in days, `levelPercent` 0 .. 100 (scaled
  // by 0.01 in single precision), `charging` 1.0 or 0.0. countA becomes
  // log10(countA), countB1 + countB2 becomes log100 of the sum, each 0.0 when
  // the value is 1.0 or less. Returns 1, or 0 without an implementation.
  int addStatusValue(double days, float levelPercent, float charging,
                     float aux1, float aux2, float aux3, double countA,
                     double countB1, double countB2);

  // One line of the host's status log (see StatusLine.h). Returns 1, or 0
  // without an implementation.
  int addStatusValues(std::string& line);

  // Forecasts `count` steps into `out` (nothing is written there when
  // count < 1). chargingMode -1 with holdSteps 0 is the free forecast; 0 or 1
  // forces the charging state for the first holdSteps steps. Returns 1 when
  // done, 0 when the working storage could not be had or `out` is null while
  // count >= 1 (then `out` is untouched), -1 without an implementation.
  int predict(int count, stMobilePowerPredictionData* out, int chargingMode,
              int holdSteps);
};

class KEZ::kezImpl {
 public:
  vorn::MobilePowerPredictor* predictor;     // owned
  vorn::MobilePowerPredictorParameter parameter;  // the default model

  kezImpl();
  kezImpl(const kezImpl&) = delete;
  kezImpl& operator=(const kezImpl&) = delete;
  virtual ~kezImpl();

  // Parses one status log line and feeds its sample. Returns 1 always.
  int addStatusValues(std::string& line);

  // Like KEZ::addStatusValue, except that `level` is taken as a fraction
  // already and passed on unchanged. Returns 1.
  int addStatusValueBySpecifiedData(double days, float level, float charging,
                                    float aux1, float aux2, float aux3,
                                    double countA, double countB1,
                                    double countB2);

  // KEZ::predict without the check for a null implementation.
  int predict(int count, stMobilePowerPredictionData* out, int chargingMode,
              int holdSteps);
};

}  // namespace kez

#endif  // KEZ_INTERFACE_KEZ_H_
