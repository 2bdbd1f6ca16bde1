#ifndef QNCORVANE_PROMO_MZ_SCHEME_H
#define QNCORVANE_PROMO_MZ_SCHEME_H

#include <QString>
#include <vector>

#include "base/Text.h"
#include "db/QnPosDBPro.h"
#include "db/SqlText.h"
#include "sale/SaleRecords.h"

namespace Corvane {

/// Appends the tiers of a rule from the table `tProMzScheme`, in the order returned. A tier names its goods by their
/// code.
///
/// @param sql   the rule type's own selection; a column that it doesn't name reads as 0 or empty.
/// @param error out: on failure the database's text, which the log then has too.
bool LoadScheme(QnPosDBPro& db, Text billNo, const SqlText& sql, std::vector<PluAddAction>& tiers, QString& error);

}  // namespace Corvane

#endif
