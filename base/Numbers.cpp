#include "base/Numbers.h"

#include <clocale>
#include <cstdlib>
#include <cstring>

#include <locale.h>
#include <QString>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

namespace Corvane {

namespace {

constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();

/// The "C" locale as an object, so that reading a number never touches the host's locale.
locale_t PlainLocale() {
  static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
  return plain;
}

double FiniteOrZero(double value) { return std::isfinite(value) ? value : 0; }

bool IsDigit(char letter) { return letter >= '0' && letter <= '9'; }

/// A text that is nothing but a number of few digits, "-12.50": its digits and the power of ten are exact, so that the
/// one division rounds as reading by the library does. @return nothing for any other text.
std::optional<double> PlainNumber(Text text) {
  constexpr int kMaxDigits = 15;
  constexpr std::array<double, kMaxDigits + 1> kPowers = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                          1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  const bool isNegative = *text == '-';
  if (isNegative) ++text;
  std::int64_t number = 0;
  std::size_t digits = 0;
  const auto read = [&] {
    for (; IsDigit(*text) && digits <= kMaxDigits; ++text, ++digits) number = number * 10 + (*text - '0');
  };
  read();
  const std::size_t whole = digits;
  if (*text == '.') {
    ++text;
    read();
  }
  if (*text != '\0' || digits == 0 || digits > kMaxDigits) return std::nullopt;
  const double size = static_cast<double>(number) / kPowers[digits - whole];
  return isNegative ? -size : size;
}

/// The digits of a number, exact: how many units of the last decimal it has, and what is beside them.
struct Digits {
  std::uint64_t Units;
  int RestToHalf;  ///< what is left of the number against half a unit: below, at or above 0

  std::uint64_t HalfToEven() const { return Units + (RestToHalf > 0 || (RestToHalf == 0 && Units % 2 == 1) ? 1U : 0U); }
  std::uint64_t HalfAway() const { return Units + (RestToHalf >= 0 ? 1U : 0U); }
};

constexpr std::uint64_t PowerOfTen(int exponent) { return exponent == 0 ? 1 : 10 * PowerOfTen(exponent - 1); }

/// The digits of the number without its sign, by whole numbers alone.
///
/// @tparam Decimals at most 6.
/// @return nothing for a number from 2^40 on and for one below 2^-8 that may have digits: those are left to the
///         libraries.
template <int Decimals>
std::optional<Digits> DigitsOf(double value) {
  constexpr double kLimit = 1099511627776.0;  // with six decimals, the units fit 64 bits
  constexpr double kLeast = 1.0 / 256;
  const double size = std::fabs(value);
  if (size == 0 || (Decimals == 2 && size < kLeast)) return Digits{0, -1};
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
  for (int decimal = 0; decimal < Decimals; ++decimal) {
    fraction *= 10;
    units = units * 10 + (fraction >> shift);
    fraction &= one - 1;
  }
  const std::uint64_t half = one / 2;
  return Digits{units, fraction < half ? -1 : fraction == half ? 0 : 1};
}

template <int Decimals>
char* PutFixed(double value, char* to) {
  value = FiniteOrZero(value);
  const std::optional<Digits> digits = DigitsOf<Decimals>(value);
  if (!digits) return std::to_chars(to, to + kNumberRoom, value, std::chars_format::fixed, Decimals).ptr;
  constexpr std::uint64_t kUnit = PowerOfTen(Decimals);
  const std::uint64_t units = digits->HalfToEven();
  if (std::signbit(value)) *to++ = '-';
  to = std::to_chars(to, to + kNumberRoom, units / kUnit).ptr;
  *to++ = '.';
  std::uint64_t decimals = units % kUnit;
  for (int decimal = Decimals; decimal-- > 0; decimals /= 10) to[decimal] = static_cast<char>('0' + decimals % 10);
  return to + Decimals;
}

template <int Decimals>
std::string FormatFixed(double value) {
  std::array<char, kNumberRoom> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): it gets what it shows
  char* const begin = buffer.data();
  return {begin, PutFixed<Decimals>(value, begin)};
}

/// The number of so many cents, as if read from its text.
double OfCents(std::uint64_t cents) { return static_cast<double>(cents) / 100; }

QString ReceiptForm(double value) { return QString::number(FiniteOrZero(value), 'f', 2); }

/// Whether a receipt shows these cents for the value. A negative number shows its sign, also where it shows no digits.
bool Prints(double value, std::uint64_t cents, QLatin1String text) {
  const std::optional<Digits> digits = DigitsOf<2>(value);
  return digits ? !(value < 0) && digits->HalfAway() == cents : ReceiptForm(value) == text;
}

}  // namespace

double ToDouble(Text text) {
  text = OrEmpty(text);
  const std::optional<double> plain = PlainNumber(text);
  return plain ? *plain : FiniteOrZero(strtod_l(text, nullptr, PlainLocale()));
}

std::int32_t ToInt32(Text text) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(std::strtol(OrEmpty(text), nullptr, 10)));
}

std::string FormatF2(double value) { return FormatFixed<2>(value); }

std::string FormatF4(double value) { return FormatFixed<4>(value); }

std::string FormatF6(double value) { return FormatFixed<6>(value); }

char* PutF2(double value, char* to) { return PutFixed<2>(value, to); }

char* PutF4(double value, char* to) { return PutFixed<4>(value, to); }

char* PutI(std::int32_t value, char* to) { return std::to_chars(to, to + kNumberRoom, value).ptr; }

std::string FormatI(std::int32_t value) { return std::to_string(value); }

std::string FormatG6(double value) { return QString::number(FiniteOrZero(value), 'g', 6).toStdString(); }

double RoundMoney(double value) {
  const std::optional<Digits> digits = DigitsOf<2>(value);
  if (!digits) return ReceiptForm(value).toDouble();
  // The text form shows no sign of -0 itself.
  return value < 0 ? -OfCents(digits->HalfAway()) : OfCents(digits->HalfAway());
}

double RoundThroughF2(double value) {
  const std::optional<Digits> digits = DigitsOf<2>(value);
  return digits ? std::copysign(OfCents(digits->HalfToEven()), value) : ToDouble(FormatF2(value).c_str());
}

bool PrintsAsZero(double value) { return Prints(value, 0, QLatin1String("0.00")); }

bool PrintsAsOne(double value) { return Prints(value, 100, QLatin1String("1.00")); }

double CutToCents(double value) {
  // The sum makes 0 of -0: a share of a negative fraction of a cent is nothing, and prints as nothing.
  return FiniteOrZero(std::trunc((value * 1000 + 5) / 10) + 0.0) / 100;
}

double CeilSingle(double value) { return std::ceil(ToSingle(value)); }

double CeilToCents(double value) { return CeilSingle(value * 100 - 0.5) / 100; }

double WithoutNoise(double value) { return std::fabs(value) <= kNoise ? 0 : value; }

double Quotient(double dividend, double divisor) {
  return WithoutNoise(divisor) == 0 ? 0 : FiniteOrZero(dividend / divisor);
}

std::int32_t TruncToInt32(double value) {
  const bool fits = value > -2147483649.0 && value < 2147483648.0;
  return fits ? static_cast<std::int32_t>(value) : kSmallest;
}

float ToSingle(double value) {
  constexpr double kLargest = std::numeric_limits<float>::max();
  if (value > kLargest) return std::numeric_limits<float>::infinity();
  if (value < -kLargest) return -std::numeric_limits<float>::infinity();
  return static_cast<float>(value);
}

std::int32_t DivideInt32(std::int32_t left, std::int32_t right) {
  if (right == 0) return 0;
  if (left == kSmallest && right == -1) return kSmallest;
  return left / right;
}

}  // namespace Corvane
