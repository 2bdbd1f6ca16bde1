#ifndef QNCORVANE_TESTS_CALLS_FULLAMOUNT_H
#define QNCORVANE_TESTS_CALLS_FULLAMOUNT_H

#include <cstddef>
#include <string>
#include <vector>

#include "tests/support/Till.h"

namespace Corvane::Testing {

using Texts = std::vector<std::string>;

/// The text of one group of a result XML, from its opening to its closing mark, as printed.
std::string PrintedGroup(const std::string& result, const std::string& group);

/// One column of a group, in the order in which the sale holds its rows, which is not the printed one: the first line's
/// first row comes first, and sale-level results come before those of the lines.
Texts Held(const std::string& result, const std::string& group, const std::string& column);

/// One column of the offers in a group of "ProGifts", likewise from the first offer to the last. `group` is the group's
/// place as printed.
Texts HeldOffers(const std::string& result, const std::string& column, std::size_t group = 0);

/// The entries behind the one that ends the reading of the sale.
Texts AfterReading(const Texts& log);

/// The entries of a rule's base conditions when nothing refuses.
Texts BaseConditionsMet();

/// The entries of one question for a line's open quantity, with nothing taken by the rule so far and no limit.
Texts AskedQuantity(const std::string& proType);

/// The entries of several steps, one after the other.
Texts Joined(const std::vector<Texts>& parts);

/// How many entries name a rule; entries that only this rule's number makes up count too.
long Naming(const Texts& log, const std::string& billNo);

/// A tier of a rule that has its offers in its XML.
std::string TierXml(const std::string& threshold, const std::string& sum, const std::string& step = "0",
                    const std::string& stepSum = "0", const std::string& most = "0");

/// An offer of such a rule; `tiers` are its tiers, `groups` its further groups, `more` its further attributes.
std::string OfferXml(const std::string& area, const std::string& tiers, const std::string& groups = "",
                     const std::string& more = "");

/// A till whose store has all tables, for the promotions on a sale's full amount.
class FullAmount : public Till {
 protected:
  void SetUp() override;

  /// An offer of a reduction: BillNo, ListCode, ConAreaType, MaxDiscount, DscIntoPlu.
  static void Offer(const std::string& values);
  /// A tier of such an offer: BillNo, ListCode, BaseMoney, BaseDscMoney, AddMoney, AddDscMoney, SaleMaxIn.
  static void Tier(const std::string& values);
  /// A condition row: BillNo, ListCode, SerialNo, DataId, PluCode, PluType, InRange.
  static void Condition(const std::string& values);
  /// A tier with goods to offer or to free: BillNo, SerialNo, PluCode, BaseConType, BaseConNum, BaseDscType,
  /// BaseDscNum, AddConNum, AddDscNum, SaleMaxIn, DscPrice.
  static void Scheme(const std::string& values);
  /// A tier of giving goods: BillNo, SerialNo, DataId, PluCode, PluType, BaseConType, BaseConNum, BaseDscType,
  /// BaseDscNum, AddConNum, AddDscNum, SaleMaxIn.
  static void Giving(const std::string& values);

  /// Makes a table anew with columns that take anything, null too, and rows in any number.
  static void LooseTable(const std::string& table, const std::string& columns);

  /// Loads a rule whose type word is also its load type.
  static void LoadRule(const std::string& billNo, const std::string& type, const std::string& header = "",
                       const std::string& groups = "");

  /// Runs a mode on the sale "till"; the call must succeed.
  static std::string Result(const std::string& mode, const std::string& xml);
  static std::string MzPromotion(const std::string& xml) { return Result("MzPromotion", xml); }

  /// Sale XML that brings nothing: the sale is calculated on as it stands.
  static std::string AsItStands();
};

}  // namespace Corvane::Testing

#endif
