#ifndef QNCORVANE_RULE_PROBASE_H
#define QNCORVANE_RULE_PROBASE_H

#include <vector>

#include "rule/ProInfo.h"
#include "rule/RuleOutcome.h"
#include "rule/RuleRows.h"
#include "sale/ProSale.h"

namespace Corvane {

/// The common part of all rule classes: header and filters, filled once from the rule's XML and only read afterwards.
/// It has no virtual operations: the registry keeps rules as one of a closed set of classes.
class ProBase {
 public:
  ProInfo Info;
  std::vector<ProOrgFilter> OrgFilters;
  std::vector<ProTime> Times;
  std::vector<ProPayMode> PayModes;
  std::vector<ProVip> Vips;

  /// Whether the rule applies to the sale at all: its time, organisation, member and payment filters, in this order.
  /// The log tells each stage that was passed, and which one refused. The sale's date and time are those of its first
  /// line; a sale without lines meets no time.
  ///
  /// @param outcome is told which one refused, by what; null where nobody asks.
  bool CheckBaseCondition(const ProSale& sale, RuleOutcome* outcome = nullptr) const;

  /// The member type under which the rule acts: that of the sale's first member, when the sale has one and the rule
  /// asks for members; otherwise the empty text.
  Text MemberText(const ProSale& sale) const;

 private:
  bool MeetsTime(const ProSale& sale, RuleOutcome* outcome) const;
  bool MeetsOrganisation(const ProSale& sale, RuleOutcome* outcome) const;
  bool MeetsMember(const ProSale& sale, RuleOutcome* outcome) const;
  bool MeetsPayment(const ProSale& sale, RuleOutcome* outcome) const;
  void TellTime(const ProSale& sale, RuleOutcome* outcome) const;
  void TellPayment(const ProSale& sale, RuleOutcome* outcome) const;
};

}  // namespace Corvane

#endif
