#ifndef QNCORVANE_PROMO_MZ_PROMZGIFT_H
#define QNCORVANE_PROMO_MZ_PROMZGIFT_H

#include <QString>
#include <vector>

#include "db/QnPosDBPro.h"
#include "rule/LineSelection.h"
#include "rule/ProBase.h"
#include "rule/RuleRun.h"
#include "sale/ProSale.h"

namespace Corvane {

/// "MZZP", the full-amount gift, and "MZHG", the exchange purchase: a sale that brings enough is offered goods. The
/// lines stay as they are; the offers go out with the sale, and the cashier's picks come back (promo/mz/GiftChoice.h).
/// The two types differ in nothing but the data: goods offered at a price above 0 are bought, others are free.
class ProMzGift : public ProBase {
 public:
  /// @param db copied; all copies share one connection.
  explicit ProMzGift(const QnPosDBPro& db) : m_db(db) {}

  void InitRule(Text xml);

  /// Leaves one group of offers in the sale for each unit of threshold ("SUM", "NUM") that was reached. A failure of
  /// the database leaves none and is told in the log.
  void CalcRule(RuleRun& run);

 private:
  bool LoadRuleDetail(ProSale& sale, QString& error);
  void OfferTiers(const RuleRun& run, const RuleLines& area) const;
  SaleProGift OffersFrom(const PluAddAction& tier, double value) const;

  std::vector<PluCondition> m_conditions;  ///< read anew for each sale
  std::vector<PluAddAction> m_tiers;       ///< read anew for each sale
  QnPosDBPro m_db;
};

}  // namespace Corvane

#endif
