#include "rule/ActionPrice.h"

#include "base/Numbers.h"
#include "rule/ResultRows.h"

namespace Corvane {

std::optional<ActionPrice> PriceByAction(const PluAction& action, double base, double quantity) {
  if (Same(action.DisType, PriceKind::kPrice)) {
    if (ReachesPrice(action.DisPrice, base)) return std::nullopt;
    const double money = RoundMoney((base - action.DisPrice) * quantity);
    if (money < 0) return std::nullopt;
    return ActionPrice{action.DisPrice, money};
  }
  if (Same(action.DisType, PriceKind::kRate)) {
    const double price = action.DisRate * base / 100;
    if (ReachesPrice(price, base)) return std::nullopt;
    return ActionPrice{price, RoundMoney((base - price) * quantity)};
  }
  if (Same(action.DisType, PriceKind::kReduction)) {
    const double price = base - action.DisPrice;
    // A reduction that misses the price by less than a cent is given all the same.
    if (price < -0.01 + kNoise) return std::nullopt;
    return ActionPrice{price, RoundMoney(action.DisPrice * quantity)};
  }
  return ActionPrice{0, 0, false};
}

void TellNoGain(const PluAction& action, const SalePlu& line, double base, RuleOutcome* outcome) {
  const bool isReduction = Same(action.DisType, PriceKind::kReduction);
  const bool isRate = Same(action.DisType, PriceKind::kRate);
  Note(outcome, isReduction ? Reason::ReductionAbovePrice : Reason::NoGain)
      .On(line)
      .Row(action.SerialNo)
      .Has(Unit::Price, base)
      .Needs(isRate ? action.DisRate * base / 100 : action.DisPrice);
}

double BasePrice(const SalePlu& line, const ProInfo& rule) {
  const Taken given = TakenOn(line, [&](const ProResult& row) { return IsGivenBack(row, rule); });
  return Quotient(given.Money + line.Total, line.PluCount);
}

bool IsGivenBack(const ProResult& row, const ProInfo& rule) {
  return FamilyOf(row.ProType) == OrEmpty(rule.ProMode) || Same(row.Primary, StackingClass::kDz);
}

}  // namespace Corvane
