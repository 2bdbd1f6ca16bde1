#include "base/RepeatedSum.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "base/Numbers.h"

namespace Corvane {
namespace {

using Precision = RepeatedSum::Precision;

struct Case {
  double Start;
  double Step;
};

const Case kCases[] = {{0, 0.01},
                       {0.01, 0.01},
                       {1, 0.1},
                       {100301, -0.01},
                       {0.3, 0.7},
                       {-5, 0.37},
                       {5, -0.37},
                       {-5, -0.37},
                       {1e15, 0.3},
                       {1e16, 1},
                       {1e16, 0.5},
                       {3, 1e-17},
                       {-0.75, 0.0625},
                       {9007199254740991.0, 0.5},
                       {9007199254740994.0, 1.5},
                       {1.5, 0},
                       {16777215, 0.5},
                       {0.1, 3e-8},
                       {65536, 0.0039},
                       {-65536, 0.0039},
                       {1e-310, 1e-311},
                       {8388607.5, 0.5}};

/// The rounds that `made` additions at once stand for, made one by one.
double OneByOne(const Case& given, Precision precision, std::int64_t rounds) {
  double sum = given.Start;
  for (std::int64_t round = 0; round < rounds; ++round) {
    sum += given.Step;
    if (precision == Precision::Single) sum = static_cast<double>(ToSingle(sum));
  }
  return sum;
}

class RepeatedSums : public ::testing::TestWithParam<Precision> {};

INSTANTIATE_TEST_SUITE_P(In, RepeatedSums, ::testing::Values(Precision::Double, Precision::Single),
                         [](const auto& row) { return row.param == Precision::Single ? "Single" : "Double"; });

TEST_P(RepeatedSums, ManyAtOnceRoundLikeOneByOne) {
  constexpr std::int64_t kRounds = 300'000;
  for (Case given : kCases) {
    if (GetParam() == Precision::Single) {
      given = {static_cast<double>(ToSingle(given.Start)), static_cast<double>(ToSingle(given.Step))};
    }
    SCOPED_TRACE(::testing::Message() << given.Start << " + n * " << given.Step);
    RepeatedSum sum(given.Start, given.Step, GetParam());
    for (std::int64_t left = kRounds; left > 0;) {
      const std::int64_t rounds = RoundsAtOnce(std::min(left, sum.EvenRounds()));
      sum.Add(rounds);
      left -= rounds;
    }
    EXPECT_EQ(sum.Value(), OneByOne(given, GetParam(), kRounds));
  }
}

TEST(RepeatedSum, AStepThatIsLostNeverEnds) {
  EXPECT_EQ(RepeatedSum(1e17, 1).EvenRounds(), RepeatedSum::kEndless);
  EXPECT_EQ(RepeatedSum(5, 0).EvenRounds(), RepeatedSum::kEndless);
  EXPECT_EQ(RepeatedSum(16777216, 0.5, Precision::Single).EvenRounds(), RepeatedSum::kEndless);
}

TEST(RepeatedSum, ManyRoundsAreFoundAtOnce) {
  EXPECT_GT(RepeatedSum(65536, 0.01).EvenRounds(), 6'000'000);
  EXPECT_GT(RepeatedSum(131071, -0.01).EvenRounds(), 6'000'000);
}

TEST(RepeatedSum, WhatComesNearerToALimitStopsInFrontOfIt) {
  RepeatedSum rising(70000, 0.01);
  const std::int64_t below = rising.EvenRoundsBelow(80000);
  EXPECT_GT(below, 999'000);
  rising.Add(below);
  EXPECT_LT(rising.Value(), 80000);
  RepeatedSum falling(80000, -0.01);
  const std::int64_t above = falling.EvenRoundsAbove(70000);
  EXPECT_GT(above, 999'000);
  falling.Add(above);
  EXPECT_GT(falling.Value(), 70000);
}

TEST(RepeatedSum, WhatGoesAwayFromALimitIsNotStoppedByIt) {
  EXPECT_EQ(RepeatedSum(80000, -0.01).EvenRoundsBelow(80001), RepeatedSum(80000, -0.01).EvenRounds());
  EXPECT_EQ(RepeatedSum(70000, 0.01).EvenRoundsAbove(69999), RepeatedSum(70000, 0.01).EvenRounds());
}

TEST(RepeatedSum, ALimitThatIsAlreadyPassedAllowsNothing) {
  EXPECT_EQ(RepeatedSum(80000, 0.01).EvenRoundsBelow(70000), 0);
  EXPECT_EQ(RepeatedSum(70000, -0.01).EvenRoundsAbove(80000), 0);
}

TEST(RepeatedSum, OneRoundIsAlwaysAllowed) {
  EXPECT_EQ(RoundsAtOnce(0), 1);
  EXPECT_EQ(RoundsAtOnce(7), 7);
}

}  // namespace
}  // namespace Corvane
