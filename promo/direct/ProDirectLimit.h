#ifndef QNCORVANE_PROMO_DIRECT_PRODIRECTLIMIT_H
#define QNCORVANE_PROMO_DIRECT_PRODIRECTLIMIT_H

#include <cstdint>
#include <vector>

#include "db/QnPosDBPro.h"
#include "promo/direct/DirectDetail.h"
#include "rule/LineSelection.h"
#include "rule/ProBase.h"
#include "rule/RuleRun.h"

namespace Corvane {

/// "PTXS", the ordinary time-limited promotion: goods, classes or brands get a set price, a rate or a fixed reduction,
/// line by line, if wanted in a limited quantity over the lines of a sale.
class ProDirectLimit : public ProBase {
 public:
  /// @param db copied; all copies share one connection.
  explicit ProDirectLimit(const QnPosDBPro& db) : m_db(db) {}

  void InitRule(Text xml);

  /// The whole sale: reads the detail rows for its lines, discounts each line and enforces the rule's money limit.
  void CalcRule(RuleRun& run);

  /// One line of the sale. Works with the detail rows that the last calculation of a whole sale read, and tests no base
  /// conditions: a rule that has not yet calculated a whole sale gives nothing.
  void CalcRuleOnLine(RuleRun& run, SalePlu& line) const;

 private:
  bool DiscountByGoods(RuleRun& run, const RowPtrs& rows, SalePlu& line) const;
  void DiscountByClass(RuleRun& run, const RowPtrs& rows, SalePlu& line) const;
  void DiscountByRow(RuleRun& run, const ProDetailKey& row, double earlier, SalePlu& line) const;

  DirectDetail m_detail;
  QnPosDBPro m_db;
};

/// Whether any row names the line: by the goods code, or as a class by MatchClassRow.
bool LineMatchesRows(const RowPtrs& rows, const SalePlu& line, RowsBy by);

/// The quantity that rules of a type took on the line. @return -1 when it is negative or more than the line holds.
double GetTypeCountOnLine(const SalePlu& line, Text type);

/// The quantity that "PTXS" rules took on the sale's lines of these goods, up to and including the place `lastIndex`.
/// @return -1 as soon as a line's quantity makes no sense.
double GetEarlierCount(const std::vector<SalePlu>& lines, Text pluCode, std::int32_t lastIndex);

}  // namespace Corvane

#endif
