#include <gmock/gmock.h>

#include <algorithm>

#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// Which rules the engine holds, and in which order it takes them.
class Registry : public Till {
 protected:
  /// An ordinary rule that takes part in the order and never applies.
  static Answer LoadRule(const std::string& billNo, const std::string& primary, const std::string& date) {
    return Load("PTXS", RuleXml(billNo, "PTXS", "Primary=\"" + primary + "\" JzDate=\"" + date + "\""));
  }

  /// The rules in the order of calculation: a sale of the kind "2" skips every rule here, and "Zh" goes through the
  /// registry once.
  static std::vector<std::string> Order() {
    TakeLog();
    EXPECT_EQ(Calc("order", "Zh", SaleXml("", "", "2")).Code, 0);
    std::vector<std::string> order;
    const std::vector<std::string> log = TakeLog();
    for (auto entry = log.begin(); entry != log.end(); ++entry) {
      if (*entry == "跳过促销") order.push_back(*++entry);
    }
    return order;
  }

  /// The number of rules as a calculation logs it.
  static bool HoldsRules(int count) {
    TakeLog();
    EXPECT_EQ(Calc("count", "Zh", SaleXml("", "", "2")).Code, 0);
    return Holds(TakeLog(), "count:" + std::to_string(count) + "\n");
  }
};

// --- Order -----------------------------------------------------------------------------------------------------------

TEST_F(Registry, ExclusiveRulesComeFirstThenOrdinaryThenExtraOnesWhateverTheirDates) {
  LoadRule("EXTRA", "DJ", "2026-01-01");
  LoadRule("ORDINARY", "PT", "2026-01-02");
  LoadRule("EXCLUSIVE", "DZ", "2026-01-03");
  EXPECT_THAT(Order(), ElementsAre("EXCLUSIVE", "ORDINARY", "EXTRA"));

  Clear("*");
  LoadRule("EXTRA", "DJ", "2026-01-03");
  LoadRule("ORDINARY", "PT", "2026-01-02");
  LoadRule("EXCLUSIVE", "DZ", "2026-01-01");
  EXPECT_THAT(Order(), ElementsAre("EXCLUSIVE", "ORDINARY", "EXTRA"));
}

TEST_F(Registry, OfOneStackingClassTheLaterDateComesFirst) {
  LoadRule("MARCH", "PT", "2026-03-01");
  LoadRule("JANUARY", "PT", "2026-01-01");
  LoadRule("FEBRUARY", "PT", "2026-02-01");

  EXPECT_THAT(Order(), ElementsAre("MARCH", "FEBRUARY", "JANUARY"));
}

TEST_F(Registry, DatesAreComparedAsTexts) {
  LoadRule("A", "PT", "2026-9-1");
  LoadRule("B", "PT", "2026-10-1");
  LoadRule("C", "PT", "");

  EXPECT_THAT(Order(), ElementsAre("A", "B", "C"));
}

TEST_F(Registry, EveryGroupIsOrderedByDate) {
  LoadRule("D1", "DJ", "2026-01-01");
  LoadRule("D2", "DJ", "2026-05-01");
  LoadRule("P1", "PT", "2026-02-01");
  LoadRule("Z1", "DZ", "2026-03-01");
  LoadRule("P2", "PT", "2026-06-01");
  LoadRule("Z2", "DZ", "2026-04-01");

  EXPECT_THAT(Order(), ElementsAre("Z2", "Z1", "P2", "P1", "D2", "D1"));
}

// --- One rule a number -----------------------------------------------------------------------------------------------

TEST_F(Registry, ASecondLoadOfANumberReplacesTheRuleAndTakesItsOwnPlace) {
  LoadRule("A", "PT", "2026-03-01");
  LoadRule("B", "PT", "2026-02-01");
  EXPECT_THAT(Order(), ElementsAre("A", "B"));

  EXPECT_EQ(LoadRule("A", "PT", "2026-01-01").Msg, "sucess");

  EXPECT_THAT(Order(), ElementsAre("B", "A"));
}

TEST_F(Registry, ARuleMayBeReplacedByOneOfAnotherType) {
  MakeTables();
  Put({DirectRow("A", 1, "COLA").Price("8").SaleCount("2")});
  ASSERT_EQ(Load("PTXS", RuleXml("A", "PTXS")).Code, 0);
  ASSERT_EQ(Load("PTOS", RuleXml("A", "PTOS")).Code, 0);

  const Answer sale = Calc("till", "All", SaleXml(LineXml(1, "COLA", "10", "2", "20")));

  EXPECT_EQ(RowWhere(sale.Out, "ProResult", "ProBillNo", "A")["ProType"], "PTOS");
  EXPECT_TRUE(HoldsRules(1));
}

TEST_F(Registry, ANumberInOtherLettersIsAnotherRuleToALoad) {
  LoadRule("abc", "PT", "2026-02-01");
  LoadRule("ABC", "PT", "2026-01-01");

  EXPECT_THAT(Order(), ElementsAre("abc", "ABC"));
}

// --- Clearing --------------------------------------------------------------------------------------------------------

TEST_F(Registry, AStarClearsAllRules) {
  LoadRule("abc", "PT", "2026-01-01");
  LoadRule("ABC", "DZ", "2026-01-02");
  LoadRule("x", "DJ", "2026-01-03");

  EXPECT_EQ(Clear("*").Code, 0);

  EXPECT_THAT(Order(), IsEmpty());
  EXPECT_TRUE(HoldsRules(0));
}

TEST_F(Registry, ANumberInOtherLettersIsTheSameRuleToAClear) {
  LoadRule("abc", "PT", "2026-03-01");
  LoadRule("ABC", "PT", "2026-02-01");
  LoadRule("abd", "PT", "2026-01-01");

  const Answer clear = Clear("aBc");

  EXPECT_EQ(clear.Code, 0);
  EXPECT_EQ(clear.Msg, "sucess");
  EXPECT_THAT(Order(), ElementsAre("abd"));
}

TEST_F(Registry, AClearOfANumberThatNobodyHasIsASuccess) {
  LoadRule("A", "PT", "2026-01-01");

  EXPECT_EQ(Clear("B").Msg, "sucess");

  EXPECT_THAT(Order(), ElementsAre("A"));
}

TEST_F(Registry, RulesOutliveTheEndOfLoadingAndTheClearOfSales) {
  LoadRule("A", "PT", "2026-01-01");

  EXPECT_EQ(ClearSales().Code, 0);

  EXPECT_THAT(Order(), ElementsAre("A"));
}

// --- Types -----------------------------------------------------------------------------------------------------------

TEST_F(Registry, EveryTypeWordOfTheTableLoads) {
  const std::vector<std::string> words = {"PTXS", "PTPL", "PTOS", "ZHZY", "ZHGD", "ZHTJ", "ZHZX",
                                          "MZMJ", "MZDP", "MZZM", "MZZP", "MZHG", "MZZF", "MZYQ"};
  for (const std::string& word : words) {
    const Answer load = Load(word, RuleXml(word, word));
    EXPECT_EQ(load.Code, 0) << word;
    EXPECT_EQ(load.Msg, "sucess") << word;
  }
  EXPECT_TRUE(HoldsRules(14));
}

TEST_F(Registry, ACouponGivingRuleDoesNotLoadUnderItsOwnWord) {
  const std::string rule = RuleXml("Q1", "MZZQ");

  const Answer load = Load("MZZQ", rule);

  EXPECT_EQ(load.Code, -1);
  EXPECT_EQ(load.Msg, "pro initialize failed" + rule);
  EXPECT_THAT(TakeLog(), ElementsAre("pro initialize failed" + rule));
  EXPECT_TRUE(HoldsRules(0));
}

TEST_F(Registry, ACouponGivingRuleLoadsUnderTheWordOfCouponUse) {
  EXPECT_EQ(Load("MZYQ", RuleXml("Q1", "MZZQ")).Msg, "sucess");
  EXPECT_TRUE(HoldsRules(1));
}

TEST_F(Registry, TypeWordsAreExact) {
  for (const std::string word : {"", "ptxs", "PTXS ", " PTXS", "PT", "PTXSX", "ZH"}) {
    EXPECT_EQ(Load(word, "<Rules/>").Code, -1) << word;
    EXPECT_EQ(Load(word, "<Rules/>").Msg, "pro initialize failed<Rules/>") << word;
  }
  EXPECT_TRUE(HoldsRules(0));
}

TEST_F(Registry, ALoadThatEndsWellWritesNothingToTheLog) {
  LoadRule("A", "PT", "2026-01-01");

  EXPECT_THAT(TakeLog(), IsEmpty());
}

TEST_F(Registry, AStepThatDoesNotFitTheRulesClassDoesNothing) {
  MakeTables();
  const std::vector<std::string> words = {"PTXS", "PTPL", "PTOS", "ZHZY", "ZHGD", "ZHTJ", "ZHZX",
                                          "MZMJ", "MZDP", "MZZM", "MZZP", "MZHG", "MZZF", "MZYQ"};
  const std::string line = LineXml(1, "COLA", "10", "3", "30");
  const std::string before = Calc("plain", "All", SaleXml(line)).Out;
  for (const std::string& loaded : words) {
    for (const std::string word : {"PTXS", "PTPL", "PTOS", "ZHZY", "MZMJ", "MZZQ", "MZZF", "XXXX", ""}) {
      Clear("*");
      ASSERT_EQ(Load(loaded, RuleXml("A", word)).Code, 0);
      for (const std::string mode : {"Single", "All", "Union", "Zh", "MzPromotion", "Gift", "Pay", "Coupon"}) {
        EXPECT_EQ(Calc("till", mode, SaleXml(line)).Code, 0) << loaded << " as " << word << " in " << mode;
      }
      // Without rows or lists no class gives anything, whichever step it is asked for.
      EXPECT_EQ(Calc("till", "All", SaleXml(line)).Out, before) << loaded << " as " << word;
    }
  }
}

TEST_F(Registry, ARuleIsOfTheClassItWasLoadedAsAndRunsTheStepOfItsOwnTypeWord) {
  MakeTables();
  Put({DirectRow("A", 1, "COLA").Price("8")});
  const std::string sale = SaleXml(LineXml(1, "COLA", "10", "3", "30"));

  // A time limit that calls itself a batch has no batch step.
  ASSERT_EQ(Load("PTXS", RuleXml("A", "PTPL")).Code, 0);
  EXPECT_THAT(DiscountsOf(Calc("till", "All", sale).Out), IsEmpty());
  ASSERT_EQ(Load("PTXS", RuleXml("A", "PTXS")).Code, 0);
  EXPECT_THAT(DiscountsOf(Calc("till", "All", sale).Out), SizeIs(1));
}

// --- Rules that are none ---------------------------------------------------------------------------------------------

TEST_F(Registry, ATextThatDoesNotParseLoadsARuleThatNeverApplies) {
  for (const std::string text : {"", "garbage", "<", "<Rules", "<Rules/>", "<Rules><Rule", "<Rules><Rule/></Rules>"}) {
    Clear("*");
    EXPECT_EQ(Load("PTXS", text).Msg, "sucess") << text;
    EXPECT_TRUE(HoldsRules(1)) << text;

    const Answer sale = Calc("till", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

    EXPECT_EQ(sale.Code, 0) << text;
    EXPECT_THAT(DiscountsOf(sale.Out), IsEmpty()) << text;
  }
}

TEST_F(Registry, ASecondRuleWithoutANumberReplacesTheFirst) {
  Load("PTXS", "garbage");
  Load("PTPL", "");

  EXPECT_TRUE(HoldsRules(1));
}

TEST_F(Registry, ARuleWithoutANumberIsClearedByTheEmptyNumber) {
  Load("PTXS", "garbage");
  LoadRule("A", "PT", "2026-01-01");

  EXPECT_EQ(Clear("").Code, 0);

  EXPECT_THAT(Order(), ElementsAre("A"));
}

// --- A stacking class that is none -----------------------------------------------------------------------------------

TEST_F(Registry, ARuleOfNoStackingClassBehindTheOthersKeepsItsPlace) {
  LoadRule("A", "PT", "2026-03-01");
  LoadRule("B", "PT", "2026-02-01");
  LoadRule("NONE", "XX", "2026-01-01");

  EXPECT_THAT(Order(), ElementsAre("A", "B", "NONE"));
}

TEST_F(Registry, ARuleOfNoStackingClassInFrontOfTheOthersGivesItsPlaceToTheLastOfThem) {
  LoadRule("A", "PT", "2026-02-01");
  LoadRule("B", "PT", "2026-01-01");
  LoadRule("NONE", "XX", "2026-03-01");

  // By date NONE, A, B; the two that have a class move to the front, and what stood in the third place stays there.
  EXPECT_THAT(Order(), ElementsAre("A", "B", "B"));
}

TEST_F(Registry, ARuleThatStandsTwiceIsClearedOnce) {
  LoadRule("A", "PT", "2026-02-01");
  LoadRule("B", "PT", "2026-01-01");
  LoadRule("NONE", "XX", "2026-03-01");

  EXPECT_EQ(Clear("B").Code, 0);

  EXPECT_THAT(Order(), ElementsAre("A"));
}

TEST_F(Registry, ARuleThatStandsTwiceCanBeReplaced) {
  LoadRule("A", "PT", "2026-02-01");
  LoadRule("B", "PT", "2026-01-01");
  LoadRule("NONE", "XX", "2026-03-01");

  EXPECT_EQ(LoadRule("B", "DZ", "2026-05-01").Code, 0);

  EXPECT_EQ(Order().front(), "B");
  EXPECT_EQ(Clear("*").Code, 0);
  EXPECT_THAT(Order(), IsEmpty());
}

TEST_F(Registry, RulesOfNoStackingClassSurviveManyLoadsClearsAndCalculations) {
  MakeTables();
  Put({DirectRow("R0", 1, "COLA").Price("8"), DirectRow("R1", 1, "COLA").Price("7"),
       DirectRow("R2", 1, "COLA").Price("6")});
  const std::string sale = SaleXml(LineXml(1, "COLA", "10", "3", "30"));
  const std::vector<std::string> classes = {"XX", "PT", "", "DZ", "pt", "DJ", "PTX"};
  for (int round = 0; round < 40; ++round) {
    for (int rule = 0; rule < 7; ++rule) {
      const std::string& primary = classes[static_cast<std::size_t>(round * 3 + rule) % classes.size()];
      const std::string date = "2026-01-" + std::to_string(10 + (round * 5 + rule * 3) % 20);
      EXPECT_EQ(LoadRule("R" + std::to_string(rule), primary, date).Code, 0);
    }
    EXPECT_EQ(Calc("till", "All", sale).Code, 0);
    EXPECT_EQ(Calc("till", "Single", sale).Code, 0);
    EXPECT_EQ(Clear("r" + std::to_string(round % 7)).Code, 0);
    EXPECT_EQ(Calc("till", "Union", sale).Code, 0);
  }
  EXPECT_EQ(Clear("*").Code, 0);
  EXPECT_TRUE(HoldsRules(0));
}

TEST_F(Registry, AClearWalksOnOverARuleThatStandsTwiceWithOthersBetween) {
  LoadRule("A", "PT", "2026-01-05");
  LoadRule("NONE1", "XX", "2026-01-09");
  LoadRule("B", "PT", "2026-01-04");
  LoadRule("C", "PT", "2026-01-03");
  LoadRule("NONE2", "", "2026-01-08");
  ASSERT_FALSE(Order().empty());

  EXPECT_EQ(Clear("NONE1").Code, 0);
  EXPECT_EQ(Clear("C").Code, 0);
  EXPECT_EQ(Clear("A").Code, 0);

  const std::vector<std::string> order = Order();
  EXPECT_EQ(std::count(order.begin(), order.end(), "A") + std::count(order.begin(), order.end(), "C"), 0);
  EXPECT_EQ(Clear("*").Code, 0);
  EXPECT_TRUE(HoldsRules(0));
}

// --- One document, one rule ------------------------------------------------------------------------------------------

TEST_F(Registry, AllRuleElementsOfATextAreOneRuleAndTheLastHeaderCounts) {
  MakeTables();
  Put({DirectRow("B", 1, "COLA").Price("8"), DirectRow("A", 1, "COLA").Price("5")});
  const std::string text =
      R"(<AnyName><One BillNo="A" ProType="PTXS" ProMode="PT" Primary="PT" JzDate="1" Remark="">)" +
      std::string(kEveryOrganisation) + R"(</One><Two BillNo="B">)" + kEveryDay + "</Two></AnyName>";

  ASSERT_EQ(Load("PTXS", text).Code, 0);

  EXPECT_TRUE(HoldsRules(1));
  EXPECT_THAT(DiscountsOf(Calc("till", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30"))).Out),
              ElementsAre("1 COLA: B on 3.00 gives 6.00"));
}

TEST_F(Registry, WhatARuleDoesNotKnowIsPassedOver) {
  MakeTables();
  Put({DirectRow("A", 1, "COLA").Price("8")});
  const std::string text = R"(<?xml version="1.0"?><!-- a rule --><Rules Version="2"><Rule BillNo="A" Name="Summer" )"
                           R"(ProType="PTXS" ProMode="PT" Primary="PT" JzDate="1" Remark=""><Goods><Row PluCode="X"/>)"
                           R"(</Goods><orgfilter><Row OrgCode="X"/></orgfilter>)" +
                           std::string(kEveryOrganisation) + kEveryDay + "</Rule></Rules>";

  ASSERT_EQ(Load("PTXS", text).Code, 0);

  EXPECT_THAT(DiscountsOf(Calc("till", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30"))).Out),
              ElementsAre("1 COLA: A on 3.00 gives 6.00"));
}

}  // namespace
}  // namespace Corvane::Testing
