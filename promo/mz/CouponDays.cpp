#include "promo/mz/CouponDays.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "base/Calendar.h"
#include "base/Numbers.h"

namespace Corvane {

namespace {

/// Cuts the text at its first separator and moves on behind it. @return the piece in front.
std::string_view TakePiece(std::string_view& text, char separator) {
  const std::size_t end = text.find(separator);
  const std::string_view piece = text.substr(0, end);
  text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
  return piece;
}

std::int64_t TakeNumber(std::string_view& date) { return ToInt32(std::string(TakePiece(date, '-')).c_str()); }

/// A day as its three numbers; wide enough that no count of days leaves it.
struct Day {
  std::int64_t Year = 0;
  std::int64_t Month = 0;
  std::int64_t Number = 0;  ///< day of the month
};

std::int64_t LengthOfYear(std::int64_t year) { return IsLeapYear(year) ? 366 : 365; }

/// Moves the year on by the whole years in `days`. @return the days left inside the year reached.
std::int64_t AddWholeYears(std::int64_t& year, std::int64_t days) {
  if (days < 0) {
    // Not the length of the year before: one year is taken off and 365 days added.
    --year;
    return days + 365;
  }
  constexpr std::int64_t kDaysIn400Years = 146097;
  year += days / kDaysIn400Years * 400;
  days %= kDaysIn400Years;
  for (; days >= LengthOfYear(year); ++year) days -= LengthOfYear(year);
  return days;
}

/// Turns a day number beyond its month into a day of a later month.
void SettleMonth(Day& day) {
  std::array<std::int64_t, 12> lengths = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (IsLeapYear(day.Year)) lengths[1] = 29;
  const bool isMonth = day.Month >= 1 && day.Month <= 12;
  if (!isMonth || day.Number < 1) return;
  // Whole rounds through the months come first; they end on the same month.
  const std::int64_t round = LengthOfYear(day.Year);
  day.Year += (day.Number - 1) / round;
  day.Number = (day.Number - 1) % round + 1;
  for (auto place = static_cast<std::size_t>(day.Month - 1); day.Number > lengths[place]; place = (place + 1) % 12) {
    day.Number -= lengths[place];
    day.Month = day.Month % 12 + 1;
    if (day.Month == 1) ++day.Year;
  }
}

}  // namespace

Text AddCouponDays(const CouponType& coupon, const std::string& dateTime, std::int32_t days, TextPool& texts) {
  if (Same(coupon.LimitType, "0")) return coupon.EndDate;
  std::string_view time = dateTime;
  std::string_view date = TakePiece(time, ' ');
  Day day;
  day.Year = TakeNumber(date);
  day.Month = TakeNumber(date);
  day.Number = TakeNumber(date);
  day.Number += AddWholeYears(day.Year, days);
  SettleMonth(day);
  return texts.Keep(Join(std::to_string(day.Year), "-", std::to_string(day.Month), "-", std::to_string(day.Number), " ",
                         std::string(time)));
}

}  // namespace Corvane
