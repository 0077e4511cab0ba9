// MobilePowerInputData: one status sample as the power predictor takes it.
//
// Seven doubles and one 32-bit integer. `level` is the battery level as a
// fraction (1.0 = full); `charging` above 0.5 means charging and below 0.5
// not charging (exactly 0.5 is neither, see MobilePowerPredictor::AddRawData);
// the auxiliary values and the two logarithmic counts are passed through as
// status channels. The instance fills every field of every sample; the
// default constructor gives the two counts 0.5 and `extra` 0, and zeroes the
// other fields so that a default record never holds garbage.
#ifndef KEZ_PREDICTOR_MOBILEPOWERINPUTDATA_H_
#define KEZ_PREDICTOR_MOBILEPOWERINPUTDATA_H_

#include <cstdint>

#include "kez/export.h"

namespace vorn {

class KEZ_EXPORT MobilePowerInputData {
 public:
  double level = 0.0;      // battery level as a fraction
  double charging = 0.0;   // > 0.5 charging, < 0.5 not charging
  double aux1 = 0.0;       // auxiliary status value, passed through
  double aux2 = 0.0;       // auxiliary status value, passed through
  double aux3 = 0.0;       // auxiliary status value, passed through
  double logCountA = 0.5;  // logarithmic count
  double logCountB = 0.5;  // logarithmic count
  int32_t extra = 0;       // integer channel (the instance always sends 0)

  // The number of status channels a record yields.
  static constexpr int kChannelCount = 8;

  // Writes the eight status channels of this record into `channels`: the
  // seven doubles in field order, then `extra` converted to double.
  void ToChannels(double* channels) const {
    channels[0] = level;
    channels[1] = charging;
    channels[2] = aux1;
    channels[3] = aux2;
    channels[4] = aux3;
    channels[5] = logCountA;
    channels[6] = logCountB;
    channels[7] = static_cast<double>(extra);
  }
};

}  // namespace vorn

#endif  // KEZ_PREDICTOR_MOBILEPOWERINPUTDATA_H_
