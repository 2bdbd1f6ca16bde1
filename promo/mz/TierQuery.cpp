#include "promo/mz/TierQuery.h"

#include "engine/Log.h"

namespace Corvane {

bool OpenTiers(QnPosDBPro& db, const QString& sql, QSqlQuery& query, QString& error) {
  if (db.openRecordset(sql, query, error)) return true;
  Log(error);
  return false;
}

}  // namespace Corvane
