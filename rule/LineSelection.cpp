#include "rule/LineSelection.h"

#include <algorithm>
#include <cmath>

namespace Corvane {

namespace {

bool IsAbout(double value, double wanted) { return std::fabs(value - wanted) <= 0.00001; }

/// Whether an "IN" row takes the line. A line that already has a result of the rule is taken by none.
bool IsTaken(const RuleRun& run, const SplitRows& rows, const SalePlu& line) {
  if (run.HasActedOn(line)) {
    run.Note(Reason::AlreadyOnLine).On(line);
    return false;
  }
  const auto namesLine = [&](const ProDetailKey* row) { return RowNamesLine(*row, line); };
  const bool isNamed = std::any_of(rows.PluIn.begin(), rows.PluIn.end(), namesLine) ||
                       std::any_of(rows.ClassIn.begin(), rows.ClassIn.end(), namesLine);
  if (!isNamed) run.Note(Reason::NotNamed).On(line);
  return isNamed;
}

}  // namespace

LinePtrs PointersTo(std::vector<SalePlu>& lines) {
  LinePtrs pointers;
  pointers.reserve(lines.size());
  for (SalePlu& line : lines) pointers.push_back(&line);
  return pointers;
}

bool LineHasClass(const SalePlu& line, Text classWord, Text code) {
  return std::any_of(line.LineClasses.begin(), line.LineClasses.end(),
                     [&](const auto& pair) { return Same(pair.first, classWord) && Same(pair.second, code); });
}

bool RowNamesLine(const ProDetailKey& row, const SalePlu& line) {
  return NamesGoods(row) ? Same(row.PluCode, line.PluCode) : LineHasClass(line, row.PluType, row.PluCode);
}

void SplitRows::Add(const ProDetailKey& row) {
  const bool goods = NamesGoods(row);
  if (Same(row.Contain, RangeWord::kIn)) (goods ? PluIn : ClassIn).push_back(&row);
  if (Same(row.Contain, RangeWord::kNot)) (goods ? PluNot : ClassNot).push_back(&row);
}

LinePtrs SelectSingleLines(std::vector<SalePlu>& lines) {
  LinePtrs single;
  for (SalePlu& line : lines) {
    if (IsAbout(line.PackCnt, 1) || IsAbout(line.PackCnt, 0)) single.push_back(&line);
  }
  return single;
}

LinePtrs SelectSingleLines(const RuleRun& run) {
  LinePtrs single = SelectSingleLines(run.Lines());
  if (run.Told() == nullptr) return single;
  for (const SalePlu& line : run.Lines()) {
    if (std::find(single.begin(), single.end(), &line) != single.end()) continue;
    run.Note(Reason::Package).On(line).Has(Unit::Count, line.PackCnt).Needs(1);
  }
  return single;
}

void NoteExcluded(const RuleRun& run, const LinePtrs& before, const LinePtrs& behind) {
  if (run.Told() == nullptr) return;
  for (const SalePlu* line : before) {
    if (std::find(behind.begin(), behind.end(), line) == behind.end()) run.Note(Reason::Excluded).On(*line);
  }
}

LinePtrs SelectOutsideLines(const RowPtrs& rows, const LinePtrs& lines, RowsBy by) {
  LinePtrs outside;
  for (SalePlu* line : lines) {
    const bool named = std::any_of(rows.rbegin(), rows.rend(), [&](const ProDetailKey* row) {
      return by == RowsBy::Goods ? Same(row->PluCode, line->PluCode) : LineHasClass(*line, row->PluType, row->PluCode);
    });
    if (!named) outside.push_back(line);
  }
  return outside;
}

RuleLines SelectRuleLines(const RuleRun& run, const SplitRows& rows) {
  return SelectRuleLinePtrs(run, rows, PointersTo(run.Lines()));
}

RuleLines SelectRuleLinePtrs(const RuleRun& run, const SplitRows& rows, const LinePtrs& lines) {
  const LinePtrs withoutGoods = SelectOutsideLines(rows.PluNot, lines, RowsBy::Goods);
  const LinePtrs withoutClasses = SelectOutsideLines(rows.ClassNot, withoutGoods, RowsBy::Class);
  NoteExcluded(run, lines, withoutClasses);
  RuleLines taken;
  for (SalePlu* line : withoutClasses) {
    if (!IsTaken(run, rows, *line)) continue;
    const double quantity = run.OpenCount(*line);
    taken.Quantity += quantity;
    const bool byQuantity = run.Type().Has(Fact::CountsAtFinalPrice) && quantity != 0;
    const double money = byQuantity ? quantity * line->FinalPrice : run.OpenMoney(*line);
    taken.Money += money;
    if (!(money > 0)) run.NoteNoMoneyOpen(*line);
    // The running sum decides, not this line's share: a line with nothing left is listed behind one that had money.
    if (taken.Money > 0) taken.Lines.push_back(line);
  }
  return taken;
}

}  // namespace Corvane
