#include "promo/mz/ProMzPlu.h"

#include <algorithm>
#include <optional>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "engine/Log.h"
#include "promo/DetailQuery.h"
#include "promo/Statement.h"
#include "promo/mz/TierColumns.h"
#include "promo/mz/TierGift.h"
#include "promo/mz/Tiers.h"
#include "rule/EligibleQuantity.h"
#include "rule/MaxDiscount.h"
#include "rule/RuleReader.h"
#include "rule/Spreading.h"

namespace Corvane {

namespace {

SqlText SelectOfLine(const QnPosDBPro& db, Text billNo, const SalePlu& line) {
  return Statement(
      db,
      "select SerialNo,PluCode,PluType,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum,AddDscNum,SaleMaxIn,"
      "DataId from tProMzPluAct where BillNo=",
      Quoted{billNo}, RowsOfLine(db, line));
}

/// The goods of a tier as the one condition that chooses its lines.
std::vector<PluCondition> ConditionOf(const PluAddAction& tier) {
  PluCondition condition;
  condition.BillNo = tier.BillNo;
  condition.PluCode = tier.PluCode;
  condition.PluType = tier.PluType;
  condition.Contain = tier.Contain;
  return {condition};
}

/// What the chosen lines bring, in the unit of the tier's threshold. An unknown unit brings nothing.
double ValueFor(const PluAddAction& tier, const RuleLines& chosen) {
  if (Same(tier.BaseConTp, TierUnit::kMoney)) return chosen.Money;
  if (Same(tier.BaseConTp, TierUnit::kQuantity)) return chosen.Quantity;
  return 0;
}

}  // namespace

void ProMzPlu::InitRule(Text xml) { ReadRule(xml, *this); }

bool ProMzPlu::LoadRuleDetail(Text billNo, const std::vector<SalePlu>& lines, QString& error) {
  return m_db.EnsureOpen(error) && std::all_of(lines.begin(), lines.end(), [&](const SalePlu& line) {
           return LoadTiersOfLine(billNo, line, error);
         });
}

bool ProMzPlu::LoadTiersOfLine(Text billNo, const SalePlu& line, QString& error) {
  return LoadDetail(m_db, SelectOfLine(m_db, billNo, line), kGoodsTierColumns, error, [&](PluAddAction& tier) {
    tier.BillNo = billNo;
    tier.Index = static_cast<std::int32_t>(m_tiers.size());
    if (!Holds(tier)) m_tiers.push_back(tier);
  });
}

bool ProMzPlu::Holds(const PluAddAction& tier) const {
  return std::any_of(m_tiers.begin(), m_tiers.end(), [&](const PluAddAction& held) {
    return held.SerialNo == tier.SerialNo && Same(held.PluCode, tier.PluCode) && Same(held.DataId, tier.DataId);
  });
}

void ProMzPlu::CalcRule(ProSale& sale) {
  if (!sale.CanApplyToSale(Info.Primary, Info.BillNo) || !CheckBaseCondition(sale)) return;
  m_tiers.clear();
  QString error;
  // Nothing changes the lines while rows are read, so the loader takes no copy of them.
  if (!LoadRuleDetail(Info.BillNo, sale.Plus, error)) {
    Log(QStringLiteral("计算单品赠送促销失败") + error);
    return;
  }
  SortTiersDown(m_tiers);
  const LinePtrs singleLines = SelectSingleLines(sale.Plus);
  // Every tier has its turn, also one that a higher tier has already left goods to.
  for (const PluAddAction& tier : m_tiers) {
    // A sale of packages only ends the rule here, its ceiling included.
    if (singleLines.empty()) return;
    CalcTier(tier, singleLines, sale);
  }
  LimitByMaxDiscount(Info, sale);
}

void ProMzPlu::CalcTier(const PluAddAction& tier, const LinePtrs& singleLines, ProSale& sale) const {
  const std::vector<PluCondition> condition = ConditionOf(tier);
  // Nothing changes the lines while they are chosen, so their quantities are counted on the sale's own.
  const RuleLines chosen = SelectRuleLinePtrs(Info, SplitRows(condition), singleLines, sale.Plus);
  const double meanPrice = Quotient(chosen.Money, chosen.Quantity);
  double value = ValueFor(tier, chosen);
  double gift = 0;
  if (!GiveFromTier(tier, meanPrice, value, gift)) return;
  if (value > 0) {
    // Whether a lower tier is reached doesn't matter to the one behind it.
    for (const PluAddAction& lower : TiersBehind(m_tiers, tier)) {
      if (SharesGoods(lower, tier)) GiveFromTier(lower, meanPrice, value, gift);
    }
  }
  const double base = TakeFromLines(tier, chosen.Lines, value, sale);
  SpreadOptions options;
  options.ByDisNum = true;
  options.VipType = MemberText(sale);
  SpreadOverLinePtrs(Info, chosen.Lines, gift, base, options);
}

/// Gives a tier's gift out of a value counted in the unit of its threshold.
///
/// @param value in and out: what is left of the chosen goods.
/// @param given in and out: the money given.
/// @return false when the tier is not reached; nothing has changed then.
bool ProMzPlu::GiveFromTier(const PluAddAction& tier, double price, double& value, double& given) const {
  if (tier.BaseConNum > value) return false;
  const bool countsQuantity = Same(tier.BaseConTp, TierUnit::kQuantity);
  if (!countsQuantity && !Same(tier.BaseConTp, TierUnit::kMoney)) return true;
  // The threshold itself is paid for: the gift comes out of what lies above it.
  const double rest = value - tier.BaseConNum;
  double amount = 0;
  if (const std::optional<TierGift> gift = GiftAtThreshold(tier, rest, price)) {
    double left = rest - gift->Amount;
    amount = gift->Amount;
    GiveRepeated(CountSteps(tier, left), StepSizeOf(tier), gift->StepGift, gift->Limit, left, amount);
    value = left;
  }
  given += countsQuantity ? amount * price : amount;
  return true;
}

/// Sets `DisNum`, the quantity that the rule takes, on the chosen lines. What it didn't use up stays on the last line.
///
/// @param left what is left of the value.
/// @return the money of what is taken, at `FinalPrice`.
double ProMzPlu::TakeFromLines(const PluAddAction& tier, const LinePtrs& lines, double left,
                               const ProSale& sale) const {
  double base = 0;
  for (SalePlu* line : LastToFirst(lines)) {
    if (line == lines.back()) {
      TakeFromLastLine(tier, *line, left, sale);
    } else {
      line->DisNum = line->PluCount;
    }
    base += line->DisNum * line->FinalPrice;
  }
  return base;
}

void ProMzPlu::TakeFromLastLine(const PluAddAction& tier, SalePlu& line, double left, const ProSale& sale) const {
  if (Same(tier.BaseConTp, TierUnit::kQuantity)) {
    const double open = GetCalcCount(line, Info, sale.Plus);
    line.DisNum = line.PluCount > left ? open - left : line.PluCount;
  } else if (Same(tier.BaseConTp, TierUnit::kMoney)) {
    line.DisNum = line.PluCount;
  }
}

void GiveRepeated(std::int32_t count, double step, double stepGift, double cap, double& value, double& given) {
  if (ReachesCap(given, cap)) {
    given = cap;
    value = 0;
    return;
  }
  for (std::int64_t left = count; left > 0;) {
    const double behindStep = value - step;
    const double gift = behindStep > stepGift ? stepGift : behindStep;
    // A round without a gift changes nothing, and so would all rounds to come.
    if (gift <= 0) return;
    RepeatedSum rest(value, -(step + gift));
    RepeatedSum sum(given, gift);
    const std::int64_t rounds =
        RoundsAtOnce(std::min({left, rest.EvenRoundsAbove(step + stepGift), EvenRoundsBelowCap(sum, cap)}));
    rest.Add(rounds);
    sum.Add(rounds);
    left -= rounds;
    value = rest.Value();
    given = ReachesCap(sum.Value(), cap) ? cap : sum.Value();
    if (ReachesCap(given, cap)) return;
  }
}

}  // namespace Corvane
