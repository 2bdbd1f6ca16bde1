#ifndef QNCORVANE_PROMO_DETAILQUERY_H
#define QNCORVANE_PROMO_DETAILQUERY_H

#include <QSqlQuery>
#include <QString>

#include "base/Text.h"
#include "db/QnPosDBPro.h"

namespace Corvane {

/// What a failed statement puts in front of the database's own text.
constexpr Text kQueryFailed = "数据库查询失败";

/// Runs a SELECT of a rule's loader on an open connection.
///
/// @param error out: on failure the failure text and behind it what the database says.
bool OpenDetail(QnPosDBPro& db, const QString& sql, QSqlQuery& query, QString& error, Text failure = kQueryFailed);

}  // namespace Corvane

#endif
