#include "promo/mz/ProMzUseCoupon.h"

#include <algorithm>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "promo/mz/Tiers.h"
#include "rule/Spreading.h"

namespace Corvane {

namespace {

double PresentedValue(const ProSale& sale) {
  double sum = 0;
  for (const SaleCoupon& coupon : LastToFirst(sale.Coupons)) sum += ToDouble(coupon.Value);
  return sum;
}

}  // namespace

void ProMzUseCoupon::CalcRule(ProSale& sale) {
  if (!sale.CanApplyToSale(Info.Primary, Info.BillNo) || !CheckBaseCondition(sale)) return;
  for (ProMzList& list : m_lists) CalcList(list, sale);
}

void ProMzUseCoupon::CalcList(ProMzList& list, ProSale& sale) const {
  if (list.Tiers.empty()) return;
  SortTiersDown(list.Tiers);
  if (Same(list.ConAreaType, ConditionArea::kChosenLines)) {
    const RuleLines chosen = SelectRuleLines(Info, SplitRows(list.Conditions), sale.Plus);
    if (chosen.Money != 0) TakeCoupons(list, chosen.Money, chosen.Lines, sale);
  } else {
    const bool isWholeSale = Same(list.ConAreaType, ConditionArea::kWholeSale);
    TakeCoupons(list, isWholeSale ? sale.SaleTotal() : 0, {}, sale);
  }
}

/// Takes in as much coupon value as the tiers allow. All coupons of the sale are gone then, needed or not.
void ProMzUseCoupon::TakeCoupons(const ProMzList& list, double amount, const LinePtrs& chosen, ProSale& sale) const {
  const double allowed = SumOfTiers(list, amount);
  const double value = std::min(PresentedValue(sale), allowed);
  if (!(value > 0)) return;
  sale.Coupons.clear();
  sale.SaleResults.emplace_back(Info.BillNo, Info.Primary, Info.ProType, 0, value, 0, value);

  SpreadOptions options;
  options.SetFinalPrice = list.SetsFinalPrice();
  options.VipType = MemberText(sale);
  // In an area of no known name coupons are taken in and nothing is spread.
  if (Same(list.ConAreaType, ConditionArea::kWholeSale)) SpreadOverLines(Info, sale.Plus, value, amount, options);
  if (Same(list.ConAreaType, ConditionArea::kChosenLines)) SpreadOverLinePtrs(Info, chosen, value, amount, options);
}

/// What an amount allows over the tiers of an offer. Remainder and sum are held in single precision and rounded to it
/// at every step; what they are compared with and reckoned from stays in double precision.
float ProMzUseCoupon::SumOfTiers(const ProMzList& list, double amount) const {
  float remainder = ToSingle(amount);
  float sum = 0;
  for (const PluAddAction& tier : list.Tiers) {
    if (tier.BaseConNum > remainder) continue;
    float capped = remainder;
    double addOn = 0;
    if (tier.SaleMaxIn != 0 && remainder > tier.SaleMaxIn) {
      capped = ToSingle(tier.SaleMaxIn);
      addOn = std::max(capped - tier.SaleMaxIn, 0.0);
    }
    sum = ToSingle(sum + tier.BaseDscNum);
    const FurtherSteps steps = FurtherStepsOf(tier, capped);
    AddRepeatedSingle(steps.Count, ToSingle(steps.Gift), ToSingle(list.MaxDiscount), sum);
    const double base = ReachesCap(sum, list.MaxDiscount) ? 0 : capped;
    remainder = ToSingle(base - (tier.BaseConNum + steps.Count * steps.Size) + addOn);
  }
  return sum;
}

}  // namespace Corvane
