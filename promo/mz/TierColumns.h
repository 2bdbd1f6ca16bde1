#ifndef QNCORVANE_PROMO_MZ_TIERCOLUMNS_H
#define QNCORVANE_PROMO_MZ_TIERCOLUMNS_H

#include "db/RowFields.h"
#include "sale/SaleRecords.h"

namespace Corvane {

/// The columns of the tier tables whose tiers name goods, `tProMzScheme` and `tProMzPluAct`. A selection without a
/// column leaves its field as it is: without `PluType` a tier names its goods by their code.
constexpr RowField<PluAddAction> kGoodsTierColumns[] = {
    {"SerialNo", FromColumn<PluAddAction>::Integer<&PluAddAction::SerialNo>},
    {"PluCode", FromColumn<PluAddAction>::KeptText<&PluAddAction::PluCode>},
    {"PluType", FromColumn<PluAddAction>::KeptText<&PluAddAction::PluType>},
    {"BaseConType", FromColumn<PluAddAction>::KeptText<&PluAddAction::BaseConTp>},
    {"BaseConNum", FromColumn<PluAddAction>::Double<&PluAddAction::BaseConNum>},
    {"BaseDscType", FromColumn<PluAddAction>::KeptText<&PluAddAction::BaseDscTp>},
    {"BaseDscNum", FromColumn<PluAddAction>::Double<&PluAddAction::BaseDscNum>},
    {"AddConNum", FromColumn<PluAddAction>::Double<&PluAddAction::AddConNum>},
    {"AddDscNum", FromColumn<PluAddAction>::Double<&PluAddAction::AddDscNum>},
    {"SaleMaxIn", FromColumn<PluAddAction>::Double<&PluAddAction::SaleMaxIn>},
    {"DscPrice", FromColumn<PluAddAction>::Double<&PluAddAction::DscPrice>},
    {"DataId", FromColumn<PluAddAction>::KeptText<&PluAddAction::DataId>},
};

}  // namespace Corvane

#endif
