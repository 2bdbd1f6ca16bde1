#ifndef QNCORVANE_PROMO_MZ_PROMZPAY_H
#define QNCORVANE_PROMO_MZ_PROMZPAY_H

#include <tinyxml.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "rule/LineSelection.h"
#include "rule/ProBase.h"
#include "rule/RuleRun.h"

namespace Corvane {

/// How a pay-linked rule wants to be paid.
struct ProCtr {
  Text BillNo = nullptr;
  std::int32_t SerialNo = 0;
  bool WholeBillPay = false;  ///< the sale must be paid in one payment
  Text PayType = nullptr;     ///< the `PayMode` that counts
  double PriceTotal = 0;      ///< the most that the rule gives on one sale
};

/// A range of card numbers that a pay-linked rule takes; both ends belong to it.
struct CardNoFilter {
  Text BillNo = nullptr;
  std::int32_t SerialNo = 0;
  Text BgnCardNo = nullptr;
  Text EndCardNo = nullptr;
};

/// The lines that a pay-linked rule asks for. A line that two rows name is listed, and counted, twice.
struct PayLines {
  LinePtrs Lines;
  double Money = 0;  ///< the sum of `Total` over the lines
};

/// "MZZF", the pay-linked reduction: who pays so much in a named way, for instance with a certain card, gets a part of
/// it back as a discount on all lines. All data comes from the rule's XML; no table is read.
class ProMzPay : public ProBase {
 public:
  /// Reads the groups "PluCondition", "ProCtr", "CardNoFilter" and "PluAction" besides header and filters.
  void InitRule(Text xml);

  void CalcRule(RuleRun& run);

 private:
  /// What the steps make of a payment.
  struct Reduction {
    double Given = 0;  ///< money off
    double Used = 0;   ///< money paid that the steps took
    double Left = 0;   ///< money paid that no step took
  };

  void ReadOwnGroup(const TiXmlElement& group);
  double PaySum(const RuleRun& run) const;
  void TellNotPaid(const RuleRun& run) const;
  Reduction WalkSteps(const RuleRun& run, double paySum, double goodsMoney) const;
  static Reduction TakeStep(const Reduction& taken, double price, double gain, double limit);

  std::vector<PluCondition> m_conditions;  ///< goods that must be bought
  /// `DisPrice` is the money paid that a step takes, `DisRate` what the customer pays of it in the end.
  std::vector<PluAction> m_steps;
  std::vector<CardNoFilter> m_cardRanges;
  ProCtr m_control;
};

/// The lines that all rows together ask for; without rows all lines. `Contain` of the rows means nothing here.
/// @return nothing when the goods of a row don't come to its `MinNum` or `MinMoney`.
///
/// @param outcome is told of which; null where nobody asks.
std::optional<PayLines> SelectPayLines(const std::vector<PluCondition>& conditions, std::vector<SalePlu>& lines,
                                       RuleOutcome* outcome = nullptr);

/// Whether a card number lies in one of the ranges; without ranges it does. Numbers compare as texts, byte by byte.
bool InCardRange(const std::vector<CardNoFilter>& ranges, Text cardNo);

}  // namespace Corvane

#endif
