#ifndef QNCORVANE_PROMO_DIRECT_PRODIRECTLIMIT_H
#define QNCORVANE_PROMO_DIRECT_PRODIRECTLIMIT_H

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "db/QnPosDBPro.h"
#include "promo/direct/DirectDetail.h"
#include "rule/LineSelection.h"
#include "rule/ProBase.h"
#include "rule/RuleRun.h"

namespace Corvane {

/// The quantity that "PTXS" rules took on the sale's lines of some goods in front of a line. Each line is counted once,
/// when a later one is first asked for: what stands in front of that changes no more.
class EarlierCounts {
 public:
  /// @param lines borrowed.
  explicit EarlierCounts(const std::vector<SalePlu>& lines) : m_lines(lines) {}

  /// @param line one of the lines, not in front of one that was asked for before.
  /// @return -1 where the quantity of a line with the same goods makes no sense.
  double Before(const SalePlu& line);

 private:
  void Count(const SalePlu& line);

  const std::vector<SalePlu>& m_lines;
  std::size_t m_next = 0;  ///< the first line that is not counted
  std::unordered_map<std::string_view, double> m_byGoods;
};

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

  /// The detail rows that CalcRuleOnLine works with, for whoever calculates to try something out and puts them back.
  const DirectDetail& HeldRows() const { return m_detail; }
  void PutBack(DirectDetail&& rows) noexcept { m_detail = std::move(rows); }

 private:
  void DiscountLine(RuleRun& run, const SplitRows& rows, EarlierCounts& earlier, SalePlu& line) const;
  bool DiscountByGoods(RuleRun& run, const RowPtrs& rows, EarlierCounts& earlier, SalePlu& line) const;
  void DiscountByClass(RuleRun& run, const RowPtrs& rows, SalePlu& line) const;
  void DiscountByRow(RuleRun& run, const ProDetailKey& row, double earlier, SalePlu& line) const;

  DirectDetail m_detail;
  QnPosDBPro m_db;
};

/// The quantity that rules of a type took on the line. @return -1 when it is negative or more than the line holds.
double GetTypeCountOnLine(const SalePlu& line, Text type);

}  // namespace Corvane

#endif
