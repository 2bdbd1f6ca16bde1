#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "promo/mz/Tiers.h"

namespace Corvane {
namespace {

constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();

PluAddAction Tier(double threshold, double sum, double step = 0, double stepSum = 0, double most = 0) {
  PluAddAction tier;
  tier.BaseConNum = threshold;
  tier.BaseDscNum = sum;
  tier.AddConNum = step;
  tier.AddDscNum = stepSum;
  tier.SaleMaxIn = most;
  return tier;
}

struct Repetition {
  const char* Name;
  std::int32_t Count;
  double Step;
  double Cap;
  double Total;
  double NewTotal;
};

void PrintTo(const Repetition& repetition, std::ostream* out) { *out << repetition.Name; }

class RepeatedAddition : public ::testing::TestWithParam<Repetition> {};

TEST_P(RepeatedAddition, Gives) {
  const Repetition& row = GetParam();
  double total = row.Total;
  AddRepeated(row.Count, row.Step, row.Cap, total);
  EXPECT_EQ(total, row.NewTotal);
}

TEST_P(RepeatedAddition, GivesTheSameInSinglePrecision) {
  const Repetition& row = GetParam();
  auto total = static_cast<float>(row.Total);
  AddRepeatedSingle(row.Count, static_cast<float>(row.Step), static_cast<float>(row.Cap), total);
  EXPECT_EQ(total, static_cast<float>(row.NewTotal));
}

// All numbers are exact in both precisions.
INSTANTIATE_TEST_SUITE_P(
    Branches, RepeatedAddition,
    ::testing::Values(
        Repetition{"WithoutACap", 3, 5, 0, 10, 25}, Repetition{"NoRounds", 0, 5, 0, 10, 10},
        Repetition{"NegativeCount", -4, 5, 0, 10, 10}, Repetition{"SmallestCount", kSmallest, 5, 0, 10, 10},
        Repetition{"BelowTheCap", 3, 5, 100, 10, 25}, Repetition{"NoRoundsBelowTheCap", 0, 5, 100, 10, 10},
        Repetition{"AboveTheCapBeforeAnyRound", 3, 5, 8, 10, 8}, Repetition{"AboveTheCapWithoutRounds", 0, 5, 8, 10, 8},
        Repetition{"AboveTheCapWithANegativeCount", kSmallest, 5, 8, 10, 8},
        Repetition{"AtTheCapBeforeAnyRound", 3, 5, 10, 10, 10}, Repetition{"AboveTheCapInARound", 3, 5, 18, 10, 18},
        Repetition{"AtTheCapInARound", 3, 5, 20, 10, 20}, Repetition{"AtTheCapInTheLastRound", 3, 5, 25, 10, 25},
        Repetition{"NegativeCap", 3, 5, -1, 10, -1}, Repetition{"NegativeStep", 3, -5, 0, 10, -5},
        Repetition{"StepOfNothing", 3, 0, 0, 10, 10}),
    [](const ::testing::TestParamInfo<Repetition>& row) { return row.param.Name; });

// 0.1 and nine times 0.1 more are a hair below 1 when they are added one by one; 0.1 + 9 x 0.1 is 1.
TEST(AddRepeated, AddsOneByOne) {
  double total = 0.1;
  AddRepeated(9, 0.1, 0, total);
  EXPECT_EQ(total, 0.9999999999999999);
}

// The hair counts against the cap: an eleventh round is needed.
TEST(AddRepeated, AHairBelowTheCapIsNotAtIt) {
  double total = 0.1;
  AddRepeated(9, 0.1, 1, total);
  EXPECT_EQ(total, 0.9999999999999999);
  AddRepeated(1, 0.1, 1, total);
  EXPECT_EQ(total, 1.0);
}

// Each total is stored in single precision: ten thousand tenths come to 999.9029.
TEST(AddRepeatedSingle, StoresEachTotalInSinglePrecision) {
  float total = 0.1F;
  AddRepeatedSingle(9999, 0.1F, 0, total);
  EXPECT_EQ(total, 999.9028930664062F);
}

TEST(AddRepeated, AMillionRoundsAreMade) {
  double total = 0;
  AddRepeated(1'000'000, 0.5, 0, total);
  EXPECT_EQ(total, 500'000.0);
}

// The rounding of each addition is part of the sum, so it must come out as a plain loop makes it.
TEST(AddRepeated, ManyRoundsRoundLikeOneByOne) {
  double total = 0.01;
  AddRepeated(10'030'000, 0.01, 0, total);
  double oneByOne = 0.01;
  for (int round = 0; round < 10'030'000; ++round) oneByOne += 0.01;
  EXPECT_EQ(total, oneByOne);
  EXPECT_NE(total, 0.01 + 10'030'000 * 0.01);
}

TEST(AddRepeated, TheGreatestCountIsGivenAtOnce) {
  double total = 0;
  AddRepeated(std::numeric_limits<std::int32_t>::max(), 0.5, 0, total);
  EXPECT_EQ(total, 1073741823.5);
  float single = 0;
  AddRepeatedSingle(std::numeric_limits<std::int32_t>::max(), 0.5F, 0, single);
  EXPECT_EQ(single, 8388608.0F);  // from there on half a unit is lost in single precision
}

TEST(AddRepeated, ACapEndsAnEnormousCount) {
  double total = 0;
  AddRepeated(std::numeric_limits<std::int32_t>::max(), 0.5, 7, total);
  EXPECT_EQ(total, 7.0);
}

struct Steps {
  const char* Name;
  PluAddAction Tier;
  double Remainder;
  double Cap;
  double Sum;  ///< with the tier's own sum in it already
  double NewSum;
  double NewRemainder;
};

void PrintTo(const Steps& steps, std::ostream* out) { *out << steps.Name; }

class FurtherStepsOfATier : public ::testing::TestWithParam<Steps> {};

TEST_P(FurtherStepsOfATier, Give) {
  const Steps& row = GetParam();
  double sum = row.Sum;
  const double remainder = GiveFurtherSteps(row.Tier, row.Remainder, row.Cap, sum);
  EXPECT_EQ(sum, row.NewSum);
  EXPECT_EQ(remainder, row.NewRemainder);
}

// The remainder as it comes out of the division, with what a caller may raise to 0 still negative where the tier has a
// step of its own.
INSTANTIATE_TEST_SUITE_P(Remainders, FurtherStepsOfATier,
                         ::testing::Values(
                             // (560 - 300) / 100 = 2; 560 - 500
                             Steps{"StepsOfItsOwn", Tier(300, 50, 100, 10), 560, 0, 50, 70, 60},
                             // (350 - 100) / 100 = 2; 350 - 300
                             Steps{"ItsThresholdAsStep", Tier(100, 10), 350, 0, 10, 30, 50},
                             // 300 of 560: 2; 300 - 300
                             Steps{"UpToTheMost", Tier(100, 10, 0, 0, 300), 560, 0, 10, 30, 0},
                             // 60 - 100 with (60 - 100) / 50 = 0 steps
                             Steps{"TheMostBelowTheThresholdWithAStep", Tier(100, 10, 50, 4, 60), 150, 0, 10, 10, -40},
                             // 10 - (100 - 3 x 30)
                             Steps{"NegativeStepsAreCounted", Tier(100, 10, 30, 4, 10), 150, 0, 10, 10, 0},
                             // capped: 0 - (100 + 2 x 100)
                             Steps{"TheCapLeavesNothing", Tier(100, 10, 100, 10), 350, 25, 10, 25, -300},
                             // 80 / 0 is 0; 80 - (0 + 0 x 0)
                             Steps{"AThresholdOfNothing", Tier(0, 7), 80, 0, 7, 7, 80},
                             // 80 / 30 = 2; 80 - 60
                             Steps{"AThresholdOfNothingWithAStep", Tier(0, 7, 30, 2), 80, 0, 7, 11, 20}),
                         [](const ::testing::TestParamInfo<Steps>& row) { return row.param.Name; });

// (200 - 1) / 0.0000001 steps of 0.5 are 995,000,000.
TEST(GiveFurtherSteps, StepsAreNotBounded) {
  double sum = 0.5;
  GiveFurtherSteps(Tier(1, 0.5, 0.0000001, 0.5), 200, 0, sum);
  EXPECT_NEAR(sum, 995'000'000.5, 1);
}

TEST(SortTiersDown, HighestFirst) {
  std::vector<PluAddAction> tiers = {Tier(100, 1), Tier(-5, 2), Tier(300, 3), Tier(0, 4)};
  SortTiersDown(tiers);
  EXPECT_EQ(tiers[0].BaseConNum, 300);
  EXPECT_EQ(tiers[1].BaseConNum, 100);
  EXPECT_EQ(tiers[2].BaseConNum, 0);
  EXPECT_EQ(tiers[3].BaseConNum, -5);
}

TEST(SortTiersDown, AThresholdThatIsNoNumberDoesNoHarm) {
  const double none = std::numeric_limits<double>::quiet_NaN();
  std::vector<PluAddAction> tiers = {Tier(none, 1), Tier(5, 2), Tier(none, 3), Tier(7, 4), Tier(6, 5)};
  SortTiersDown(tiers);
  std::vector<double> numbers;
  for (const PluAddAction& tier : tiers) {
    if (tier.BaseConNum == tier.BaseConNum) numbers.push_back(tier.BaseConNum);
  }
  EXPECT_EQ(numbers, (std::vector<double>{7, 6, 5}));
}

// --- Order of thresholds ----------------------------------------------------------------------------------------------

TEST(SortsBefore, WhatIsNoNumberStandsBehindAllNumbers) {
  const double none = std::numeric_limits<double>::quiet_NaN();
  EXPECT_TRUE(SortsBefore(1, 2));
  EXPECT_FALSE(SortsBefore(2, 1));
  EXPECT_FALSE(SortsBefore(1, 1));
  EXPECT_TRUE(SortsBefore(1, none));
  EXPECT_FALSE(SortsBefore(none, 1));
  EXPECT_FALSE(SortsBefore(none, none));
}

}  // namespace
}  // namespace Corvane
