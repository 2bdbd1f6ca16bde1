#ifndef QNCORVANE_RULE_SPREADING_H
#define QNCORVANE_RULE_SPREADING_H

#include "rule/LinePtrs.h"
#include "rule/RuleRun.h"

namespace Corvane {

// The ways in which a rule's money lands on lines in cents that add up. Each has its own rounding and its own place for
// the tail that rounding leaves; they stand side by side here so that nobody takes one for another. Nothing is reported
// as an error.

/// By what of a line its part of a base is reckoned.
enum class PartBy {
  OpenMoney,  ///< by the money still open to the rule
  DisNum,     ///< by the lines' `DisNum`, which is used up, at `FinalPrice`
};

/// Whether the lines' `FinalPrice` becomes the price that the discount leaves.
enum class FinalPrice { Stays, Follows };

/// How a sum is spread over chosen lines.
struct SpreadOptions {
  PartBy Part = PartBy::OpenMoney;
  Rows To = Rows::Both;
  FinalPrice Price = FinalPrice::Stays;
};

/// Spreads `money` by value, at `Price`, over the apportion rows of the rule; lines without one get one. Only apportion
/// rows are touched (and `DisNum` of a line that gets its row here). Ends after the rows are made when they weigh
/// nothing. Each share is rounded up in single precision for the tail alone, which goes to the `YhMoney` of the first
/// row of the first line that has any, whoever wrote it.
///
/// @param lines a line may stand in the list more than once.
void ApportionRecords(RuleRun& run, const LinePtrs& lines, double money);

/// Tells the log whether a line has an apportion row already, or gets its first.
void LogApportion(bool isApportioned);

/// Spreads `money` over lines in proportion to their part of `base`, half a cent up and cut; a line that has a result
/// of the rule is passed over. The tail goes to the first rows of the first lines that have any, whoever wrote them.
///
/// @param base the amount of which the lines' parts are parts; 0 spreads nothing.
void SpreadOverLinePtrs(RuleRun& run, const LinePtrs& lines, double money, double base, const SpreadOptions& options);

/// Spreads `money` over all lines of the sale in proportion to their part of `base`, half a cent up and cut; a line
/// that has a result of the rule is passed over, and a share of 0 writes its row too. The tail goes to the rule's own
/// rows.
///
/// @param base 0 spreads nothing, and so do lines whose `Total`s sum to 0, as a sale and its return do.
void SpreadOverLines(RuleRun& run, double money, double base, FinalPrice price);

/// Spreads what a fixed combination takes off over the lines that hold it, by the value of their `DisNum`, which is
/// used up, in cents halves away from zero. The tail goes where SpreadOverLinePtrs puts it.
///
/// @param value ordinary value of all combinations.
void SpreadFixedDiscount(RuleRun& run, const LinePtrs& lines, double discount, double value);

/// Spreads a payment's reduction over all lines of the sale by their `Total`, in cents rounded up in single precision,
/// from the last line to the first; the sale's first line takes what is left. Only result rows are written, and no
/// `Total` falls.
///
/// @param used money paid that the reduction used; the lines' `BaseMoney` are their parts of it.
void SpreadPayReduction(RuleRun& run, double given, double used);

/// The lines of whole sets sold at one price or with one discount. Piece by piece the sets' sum goes to the lines in
/// cents, halves away from zero; the line in which the sets end settles what rounding left.
class SetSum {
 public:
  /// @param sets  number of sets.
  /// @param total price of one set, or discount on one.
  /// @param size  pieces of one set.
  SetSum(double sets, double total, double size);

  double PerPiece() const { return m_perPiece; }

  /// The discount on so many pieces of this unit price when the sum is the sets' price.
  double DiscountToPrice(double unit, double quantity, bool isLast);

  /// The discount on so many pieces when the sum is the sets' discount. Tells the log.
  double DiscountByReduction(double quantity, bool isLast);

  /// Takes back what pieces of a line that gains nothing would have brought. Where nothing was brought it is taken back
  /// all the same.
  void TakeBack(double quantity);

 private:
  double m_sum;
  double m_total;
  double m_size;
  double m_perPiece;
  double m_spread = 0;  ///< rounded sums of the pieces met so far
};

/// Reckons what a pool of lines brought against what its lines cost now and what the rule gave, each row of the rule
/// cut to cents with halves to even; the difference lands on the last line that has a result of the rule, on its row
/// and its `Total`. A line passed on the way that has only an apportion row of it gets the difference there.
///
/// @param money what the pool brought.
void SettlePool(RuleRun& run, const LinePtrs& lines, double money);

}  // namespace Corvane

#endif
