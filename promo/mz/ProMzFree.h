#ifndef QNCORVANE_PROMO_MZ_PROMZFREE_H
#define QNCORVANE_PROMO_MZ_PROMZFREE_H

#include <QString>
#include <cstdint>
#include <vector>

#include "db/QnPosDBPro.h"
#include "rule/LineSelection.h"
#include "rule/ProBase.h"
#include "rule/RuleRun.h"

namespace Corvane {

/// "MZZM", the goods-free rule: when one part of a sale, the condition lines, reaches a threshold, other goods that are
/// on the sale become free or cheaper. Results are written on the lines of the free goods; the same sum is then
/// apportioned over the condition lines.
class ProMzFree : public ProBase {
 public:
  /// @param db copied; all copies share one connection.
  explicit ProMzFree(const QnPosDBPro& db) : m_db(db) {}

  void InitRule(Text xml);

  /// A failure of the database leaves the sale untouched and is told in the log.
  void CalcRule(RuleRun& run);

 private:
  /// The goods on the sale that a tier gives.
  struct GiftGoods {
    LinePtrs Lines;
    double Money = 0;
    double Count = 0;
    double Price = 0;  ///< unit price of the last of the lines
    double Value = 0;  ///< what is left of them, in the unit of the tier's threshold
  };

  /// One calculation of the rule on a sale.
  struct Work {
    RuleLines Area;             ///< the condition lines
    bool HasCondition = false;  ///< the condition value is set once, by the first tier that gets that far
    double Condition = 0;       ///< what is left of the condition, in the unit of the tier that set it
    double Given = 0;           ///< money given, over all tiers
    double Base = 0;            ///< amount over which the money is apportioned
    double Carried = 0;         ///< quantity of the condition lines that earlier tiers used up
  };

  bool LoadRuleDetail(ProSale& sale, QString& error);
  void CalcTier(RuleRun& run, const PluAddAction& tier, Work& work) const;
  static GiftGoods FindGiftGoods(const RuleRun& run, const PluAddAction& tier);
  void NoteMissing(const RuleRun& run, const PluAddAction& tier, const GiftGoods& goods) const;
  bool FreeFromTier(RuleRun& run, const PluAddAction& tier, GiftGoods& goods, Work& work) const;
  static void WriteGift(RuleRun& run, const LinePtrs& lines, double quantity, double money);
  static void UseAreaByMoney(const RuleRun& run, Work& work);
  static void UseAreaByQuantity(const RuleRun& run, Work& work);
  static void TakeQuantity(const RuleRun& run, const LinePtrs& lines, double excess);

  std::vector<PluCondition> m_conditions;  ///< read anew for each sale
  std::vector<PluAddAction> m_tiers;       ///< read anew for each sale
  QnPosDBPro m_db;
};

/// Gives the further steps of a tier. Each takes its gift out of the goods and its size out of the condition; rounds go
/// on after the goods are gone and keep using up the condition.
///
/// @param limit            the most that is given; 0 means none. A gift that has reached it before the first step
/// leaves
///                       no goods.
/// @param goodsValue     in and out: what is left of the goods.
/// @param conditionValue in and out: what is left of the condition.
/// @param given          in and out: what is given, in the unit of the goods value.
void FreeRepeated(std::int32_t count, double step, double stepGift, double limit, double& goodsValue,
                  double& conditionValue, double& given);

}  // namespace Corvane

#endif
