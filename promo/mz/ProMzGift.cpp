#include "promo/mz/ProMzGift.h"

#include <algorithm>

#include "log/Log.h"
#include "log/LogTexts.h"
#include "promo/DetailTable.h"
#include "promo/mz/ConditionRows.h"
#include "promo/mz/TierColumns.h"
#include "promo/mz/Tiers.h"
#include "rule/RuleReader.h"

namespace Corvane {

void ProMzGift::InitRule(Text xml) { ReadRule(xml, *this); }

bool ProMzGift::LoadRuleDetail(ProSale& sale, QString& error) {
  DetailTables tables(m_db, Info.BillNo, error);
  return tables.Open() && LoadRuleConditions(tables, sale, m_conditions) &&
         tables.ReadTiers(tables.Select("select SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum,"
                                        "AddConNum,AddDscNum,SaleMaxIn,DscPrice from tProMzScheme where BillNo="),
                          kGoodsTierColumns, m_tiers);
}

void ProMzGift::CalcRule(RuleRun& run) {
  Log(LogText::kGiftStarts);
  if (!run.MayActOnSale()) return;
  m_conditions.clear();
  m_tiers.clear();
  QString error;
  // Nothing changes the lines while rows are read, so the loader takes no copy of them.
  if (!LoadRuleDetail(run.Sale(), error)) {
    Log(QString::fromUtf8(LogText::kGiftFailed) + error);
    run.RefuseUnreadable(error);
    return;
  }
  if (m_tiers.empty()) run.Refuse(Reason::NoTiers);
  Log(LogText::kGiftRowsRead);
  SortTiersDown(m_tiers);
  OfferTiers(run, SelectConditionLines(run, m_conditions));
  run.LimitProportionally();
}

void ProMzGift::OfferTiers(const RuleRun& run, const RuleLines& area) const {
  // The value lives across the walk: a tier that counts in an unknown unit goes by the value of the tier before it.
  double value = 0;
  std::vector<Text> offeredUnits;
  for (const PluAddAction& tier : m_tiers) {
    const bool isOffered =
        std::any_of(offeredUnits.begin(), offeredUnits.end(), [&](Text unit) { return Same(unit, tier.BaseConTp); });
    if (isOffered) continue;
    if (UnitOf(tier.BaseConTp) == TierUnit::Money) value = area.Money;
    if (UnitOf(tier.BaseConTp) == TierUnit::Quantity) value = area.Quantity;
    if (UnitOf(tier.BaseConTp) == TierUnit::Unknown) NoteUnknownUnit(run, m_tiers, tier);
    if (value < tier.BaseConNum) {
      NoteBelow(run, m_tiers, tier, ToldUnit(tier), value, &area.Lines);
      continue;
    }
    run.Sale().ProGifts.push_back(OffersFrom(tier, value));
    if (run.Told() != nullptr) ++run.Told()->Offers;
    offeredUnits.push_back(tier.BaseConTp);
  }
}

/// The offers that a reached tier opens: its own and those of all lower tiers of its unit, which are reached with it.
SaleProGift ProMzGift::OffersFrom(const PluAddAction& tier, double value) const {
  SaleProGift offers;
  offers.Total = value;
  offers.LeftTotal = value;
  offers.ProBillNo = Info.BillNo;
  offers.Rows.push_back(tier);
  for (const PluAddAction& lower : TiersBehind(m_tiers, tier)) {
    if (Same(lower.BaseConTp, tier.BaseConTp)) offers.Rows.push_back(lower);
  }
  return offers;
}

}  // namespace Corvane
