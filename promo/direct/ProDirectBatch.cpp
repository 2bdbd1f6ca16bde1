#include "promo/direct/ProDirectBatch.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "base/Walk.h"
#include "log/Log.h"
#include "log/LogTexts.h"
#include "rule/RuleReader.h"

namespace Corvane {

namespace {

template <class Predicate>
LinePtrs LinesWhere(const LinePtrs& lines, Predicate predicate) {
  LinePtrs found;
  std::copy_if(lines.begin(), lines.end(), std::back_inserter(found),
               [&](const SalePlu* line) { return predicate(*line); });
  return found;
}

void NoteBelowMinimum(const RuleRun& run, const PluCondition& condition, const LinePtrs& lines, double sum) {
  if (run.Told() == nullptr || lines.empty()) return;
  Telling telling = run.Note(Reason::BelowMinimum);
  telling.On(lines).Row(condition.SerialNo).Has(Unit::Quantity, sum).Needs(condition.MinNum);
  run.TellTakersOf(lines, telling);
}

}  // namespace

void ProDirectBatch::InitRule(Text xml) { ReadRule(xml, *this); }

void ProDirectBatch::CalcRule(RuleRun& run) {
  Log(LogText::kBatchLimitKind, Info.MaxYhType);
  if (!run.MeetsConditions()) return;
  m_detail.LoadRuleDetail(m_db, run);  // nothing changes the lines meanwhile
  const SplitRows rows(m_detail.Conditions());
  const LinePtrs single = SelectSingleLines(run);
  if (single.empty()) return;
  const LinePtrs allowed = SelectOutsideLines(rows.PluNot, single, RowsBy::Goods);
  NoteExcluded(run, single, allowed);
  for (const SalePlu* line : allowed) NoteUnnamed(run, rows, *line);
  if (allowed.empty()) return;
  Discounts given;
  DiscountByGoods(run, rows.PluIn, allowed, given);
  // What a goods row names, a class row doesn't see.
  DiscountByClass(run, rows, SelectOutsideLines(rows.PluIn, allowed, RowsBy::Goods), given);
  run.Limit();
}

void ProDirectBatch::DiscountByGoods(RuleRun& run, const RowPtrs& rows, const LinePtrs& pool, Discounts& given) const {
  for (const ProDetailKey* row : LastToFirst(rows)) {
    const LinePtrs lines = LinesWhere(pool, [&](const SalePlu& line) { return Same(line.PluCode, row->PluCode); });
    DiscountByRow(run, *row, lines, Counts::OpenQuantity, 0, given);
  }
}

void ProDirectBatch::DiscountByClass(RuleRun& run, const SplitRows& rows, const LinePtrs& pool,
                                     Discounts& given) const {
  const LinePtrs allowed = SelectOutsideLines(rows.ClassNot, pool, RowsBy::Class);
  NoteExcluded(run, pool, allowed);
  if (allowed.empty()) return;
  for (const ProDetailKey* row : LastToFirst(rows.ClassIn)) {
    const auto inClass = [&](const SalePlu& line) { return MatchClassRow(*row, line); };
    double applied = 0;  // what earlier rows of this rule took in the class
    for (const Discounted& earlier : given) {
      if (inClass(*earlier.Line)) applied += earlier.Quantity;
    }
    DiscountByRow(run, *row, LinesWhere(allowed, inClass), Counts::WholeLine, applied, given);
  }
}

/// A line with nothing open is passed over. A class row counts the other lines whole toward the minimum, however little
/// of them is open.
void ProDirectBatch::DiscountByRow(RuleRun& run, const ProDetailKey& row, const LinePtrs& lines, Counts counts,
                                   double applied, Discounts& given) const {
  const PluCondition& condition = m_detail.ConditionOf(row);
  Allowance allowance{condition.LimitNum, applied};
  const auto discount = [&](SalePlu& line) {
    const std::optional<double> taken = run.Discount(line, m_detail.ActionOf(row), allowance);
    if (taken && *taken > 0) given.push_back({&line, *taken});
    return taken.has_value();
  };
  double sum = 0;
  bool minimumReached = false;
  LinePtrs waiting;
  for (SalePlu* line : lines) {
    const double open = run.OpenCount(*line);
    if (open <= 0) {
      run.NoteNothingOpen(*line);
      continue;
    }
    sum += counts == Counts::WholeLine ? line->PluCount : open;
    if (sum < condition.MinNum) {
      waiting.push_back(line);
      continue;
    }
    minimumReached = true;
    if (!discount(*line)) break;
  }
  if (!minimumReached) {
    NoteBelowMinimum(run, condition, lines, sum);
    return;
  }
  for (SalePlu* line : waiting) discount(*line);
}

}  // namespace Corvane
