#include "promo/mz/GiftChoice.h"

#include "base/Numbers.h"

namespace Corvane {

namespace {

std::int32_t CheckGroup(const SaleProGift& group, double& used, RuleOutcome* outcome) {
  double moneyLeft = group.Total;
  for (const PluAddAction& row : group.Rows) {
    const double picks = Quotient(row.HgPluCount, row.BaseDscNum);
    if (row.SaleMaxIn > 0 && row.HgPluCount > row.SaleMaxIn) {
      Refuse(outcome, Reason::ChoiceTooMany)
          .Goods(row.PluCode)
          .Has(Unit::Quantity, row.HgPluCount)
          .Needs(row.SaleMaxIn);
      return GiftAnswer::kNumberOverflow;
    }
    const double cost = row.BaseConNum * picks;
    // Only goods that cost money are tested against what the sale brought; free ones just use it up.
    if (row.DscPrice > 0) {
      if (used > group.Total || cost > moneyLeft) {
        Refuse(outcome, Reason::ChoiceTooDear)
            .Goods(row.PluCode)
            .Has(Unit::Money, used > group.Total ? used : cost)
            .Needs(used > group.Total ? group.Total : moneyLeft);
        return GiftAnswer::kTotalOverflow;
      }
      moneyLeft -= cost;
    }
    used += cost;
  }
  return GiftAnswer::kFits;
}

}  // namespace

std::int32_t CheckGiftChoice(const ProSale& sale, Text billNo, double& used, RuleOutcome* outcome) {
  std::int32_t offers = 0;
  for (const SaleProGift& group : sale.ProGifts) {
    if (!Same(group.ProBillNo, billNo)) continue;
    const std::int32_t answer = CheckGroup(group, used, outcome);
    if (answer != GiftAnswer::kFits) return answer;
    ++offers;
  }
  if (outcome != nullptr) outcome->Offers = offers;
  if (offers == 0) Refuse(outcome, Reason::NoOffers);
  return GiftAnswer::kFits;
}

void SetGiftLeft(ProSale& sale, Text billNo, double used) {
  for (SaleProGift& group : sale.ProGifts) {
    if (!Same(group.ProBillNo, billNo)) continue;
    group.LeftTotal = group.Total - used;
    group.UsedTotal = used;
    for (PluAddAction& row : group.Rows) row.CanPart = row.BaseConNum > group.LeftTotal ? 0 : 1;
  }
}

}  // namespace Corvane
