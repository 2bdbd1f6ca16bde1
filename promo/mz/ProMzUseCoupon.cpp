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
  if (m_lists.empty()) run.Refuse(Reason::NoRows);
  if (run.Lines().empty()) run.Refuse(Reason::NoLines);
  for (ProMzList& list : m_lists) CalcList(run, list);
}

void ProMzUseCoupon::CalcList(RuleRun& run, ProMzList& list) {
  if (!list.HasTiers(run)) return;
  SortTiersDown(list.Tiers);
  if (list.IsOfChosenLines()) {
    const RuleLines chosen = SelectRuleLines(run, SplitRows(list.Conditions));
    if (chosen.Money != 0) TakeCoupons(run, list, chosen.Money, chosen.Lines);
  } else {
    TakeCoupons(run, list, list.IsOfWholeSale() ? run.Sale().SaleTotal() : 0, {});
  }
}

/// Takes in as much coupon value as the tiers allow. All coupons of the sale are gone then, needed or not.
void ProMzUseCoupon::TakeCoupons(RuleRun& run, const ProMzList& list, double amount, const LinePtrs& chosen) {
  const double allowed = SumOfTiers(run, list, amount, list.IsOfWholeSale() ? nullptr : &chosen);
  const double presented = PresentedValue(run.Sale());
  const double value = std::min(presented, allowed);
  if (!(presented > 0)) run.Refuse(Reason::NoCoupons).Has(Unit::Coupon, presented);
  if (!(value > 0)) return;
  run.Sale().Coupons.clear();
  run.RecordOnSale({0, value}, Member::Untold);
  // In an area of no known name coupons are taken in and nothing is spread.
  if (list.IsOfWholeSale()) SpreadOverLines(run, value, amount, list.Price());
  if (!list.IsOfChosenLines()) return;
  SpreadOptions options;
  options.Price = list.Price();
  SpreadOverLinePtrs(run, chosen, value, amount, options);
}

/// What an amount allows over the tiers of a list. Remainder and sum are held in single precision and rounded to it
/// at every step; what they are compared with and reckoned from stays in double precision.
float ProMzUseCoupon::SumOfTiers(const RuleRun& run, const ProMzList& list, double amount, const LinePtrs* lines) {
  float remainder = ToSingle(amount);
  float sum = 0;
  for (const PluAddAction& tier : list.Tiers) {
    if (tier.BaseConNum > remainder) {
      NoteBelow(run, list.Tiers, tier, Unit::Money, remainder, lines);
      continue;
    }
    float counted = remainder;
    double addOn = 0;
    if (tier.SaleMaxIn != 0 && remainder > tier.SaleMaxIn) {
      counted = ToSingle(tier.SaleMaxIn);
      addOn = std::max(counted - tier.SaleMaxIn, 0.0);
    }
    sum = ToSingle(sum + tier.BaseDscNum);
    const FurtherSteps steps = FurtherStepsOf(tier, counted);
    AddRepeatedSingle(steps.Count, ToSingle(steps.Gift), ToSingle(list.MaxDiscount), sum);
    NoteNextStep(run, list.Tiers, tier, counted, list.MaxDiscount, sum, lines);
    const double base = ReachesLimit(sum, list.MaxDiscount) ? 0 : counted;
    remainder = ToSingle(base - (tier.BaseConNum + steps.Count * steps.Size) + addOn);
    if (sum <= 0) run.Note(Reason::GivesNothing).Tier(&tier - list.Tiers.data()).Has(Unit::Money, 0.0);
  }
  return sum;
}

}  // namespace Corvane
