#include "promo/Statement.h"

#include <string>

#include "base/Numbers.h"
#include "log/Log.h"
#include "log/LogTexts.h"

namespace Corvane {

SqlText RowsOfLine(const QnPosDBPro& db, const SalePlu& line) {
  return Statement(db, " and ((PluCode=", Quoted{line.PluCode}, " and PluType='PLU') or (PluCode=", Quoted{line.CAT},
                   " and PluType='CAT') or (PluCode=", Quoted{line.BRD}, " and PluType='BRD'))");
}

void LogUnusableSaleCount(Text billNo, std::int32_t serialNo) { LogUnusableSaleCount(billNo, FormatI(serialNo)); }

void LogUnusableSaleCount(Text billNo, const std::string& row) {
  Log(LogText::kSaleCountBelowOne, billNo, LogText::kRowOf, row);
}

}  // namespace Corvane
