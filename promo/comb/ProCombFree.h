#ifndef QNCORVANE_PROMO_COMB_PROCOMBFREE_H
#define QNCORVANE_PROMO_COMB_PROCOMBFREE_H

#include <cstdint>
#include <vector>

#include "db/QnPosDBPro.h"
#include "promo/comb/CombDetail.h"
#include "rule/LineSelection.h"
#include "rule/ProBase.h"
#include "rule/RuleRun.h"
#include "rule/Spreading.h"

namespace Corvane {

/// Goods or a category of the pool, from `tProPrjCombPluSet`.
using CombFreePluRow = ProDetailKey;

/// The kinds of price that a tier sets; with any other text the pieces are taken and nothing is given.
namespace TierPrice {
constexpr Text kSetPrice = "DP";    ///< one set costs this
constexpr Text kPercentOff = "TC";  ///< so many percent off
constexpr Text kSetDiscount = "2";  ///< one set costs this much less
constexpr Text kAll = "DP, TC, 2";
}  // namespace TierPrice

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

  void CalcRule(RuleRun& run);

 private:
  /// A tier on its way over the lines of the pool.
  struct TierRun {
    TierRun(const CombFreeActRow& tier, std::int32_t sets)
        : Tier(tier), Target(sets * tier.SaleCount), Sum(sets, tier.PriceTotal, tier.SaleCount) {}

    const CombFreeActRow& Tier;
    double Target;       ///< pieces that the sets hold
    double Running = 0;  ///< pieces that lines have given so far
    SetSum Sum;          ///< the sets' price, or the discount on them
  };

  /// What a line gives to a tier.
  struct LinePart {
    double Value = 0;     ///< the whole line's money before any combination discount
    double Unit = 0;      ///< its unit price, in cents
    double Quantity = 0;  ///< pieces that the line gives
    bool IsLast = false;  ///< the sets end inside this line: it carries the rounding difference
  };

  void LoadRuleDetail(const RuleRun& run);

  CombPool GetSaleAccordCombFree(const RuleRun& run, const LinePtrs& lines) const;
  void AddToPool(const RuleRun& run, CombPool& pool, SalePlu& line) const;
  void NoteUnnamed(const RuleRun& run, const SalePlu& line) const;

  bool DiscountByTiers(RuleRun& run, const CombPool& pool);
  void NoteBelowSet(const RuleRun& run, const CombFreeActRow& tier, const CombPool& pool, double available) const;
  double PiecesAllowed(const RuleRun& run) const;
  static void DiscountSale(RuleRun& run, TierRun& tier, SalePlu& line);
  static Award AwardOfTier(const RuleRun& run, TierRun& tier, const SalePlu& line, const LinePart& part);

  std::vector<CombFreePluRow> m_pluRows;
  std::vector<CombFreeActRow> m_tiers;
  QnPosDBPro m_db;
};

}  // namespace Corvane

#endif
