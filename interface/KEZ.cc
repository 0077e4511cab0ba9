#include "interface/KEZ.h"

#include <cmath>

#include "interface/StatusLine.h"
#include "predictor/MobilePowerInputData.h"
#include "predictor/MobilePowerPredictionData.h"
#include "predictor/WorkArray.h"

namespace kez {

namespace {

// Forgetting factor of the running charge and discharge rates per sample.
constexpr double kForget = 0.99;

// log10 of a count, 0.0 for counts of 1.0 or less.
double LogCountA(double count) {
  return count > 1.0 ? std::log(count) / 2.302585092994046 : 0.0;
}

// log base 100 of a pair of counts, 0.0 when their sum is 1.0 or less.
double LogCountB(double count1, double count2) {
  const double sum = count1 + count2;
  return sum > 1.0 ? std::log(sum) / 4.605170185988092 : 0.0;
}

}  // namespace

KEZ::KEZ() : impl(new kezImpl()) {}

KEZ::~KEZ() {
  if (impl != nullptr) delete impl;
}

int KEZ::addStatusValue(double days, float levelPercent, float charging,
                        float aux1, float aux2, float aux3, double countA,
                        double countB1, double countB2) {
  if (impl == nullptr) return 0;
  // The percent scale is applied in single precision (100 x 0.01f is exactly
  // 1.0f), then widened.
  const float level = levelPercent * 0.01f;
  impl->addStatusValueBySpecifiedData(days, level, charging, aux1, aux2, aux3,
                                      countA, countB1, countB2);
  return 1;
}

int KEZ::addStatusValues(std::string& line) {
  if (impl == nullptr) return 0;
  impl->addStatusValues(line);
  return 1;
}

int KEZ::predict(int count, stMobilePowerPredictionData* out, int chargingMode,
                 int holdSteps) {
  if (impl == nullptr) return -1;
  return impl->predict(count, out, chargingMode, holdSteps);
}

KEZ::kezImpl::kezImpl() : predictor(nullptr), parameter() {
  predictor = new vorn::MobilePowerPredictor();
  try {
    predictor->Initialize(parameter);
  } catch (...) {
    delete predictor;
    predictor = nullptr;
    throw;
  }
}

KEZ::kezImpl::~kezImpl() {
  if (predictor != nullptr) delete predictor;
}

int KEZ::kezImpl::addStatusValues(std::string& line) {
  const StatusLine sample = StatusLine::Parse(line.c_str());
  addStatusValueBySpecifiedData(sample.days, sample.level, sample.charging,
                                sample.aux1, sample.aux2, sample.aux3,
                                sample.countA, sample.countB1, sample.countB2);
  return 1;
}

int KEZ::kezImpl::addStatusValueBySpecifiedData(double days, float level,
                                                float charging, float aux1,
                                                float aux2, float aux3,
                                                double countA, double countB1,
                                                double countB2) {
  vorn::MobilePowerInputData input;
  input.level = level;
  input.charging = charging;
  input.aux1 = aux1;
  input.aux2 = aux2;
  input.aux3 = aux3;
  input.logCountA = LogCountA(countA);
  input.logCountB = LogCountB(countB1, countB2);
  input.extra = 0;
  predictor->AddRawData(days, &input, kForget);
  return 1;
}

int KEZ::kezImpl::predict(int count, stMobilePowerPredictionData* out,
                          int chargingMode, int holdSteps) {
  if (out == nullptr && count >= 1) return 0;
  // Element 0's distance is always written, so the forecast gets room for
  // one element even when count < 1.
  const std::size_t elements = count > 1 ? static_cast<std::size_t>(count) : 1;
  vorn::WorkArray<vorn::MobilePowerPredictionData> forecast(elements);
  if (!forecast.ok()) return 0;
  if (!predictor->Predict(count, forecast.get(), chargingMode, holdSteps)) {
    return 0;
  }
  for (int s = 0; s < count; ++s) {
    out[s].level = forecast[s].level;
    out[s].charging = forecast[s].charging;
    out[s].distance = forecast[s].distance;
  }
  return 1;
}

}  // namespace kez
