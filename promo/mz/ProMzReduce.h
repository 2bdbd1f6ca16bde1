#ifndef QNCORVANE_PROMO_MZ_PROMZREDUCE_H
#define QNCORVANE_PROMO_MZ_PROMZREDUCE_H

#include <QString>
#include <vector>

#include "db/QnPosDBPro.h"
#include "promo/mz/ProMzList.h"
#include "rule/LinePtrs.h"
#include "rule/ProBase.h"
#include "rule/RuleRun.h"

namespace Corvane {

/// "MZMJ", the full-amount reduction: when the sale, or the lines that a list's condition rows choose, bring enough
/// money, a sum comes off and is spread over these lines. The lists of a rule are calculated one after the other, and
/// each adds its own discount.
class ProMzReduce : public ProBase {
 public:
  /// @param db copied; all copies share one connection.
  explicit ProMzReduce(const QnPosDBPro& db) : m_db(db) {}

  void InitRule(Text xml);

  /// A failure of the database leaves the sale untouched and is told in the log.
  void CalcRule(RuleRun& run);

  /// What an amount brings over the tiers of a list.
  /// @param list  its tiers stand by falling threshold.
  /// @param run   is told of the tiers that are not reached; null where there is none.
  /// @param lines those that bring the amount; null for the whole sale.
  static double SumOfTiers(const ProMzList& list, double amount, const RuleRun* run = nullptr,
                           const LinePtrs* lines = nullptr);

 private:
  bool LoadRuleDetail(ProSale& sale, QString& error);
  static void CalcList(RuleRun& run, ProMzList& list);
  static void ReduceWholeSale(RuleRun& run, const ProMzList& list);
  static void ReduceChosenLines(RuleRun& run, const ProMzList& list);

  std::vector<ProMzList> m_lists;  ///< lists, read anew for each sale
  QnPosDBPro m_db;
};

}  // namespace Corvane

#endif
