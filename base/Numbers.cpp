#include "base/Numbers.h"

#include <clocale>
#include <cstdlib>

#include <locale.h>
#include <QString>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace Corvane {

namespace {

constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();

/// The "C" locale as an object, so that reading a number never touches the host's locale.
locale_t PlainLocale() {
  static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
  return plain;
}

double FiniteOrZero(double value) { return std::isfinite(value) ? value : 0; }

std::string FormatFixed(double value, int decimals) {
  // Room for the largest double's 309 digits, sign, point and decimals.
  std::array<char, 330> buffer{};
  char* const begin = buffer.data();
  const auto end =
      std::to_chars(begin, begin + buffer.size(), FiniteOrZero(value), std::chars_format::fixed, decimals).ptr;
  return {begin, end};
}

QString ReceiptForm(double value) { return QString::number(FiniteOrZero(value), 'f', 2); }

}  // namespace

double ToDouble(Text text) { return FiniteOrZero(strtod_l(OrEmpty(text), nullptr, PlainLocale())); }

std::int32_t ToInt32(Text text) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(std::strtol(OrEmpty(text), nullptr, 10)));
}

std::string FormatF2(double value) { return FormatFixed(value, 2); }

std::string FormatF4(double value) { return FormatFixed(value, 4); }

std::string FormatF6(double value) { return FormatFixed(value, 6); }

std::string FormatI(std::int32_t value) { return std::to_string(value); }

std::string FormatG6(double value) { return QString::number(FiniteOrZero(value), 'g', 6).toStdString(); }

double RoundMoney(double value) { return ReceiptForm(value).toDouble(); }

double RoundThroughF2(double value) { return ToDouble(FormatF2(value).c_str()); }

bool PrintsAsZero(double value) { return ReceiptForm(value) == QLatin1String("0.00"); }

bool PrintsAsOne(double value) { return ReceiptForm(value) == QLatin1String("1.00"); }

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
