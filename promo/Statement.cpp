#include "promo/Statement.h"

#include <string>

#include "base/Numbers.h"
#include "engine/Log.h"

namespace Corvane {

SqlText RowsOfLine(const QnPosDBPro& db, const SalePlu& line) {
  return Statement(db, " and ((PluCode=", Quoted{line.PluCode}, " and PluType='PLU') or (PluCode=", Quoted{line.CAT},
                   " and PluType='CAT') or (PluCode=", Quoted{line.BRD}, " and PluType='BRD'))");
}

void LogUnusableSaleCount(Text billNo, std::int32_t serialNo) { LogUnusableSaleCount(billNo, FormatI(serialNo)); }

void LogUnusableSaleCount(Text billNo, const std::string& row) {
  Log(Join("SaleCount小于1，该行不参与计算，促销单号：", billNo, "，行号：", row));
}

}  // namespace Corvane
