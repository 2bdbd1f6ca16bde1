#ifndef QNCORVANE_PROMO_DIRECT_PRODIRECTBATCH_H
#define QNCORVANE_PROMO_DIRECT_PRODIRECTBATCH_H

#include <vector>

#include "db/QnPosDBPro.h"
#include "promo/direct/DirectDetail.h"
#include "rule/LineSelection.h"
#include "rule/ProBase.h"
#include "rule/RuleRun.h"

namespace Corvane {

/// "PTPL", the batch promotion: a discount that starts once a minimum quantity of the goods is bought in the sale.
/// Until then the lines wait; when it is reached they are all discounted, those that waited too. Packages take no part.
class ProDirectBatch : public ProBase {
 public:
  /// @param db copied; all copies share one connection.
  explicit ProDirectBatch(const QnPosDBPro& db) : m_db(db) {}

  void InitRule(Text xml);

  void CalcRule(RuleRun& run);

 private:
  /// A discount of the rule, as the class rows behind it count it.
  struct Discounted {
    const SalePlu* Line;
    double Quantity;
  };
  using Discounts = std::vector<Discounted>;

  /// What a row counts of a line toward the minimum.
  enum class Counts { OpenQuantity, WholeLine };

  void DiscountByGoods(RuleRun& run, const RowPtrs& rows, const LinePtrs& pool, Discounts& given) const;
  void DiscountByClass(RuleRun& run, const SplitRows& rows, const LinePtrs& pool, Discounts& given) const;
  void DiscountByRow(RuleRun& run, const ProDetailKey& row, const LinePtrs& lines, Counts counts, double applied,
                     Discounts& given) const;

  DirectDetail m_detail;
  QnPosDBPro m_db;
};

}  // namespace Corvane

#endif
