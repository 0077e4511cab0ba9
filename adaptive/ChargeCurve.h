// ChargeCurve: the user's own rise of the level per 10-minute step while
// charging, by level (ten bands of 10 %), as forgetting sums.
//
// Learned from two consecutive reports that are both charging and at most
// an hour apart: the rise between them counts for the band of the earlier
// level. A phone that holds at 80 % on the charger learns a rise near zero in
// the band from 80 % on, so its "plugged in now" curve levels off there.
// Bands never seen borrow the nearest band below that was seen, then the
// nearest above; with none at all the curve is unknown.
#ifndef KEZ_ADAPTIVE_CHARGECURVE_H_
#define KEZ_ADAPTIVE_CHARGECURVE_H_

#include "adaptive/StateBytes.h"

namespace kez {
namespace adaptive {

class ChargeCurve {
 public:
  static constexpr int kBands = 10;

  explicit ChargeCurve(double forget);

  // A rise of `rise` (fraction) over `steps` steps, starting at `level`.
  // Ignored unless every value is finite, steps is above 0 and at most 6.
  void Add(double level, double rise, double steps);

  // True once any band was learned.
  bool known() const;
  // Rise per step at `level`; 0.0 when nothing is known.
  double RiseAt(double level) const;

  // What was learned, for a restart (the forgetting factor is not saved).
  void Save(StateWriter* out) const;
  void Restore(StateReader* in);

 private:
  static int Band(double level);

  double forget_;
  double rise_[kBands];
  double steps_[kBands];
};

}  // namespace adaptive
}  // namespace kez

#endif  // KEZ_ADAPTIVE_CHARGECURVE_H_
