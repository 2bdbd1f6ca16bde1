#include <algorithm>

#include "base/Numbers.h"
#include "host/lint/Checks.h"
#include "host/lint/Words.h"
#include "promo/comb/CombDetail.h"
#include "rule/RuleType.h"
#include "sale/ProDetailKey.h"

namespace Corvane::Host::Lint {

namespace {

/// @return whether sets can be formed.
bool CheckSize(const Row& row, const std::string& consequence, Flaws& flaws) {
  const double count = row.Number("SaleCount");
  if (IsSetSize(count)) return true;
  flaws.Add(Codes::kSaleCount, row.Where(), "SaleCount " + Shown(count) + " is below 1: " + consequence,
            "write how many pieces make a set");
  return false;
}

bool Includes(const Row& row) { return row.Text("InRange") != RangeWord::kNot; }

// --- Ordinary rules -------------------------------------------------------------------------------------------------

void CheckMinimum(const Rule& rule, const Row& row, Flaws& flaws) {
  const double minimum = row.Number("SaleCount");
  const double most = row.Number("TradeMaxCount");
  if (minimum <= 0) {
    flaws.Add(Codes::kNoMinimum, row.Where(),
              "SaleCount " + Shown(minimum) + ": the price holds from the first piece on",
              "write from how many pieces on it holds");
    return;
  }
  if (most > 0 && most < minimum) {
    flaws.Add(Codes::kFewerThanMinimum, row.Where(),
              "from " + Shown(minimum) + " pieces on, and for " + Shown(most) + " of them at most (TradeMaxCount)",
              "write a TradeMaxCount of " + Shown(minimum) + " or more, or 0 for no limit");
  }
  // Of an article the open pieces count, and of no line are more open than the rule's limit leaves.
  const bool isArticle = row.Text("PluType") == GoodsKind::kGoods;
  if (!isArticle || !rule.IsLimitedBy(LimitKind::kQuantity) || rule.Limit() <= 0 || rule.Limit() >= minimum) return;
  flaws.Add(Codes::kMinimumAboveLimit, row.Where(),
            "SaleCount " + Shown(minimum) + " is above the rule's limit of " + Shown(rule.Limit()) +
                " pieces: a line alone never reaches it",
            "write a MaxYhValue of " + Shown(minimum) + " or more in " + rule.File);
}

/// What rows and sets took in the first of the two passes of a "DZ" rule doesn't count against these limits in the second.
void CheckTwice(const Rule& rule, Flaws& flaws) {
  if (!rule.IsClass(StackingClass::kDz)) return;
  const bool hasLimit = rule.IsLimitedBy(LimitKind::kQuantity) && rule.Limit() > 0;
  const bool countsSets = rule.Is(TypeWord::kFixed) || rule.Is(TypeWord::kChoice);
  if (countsSets && hasLimit) {
    flaws.Add(Codes::kLimitedTwice, rule.At(rule.Xml, "MaxYhValue"),
              "a limit on sets holds twice for a rule of class DZ: mode All gives up to " + Shown(2 * rule.Limit()),
              "write Primary PT, or half the limit");
  }
  if (rule.Is(TypeWord::kSets)) return;  // no limit of rows there
  for (const Row& row : rule.In(Table::kDirect)) {
    const double most = row.Number("TradeMaxCount");
    if (most <= 0 || !Includes(row) || (hasLimit && rule.Limit() <= most)) continue;
    flaws.Add(
        Codes::kLimitedTwice, row.Where(),
        "TradeMaxCount " + Shown(most) + " holds twice for a rule of class DZ: mode All gives up to " + Shown(2 * most),
        "write MaxYhType 2 and MaxYhValue " + Shown(most) + " in " + rule.File + ", or Primary PT");
  }
}

// --- Combinations ---------------------------------------------------------------------------------------------------

void CheckFreeTiers(const Rule& rule, Flaws& flaws) {
  const Rows& tiers = rule.In(Table::kCombination);
  for (const Row& tier : tiers) {
    if (!CheckSize(tier, "the tier gives nothing", flaws)) continue;
    const double count = tier.Number("SaleCount");
    if (rule.IsLimitedBy(LimitKind::kQuantity) && rule.Limit() > 0 && rule.Limit() < count) {
      flaws.Add(Codes::kSetAboveLimit, tier.Where(),
                "a set of " + Shown(count) + " is above the rule's limit of " + Shown(rule.Limit()) +
                    " pieces: none is formed",
                "write a MaxYhValue of " + Shown(count) + " or more in " + rule.File);
    }
    const bool isSecond =
        std::any_of(tiers.data(), &tier, [&](const Row& other) { return other.Number("SaleCount") == count; });
    if (!isSecond) continue;
    flaws.Add(Codes::kEqualThresholds, tier.Where(),
              "another tier has SaleCount " + Shown(count) + ", too: one of them never has its turn",
              "delete one of them");
  }
}

void CheckFixedSizes(const Rule& rule, Flaws& flaws) {
  for (const Row& row : rule.In(Table::kCombinationGoods)) {
    const bool isLeftOut = PrintsAsZero(row.Number("SaleCount"));
    CheckSize(row, isLeftOut ? "the bundle does without this article" : "no bundle is formed", flaws);
  }
}

/// @return the first slot of a code, or null.
const Row* SlotOf(const Rows& places, const std::string& code) {
  const auto found =
      std::find_if(places.begin(), places.end(), [&](const Row& slot) { return slot.Text("ProActCode") == code; });
  return found == places.end() ? nullptr : &*found;
}

void CheckSlots(const Rule& rule, Flaws& flaws) {
  const Rows& places = rule.In(Table::kCombination);
  const Rows& articles = rule.In(Table::kCombinationGoods);
  std::vector<const Row*> filled;
  for (const Row& row : articles) {
    CheckSize(row, "the article fills no slot", flaws);
    const Row* const slot = SlotOf(places, row.Text("ProActCode"));
    filled.push_back(slot);
    if (slot != nullptr || places.empty()) continue;
    flaws.Add(Codes::kRowWithoutSlot, row.Where(),
              "the menu has no slot " + Shown(row.Text("ProActCode")) + ": the row does nothing",
              std::string("write the ProActCode of a row of ") + Table::kCombination);
  }
  for (const Row& slot : places) {
    const bool isEmpty = std::find(filled.begin(), filled.end(), &slot) == filled.end();
    if (!isEmpty || !slot.Boolean("IsRequired") || articles.empty()) continue;
    flaws.Add(Codes::kEmptySlot, slot.Where(),
              "no article fills the slot " + Shown(slot.Text("ProActCode")) + ", which a menu needs: there is none",
              std::string("write its articles into ") + Table::kCombinationGoods + ", or IsRequired 0");
  }
}

}  // namespace

void CheckSets(const Rule& rule, Flaws& flaws) {
  CheckTwice(rule, flaws);
  for (const Row& row : rule.In(Table::kDirect)) {
    if (rule.Is(TypeWord::kBatch) && Includes(row)) CheckMinimum(rule, row, flaws);
    if (rule.Is(TypeWord::kSets)) CheckSize(row, "the row gives nothing", flaws);
  }
  if (rule.Is(TypeWord::kFree)) CheckFreeTiers(rule, flaws);
  if (rule.Is(TypeWord::kFixed)) CheckFixedSizes(rule, flaws);
  if (rule.Is(TypeWord::kChoice)) CheckSlots(rule, flaws);
}

}  // namespace Corvane::Host::Lint
