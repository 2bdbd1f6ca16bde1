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

void ShrinkTo(double limit, double total, const std::vector<ProResult*>& rows) {
  double allocated = 0;
  std::int32_t number = 0;
  for (ProResult* row : rows) {
    Log(LogText::kRowNumber, FormatI(++number));
    if (row == rows.back()) {
      Log(LogText::kLastRow);
      Log(LogText::kAllocated, FormatG6(allocated));
      Log(LogText::kMoneyLimit, FormatG6(limit));
      row->DisMoney = limit - allocated;
      return;
    }
    row->DisMoney = RoundMoney(Quotient(row->DisMoney * limit, total));
    allocated += row->DisMoney;
    Log(LogText::kAllocated, FormatG6(allocated));
  }
}

}  // namespace

void LimitByMaxDiscount(const ProInfo& rule, ProSale& sale, LimitLog log) {
  if (!Same(rule.MaxYhType, LimitKind::kMoney)) return;
  if (log == LimitLog::Announced) Log(LogText::kLimitedByMoney);
  const std::vector<ProResult*> rows = ResultsOfRule(sale.Plus, rule.BillNo);
  const double total = SumOfMoney(rows);
  Log(LogText::kRowsOfRule, FormatI(static_cast<std::int32_t>(rows.size())));
  if (!(std::fabs(total - rule.MaxYhValue) > 0.01) || !(total > rule.MaxYhValue)) return;
  ShrinkTo(rule.MaxYhValue, total, rows);
}

void LimitInProportion(const ProInfo& rule, ProSale& sale) {
  if (!Same(rule.MaxYhType, LimitKind::kMoney)) return;
  const std::vector<ProResult*> rows = ResultsOfRule(sale.Plus, rule.BillNo);
  const double sum = SumOfMoney(rows);
  if (!(sum - rule.MaxYhValue > 0.01)) return;
  for (ProResult* row : rows) row->DisMoney = Quotient(row->DisMoney * rule.MaxYhValue, sum);
}

}  // namespace Corvane
