#ifndef QNCORVANE_PROMO_STATEMENT_H
#define QNCORVANE_PROMO_STATEMENT_H

#include <cstdint>
#include <string>

#include "base/Text.h"
#include "db/QnPosDBPro.h"
#include "db/SqlText.h"
#include "sale/SaleRecords.h"

namespace Corvane {

/// Joins the pieces of a rule loader's statement in the dialect of an open connection: words as literals, values as
/// `Quoted`.
template <class... Piece>
SqlText Statement(const QnPosDBPro& db, const Piece&... pieces) {
  return SqlText(db.Dialect(), pieces...);
}

/// The clause that picks the rows naming a line's goods, its category or its brand.
SqlText RowsOfLine(const QnPosDBPro& db, const SalePlu& line);

/// Logs that a row's piece count is below 1, with which no set can be formed: the row gives nothing.
void LogUnusableSaleCount(Text billNo, std::int32_t serialNo);

/// The same for a row that has no number of its own. @param row tells which one it is.
void LogUnusableSaleCount(Text billNo, const std::string& row);

}  // namespace Corvane

#endif
