#ifndef QNCORVANE_PROMO_COMB_PROCOMBFREE_H
#define QNCORVANE_PROMO_COMB_PROCOMBFREE_H

#include <QString>
#include <cstdint>
#include <vector>

#include "db/QnPosDBPro.h"
#include "promo/comb/CombDetail.h"
#include "rule/LineSelection.h"
#include "rule/ProBase.h"
#include "sale/ProSale.h"

namespace Corvane {

/// Goods or a category of the pool, from `tProPrjCombPluSet`.
using CombFreePluRow = ProDetailKey;

/// A tier, from `tProPrjCombProAct`.
struct CombFreeActRow : ProDetailKey {
  Text PriceType = nullptr;  ///< "DP", "TC" or "2"
  double SaleCount = 0;      ///< pieces of one set
  double PriceTotal = 0;     ///< "DP" price of one set, "2" discount on one set, "TC" percent of the price left to pay
};

/// "ZHZY", the free combination: any mix of the listed goods that reaches a tier's piece count is sold at that tier's
/// terms, in as many whole sets as the pooled quantity allows. The tier with the largest piece count comes first; what
/// its sets leave goes to the next. Packages take no part.
class ProCombFree : public ProBase {
 public:
  /// @param db copied; all copies share one connection.
  explicit ProCombFree(const QnPosDBPro& db) : m_db(db) {}

  void InitRule(Text xml);

  /// @param changed receives copies of the lines as they are discounted.
  void CalcRule(ProSale& sale, std::vector<SalePlu>& changed);

 private:
  /// A tier on its way over the lines of the pool.
  struct TierRun {
    const CombFreeActRow& Tier;
    std::int32_t Sets = 0;
    double Target = 0;   ///< pieces that the sets hold
    double Running = 0;  ///< pieces that lines have given so far
  };

  /// What a line gives to a tier.
  struct LinePart {
    double Value = 0;     ///< the whole line's money before any combination discount
    double Unit = 0;      ///< its unit price, in cents
    double Quantity = 0;  ///< pieces that the line gives
    bool IsLast = false;  ///< the sets end inside this line: it carries the rounding difference
  };

  /// What a tier makes of a line's part.
  struct Offer {
    double Money = 0;  ///< discount
    double NewPrice = 0;
  };

  bool LoadRuleDetail(const std::vector<SalePlu>& lines, QString& message);
  bool LoadPluRows(const SalePlu& line, QString& message);
  bool LoadTiers(QString& message);
  bool HoldsPluRow(std::int32_t serialNo) const;

  CombPool GetSaleAccordCombFree(const LinePtrs& lines, const std::vector<SalePlu>& allLines) const;
  void AddToPool(CombPool& pool, SalePlu& line, const std::vector<SalePlu>& allLines) const;

  bool DiscountByTiers(const CombPool& pool, const CombWork& work);
  double PiecesAllowed(const std::vector<SalePlu>& lines) const;
  void DiscountSale(TierRun& run, SalePlu& line, const CombWork& work);
  Offer OfferOfTier(const TierRun& run, const SalePlu& line, const LinePart& part);
  Offer OfferSetPrice(const TierRun& run, const LinePart& part);
  Offer OfferReduction(const TierRun& run, const LinePart& part);
  void WriteOrMerge(SalePlu& line, double quantity, const Offer& offer, Text vipType) const;

  void SettleTail(const CombPool& pool) const;
  void PutTail(const LinePtrs& lines, double tail) const;

  double m_dTotalPrice = 0;  ///< set price spread over lines so far, in cents, by the current tier
  std::vector<CombFreePluRow> m_pluRows;
  std::vector<CombFreeActRow> m_tiers;
  QnPosDBPro m_db;
};

}  // namespace Corvane

#endif
