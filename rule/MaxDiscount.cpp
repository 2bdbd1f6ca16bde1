#include "rule/MaxDiscount.h"

#include <cmath>
#include <cstdint>
#include <vector>

#include "base/Numbers.h"
#include "log/Log.h"
#include "log/LogTexts.h"
#include "rule/ResultRows.h"

namespace Corvane {

namespace {

double SumOfMoney(const std::vector<ProResult*>& rows) {
  double sum = 0;
  for (const ProResult* row : rows) sum += row->DisMoney;
  return sum;
}

void ShrinkTo(double limit, double total, const std::vector<ProResult*>& rows, const ProSale& sale,
              RuleOutcome* outcome) {
  double allocated = 0;
  std::int32_t number = 0;
  for (ProResult* row : rows) {
    Log(LogText::kRowNumber, FormatI(++number));
    if (row == rows.back()) {
      Log(LogText::kLastRow);
      Log(LogText::kAllocated, FormatG6(allocated));
      Log(LogText::kMoneyLimit, FormatG6(limit));
      SetRowMoney(outcome, sale.Plus, *row, limit - allocated, Change::Limit);
      return;
    }
    SetRowMoney(outcome, sale.Plus, *row, RoundMoney(Quotient(row->DisMoney * limit, total)), Change::Limit);
    allocated += row->DisMoney;
    Log(LogText::kAllocated, FormatG6(allocated));
  }
}

}  // namespace

void LimitByMaxDiscount(const ProInfo& rule, ProSale& sale, LimitLog log, RuleOutcome* outcome) {
  if (!Same(rule.MaxYhType, LimitKind::kMoney)) return;
  if (log == LimitLog::Announced) Log(LogText::kLimitedByMoney);
  const std::vector<ProResult*> rows = ResultsOfRule(sale.Plus, rule.BillNo);
  const double total = SumOfMoney(rows);
  Log(LogText::kRowsOfRule, FormatI(static_cast<std::int32_t>(rows.size())));
  if (!(std::fabs(total - rule.MaxYhValue) > 0.01) || !(total > rule.MaxYhValue)) return;
  Note(outcome, Reason::LimitedByMoney).Has(Unit::Money, total).Needs(rule.MaxYhValue);
  ShrinkTo(rule.MaxYhValue, total, rows, sale, outcome);
}

void LimitInProportion(const ProInfo& rule, ProSale& sale, RuleOutcome* outcome) {
  if (!Same(rule.MaxYhType, LimitKind::kMoney)) return;
  const std::vector<ProResult*> rows = ResultsOfRule(sale.Plus, rule.BillNo);
  const double sum = SumOfMoney(rows);
  if (!(sum - rule.MaxYhValue > 0.01)) return;
  Note(outcome, Reason::LimitedByMoney).Has(Unit::Money, sum).Needs(rule.MaxYhValue);
  for (ProResult* row : rows) {
    SetRowMoney(outcome, sale.Plus, *row, Quotient(row->DisMoney * rule.MaxYhValue, sum), Change::Limit);
  }
}

}  // namespace Corvane
