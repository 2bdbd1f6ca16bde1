#ifndef QNCORVANE_PROMO_COMB_PROCOMBCONDITION_H
#define QNCORVANE_PROMO_COMB_PROCOMBCONDITION_H

#include <QString>
#include <cstdint>
#include <vector>

#include "db/QnPosDBPro.h"
#include "promo/comb/CombDetail.h"
#include "rule/LineSelection.h"
#include "rule/ProBase.h"
#include "rule/RuleRun.h"

namespace Corvane {

/// What a rule asks of all its conditions together, from `tProPrjCombCtrl`.
struct CombCondCtrl {
  std::int32_t SerialNo = 0;
  double PriceTotal = 0;  ///< least money; 0 or less is no demand
  double CountTotal = 0;  ///< least pieces; 0 or less is no demand
};

/// "ZHTJ", the combination by condition: so many pieces of these goods, so much money on those, and the rule's action
/// rows set the price of listed goods line by line, with no notion of sets. Packages count toward the conditions but
/// are never discounted.
class ProCombCondition : public ProBase {
 public:
  /// @param db copied; all copies share one connection.
  explicit ProCombCondition(const QnPosDBPro& db) : m_db(db) {}

  void InitRule(Text xml);

  void CalcRule(RuleRun& run);

 private:
  bool LoadRuleDetail(QString& error);

  CombPool GetCondLines(const RuleRun& run, const LinePtrs& candidates) const;
  bool CheckCondRows(const RuleRun& run, CombPool& sums) const;
  bool MeetsControl(const RuleRun& run, const CombPool& sums) const;

  /// For each discount in its order: whether the line had an apportion row of the rule already.
  using Discounts = std::vector<bool>;

  void DiscountByGoods(RuleRun& run, const LinePtrs& matched, Discounts& given) const;
  void DiscountByClass(RuleRun& run, const LinePtrs& matched, Discounts& given) const;
  void DiscountByRow(RuleRun& run, const PluAction& action, const LinePtrs& lines, Discounts& given) const;
  static void LogApportions(const Discounts& given);

  std::vector<PluCondition> m_conditions;  ///< from `tProCombConditionAct`
  std::vector<CombCondCtrl> m_controls;
  std::vector<PluAction> m_actions;  ///< from `tProPrjCombPluSet`
  QnPosDBPro m_db;
};

}  // namespace Corvane

#endif
