#include "rule/LineSelection.h"

#include <algorithm>
#include <cmath>

#include "base/Walk.h"
#include "rule/EligibleQuantity.h"

namespace Corvane {

namespace {

bool IsAbout(double value, double wanted) { return std::fabs(value - wanted) <= 0.00001; }

/// Whether an "IN" row takes the line. A line that already has a result of the rule is taken by none.
bool IsTaken(const ProInfo& rule, const SplitRows& rows, const SalePlu& line) {
  if (FindResult(line, rule.BillNo) != nullptr) return false;
  const auto namesLine = [&](const ProDetailKey* row) { return RowNamesLine(*row, line); };
  return std::any_of(rows.PluIn.begin(), rows.PluIn.end(), namesLine) ||
         std::any_of(rows.ClassIn.begin(), rows.ClassIn.end(), namesLine);
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
  if (Same(row.Contain, "IN")) (goods ? PluIn : ClassIn).push_back(&row);
  if (Same(row.Contain, "NOT")) (goods ? PluNot : ClassNot).push_back(&row);
}

LinePtrs SelectSingleLines(std::vector<SalePlu>& lines) {
  LinePtrs single;
  for (SalePlu& line : lines) {
    if (IsAbout(line.PackCnt, 1) || IsAbout(line.PackCnt, 0)) single.push_back(&line);
  }
  return single;
}

LinePtrs SelectOutsideLines(const RowPtrs& rows, const LinePtrs& lines, Text word) {
  const bool byGoods = Same(word, "PLU");
  LinePtrs outside;
  for (SalePlu* line : lines) {
    const bool named = std::any_of(rows.rbegin(), rows.rend(), [&](const ProDetailKey* row) {
      return byGoods ? Same(row->PluCode, line->PluCode) : LineHasClass(*line, row->PluType, row->PluCode);
    });
    if (!named) outside.push_back(line);
  }
  return outside;
}

RuleLines SelectRuleLines(const ProInfo& rule, const SplitRows& rows, std::vector<SalePlu>& lines) {
  return SelectRuleLinePtrs(rule, rows, PointersTo(lines), lines);
}

RuleLines SelectRuleLinePtrs(const ProInfo& rule, const SplitRows& rows, const LinePtrs& lines,
                             const std::vector<SalePlu>& allLines) {
  const LinePtrs withoutGoods = SelectOutsideLines(rows.PluNot, lines, "PLU");
  const LinePtrs withoutClasses = SelectOutsideLines(rows.ClassNot, withoutGoods, "");
  RuleLines taken;
  for (SalePlu* line : withoutClasses) {
    if (!IsTaken(rule, rows, *line)) continue;
    const double quantity = GetCalcCount(*line, rule, allLines);
    taken.Quantity += quantity;
    const bool byQuantity = Same(rule.ProType, "MZMJ") && quantity != 0;
    taken.Money += byQuantity ? quantity * line->FinalPrice : GetLineLeftTotal(*line, rule.Primary, rule.ProType);
    // The running sum decides, not this line's share: a line with nothing left is listed behind one that had money.
    if (taken.Money > 0) taken.Lines.push_back(line);
  }
  return taken;
}

const ProResult* FindResult(const SalePlu& line, Text billNo) {
  const auto found = std::find_if(line.ProResults.begin(), line.ProResults.end(),
                                  [&](const ProResult& row) { return Same(row.ProBillNo, billNo); });
  return found == line.ProResults.end() ? nullptr : &*found;
}

ProResult* FindResult(SalePlu& line, Text billNo) { return FindRow(line.ProResults, billNo); }

ProResult* FindRow(std::vector<ProResult>& rows, Text billNo) {
  const auto found =
      std::find_if(rows.begin(), rows.end(), [&](const ProResult& row) { return Same(row.ProBillNo, billNo); });
  return found == rows.end() ? nullptr : &*found;
}

}  // namespace Corvane
