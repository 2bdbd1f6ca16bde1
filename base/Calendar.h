#ifndef QNCORVANE_BASE_CALENDAR_H
#define QNCORVANE_BASE_CALENDAR_H

#include <cstdint>

namespace Corvane {

/// Divisible by 4 and not by 100, or divisible by 400.
constexpr bool IsLeapYear(std::int64_t year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

}  // namespace Corvane

#endif
