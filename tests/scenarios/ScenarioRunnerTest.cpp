#include "tests/scenarios/ScenarioRunner.h"

#include <gmock/gmock.h>

#include <string>

namespace Corvane::Testing {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr const char* kRuleAndSale = R"(Scenario: Cola at 8.00
  Three bottles of 10.00.
Given the rule COLA-WEEK of type PTXS
  And its prices are
    | row | goods | range | form | amount | kind |
    | 1   | COLA  | IN    | PRC  | 8.00   | PLU  |
When the sale is calculated in mode All
    | line | goods | price | count | total |
    | 1    | COLA  | 10.00 | 3     | 30.00 |
)";

constexpr const char* kLines = R"(Then the sale comes out as
    | line | goods | count | total | unit price |
    | 1    | COLA  | 3.00  | 24.00 | 8.0000     |
)";

constexpr const char* kDiscounts = R"(Then the discounts are
    | line | rule      | quantity | money |
    | 1    | COLA-WEEK | 3.00     | 6.00  |
)";

std::string Scenario(const std::string& expectations) { return kRuleAndSale + expectations; }

class AScenario : public ScenarioRunner {
 protected:
  /// What is wrong with a file's scenarios, played one after the other on new tills.
  std::vector<std::string> Play(const std::string& text) {
    std::vector<std::string> all;
    try {
      for (const ScenarioText& scenario : ScenariosOf(text)) {
        SetUp();
        all = ScenarioRunner::Play(scenario);
      }
    } catch (const ScenarioError& error) {
      all.emplace_back(error.what());
    }
    return all;
  }
};

TEST_F(AScenario, HoldsWhenEverythingIsAsTold) {
  EXPECT_THAT(Play(Scenario(std::string(kLines) + kDiscounts)), IsEmpty());
}

TEST_F(AScenario, FailsOnAWrongTotalAndShowsBoth) {
  const std::string wrong = R"(Then the sale comes out as
    | line | goods | count | total | unit price |
    | 1    | COLA  | 3.00  | 24.01 | 8.0000     |
)";
  EXPECT_THAT(Play(Scenario(wrong + kDiscounts)),
              ElementsAre(AllOf(StartsWith("line 10: the sale:"),  //
                                HasSubstr("expected | 1 | COLA | 3.00 | 24.01 | 8.0000 |"),
                                HasSubstr("got      | 1 | COLA | 3.00 | 24.00 | 8.0000 |"))));
}

TEST_F(AScenario, FailsOnALineThatIsNotTold) {
  const std::string none = "Then the sale comes out as\n| line | goods | count | total | unit price |\n";
  EXPECT_THAT(Play(Scenario(none + kDiscounts)),
              ElementsAre(AllOf(HasSubstr("expected nothing"), HasSubstr("got      | 1 |"))));
}

TEST_F(AScenario, FailsOnALineThatDoesNotCome) {
  const std::string more = std::string(kLines) + "    | 2    | FANTA | 1.00  | 5.00  | 5.0000     |\n";
  EXPECT_THAT(Play(Scenario(more + kDiscounts)),
              ElementsAre(AllOf(HasSubstr("expected | 2 |"), HasSubstr("got      nothing"))));
}

TEST_F(AScenario, FailsOnDiscountsThatAreNotTold) {
  EXPECT_THAT(Play(Scenario(kLines)), ElementsAre(AllOf(StartsWith("line 7: the discounts:"), HasSubstr("COLA-WEEK")),
                                                  StartsWith("line 7: the apportions:")));
}

TEST_F(AScenario, FailsWhenItDoesNotTellTheSale) {
  EXPECT_THAT(Play(Scenario(kDiscounts)), ElementsAre("line 7: the scenario doesn't tell how the sale comes out"));
}

TEST_F(AScenario, FailsOnApportionsThatAreNotTheDiscounts) {
  const std::string none = "And the apportions are\n| line | rule | quantity | money |\n";
  EXPECT_THAT(Play(Scenario(std::string(kLines) + kDiscounts + none)),
              ElementsAre(StartsWith("line 16: the apportions:")));
}

TEST_F(AScenario, FailsOnAnotherMember) {
  const std::string member = R"(Then the discounts are
    | line | rule      | quantity | money | member |
    | 1    | COLA-WEEK | 3.00     | 6.00  | GOLD   |
)";
  EXPECT_THAT(Play(Scenario(kLines + member)), ElementsAre(HasSubstr("GOLD"), HasSubstr("GOLD")));
}

TEST_F(AScenario, FailsOnAnotherAnswer) {
  EXPECT_THAT(Play(Scenario(std::string(kLines) + kDiscounts + "And the answer is -3 \"number overflow\"\n")),
              ElementsAre("line 16: the answer: expected -3 \"number overflow\", got 0 \"sucess\""));
}

TEST_F(AScenario, FailsOnAFailureThatIsNotTold) {
  EXPECT_THAT(Play("Scenario: Nobody says how\nWhen the sale is calculated in mode all\n"),
              ElementsAre("line 2: the answer: expected 0 \"sucess\", got -1 \"sucess\""));
}

TEST_F(AScenario, FailsOnALogThatIsNotAsTold) {
  const std::string log =
      "And the log holds \"no such entry\"\nAnd the log holds \"2\" 3 times\nAnd the log doesn't hold \"2\"\n";
  EXPECT_THAT(Play(Scenario(std::string(kLines) + kDiscounts + log)),
              ElementsAre("line 16: the log holds \"no such entry\" 0 times", "line 17: the log holds \"2\" 1 times",
                          "line 18: the log holds \"2\" 1 times"));
}

TEST_F(AScenario, FailsOnOffersAndCouponsThatAreNotTold) {
  EXPECT_THAT(Play(R"(Scenario: Offers and coupons come in and go out again
When the sale is calculated in mode Gift
  And its coupons are
    | number | coupon | value |
    | C-1    | C5     | 5.00  |
  And its own XML is
    """
    <ProGifts><ProGift ProBillNo="GIFT-1"><Data SerialNo="1" PluCode="MUG"/></ProGift></ProGifts>
    """
Then the sale comes out as
  | line | goods | count | total | unit price |
)"),
              ElementsAre(AllOf(StartsWith("line 2: the offers:"), HasSubstr("GIFT-1")),
                          AllOf(StartsWith("line 2: the coupons:"), HasSubstr("5.00"))));
}

TEST_F(AScenario, FailsOnASentenceThatNothingChecks) {
  EXPECT_THAT(Play(Scenario(std::string(kLines) + kDiscounts + "And everybody is happy\n")),
              ElementsAre("line 16: nothing checks this: everybody is happy"));
}

TEST_F(AScenario, FailsOnAnUnknownColumn) {
  const std::string column = R"(Then the discounts are
    | line | rule      | quantity | money | colour |
    | 1    | COLA-WEEK | 3.00     | 6.00  |        |
)";
  EXPECT_THAT(Play(Scenario(kLines + column)), ElementsAre("line 13: no such column: colour"));
}

TEST_F(AScenario, FailsOnATableWithoutTheMoney) {
  const std::string column = R"(Then the discounts are
    | line | rule      | quantity |
    | 1    | COLA-WEEK | 3.00     |
)";
  EXPECT_THAT(Play(Scenario(kLines + column)), ElementsAre("line 13: the column is missing: money"));
}

TEST_F(AScenario, FailsOnALineThatIsNoPartOfTheFormat) {
  EXPECT_THAT(Play(Scenario("Than the discounts are\n")),
              ElementsAre("line 10: neither a sentence nor a row: Than the discounts are"));
  EXPECT_THAT(Play("Scenario: A\nGiven the rule X of type PTXS\n| a | b |\n| 1 |\n"),
              ElementsAre(HasSubstr("line 10"), "line 4: the row doesn't have a cell for each column"));
}

TEST_F(AScenario, FailsOnAGivenThatNothingDoes) {
  EXPECT_THAT(Play("Scenario: A\nGiven the sun shines\n"), ElementsAre("line 2: nothing does this: the sun shines"));
}

TEST_F(AScenario, FailsOnATableThatNobodyReads) {
  EXPECT_THAT(Play("Scenario: A\nGiven the rule X of type PTXS\n| SerialNo |\n| 1 |\n"),
              ElementsAre("line 2: nothing belongs below this"));
  EXPECT_THAT(Play("Scenario: A\nGiven the rule X of type PTXS\nAnd its prices are\n"),
              ElementsAre(HasSubstr("line 2"), "line 3: a table belongs below this"));
}

TEST_F(AScenario, FailsOnAHeaderValueThatNobodyReads) {
  EXPECT_THAT(Play("Scenario: A\nGiven the rule X of type PTXS with Primary DZ, Colour red\n"),
              ElementsAre("line 2: a rule's header doesn't have this: Colour red"));
}

TEST_F(AScenario, FailsWhenNothingHappens) {
  EXPECT_THAT(Play("Scenario: A\n  All is told, nothing is done.\n"), ElementsAre("line 2: nothing happens"));
}

/// Offers of two rows come in and go out; then the cashier picks.
std::string WithPick(const std::string& pick) {
  return R"(Scenario: Two mugs on offer
When the sale is calculated in mode Gift
  And its own XML is
    """
    <ProGifts><ProGift ProBillNo="GIFT-1"><Data SerialNo="1" PluCode="MUG"/><Data SerialNo="2" PluCode="MUG"/></ProGift></ProGifts>
    """
Then the sale comes out as
  | line | goods | count | total | unit price |
  And the offers are
  | rule   | total | left | used | row | goods |
  | GIFT-1 | 0.00  | 0.00 | 0.00 | 1   | MUG   |
  | GIFT-1 | 0.00  | 0.00 | 0.00 | 2   | MUG   |
When the sale is calculated in mode All
  And the offers come back with
)" + pick +
         R"(
Then the sale comes out as
  | line | goods | count | total | unit price |
)";
}

TEST_F(AScenario, SendsThePicksBackWithTheOffers) {
  EXPECT_THAT(Play(WithPick("| rule | row | goods | picked |\n| GIFT-1 | 2 | MUG | 1 |")), IsEmpty());
}

TEST_F(AScenario, FailsOnAPickThatNamesNoOffer) {
  EXPECT_THAT(Play(WithPick("| rule | goods | picked |\n| GIFT-1 | CUP | 1 |")),
              ElementsAre("line 14: not each pick names one row of one offer"));
}

TEST_F(AScenario, FailsOnAPickThatNamesTwoRows) {
  EXPECT_THAT(Play(WithPick("| rule | goods | picked |\n| GIFT-1 | MUG | 1 |\n| GIFT-1 | CUP | 1 |")),
              ElementsAre("line 14: not each pick names one row of one offer"));
}

/// A cola at 8.00 in the background of the scenarios that follow.
constexpr const char* kBackground = R"(Background:
Given the rule COLA-WEEK of type PTXS
  And its prices are
    | goods | price |
    | COLA  | 8.00  |
)";

TEST_F(AScenario, ExpectsOfALineWhatTheSaleSentAndOfADiscountTheWholeLineAndTheOnlyRule) {
  EXPECT_THAT(Play(std::string(kBackground) + R"(Scenario: Little is told
When the sale is calculated in mode All
    | goods | price | count |
    | COLA  | 10.00 | 3     |
    | TEA   | 2.00  | 1     |
Then the sale comes out as
    | total | unit price |
    | 24.00 | 8.0000     |
    | 2.00  | 2.0000     |
  And the discounts are
    | line | money |
    | 1    | 6.00  |
)"),
              IsEmpty());
}

TEST_F(AScenario, FailsOnAUnitPriceThatIsNeitherToldNorTheOneOfBefore) {
  EXPECT_THAT(Play(std::string(kBackground) + R"(Scenario: The unit price is left out
When the sale is calculated in mode All
    | goods | total |
    | COLA  | 10.00 |
Then the sale comes out as
    | total |
    | 8.00  |
  And the discounts are
    | line | money |
    | 1    | 2.00  |
)"),
              ElementsAre(AllOf(StartsWith("line 10: the sale:"), HasSubstr("10.0000"), HasSubstr("8.0000"))));
}

TEST_F(AScenario, FailsOnASaleThatDoesNotComeOutAsItCameIn) {
  EXPECT_THAT(Play(std::string(kBackground) + R"(Scenario: Nothing happens, it says
When the sale is calculated in mode All
    | goods | total |
    | COLA  | 10.00 |
Then the sale comes out as it came in
)"),
              ElementsAre(AllOf(StartsWith("line 10: the sale:"), HasSubstr("10.00"), HasSubstr("8.00")),
                          StartsWith("line 7: the discounts:"), StartsWith("line 7: the apportions:")));
}

TEST_F(AScenario, HoldsWhenASecondCallLeavesTheSaleAsTheFirstOneDid) {
  EXPECT_THAT(Play(std::string(kBackground) + R"(Scenario: A subtotal, and a gift that nobody offers
When the sale is calculated in mode All
    | goods | total |
    | COLA  | 10.00 |
Then the sale comes out as
    | total | unit price |
    | 8.00  | 8.0000     |
  And the discounts are
    | line | money |
    | 1    | 2.00  |
When the same sale is calculated in mode Gift
Then the sale comes out as it came in
  And the discounts are
    | line | money |
    | 1    | 2.00  |
)"),
              IsEmpty());
}

TEST_F(AScenario, FailsOnARuleThatIsNotToldWhenThereAreTwo) {
  EXPECT_THAT(Play(std::string(kBackground) + R"(Scenario: Whose discount is it?
Given the rule OTHER of type PTXS
When the sale is calculated in mode All
    | goods | total |
    | COLA  | 10.00 |
Then the sale comes out as
    | total | unit price |
    | 8.00  | 8.0000     |
  And the discounts are
    | line | money |
    | 1    | 2.00  |
)"),
              ElementsAre("line 14: the column is missing: rule"));
}

TEST_F(AScenario, FailsOnAColumnThatItsTableDoesNotHave) {
  EXPECT_THAT(Play("Scenario: A\nGiven the rule X of type PTXS\nAnd its prices are\n| goods | member |\n| A | B |\n"),
              ElementsAre("line 3: no such column here: member"));
}

TEST_F(AScenario, FailsOnTwoPricesInOneRow) {
  EXPECT_THAT(
      Play(
          "Scenario: A\nGiven the rule X of type PTXS\nAnd its prices are\n| goods | price | % off |\n| A | 1 | 2 |\n"),
      ElementsAre("line 3: two cells of a row fill DscType"));
}

TEST_F(AScenario, FailsOnASentenceThatIsNoPartOfARule) {
  EXPECT_THAT(Play("Scenario: A\nGiven the rule X of type PTXS\nAnd its colours are\n| red |\n"),
              ElementsAre("line 3: a rule doesn't have this: its colours are"));
}

TEST_F(AScenario, IsOneOfSeveralWithABackgroundAndOneForEachExample) {
  const auto scenarios = ScenariosOf(std::string(kBackground) + R"(
Scenario: First
When the sale ends
Scenario: Second
When the sale is calculated in mode <mode>
Examples:
    | case   | mode | working |
    | once   | All  | so      |
    | again  | Zh   | and so  |
)");

  ASSERT_EQ(scenarios.size(), 3U);
  EXPECT_EQ(scenarios[0].Headline, "First");
  EXPECT_EQ(scenarios[1].Headline, "Second: once");
  EXPECT_EQ(scenarios[2].Headline, "Second: again");
  ASSERT_EQ(ReadScenario(scenarios[0]).size(), 2U);
  ASSERT_EQ(ReadScenario(scenarios[2]).size(), 2U);
  EXPECT_EQ(ReadScenario(scenarios[0])[0].Head.Text, "the rule COLA-WEEK of type PTXS");
  EXPECT_EQ(ReadScenario(scenarios[1])[1].Head.Text, "the sale is calculated in mode All");
  EXPECT_EQ(ReadScenario(scenarios[2])[1].Head.Text, "the sale is calculated in mode Zh");
  EXPECT_EQ(ReadScenario(scenarios[2])[1].Head.Line, 10);
}

TEST_F(AScenario, FailsOnAnExampleThatNobodyFillsIn) {
  EXPECT_THAT(Play("Scenario: A\nWhen the sale ends\nExamples:\n| mode |\n| All |\n"),
              ElementsAre("line 3: nothing is filled in for this: mode"));
}

TEST_F(AScenario, FailsWithoutExamplesOrWithHalfOnes) {
  EXPECT_THAT(Play("Scenario: A\nWhen the sale ends\nExamples:\n"), ElementsAre("line 3: there are no examples"));
  EXPECT_THAT(Play("Scenario: A\nWhen the sale ends\nExamples:\n| a | b |\n| 1 |\n"),
              ElementsAre("line 5: the row doesn't have a cell for each column"));
  EXPECT_THAT(Play("Scenario: A\nWhen the sale ends\nExamples:\nWhen all ends\n"),
              ElementsAre("line 4: only a table stands below the examples"));
}

TEST_F(AScenario, FailsOnAFileThatHoldsNone) {
  EXPECT_THAT(Play(kBackground), ElementsAre("line 5: no headline"));
  EXPECT_THAT(Play("A story\nScenario: A\n"), ElementsAre("line 1: the first line isn't the headline"));
}

}  // namespace
}  // namespace Corvane::Testing
