#ifndef QNCORVANE_PROMO_MZ_PROPORTIONALLIMIT_H
#define QNCORVANE_PROMO_MZ_PROPORTIONALLIMIT_H

#include "rule/ProInfo.h"
#include "sale/ProSale.h"

namespace Corvane {

/// The money ceiling (`MaxYhType` "1") in the form of the types that write no results on lines: it acts only on rows
/// that an earlier pass over the sale left there. When they come to more than `MaxYhValue`, their `DisMoney` shrinks in
/// proportion. Unlike LimitByMaxDiscount it logs nothing, rounds nothing and leaves no remainder to the last row.
void LimitInProportion(const ProInfo& rule, ProSale& sale);

}  // namespace Corvane

#endif
