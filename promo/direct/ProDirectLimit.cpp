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
  m_detail.LoadRuleDetail(m_db, run);  // nothing changes the lines meanwhile
  const SplitRows rows(m_detail.Conditions());
  EarlierCounts earlier(run.Lines());
  for (SalePlu& line : run.Lines()) DiscountLine(run, rows, earlier, line);
  // This type enforces its limit without announcing it in the log.
  run.Limit(LimitLog::Unannounced);
}

void ProDirectLimit::CalcRuleOnLine(RuleRun& run, SalePlu& line) const {
  if (m_detail.Conditions().empty()) run.Refuse(Reason::NotPrepared).On(line);
  EarlierCounts earlier(run.Lines());
  DiscountLine(run, SplitRows(m_detail.Conditions()), earlier, line);
}

void ProDirectLimit::DiscountLine(RuleRun& run, const SplitRows& rows, EarlierCounts& earlier, SalePlu& line) const {
  Log(LogText::kLimitStarts, Info.BillNo);
  Log(LogText::kBeforeOpenQuantity);
  const double open = run.OpenCount(line);
  Log(LogText::kBehindOpenQuantity);
  if (open <= 0) {
    if (!NoteUnnamed(run, rows, line)) run.NoteNothingOpen(line);
    return;
  }
  if (LineMatchesRows(rows.PluNot, line, RowsBy::Goods)) {
    run.Note(Reason::Excluded).On(line);
    return;
  }
  NoteUnnamed(run, rows, line);
  if (!DiscountByGoods(run, rows.PluIn, earlier, line)) return;
  if (LineMatchesRows(rows.ClassNot, line, RowsBy::Class)) {
    run.Note(Reason::Excluded).On(line);
    return;
  }
  DiscountByClass(run, rows.ClassIn, line);
}

/// @return false when the quantities on earlier lines make no sense, which ends the rule for this line.
bool ProDirectLimit::DiscountByGoods(RuleRun& run, const RowPtrs& rows, EarlierCounts& earlier, SalePlu& line) const {
  for (const ProDetailKey* row : LastToFirst(rows)) {
    if (!Same(row->PluCode, line.PluCode)) continue;
    // A set price never applies to a package; rates and reductions do. What a receipt would show decides.
    const bool isSetPrice = Same(m_detail.ActionOf(*row).DisType, PriceKind::kPrice);
    if (isSetPrice && !PrintsAsOne(line.PackCnt)) {
      run.Note(Reason::Package).On(line).Row(row->SerialNo).Has(Unit::Count, line.PackCnt).Needs(1);
      continue;
    }
    const double taken = earlier.Before(line);
    if (taken < 0) {
      run.Note(Reason::SenselessQuantity).On(line);
      return false;
    }
    DiscountByRow(run, *row, taken, line);
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
  if (allowance.Limit > 0 && allowance.Limit <= earlier) {
    run.Note(Reason::RowLimitUsedUp).On(line).Row(row.SerialNo).Has(Unit::Quantity, earlier).Needs(allowance.Limit);
    return;
  }
  run.Discount(line, m_detail.ActionOf(row), allowance);
}

double GetTypeCountOnLine(const SalePlu& line, Text type) {
  const double count = TakenOn(line, [&](const ProResult& row) { return Same(row.ProType, type); }).Quantity;
  return line.ProResults.empty() || (count >= 0 && count <= line.PluCount + kNoise) ? count : -1;
}

double EarlierCounts::Before(const SalePlu& line) {
  const std::size_t place = std::min(static_cast<std::size_t>(line.Index), m_lines.size());
  while (m_next < place) Count(m_lines[m_next++]);
  const auto known = m_byGoods.find(OrEmpty(line.PluCode));
  return known == m_byGoods.end() ? 0 : known->second;
}

void EarlierCounts::Count(const SalePlu& line) {
  double& sum = m_byGoods[OrEmpty(line.PluCode)];
  if (sum < 0) return;
  const double onLine = GetTypeCountOnLine(line, TypeWord::kLimit);
  sum = onLine < 0 ? -1 : sum + onLine;
}

}  // namespace Corvane
