#include "promo/direct/ProDirectBatch.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "base/Walk.h"
#include "engine/Log.h"
#include "rule/EligibleQuantity.h"
#include "rule/LineDiscount.h"
#include "rule/MaxDiscount.h"
#include "rule/RuleReader.h"

namespace Corvane {

namespace {

/// A goods row counts what is open of a line toward the minimum; a line with nothing open is passed over.
std::optional<double> CountOpenQuantity(const SalePlu& /*line*/, double open) {
  if (open <= 0) return std::nullopt;
  return open;
}

/// A class row counts the whole line toward the minimum, however little of it is open.
std::optional<double> CountWholeLine(const SalePlu& line, double open) {
  if (open <= 0) return std::nullopt;
  return line.PluCount;
}

template <class Predicate>
LinePtrs LinesWhere(const LinePtrs& lines, Predicate predicate) {
  LinePtrs found;
  std::copy_if(lines.begin(), lines.end(), std::back_inserter(found),
               [&](const SalePlu* line) { return predicate(*line); });
  return found;
}

}  // namespace

void ProDirectBatch::InitRule(Text xml) { ReadRule(xml, *this); }

void ProDirectBatch::CalcRule(ProSale& sale, std::vector<SalePlu>& changed) {
  Log(Join("促销单限制类型：", Info.MaxYhType));
  if (!CheckBaseCondition(sale)) return;
  m_detail.LoadRuleDetail(m_db, Info.BillNo, sale.Plus);  // nothing changes the lines meanwhile
  const DirectWork work{sale, changed, MemberText(sale)};
  const SplitRows rows(m_detail.Conditions());
  const LinePtrs single = SelectSingleLines(sale.Plus);
  if (single.empty()) return;
  const LinePtrs allowed = SelectOutsideLines(rows.PluNot, single, "PLU");
  if (allowed.empty()) return;
  DiscountByGoods(rows.PluIn, allowed, work);
  // What a goods row names, a class row doesn't see.
  DiscountByClass(rows, SelectOutsideLines(rows.PluIn, allowed, "PLU"), work);
  LimitByMaxDiscount(Info, sale);
}

void ProDirectBatch::DiscountByGoods(const RowPtrs& rows, const LinePtrs& pool, const DirectWork& work) {
  for (const ProDetailKey* row : LastToFirst(rows)) {
    const LinePtrs lines = LinesWhere(pool, [&](const SalePlu& line) { return Same(line.PluCode, row->PluCode); });
    DiscountByRow(*row, lines, 0, CountOpenQuantity, work);
  }
}

void ProDirectBatch::DiscountByClass(const SplitRows& rows, const LinePtrs& pool, const DirectWork& work) {
  const LinePtrs allowed = SelectOutsideLines(rows.ClassNot, pool, "");
  if (allowed.empty()) return;
  for (const ProDetailKey* row : LastToFirst(rows.ClassIn)) {
    const auto inClass = [&](const SalePlu& line) { return MatchClassRow(*row, line); };
    double applied = 0;  // what earlier rows of this rule took in the class
    for (const SalePlu& line : work.Changed) {
      if (inClass(line)) applied += line.DisNum;
    }
    DiscountByRow(*row, LinesWhere(allowed, inClass), applied, CountWholeLine, work);
  }
}

template <class CountedQuantity>
void ProDirectBatch::DiscountByRow(const ProDetailKey& row, const LinePtrs& lines, double applied,
                                   CountedQuantity counted, const DirectWork& work) {
  const PluCondition& condition = m_detail.ConditionOf(row);
  const auto discount = [&](SalePlu& line) {
    return ApplyLineDiscount(m_detail.ActionOf(row), condition.LimitNum, line, applied, Info, work.Changed,
                             work.VipType, work.Sale.Plus);
  };
  double sum = 0;
  bool minimumReached = false;
  LinePtrs waiting;
  for (SalePlu* line : lines) {
    const std::optional<double> quantity = counted(*line, GetCalcCount(*line, Info, work.Sale.Plus));
    if (!quantity) continue;
    sum += *quantity;
    if (sum < condition.MinNum) {
      waiting.push_back(line);
      continue;
    }
    minimumReached = true;
    if (!discount(*line)) break;
  }
  if (!minimumReached) return;
  for (SalePlu* line : waiting) discount(*line);
}

}  // namespace Corvane
