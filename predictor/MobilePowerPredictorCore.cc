#include "predictor/MobilePowerPredictorCore.h"

#include <climits>
#include <cmath>
#include <cstdint>

#include "predictor/WorkArray.h"
#include "search/VelqaSPFunction.h"
#include "search/VelqaSPOperator.h"

namespace vorn {

namespace {

// Kind codes of the operators the table features are built from.
constexpr int kDifferentialKind = 0x300;
constexpr int kPosiKind = 0x130;
constexpr int kNegaKind = 0x140;

// The phase constant is 6.2831852 as it stands, not the exact 2 pi: stored
// phases depend on it.
constexpr double kPhaseScale = 6.2831852;

// Marks a raw record as a gap (anything above 1e306 is invalid).
constexpr double kGapValue = 1e307;

// A step index: the time in steps truncated toward zero. Times outside the
// 32-bit range saturate and NaN gives 0, the same on every platform.
int32_t StepIndex(double steps) {
  if (steps != steps) return 0;
  if (steps >= 2147483647.0) return INT32_MAX;
  if (steps <= -2147483648.0) return INT32_MIN;
  return static_cast<int32_t>(steps);
}

// One operator of output dimension 1 reading element `input`.
VelqaSPOperator MakeOperator(int kind, int input) {
  VelqaSPOperator op;
  op.kind = kind;
  op.inputs.Add(input);
  op.SetOutputDim(1);
  return op;
}

// The table codes are compared after rotating right by four bits, so only
// 0x00, 0x10, 0x20 and 0x30 select a chain.
uint32_t RotateRight4(uint32_t v) { return (v >> 4) | (v << 28); }

}  // namespace

MobilePowerPredictorCore::MobilePowerPredictorCore() {}

MobilePowerPredictorCore::~MobilePowerPredictorCore() { Clear(); }

void MobilePowerPredictorCore::Clear() {
  sampleTime = 0.0;
  delete[] stepRecord;
  stepRecord = nullptr;
  sampleCount = 0;
}

int MobilePowerPredictorCore::Initialize(
    int memorySize, int neighbourMax, int lagCount, int lagStride,
    double stepDays, double timeOfDayWeight, double dayOfWeekWeight,
    int channelCount, int tableSize, const double* tableWeights,
    const unsigned* tableKinds, const unsigned* tableChannels) {
  Clear();
  // A second Initialize must not append a second set of features.
  VelqaSPBase::Clear();

  // Calendar features: plain selections of raw elements 0 .. 3.
  const double calendarWeights[4] = {timeOfDayWeight, timeOfDayWeight,
                                     dayOfWeekWeight, dayOfWeekWeight};
  for (int e = 0; e < 4; ++e) {
    VelqaSPOperator op = MakeOperator(kSelectKind, e);
    VelqaSPFunction function;
    function.AddOperator(op);
    function.weight = calendarWeights[e];
    function.discrete = 0;
    AddFeatureFunction(function);
  }

  // Table features.
  for (int t = 0; t < tableSize; ++t) {
    const double w = tableWeights[t];
    if (std::fabs(w) < 1e-5) continue;
    const unsigned kind = tableKinds != nullptr ? tableKinds[t] : kTableValue;
    const unsigned channel =
        tableChannels != nullptr ? tableChannels[t] : static_cast<unsigned>(t);
    const int e = 4 + static_cast<int>(channel);
    VelqaSPFunction function;
    function.weight = w;
    function.discrete = kind == kTableMismatch ? 1 : 0;
    switch (RotateRight4(kind)) {
      case 0x0:    // the channel's value
      case 0x3: {  // the same, compared by mismatch
        VelqaSPOperator select = MakeOperator(kSelectKind, e);
        function.AddOperator(select);
        break;
      }
      case 0x1:    // rise since the previous step, 0 when it fell
      case 0x2: {  // fall since the previous step, 0 when it rose
        VelqaSPOperator difference = MakeOperator(kDifferentialKind, e);
        VelqaSPOperator sign = MakeOperator(
            RotateRight4(kind) == 0x1 ? kPosiKind : kNegaKind, 0);
        function.AddOperator(difference);
        function.AddOperator(sign);
        break;
      }
      default:
        break;  // no operators: an invalid code
    }
    AddFeatureFunction(function);
  }

  SetSize(memorySize, channelCount + 4);

  ClearBuf();
  this->lagCount = lagCount;
  AllocBuf();
  ClearBuf();
  this->lagStride = lagStride;
  AllocBuf();
  if (this->neighbourMax != static_cast<uint32_t>(neighbourMax)) {
    ClearBuf();
    this->neighbourMax = static_cast<uint32_t>(neighbourMax);
    AllocBuf();
  }
  ClearBuf();
  lagDecay = 0.95;
  AllocBuf();

  const int rawLength = channelCount + 4;
  stepRecord = new double[rawLength]();
  this->stepDays = stepDays;
  this->channelCount = channelCount;
  return 1;
}

int MobilePowerPredictorCore::AddRawData(double time, const double* channels,
                                         double* stepValues) {
  if (stepRecord == nullptr) return 0;
  const int nc = channelCount;
  const int rawLength = nc + 4;
  const int32_t lastStep = StepIndex(sampleTime / stepDays);
  const int32_t nowStep = StepIndex(time / stepDays);
  int committed = 0;

  if (nowStep > lastStep) {
    // The phases are those of the last sample of the finished step.
    const double dayPhase = std::fmod(sampleTime, 1.0);
    const double weekPhase = std::fmod(sampleTime / 7.0, 1.0);
    stepRecord[0] = std::sin(dayPhase * kPhaseScale);
    stepRecord[1] = std::cos(dayPhase * kPhaseScale);
    stepRecord[2] = std::sin(weekPhase * kPhaseScale);
    stepRecord[3] = std::cos(weekPhase * kPhaseScale);
    if (sampleCount != 0) {
      const double n = static_cast<double>(sampleCount);
      for (int i = 4; i < rawLength; ++i) stepRecord[i] = stepRecord[i] / n;
    }
    AddMemory(stepRecord);
    if (stepValues != nullptr) {
      for (int i = 0; i < nc; ++i) stepValues[i] = stepRecord[4 + i];
    }
    sampleCount = 0;
    for (int i = 0; i < rawLength; ++i) stepRecord[i] = 0.0;
    committed = 1;

    // One gap record stands for the whole run of skipped steps.
    if (static_cast<int64_t>(lastStep) + 1 < nowStep && storedCount != 0) {
      for (int i = 0; i < rawLength; ++i) stepRecord[i] = kGapValue;
      AddMemory(stepRecord);
      sampleCount = 0;
      for (int i = 0; i < rawLength; ++i) stepRecord[i] = 0.0;
    }
  }

  for (int i = 0; i < nc; ++i) stepRecord[4 + i] += channels[i];
  sampleTime = time;
  sampleCount += 1;
  return committed;
}

double MobilePowerPredictorCore::NeighbourWeight(int index, int rank) const {
  return std::pow(indexWeightBase, -static_cast<double>(index)) *
         std::pow(rankWeightBase, static_cast<double>(rank));
}

bool MobilePowerPredictorCore::Predict(int count, double* mean, double* stdev,
                                       double* min, double* max) {
  const int nc = channelCount;
  const std::size_t cells =
      count > 0 && nc > 0
          ? SaturatingMul(static_cast<std::size_t>(count),
                          static_cast<std::size_t>(nc))
          : 0;
  for (std::size_t k = 0; k < cells; ++k) {
    mean[k] = 0.0;
    if (stdev != nullptr) stdev[k] = 0.0;
    if (min != nullptr) min[k] = 0.0;
    if (max != nullptr) max[k] = 0.0;
  }

  WorkArray<int> indices(neighbourMax);
  if (!indices.ok()) return false;
  int found = 0;
  Search(count, found, indices.get(), nullptr);
  if (found <= 0) return false;

  const bool range = min != nullptr && max != nullptr;
  double weightSum = 0.0;
  for (int j = 0; j < found; ++j) {
    const int index = indices[j];
    const double w = NeighbourWeight(index, j);
    weightSum += w;
    for (int s = 0; s < count; ++s) {
      const double* raw = GetRAWBuffer(index + 1 + s);
      double* row = mean + static_cast<std::size_t>(s) * nc;
      for (int c = 0; c < nc; ++c) {
        const double v = raw[4 + c];
        row[c] += w * v;
        if (range) {
          const std::size_t k = static_cast<std::size_t>(s) * nc + c;
          if (j == 0) {
            min[k] = v;
            max[k] = v;
          } else {
            if (v < min[k]) min[k] = v;
            if (v > max[k]) max[k] = v;
          }
        }
      }
    }
  }
  for (std::size_t k = 0; k < cells; ++k) mean[k] = mean[k] / weightSum;

  if (stdev != nullptr) {
    for (int j = 0; j < found; ++j) {
      const int index = indices[j];
      const double w = NeighbourWeight(index, j);
      for (int s = 0; s < count; ++s) {
        const double* raw = GetRAWBuffer(index + 1 + s);
        const std::size_t base = static_cast<std::size_t>(s) * nc;
        for (int c = 0; c < nc; ++c) {
          const double d = raw[4 + c] - mean[base + c];
          stdev[base + c] += w * (d * d);
        }
      }
    }
    for (std::size_t k = 0; k < cells; ++k) {
      const double v = stdev[k] / weightSum;
      stdev[k] = v > 0.0 ? std::sqrt(v) : v;
    }
  }
  return true;
}

}  // namespace vorn
