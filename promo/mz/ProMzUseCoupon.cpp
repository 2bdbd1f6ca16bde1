#include "promo/mz/ProMzUseCoupon.h"

#include <algorithm>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "promo/mz/Tiers.h"
#include "rule/LineSelection.h"
#include "rule/Spreading.h"

namespace Corvane {

namespace {

double PresentedValue(const ProSale& sale) {
  double sum = 0;
  for (const SaleCoupon& coupon : LastToFirst(sale.Coupons)) sum += ToDouble(coupon.Value);
  return sum;
}

}  // namespace

void ProMzUseCoupon::CalcRule(RuleRun& run) {
  if (!run.MayActOnSale()) return;
  for (ProMzList& list : m_lists) CalcList(run, list);
}

void ProMzUseCoupon::CalcList(RuleRun& run, ProMzList& list) {
  if (list.Tiers.empty()) return;
  SortTiersDown(list.Tiers);
  if (Same(list.ConAreaType, ConditionArea::kChosenLines)) {
    const RuleLines chosen = SelectRuleLines(run, SplitRows(list.Conditions));
    if (chosen.Money != 0) TakeCoupons(run, list, chosen.Money, chosen.Lines);
  } else {
    const bool isWholeSale = Same(list.ConAreaType, ConditionArea::kWholeSale);
    TakeCoupons(run, list, isWholeSale ? run.Sale().SaleTotal() : 0, {});
  }
}

/// Takes in as much coupon value as the tiers allow. All coupons of the sale are gone then, needed or not.
void ProMzUseCoupon::TakeCoupons(RuleRun& run, const ProMzList& list, double amount, const LinePtrs& chosen) {
  const double allowed = SumOfTiers(list, amount);
  const double value = std::min(PresentedValue(run.Sale()), allowed);
  if (!(value > 0)) return;
  run.Sale().Coupons.clear();
  run.RecordOnSale({0, value}, Member::Untold);
  // In an area of no known name coupons are taken in and nothing is spread.
  if (Same(list.ConAreaType, ConditionArea::kWholeSale)) SpreadOverLines(run, value, amount, list.Price());
  if (!Same(list.ConAreaType, ConditionArea::kChosenLines)) return;
  SpreadOptions options;
  options.Price = list.Price();
  SpreadOverLinePtrs(run, chosen, value, amount, options);
}

/// What an amount allows over the tiers of a list. Remainder and sum are held in single precision and rounded to it
/// at every step; what they are compared with and reckoned from stays in double precision.
float ProMzUseCoupon::SumOfTiers(const ProMzList& list, double amount) {
  float remainder = ToSingle(amount);
  float sum = 0;
  for (const PluAddAction& tier : list.Tiers) {
    if (tier.BaseConNum > remainder) continue;
    float counted = remainder;
    double addOn = 0;
    if (tier.SaleMaxIn != 0 && remainder > tier.SaleMaxIn) {
      counted = ToSingle(tier.SaleMaxIn);
      addOn = std::max(counted - tier.SaleMaxIn, 0.0);
    }
    sum = ToSingle(sum + tier.BaseDscNum);
    const FurtherSteps steps = FurtherStepsOf(tier, counted);
    AddRepeatedSingle(steps.Count, ToSingle(steps.Gift), ToSingle(list.MaxDiscount), sum);
    const double base = ReachesLimit(sum, list.MaxDiscount) ? 0 : counted;
    remainder = ToSingle(base - (tier.BaseConNum + steps.Count * steps.Size) + addOn);
  }
  return sum;
}

}  // namespace Corvane
