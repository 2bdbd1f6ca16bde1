#ifndef QNCORVANE_RULE_MAXDISCOUNT_H
#define QNCORVANE_RULE_MAXDISCOUNT_H

#include "rule/ProInfo.h"
#include "sale/ProSale.h"

namespace Corvane {

/// Whether a rule names itself in the log when its money ceiling is enforced.
enum class LimitLog { Announced, Unannounced };

/// Enforces the money ceiling of a rule (`MaxYhType` "1"): when its results on the sale's lines come to more than
/// `MaxYhValue`, their `DisMoney` shrinks in proportion, rounded to cents, and the last row takes what the rounding
/// left, so that the rows come to the ceiling exactly. `Total` and `FinalPrice` of the lines and the apportion rows
/// keep what the rule wrote: the ceiling shows in the discount records only.
void LimitByMaxDiscount(const ProInfo& rule, ProSale& sale, LimitLog log = LimitLog::Announced);

}  // namespace Corvane

#endif
