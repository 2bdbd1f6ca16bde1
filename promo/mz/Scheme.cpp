#include "promo/mz/Scheme.h"

#include <QSqlQuery>
#include <cstdint>

#include "db/RowFields.h"
#include "promo/mz/TierQuery.h"

namespace Corvane {

namespace {

/// `PluType` is no column: a tier keeps the record's "PLU".
using Column = FromColumn<PluAddAction>;
constexpr RowField<PluAddAction> kColumns[] = {
    {"SerialNo", Column::Integer<&PluAddAction::SerialNo>},
    {"PluCode", Column::KeptText<&PluAddAction::PluCode>},
    {"BaseConType", Column::KeptText<&PluAddAction::BaseConTp>},
    {"BaseConNum", Column::Double<&PluAddAction::BaseConNum>},
    {"BaseDscType", Column::KeptText<&PluAddAction::BaseDscTp>},
    {"BaseDscNum", Column::Double<&PluAddAction::BaseDscNum>},
    {"AddConNum", Column::Double<&PluAddAction::AddConNum>},
    {"AddDscNum", Column::Double<&PluAddAction::AddDscNum>},
    {"SaleMaxIn", Column::Double<&PluAddAction::SaleMaxIn>},
    {"DscPrice", Column::Double<&PluAddAction::DscPrice>},
};

}  // namespace

bool LoadScheme(QnPosDBPro& db, Text billNo, const QString& sql, std::vector<PluAddAction>& tiers, QString& error) {
  QSqlQuery query;
  if (!OpenTiers(db, sql, query, error)) return false;
  ReadRows(query, kColumns, [&](PluAddAction& tier) {
    tier.BillNo = billNo;
    tier.Index = static_cast<std::int32_t>(tiers.size());
    tiers.push_back(tier);
  });
  return true;
}

}  // namespace Corvane
