#ifndef QNCORVANE_RULE_LINEDISCOUNT_H
#define QNCORVANE_RULE_LINEDISCOUNT_H

#include <vector>

#include "base/Text.h"
#include "rule/ProInfo.h"
#include "rule/RuleRows.h"
#include "sale/SaleRecords.h"

namespace Corvane {

/// The kinds of price that an action row sets; any other text sets none.
namespace PriceKind {
constexpr Text kPrice = "PRC";    ///< a set unit price
constexpr Text kRate = "RAT";     ///< a percentage of the unit price
constexpr Text kReduction = "2";  ///< a fixed reduction of the unit price
}  // namespace PriceKind

/// Applies one action row to one line: takes the line's open quantity, lowers `Total` and writes the result rows. The
/// price worked on is the one before the rule's own family and before "DZ" rules.
///
/// @param limit   quantity that the row may give in all; 0 means no limit.
/// @param applied in and out: the quantity given so far under this limit.
/// @param changed receives a copy of the line as it stands before the result row is written.
/// @param vipType member type, empty for none.
/// @param lines   the sale's lines, for the rule's limit by quantity.
/// @return false when the row can give nothing; the line is then untouched.
bool ApplyLineDiscount(const PluAction& action, double limit, SalePlu& line, double& applied, const ProInfo& rule,
                       std::vector<SalePlu>& changed, Text vipType, const std::vector<SalePlu>& lines);

/// Whether a price-setting rule gives a row's discount back before it works on the price: the row is of the rule's own
/// family, as its `ProMode` names it, or a "DZ" row.
bool IsGivenBack(const ProResult& row, const ProInfo& rule);

/// Writes a new row onto the line: to its apportion list, then to its result list.
void WriteResultRow(SalePlu& line, const ProResult& row);

}  // namespace Corvane

#endif
