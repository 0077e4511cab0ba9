#include "predictor/MobilePowerPredictor.h"

#include <cmath>

#include "predictor/WorkArray.h"

namespace vorn {

namespace {

// Columns of a forecast row: the ten table features (features 4 .. 13) of
// the steps that followed each neighbour. The forecast reads three of them.
constexpr int kColumns = 10;
constexpr int kFirstTableFeature = 4;
constexpr int kRiseColumn = 1;      // rise of the level since the last step
constexpr int kFallColumn = 2;      // fall of the level (zero or negative)
constexpr int kChargingColumn = 3;  // charging state

double Clamp01(double v) {
  if (v < 0.0) return 0.0;
  if (v > 1.0) return 1.0;
  return v;
}

}  // namespace

MobilePowerPredictor::MobilePowerPredictor() { ResetRunningState(-1.0); }

MobilePowerPredictor::MobilePowerPredictor(
    const MobilePowerPredictorParameter& parameter) {
  ResetRunningState(-1.0);
  Initialize(parameter);
}

MobilePowerPredictor::~MobilePowerPredictor() { Clear(); }

void MobilePowerPredictor::ResetRunningState(double time) {
  chargeRise = 0.05;
  chargeSteps = 1.0;
  dischargeChange = -0.000983;
  dischargeSteps = 1.0;
  lastTime = time;
  lastInput.level = 0.0;
  lastInput.charging = 0.0;
  lastInput.aux1 = 0.0;
  lastInput.aux2 = 0.0;
  lastInput.aux3 = 0.0;
  lastInput.logCountA = 0.0;
  lastInput.logCountB = 0.0;
  lastInput.extra = 0;
}

int MobilePowerPredictor::Initialize(
    const MobilePowerPredictorParameter& parameter) {
  const double* w = parameter.weight;
  // weight[6] weighs two channels and weight[0], weight[1] are the calendar
  // weights, not table entries: this mapping is the model's, keep it.
  const double tableWeights[kColumns] = {w[2], w[3], w[4], w[5], w[6],
                                         w[6], w[7], w[8], w[9], w[10]};
  const unsigned tableKinds[kColumns] = {
      kTableValue, kTableRise,  kTableFall,  kTableValue, kTableValue,
      kTableValue, kTableValue, kTableValue, kTableValue, kTableMismatch};
  const unsigned tableChannels[kColumns] = {0, 0, 0, 1, 2, 3, 4, 5, 6, 0};
  const int result = MobilePowerPredictorCore::Initialize(
      kMemorySteps, parameter.setting1, parameter.setting2, parameter.setting3,
      kStepDays, w[0], w[1], MobilePowerInputData::kChannelCount, kColumns,
      tableWeights, tableKinds, tableChannels);
  // Initialize alone decides the start state: lastTime becomes 0.0 here even
  // though construction set -1.0.
  ResetRunningState(0.0);
  return result;
}

int MobilePowerPredictor::AddRawData(double time,
                                     const MobilePowerInputData* input,
                                     double forget) {
  if (lastTime < time && lastTime > time - 1.0) {
    const double dt = (time - lastTime) / stepDays;
    const double change = input->level - lastInput.level;
    if (input->charging > 0.5 && input->level < 1.0 && lastInput.level < 1.0) {
      chargeRise = chargeRise * forget + change;
      chargeSteps = chargeSteps * forget + dt;
    }
    if (input->charging < 0.5) {
      dischargeChange = dischargeChange * forget + change;
      dischargeSteps = dischargeSteps * forget + dt;
    }
  }
  lastTime = time;
  lastInput = *input;
  double channels[MobilePowerInputData::kChannelCount];
  input->ToChannels(channels);
  return MobilePowerPredictorCore::AddRawData(time, channels, nullptr);
}

double MobilePowerPredictor::ChargeRate() const {
  return chargeSteps > 0.0 ? chargeRise / chargeSteps : 0.0;
}

double MobilePowerPredictor::DischargeRate() const {
  return dischargeSteps > 0.0 ? dischargeChange / dischargeSteps : 0.0;
}

void MobilePowerPredictor::Extrapolate(int count,
                                       MobilePowerPredictionData* out,
                                       int chargingMode, int holdSteps) const {
  const double charging0 = lastInput.charging;
  const double chargeRate = ChargeRate();
  const double dischargeRate = DischargeRate();
  double level = lastInput.level;
  if (chargingMode < 0) {
    // The rate is chosen once, from the last sample's state.
    const double rate = charging0 > 0.5 ? chargeRate : dischargeRate;
    for (int s = 0; s < count; ++s) {
      out[s].charging = charging0;
      level = Clamp01(level + rate);
      out[s].level = level;
    }
    return;
  }
  for (int s = 0; s < count; ++s) {
    const double charging =
        s < holdSteps ? static_cast<double>(chargingMode) : charging0;
    out[s].charging = charging;
    level = Clamp01(level + (charging > 0.5 ? chargeRate : dischargeRate));
    out[s].level = level;
  }
}

bool MobilePowerPredictor::Predict(int count, MobilePowerPredictionData* out,
                                   int chargingMode, int holdSteps) {
  // All working storage first, so that a failure leaves `out` untouched.
  const std::size_t steps = count > 0 ? static_cast<std::size_t>(count) : 0;
  WorkArray<int> indices(neighbourMax);
  WorkArray<double> distances(neighbourMax);
  WorkArray<double> sums(SaturatingMul(steps, kColumns));
  if (!indices.ok() || !distances.ok() || !sums.ok()) return false;

  for (int s = 0; s < count; ++s) out[s] = MobilePowerPredictionData();

  int found = 0;
  Search(count, found, indices.get(), distances.get());
  double distanceSum = 100.0;
  for (int j = 0; j < found; ++j) distanceSum += distances[j];
  out[0].distance = distanceSum / static_cast<double>(found + 1);

  if (found <= 0) {
    Extrapolate(count, out, chargingMode, holdSteps);
    return true;
  }

  // Weighted sums of the table features of the steps that followed each
  // neighbour. A model with fewer than 14 features leaves the missing
  // columns at zero instead of reading past the row.
  int columns = static_cast<int>(featureFunctions.count) - kFirstTableFeature;
  if (columns < 0) columns = 0;
  if (columns > kColumns) columns = kColumns;
  for (std::size_t k = 0; k < steps * kColumns; ++k) sums[k] = 0.0;
  double weightSum = 0.0;
  for (int j = 0; j < found; ++j) {
    const int index = indices[j];
    const double w = NeighbourWeight(index, j);
    weightSum += w;
    for (int s = 0; s < count; ++s) {
      const double* row = GetFeatureBuffer(index + 1 + s);
      double* sum = &sums[static_cast<std::size_t>(s) * kColumns];
      for (int k = 0; k < columns; ++k) {
        sum[k] += w * row[kFirstTableFeature + k];
      }
    }
  }

  const double chargeRate = ChargeRate();
  const double dischargeRate = DischargeRate();
  const double inverseWeight = 1.0 / weightSum;
  double level = lastInput.level;
  double carry = 0.0;  // fastest rise per step of this charging run
  for (int s = 0; s < count; ++s) {
    double* sum = &sums[static_cast<std::size_t>(s) * kColumns];
    for (int k = 0; k < kColumns; ++k) sum[k] = sum[k] * inverseWeight;
    const double rise = sum[kRiseColumn];
    const double fall = sum[kFallColumn];
    const double p = chargingMode >= 0 && s < holdSteps
                         ? static_cast<double>(chargingMode)
                         : sum[kChargingColumn];
    out[s].charging = p;
    double next = level;
    if (p >= 0.5) {
      const double r = rise * (1 / p);
      double rate = r < carry ? carry : r;
      if (r <= 0.0 && chargeSteps > 0.0) rate = chargeRate;
      next = level + rate;
      carry = rate;
    } else {
      double r = (1 / (1 - p)) * fall;
      if (r >= 0.0 && dischargeSteps > 0.0) r = dischargeRate;
      if (-1.0 <= r && r < 0.0) next = level + r;
      carry = 0.0;
    }
    level = Clamp01(next);
    out[s].level = level;
  }
  return true;
}

}  // namespace vorn
