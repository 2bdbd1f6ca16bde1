#include "base/Numbers.h"

#include <clocale>
#include <cstdlib>

#include <locale.h>
#include <QString>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "base/Digits.h"

namespace Corvane {

namespace {

constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();

/// The "C" locale as an object, so that reading a number never touches the host's locale.
locale_t PlainLocale() {
  static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
  return plain;
}

double FiniteOrZero(double value) { return std::isfinite(value) ? value : 0; }

constexpr int kMaxDigits = 15;
constexpr std::array<double, kMaxDigits + 1> kPowersOfTen = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                             1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

bool IsDigit(char letter) { return letter >= '0' && letter <= '9'; }

/// A text that is nothing but a number of few digits, "-12.50": its digits and the power of ten are exact, so that the
/// one division rounds as reading by the library does. @return nothing for any other text.
std::optional<double> PlainNumber(Text text) {
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
  const double size = static_cast<double>(number) / kPowersOfTen[digits - whole];
  return isNegative ? -size : size;
}

char* PutFixed(double value, int decimals, char* to) {
  value = FiniteOrZero(value);
  const std::optional<Digits> digits = DigitsOf(value, decimals);
  if (!digits) return std::to_chars(to, to + kNumberRoom, value, std::chars_format::fixed, decimals).ptr;
  return PutUnits(std::signbit(value), digits->HalfToEven(), decimals, to);
}

std::string FormatFixed(double value, int decimals) {
  std::array<char, kNumberRoom> buffer;
  char* const begin = buffer.data();
  return {begin, PutFixed(value, decimals, begin)};
}

/// The six significant digits of a number from 0.1 to below a million, without zeros behind the last other decimal.
/// @return nothing for all other numbers.
std::optional<std::string> ShortForm(double value) {
  const double size = std::fabs(value);
  if (!(size >= 0.1 && size < 999999)) return std::nullopt;
  int decimals = 6;
  for (const double power : kPowersOfTen) {
    if (size < power) break;
    --decimals;
  }
  const std::optional<Digits> digits = DigitsOf(value, decimals);
  if (!digits) return std::nullopt;
  std::uint64_t units = digits->HalfAway();
  for (; decimals > 0 && units % 10 == 0; --decimals) units /= 10;
  std::array<char, kNumberRoom> buffer;
  char* const begin = buffer.data();
  return std::string(begin, PutUnits(value < 0, units, decimals, begin));
}

/// The number of so many cents, as if read from its text.
double OfCents(std::uint64_t cents) { return static_cast<double>(cents) / 100; }

QString ReceiptForm(double value) { return QString::number(FiniteOrZero(value), 'f', 2); }

/// Whether a receipt shows these cents for the value. A negative number shows its sign, also where it shows no digits.
bool Prints(double value, std::uint64_t cents, QLatin1String text) {
  const std::optional<Digits> digits = DigitsOf(value, 2);
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

std::string FormatF2(double value) { return FormatFixed(value, 2); }

std::string FormatF4(double value) { return FormatFixed(value, 4); }

std::string FormatF6(double value) { return FormatFixed(value, 6); }

char* PutF2(double value, char* to) { return PutFixed(value, 2, to); }

char* PutF4(double value, char* to) { return PutFixed(value, 4, to); }

char* PutI(std::int32_t value, char* to) { return std::to_chars(to, to + kNumberRoom, value).ptr; }

std::string FormatI(std::int32_t value) { return std::to_string(value); }

std::string FormatG6(double value) {
  if (value == 0) return "0";
  const std::optional<std::string> text = ShortForm(value);
  return text ? *text : QString::number(FiniteOrZero(value), 'g', 6).toStdString();
}

double RoundMoney(double value) {
  const std::optional<Digits> digits = DigitsOf(value, 2);
  if (!digits) return ReceiptForm(value).toDouble();
  // The text form shows no sign of -0 itself.
  return value < 0 ? -OfCents(digits->HalfAway()) : OfCents(digits->HalfAway());
}

double RoundThroughF2(double value) {
  const std::optional<Digits> digits = DigitsOf(value, 2);
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
