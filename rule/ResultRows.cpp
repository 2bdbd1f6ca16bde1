#include "rule/ResultRows.h"

#include <algorithm>

#include "base/Numbers.h"
#include "rule/RuleType.h"

namespace Corvane {

namespace {

template <class Iterator>
Iterator Find(Iterator begin, Iterator end, Text billNo) {
  return std::find_if(begin, end, [&](const ProResult& row) { return Same(row.ProBillNo, billNo); });
}

}  // namespace

const ProResult* FindRow(const std::vector<ProResult>& rows, Text billNo) {
  const auto found = Find(rows.begin(), rows.end(), billNo);
  return found == rows.end() ? nullptr : &*found;
}

ProResult* FindRow(std::vector<ProResult>& rows, Text billNo) {
  const auto found = Find(rows.begin(), rows.end(), billNo);
  return found == rows.end() ? nullptr : &*found;
}

ProResult* FindLastRow(std::vector<ProResult>& rows, Text billNo) {
  const auto found = Find(rows.rbegin(), rows.rend(), billNo);
  return found == rows.rend() ? nullptr : &*found;
}

const ProResult* FindResult(const SalePlu& line, Text billNo) { return FindRow(line.ProResults, billNo); }

ProResult* FindResult(SalePlu& line, Text billNo) { return FindRow(line.ProResults, billNo); }

std::vector<ProResult*> ResultsOfRule(std::vector<SalePlu>& lines, Text billNo) {
  std::vector<ProResult*> rows;
  for (SalePlu& line : lines) {
    for (ProResult& row : line.ProResults) {
      if (Same(row.ProBillNo, billNo)) rows.push_back(&row);
    }
  }
  return rows;
}

double HeldQuantity(const std::vector<SalePlu>& lines, Text billNo) {
  double held = 0;
  for (const SalePlu& line : lines) {
    for (const ProResult& row : line.ProResults) {
      if (Same(row.ProBillNo, billNo)) held += row.DisNum;
    }
  }
  return held;
}

Taken TakenByCombinations(const SalePlu& line) {
  return TakenOn(line, [](const ProResult& row) { return InFamily(row.ProType, Family::kCombination); });
}

double UnitBeforeCombinations(const SalePlu& line) {
  return Quotient(TakenByCombinations(line).Money + line.Total, line.PluCount);
}

double SumOfTotals(const std::vector<SalePlu>& lines) {
  double total = 0;
  for (const SalePlu& line : lines) total += line.Total;
  return total;
}

double SumOfTotals(const LinePtrs& lines) {
  double total = 0;
  for (const SalePlu* line : lines) total += line->Total;
  return total;
}

}  // namespace Corvane
