#include "promo/DetailQuery.h"

namespace Corvane {

bool OpenDetail(QnPosDBPro& db, const QString& sql, QSqlQuery& query, QString& error, Text failure) {
  if (db.openRecordset(sql, query, error)) return true;
  error.prepend(QString::fromUtf8(failure));
  return false;
}

}  // namespace Corvane
