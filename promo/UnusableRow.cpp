#include "promo/UnusableRow.h"

#include "base/Numbers.h"
#include "log/Log.h"
#include "log/LogTexts.h"

namespace Corvane {

void LogUnusableSaleCount(Text billNo, std::int32_t serialNo) { LogUnusableSaleCount(billNo, FormatI(serialNo)); }

void LogUnusableSaleCount(Text billNo, const std::string& row) {
  Log(LogText::kSaleCountBelowOne, billNo, LogText::kRowOf, row);
}

}  // namespace Corvane
