#ifndef QNCORVANE_RULE_RULEREADER_H
#define QNCORVANE_RULE_RULEREADER_H

#include <tinyxml.h>

#include <functional>
#include <vector>

#include "rule/ProBase.h"
#include "rule/RuleRows.h"

namespace Corvane {

/// Reads a group that only some rule types have; called with each group that is none of the four filters.
using OwnGroupReader = std::function<void(const TiXmlElement& group)>;

/// Fills a rule from its XML: the header, the filter groups "OrgFilter", "PayMode", "ProTime" and "Vip", and what
/// `readOwnGroup` makes of the other groups. Of the element names only those of the groups count. All rule elements of
/// the document go into the one rule: later header attributes overwrite earlier ones, rows add up. A text that doesn't
/// parse leaves the rule empty; there are no errors. A text that is no number reads as 0.
void ReadRule(Text xml, ProBase& rule, const OwnGroupReader& readOwnGroup = nullptr);

/// The attributes that are read of the rows of a group, or of the rule's own element for "Rule"; none for a group that only
/// some types read.
std::vector<Text> AttributesRead(Text group);

// Readers of row families. Each child element of the group is one row, appended to `rows`; a row's `Index` is its place
// in the order of reading, never an attribute. `billNo` is the rule's number.

void ReadPluCondition(const TiXmlElement& group, Text billNo, std::vector<PluCondition>& rows);

/// With the attribute `ActionType` "TC" on the group, every row's `DisPrice` is the group's `PrjTotal`.
void ReadPluAction(const TiXmlElement& group, Text billNo, std::vector<PluAction>& rows);

void ReadPluAddAction(const TiXmlElement& group, Text billNo, std::vector<PluAddAction>& rows);

/// From the attributes of the group element itself and of its child elements. The three booleans are true as soon as
/// their attribute is there, whatever it says.
void ReadCouponType(const TiXmlElement& group, CouponType& coupon);

void ReadCouponDenomination(const TiXmlElement& group, std::vector<CouponDenomination>& rows);

}  // namespace Corvane

#endif
