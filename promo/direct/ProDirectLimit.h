#ifndef QNCORVANE_PROMO_DIRECT_PRODIRECTLIMIT_H
#define QNCORVANE_PROMO_DIRECT_PRODIRECTLIMIT_H

#include <cstdint>
#include <vector>

#include "db/QnPosDBPro.h"
#include "promo/direct/DirectDetail.h"
#include "rule/LineSelection.h"
#include "rule/ProBase.h"
#include "sale/ProSale.h"

namespace Corvane {

/// "PTXS", the ordinary time-limited promotion: goods, classes or brands get a set price, a rate or a fixed reduction,
/// line by line, if wanted in a limited quantity over the lines of a sale.
class ProDirectLimit : public ProBase {
 public:
  /// @param db copied; all copies share one connection.
  explicit ProDirectLimit(const QnPosDBPro& db) : m_db(db) {}

  void InitRule(Text xml);

  /// The whole sale: reads the detail rows for its lines, discounts each line and enforces the rule's money ceiling.
  ///
  /// @param lines   the sale's own lines.
  /// @param changed receives copies of the lines as they are discounted.
  void CalcRule(ProSale& sale, std::vector<SalePlu>& lines, std::vector<SalePlu>& changed);

  /// One line of the sale. Works with the detail rows that the last calculation of a whole sale read, and tests no base
  /// conditions: a rule that has not yet calculated a whole sale gives nothing.
  void CalcRuleOnLine(ProSale& sale, SalePlu& line, std::vector<SalePlu>& changed);

 private:
  /// What a line's discount takes along.
  struct LineWork {
    ProSale& Sale;
    SalePlu& Line;
    std::vector<SalePlu>& Changed;
    Text VipType;
  };

  bool DiscountByGoods(const RowPtrs& rows, const LineWork& work);
  void DiscountByClass(const RowPtrs& rows, const LineWork& work);
  bool DiscountByRow(const ProDetailKey& row, Text word, const LineWork& work);

  DirectDetail m_detail;
  QnPosDBPro m_db;
};

/// Whether any row names the line: for the word "PLU" by the goods code, otherwise by MatchClassRow.
bool LineMatchesRows(const RowPtrs& rows, const SalePlu& line, Text word);

/// The quantity that rules of a type took on the line. @return -1 when it is negative or more than the line holds.
double GetTypeCountOnLine(const SalePlu& line, Text type);

/// The quantity that "PTXS" rules took on the sale's lines up to and including the place `lastIndex`, over lines of
/// these goods (word "PLU") or of this class (any other word). @return -1 as soon as a line's quantity makes no sense.
double GetEarlierCount(const ProSale& sale, Text code, Text word, std::int32_t lastIndex);

}  // namespace Corvane

#endif
