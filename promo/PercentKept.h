#ifndef QNCORVANE_PROMO_PERCENTKEPT_H
#define QNCORVANE_PROMO_PERCENTKEPT_H

namespace Corvane {

/// The percent of a price that is left to pay. Tables hold the percent taken off, rows in memory the percent kept; a
/// rest that is negative, or that a receipt would show as "0.00", is exactly 0.
double PercentKept(double percentOff);

}  // namespace Corvane

#endif
