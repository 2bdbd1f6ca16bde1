#include "rule/LineDiscount.h"

#include <algorithm>
#include <optional>

#include "base/Numbers.h"
#include "rule/EligibleQuantity.h"
#include "rule/LineSelection.h"

namespace Corvane {

namespace {

/// What an action row makes of a unit price.
struct NewPrice {
  double Price = 0;
  double Money = 0;         ///< discount of the whole quantity
  bool ChangesLine = true;  ///< false for a price kind that nobody knows: only the row is written
};

double BasePrice(const SalePlu& line, const ProInfo& rule) {
  double givenBack = 0;
  for (const ProResult& row : line.ProResults) {
    if (IsGivenBack(row, rule)) givenBack += row.DisMoney;
  }
  return Quotient(givenBack + line.Total, line.PluCount);
}

/// @return nothing when the row brings no gain on this price.
std::optional<NewPrice> PriceByAction(const PluAction& action, double base, double quantity) {
  if (Same(action.DisType, PriceKind::kPrice)) {
    if (ReachesPrice(action.DisPrice, base)) return std::nullopt;
    const double money = RoundMoney((base - action.DisPrice) * quantity);
    if (money < 0) return std::nullopt;
    return NewPrice{action.DisPrice, money};
  }
  if (Same(action.DisType, PriceKind::kRate)) {
    const double price = action.DisRate * base / 100;
    if (ReachesPrice(price, base)) return std::nullopt;
    return NewPrice{price, RoundMoney((base - price) * quantity)};
  }
  if (Same(action.DisType, PriceKind::kReduction)) {
    const double price = base - action.DisPrice;
    // A reduction that misses the price by less than a cent is given all the same.
    if (price < -0.01 + kNoise) return std::nullopt;
    return NewPrice{price, RoundMoney(action.DisPrice * quantity)};
  }
  return NewPrice{0, 0, false};
}

void WriteOrMerge(SalePlu& line, const ProInfo& rule, double quantity, const NewPrice& price, Text vipType) {
  if (ProResult* held = FindResult(line, rule.BillNo)) {
    // The apportion row stays as it was first written.
    held->DisNum += quantity;
    held->DisMoney += price.Money;
    return;
  }
  ProResult row(rule.BillNo, rule.Primary, rule.ProType, quantity, price.Money, price.Price, price.Money);
  row.SetMember(vipType);
  WriteResultRow(line, row);
}

}  // namespace

bool ApplyLineDiscount(const PluAction& action, double limit, SalePlu& line, double& applied, const ProInfo& rule,
                       std::vector<SalePlu>& changed, Text vipType, const std::vector<SalePlu>& lines) {
  double quantity = GetCalcCount(line, rule, lines);
  if (limit != 0) {
    if (applied >= limit) return false;
    quantity = std::min(quantity, limit - applied);
  }
  if (quantity <= 0) return false;
  const std::optional<NewPrice> price = PriceByAction(action, BasePrice(line, rule), quantity);
  if (!price) return false;
  if (price->ChangesLine) {
    line.Total -= price->Money;
    if (Same(rule.ProType, "PTXS")) line.FinalPrice = Quotient(line.Total, line.PluCount);
    line.DisNum = quantity;
    applied += quantity;
    changed.push_back(line);
  }
  WriteOrMerge(line, rule, quantity, *price, vipType);
  return true;
}

bool IsGivenBack(const ProResult& row, const ProInfo& rule) {
  return FamilyOf(row.ProType) == OrEmpty(rule.ProMode) || Same(row.Primary, StackingClass::kDz);
}

void WriteResultRow(SalePlu& line, const ProResult& row) {
  line.Apportions.push_back(row);
  line.ProResults.push_back(row);
}

}  // namespace Corvane
