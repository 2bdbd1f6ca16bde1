#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <ostream>

#include "promo/mz/ProMzFree.h"
#include "promo/mz/ProMzPlu.h"

namespace Corvane {
namespace {

constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kGreatest = std::numeric_limits<std::int32_t>::max();

struct Giving {
  const char* Name;
  std::int32_t Count;
  double Step;
  double StepGift;
  double Cap;
  double Value;
  double Given;
  double NewValue;
  double NewGiven;
};

void PrintTo(const Giving& row, std::ostream* out) { *out << row.Name; }

class RepeatedGiving : public ::testing::TestWithParam<Giving> {};

TEST_P(RepeatedGiving, Gives) {
  const Giving& row = GetParam();
  double value = row.Value;
  double given = row.Given;
  GiveRepeated(row.Count, row.Step, row.StepGift, row.Cap, value, given);
  EXPECT_EQ(value, row.NewValue);
  EXPECT_EQ(given, row.NewGiven);
}

// A round takes the step and its gift out of the value.
INSTANTIATE_TEST_SUITE_P(Branches, RepeatedGiving,
                         ::testing::Values(Giving{"AtTheCapBeforeAnyRound", 3, 3, 1, 1, 10, 1, 0, 1},
                                           Giving{"AboveTheCapWithoutRounds", 0, 3, 1, 2, 10, 5, 0, 2},
                                           Giving{"AboveTheCapWithANegativeCount", kSmallest, 3, 1, 2, 10, 5, 0, 2},
                                           Giving{"NoRounds", 0, 3, 1, 0, 10, 1, 10, 1},
                                           Giving{"NegativeCount", kSmallest, 3, 1, 0, 10, 1, 10, 1},
                                           // 16 - 4 - 4 - 4
                                           Giving{"ThreeRounds", 3, 3, 1, 0, 16, 1, 4, 4},
                                           // 1 is behind the step, as much as the gift
                                           Giving{"AsMuchAsTheGiftIsBehind", 1, 3, 1, 0, 4, 1, 0, 2},
                                           // 1 is behind the step, and the gift is 2
                                           Giving{"LessThanTheGiftIsBehind", 1, 3, 2, 0, 4, 1, 0, 2},
                                           Giving{"NothingIsBehind", 2, 3, 1, 0, 3, 1, 3, 1},
                                           Giving{"TheValueIsBelowTheStep", 2, 3, 1, 0, 2, 1, 2, 1},
                                           // 7 - 4, and then nothing is behind the step
                                           Giving{"RoundsGoOnWithoutGiving", 9, 3, 1, 0, 7, 1, 3, 2},
                                           Giving{"AtTheCapInARound", 5, 3, 1, 2, 16, 1, 12, 2},
                                           // 1 + 2 is cut to 2.5, and yet 3 + 2 are taken
                                           Giving{"AboveTheCapInARound", 5, 3, 2, 2.5, 16, 1, 11, 2.5},
                                           Giving{"AGiftOfNothing", 3, 3, 0, 0, 16, 1, 16, 1},
                                           Giving{"ANegativeGift", 3, 3, -1, 0, 16, 1, 16, 1},
                                           Giving{"AStepOfNothing", 2, 0, 1, 0, 2, 0, 0, 2}),
                         [](const ::testing::TestParamInfo<Giving>& row) { return row.param.Name; });

// 20,000,000 rounds, each 0.5 + 0.25 of the value.
TEST(RepeatedGivingBound, RoundsAreNotBounded) {
  double value = 2e7;
  double given = 0;
  GiveRepeated(20'000'000, 0.5, 0.25, 0, value, given);
  EXPECT_EQ(value, 5'000'000.0);
  EXPECT_EQ(given, 5'000'000.0);
}

// 0.1 is no number of two digits: each round is rounded by itself, and so must many rounds at once be.
TEST(RepeatedGivingBound, ManyRoundsRoundLikeOneByOne) {
  double value = 700'000;
  double given = 0;
  GiveRepeated(3'000'000, 0.1, 0.1, 0, value, given);
  double valueOneByOne = 700'000;
  double givenOneByOne = 0;
  for (int round = 0; round < 3'000'000; ++round) {
    valueOneByOne -= 0.1 + 0.1;
    givenOneByOne += 0.1;
  }
  EXPECT_EQ(value, valueOneByOne);
  EXPECT_EQ(given, givenOneByOne);
}

TEST(RepeatedGivingBound, ACapReachedInTimeEndsAnEnormousCount) {
  double value = 1e9;
  double given = 0;
  GiveRepeated(kGreatest, 0.5, 0.5, 2, value, given);
  EXPECT_EQ(value, 999'999'996.0);  // four rounds
  EXPECT_EQ(given, 2.0);
}

struct Freeing {
  const char* Name;
  std::int32_t Count;
  double Step;
  double StepGift;
  double Cap;
  double Goods;
  double Condition;
  double Given;
  double NewGoods;
  double NewCondition;
  double NewGiven;
};

void PrintTo(const Freeing& row, std::ostream* out) { *out << row.Name; }

class RepeatedFreeing : public ::testing::TestWithParam<Freeing> {};

TEST_P(RepeatedFreeing, Gives) {
  const Freeing& row = GetParam();
  double goods = row.Goods;
  double condition = row.Condition;
  double given = row.Given;
  FreeRepeated(row.Count, row.Step, row.StepGift, row.Cap, goods, condition, given);
  EXPECT_EQ(goods, row.NewGoods);
  EXPECT_EQ(condition, row.NewCondition);
  EXPECT_EQ(given, row.NewGiven);
}

// A round takes its gift out of the goods and its step out of the condition.
INSTANTIATE_TEST_SUITE_P(Branches, RepeatedFreeing,
                         ::testing::Values(Freeing{"AtTheCapBeforeAnyRound", 3, 3, 1, 1, 4, 7, 1, 0, 7, 1},
                                           Freeing{"AboveTheCapWithoutRounds", 0, 3, 1, 2, 4, 7, 5, 0, 7, 2},
                                           Freeing{"NoRounds", 0, 3, 1, 0, 4, 7, 1, 4, 7, 1},
                                           Freeing{"NegativeCount", kSmallest, 3, 1, 0, 4, 7, 1, 4, 7, 1},
                                           Freeing{"NoGoods", 3, 3, 1, 0, 0, 9, 1, 0, 9, 1},
                                           Freeing{"TwoRounds", 2, 3, 1, 0, 4, 7, 1, 2, 1, 3},
                                           Freeing{"LessThanTheGiftIsThere", 1, 3, 2, 0, 1.5, 7, 0, 0, 4, 1.5},
                                           // The first round takes the last of the goods, the others go on without.
                                           Freeing{"RoundsGoOnWithoutGoods", 4, 2, 1, 0, 1, 8, 1, 0, 0, 2},
                                           Freeing{"AtTheCapInARound", 4, 2, 1, 2, 1, 8, 1, 0, 6, 2},
                                           Freeing{"AboveTheCapInARound", 4, 2, 2, 2.5, 8, 8, 1, 6, 6, 2.5}),
                         [](const ::testing::TestParamInfo<Freeing>& row) { return row.param.Name; });

// 4,000,000 rounds take all goods, the other 16,000,000 use up the condition.
TEST(RepeatedFreeingBound, RoundsAreNotBounded) {
  double goods = 1e6;
  double condition = 2e7;
  double given = 0;
  FreeRepeated(20'000'000, 0.5, 0.25, 0, goods, condition, given);
  EXPECT_EQ(goods, 0.0);
  EXPECT_EQ(condition, 1e7);
  EXPECT_EQ(given, 1e6);
}

TEST(RepeatedFreeingBound, ManyRoundsRoundLikeOneByOne) {
  double goods = 123456.7;
  double condition = 700'000;
  double given = 0.3;
  FreeRepeated(3'000'000, 0.1, 0.1, 200'000, goods, condition, given);
  double goodsOneByOne = 123456.7;
  double conditionOneByOne = 700'000;
  double givenOneByOne = 0.3;
  for (int round = 0; round < 3'000'000; ++round) {
    const double gift = goodsOneByOne < 0.1 ? goodsOneByOne : 0.1;
    goodsOneByOne -= gift;
    conditionOneByOne -= 0.1;
    givenOneByOne += gift;
  }
  EXPECT_EQ(goods, goodsOneByOne);
  EXPECT_EQ(condition, conditionOneByOne);
  EXPECT_EQ(given, givenOneByOne);
}

}  // namespace
}  // namespace Corvane
