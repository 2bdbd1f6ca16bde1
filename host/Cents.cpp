#include "host/Cents.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <system_error>

#include "base/Numbers.h"

namespace Corvane::Host {

namespace {

/// The most cents that are told, upwards and downwards.
constexpr std::int64_t kMostCents = std::numeric_limits<std::int64_t>::max();

}  // namespace

std::int64_t CentsOf(std::string digits) {
  digits.erase(std::remove(digits.begin(), digits.end(), '.'), digits.end());
  std::int64_t cents = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), cents);
  if (error == std::errc::result_out_of_range) return digits.front() == '-' ? -kMostCents : kMostCents;
  return std::max(cents, -kMostCents);
}

std::string UnitsOf(std::int64_t cents) {
  constexpr std::int64_t kCentsOfUnit = 100;
  constexpr std::int64_t kTen = 10;
  const std::int64_t rest = std::abs(cents % kCentsOfUnit);
  const std::string sign = cents < 0 ? "-" : "";
  return sign + std::to_string(std::abs(cents / kCentsOfUnit)) + (rest < kTen ? ".0" : ".") + std::to_string(rest);
}

std::int64_t SumOfCents(std::int64_t left, std::int64_t right) {
  std::int64_t sum = 0;
  if (!__builtin_add_overflow(left, right, &sum) && sum >= -kMostCents) return sum;
  return left < 0 ? -kMostCents : kMostCents;
}

std::int64_t PrintedCents(double amount) { return CentsOf(FormatF2(amount)); }

}  // namespace Corvane::Host
