#include "promo/direct/ProDirectLimit.h"

#include <algorithm>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "log/Log.h"
#include "log/LogTexts.h"
#include "rule/ActionPrice.h"
#include "rule/ResultRows.h"
#include "rule/RuleReader.h"
#include "rule/RuleType.h"

namespace Corvane {

void ProDirectLimit::InitRule(Text xml) { ReadRule(xml, *this); }

void ProDirectLimit::CalcRule(RuleRun& run) {
  m_detail.Clear();
  if (!run.MeetsConditions()) return;
  m_detail.LoadRuleDetail(m_db, Info.BillNo, run.Sale());  // nothing changes the lines meanwhile
  for (SalePlu& line : run.Lines()) CalcRuleOnLine(run, line);
  // This type enforces its limit without announcing it in the log.
  run.Limit(LimitLog::Unannounced);
}

void ProDirectLimit::CalcRuleOnLine(RuleRun& run, SalePlu& line) const {
  Log(LogText::kLimitStarts, Info.BillNo);
  Log(LogText::kBeforeOpenQuantity);
  const double open = run.OpenCount(line);
  Log(LogText::kBehindOpenQuantity);
  if (open <= 0) return;
  const SplitRows rows(m_detail.Conditions());
  if (LineMatchesRows(rows.PluNot, line, RowsBy::Goods)) return;
  if (!DiscountByGoods(run, rows.PluIn, line)) return;
  if (LineMatchesRows(rows.ClassNot, line, RowsBy::Class)) return;
  DiscountByClass(run, rows.ClassIn, line);
}

/// @return false when the quantities on earlier lines make no sense, which ends the rule for this line.
bool ProDirectLimit::DiscountByGoods(RuleRun& run, const RowPtrs& rows, SalePlu& line) const {
  for (const ProDetailKey* row : LastToFirst(rows)) {
    // A set price never applies to a package; rates and reductions do. What a receipt would show decides.
    const bool isSetPrice = Same(m_detail.ActionOf(*row).DisType, PriceKind::kPrice);
    if (isSetPrice && !PrintsAsOne(line.PackCnt)) continue;
    if (!Same(row->PluCode, line.PluCode)) continue;
    const double earlier = GetEarlierCount(run.Lines(), line.PluCode, line.Index - 1);
    if (earlier < 0) return false;
    DiscountByRow(run, *row, earlier, line);
  }
  return true;
}

void ProDirectLimit::DiscountByClass(RuleRun& run, const RowPtrs& rows, SalePlu& line) const {
  // Nothing on earlier lines counts against the limit of a class row.
  constexpr double kNoEarlierCount = 0;
  for (const ProDetailKey* row : LastToFirst(rows)) {
    if (MatchClassRow(*row, line)) DiscountByRow(run, *row, kNoEarlierCount, line);
  }
}

void ProDirectLimit::DiscountByRow(RuleRun& run, const ProDetailKey& row, double earlier, SalePlu& line) const {
  Allowance allowance{m_detail.ConditionOf(row).LimitNum, earlier};
  const bool usedUp = allowance.Limit > 0 && allowance.Limit <= earlier;
  if (!usedUp) run.Discount(line, m_detail.ActionOf(row), allowance);
}

bool LineMatchesRows(const RowPtrs& rows, const SalePlu& line, RowsBy by) {
  return std::any_of(rows.rbegin(), rows.rend(), [&](const ProDetailKey* row) {
    return by == RowsBy::Goods ? Same(row->PluCode, line.PluCode) : MatchClassRow(*row, line);
  });
}

double GetTypeCountOnLine(const SalePlu& line, Text type) {
  const double count = TakenOn(line, [&](const ProResult& row) { return Same(row.ProType, type); }).Quantity;
  return line.ProResults.empty() || (count >= 0 && count <= line.PluCount + kNoise) ? count : -1;
}

double GetEarlierCount(const std::vector<SalePlu>& lines, Text pluCode, std::int32_t lastIndex) {
  double count = 0;
  for (const SalePlu& line : lines) {
    if (line.Index > lastIndex) break;
    if (!Same(line.PluCode, pluCode)) continue;
    const double onLine = GetTypeCountOnLine(line, TypeWord::kLimit);
    if (onLine < 0) return -1;
    count += onLine;
  }
  return count;
}

}  // namespace Corvane
