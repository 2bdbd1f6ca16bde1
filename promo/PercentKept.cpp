#include "promo/PercentKept.h"

#include "base/Numbers.h"

namespace Corvane {

double PercentKept(double percentOff) {
  const double kept = 100 - percentOff;
  return kept < 0 || PrintsAsZero(kept) ? 0.0 : kept;
}

}  // namespace Corvane
