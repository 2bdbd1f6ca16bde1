#ifndef QNCORVANE_RULE_ELIGIBLEQUANTITY_H
#define QNCORVANE_RULE_ELIGIBLEQUANTITY_H

#include <vector>

#include "rule/ProInfo.h"
#include "rule/RuleOutcome.h"
#include "sale/SaleRecords.h"

namespace Corvane {

// How much of a line a rule may still discount, in quantity and in money. Both answers come from the rows that earlier
// rules left on the line: what a rule's own family took and what any "DZ" rule took is taken, what another family took
// under "PT" or "DJ" stays open. They change with every row written, so they are asked for anew at each line.

/// The quantity of `line` that the rule may still discount; 0 or less means nothing. A rule with `MaxYhType` "2" gets
/// no more than its limit leaves over the whole sale; some types look after that limit themselves and are exempt here.
///
/// @param lines the sale's lines: the quantity that the rule already holds is counted over all of them.
double GetCalcCount(const SalePlu& line, const ProInfo& rule, const std::vector<SalePlu>& lines);

/// The same for a rule that passes itself off as another type.
double GetCalcCount(const SalePlu& line, const ProInfo& rule, Text proType, const std::vector<SalePlu>& lines);

/// The money of `line` still open to a rule of this stacking class and type; never negative.
double GetLineLeftTotal(const SalePlu& line, Text primary, Text proType);

// Who asks why nothing is open is told by the same rows: the line holds nothing, rules took it, or the limit is used up.

/// Notes why GetCalcCount left nothing of the line.
void TellNothingOpen(const SalePlu& line, const ProInfo& rule, Text proType, const std::vector<SalePlu>& lines,
                     RuleOutcome* outcome);

/// Notes why GetLineLeftTotal left nothing of the line.
void TellNoMoneyOpen(const SalePlu& line, Text primary, Text proType, RuleOutcome* outcome);

/// Adds the rules that took quantity of the line to a decision.
void TellTakers(const SalePlu& line, const ProInfo& rule, Text proType, Telling& telling);

/// The limit less all quantity that the rule holds over `lines`, rounded with RoundMoney.
double GetRuleLeftCount(Text billNo, double limit, const std::vector<SalePlu>& lines);

}  // namespace Corvane

#endif
