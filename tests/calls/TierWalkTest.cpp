#include <cstddef>
#include <ostream>

#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

struct WalkTier {
  const char* BaseMoney;
  const char* BaseDscMoney;
  const char* AddMoney = "0";
  const char* AddDscMoney = "0";
  const char* SaleMaxIn = "0";
};

struct Walk {
  const char* Name;
  const char* Amount;
  std::vector<WalkTier> Tiers;
  const char* MaxDiscount;
  const char* Sum;  ///< "" when nothing is given
};

void PrintTo(const Walk& walk, std::ostream* out) { *out << walk.Name; }

/// What a sale's amount brings, from the tiers of one offer. Each sale is one line of the amount, so that the sum
/// stands in one row.
class TierWalk : public FullAmount, public ::testing::WithParamInterface<Walk> {
 protected:
  static std::string SumOf(const Walk& walk) {
    Offer(std::string("'M1','L1','ALL',") + walk.MaxDiscount + ",'0'");
    for (const WalkTier& tier : walk.Tiers) {
      Tier(std::string("'M1','L1',") + tier.BaseMoney + "," + tier.BaseDscMoney + "," + tier.AddMoney + "," +
           tier.AddDscMoney + "," + tier.SaleMaxIn);
    }
    LoadRule("M1", "MZMJ");
    const Texts sums =
        Held(MzPromotion(SaleXml(LineXml(1, "A", walk.Amount, "1", walk.Amount))), "ProResult", "DisMoney");
    return sums.empty() ? "" : sums.front();
  }
};

TEST_P(TierWalk, Gives) { EXPECT_EQ(SumOf(GetParam()), GetParam().Sum); }

// A tier is {threshold, its sum, further step, its sum, the most that it looks at}.
const std::vector<Walk> kWalks = {
    // 300: 50, (560 - 300) / 100 = 2 steps of 10; 560 - 500 = 60 doesn't reach 100.
    {"FurtherStepsUseUpWhatTheLowerTierNeeds", "560", {{"300", "50", "100", "10"}, {"100", "10"}}, "0", "70.00"},
    // 300: 50 and no step; 160 is left. 100: 10 and no step.
    {"WhatTheHigherTierLeavesReachesTheLower", "460", {{"300", "50"}, {"100", "10"}}, "0", "60.00"},
    // The same: 50, then 60 is cut to 55.
    {"TheSecondTiersSumIsCutToTheCap", "460", {{"300", "50"}, {"100", "10"}}, "55", "55.00"},

    // Thresholds.
    {"TheVeryThresholdIsReached", "100", {{"100", "10"}}, "0", "10.00"},
    {"ACentBelowIsNot", "99.99", {{"100", "10"}}, "0", ""},
    {"NoTierNoSum", "560", {}, "0", ""},
    // 1000: 100, 680 left. 500: 40, 180 left. 100: 5.
    {"ThreeTiersOneAfterTheOther", "1680", {{"100", "5"}, {"1000", "100"}, {"500", "40"}}, "0", "145.00"},
    // 1000 is passed over and leaves 680 as it is: 500: 40, 180 left; 100: 5.
    {"AnUnreachedTierLeavesTheAmount", "680", {{"1000", "100"}, {"500", "40"}, {"100", "5"}}, "0", "45.00"},

    // Steps. Without AddMoney the threshold and its sum come again: (350 - 100) / 100 = 2.5, cut to 2; 10 + 2 x 10.
    {"WithoutAStepTheThresholdIsTheStep", "350", {{"100", "10", "0", "99"}}, "0", "30.00"},
    // (350 - 100) / 50 = 5; 10 + 5 x 4.
    {"AStepOfItsOwn", "350", {{"100", "10", "50", "4"}}, "0", "30.00"},
    // 249.99 / 50 = 4.9998, cut to 4; 10 + 4 x 4.
    {"ACentShortOfAStep", "349.99", {{"100", "10", "50", "4"}}, "0", "26.00"},
    // (0.3 - 0.1) / 0.1 is 1.9999999999999998 in doubles, cut to 1: there is no tolerance. 0.01 + 0.01.
    {"AHairShortOfAStep", "0.3", {{"0.1", "0.01"}}, "0", "0.02"},
    // (560 - 300) / 200 = 1: 50 + 20; 560 - 500 = 60: 5.
    {"TheRestOfALongStepReachesTheLowerTier", "560", {{"300", "50", "200", "20"}, {"60", "5"}}, "0", "75.00"},
    {"StepsThatGiveNothing", "300", {{"100", "10", "100", "0"}}, "0", "10.00"},
    // (560 - 300) / -100 = -2: no steps; 560 - (300 + -2 x -100) = 60 reaches 60.
    {"ANegativeStepGivesNoSteps", "560", {{"300", "50", "-100", "10"}, {"60", "5"}}, "0", "55.00"},

    // SaleMaxIn. 300 of 560 count: 10 + 2 x 10, and 300 - 300 = 0: the 260 above are not handed on to 50.
    {"WhatLiesAboveTheMostIsDropped", "560", {{"100", "10", "0", "0", "300"}, {"50", "5"}}, "0", "30.00"},
    {"TheVeryMostCounts", "300", {{"100", "10", "0", "0", "300"}}, "0", "30.00"},
    // 250 is below 300: 10 + 1 x 10, and 50 is left: 5.
    {"BelowTheMostAllCounts", "250", {{"100", "10", "0", "0", "300"}, {"50", "5"}}, "0", "25.00"},
    // 60 of 150 count: 10, (60 - 100) / 100 = -0.4, cut to 0; 60 - 100 = -40 is raised to 0, which reaches 0: 3.
    {"AMostBelowTheThreshold", "150", {{"100", "10", "0", "0", "60"}, {"0", "3"}}, "0", "13.00"},
    // The same with a step: (60 - 100) / 50 = -0.8, cut to 0; -40 stays negative and doesn't reach 0.
    {"AMostBelowTheThresholdWithAStep", "150", {{"100", "10", "50", "4", "60"}, {"0", "3"}}, "0", "10.00"},
    // (10 - 100) / 30 = -3: no steps are added, but they are counted: 10 - (100 - 90) = 0 reaches 0: 3.
    {"AMostFarBelowTheThresholdWithAStep", "150", {{"100", "10", "30", "4", "10"}, {"0", "3"}}, "0", "13.00"},
    // (10 - 100) / 100 = -0.9, cut to 0.
    {"AMostFarBelowTheThreshold", "150", {{"100", "10", "0", "0", "10"}}, "0", "10.00"},

    // A threshold of 0. 80 / 0 is the smallest integer: no steps, the sum once.
    {"AThresholdOfNothing", "80", {{"0", "7"}}, "0", "7.00"},
    {"AThresholdOfNothingUnderACap", "80", {{"0", "7"}}, "5", "5.00"},
    // 80 / 30 = 2: 7 + 2 x 2.
    {"AThresholdOfNothingWithAStep", "80", {{"0", "7", "30", "2"}}, "0", "11.00"},
    // 100: 10 and nothing left; 0 reaches 0: 3.
    {"NothingLeftReachesAThresholdOfNothing", "100", {{"100", "10"}, {"0", "3"}}, "0", "13.00"},
    {"NothingLeftReachesNoOtherThreshold", "100", {{"100", "10"}, {"0.01", "3"}}, "0", "10.00"},
    // (80 - -10) / -10 = -9: no steps.
    {"ANegativeThreshold", "80", {{"-10", "5"}}, "0", "5.00"},

    // The cap. 50 is cut to 40 before any step.
    {"TheFirstTiersSumIsCutToTheCap", "300", {{"100", "50"}}, "40", "40.00"},
    // 10, 20, 30 is at or above 25.
    {"AStepOfTheFirstTierReachesTheCap", "560", {{"100", "10"}}, "25", "25.00"},
    {"AStepOfTheFirstTierMeetsTheCapExactly", "560", {{"100", "10"}}, "30", "30.00"},
    // 300: 50, 290 left. 100: 60, one step 70, which is above 65.
    {"AStepOfTheSecondTierReachesTheCap", "590", {{"300", "50"}, {"100", "10"}}, "65", "65.00"},
    // 50 is cut to 40, 0 - 300 is raised to 0, which reaches 0: 43 is cut to 40 again.
    {"ATierBehindTheCapIsCutToItAgain", "300", {{"100", "50"}, {"0", "3"}}, "40", "40.00"},
    {"ACapThatIsNotReached", "560", {{"300", "50", "100", "10"}, {"100", "10"}}, "100", "70.00"},
    {"NoStepsUnderACap", "100", {{"100", "10"}}, "20", "10.00"},
    {"ACapOfTheVerySum", "100", {{"100", "10"}}, "10", "10.00"},
    // 10 is above -5, and -5 is nothing to give.
    {"ANegativeCap", "100", {{"100", "10"}}, "-5", ""},
    {"ASumOfNothing", "100", {{"100", "0"}}, "0", ""},
    // 300 of 420 count: 20 and (300 - 100) / 50 = 4 steps of 5.
    {"StepsUpToTheMost", "420", {{"100", "20", "50", "5", "300"}}, "0", "40.00"},
};

INSTANTIATE_TEST_SUITE_P(Walks, TierWalk, ::testing::ValuesIn(kWalks),
                         [](const ::testing::TestParamInfo<Walk>& walk) { return walk.param.Name; });

}  // namespace
}  // namespace Corvane::Testing
