#ifndef QNCORVANE_RULE_MAXDISCOUNT_H
#define QNCORVANE_RULE_MAXDISCOUNT_H

#include "rule/ProInfo.h"
#include "rule/RuleOutcome.h"
#include "sale/ProSale.h"

namespace Corvane {

/// Whether a rule names itself in the log when its money limit is enforced.
enum class LimitLog { Announced, Unannounced };

/// Enforces the money limit of a rule (`MaxYhType` "1"): when its results on the sale's lines come to more than
/// `MaxYhValue`, their `DisMoney` shrinks in proportion, rounded to cents, and the last row takes what the rounding
/// left, so that the rows come to the limit exactly. `Total` and `FinalPrice` of the lines and the apportion rows
/// keep what the rule wrote: the limit shows in the discount records only.
///
/// @param outcome is told what the limit took back; null where nobody asks.
void LimitByMaxDiscount(const ProInfo& rule, ProSale& sale, LimitLog log = LimitLog::Announced,
                        RuleOutcome* outcome = nullptr);

/// The limit in the form of the types that write no results on lines: it acts only on rows that an earlier pass over
/// the sale left there. When they come to more than `MaxYhValue`, their `DisMoney` shrinks in proportion. Unlike
/// LimitByMaxDiscount it logs nothing, rounds nothing and leaves no remainder to the last row.
void LimitInProportion(const ProInfo& rule, ProSale& sale, RuleOutcome* outcome = nullptr);

}  // namespace Corvane

#endif
