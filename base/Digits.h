#ifndef QNCORVANE_BASE_DIGITS_H
#define QNCORVANE_BASE_DIGITS_H

#include <cstdint>
#include <optional>

namespace Corvane {

/// The digits of a number down to some decimal, exact and without its sign: how many units of that decimal it has, and
/// how what is left compares with half a unit. The base of the forms in base/Numbers.h.
struct Digits {
  std::uint64_t Units;
  int RestToHalf;  ///< below, at or above 0

  std::uint64_t HalfToEven() const { return Units + (RestToHalf > 0 || (RestToHalf == 0 && Units % 2 == 1) ? 1U : 0U); }
  std::uint64_t HalfAway() const { return Units + (RestToHalf >= 0 ? 1U : 0U); }
};

/// Made by whole numbers alone.
///
/// @param decimals 0 to 6.
/// @return nothing for a number from 2^40 on, for one below 2^-8 that may have digits, and for what is not finite: those
///         are left to the libraries.
std::optional<Digits> DigitsOf(double value, int decimals);

/// Puts a number of so many units to `to`, with the point before its decimals, if it has any. @return the end of it.
char* PutUnits(bool isNegative, std::uint64_t units, int decimals, char* to);

}  // namespace Corvane

#endif
