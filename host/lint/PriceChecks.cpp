#include <algorithm>

#include "base/Numbers.h"
#include "host/lint/Checks.h"
#include "host/lint/Words.h"
#include "promo/comb/ProCombFixed.h"
#include "promo/comb/ProCombFree.h"
#include "rule/ActionPrice.h"
#include "rule/RuleType.h"

namespace Corvane::Host::Lint {

namespace {

/// Whether the goods that a row names have told prices, and the amount reaches each of them.
bool ReachesAll(const std::vector<double>& prices, double amount) {
  return !prices.empty() &&
         std::all_of(prices.begin(), prices.end(), [&](double own) { return ReachesPrice(amount, own); });
}

bool ExceedsAll(const std::vector<double>& prices, double amount) {
  return !prices.empty() &&
         std::all_of(prices.begin(), prices.end(), [&](double own) { return amount > own + kNoise; });
}

std::string Highest(const std::vector<double>& prices) {
  return FormatF2(*std::max_element(prices.begin(), prices.end()));
}

std::vector<double> PricesOf(const Row& row, const Goods& goods) {
  const bool hasKind = !row.Text("PluType").empty();
  return goods.PricesOf(hasKind ? row.Text("PluType") : GoodsKind::kGoods, row.Text("PluCode"));
}

void AddFreePrice(const Row& row, const std::string& column, Flaws& flaws) {
  flaws.Add(Codes::kFreePrice, row.Where(), column + " is 0: the goods are free",
            "write the price, if they aren't meant to be");
}

void AddNoGain(const Row& row, const std::string& column, Flaws& flaws) {
  flaws.Add(Codes::kNoGain, row.Where(), column + " is 0: the row gives nothing", "write how much it gives");
}

void AddNotLower(const Row& row, const std::string& what, const std::string& price, Flaws& flaws) {
  flaws.Add(Codes::kPriceNotLower, row.Where(),
            what + " is not below the goods' price of " + price + ": nothing is given",
            "write a lower price, or mend that of goods.xml");
}

/// A set price of a piece.
void CheckUnitPrice(const Row& row, const Goods& goods, Flaws& flaws) {
  const double price = row.Number("DscPrice");
  const std::vector<double> prices = PricesOf(row, goods);
  if (price == 0) AddFreePrice(row, "DscPrice", flaws);
  if (ReachesAll(prices, price)) AddNotLower(row, "DscPrice " + FormatF2(price), Highest(prices), flaws);
}

void CheckReduction(const Row& row, const Goods& goods, Flaws& flaws) {
  const double reduction = row.Number("DscPrice");
  const std::vector<double> prices = PricesOf(row, goods);
  if (reduction == 0) AddNoGain(row, "DscPrice", flaws);
  if (!ExceedsAll(prices, reduction)) return;
  flaws.Add(Codes::kReductionAbovePrice, row.Where(),
            "a reduction of " + FormatF2(reduction) + " is above the goods' price of " + Highest(prices) +
                ": nothing is given",
            "write a smaller one, or mend the price in goods.xml");
}

void CheckRate(const Row& row, const char* column, Flaws& flaws) {
  const double rate = row.Number(column);
  if (rate == 0) AddNoGain(row, column, flaws);
  if (rate >= 0 && rate <= 100) return;
  flaws.Add(Codes::kRateOutOfRange, row.Where(),
            std::string(column) + " " + Shown(rate) +
                " is no percentage off: " + (rate > 100 ? "the goods are free" : "nothing is given"),
            "write how many percent come off, 0 to 100");
}

/// @param reads whether the type knows reductions.
void CheckAction(const Row& row, const Goods& goods, bool reads, Flaws& flaws) {
  const std::string kind = row.Text("DscType");
  if (kind == PriceKind::kPrice) CheckUnitPrice(row, goods, flaws);
  if (kind == PriceKind::kRate) CheckRate(row, "DscRate", flaws);
  if (kind == PriceKind::kReduction && reads) CheckReduction(row, goods, flaws);
}

/// The price of a set, of goods of which any make it.
void CheckTier(const Rule& rule, const Row& tier, const Goods& goods, Flaws& flaws) {
  const std::string kind = tier.Text("PriceType");
  const double amount = tier.Number("PriceTotal");
  if (kind == TierPrice::kPercentOff) CheckRate(tier, "PriceTotal", flaws);
  if (kind == TierPrice::kSetPrice && amount == 0) AddFreePrice(tier, "PriceTotal", flaws);
  if (kind == TierPrice::kSetDiscount && amount == 0) AddNoGain(tier, "PriceTotal", flaws);
  if (kind != TierPrice::kSetPrice && kind != TierPrice::kSetDiscount) return;
  std::vector<double> prices;
  for (const Row& row : rule.In(Table::kCombinationGoods)) {
    const std::vector<double> own = PricesOf(row, goods);
    if (own.empty()) return;
    prices.insert(prices.end(), own.begin(), own.end());
  }
  const double each = Quotient(amount, tier.Number("SaleCount"));
  if (prices.empty() || tier.Number("SaleCount") < 1) return;
  if (kind == TierPrice::kSetPrice && ReachesAll(prices, each)) {
    AddNotLower(tier, "PriceTotal " + FormatF2(amount) + ", " + FormatF2(each) + " a piece,", Highest(prices), flaws);
  }
  if (kind == TierPrice::kSetDiscount && ExceedsAll(prices, each)) {
    flaws.Add(Codes::kReductionAbovePrice, tier.Where(),
              "a reduction of " + FormatF2(amount) + ", " + FormatF2(each) + " a piece, is above the goods' price of " +
                  Highest(prices) + ": more comes off than they cost",
              "write a smaller one, or mend the price in goods.xml");
  }
}

/// The value of one whole combination, where the goods list tells every price.
std::optional<double> ValueOf(const Rows& rows, const Goods& goods) {
  double value = 0;
  for (const Row& row : rows) {
    const std::vector<double> prices = goods.PricesOf(GoodsKind::kGoods, row.Text("PluCode"));
    if (prices.empty()) return std::nullopt;
    value += prices.front() * row.Number("SaleCount");
  }
  return value;
}

void CheckFixed(const Rule& rule, const Goods& goods, Flaws& flaws) {
  const Rows& prices = rule.In(Table::kCombination);
  const Rows& articles = rule.In(Table::kCombinationGoods);
  if (prices.empty() || articles.empty()) return;
  const Row& price = prices.front();
  if (price.Text("PriceType") == FixedPrice::kPerArticle) {
    for (const Row& row : articles) {
      // A combination may name an article at its full price.
      if (row.Number("DscPrice") == 0) AddFreePrice(row, "DscPrice", flaws);
    }
    const bool gives = std::any_of(articles.begin(), articles.end(), [&](const Row& row) {
      return !ReachesAll(goods.PricesOf(GoodsKind::kGoods, row.Text("PluCode")), row.Number("DscPrice"));
    });
    if (!gives) AddNotLower(articles.front(), "every DscPrice of the bundle", "its article", flaws);
  }
  if (price.Text("PriceType") != FixedPrice::kPerCombination) return;
  const double total = price.Number("PriceTotal");
  if (total == 0) AddFreePrice(price, "PriceTotal", flaws);
  const std::optional<double> value = ValueOf(articles, goods);
  if (value && ReachesPrice(total, *value))
    AddNotLower(price, "PriceTotal " + FormatF2(total), FormatF2(*value), flaws);
}

void CheckOffer(const Row& row, const Goods& goods, Flaws& flaws) {
  const std::vector<double> prices = goods.PricesOf(GoodsKind::kGoods, row.Text("PluCode"));
  const double price = row.Number("DscPrice");
  if (price > 0 && ReachesAll(prices, price)) AddNotLower(row, "DscPrice " + FormatF2(price), Highest(prices), flaws);
}

}  // namespace

void CheckPrices(const Rule& rule, const Goods& goods, Flaws& flaws) {
  for (const Row& row : rule.In(Table::kDirect)) {
    const bool excludes = row.Text("InRange") == RangeWord::kNot && !rule.Is(TypeWord::kSets);
    if (!excludes) CheckAction(row, goods, !rule.Is(TypeWord::kSets), flaws);
  }
  const Rows& combined = rule.In(Table::kCombinationGoods);
  if (rule.Is(TypeWord::kCondition)) {
    for (const Row& row : combined) CheckAction(row, goods, true, flaws);
  }
  if (rule.Is(TypeWord::kChoice)) {
    for (const Row& row : combined) CheckUnitPrice(row, goods, flaws);
  }
  if (rule.Is(TypeWord::kFree)) {
    for (const Row& tier : rule.In(Table::kCombination)) CheckTier(rule, tier, goods, flaws);
  }
  if (rule.Is(TypeWord::kFixed)) CheckFixed(rule, goods, flaws);
  const bool sells = rule.Is(TypeWord::kExchange) || rule.Is(TypeWord::kGift);
  for (const Row& row : rule.In(Table::kGift)) {
    if (sells) CheckOffer(row, goods, flaws);
  }
}

}  // namespace Corvane::Host::Lint
