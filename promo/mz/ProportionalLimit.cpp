#include "promo/mz/ProportionalLimit.h"

#include "base/Numbers.h"

namespace Corvane {

namespace {

template <class Step>
void ForEachResult(ProSale& sale, Text billNo, Step step) {
  for (SalePlu& line : sale.Plus) {
    for (ProResult& row : line.ProResults) {
      if (Same(row.ProBillNo, billNo)) step(row);
    }
  }
}

}  // namespace

void LimitInProportion(const ProInfo& rule, ProSale& sale) {
  if (!Same(rule.MaxYhType, LimitKind::kMoney)) return;
  double sum = 0;
  ForEachResult(sale, rule.BillNo, [&](const ProResult& row) { sum += row.DisMoney; });
  if (!(sum - rule.MaxYhValue > 0.01)) return;
  ForEachResult(sale, rule.BillNo,
                [&](ProResult& row) { row.DisMoney = Quotient(row.DisMoney * rule.MaxYhValue, sum); });
}

}  // namespace Corvane
