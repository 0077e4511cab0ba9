// kez_forecast_find: the first forecast step that meets a threshold query.
#include "kez/kez.h"

extern "C" int kez_forecast_find(const stMobilePowerPredictionData* records,
                                 int count, int query, double threshold) {
  if (records == nullptr) return -1;
  for (int k = 0; k < count; ++k) {
    const stMobilePowerPredictionData& r = records[k];
    bool met = false;
    switch (query) {
      case KEZ_QUERY_LEVEL_AT_OR_BELOW:
        met = r.level <= threshold;
        break;
      case KEZ_QUERY_LEVEL_AT_OR_ABOVE:
        met = r.level >= threshold;
        break;
      case KEZ_QUERY_CHARGING_AT_OR_ABOVE:
        met = r.charging >= threshold;
        break;
      default:
        return -1;  // unknown query: nothing can meet it
    }
    if (met) return k;
  }
  return -1;
}
