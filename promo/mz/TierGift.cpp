#include "promo/mz/TierGift.h"

#include <algorithm>

#include "base/Numbers.h"
#include "promo/mz/Tiers.h"

namespace Corvane {

namespace {

double StepGiftOf(const PluAddAction& tier) { return tier.AddConNum > 0 ? tier.AddDscNum : tier.BaseDscNum; }

TierGift QuantityByQuantity(const PluAddAction& tier, double pool) {
  const double quantity = std::min(pool, tier.BaseDscNum);
  return {quantity, quantity, StepGiftOf(tier), tier.SaleMaxIn};
}

TierGift MoneyByQuantity(const PluAddAction& tier, double pool, double price) {
  const double money = std::min(pool * price, tier.BaseDscNum);
  const double quantity = Quotient(money, price);
  return {quantity, quantity, Quotient(StepGiftOf(tier), price), Quotient(tier.SaleMaxIn, price)};
}

TierGift MoneyByMoney(const PluAddAction& tier, double pool) {
  const double money = std::min(pool, tier.BaseDscNum);
  return {money, 0, StepGiftOf(tier), tier.SaleMaxIn};
}

TierGift QuantityByMoney(const PluAddAction& tier, double pool, double price) {
  const double quantity = std::min(Quotient(pool, price), tier.BaseDscNum);
  return {quantity * price, quantity, StepGiftOf(tier) * price, tier.SaleMaxIn * price};
}

}  // namespace

std::optional<TierGift> GiftAtThreshold(const PluAddAction& tier, double pool, double price) {
  const TierUnit counted = UnitOf(tier.BaseConTp);
  const TierUnit given = UnitOf(tier.BaseDscTp);
  if (counted == TierUnit::Unknown || given == TierUnit::Unknown) return std::nullopt;
  const bool givesQuantity = given == TierUnit::Quantity;
  if (counted == TierUnit::Quantity) {
    return givesQuantity ? QuantityByQuantity(tier, pool) : MoneyByQuantity(tier, pool, price);
  }
  return givesQuantity ? QuantityByMoney(tier, pool, price) : MoneyByMoney(tier, pool);
}

std::int32_t CountSteps(const PluAddAction& tier, double amount) {
  return TruncToInt32(Quotient(amount, StepSizeOf(tier)));
}

bool SharesGoods(const PluAddAction& left, const PluAddAction& right) {
  return Same(left.BaseConTp, right.BaseConTp) && Same(left.PluCode, right.PluCode) &&
         Same(left.PluType, right.PluType);
}

}  // namespace Corvane
