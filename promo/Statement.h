#ifndef QNCORVANE_PROMO_STATEMENT_H
#define QNCORVANE_PROMO_STATEMENT_H

#include <QString>

#include "base/Text.h"
#include "sale/SaleRecords.h"

namespace Corvane {

// The statements of the rule loaders are joined as plain text. Nothing is escaped: rule numbers and goods codes are the
// store's own data and are trusted.

/// Joins the pieces of a statement; null pieces are empty.
template <class... Piece>
QString Statement(const Piece&... pieces) {
  const std::string joined = Join(pieces...);
  return QString::fromUtf8(joined.data(), static_cast<int>(joined.size()));
}

/// The clause that picks the rows naming a line's goods, its category or its brand.
std::string RowsOfLine(const SalePlu& line);

/// Logs that a row's piece count is below 1, with which no set can be formed: the row gives nothing.
void LogUnusableSaleCount(Text billNo, std::int32_t serialNo);

/// The same for a row that has no number of its own. @param row tells which one it is.
void LogUnusableSaleCount(Text billNo, const std::string& row);

}  // namespace Corvane

#endif
