#ifndef QNCORVANE_PROMO_MZ_COUPONDAYS_H
#define QNCORVANE_PROMO_MZ_COUPONDAYS_H

#include <cstdint>
#include <string>

#include "base/Text.h"
#include "base/TextPool.h"
#include "rule/RuleRows.h"

namespace Corvane {

/// The end of a coupon's validity.
///
/// With `LimitType` "0" it is the header's fixed `EndDate`. Otherwise it is the given day and a number of days more:
/// year, month and day without leading zeros, joined by "-", a blank, and the time as it was given. Over a change of
/// year the length of February stays that of the first year. Any date and any number of days give a defined text: a
/// date that is none counts its missing numbers as 0, and days behind a month that is none stay with it.
///
/// @param dateTime "YYYY-MM-DD HH:MM:SS"
/// @param days     of validity; negative ones too.
/// @param texts    keeps the text.
Text AddCouponDays(const CouponType& coupon, const std::string& dateTime, std::int32_t days, TextPool& texts);

}  // namespace Corvane

#endif
