#include "rule/SaleFilters.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/Calendar.h"
#include "base/Numbers.h"

namespace Corvane {

namespace {

std::vector<std::int32_t> SplitNumbers(std::string_view text, char separator) {
  std::vector<std::int32_t> numbers;
  for (;;) {
    const std::size_t end = text.find(separator);
    numbers.push_back(ToInt32(std::string(text.substr(0, end)).c_str()));
    if (end == std::string_view::npos) return numbers;
    text.remove_prefix(end + 1);
  }
}

/// Leap years from 1901 up to but not including `year`; none for an earlier year.
std::int64_t LeapYearsBefore(std::int64_t year) {
  const auto upTo = [](std::int64_t last) { return last / 4 - last / 100 + last / 400; };
  return year <= 1901 ? 0 : upTo(year - 1) - upTo(1900);
}

bool IsOneOfWeekDays(Text weekDays, Text date) {
  if (IsEmpty(weekDays)) return false;
  const std::vector<std::int32_t> days = SplitNumbers(weekDays, ',');
  const std::int64_t weekday = WeekdayOf(date);
  // Numbered from Sunday = 0: a "7" in the list never matches.
  return weekday < 7 && std::find(days.begin(), days.end(), weekday) != days.end();
}

TimeFit FitOfHours(const ProTime& row, Text time) {
  if (IsEmpty(row.StartTime)) return TimeFit::Fits;
  if (CompareBytes(time, row.StartTime) < 0) return TimeFit::OutsideHours;
  if (IsEmpty(row.EndTime)) return TimeFit::WithoutEnd;
  return CompareBytes(time, row.EndTime) <= 0 ? TimeFit::Fits : TimeFit::OutsideHours;
}

}  // namespace

std::int64_t WeekdayOf(Text date) {
  constexpr std::array<std::int64_t, 12> kDaysBefore = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
  constexpr std::int64_t kNoDay = 7;
  const std::vector<std::int32_t> parts = SplitNumbers(OrEmpty(date), '-');
  if (parts.size() < 3) return kNoDay;
  const std::int64_t year = parts[0];
  const std::int64_t month = parts[1];
  if (month < 1 || month > 12) return kNoDay;
  const std::int64_t leapDay = IsLeapYear(year) && month >= 3 ? 1 : 0;
  const std::int64_t days = (year - 1901) * 365 + kDaysBefore[static_cast<std::size_t>(month - 1)] + parts[2] +
                            leapDay + LeapYearsBefore(year) + 1;
  return days % 7;
}

TimeFit FitOfTime(const ProTime& row, Text date, Text time) {
  if (row.StartDate == nullptr || row.EndDate == nullptr || row.Frequency == nullptr) return TimeFit::Incomplete;
  if (CompareBytes(date, row.StartDate) < 0 || CompareBytes(date, row.EndDate) > 0) return TimeFit::OutsideDates;
  if (Same(row.Frequency, kWeekly) && !IsOneOfWeekDays(row.WeekDays, date)) return TimeFit::OutsideWeekDays;
  return FitOfHours(row, time);
}

bool MatchPay(const ProPayMode& row, Text payMode, double money) {
  return Same(row.PayMode, payMode) && (money == 0.0 || money >= row.PayMoney);
}

}  // namespace Corvane
