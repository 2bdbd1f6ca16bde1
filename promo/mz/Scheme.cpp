#include "promo/mz/Scheme.h"

#include <cstdint>

#include "promo/mz/TierColumns.h"
#include "promo/mz/TierQuery.h"

namespace Corvane {

bool LoadScheme(QnPosDBPro& db, Text billNo, const SqlText& sql, std::vector<PluAddAction>& tiers, QString& error) {
  return LoadTierRows(db, sql, kGoodsTierColumns, error, [&](PluAddAction& tier) {
    tier.BillNo = billNo;
    tier.Index = static_cast<std::int32_t>(tiers.size());
    tiers.push_back(tier);
  });
}

}  // namespace Corvane
