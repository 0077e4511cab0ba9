#include "interface/StatusLine.h"

#include "foundation/FList.h"
#include "foundation/FString.h"

namespace kez {

StatusLine StatusLine::Parse(const char* line) {
  vorn::FString rest(line);
  vorn::FListT<vorn::FString> fields;
  for (;;) {
    vorn::FString token = rest.SplitBy(",");
    // The token is compared with the remaining text, not with "": see the
    // header for what that does to a line ending in two equal fields.
    if (token == rest) break;
    fields.Add(token);
  }

  auto column = [&fields](int i) {
    return i < fields.count ? fields[i].AsFloat() : 0.0;
  };
  StatusLine sample;
  sample.fieldCount = fields.count;
  sample.days = column(kTimeColumn) / 86400000.0;
  sample.level = static_cast<float>(column(kLevelColumn) * 0.01);
  sample.charging = static_cast<float>(column(kChargingColumn));
  sample.aux1 = static_cast<float>(column(kAux1Column));
  sample.aux2 = static_cast<float>(column(kAux2Column));
  sample.aux3 = static_cast<float>(column(kAux3Column));
  sample.countA = column(kCountAColumn);
  sample.countB1 = column(kCountB1Column);
  sample.countB2 = column(kCountB2Column);
  return sample;
}

}  // namespace kez
