#include "promo/direct/ProDirectOs.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "promo/Statement.h"
#include "rule/EligibleQuantity.h"
#include "rule/LineDiscount.h"
#include "rule/MaxDiscount.h"
#include "rule/RuleReader.h"

namespace Corvane {

namespace {

/// What the rule's own family and "DZ" rules have taken on a line.
struct GivenBack {
  double Quantity = 0;
  double Money = 0;
};

GivenBack GivenBackOn(const SalePlu& line, const ProInfo& rule) {
  GivenBack sum;
  for (const ProResult& row : line.ProResults) {
    if (!IsGivenBack(row, rule)) continue;
    sum.Quantity += row.DisNum;
    sum.Money += row.DisMoney;
  }
  return sum;
}

/// What one unit gains. @return nothing when the price is no gain.
struct UnitGain {
  double Money = 0;
  bool ChangesLine = true;  ///< false for a price kind that this type doesn't know: only the row is written
};

std::optional<UnitGain> GainByAction(const PluAction& action, const SalePlu& line, double base) {
  if (Same(action.DisType, PriceKind::kPrice)) {
    if (ReachesPrice(action.DisPrice, base)) return std::nullopt;
    return UnitGain{base - action.DisPrice};
  }
  if (Same(action.DisType, PriceKind::kRate)) {
    // The rate is one of the line's price, not of the base.
    const double kept = action.DisRate * line.Price / 100;
    if (ReachesPrice(kept, base)) return std::nullopt;
    return UnitGain{base - kept};
  }
  return UnitGain{base - action.DisPrice, false};
}

}  // namespace

void ProDirectOs::InitRule(Text xml) { ReadRule(xml, *this); }

void ProDirectOs::CalcRule(ProSale& sale, std::vector<SalePlu>& changed) {
  if (!CheckBaseCondition(sale)) return;
  m_detail.LoadRuleDetail(m_db, Info.BillNo, sale.Plus);  // nothing changes the lines meanwhile
  const DirectWork work{sale, changed, MemberText(sale)};
  const LinePtrs pool = SelectRowLines(SelectSingleLines(sale.Plus), sale);
  if (pool.empty()) return;
  for (const PluCondition& condition : LastToFirst(m_detail.Conditions())) {
    if (condition.MinNum >= 1) {
      DiscountByRow(condition, pool, work);
    } else {
      LogUnusableSaleCount(Info.BillNo, condition.SerialNo);
    }
  }
  LimitByMaxDiscount(Info, sale);
}

/// The lines that a row names by goods code and that have a quantity open. Every row counts as including, and a class
/// row's code is compared with the goods code like any other.
LinePtrs ProDirectOs::SelectRowLines(const LinePtrs& lines, const ProSale& sale) const {
  LinePtrs pool;
  for (SalePlu* line : lines) {
    for (const PluCondition& row : LastToFirst(m_detail.Conditions())) {
      if (!Same(row.PluCode, line->PluCode) || GetCalcCount(*line, Info, sale.Plus) <= 0) continue;
      pool.push_back(line);
      break;
    }
  }
  return pool;
}

void ProDirectOs::DiscountByRow(const PluCondition& condition, const LinePtrs& pool, const DirectWork& work) {
  SetCount count;
  for (SalePlu* line : pool) {
    if (!Same(line->PluCode, condition.PluCode)) continue;
    if (GetCalcCount(*line, Info, work.Sale.Plus) <= 0) continue;
    count.Sum += line->PluCount;
    const bool limited = Same(Info.MaxYhType, LimitKind::kQuantity);
    const double left = limited ? GetRuleLeftCount(Info.BillNo, Info.MaxYhValue, work.Sale.Plus) : 0;
    if (condition.MinNum > count.Sum) {
      count.Carry += line->PluCount;
      continue;
    }
    if (!ApplyOsDiscount(condition, *line, count, left, work)) return;
  }
}

/// @param left sets that the rule's limit by quantity still allows.
/// @return false when the row's price is no gain on this line.
bool ProDirectOs::ApplyOsDiscount(const PluCondition& condition, SalePlu& line, SetCount& count, double left,
                                  const DirectWork& work) const {
  const PluAction& action = m_detail.ActionOf(condition);
  const GivenBack earlier = GivenBackOn(line, Info);
  const double units = count.Carry + line.PluCount - earlier.Quantity;
  double sets = std::floor(Quotient(units, condition.MinNum));
  if (Same(Info.MaxYhType, LimitKind::kQuantity) && left < sets) {
    sets = left;
    count.Carry = units - condition.MinNum * left;
  } else {
    count.Carry = TruncToInt32(units) % TruncToInt32(condition.MinNum);
  }
  if (PrintsAsZero(sets)) return true;

  const double base = RoundMoney(Quotient(earlier.Money + line.Total, line.PluCount));
  const std::optional<UnitGain> gain = GainByAction(action, line, base);
  if (!gain) return false;
  const double money = gain->Money * sets;
  if (gain->ChangesLine) {
    line.Total -= money;
    line.FinalPrice = Quotient(line.Total, line.PluCount);
    line.DisNum = sets;
    count.Applied += sets;
    work.Changed.push_back(line);
  }
  // Always a row of its own, also where the rule has one on the line.
  ProResult row(Info.BillNo, Info.Primary, Info.ProType, sets, money, action.DisPrice, money);
  row.SetMember(work.VipType);
  WriteResultRow(line, row);
  return true;
}

}  // namespace Corvane
