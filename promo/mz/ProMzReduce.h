#ifndef QNCORVANE_PROMO_MZ_PROMZREDUCE_H
#define QNCORVANE_PROMO_MZ_PROMZREDUCE_H

#include <QString>
#include <vector>

#include "db/QnPosDBPro.h"
#include "promo/mz/ProMzList.h"
#include "rule/ProBase.h"
#include "rule/Spreading.h"
#include "sale/ProSale.h"

namespace Corvane {

/// "MZMJ", the full-amount reduction: when the sale, or the lines that an offer's condition rows choose, bring enough
/// money, a sum comes off and is spread over these lines. The offers of a rule are calculated one after the other, and
/// each adds its own discount.
class ProMzReduce : public ProBase {
 public:
  /// @param db copied; all copies share one connection.
  explicit ProMzReduce(const QnPosDBPro& db) : m_db(db) {}

  void InitRule(Text xml);

  /// A failure of the database leaves the sale untouched and is told in the log.
  void CalcRule(ProSale& sale);

 private:
  bool LoadRuleDetail(Text billNo, const std::vector<SalePlu>& lines, QString& error);
  bool LoadTiers(Text billNo, Text listCode, std::vector<PluAddAction>& tiers, QString& error);
  void CalcList(ProMzList& list, ProSale& sale) const;
  void ReduceWholeSale(const ProMzList& list, ProSale& sale, const SpreadOptions& options) const;
  void ReduceChosenLines(const ProMzList& list, ProSale& sale, const SpreadOptions& options) const;
  double SumOfTiers(const ProMzList& list, double amount) const;
  double GivenOn(const SalePlu& line) const;

  std::vector<ProMzList> m_lists;  ///< offers, read anew for each sale
  QnPosDBPro m_db;
};

}  // namespace Corvane

#endif
