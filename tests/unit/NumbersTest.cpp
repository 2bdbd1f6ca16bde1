// Conversions and roundings. Every table runs under the plain locale and under surroundings with decimal commas.
#include "base/Numbers.h"

#include <gtest/gtest.h>

#include <QLocale>
#include <clocale>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <ostream>
#include <string>

using Corvane::Text;

namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr std::int32_t kSmallest = -2147483647 - 1;

/// What a host can have set up around the engine.
struct Surroundings {
  const char* Name;
  const char* CLocale;
  QLocale::Language QtLanguage;
};

void PrintTo(const Surroundings& surroundings, std::ostream* out) { *out << surroundings.Name; }

class Numbers : public testing::TestWithParam<Surroundings> {
 protected:
  void SetUp() override {
    if (std::setlocale(LC_ALL, GetParam().CLocale) == nullptr) {
      GTEST_SKIP() << "the locale " << GetParam().CLocale << " is not installed";
    }
    QLocale::setDefault(QLocale(GetParam().QtLanguage));
  }

  void TearDown() override {
    std::setlocale(LC_ALL, m_before.c_str());
    QLocale::setDefault(m_qtBefore);
  }

 private:
  std::string m_before = std::setlocale(LC_ALL, nullptr);
  QLocale m_qtBefore;
};

INSTANTIATE_TEST_SUITE_P(In, Numbers,
                         testing::Values(Surroundings{"PlainLocale", "C", QLocale::C},
                                         Surroundings{"GermanHostProgram", "C", QLocale::German},
                                         Surroundings{"GermanProcess", "de_DE.UTF-8", QLocale::German}),
                         [](const auto& test) { return std::string(test.param.Name); });

/// Equal as results: NaN is NaN, and the zeros are told apart.
void ExpectSameNumber(double actual, double expected) {
  EXPECT_EQ(std::isnan(actual), std::isnan(expected));
  if (std::isnan(expected)) return;
  EXPECT_EQ(actual, expected);
  EXPECT_EQ(std::signbit(actual), std::signbit(expected));
}

struct NumberRow {
  double Given;
  double Expected;
};

template <std::size_t Count>
void ExpectEach(double (*function)(double), const NumberRow (&rows)[Count]) {
  for (const NumberRow& row : rows) {
    SCOPED_TRACE(row.Given);
    ExpectSameNumber(function(row.Given), row.Expected);
  }
}

struct FormRow {
  double Given;
  std::string Expected;
};

template <std::size_t Count>
void ExpectEach(std::string (*function)(double), const FormRow (&rows)[Count]) {
  for (const FormRow& row : rows) {
    SCOPED_TRACE(row.Given);
    EXPECT_EQ(function(row.Given), row.Expected);
  }
}

// --- Text to number --------------------------------------------------------------------------------------------------

struct TextToDouble {
  Text Given;
  double Expected;
};

TEST_P(Numbers, ToDoubleReadsTheNumberAtTheStartOfTheText) {
  const TextToDouble rows[] = {{"9.90", 9.9},    {"9.90abc", 9.9}, {"  9.90", 9.9}, {"\t\n\r 9.90 ", 9.9}, {"+3", 3},
                               {"-.5", -0.5},    {"3.", 3},        {"007", 7},      {"1e2", 100},          {"1e", 1},
                               {"1e308", 1e308}, {"1e-400", 0},    {"0x10", 16},    {"-0", -0.0}};
  for (const TextToDouble& row : rows) {
    SCOPED_TRACE(row.Given);
    ExpectSameNumber(Corvane::ToDouble(row.Given), row.Expected);
  }
}

TEST_P(Numbers, ToDoubleOfNoNumberIsZero) {
  for (const Text text : {static_cast<Text>(nullptr), "", " ", "abc", ".", "--3", "- 3", ",5", "\xC2\xA0\x39"}) {
    SCOPED_TRACE(Corvane::OrEmpty(text));
    ExpectSameNumber(Corvane::ToDouble(text), 0);
  }
}

TEST_P(Numbers, ToDoubleTakesThePointForTheDecimalSignAndNeverTheComma) {
  EXPECT_EQ(Corvane::ToDouble("9.90"), 9.9);
  EXPECT_EQ(Corvane::ToDouble("9,90"), 9);
  EXPECT_EQ(Corvane::ToDouble("1.234,5"), 1.234);
}

TEST_P(Numbers, ToDoubleOfANumberThatIsNotFiniteIsZero) {
  for (const Text text : {"nan", "-nan", "NAN(1)", "inf", "-inf", "Infinity", "1e309", "-1e400", "1e999"}) {
    SCOPED_TRACE(text);
    ExpectSameNumber(Corvane::ToDouble(text), 0);
  }
}

struct TextToInteger {
  Text Given;
  std::int32_t Expected;
};

TEST_P(Numbers, ToInt32ReadsTheIntegerAtTheStartOfTheText) {
  const TextToInteger rows[] = {{"12", 12},
                                {" \t12", 12},
                                {"+12", 12},
                                {"-12", -12},
                                {"12abc", 12},
                                {"9.9", 9},
                                {"1e3", 1},
                                {"012", 12},
                                {"0x10", 0},
                                {"2147483647", 2147483647},
                                {"-2147483648", kSmallest}};
  for (const TextToInteger& row : rows) {
    SCOPED_TRACE(row.Given);
    EXPECT_EQ(Corvane::ToInt32(row.Given), row.Expected);
  }
}

TEST_P(Numbers, ToInt32OfNoNumberIsZero) {
  for (const Text text : {static_cast<Text>(nullptr), "", " ", "abc", "-", "--3", ".5"}) {
    SCOPED_TRACE(Corvane::OrEmpty(text));
    EXPECT_EQ(Corvane::ToInt32(text), 0);
  }
}

// 20240615001 = 4 x 2^32 + 3060745817, and that less 2^32 is -1234221479. Beyond 64 bits the C library stays at the
// greatest and the smallest number of 64 bits, whose low 32 bits are all ones and all zeros.
TEST_P(Numbers, ToInt32OutOfRangeNarrowsSoThatDifferentTextsStayDifferent) {
  const TextToInteger rows[] = {{"2147483648", kSmallest},
                                {"2147483649", kSmallest + 1},
                                {"-2147483649", 2147483647},
                                {"4294967295", -1},
                                {"4294967296", 0},
                                {"4294967298", 2},
                                {"20240615001", -1234221479},
                                {"20240615002", -1234221478},
                                {"9223372036854775807", -1},
                                {"99999999999999999999999", -1},
                                {"-99999999999999999999999", 0}};
  for (const TextToInteger& row : rows) {
    SCOPED_TRACE(row.Given);
    EXPECT_EQ(Corvane::ToInt32(row.Given), row.Expected);
  }
}

// --- Number to text --------------------------------------------------------------------------------------------------

/// The exact value of the double nearest to 1e300.
const std::string kDigitsOf1e300 =
    "1000000000000000052504760255204420248704468581108159154915854115511802457988908195786371375080447864"
    "0437044438328838781769425232353604305756447921847867069828483872009265758037378302337947880900593689"
    "5323497079994508111903896764088007465274278014249457925878882005684283811566947219638686545940054016"
    "0";

// A tie is exact when the binary value is: 1.005 is 1.00499999999999989..., 0.005 is 0.00500000000000000010...
TEST_P(Numbers, FormatF2HalvesToEven) {
  const FormRow rows[] = {
      {0, "0.00"},       {0.125, "0.12"},   {0.375, "0.38"},    {0.625, "0.62"}, {0.875, "0.88"},
      {-0.125, "-0.12"}, {-0.375, "-0.38"}, {1.005, "1.00"},    {2.675, "2.67"}, {2.5e-3, "0.00"},
      {0.005, "0.01"},   {0.015, "0.01"},   {0.025, "0.03"},    {9.9, "9.90"},   {1234567.891, "1234567.89"},
      {-0.001, "-0.00"}, {-0.0, "-0.00"},   {-21.999, "-22.00"}};
  ExpectEach(Corvane::FormatF2, rows);
}

TEST_P(Numbers, WhatIsNotFinitePrintsAsZero) {
  for (const double value : {kNan, std::copysign(kNan, -1), kInfinite, -kInfinite}) {
    EXPECT_EQ(Corvane::FormatF2(value), "0.00");
    EXPECT_EQ(Corvane::FormatF4(value), "0.0000");
    EXPECT_EQ(Corvane::FormatF6(value), "0.000000");
    EXPECT_EQ(Corvane::FormatG6(value), "0");
  }
}

TEST_P(Numbers, FormatF2PrintsAllDigitsOfALargeNumber) {
  EXPECT_EQ(Corvane::FormatF2(1e300), kDigitsOf1e300 + ".00");
  EXPECT_EQ(Corvane::FormatF2(-1e300), "-" + kDigitsOf1e300 + ".00");
}

TEST_P(Numbers, FormatF4HalvesToEven) {
  const FormRow rows[] = {{10, "10.0000"},       {10.0 / 3, "3.3333"}, {0.03125, "0.0312"},  {0.09375, "0.0938"},
                          {-0.03125, "-0.0312"}, {0.00005, "0.0001"},  {-0.00001, "-0.0000"}};
  ExpectEach(Corvane::FormatF4, rows);
}

TEST_P(Numbers, FormatF6HalvesToEven) {
  const FormRow rows[] = {{1.5, "1.500000"}, {0.0078125, "0.007812"}, {-20, "-20.000000"}, {1e-7, "0.000000"}};
  ExpectEach(Corvane::FormatF6, rows);
}

TEST_P(Numbers, FormatIPrintsDecimalIntegers) {
  EXPECT_EQ(Corvane::FormatI(0), "0");
  EXPECT_EQ(Corvane::FormatI(1234567), "1234567");
  EXPECT_EQ(Corvane::FormatI(-7), "-7");
  EXPECT_EQ(Corvane::FormatI(2147483647), "2147483647");
  EXPECT_EQ(Corvane::FormatI(kSmallest), "-2147483648");
}

TEST_P(Numbers, FormatG6HasSixSignificantDigits) {
  const FormRow rows[] = {{0, "0"},
                          {3, "3"},
                          {-2, "-2"},
                          {2.5, "2.5"},
                          {66.67, "66.67"},
                          {100.005, "100.005"},
                          {1.0 / 3, "0.333333"},
                          {0.1 + 0.2, "0.3"},
                          {123456, "123456"},
                          {1234567, "1.23457e+06"},
                          {1000000, "1e+06"},
                          {0.0001, "0.0001"},
                          {0.00001, "1e-05"},
                          {1e300, "1e+300"}};
  ExpectEach(Corvane::FormatG6, rows);
}

// The string class halves away from zero here too; printf would print 100000.
TEST_P(Numbers, FormatG6HalvesAwayFromZero) { EXPECT_EQ(Corvane::FormatG6(100000.5), "100001"); }

// --- Rounding --------------------------------------------------------------------------------------------------------

TEST_P(Numbers, RoundMoneyHalvesAwayFromZero) {
  const NumberRow rows[] = {{0, 0},
                            {0.125, 0.13},
                            {0.375, 0.38},
                            {0.625, 0.63},
                            {0.875, 0.88},
                            {-0.125, -0.13},
                            {-0.375, -0.38},
                            {1.005, 1},
                            {2.675, 2.67},
                            {2.5e-3, 0},
                            {0.005, 0.01},
                            {0.015, 0.01},
                            {0.025, 0.03},
                            {9.9, 9.9},
                            {-0.001, -0.0},
                            {30.015, 30.02},
                            {0.994, 0.99},
                            {0.996, 1},
                            {1234567.891, 1234567.89}};
  ExpectEach(Corvane::RoundMoney, rows);
}

TEST_P(Numbers, RoundMoneyOfWhatIsNoAmountIsZero) {
  const NumberRow rows[] = {{kNan, 0}, {kInfinite, 0}, {-kInfinite, 0}, {1e300, 1e300}};
  ExpectEach(Corvane::RoundMoney, rows);
}

TEST_P(Numbers, RoundThroughF2HalvesToEven) {
  const NumberRow rows[] = {{0.125, 0.12}, {0.375, 0.38},  {0.625, 0.62}, {-0.125, -0.12}, {1.005, 1},
                            {2.5e-3, 0},   {-0.001, -0.0}, {kNan, 0},     {kInfinite, 0},  {1e300, 1e300}};
  ExpectEach(Corvane::RoundThroughF2, rows);
}

// 0.005 lies just above half a cent. -0.001 prints as "-0.00", which is another text than "0.00".
TEST_P(Numbers, PrintsAsZeroComparesThePrintedForm) {
  for (const double zero : {0.0, -0.0, 0.001, 0.0049, kNan, kInfinite}) {
    SCOPED_TRACE(zero);
    EXPECT_TRUE(Corvane::PrintsAsZero(zero));
  }
  for (const double other : {0.005, 0.01, -0.001, -0.01, 1.0}) {
    SCOPED_TRACE(other);
    EXPECT_FALSE(Corvane::PrintsAsZero(other));
  }
}

// 0.995 lies just below, 1.005 too.
TEST_P(Numbers, PrintsAsOneComparesThePrintedForm) {
  for (const double one : {1.0, 0.9951, 1.004, 1.005}) {
    SCOPED_TRACE(one);
    EXPECT_TRUE(Corvane::PrintsAsOne(one));
  }
  for (const double other : {0.0, 0.995, 1.0051, -1.0, 100.0, kNan}) {
    SCOPED_TRACE(other);
    EXPECT_FALSE(Corvane::PrintsAsOne(other));
  }
}

// trunc((x * 1000 + 5) / 10) / 100: 3.335 -> 3340 / 10 -> 334. Below zero the half cent pulls toward zero, so that
// -3.33 -> -3325 / 10 -> -332. 0.145 lies just below, and yet 0.145 * 1000 comes out as 145: 150 / 10 -> 15.
TEST_P(Numbers, CutToCentsAddsHalfACentAndCutsTowardZero) {
  const NumberRow rows[] = {{0, 0},         {3.33, 3.33},    {10.0 / 3, 3.33},  {3.334, 3.33}, {3.335, 3.34},
                            {0.145, 0.15},  {0.005, 0.01},   {0.0049, 0},       {-0.005, 0},   {-0.015, -0.01},
                            {-3.33, -3.32}, {-3.335, -3.33}, {-10.0 / 3, -3.32}};
  ExpectEach(Corvane::CutToCents, rows);
}

// 21474836.47 is the last amount whose cents fit into 32 bits.
TEST_P(Numbers, CutToCentsDoesNotWrapAtThirtyTwoBits) {
  const NumberRow rows[] = {{21474836.47, 21474836.47},
                            {21474836.48, 21474836.48},
                            {-30000000, -29999999.99},
                            {1234567890.125, 1234567890.13},
                            {kNan, 0},
                            {kInfinite, 0}};
  ExpectEach(Corvane::CutToCents, rows);
}

TEST_P(Numbers, CutToCentsOfANegativeFractionOfACentIsPlainZero) {
  EXPECT_FALSE(std::signbit(Corvane::CutToCents(-0.0049)));
  EXPECT_FALSE(std::signbit(Corvane::CutToCents(-0.0051)));
}

// In single precision 2.0000001 is 2, and 16777217 is 16777216.
TEST_P(Numbers, CeilSingleRoundsUpInSinglePrecision) {
  const NumberRow rows[] = {{0, 0},
                            {1.5, 2},
                            {2, 2},
                            {2.01, 3},
                            {-1.5, -1},
                            {2.0000001, 2},
                            {2.0000003, 3},
                            {16777217, 16777216},
                            {1e300, kInfinite},
                            {kNan, kNan}};
  ExpectEach(Corvane::CeilSingle, rows);
}

// ceil(x * 100 - 0.5) / 100: half a cent stays down, 3.335 -> 333; 3.336 -> 333.1 -> 334.
TEST_P(Numbers, CeilToCentsLeavesHalfACentDown) {
  const NumberRow rows[] = {{10.0 / 3, 3.33}, {3.335, 3.33}, {3.336, 3.34}, {5, 5}, {0.004, 0}, {0.006, 0.01}};
  for (const NumberRow& row : rows) {
    SCOPED_TRACE(row.Given);
    EXPECT_EQ(Corvane::CeilToCents(row.Given), row.Expected);
  }
}

// 167772.17 * 100 - 0.5 is 16777216.5, which single precision holds as 16777216: a cent is lost.
TEST_P(Numbers, CeilToCentsLosesACentAboveWhatSinglePrecisionHolds) {
  EXPECT_EQ(Corvane::CeilToCents(167772.17), 167772.16);
}

// --- Conversions that C++ leaves undefined out of range --------------------------------------------------------------

struct CutRow {
  double Given;
  std::int32_t Expected;
};

TEST_P(Numbers, TruncToInt32CutsTowardZero) {
  const CutRow rows[] = {{0, 0},
                         {2.9, 2},
                         {-2.9, -2},
                         {0.999, 0},
                         {-0.999, 0},
                         {2147483647.0, 2147483647},
                         {2147483647.9, 2147483647},
                         {-2147483648.0, kSmallest},
                         {-2147483647.9, -2147483647}};
  for (const CutRow& row : rows) {
    SCOPED_TRACE(row.Given);
    EXPECT_EQ(Corvane::TruncToInt32(row.Given), row.Expected);
  }
}

TEST_P(Numbers, TruncToInt32OutOfRangeIsTheSmallestInteger) {
  for (const double value : {2147483648.0, -2147483649.0, 4294967296.0, 1e300, -1e300, kNan, kInfinite, -kInfinite}) {
    SCOPED_TRACE(value);
    EXPECT_EQ(Corvane::TruncToInt32(value), kSmallest);
  }
}

TEST_P(Numbers, ToSingleRoundsToTheNearestSingle) {
  EXPECT_EQ(Corvane::ToSingle(0.1), 0.1F);
  EXPECT_EQ(Corvane::ToSingle(16777217), 16777216.0F);
  EXPECT_EQ(Corvane::ToSingle(-16777217), -16777216.0F);
}

TEST_P(Numbers, ToSingleOutOfRangeIsInfinite) {
  EXPECT_EQ(Corvane::ToSingle(1e300), std::numeric_limits<float>::infinity());
  EXPECT_EQ(Corvane::ToSingle(-1e300), -std::numeric_limits<float>::infinity());
  EXPECT_EQ(Corvane::ToSingle(kInfinite), std::numeric_limits<float>::infinity());
  EXPECT_TRUE(std::isnan(Corvane::ToSingle(kNan)));
}

TEST_P(Numbers, DivideInt32CutsTowardZero) {
  EXPECT_EQ(Corvane::DivideInt32(7, 2), 3);
  EXPECT_EQ(Corvane::DivideInt32(-7, 2), -3);
  EXPECT_EQ(Corvane::DivideInt32(6, -3), -2);
}

TEST_P(Numbers, DivideInt32WithoutAResultIsDefined) {
  EXPECT_EQ(Corvane::DivideInt32(7, 0), 0);
  EXPECT_EQ(Corvane::DivideInt32(0, 0), 0);
  EXPECT_EQ(Corvane::DivideInt32(kSmallest, -1), kSmallest);
}

// --- The host's locale -----------------------------------------------------------------------------------------------

TEST_P(Numbers, AQuotientWhoseDivisorIsZeroIsZero) {
  EXPECT_EQ(Corvane::Quotient(7, 2), 3.5);
  EXPECT_EQ(Corvane::Quotient(-7, 2), -3.5);
  for (const double dividend : {7.0, 0.0, -7.0, kInfinite, kNan}) {
    SCOPED_TRACE(dividend);
    ExpectSameNumber(Corvane::Quotient(dividend, 0.0), 0);
    ExpectSameNumber(Corvane::Quotient(dividend, -0.0), 0);
  }
}

// 0.1 + 0.2 - 0.3 is 5.6e-17.
TEST_P(Numbers, AQuotientWhoseDivisorIsNoiseIsZero) {
  ExpectSameNumber(Corvane::Quotient(10, 0.1 + 0.2 - 0.3), 0);
  ExpectSameNumber(Corvane::Quotient(10, -1e-9), 0);
  EXPECT_EQ(Corvane::Quotient(10, 0.0001), 10 / 0.0001);
}

TEST_P(Numbers, AQuotientThatIsNoFiniteNumberIsZero) {
  ExpectSameNumber(Corvane::Quotient(1e308, 1e-8), 0);
  ExpectSameNumber(Corvane::Quotient(kInfinite, kInfinite), 0);
  ExpectSameNumber(Corvane::Quotient(1, kNan), 0);
}

// 0.3 - 0.1 - 0.2 is -2.8e-17.
TEST_P(Numbers, NoiseIsNothing) {
  const NumberRow rows[] = {{0.3 - 0.1 - 0.2, 0}, {1e-9, 0}, {-1e-9, 0}, {1.1e-9, 1.1e-9}, {-1.1e-9, -1.1e-9}, {3, 3}};
  ExpectEach(Corvane::WithoutNoise, rows);
}

TEST_P(Numbers, APriceReachesAnotherAHairBelowIt) {
  EXPECT_TRUE(Corvane::ReachesPrice(8, 8));
  EXPECT_TRUE(Corvane::ReachesPrice(8.01, 8));
  EXPECT_TRUE(Corvane::ReachesPrice(8 - 0.9e-9, 8));
  EXPECT_FALSE(Corvane::ReachesPrice(8 - 1.1e-9, 8));
  EXPECT_TRUE(Corvane::ReachesPrice(30'000'000, 30'000'000)) << "where 1e-9 is less than the last digit";
}

TEST_P(Numbers, LeaveTheLocaleOfTheHostAlone) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  Corvane::ToDouble("9.90");
  Corvane::FormatF2(9.9);
  Corvane::FormatG6(9.9);
  Corvane::RoundMoney(9.9);
  EXPECT_EQ(std::string(std::setlocale(LC_ALL, nullptr)), before);
}

}  // namespace
