#ifndef QNCORVANE_RULE_ACTIONPRICE_H
#define QNCORVANE_RULE_ACTIONPRICE_H

#include <optional>

#include "base/Text.h"
#include "rule/ProInfo.h"
#include "rule/RuleOutcome.h"
#include "rule/RuleRows.h"
#include "sale/SaleRecords.h"

namespace Corvane {

/// The kinds of price that an action row sets; any other text sets none.
namespace PriceKind {
constexpr Text kPrice = "PRC";    ///< a set unit price
constexpr Text kRate = "RAT";     ///< a percentage of the unit price
constexpr Text kReduction = "2";  ///< a fixed reduction of the unit price
constexpr Text kAll = "PRC, RAT, 2";
}  // namespace PriceKind

/// What an action row makes of a unit price.
struct ActionPrice {
  double Price = 0;         ///< the new unit price
  double Money = 0;         ///< discount of the whole quantity, in cents
  bool ChangesLine = true;  ///< false for a price kind that nobody knows: only the row is written
};

/// @return nothing when the row brings no gain on a unit price of `base`.
std::optional<ActionPrice> PriceByAction(const PluAction& action, double base, double quantity);

/// Notes why a row brings no gain on a unit price of `base` on the line.
void TellNoGain(const PluAction& action, const SalePlu& line, double base, RuleOutcome* outcome);

/// The line's unit price before the discounts of the rule's own family, as its `ProMode` names it, and before "DZ"
/// rules: these are given back.
double BasePrice(const SalePlu& line, const ProInfo& rule);

/// Whether a row's discount is given back so.
bool IsGivenBack(const ProResult& row, const ProInfo& rule);

}  // namespace Corvane

#endif
