#ifndef QNCORVANE_RULE_SALEFILTERS_H
#define QNCORVANE_RULE_SALEFILTERS_H

#include "base/Text.h"
#include "rule/RuleRows.h"

namespace Corvane {

// The tests of single filter rows.

/// Whether a day and an hour lie in a row's span. Dates and times are compared as texts, byte by byte. A row that lacks
/// its start date, end date or frequency matches nothing; neither does a row with a start time and no end time.
///
/// @param date "YYYY-MM-DD"
/// @param time "HH:MM:SS"
bool MatchTime(const ProTime& row, Text date, Text time);

/// Whether a payment meets a row: the same way of paying, and either exactly 0.00 paid (a payment of no stated amount
/// meets whatever the row asks) or at least the row's money.
bool MatchPay(const ProPayMode& row, Text payMode, double money);

}  // namespace Corvane

#endif
