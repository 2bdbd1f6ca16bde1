#include "promo/mz/ProMzFree.h"

#include <algorithm>
#include <optional>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "log/Log.h"
#include "log/LogTexts.h"
#include "promo/DetailTable.h"
#include "promo/mz/ConditionRows.h"
#include "promo/mz/TierColumns.h"
#include "promo/mz/TierGift.h"
#include "promo/mz/Tiers.h"
#include "rule/RuleReader.h"
#include "rule/Spreading.h"

namespace Corvane {

void ProMzFree::InitRule(Text xml) { ReadRule(xml, *this); }

bool ProMzFree::LoadRuleDetail(ProSale& sale, QString& error) {
  DetailTables tables(m_db, Info.BillNo, error);
  return tables.Open() && LoadRuleConditions(tables, sale, m_conditions) &&
         tables.ReadTiers(tables.Select("select SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum,"
                                        "AddConNum,AddDscNum,SaleMaxIn from tProMzScheme where BillNo="),
                          kGoodsTierColumns, m_tiers);
}

void ProMzFree::CalcRule(RuleRun& run) {
  if (!run.MayActOnSale()) return;
  m_conditions.clear();
  m_tiers.clear();
  QString error;
  // Nothing changes the lines while rows are read, so the loader takes no copy of them.
  if (!LoadRuleDetail(run.Sale(), error)) {
    Log(QString::fromUtf8(LogText::kGoodsFreeFailed) + error);
    run.RefuseUnreadable(error);
    return;
  }
  if (m_tiers.empty()) run.Refuse(Reason::NoTiers);
  SortTiersDown(m_tiers);
  Work work;
  work.Area = SelectConditionLines(run, m_conditions);
  // Every tier has its turn, also one that a higher tier has already left goods to.
  for (const PluAddAction& tier : m_tiers) CalcTier(run, tier, work);

  SpreadOptions options;
  options.Part = PartBy::DisNum;
  options.To = Rows::Apportions;
  SpreadOverLinePtrs(run, work.Area.Lines, work.Given, work.Base, options);
  run.Limit();
}

void ProMzFree::CalcTier(RuleRun& run, const PluAddAction& tier, Work& work) const {
  GiftGoods goods = FindGiftGoods(run, tier);
  if (goods.Money <= 0 || goods.Count <= 0) {
    NoteMissing(run, tier, goods);
    return;
  }
  const TierUnit unit = UnitOf(tier.BaseConTp);
  if (unit == TierUnit::Unknown) NoteUnknownUnit(run, m_tiers, tier);
  if (!work.HasCondition && unit != TierUnit::Unknown) {
    // A later tier of the other unit works against the value in this unit.
    work.HasCondition = true;
    work.Condition = unit == TierUnit::Money ? work.Area.Money : work.Area.Quantity;
  }
  goods.Value = unit == TierUnit::Money ? goods.Money : goods.Count;
  if (!FreeFromTier(run, tier, goods, work)) return;
  if (work.Condition > 0) {
    for (const PluAddAction& lower : TiersBehind(m_tiers, tier)) {
      if (SharesGoods(lower, tier)) FreeFromTier(run, lower, goods, work);
    }
  }
  if (unit == TierUnit::Money) UseAreaByMoney(run, work);
  if (unit == TierUnit::Quantity) UseAreaByQuantity(run, work);
}

/// The goods need not lie in the condition area. Only their code counts: no tier names a class.
ProMzFree::GiftGoods ProMzFree::FindGiftGoods(const RuleRun& run, const PluAddAction& tier) {
  GiftGoods goods;
  for (SalePlu& line : run.Lines()) {
    if (!Same(line.PluCode, tier.PluCode)) continue;
    goods.Price = Quotient(line.Total, line.PluCount);
    goods.Lines.push_back(&line);
    goods.Count += run.OpenCount(line);
    goods.Money += run.OpenMoney(line);
  }
  return goods;
}

/// Notes that the goods which a tier gives are not there, or taken.
void ProMzFree::NoteMissing(const RuleRun& run, const PluAddAction& tier, const GiftGoods& goods) const {
  if (run.Told() == nullptr) return;
  Telling telling = run.Note(Reason::GoodsMissing);
  telling.On(goods.Lines)
      .Goods(tier.PluCode)
      .Row(tier.SerialNo)
      .Tier(&tier - m_tiers.data())
      .Has(Unit::Quantity, goods.Count);
  run.TellTakersOf(goods.Lines, telling);
}

/// Gives a tier's gift out of goods counted in the unit of its threshold, and writes it onto their lines.
///
/// @return false when the tier is not reached or has no goods left; nothing has changed then.
bool ProMzFree::FreeFromTier(RuleRun& run, const PluAddAction& tier, GiftGoods& goods, Work& work) const {
  if (tier.BaseConNum > work.Condition) {
    NoteBelow(run, m_tiers, tier, ToldUnit(tier), work.Condition, &work.Area.Lines);
    return false;
  }
  if (goods.Value == 0) {
    NoteMissing(run, tier, goods);
    return false;
  }
  const std::optional<TierGift> gift = GiftAtThreshold(tier, goods.Value, goods.Price);
  if (!gift) {
    NoteUnknownUnit(run, m_tiers, tier);
    return true;
  }

  const double limit = goods.Value > gift->Limit ? gift->Limit : goods.Value;
  goods.Value -= gift->Amount;
  work.Condition -= tier.BaseConNum;
  double amount = gift->Amount;
  FreeRepeated(CountSteps(tier, work.Condition), StepSizeOf(tier), gift->StepGift, limit, goods.Value, work.Condition,
               amount);

  const bool countsQuantity = UnitOf(tier.BaseConTp) == TierUnit::Quantity;
  const double money = countsQuantity ? amount * goods.Price : amount;
  // Further steps counted in money raise the money given and not the quantity.
  const double quantity = countsQuantity ? amount : gift->Quantity;
  work.Given += money;
  if (!(money > 0)) run.Note(Reason::GivesNothing).Tier(&tier - m_tiers.data()).Has(Unit::Money, 0.0);
  WriteGift(run, goods.Lines, quantity, money);
  return true;
}

void ProMzFree::WriteGift(RuleRun& run, const LinePtrs& lines, double quantity, double money) {
  for (SalePlu* line : lines) {
    if (!(money > 0)) return;
    const bool leavesQuantity = quantity > line->PluCount;
    const bool leavesMoney = money > line->Total;
    const Award award{leavesQuantity ? line->PluCount : quantity, leavesMoney ? line->Total : money};
    quantity = leavesQuantity ? quantity - award.Quantity : 0;
    money = leavesMoney ? money - award.Money : 0;
    line->DisNum = award.Quantity;
    run.Give(*line, award, Rows::Results);
  }
}

void ProMzFree::UseAreaByMoney(const RuleRun& run, Work& work) {
  work.Base = 0;
  for (SalePlu* line : LastToFirst(work.Area.Lines)) {
    work.Base += run.OpenMoney(*line);
    line->DisNum = line->PluCount;
  }
}

/// Moves what this tier used up of the condition into the lines' `DisNum`.
void ProMzFree::UseAreaByQuantity(const RuleRun& run, Work& work) {
  work.Base = 0;
  if (work.Area.Lines.empty()) {
    work.Carried = -work.Condition;
    return;
  }
  double open = 0;
  for (const SalePlu* line : LastToFirst(work.Area.Lines)) open += run.OpenCount(*line);
  const double excess = open - work.Carried - work.Condition;
  work.Carried += excess;
  TakeQuantity(run, work.Area.Lines, excess);
  for (const SalePlu* line : work.Area.Lines) work.Base += line->DisNum * line->FinalPrice;
}

/// Lets the lines take the quantity, from the first on.
void ProMzFree::TakeQuantity(const RuleRun& run, const LinePtrs& lines, double excess) {
  for (SalePlu* line : lines) {
    if (!(excess > 0)) return;
    const double difference = run.OpenCount(*line) - line->DisNum;
    if (difference == 0) continue;
    excess -= difference;
    // The line that takes the rest loses the quantity that it already had; that is the contract.
    line->DisNum = excess >= 0 ? line->DisNum + difference : difference + excess;
  }
}

void FreeRepeated(std::int32_t count, double step, double stepGift, double limit, double& goodsValue,
                  double& conditionValue, double& given) {
  if (ReachesLimit(given, limit)) {
    given = limit;
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
        std::min({left, goods.EvenRoundsAbove(stepGift), condition.EvenRounds(), EvenRoundsBelowLimit(sum, limit)}));
    goods.Add(rounds);
    condition.Add(rounds);
    sum.Add(rounds);
    left -= rounds;
    goodsValue = goods.Value();
    conditionValue = condition.Value();
    given = ReachesLimit(sum.Value(), limit) ? limit : sum.Value();
    if (ReachesLimit(given, limit)) return;
  }
}

}  // namespace Corvane
