#ifndef QNCORVANE_PROMO_MZ_TIERQUERY_H
#define QNCORVANE_PROMO_MZ_TIERQUERY_H

#include <QString>
#include <cstddef>

#include "log/Log.h"
#include "promo/DetailQuery.h"

namespace Corvane {

/// SelectRows on a tier table. Its failure is told otherwise than that of the other tables: the database's text goes to
/// the log as it stands, and nothing is put in front of it.
///
/// @param error out: on failure what the database says.
template <class Record, std::size_t Size, class Taker>
bool LoadTierRows(QnPosDBPro& db, const SqlText& sql, const RowField<Record> (&fields)[Size], QString& error,
                  Taker take) {
  if (SelectRows(db, sql, fields, error, take)) return true;
  Log(error);
  return false;
}

}  // namespace Corvane

#endif
