#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "promo/mz/CouponDays.h"

namespace Corvane {
namespace {

std::string After(std::int32_t days, const std::string& dateTime) {
  CouponType coupon;
  coupon.LimitType = "1";
  coupon.EndDate = "2030-12-31";
  TextPool texts;
  return AddCouponDays(coupon, dateTime, days, texts);
}

TEST(CouponDays, AFixedValidityIsTheHeadersEndDate) {
  CouponType coupon;
  coupon.LimitType = "0";
  coupon.EndDate = "2030-12-31";
  TextPool texts;
  EXPECT_STREQ(AddCouponDays(coupon, "2026-11-21 10:00:00", 7, texts), "2030-12-31");
}

TEST(CouponDays, NoDaysAreTheDayOfTheSaleWithoutLeadingZeros) {
  EXPECT_EQ(After(0, "2026-01-05 09:08:07"), "2026-1-5 09:08:07");
}

TEST(CouponDays, DaysGoIntoTheNextMonth) { EXPECT_EQ(After(10, "2026-11-21 10:00:00"), "2026-12-1 10:00:00"); }

TEST(CouponDays, TheLastDayOfAMonthStaysInIt) { EXPECT_EQ(After(9, "2026-11-21 10:00:00"), "2026-11-30 10:00:00"); }

TEST(CouponDays, DaysGoIntoTheNextYear) { EXPECT_EQ(After(41, "2026-11-21 10:00:00"), "2027-1-1 10:00:00"); }

TEST(CouponDays, FebruaryOfALeapYearHas29) {
  EXPECT_EQ(After(1, "2028-02-28 10:00:00"), "2028-2-29 10:00:00");
  EXPECT_EQ(After(2, "2028-02-28 10:00:00"), "2028-3-1 10:00:00");
}

TEST(CouponDays, FebruaryOfACommonYearHas28) { EXPECT_EQ(After(1, "2027-02-28 10:00:00"), "2027-3-1 10:00:00"); }

TEST(CouponDays, ACenturyIsALeapYearOnlyByFourHundred) {
  EXPECT_EQ(After(1, "2100-02-28 10:00:00"), "2100-3-1 10:00:00");
  EXPECT_EQ(After(1, "2000-02-28 10:00:00"), "2000-2-29 10:00:00");
}

// From 21 November 344 days are 21 + 344 = day 365 of that November: as long as the year, and not a year later.
TEST(CouponDays, AsManyDaysAsTheYearHasAreNoYear) {
  EXPECT_EQ(After(344, "2026-11-21 10:00:00"), "2027-10-31 10:00:00");
}

// 400 years have 146097 days.
TEST(CouponDays, FourHundredYearsOfDaysAndOneMore) {
  EXPECT_EQ(After(146098, "2026-11-21 10:00:00"), "2426-11-22 10:00:00");
}

TEST(CouponDays, AYearOfDays) { EXPECT_EQ(After(365, "2026-11-21 10:00:00"), "2027-11-21 10:00:00"); }

TEST(CouponDays, ALeapYearOfDaysFromItsFirstDay) { EXPECT_EQ(After(366, "2028-01-01 10:00:00"), "2029-1-1 10:00:00"); }

// The years that are taken off are those from the year of the sale on: 2028 has 366 days, also behind its February.
TEST(CouponDays, ALeapYearOfDaysFromBehindItsFebruary) {
  EXPECT_EQ(After(366, "2028-03-01 10:00:00"), "2029-3-1 10:00:00");
}

// 365 + 365 + 366 from 2026 on, and one day more.
TEST(CouponDays, SeveralYears) { EXPECT_EQ(After(1097, "2026-06-15 10:00:00"), "2029-6-16 10:00:00"); }

// February keeps the length that it has in the year reached by whole years: 60 days from 31 December are 29 of them
// behind January, and 2027 has a February of 28.
TEST(CouponDays, FebruaryIsNotWorkedOutAgainAtTheChangeOfYear) {
  EXPECT_EQ(After(60, "2027-12-31 10:00:00"), "2028-3-1 10:00:00");
  EXPECT_EQ(After(60, "2028-12-31 10:00:00"), "2029-2-29 10:00:00");
}

// One year back and 365 days on: 364 + 21 = 385 days from November 2025.
TEST(CouponDays, NegativeDays) {
  EXPECT_EQ(After(-1, "2026-11-21 10:00:00"), "2026-11-20 10:00:00");
  EXPECT_EQ(After(-30, "2026-11-21 10:00:00"), "2026-10-22 10:00:00");
}

// More than a year back is no number of days in that year any more; the day stays where it is.
TEST(CouponDays, MoreThanAYearBackStaysInTheMonth) {
  EXPECT_EQ(After(-400, "2026-11-21 10:00:00"), "2025-11--14 10:00:00");  // 21 - 400 + 365
}

TEST(CouponDays, TheTimeStaysAsItIs) { EXPECT_EQ(After(1, "2026-11-21 whenever"), "2026-11-22 whenever"); }

TEST(CouponDays, ADateThatIsNoneDoesNoHarm) {
  for (const char* date : {"", " ", "never", "2026", "2026-13-40 10:00:00", "2026-0-1 1", "2026--1-5 x", "-----",
                           "99999999999-99999999999-99999999999 10:00:00", "2026-11-21"}) {
    EXPECT_NE(After(30, date), "") << date;
  }
}

TEST(CouponDays, EnormousNumbersOfDaysEnd) {
  EXPECT_NE(After(std::numeric_limits<std::int32_t>::max(), "2026-11-21 10:00:00"), "");
  EXPECT_NE(After(std::numeric_limits<std::int32_t>::min(), "2026-11-21 10:00:00"), "");
  EXPECT_NE(After(std::numeric_limits<std::int32_t>::max(), "2147483647-12-31 10:00:00"), "");
}

}  // namespace
}  // namespace Corvane
