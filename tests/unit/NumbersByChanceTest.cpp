// The numbers' own arithmetic beside the libraries that it stands in for, on numbers by chance.
#include <gtest/gtest.h>

#include <QString>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include "base/Numbers.h"

namespace {

/// Numbers of every kind that a sale may bring, and of those that none should.
class Chance {
 public:
  explicit Chance(unsigned seed) : m_random(seed) {}

  double Number() {
    const double number = Size();
    return m_random() % 3 == 0 ? -number : number;
  }

  std::uint64_t Below(std::uint64_t limit) { return m_random() % limit; }

 private:
  double Size() {
    switch (m_random() % 11) {
      case 0:  // money
        return static_cast<double>(Below(10000000)) / 100;
      case 1:  // exact halves of a cent and of a unit of the fourth decimal, and what is a hair beside them
        return Beside(static_cast<double>(Below(2000000)) / 200);
      case 2:
        return Beside(static_cast<double>(Below(200000000)) / 20000);
      case 3:  // ties: odd multiples of a power of two
        return std::ldexp(static_cast<double>(2 * Below(1U << 20U) + 1), -static_cast<int>(Below(40)));
      case 4:  // shares and rates
        return static_cast<double>(Below(100000)) / static_cast<double>(1 + Below(999));
      case 5:  // noise
        return std::ldexp(static_cast<double>(Below(1000)), -static_cast<int>(Below(80)));
      case 6:  // around the powers of two
        return Beside(std::ldexp(1.0, static_cast<int>(Below(80)) - 30));
      case 7:  // any size
        return std::ldexp(1 + static_cast<double>(Below(1U << 30U)) / (1U << 30U), static_cast<int>(Below(100)) - 50);
      case 8:  // any bits, NaN and infinity included
        return OfBits(m_random());
      default:
        return static_cast<double>(Below(4)) / 4;
    }
  }

  double Beside(double number) {
    switch (m_random() % 3) {
      case 0:
        return std::nextafter(number, 0.0);
      case 1:
        return std::nextafter(number, 1e300);
      default:
        return number;
    }
  }

  static double OfBits(std::uint64_t bits) {
    double number = 0;
    std::memcpy(&number, &bits, sizeof number);
    return number;
  }

  std::mt19937_64 m_random;
};

double FiniteOrZero(double number) { return std::isfinite(number) ? number : 0; }

std::string Printed(const char* form, double number) {
  char text[400];
  return {text, static_cast<std::size_t>(std::snprintf(text, sizeof text, form, FiniteOrZero(number)))};
}

/// Different zeros are different here.
bool SameNumber(double left, double right) { return left == right && std::signbit(left) == std::signbit(right); }

constexpr int kNumbers = 200000;

TEST(NumbersByChance, PrintAsTheCLibraryPrints) {
  Chance chance(1);
  for (int number = 0; number < kNumbers; ++number) {
    const double value = chance.Number();
    ASSERT_EQ(Corvane::FormatF2(value), Printed("%.2f", value)) << std::hexfloat << value;
    ASSERT_EQ(Corvane::FormatF4(value), Printed("%.4f", value)) << std::hexfloat << value;
    ASSERT_EQ(Corvane::FormatF6(value), Printed("%f", value)) << std::hexfloat << value;
  }
}

TEST(NumbersByChance, RoundThroughTheCLibrarysForm) {
  Chance chance(2);
  for (int number = 0; number < kNumbers; ++number) {
    const double value = chance.Number();
    const double wanted = std::strtod(Printed("%.2f", value).c_str(), nullptr);
    ASSERT_TRUE(SameNumber(Corvane::RoundThroughF2(value), wanted)) << std::hexfloat << value;
  }
}

TEST(NumbersByChance, RoundThroughTheStringClasssForm) {
  Chance chance(3);
  for (int number = 0; number < kNumbers; ++number) {
    const double value = chance.Number();
    const QString wanted = QString::number(FiniteOrZero(value), 'f', 2);
    ASSERT_TRUE(SameNumber(Corvane::RoundMoney(value), wanted.toDouble())) << std::hexfloat << value;
    ASSERT_EQ(Corvane::PrintsAsZero(value), wanted == QLatin1String("0.00")) << std::hexfloat << value;
    ASSERT_EQ(Corvane::PrintsAsOne(value), wanted == QLatin1String("1.00")) << std::hexfloat << value;
  }
}

TEST(NumbersByChance, PrintShortAsTheStringClassPrints) {
  Chance chance(5);
  for (int number = 0; number < kNumbers; ++number) {
    const double value = chance.Number();
    const std::string wanted = QString::number(FiniteOrZero(value), 'g', 6).toStdString();
    ASSERT_EQ(Corvane::FormatG6(value), wanted) << std::hexfloat << value;
  }
}

/// Texts that are numbers, nearly are, or have one in front.
std::string TextByChance(Chance& chance) {
  static const char kLetters[] = "0123456789012345678901234567890123456789..--+eE xX,nif\t";
  switch (chance.Below(4)) {
    case 0:
      return Printed("%.2f", chance.Number());
    case 1:
      return Printed("%.17g", chance.Number());
    case 2:
      return Printed("%g", chance.Number());
    default: {
      std::string text;
      for (std::uint64_t length = chance.Below(20); length > 0; --length) {
        text += kLetters[chance.Below(sizeof kLetters - 1)];
      }
      return text;
    }
  }
}

TEST(NumbersByChance, ReadAsTheCLibraryReads) {
  Chance chance(4);
  for (int number = 0; number < kNumbers; ++number) {
    const std::string text = TextByChance(chance);
    const double wanted = FiniteOrZero(std::strtod(text.c_str(), nullptr));
    ASSERT_TRUE(SameNumber(Corvane::ToDouble(text.c_str()), wanted)) << text;
  }
}

}  // namespace
