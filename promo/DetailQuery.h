#ifndef QNCORVANE_PROMO_DETAILQUERY_H
#define QNCORVANE_PROMO_DETAILQUERY_H

#include <QSqlQuery>
#include <QString>
#include <cstddef>

#include "base/Text.h"
#include "db/QnPosDBPro.h"
#include "db/RowFields.h"
#include "db/SqlText.h"

namespace Corvane {

/// What a failed statement puts in front of the database's own text.
constexpr Text kQueryFailed = "数据库查询失败";

/// Runs a SELECT on an open connection and hands its rows over, one record each, when all of them are there.
///
/// @param error out: on failure what the database says.
/// @return false when the statement failed or its rows broke off; `take` has seen none of them then.
template <class Record, std::size_t Size, class Taker>
bool SelectRows(QnPosDBPro& db, const SqlText& sql, const RowField<Record> (&fields)[Size], QString& error,
                Taker take) {
  QSqlQuery query;
  return db.openRecordset(sql.ToString(), query, error) && ReadRows(db, query, fields, error, take);
}

/// SelectRows for a rule's loader. @param error out: on failure the failure text, and behind it what the database says.
template <class Record, std::size_t Size, class Taker>
bool LoadDetail(QnPosDBPro& db, const SqlText& sql, const RowField<Record> (&fields)[Size], QString& error, Taker take,
                Text failure = kQueryFailed) {
  if (SelectRows(db, sql, fields, error, take)) return true;
  error.prepend(QString::fromUtf8(failure));
  return false;
}

}  // namespace Corvane

#endif
