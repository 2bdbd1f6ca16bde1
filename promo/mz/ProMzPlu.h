#ifndef QNCORVANE_PROMO_MZ_PROMZPLU_H
#define QNCORVANE_PROMO_MZ_PROMZPLU_H

#include <QString>
#include <cstdint>
#include <vector>

#include "db/QnPosDBPro.h"
#include "rule/LinePtrs.h"
#include "rule/ProBase.h"
#include "rule/RuleRun.h"

namespace Corvane {

/// "MZDP", the single-item giving: who buys so much of some goods gets so much of the same goods free, as a discount on
/// their lines. Each tier names its own goods; what a tier leaves over goes to the lower tiers of the same goods.
/// Packages take no part.
class ProMzPlu : public ProBase {
 public:
  /// @param db copied; all copies share one connection.
  explicit ProMzPlu(const QnPosDBPro& db) : m_db(db) {}

  void InitRule(Text xml);

  /// A failure of the database leaves the sale untouched and is told in the log.
  void CalcRule(RuleRun& run);

 private:
  bool LoadRuleDetail(ProSale& sale, QString& error);
  void CalcTier(RuleRun& run, const PluAddAction& tier, const LinePtrs& singleLines) const;

  std::vector<PluAddAction> m_tiers;  ///< read anew for each sale
  QnPosDBPro m_db;
};

/// Gives the further steps of a tier. Each step takes its size and its gift out of `value`; the gift is at most what is
/// left behind the size, and a step with nothing left gives nothing.
///
/// @param limit   the most that is given; 0 means none. A gift that has reached it before the first step leaves no
/// value.
/// @param value in and out: what is left of the goods.
/// @param given in and out: what is given, in the same unit.
void GiveRepeated(std::int32_t count, double step, double stepGift, double limit, double& value, double& given);

}  // namespace Corvane

#endif
