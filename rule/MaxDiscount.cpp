#include "rule/MaxDiscount.h"

#include <cmath>
#include <cstdint>
#include <vector>

#include "base/Numbers.h"
#include "engine/Log.h"

namespace Corvane {

namespace {

/// The rule's result rows over the sale's lines, lines and rows first to last.
std::vector<ProResult*> RowsOfRule(Text billNo, ProSale& sale) {
  std::vector<ProResult*> rows;
  for (SalePlu& line : sale.Plus) {
    for (ProResult& row : line.ProResults) {
      if (Same(row.ProBillNo, billNo)) rows.push_back(&row);
    }
  }
  return rows;
}

void ShrinkTo(double ceiling, double total, const std::vector<ProResult*>& rows) {
  double allocated = 0;
  std::int32_t number = 0;
  for (ProResult* row : rows) {
    Log(Join("ProNumsT为：", FormatI(++number)));
    if (row == rows.back()) {
      Log("ProNumsT=ProNums");
      Log(Join("allocated=", FormatG6(allocated)));
      Log(Join("proInfo.MaxYhValue=", FormatG6(ceiling)));
      row->DisMoney = ceiling - allocated;
      return;
    }
    row->DisMoney = RoundMoney(Quotient(row->DisMoney * ceiling, total));
    allocated += row->DisMoney;
    Log(Join("allocated=", FormatG6(allocated)));
  }
}

}  // namespace

void LimitByMaxDiscount(const ProInfo& rule, ProSale& sale, LimitLog log) {
  if (!Same(rule.MaxYhType, LimitKind::kMoney)) return;
  if (log == LimitLog::Announced) Log("促销单按照最大优惠额限制");
  const std::vector<ProResult*> rows = RowsOfRule(rule.BillNo, sale);
  double total = 0;
  for (const ProResult* row : rows) total += row->DisMoney;
  Log(Join("ProNums= ", FormatI(static_cast<std::int32_t>(rows.size()))));
  if (!(std::fabs(total - rule.MaxYhValue) > 0.01) || !(total > rule.MaxYhValue)) return;
  ShrinkTo(rule.MaxYhValue, total, rows);
}

}  // namespace Corvane
