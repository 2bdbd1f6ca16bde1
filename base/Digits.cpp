#include "base/Digits.h"

#include <cmath>
#include <cstddef>
#include <cstring>

#include <charconv>

namespace Corvane {

namespace {

constexpr std::uint64_t kPowersOfTen[] = {1, 10, 100, 1000, 10000, 100000, 1000000};
constexpr std::ptrdiff_t kMaxWholeDigits = 20;

}  // namespace

std::optional<Digits> DigitsOf(double value, int decimals) {
  constexpr double kLimit = 1099511627776.0;  // with six decimals, the units fit 64 bits
  constexpr double kLeast = 1.0 / 256;
  const double size = std::fabs(value);
  if (size == 0 || (decimals <= 2 && size < kLeast)) return Digits{0, -1};
  if (!(size >= kLeast && size < kLimit)) return std::nullopt;
  // size == significand / 2^shift, and shift is within 13 and 60: ten times a fraction fits 64 bits.
  std::uint64_t bits = 0;
  std::memcpy(&bits, &size, sizeof bits);
  constexpr std::uint64_t kLeadingBit = std::uint64_t{1} << 52U;
  const std::uint64_t significand = (bits & (kLeadingBit - 1)) | kLeadingBit;
  const std::uint64_t shift = 1075 - (bits >> 52U);
  const std::uint64_t one = std::uint64_t{1} << shift;
  std::uint64_t units = significand >> shift;
  std::uint64_t fraction = significand & (one - 1);
  for (; decimals > 0; --decimals) {
    fraction *= 10;
    units = units * 10 + (fraction >> shift);
    fraction &= one - 1;
  }
  const std::uint64_t half = one / 2;
  return Digits{units, fraction < half ? -1 : fraction == half ? 0 : 1};
}

char* PutUnits(bool isNegative, std::uint64_t units, int decimals, char* to) {
  if (isNegative) *to++ = '-';
  const std::uint64_t unit = kPowersOfTen[decimals];
  to = std::to_chars(to, to + kMaxWholeDigits, units / unit).ptr;
  if (decimals == 0) return to;
  *to++ = '.';
  std::uint64_t behind = units % unit;
  for (int place = decimals; place-- > 0; behind /= 10) to[place] = static_cast<char>('0' + behind % 10);
  return to + decimals;
}

}  // namespace Corvane
