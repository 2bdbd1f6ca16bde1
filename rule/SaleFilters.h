#ifndef QNCORVANE_RULE_SALEFILTERS_H
#define QNCORVANE_RULE_SALEFILTERS_H

#include <cstdint>

#include "base/Text.h"
#include "rule/RuleRows.h"

namespace Corvane {

// The tests of single filter rows.

/// The `Frequency` of a row that holds on some days of the week; with any other text it holds every day.
constexpr Text kWeekly = "WEEK";

/// How far a day and an hour come through a row: to the first of its demands that they don't meet.
enum class TimeFit { Incomplete, OutsideDates, OutsideWeekDays, OutsideHours, WithoutEnd, Fits };

/// How a day and an hour lie in a row's span. Dates and times are compared as texts, byte by byte. A row that lacks
/// its start date, end date or frequency matches nothing (Incomplete); neither does a row with a start time and no end
/// time (WithoutEnd).
///
/// @param date "YYYY-MM-DD"
/// @param time "HH:MM:SS"
TimeFit FitOfTime(const ProTime& row, Text date, Text time);

/// Whether they lie in it.
inline bool MatchTime(const ProTime& row, Text date, Text time) { return FitOfTime(row, date, time) == TimeFit::Fits; }

/// The day of the week, Sunday = 0 to Saturday = 6; another number for a date that is none.
std::int64_t WeekdayOf(Text date);

/// Whether a payment meets a row: the same way of paying, and either exactly 0.00 paid (a payment of no stated amount
/// meets whatever the row asks) or at least the row's money.
bool MatchPay(const ProPayMode& row, Text payMode, double money);

}  // namespace Corvane

#endif
