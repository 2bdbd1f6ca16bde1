#include "promo/mz/ProMzFree.h"

#include <algorithm>
#include <optional>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "engine/Log.h"
#include "promo/Statement.h"
#include "promo/mz/ConditionRows.h"
#include "promo/mz/Scheme.h"
#include "promo/mz/TierGift.h"
#include "promo/mz/Tiers.h"
#include "rule/EligibleQuantity.h"
#include "rule/MaxDiscount.h"
#include "rule/RuleReader.h"
#include "rule/Spreading.h"

namespace Corvane {

void ProMzFree::InitRule(Text xml) { ReadRule(xml, *this); }

bool ProMzFree::LoadRuleDetail(Text billNo, const std::vector<SalePlu>& lines, QString& error) {
  if (!m_db.EnsureOpen(error)) return false;
  const SqlText scheme =
      Statement(m_db,
                "select SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum,AddDscNum,SaleMaxIn "
                "from tProMzScheme where BillNo=",
                Quoted{billNo});
  return LoadRuleConditions(m_db, billNo, lines, m_conditions, error) &&
         LoadScheme(m_db, billNo, scheme, m_tiers, error);
}

void ProMzFree::CalcRule(ProSale& sale) {
  if (!sale.CanApplyToSale(Info.Primary, Info.BillNo) || !CheckBaseCondition(sale)) return;
  m_conditions.clear();
  m_tiers.clear();
  QString error;
  // Nothing changes the lines while rows are read, so the loader takes no copy of them.
  if (!LoadRuleDetail(Info.BillNo, sale.Plus, error)) {
    Log(QStringLiteral("计算商品直免促销失败") + error);
    return;
  }
  SortTiersDown(m_tiers);
  Work work{sale, SelectConditionLines(Info, m_conditions, sale.Plus)};
  // Every tier has its turn, also one that a higher tier has already left goods to.
  for (const PluAddAction& tier : m_tiers) CalcTier(tier, work);

  SpreadOptions options;
  options.WriteResult = false;
  options.ByDisNum = true;
  options.VipType = MemberText(sale);
  SpreadOverLinePtrs(Info, work.Area.Lines, work.Given, work.Base, options);
  LimitByMaxDiscount(Info, sale);
}

void ProMzFree::CalcTier(const PluAddAction& tier, Work& work) const {
  const GiftGoods goods = FindGiftGoods(tier, work.Sale);
  if (goods.Money <= 0 || goods.Count <= 0) return;
  const bool countsMoney = Same(tier.BaseConTp, TierUnit::kMoney);
  const bool countsQuantity = Same(tier.BaseConTp, TierUnit::kQuantity);
  if (!work.HasCondition && (countsMoney || countsQuantity)) {
    // A later tier of the other unit works against the value in this unit.
    work.HasCondition = true;
    work.Condition = countsMoney ? work.Area.Money : work.Area.Quantity;
  }
  double goodsValue = countsMoney ? goods.Money : goods.Count;
  if (!FreeFromTier(tier, goods, goodsValue, work)) return;
  if (work.Condition > 0) {
    for (const PluAddAction& lower : TiersBehind(m_tiers, tier)) {
      if (SharesGoods(lower, tier)) FreeFromTier(lower, goods, goodsValue, work);
    }
  }
  if (countsMoney) UseAreaByMoney(work);
  if (countsQuantity) UseAreaByQuantity(work);
}

/// The goods need not lie in the condition area. Only their code counts: no tier names a class.
ProMzFree::GiftGoods ProMzFree::FindGiftGoods(const PluAddAction& tier, ProSale& sale) const {
  GiftGoods goods;
  for (SalePlu& line : sale.Plus) {
    if (!Same(line.PluCode, tier.PluCode)) continue;
    goods.Price = Quotient(line.Total, line.PluCount);
    goods.Lines.push_back(&line);
    goods.Count += GetCalcCount(line, Info, sale.Plus);
    goods.Money += GetLineLeftTotal(line, Info.Primary, Info.ProType);
  }
  return goods;
}

/// Gives a tier's gift out of goods counted in the unit of its threshold, and writes it onto their lines.
///
/// @param goodsValue in and out: what is left of the goods.
/// @return false when the tier is not reached or has no goods left; nothing has changed then.
bool ProMzFree::FreeFromTier(const PluAddAction& tier, const GiftGoods& goods, double& goodsValue, Work& work) const {
  if (tier.BaseConNum > work.Condition || goodsValue == 0) return false;
  const std::optional<TierGift> gift = GiftAtThreshold(tier, goodsValue, goods.Price);
  if (!gift) return true;

  const double cap = goodsValue > gift->Limit ? gift->Limit : goodsValue;
  goodsValue -= gift->Amount;
  work.Condition -= tier.BaseConNum;
  double amount = gift->Amount;
  FreeRepeated(CountSteps(tier, work.Condition), StepSizeOf(tier), gift->StepGift, cap, goodsValue, work.Condition,
               amount);

  const bool countsQuantity = Same(tier.BaseConTp, TierUnit::kQuantity);
  const double money = countsQuantity ? amount * goods.Price : amount;
  // Further steps counted in money raise the money given and not the quantity.
  const double quantity = countsQuantity ? amount : gift->Quantity;
  work.Given += money;
  WriteGift(goods.Lines, quantity, money, MemberText(work.Sale));
  return true;
}

void ProMzFree::WriteGift(const LinePtrs& lines, double quantity, double money, Text vipType) const {
  for (SalePlu* line : lines) {
    if (!(money > 0)) return;
    ProResult row;
    row.ProBillNo = Info.BillNo;
    row.Primary = Info.Primary;
    row.ProType = Info.ProType;
    row.SetMember(vipType);
    const bool leavesQuantity = quantity > line->PluCount;
    const bool leavesMoney = money > line->Total;
    row.DisNum = leavesQuantity ? line->PluCount : quantity;
    row.DisMoney = leavesMoney ? line->Total : money;
    quantity = leavesQuantity ? quantity - row.DisNum : 0;
    money = leavesMoney ? money - row.DisMoney : 0;
    line->DisNum = row.DisNum;
    line->Total -= row.DisMoney;
    line->ProResults.push_back(row);
  }
}

void ProMzFree::UseAreaByMoney(Work& work) const {
  work.Base = 0;
  for (SalePlu* line : LastToFirst(work.Area.Lines)) {
    work.Base += GetLineLeftTotal(*line, Info.Primary, Info.ProType);
    line->DisNum = line->PluCount;
  }
}

/// Moves what this tier used up of the condition into the lines' `DisNum`.
void ProMzFree::UseAreaByQuantity(Work& work) const {
  work.Base = 0;
  if (work.Area.Lines.empty()) {
    work.Carried = -work.Condition;
    return;
  }
  double open = 0;
  for (const SalePlu* line : LastToFirst(work.Area.Lines)) open += GetCalcCount(*line, Info, work.Sale.Plus);
  const double excess = open - work.Carried - work.Condition;
  work.Carried += excess;
  TakeQuantity(excess, work);
  for (const SalePlu* line : work.Area.Lines) work.Base += line->DisNum * line->FinalPrice;
}

/// Lets the lines take the quantity, from the first on.
void ProMzFree::TakeQuantity(double excess, const Work& work) const {
  for (SalePlu* line : work.Area.Lines) {
    if (!(excess > 0)) return;
    const double difference = GetCalcCount(*line, Info, work.Sale.Plus) - line->DisNum;
    if (difference == 0) continue;
    excess -= difference;
    // The line that takes the rest loses the quantity that it already had; that is the contract.
    line->DisNum = excess >= 0 ? line->DisNum + difference : difference + excess;
  }
}

void FreeRepeated(std::int32_t count, double step, double stepGift, double cap, double& goodsValue,
                  double& conditionValue, double& given) {
  if (ReachesCap(given, cap)) {
    given = cap;
    goodsValue = 0;
    return;
  }
  if (goodsValue == 0) return;
  for (std::int64_t left = count; left > 0;) {
    const double gift = goodsValue < stepGift ? goodsValue : stepGift;
    RepeatedSum goods(goodsValue, -gift);
    RepeatedSum condition(conditionValue, -step);
    RepeatedSum sum(given, gift);
    const std::int64_t rounds = RoundsAtOnce(
        std::min({left, goods.EvenRoundsAbove(stepGift), condition.EvenRounds(), EvenRoundsBelowCap(sum, cap)}));
    goods.Add(rounds);
    condition.Add(rounds);
    sum.Add(rounds);
    left -= rounds;
    goodsValue = goods.Value();
    conditionValue = condition.Value();
    given = ReachesCap(sum.Value(), cap) ? cap : sum.Value();
    if (ReachesCap(given, cap)) return;
  }
}

}  // namespace Corvane
