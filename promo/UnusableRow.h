#ifndef QNCORVANE_PROMO_UNUSABLEROW_H
#define QNCORVANE_PROMO_UNUSABLEROW_H

#include <cstdint>
#include <string>

#include "base/Text.h"

namespace Corvane {

/// Logs that a row's piece count is below 1, with which no set can be formed: the row gives nothing.
void LogUnusableSaleCount(Text billNo, std::int32_t serialNo);

/// The same for a row that has no number of its own. @param row tells which one it is.
void LogUnusableSaleCount(Text billNo, const std::string& row);

}  // namespace Corvane

#endif
