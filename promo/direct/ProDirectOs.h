#ifndef QNCORVANE_PROMO_DIRECT_PRODIRECTOS_H
#define QNCORVANE_PROMO_DIRECT_PRODIRECTOS_H

#include <vector>

#include "db/QnPosDBPro.h"
#include "promo/direct/DirectDetail.h"
#include "rule/LineSelection.h"
#include "rule/ProBase.h"
#include "rule/RuleRun.h"

namespace Corvane {

/// "PTOS", the rule by sets: of each complete set of `SaleCount` units of a goods, one unit gets the price. Units run
/// across the lines of the goods, and what is left of a set carries over to the next line. Two such rules never share a
/// line. Only goods codes count: class rows and "NOT" rows have no effect.
class ProDirectOs : public ProBase {
 public:
  /// @param db copied; all copies share one connection.
  explicit ProDirectOs(const QnPosDBPro& db) : m_db(db) {}

  void InitRule(Text xml);

  void CalcRule(RuleRun& run);

 private:
  /// Units and sets of one row, running across the lines.
  struct SetCount {
    double Sum = 0;    ///< units met so far
    double Carry = 0;  ///< units that belong to no full set yet
  };

  LinePtrs SelectRowLines(const RuleRun& run, const LinePtrs& lines) const;
  void NoteOutside(const RuleRun& run, const SalePlu& line) const;
  void DiscountByRow(RuleRun& run, const PluCondition& condition, const LinePtrs& pool) const;
  bool ApplyOsDiscount(RuleRun& run, const PluCondition& condition, SalePlu& line, SetCount& count) const;
  double TakeSets(const RuleRun& run, const PluCondition& condition, double units, SetCount& count) const;

  DirectDetail m_detail;
  QnPosDBPro m_db;
};

}  // namespace Corvane

#endif
