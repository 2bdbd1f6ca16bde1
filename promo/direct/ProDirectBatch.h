#ifndef QNCORVANE_PROMO_DIRECT_PRODIRECTBATCH_H
#define QNCORVANE_PROMO_DIRECT_PRODIRECTBATCH_H

#include <vector>

#include "db/QnPosDBPro.h"
#include "promo/direct/DirectDetail.h"
#include "rule/LineSelection.h"
#include "rule/ProBase.h"
#include "sale/ProSale.h"

namespace Corvane {

/// "PTPL", the batch promotion: a discount that starts once a minimum quantity of the goods is bought in the sale.
/// Until then the lines wait; when it is reached they are all discounted, those that waited too. Packages take no part.
class ProDirectBatch : public ProBase {
 public:
  /// @param db copied; all copies share one connection.
  explicit ProDirectBatch(const QnPosDBPro& db) : m_db(db) {}

  void InitRule(Text xml);

  /// @param changed receives copies of the lines as they are discounted.
  void CalcRule(ProSale& sale, std::vector<SalePlu>& changed);

 private:
  void DiscountByGoods(const RowPtrs& rows, const LinePtrs& pool, const DirectWork& work);
  void DiscountByClass(const SplitRows& rows, const LinePtrs& pool, const DirectWork& work);
  template <class CountedQuantity>
  void DiscountByRow(const ProDetailKey& row, const LinePtrs& lines, double applied, CountedQuantity counted,
                     const DirectWork& work);

  DirectDetail m_detail;
  QnPosDBPro m_db;
};

}  // namespace Corvane

#endif
