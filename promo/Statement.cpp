#include "promo/Statement.h"

#include <string>

#include "base/Numbers.h"
#include "engine/Log.h"

namespace Corvane {

std::string RowsOfLine(const SalePlu& line) {
  return Join(" and ((PluCode='", line.PluCode, "' and PluType='PLU') or (PluCode='", line.CAT,
              "' and PluType='CAT') or (PluCode='", line.BRD, "' and PluType='BRD'))");
}

void LogUnusableSaleCount(Text billNo, std::int32_t serialNo) { LogUnusableSaleCount(billNo, FormatI(serialNo)); }

void LogUnusableSaleCount(Text billNo, const std::string& row) {
  Log(Join("SaleCount小于1，该行不参与计算，促销单号：", billNo, "，行号：", row));
}

}  // namespace Corvane
