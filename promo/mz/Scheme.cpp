#include "promo/mz/Scheme.h"

#include <QSqlQuery>
#include <cstdint>

#include "promo/mz/TierColumns.h"
#include "promo/mz/TierQuery.h"

namespace Corvane {

bool LoadScheme(QnPosDBPro& db, Text billNo, const QString& sql, std::vector<PluAddAction>& tiers, QString& error) {
  QSqlQuery query;
  if (!OpenTiers(db, sql, query, error)) return false;
  ReadRows(query, kGoodsTierColumns, [&](PluAddAction& tier) {
    tier.BillNo = billNo;
    tier.Index = static_cast<std::int32_t>(tiers.size());
    tiers.push_back(tier);
  });
  return true;
}

}  // namespace Corvane
