// StepHistory: the level and charging state of the last week and a day, one
// entry per 10-minute step of Unix time (step n covers [n, n + 1) x 10 min).
//
// Each entry holds the state of the last report inside its step. Steps
// without a report are empty. Fixed size (1152 entries, about 6 KB), filled
// in place: Add never allocates. Steps older than the newest one are not
// changed any more (a late report is ignored), and Clear forgets everything
// (after a clock jump backwards).
#ifndef KEZ_ADAPTIVE_STEPHISTORY_H_
#define KEZ_ADAPTIVE_STEPHISTORY_H_

#include <cstdint>

namespace kez {
namespace adaptive {

constexpr int64_t kStepMs = 600000;       // one step: 10 minutes
constexpr int kStepsPerDay = 144;
constexpr int kStepsPerWeek = 7 * kStepsPerDay;

// The step of a Unix time in milliseconds.
inline int64_t StepOf(uint64_t timeMs) {
  return static_cast<int64_t>(timeMs / static_cast<uint64_t>(kStepMs));
}

class StepHistory {
 public:
  static constexpr int kSteps = kStepsPerWeek + kStepsPerDay;  // 1152

  StepHistory();

  // Records the state of a report in `step`: `level` as a fraction (kept
  // within 0 .. 1), `charging` true or false. Ignored when `step` lies before
  // the newest step recorded.
  void Add(int64_t step, double level, bool charging);

  void Clear();

  bool empty() const { return newest_ < 0; }
  int64_t newest() const { return newest_; }

  // The state of `step`; false when the step is empty or not held.
  bool Level(int64_t step, double* level) const;
  bool Charging(int64_t step, bool* charging) const;

  // How many of the steps first .. last (inclusive) hold a report.
  int CountHeld(int64_t first, int64_t last) const;

 private:
  bool Holds(int64_t step) const;
  int Slot(int64_t step) const {
    return static_cast<int>(step % kSteps);
  }

  int64_t newest_;           // newest step recorded; -1 when empty
  float level_[kSteps];      // fraction; NaN: no report in the step
  uint8_t charging_[kSteps];
};

}  // namespace adaptive
}  // namespace kez

#endif  // KEZ_ADAPTIVE_STEPHISTORY_H_
