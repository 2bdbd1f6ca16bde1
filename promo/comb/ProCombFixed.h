#ifndef QNCORVANE_PROMO_COMB_PROCOMBFIXED_H
#define QNCORVANE_PROMO_COMB_PROCOMBFIXED_H

#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

#include "db/QnPosDBPro.h"
#include "promo/comb/CombDetail.h"
#include "rule/LineSelection.h"
#include "rule/ProBase.h"
#include "rule/RuleRun.h"

namespace Corvane {

/// The kinds of price of a combination; any other text sets none.
namespace FixedPrice {
constexpr Text kPerArticle = "DP";
constexpr Text kPerCombination = "TC";
constexpr Text kAll = "DP, TC";
}  // namespace FixedPrice

/// The price of the combination, from `tProPrjCombProAct`.
struct CombFixedPrice {
  Text PriceType = nullptr;  ///< "DP" or "TC"
  double PriceTotal = 0;     ///< "TC" price of one whole combination
};

/// An article of the combination, from `tProPrjCombPluSet`.
struct CombFixedRow : ProDetailKey {
  Text PriceType = nullptr;  ///< the rule's, the same in every row: "DP" or "TC"
  double SaleCount = 0;      ///< pieces of this article in one combination
  double DscPrice = 0;       ///< "DP" unit price of the article, "TC" price of one whole combination
};

/// "ZHGD", the fixed combination: listed articles, each in its number, at a unit price per article or at one price for
/// the whole combination. Every article must be there; the scarcest settles the number of combinations. Packages take
/// no part.
class ProCombFixed : public ProBase {
 public:
  /// @param db copied; all copies share one connection.
  explicit ProCombFixed(const QnPosDBPro& db) : m_db(db) {}

  void InitRule(Text xml);

  void CalcRule(RuleRun& run);

 private:
  /// The combinations that a sale holds.
  struct FixedSets {
    LinePtrs Lines;  ///< the lines that hold the articles, row by row
    std::int32_t Sets = 0;
    double SetValue = 0;  ///< ordinary value of one combination
  };

  /// The open pieces of one article.
  struct Article {
    double Quantity = 0;
    double UnitValue = 0;  ///< that of the last line that holds it
  };

  bool LoadRuleDetail(QString& error);
  void SettleRows(const CombFixedPrice& price);

  /// The pieces of one row's article that the combinations hold, on their way over the lines.
  struct Pieces {
    double Target = 0;   ///< pieces wanted
    double Running = 0;  ///< pieces that lines have given so far
  };

  std::optional<FixedSets> GetFixedSets(const RuleRun& run, const LinePtrs& candidates) const;
  static void RefuseShort(const RuleRun& run, const CombFixedRow& row, const LinePtrs& candidates, double open);
  static Article TakeArticle(const RuleRun& run, Text pluCode, const LinePtrs& candidates, LinePtrs& matched);

  void TakePieces(RuleRun& run, const FixedSets& found) const;
  static void DiscountFixedRow(RuleRun& run, const CombFixedRow& row, SalePlu& line, Pieces& pieces);
  bool IsPricedAsWhole() const;
  bool SpreadPrice(RuleRun& run, const FixedSets& found) const;

  std::vector<CombFixedRow> m_rows;
  QnPosDBPro m_db;
};

}  // namespace Corvane

#endif
