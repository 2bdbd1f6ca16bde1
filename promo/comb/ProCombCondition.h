#ifndef QNCORVANE_PROMO_COMB_PROCOMBCONDITION_H
#define QNCORVANE_PROMO_COMB_PROCOMBCONDITION_H

#include <QString>
#include <cstdint>
#include <vector>

#include "db/QnPosDBPro.h"
#include "promo/comb/CombDetail.h"
#include "rule/LineSelection.h"
#include "rule/ProBase.h"
#include "sale/ProSale.h"

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

  /// @param changed receives copies of the lines as they are discounted; empty at the call.
  void CalcRule(ProSale& sale, std::vector<SalePlu>& changed);

 private:
  bool LoadRuleDetail(QString& message);
  bool LoadConditions(QString& message);
  bool LoadControls(QString& message);
  bool LoadActions(QString& message);

  CombPool GetCondLines(const LinePtrs& candidates, const std::vector<SalePlu>& lines) const;
  bool CheckCondRows(const std::vector<SalePlu>& lines, CombPool& sums) const;
  bool MeetsControl(const CombPool& sums) const;

  void DiscountByGoods(const LinePtrs& matched, const CombWork& work) const;
  void DiscountByClass(const LinePtrs& matched, const CombWork& work) const;
  void DiscountByRow(const PluAction& action, const LinePtrs& lines, const CombWork& work) const;
  void ApportionChanged(std::vector<SalePlu>& changed) const;

  std::vector<PluCondition> m_conditions;  ///< from `tProCombConditionAct`
  std::vector<CombCondCtrl> m_controls;
  std::vector<PluAction> m_actions;  ///< from `tProPrjCombPluSet`
  QnPosDBPro m_db;
};

}  // namespace Corvane

#endif
