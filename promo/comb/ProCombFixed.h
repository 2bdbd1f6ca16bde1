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
#include "sale/ProSale.h"

namespace Corvane {

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

  /// @param changed receives copies of the lines that got a unit price, with their new row.
  void CalcRule(ProSale& sale, std::vector<SalePlu>& changed);

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

  bool LoadRuleDetail(QString& message);
  bool LoadRows(const CombFixedPrice& price, QString& message);

  std::optional<FixedSets> GetFixedSets(const LinePtrs& candidates, const std::vector<SalePlu>& lines) const;
  Article TakeArticle(Text pluCode, const LinePtrs& candidates, LinePtrs& matched,
                      const std::vector<SalePlu>& lines) const;

  void TakePieces(const FixedSets& found, const CombWork& work) const;
  void DiscountFixedRow(const CombFixedRow& row, SalePlu& line, double& running, double target,
                        const CombWork& work) const;
  void WriteUnitPrice(const CombFixedRow& row, SalePlu& line, double quantity, const CombWork& work) const;
  bool IsPricedAsWhole() const;
  bool SpreadPrice(const FixedSets& found, Text vipType) const;
  void SpreadFixedDiscount(const LinePtrs& matched, double discount, double value, Text vipType) const;
  double WriteShare(SalePlu& line, const LinePtrs& matched, double discount, double value, Text vipType) const;

  std::vector<CombFixedRow> m_rows;
  QnPosDBPro m_db;
};

}  // namespace Corvane

#endif
