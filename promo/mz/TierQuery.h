#ifndef QNCORVANE_PROMO_MZ_TIERQUERY_H
#define QNCORVANE_PROMO_MZ_TIERQUERY_H

#include <QSqlQuery>
#include <QString>

#include "db/QnPosDBPro.h"

namespace Corvane {

/// Opens the result set of a tier table. Its failure is told otherwise than that of the other tables: the database's
/// text goes to the log as it stands, and nothing is put in front of it.
///
/// @param error out: on failure what the database says.
bool OpenTiers(QnPosDBPro& db, const QString& sql, QSqlQuery& query, QString& error);

}  // namespace Corvane

#endif
