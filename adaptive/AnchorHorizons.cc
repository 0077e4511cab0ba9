#include "adaptive/AnchorHorizons.h"

namespace kez {
namespace adaptive {

void AnchorPosition(int ahead, int* low, double* t) {
  if (ahead <= kAnchorSteps[0]) {
    *low = 0;
    *t = 0.0;
    return;
  }
  for (int a = 0; a + 1 < kAnchorCount; ++a) {
    if (ahead < kAnchorSteps[a + 1]) {
      *low = a;
      *t = static_cast<double>(ahead - kAnchorSteps[a]) /
           static_cast<double>(kAnchorSteps[a + 1] - kAnchorSteps[a]);
      return;
    }
  }
  *low = kAnchorCount - 1;
  *t = 0.0;
}

}  // namespace adaptive
}  // namespace kez
