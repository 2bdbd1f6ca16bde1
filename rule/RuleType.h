#ifndef QNCORVANE_RULE_RULETYPE_H
#define QNCORVANE_RULE_RULETYPE_H

#include "base/Text.h"

namespace Corvane {

/// The type words. A rule's `ProType` is one of them; promo/RuleTable.cpp says which class and which step answer to it.
namespace TypeWord {
constexpr Text kLimit = "PTXS";       ///< a price for goods, line by line
constexpr Text kBatch = "PTPL";       ///< a price from a minimum quantity on
constexpr Text kSets = "PTOS";        ///< a price for one unit of each set
constexpr Text kFree = "ZHZY";        ///< free combination
constexpr Text kFixed = "ZHGD";       ///< fixed combination
constexpr Text kCondition = "ZHTJ";   ///< combination by condition
constexpr Text kChoice = "ZHZX";      ///< set menu with a choice
constexpr Text kReduce = "MZMJ";      ///< full-amount reduction
constexpr Text kGoods = "MZDP";       ///< buy some, get some
constexpr Text kGoodsFree = "MZZM";   ///< other goods free
constexpr Text kGift = "MZZP";        ///< gift offers
constexpr Text kExchange = "MZHG";    ///< goods offered at a price
constexpr Text kGiveCoupon = "MZZQ";  ///< coupons given
constexpr Text kPay = "MZZF";         ///< reduction for a payment
constexpr Text kUseCoupon = "MZYQ";   ///< coupons used
}  // namespace TypeWord

/// The families of rule types: the first two letters of a type word.
namespace Family {
constexpr Text kOrdinary = "PT";
constexpr Text kCombination = "ZH";
constexpr Text kFullAmount = "MZ";
}  // namespace Family

/// What sets a type apart in the shared arithmetic, which asks for these facts and never for the word.
enum class Fact : unsigned {
  None = 0,
  /// The type looks after the rule's limit by quantity (`MaxYhType` "2") itself; GetCalcCount doesn't.
  LimitsItself = 1U << 0U,
  /// A line that one such rule acted on is taken whole for the next.
  TakesLinesWhole = 1U << 1U,
  /// `FinalPrice` follows when the rule lowers a line's `Total`.
  SetsFinalPrice = 1U << 2U,
  /// What its rows take brings its open quantity at `FinalPrice`, and not its open money.
  CountsAtFinalPrice = 1U << 3U,
  /// Spreading over chosen lines lowers their `Total`.
  LowersChosenLines = 1U << 4U,
  /// Spreading over the whole sale leaves the lines' `Total` to the caller, and a line's part goes by its `Total`.
  LeavesWholeSale = 1U << 5U,
  /// Spreading over chosen lines goes by their `Total`, and not by their open money.
  SharesByTotal = 1U << 6U,
  /// Spreading tells a line's `DisNum` as the quantity, and not its `PluCount`.
  TellsDisNum = 1U << 7U,
  /// Spreading by value writes the money of its rows, and not their `YhMoney` alone.
  ApportionsMoney = 1U << 8U,
  /// The time rows have no power to refuse the rule.
  IgnoresTime = 1U << 9U,
};

constexpr Fact operator|(Fact left, Fact right) {
  return static_cast<Fact>(static_cast<unsigned>(left) | static_cast<unsigned>(right));
}

/// One row of the table of types.
struct RuleType {
  Text Word;
  Fact Facts;

  constexpr bool Has(Fact fact) const { return (static_cast<unsigned>(Facts) & static_cast<unsigned>(fact)) != 0; }
};

/// @return the type of this word; for a word that is none, a type without facts.
const RuleType& TypeOf(Text word);

}  // namespace Corvane

#endif
