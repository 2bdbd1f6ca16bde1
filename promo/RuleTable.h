#ifndef QNCORVANE_PROMO_RULETABLE_H
#define QNCORVANE_PROMO_RULETABLE_H

#include "base/Text.h"
#include "db/QnPosDBPro.h"
#include "promo/AnyRule.h"

namespace Corvane {

/// Makes an empty rule of the class that the type word names, compared exactly. The rule's own `ProType` plays no part.
///
/// @param db copied into the rule, if its class reads tables.
/// @return null for a word that is in no row of the table. "MZZQ" is not in it on purpose: a rule that gives coupons is
///         loaded as "MZYQ".
RulePtr MakeRule(Text type, const QnPosDBPro& db);

}  // namespace Corvane

#endif
