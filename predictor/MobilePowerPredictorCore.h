// MobilePowerPredictorCore: the battery model on top of the memory base.
//
// Decides what one memory step holds and how steps are compared:
//  - a raw record of R = channelCount + 4 doubles: sine and cosine of the day
//    phase, sine and cosine of the week phase, then each status channel
//    averaged over the step;
//  - the feature functions: four calendar features (day phase weighted by
//    timeOfDayWeight, week phase by dayOfWeekWeight) and one table feature
//    per table entry whose weight is at least 1e-5 in magnitude;
//  - the ring length, the neighbour count, the compared window and a fixed
//    per-lag decay of 0.95.
//
// Samples arrive at any time through AddRawData (time in days). All samples
// that fall into one step of `stepDays` are averaged; the first sample of a
// later step commits the open step to the ring, and one gap record (every
// element 1e307) stands for any run of skipped steps. Predict is the core's
// own forecast of every channel, for offline use.
//
// Call Initialize once before any sample. Not thread-safe; one owner thread.
#ifndef KEZ_PREDICTOR_MOBILEPOWERPREDICTORCORE_H_
#define KEZ_PREDICTOR_MOBILEPOWERPREDICTORCORE_H_

#include <cstdint>

#include "kez/export.h"
#include "search/VelqaSPBase.h"

namespace vorn {

class KEZ_EXPORT MobilePowerPredictorCore : public VelqaSPBase {
 public:
  // Kind codes of the table entries (tableKinds).
  static constexpr unsigned kTableValue = 0x00;     // the channel itself
  static constexpr unsigned kTableRise = 0x10;      // rise since the last step
  static constexpr unsigned kTableFall = 0x20;      // fall since the last step
  static constexpr unsigned kTableMismatch = 0x30;  // the channel, compared
                                                    // by mismatch

  int32_t channelCount = 0;      // Nc: status channels in a raw record
  double stepDays = 1.0;         // length of one memory step, in days
  double indexWeightBase = 1.0;  // neighbour weight by age (1.0: none)
  double rankWeightBase = 1.0;   // neighbour weight by rank (1.0: none)
  double sampleTime = 0.0;       // time of the last sample, in days
  double* stepRecord = nullptr;  // owned, R doubles: the open step
  uint32_t sampleCount = 0;      // samples accumulated in stepRecord

  MobilePowerPredictorCore();
  MobilePowerPredictorCore(const MobilePowerPredictorCore&) = delete;
  MobilePowerPredictorCore& operator=(const MobilePowerPredictorCore&) = delete;
  ~MobilePowerPredictorCore() override;

  // Forgets the step being assembled (sampleTime 0, stepRecord released,
  // sampleCount 0). The memory base is not touched.
  void Clear();

  // Builds the model: calendar and table features, the ring of `memorySize`
  // steps, the search settings. Table entry t adds a feature of weight
  // tableWeights[t] on channel tableChannels[t] (t when null) of kind
  // tableKinds[t] (kTableValue when null); an entry whose weight is below
  // 1e-5 in magnitude is skipped and the later features move down. Only the
  // four kind codes above are valid: any other code adds a feature without
  // operators, which the memory base cannot evaluate. A second call starts
  // over from an empty, unconfigured memory. Returns 1.
  int Initialize(int memorySize, int neighbourMax, int lagCount, int lagStride,
                 double stepDays, double timeOfDayWeight,
                 double dayOfWeekWeight, int channelCount, int tableSize,
                 const double* tableWeights, const unsigned* tableKinds,
                 const unsigned* tableChannels);

  // Takes one sample of `channelCount` values at `time` (days). Returns 1
  // when the sample opened a later step and the open step was committed
  // (then `stepValues`, when not null, receives its channelCount averaged
  // channel values), else 0. A step is never committed on a timer: it stays
  // open until a sample of a later step arrives. Returns 0 and does nothing
  // before Initialize.
  int AddRawData(double time, const double* channels, double* stepValues);

  // Forecast of every channel for `count` steps, from the raw records that
  // followed the neighbours. Each array holds count x channelCount doubles,
  // step-major. `mean` is required, and `stdev` whenever neighbours can be
  // found; `min` and `max` are filled only when both are given. Returns
  // false, with the arrays zeroed, when no neighbour was found (or the
  // scratch storage could not be had).
  bool Predict(int count, double* mean, double* stdev, double* min,
               double* max);

 protected:
  // Weight of the neighbour of rank `rank` at relative index `index`.
  double NeighbourWeight(int index, int rank) const;
};

}  // namespace vorn

#endif  // KEZ_PREDICTOR_MOBILEPOWERPREDICTORCORE_H_
