#ifndef QNCORVANE_RULE_SPREADING_H
#define QNCORVANE_RULE_SPREADING_H

#include <vector>

#include "rule/LineSelection.h"
#include "rule/ProInfo.h"
#include "sale/SaleRecords.h"

namespace Corvane {

// Three ways in which a rule's money lands on lines in cents that add up. In all of them the rounding tail lands on one
// row at the end. Nothing is reported as an error.

/// How a sum is spread over lines.
struct SpreadOptions {
  bool SetFinalPrice = false;  ///< the lines' `FinalPrice` becomes the price that the discount leaves
  bool WriteResult = true;     ///< rows go to the result lists too, not only to the apportion lists
  bool ByDisNum = false;       ///< by the lines' `DisNum`, which is used up, instead of by their open money
  Text VipType = "";           ///< member type, empty for none
};

/// Spreads `money` by value, at `Price`, over the apportion rows of the rule; lines without one get one. Only apportion
/// rows are touched (and `DisNum` of a line that gets its row here). Ends after the rows are made when they weigh
/// nothing.
///
/// @param lines  a line may stand in the list more than once.
/// @param billNo the rule's number, for which the rows are sought.
void ApportionRecords(const ProInfo& rule, const LinePtrs& lines, double money, Text billNo);

/// Spreads `money` over lines in proportion to their part of `base`; a line that has a result of the rule is passed
/// over. For "MZDP", "ZHGD" and "MZMJ" the lines' `Total` falls by their shares; all other types leave it alone.
///
/// @param base the amount of which the lines' parts are parts; 0 spreads nothing.
void SpreadOverLinePtrs(const ProInfo& rule, const LinePtrs& lines, double money, double base,
                        const SpreadOptions& options);

/// Puts a rounding tail on the first apportion row of the first line that has any, and on the first result row of the
/// first line that has any, whoever wrote them; for the three types above that line's `Total` falls by it.
void PutTailOnFirstRows(const ProInfo& rule, const LinePtrs& lines, double tail, bool writeResult);

/// Spreads `money` over all lines of a sale in proportion to their part of `base`; a line that has a result of the rule
/// is passed over. Here it is the other way about: `Total` falls for all types but "MZMJ", whose caller lowers it.
/// `WriteResult` and `ByDisNum` of the options are not consulted: rows always go to both lists.
///
/// @param base 0 spreads nothing, and so do lines whose `Total`s sum to 0, as a sale and its return do.
void SpreadOverLines(const ProInfo& rule, std::vector<SalePlu>& lines, double money, double base,
                     const SpreadOptions& options);

}  // namespace Corvane

#endif
