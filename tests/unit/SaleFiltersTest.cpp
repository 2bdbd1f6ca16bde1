// The tests of single filter rows: time and payment.
#include "rule/SaleFilters.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <string>

#include "rule/RuleRows.h"

using Corvane::MatchPay;
using Corvane::MatchTime;
using Corvane::ProPayMode;
using Corvane::ProTime;
using Corvane::Text;

namespace {

// --- Time: dates -----------------------------------------------------------------------------------------------------

/// A row for every hour of every day in a span.
ProTime Days(Text startDate, Text endDate) {
  ProTime row;
  row.StartDate = startDate;
  row.EndDate = endDate;
  row.Frequency = "DAY";
  return row;
}

/// A row for some weekdays, from the year 0 on until long after.
ProTime Weekly(Text weekDays) {
  ProTime row = Days("", "~");
  row.Frequency = "WEEK";
  row.WeekDays = weekDays;
  return row;
}

TEST(MatchTime, DatesAreComparedAsTexts) {
  const ProTime row = Days("2026-11-20", "2026-11-22");
  EXPECT_FALSE(MatchTime(row, "2026-11-2", "10:00:00"));
  EXPECT_FALSE(MatchTime(row, "2026-11-22 ", "10:00:00"));
  EXPECT_FALSE(MatchTime(row, "2026-9-21", "10:00:00"));
  EXPECT_TRUE(MatchTime(row, "2026-11-21T", "10:00:00"));
  EXPECT_TRUE(MatchTime(Days("a", "c"), "b", "10:00:00"));
}

TEST(MatchTime, ANullDateIsTheEmptyText) {
  EXPECT_FALSE(MatchTime(Days("2026-11-20", "2026-11-22"), nullptr, "10:00:00"));
  EXPECT_TRUE(MatchTime(Days("", "2026-11-22"), nullptr, "10:00:00"));
}

TEST(MatchTime, ARowThatLacksADateOrItsFrequencyMatchesNothing) {
  const ProTime whole = Days("2026-11-20", "2026-11-22");
  ProTime row = whole;
  row.StartDate = nullptr;
  EXPECT_FALSE(MatchTime(row, "2026-11-21", "10:00:00"));
  row = whole;
  row.EndDate = nullptr;
  EXPECT_FALSE(MatchTime(row, "2026-11-21", "10:00:00"));
  row = whole;
  row.Frequency = nullptr;
  EXPECT_FALSE(MatchTime(row, "2026-11-21", "10:00:00"));
  EXPECT_FALSE(MatchTime(ProTime(), "2026-11-21", "10:00:00"));
}

TEST(MatchTime, AnyFrequencyButWeekMeansEveryDay) {
  for (const Text frequency : {"", "DAY", "MONTH", "week", "WEEK "}) {
    SCOPED_TRACE(frequency);
    ProTime row = Days("2026-11-20", "2026-11-22");
    row.Frequency = frequency;
    row.WeekDays = "3";
    EXPECT_TRUE(MatchTime(row, "2026-11-21", "10:00:00"));
  }
}

// --- Time: weekdays --------------------------------------------------------------------------------------------------

struct KnownDay {
  Text Date;
  int Weekday;
};

// From the calendar: Sunday = 0 to Saturday = 6.
TEST(MatchTime, KnowsTheWeekdayOfADate) {
  const KnownDay days[] = {
      {"1901-01-01", 2}, {"1904-02-28", 0}, {"1904-02-29", 1}, {"1904-03-01", 2}, {"1999-12-31", 5}, {"2000-02-28", 1},
      {"2000-02-29", 2}, {"2000-03-01", 3}, {"2023-12-31", 0}, {"2024-02-28", 3}, {"2024-02-29", 4}, {"2024-03-01", 5},
      {"2024-12-31", 2}, {"2025-01-01", 3}, {"2026-01-31", 6}, {"2026-02-01", 0}, {"2026-04-30", 4}, {"2026-05-31", 0},
      {"2026-06-30", 2}, {"2026-07-31", 5}, {"2026-08-31", 1}, {"2026-09-30", 3}, {"2026-10-31", 6}, {"2026-11-21", 6},
      {"2026-11-22", 0}, {"2026-12-31", 4}, {"2099-12-31", 4}, {"2100-02-28", 0}, {"2100-03-01", 1}, {"2400-02-29", 2},
      {"2400-03-01", 3}};
  for (const KnownDay& day : days) {
    for (int weekday = 0; weekday <= 8; ++weekday) {
      SCOPED_TRACE(std::string(day.Date) + " on " + std::to_string(weekday));
      EXPECT_EQ(MatchTime(Weekly(std::to_string(weekday).c_str()), day.Date, "10:00:00"), weekday == day.Weekday);
    }
  }
}

// 2026-11-22 is a Sunday, which other calendars number 7.
TEST(MatchTime, SevenInTheWeekdaysNeverMatches) {
  for (const Text date : {"2026-11-21", "2026-11-22", "2026-11-23", "2026-13-01", "2026-11"}) {
    SCOPED_TRACE(date);
    EXPECT_FALSE(MatchTime(Weekly("7"), date, "10:00:00"));
  }
}

// 2026-11-21 is a Saturday.
TEST(MatchTime, OneOfTheWeekdaysIsEnough) {
  for (const Text weekDays : {"6", "0,6", "6,0", "1,2,6,3", " 6", "06", "6x", "1, 6 ,3", "+6"}) {
    SCOPED_TRACE(weekDays);
    EXPECT_TRUE(MatchTime(Weekly(weekDays), "2026-11-21", "10:00:00"));
  }
  for (const Text weekDays : {"0", "0,1,2,3,4,5", "60", "16", "x6", "5;6", "-6", "13"}) {
    SCOPED_TRACE(weekDays);
    EXPECT_FALSE(MatchTime(Weekly(weekDays), "2026-11-21", "10:00:00"));
  }
}

TEST(MatchTime, AWeeklyRowStillAsksForTheDates) {
  ProTime row = Weekly("6");
  row.EndDate = "2026-11-20";
  EXPECT_FALSE(MatchTime(row, "2026-11-21", "10:00:00"));
}

TEST(MatchTime, AWeeklyRowStillAsksForTheHours) {
  ProTime row = Weekly("6");
  row.StartTime = "10:00:01";
  row.EndTime = "23:59:59";
  EXPECT_FALSE(MatchTime(row, "2026-11-21", "10:00:00"));
}

// The days are counted on, whatever the month holds: 2026-02-30 counts as 2026-03-02, a Monday.
TEST(MatchTime, ADayBeyondTheMonthCountsOn) {
  EXPECT_TRUE(MatchTime(Weekly("1"), "2026-02-30", "10:00:00"));
  EXPECT_FALSE(MatchTime(Weekly("0,2,3,4,5,6"), "2026-02-30", "10:00:00"));
}

TEST(MatchTime, ADateThatIsNoneHasNoWeekday) {
  for (const Text date : {"2026-00-01", "2026-13-01", "2026-99-01", "2026--1-01", "2026-11", "2026", "", "20261121",
                          "2026/11/21", "Saturday"}) {
    SCOPED_TRACE(date);
    EXPECT_FALSE(MatchTime(Weekly("0,1,2,3,4,5,6"), date, "10:00:00"));
  }
}

// 1901-01-01 is the first day of the count. 1900-01-01 comes out as -363, which leaves -6 or, counted up, 1.
TEST(MatchTime, AYearBeforeTheCountIsNoOtherDay) {
  EXPECT_FALSE(MatchTime(Weekly("0,2,3,4,5,6,7"), "1900-01-01", "10:00:00"));
}

TEST(MatchTime, AHugeYearTakesNoTime) {
  const auto begin = std::chrono::steady_clock::now();
  for (const Text date : {"2147483647-01-01", "2147483648-12-31", "-2147483648-01-01", "99999999999999999999-01-01",
                          "2026-99999999999-01", "2026-11-99999999999"}) {
    SCOPED_TRACE(date);
    EXPECT_FALSE(MatchTime(Weekly("7"), date, "10:00:00"));
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
}

// --- Time: hours -----------------------------------------------------------------------------------------------------

struct HoursRow {
  Text StartTime;
  Text EndTime;
  Text Time;
  bool Expected;
};

TEST(MatchTime, Hours) {
  const HoursRow rows[] = {
      {"08:00:00", "12:00:00", "07:59:59", false},
      {"08:00:00", "12:00:00", "08:00:00", true},
      {"08:00:00", "12:00:00", "12:00:00", true},
      {"08:00:00", "12:00:00", "12:00:01", false},
      {"08:00:00", "12:00:00", "8:30:00", false},
      {"08:00:00", "12:00:00", nullptr, false},
      {"12:00:00", "08:00:00", "10:00:00", false},
      // An empty start time is the whole day, whatever the end time says.
      {"", "08:00:00", "10:00:00", true},
      {nullptr, "08:00:00", "10:00:00", true},
      {nullptr, nullptr, "10:00:00", true},
      {"", "", nullptr, true},
      // A start time without an end time matches nothing.
      {"08:00:00", "", "10:00:00", false},
      {"08:00:00", nullptr, "08:00:00", false},
      {"00:00:00", nullptr, "07:00:00", false},
  };
  for (const HoursRow& hours : rows) {
    SCOPED_TRACE(std::string(Corvane::OrEmpty(hours.StartTime)) + " to " + Corvane::OrEmpty(hours.EndTime) + " at " +
                 Corvane::OrEmpty(hours.Time));
    ProTime row = Days("2026-11-20", "2026-11-22");
    row.StartTime = hours.StartTime;
    row.EndTime = hours.EndTime;
    EXPECT_EQ(MatchTime(row, "2026-11-21", hours.Time), hours.Expected);
  }
}

TEST(MatchTime, ARowMadeFromDatesHoldsForWholeDays) {
  const ProTime row("R1", "2026-11-20", "2026-11-22", "DAY", "1", "2");
  EXPECT_STREQ(row.BillNo, "R1");
  EXPECT_STREQ(row.StartDate, "2026-11-20");
  EXPECT_STREQ(row.EndDate, "2026-11-22");
  EXPECT_STREQ(row.StartTime, "00:00:00");
  EXPECT_STREQ(row.EndTime, "23:59:59");
  EXPECT_STREQ(row.Frequency, "DAY");
  EXPECT_STREQ(row.WeekDays, "1");
  EXPECT_STREQ(row.MonthDays, "2");
  EXPECT_TRUE(MatchTime(row, "2026-11-21", "00:00:00"));
  EXPECT_TRUE(MatchTime(row, "2026-11-21", "23:59:59"));
}

// --- Payment ---------------------------------------------------------------------------------------------------------

ProPayMode Pay(Text payMode, double money) {
  ProPayMode row;
  row.PayMode = payMode;
  row.PayMoney = money;
  return row;
}

TEST(MatchPay, APaymentOfNoStatedAmountMeetsEveryThreshold) {
  EXPECT_TRUE(MatchPay(Pay("01", 100), "01", 0));
  EXPECT_TRUE(MatchPay(Pay("01", 100), "01", -0.0));
  EXPECT_FALSE(MatchPay(Pay("01", 100), "01", 0.0001));
  EXPECT_FALSE(MatchPay(Pay("01", 100), "01", -0.0001));
}

TEST(MatchPay, AsksForTheSameWayOfPaying) {
  EXPECT_FALSE(MatchPay(Pay("01", 100), "02", 200));
  EXPECT_FALSE(MatchPay(Pay("01", 100), "1", 200));
  EXPECT_FALSE(MatchPay(Pay("vip", 0), "VIP", 200));
  EXPECT_FALSE(MatchPay(Pay("01", 100), nullptr, 200));
  EXPECT_FALSE(MatchPay(Pay("01", 100), "02", 0));
}

// Any way of paying is for the stage to grant, not for the row's test.
TEST(MatchPay, AStarIsAWayOfPayingLikeAnyOther) { EXPECT_FALSE(MatchPay(Pay("*", 0), "01", 200)); }

TEST(MatchPay, AnAmountThatIsNoNumberMeetsNothing) {
  EXPECT_FALSE(MatchPay(Pay("01", 0), "01", std::numeric_limits<double>::quiet_NaN()));
}

}  // namespace
