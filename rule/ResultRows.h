#ifndef QNCORVANE_RULE_RESULTROWS_H
#define QNCORVANE_RULE_RESULTROWS_H

#include <vector>

#include "base/Text.h"
#include "rule/LinePtrs.h"
#include "sale/SaleRecords.h"

namespace Corvane {

// What rules have left on a sale, read. Rows are written by RuleRun alone.

/// The first row of the rule in a list, or null.
const ProResult* FindRow(const std::vector<ProResult>& rows, Text billNo);
ProResult* FindRow(std::vector<ProResult>& rows, Text billNo);

/// The last row of the rule in a list, or null.
ProResult* FindLastRow(std::vector<ProResult>& rows, Text billNo);

/// The line's first result row of the rule, or null.
const ProResult* FindResult(const SalePlu& line, Text billNo);
ProResult* FindResult(SalePlu& line, Text billNo);

/// The rule's result rows over the lines, lines and rows first to last.
std::vector<ProResult*> ResultsOfRule(std::vector<SalePlu>& lines, Text billNo);

/// The quantity that the rule holds over the lines.
double HeldQuantity(const std::vector<SalePlu>& lines, Text billNo);

/// Quantity and money of rows.
struct Taken {
  double Quantity = 0;
  double Money = 0;
};

/// What those of the line's results that the predicate picks have taken.
template <class Predicate>
Taken TakenOn(const SalePlu& line, Predicate picks) {
  Taken taken;
  for (const ProResult& row : line.ProResults) {
    if (!picks(row)) continue;
    taken.Quantity += row.DisNum;
    taken.Money += row.DisMoney;
  }
  return taken;
}

/// What combination rules have taken of the line, whichever they were.
Taken TakenByCombinations(const SalePlu& line);

/// The line's unit price before any combination discount, not rounded.
double UnitBeforeCombinations(const SalePlu& line);

/// The sum of the lines' `Total`, first to last.
double SumOfTotals(const std::vector<SalePlu>& lines);
double SumOfTotals(const LinePtrs& lines);

}  // namespace Corvane

#endif
