#include "promo/mz/ProMzPlu.h"

#include <algorithm>
#include <optional>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "log/Log.h"
#include "log/LogTexts.h"
#include "promo/DetailTable.h"
#include "promo/mz/TierColumns.h"
#include "promo/mz/TierGift.h"
#include "promo/mz/Tiers.h"
#include "rule/LineSelection.h"
#include "rule/RuleReader.h"
#include "rule/Spreading.h"

namespace Corvane {

namespace {

bool SameTier(const PluAddAction& left, const PluAddAction& right) {
  return left.SerialNo == right.SerialNo && Same(left.PluCode, right.PluCode) && Same(left.DataId, right.DataId);
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
  switch (UnitOf(tier.BaseConTp)) {
    case TierUnit::Money:
      return chosen.Money;
    case TierUnit::Quantity:
      return chosen.Quantity;
    case TierUnit::Unknown:
      break;
  }
  return 0;
}

/// The chosen goods of a tier on their way through it and the lower tiers of the same goods.
struct Giving {
  const LinePtrs& Lines;  ///< that hold the goods
  double Price = 0;       ///< mean unit price of the goods
  double Value = 0;       ///< what is left of them, in the unit of the threshold
  double Given = 0;       ///< money given
};

/// Gives a tier's gift. @return false when the tier is not reached; nothing has changed then.
bool GiveFromTier(const RuleRun& run, const std::vector<PluAddAction>& tiers, const PluAddAction& tier,
                  Giving& giving) {
  const TierUnit unit = UnitOf(tier.BaseConTp);
  if (unit == TierUnit::Unknown) NoteUnknownUnit(run, tiers, tier);
  if (tier.BaseConNum > giving.Value) {
    NoteBelow(run, tiers, tier, ToldUnit(tier), giving.Value, &giving.Lines);
    return false;
  }
  if (unit == TierUnit::Unknown) return true;
  // The threshold itself is paid for: the gift comes out of what lies above it.
  const double rest = giving.Value - tier.BaseConNum;
  double amount = 0;
  if (const std::optional<TierGift> gift = GiftAtThreshold(tier, rest, giving.Price)) {
    double left = rest - gift->Amount;
    amount = gift->Amount;
    GiveRepeated(CountSteps(tier, left), StepSizeOf(tier), gift->StepGift, gift->Limit, left, amount);
    giving.Value = left;
  } else {
    NoteUnknownUnit(run, tiers, tier);
  }
  if (amount == 0) {
    run.Note(Reason::NothingAboveThreshold)
        .On(giving.Lines)
        .Row(tier.SerialNo)
        .Tier(&tier - tiers.data())
        .Has(ToldUnit(tier), rest);
  }
  giving.Given += unit == TierUnit::Quantity ? amount * giving.Price : amount;
  return true;
}

void TakeFromLastLine(const RuleRun& run, const PluAddAction& tier, SalePlu& line, double left) {
  const TierUnit unit = UnitOf(tier.BaseConTp);
  if (unit == TierUnit::Quantity) {
    const double open = run.OpenCount(line);
    line.DisNum = line.PluCount > left ? open - left : line.PluCount;
  } else if (unit == TierUnit::Money) {
    line.DisNum = line.PluCount;
  }
}

/// Sets `DisNum`, the quantity that the rule takes, on the chosen lines. What it didn't use up stays on the last line.
///
/// @param left what is left of the value.
/// @return the money of what is taken, at `FinalPrice`.
double TakeFromLines(const RuleRun& run, const PluAddAction& tier, const LinePtrs& lines, double left) {
  double base = 0;
  for (SalePlu* line : LastToFirst(lines)) {
    if (line == lines.back()) {
      TakeFromLastLine(run, tier, *line, left);
    } else {
      line->DisNum = line->PluCount;
    }
    base += line->DisNum * line->FinalPrice;
  }
  return base;
}

}  // namespace

void ProMzPlu::InitRule(Text xml) { ReadRule(xml, *this); }

bool ProMzPlu::LoadRuleDetail(ProSale& sale, QString& error) {
  DetailTables tables(m_db, Info.BillNo, error);
  return tables.Open() &&
         tables.ReadOfLines(sale,
                            tables.Select("select SerialNo,PluCode,PluType,BaseConType,BaseConNum,BaseDscType,"
                                          "BaseDscNum,AddConNum,AddDscNum,SaleMaxIn,DataId from tProMzPluAct "
                                          "where BillNo="),
                            kGoodsTierColumns, m_tiers, SameTier);
}

void ProMzPlu::CalcRule(RuleRun& run) {
  if (!run.MayActOnSale()) return;
  m_tiers.clear();
  QString error;
  // Nothing changes the lines while rows are read, so the loader takes no copy of them.
  if (!LoadRuleDetail(run.Sale(), error)) {
    Log(QString::fromUtf8(LogText::kGoodsFailed) + error);
    run.RefuseUnreadable(error);
    return;
  }
  if (m_tiers.empty()) run.Note(Reason::NotNamed).On(run.Lines());
  SortTiersDown(m_tiers);
  const LinePtrs singleLines = SelectSingleLines(run);
  // Every tier has its turn, also one that a higher tier has already left goods to.
  for (const PluAddAction& tier : m_tiers) {
    // A sale of packages only ends the rule here, its limit included.
    if (singleLines.empty()) return;
    CalcTier(run, tier, singleLines);
  }
  run.Limit();
}

void ProMzPlu::CalcTier(RuleRun& run, const PluAddAction& tier, const LinePtrs& singleLines) const {
  const std::vector<PluCondition> condition = ConditionOf(tier);
  // Nothing changes the lines while they are chosen, so their quantities are counted on the sale's own.
  const RuleLines chosen = SelectRuleLinePtrs(run, SplitRows(condition), singleLines);
  Giving giving{chosen.Lines, Quotient(chosen.Money, chosen.Quantity), ValueFor(tier, chosen)};
  if (!GiveFromTier(run, m_tiers, tier, giving)) return;
  if (giving.Value > 0) {
    // Whether a lower tier is reached doesn't matter to the one behind it.
    for (const PluAddAction& lower : TiersBehind(m_tiers, tier)) {
      if (SharesGoods(lower, tier)) GiveFromTier(run, m_tiers, lower, giving);
    }
  }
  const double base = TakeFromLines(run, tier, chosen.Lines, giving.Value);
  SpreadOptions options;
  options.Part = PartBy::DisNum;
  SpreadOverLinePtrs(run, chosen.Lines, giving.Given, base, options);
}

void GiveRepeated(std::int32_t count, double step, double stepGift, double limit, double& value, double& given) {
  if (ReachesLimit(given, limit)) {
    given = limit;
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
        RoundsAtOnce(std::min({left, rest.EvenRoundsAbove(step + stepGift), EvenRoundsBelowLimit(sum, limit)}));
    rest.Add(rounds);
    sum.Add(rounds);
    left -= rounds;
    value = rest.Value();
    given = ReachesLimit(sum.Value(), limit) ? limit : sum.Value();
    if (ReachesLimit(given, limit)) return;
  }
}

}  // namespace Corvane
