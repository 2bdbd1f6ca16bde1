#include <gmock/gmock.h>

#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// "PTOS": of each complete set of pieces of a goods, one piece gets the price.
class Set : public Till {
 protected:
  void SetUp() override {
    Till::SetUp();
    MakeTables();
  }
  static void LoadRule(const std::string& billNo, const std::string& header = "", const std::string& groups = "") {
    ASSERT_EQ(Load("PTOS", RuleXml(billNo, "PTOS", header, groups)).Code, 0);
  }
  static Answer Sell(const std::string& lines, const std::string& groups = "") {
    const Answer sale = Calc("till", "All", SaleXml(lines, groups));
    EXPECT_EQ(sale.Code, 0);
    EXPECT_EQ(sale.Msg, "sucess");
    return sale;
  }
};

// --- Sets ------------------------------------------------------------------------------------------------------------

TEST_F(Set, OfFivePiecesEverySecondOneGetsThePrice) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("2")});
  LoadRule("S1");

  const Answer sale = Sell(LineXml(1, "BAR", "10", "5", "50"));

  // Two sets: (10 - 1) x 2 = 18.00; 32.00 / 5 = 6.40
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 BAR 5.00 x 10.00 = 32.00"));
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 BAR: S1 on 2.00 gives 18.00"));
  EXPECT_THAT(SharesOf(sale.Out), ElementsAre("1 BAR: S1 on 2.00 gives 18.00"));
  const Row line = RowWhere(sale.Out, "Plu", "SerialNo", "1");
  EXPECT_EQ(line["FinalPrice"], "6.4000");
  EXPECT_EQ(line["DisNum"], "2.00");
}

TEST_F(Set, ASetOfTwoLinesGivesItsMoneyToTheSecond) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("2")});
  LoadRule("S1");

  const Answer sale = Sell(LineXml(1, "BAR", "10", "1", "10") + LineXml(2, "BAR", "10", "1", "10"));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 BAR 1.00 x 10.00 = 10.00", "2 BAR 1.00 x 10.00 = 1.00"));
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("2 BAR: S1 on 1.00 gives 9.00"));
}

TEST_F(Set, WhatIsLeftOfASetCarriesOverToTheNextLine) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("2")});
  LoadRule("S1");

  const Answer sale = Sell(LineXml(1, "BAR", "10", "3", "30") + LineXml(2, "BAR", "10", "1", "10") +
                           LineXml(3, "BAR", "10", "2", "20"));

  // 3: one set, one over. 1 + 1: one set, none over. 2: one set.
  EXPECT_THAT(LinesOf(sale.Out),
              ElementsAre("1 BAR 3.00 x 10.00 = 21.00", "2 BAR 1.00 x 10.00 = 1.00", "3 BAR 2.00 x 10.00 = 11.00"));
}

TEST_F(Set, AnIncompleteSetGivesNothing) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("3")});
  LoadRule("S1");

  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "BAR", "10", "2", "20")).Out), IsEmpty());
}

TEST_F(Set, ALineThatCompletesNoSetIsCarriedOnThoughTheFirstSetIsFull) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("3")});
  LoadRule("S1");

  const Answer sale = Sell(LineXml(1, "BAR", "10", "4", "40") + LineXml(2, "BAR", "10", "1", "10") +
                           LineXml(3, "BAR", "10", "1", "10"));

  // 4: one set, one over. 1 + 1: none, two over. 2 + 1: one set.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 BAR: S1 on 1.00 gives 9.00", "3 BAR: S1 on 1.00 gives 9.00"));
}

TEST_F(Set, EachGoodsMakesItsOwnSets) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("2"), DirectRow("S1", 2, "NUTS").Price("2").SaleCount("2")});
  LoadRule("S1");

  const Answer sale = Sell(LineXml(1, "BAR", "10", "1", "10") + LineXml(2, "NUTS", "10", "1", "10") +
                           LineXml(3, "NUTS", "10", "1", "10"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("3 NUTS: S1 on 1.00 gives 8.00"));
}

TEST_F(Set, ASetOfOneIsEveryPiece) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("1")});
  LoadRule("S1");

  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "BAR", "10", "3", "30")).Out), ElementsAre("1 BAR: S1 on 3.00 gives 27.00"));
}

TEST_F(Set, ASetNeedNotBeAWholeNumber) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("2.5")});
  LoadRule("S1");

  const Answer sale = Sell(LineXml(1, "BAR", "10", "5", "50") + LineXml(2, "BAR", "10", "2", "20"));

  // 5 / 2.5: two sets, and 5 modulo 2 leaves one over. (1 + 2) / 2.5: one set.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 BAR: S1 on 2.00 gives 18.00", "2 BAR: S1 on 1.00 gives 9.00"));
}

TEST_F(Set, WeighedGoodsMakeSetsByTheirWeightAndCarryWholeUnits) {
  Put({DirectRow("S1", 1, "CHEESE").Price("2").SaleCount("2")});
  LoadRule("S1");
  const auto piece = [](int serialNo) { return LineXml(serialNo, "CHEESE", "12", "1.375", "16.5"); };

  const Answer sale = Sell(piece(1) + piece(2) + piece(3));

  // 1.375: none, 1.375 over. 2.75: one set, 2 modulo 2 leaves none over. 1.375: none.
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 CHEESE 1.38 x 12.00 = 16.50", "2 CHEESE 1.38 x 12.00 = 6.50",
                                             "3 CHEESE 1.38 x 12.00 = 16.50"));
}

TEST_F(Set, ASetSizeBelowOneGivesNothingIsLoggedOnceAndTheRestGoesOn) {
  for (const std::string size : {"0", "0.5", "-2"}) {
    Sql("delete from tProPrjDirectProAct");
    Put({DirectRow("S1", 421, "BAR").Price("1").SaleCount(size), DirectRow("S1", 2, "NUTS").Price("1").SaleCount("2"),
         DirectRow("S2", 1, "TEA").Price("1").SaleCount("2")});
    LoadRule("S1");
    LoadRule("S2");
    TakeLog();

    const Answer sale = Sell(LineXml(1, "BAR", "10", "5", "50") + LineXml(2, "BAR", "10", "5", "50") +
                             LineXml(3, "NUTS", "10", "2", "20") + LineXml(4, "TEA", "10", "2", "20"));

    EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("3 NUTS: S1 on 1.00 gives 9.00", "4 TEA: S2 on 1.00 gives 9.00"));
    const auto log = TakeLog();
    EXPECT_EQ(std::count_if(log.begin(), log.end(),
                            [](const auto& entry) {
                              return ::testing::Matches(AllOf(HasSubstr("S1"), HasSubstr("421")))(entry);
                            }),
              1)
        << size;
  }
}

// --- Price, rate, other ----------------------------------------------------------------------------------------------

TEST_F(Set, TheMoneyIsNotRounded) {
  Put({DirectRow("S1", 1, "BAR").Price("3.333").SaleCount("2")});
  LoadRule("S1");

  const Answer sale = Sell(LineXml(1, "BAR", "10", "5", "50"));

  // (10 - 3.333) x 2 = 13.334; 36.666 / 5 = 7.3332. Rounded to 13.33 it would be 7.3340.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 BAR: S1 on 2.00 gives 13.33"));
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 BAR 5.00 x 10.00 = 36.67"));
  EXPECT_EQ(RowWhere(sale.Out, "Plu", "SerialNo", "1")["FinalPrice"], "7.3332");
}

TEST_F(Set, ThePriceBeforeIsRoundedToTheCent) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("3")});
  LoadRule("S1");

  const Answer sale = Sell(LineXml(1, "BAR", "3.5", "300", "1000"));

  // 1000 / 300 = 3.3333..., 3.33 rounded: 2.33 x 100 = 233.00
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 BAR: S1 on 100.00 gives 233.00"));
}

TEST_F(Set, ARateIsTakenOfTheListPriceAndComesOffThePricePaid) {
  Put({DirectRow("S1", 1, "BAR").PercentOff("50").SaleCount("2")});
  LoadRule("S1");

  // Listed at 10.00, sold at 9.00: half the list price is kept, 9 - 5 = 4.00 off one.
  EXPECT_THAT(LinesOf(Sell(LineXml(1, "BAR", "10", "2", "18")).Out), ElementsAre("1 BAR 2.00 x 10.00 = 14.00"));
}

TEST_F(Set, ARateThatKeepsThePricePaidOrMoreGivesNothing) {
  Put({DirectRow("S1", 1, "BAR").PercentOff("50").SaleCount("2")});
  LoadRule("S1");

  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "BAR", "20", "2", "18")).Out), IsEmpty());
  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "BAR", "18", "2", "18")).Out), IsEmpty());
}

TEST_F(Set, AnyOtherKindOfPriceWritesARowAndLeavesTheLineAlone) {
  Put({DirectRow("S1", 1, "BAR").MoneyOff("3").SaleCount("2")});
  LoadRule("S1");

  const Answer sale = Sell(LineXml(1, "BAR", "10", "5", "50"));

  // (10 - 3) x 2 = 14.00 in the records alone.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 BAR: S1 on 2.00 gives 14.00"));
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 BAR 5.00 x 10.00 = 50.00"));
  EXPECT_EQ(RowWhere(sale.Out, "Plu", "SerialNo", "1")["DisNum"], "0.00");
}

TEST_F(Set, ALineThatCannotGetCheaperEndsItsRow) {
  Put({DirectRow("S1", 1, "BAR").Price("6").SaleCount("2"), DirectRow("S1", 2, "NUTS").Price("1").SaleCount("2")});
  LoadRule("S1");

  const Answer sale = Sell(LineXml(1, "BAR", "5", "2", "10") + LineXml(2, "BAR", "10", "2", "20") +
                           LineXml(3, "NUTS", "10", "2", "20"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("3 NUTS: S1 on 1.00 gives 9.00"));
}

// --- Which goods -----------------------------------------------------------------------------------------------------

TEST_F(Set, AnExceptionIsReadAsAnyOtherRow) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("2").Except()});
  LoadRule("S1");

  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "BAR", "10", "2", "20")).Out), ElementsAre("1 BAR: S1 on 1.00 gives 9.00"));
}

TEST_F(Set, CategoriesAndBrandsHaveNoEffect) {
  Put({DirectRow("S1", 1, "SWEETS", "CAT").Price("1").SaleCount("2"),
       DirectRow("S1", 2, "ACME", "BRD").Price("1").SaleCount("2")});
  LoadRule("S1");

  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "BAR", "10", "2", "20", R"(CAT="SWEETS" BRD="ACME")")).Out), IsEmpty());
}

TEST_F(Set, PackagesMakeNoSets) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("2")});
  LoadRule("S1");

  const Answer sale = Sell(LineXml(1, "BAR", "10", "5", "50", R"(PackCnt="6")") + LineXml(2, "BAR", "10", "1", "10"));

  EXPECT_THAT(DiscountsOf(sale.Out), IsEmpty());
}

TEST_F(Set, TheTradesMaximumIsNotUsed) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("2").AtMost("1")});
  LoadRule("S1");

  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "BAR", "10", "5", "50")).Out), ElementsAre("1 BAR: S1 on 2.00 gives 18.00"));
}

TEST_F(Set, OfTwoRowsForTheGoodsTheLastOneActs) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("2"), DirectRow("S1", 2, "BAR").Price("4").SaleCount("5")});
  LoadRule("S1");

  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "BAR", "10", "5", "50")).Out), ElementsAre("1 BAR: S1 on 1.00 gives 6.00"));
}

TEST_F(Set, ALineThatTwoRowsNameIsCountedOnceByEach) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("2"), DirectRow("S1", 2, "BAR").Price("4").SaleCount("4")});
  LoadRule("S1");

  // Three bars make no set of four.
  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "BAR", "10", "3", "30")).Out), ElementsAre("1 BAR: S1 on 1.00 gives 9.00"));
}

// --- Two rules, limits, members --------------------------------------------------------------------------------------

TEST_F(Set, ALineOfOneRuleIsClosedToASecondHoweverLittleTheFirstTook) {
  Put({DirectRow("S1", 1, "BAR").Price("5").SaleCount("5"), DirectRow("S2", 1, "BAR").Price("1").SaleCount("2")});
  LoadRule("S1", R"(JzDate="2026-06-01")");
  LoadRule("S2", R"(JzDate="2026-01-01")");

  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "BAR", "10", "5", "50")).Out), ElementsAre("1 BAR: S1 on 1.00 gives 5.00"));
}

TEST_F(Set, WhatAnotherOrdinaryRuleTookMakesNoSetsAndItsMoneyIsGivenBack) {
  Put({DirectRow("X1", 1, "BAR").Price("8").AtMost("1"), DirectRow("S1", 1, "BAR").Price("1").SaleCount("2")});
  ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS", R"(JzDate="2026-06-01")")).Code, 0);
  LoadRule("S1");

  const Answer sale = Sell(LineXml(1, "BAR", "10", "4", "40"));

  // 4 - 1 = 3 pieces: one set, from (2 + 38) / 4 = 10.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 BAR: X1 on 1.00 gives 2.00", "1 BAR: S1 on 1.00 gives 9.00"));
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 BAR 4.00 x 10.00 = 29.00"));
}

TEST_F(Set, ALimitByQuantityIsANumberOfSets) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("2")});
  LoadRule("S1", R"(MaxYhType="2" MaxYhValue="1")");

  const Answer sale = Sell(LineXml(1, "BAR", "10", "6", "60") + LineXml(2, "BAR", "10", "2", "20"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 BAR: S1 on 1.00 gives 9.00"));
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 BAR 6.00 x 10.00 = 51.00", "2 BAR 2.00 x 10.00 = 20.00"));
}

TEST_F(Set, ALimitByQuantityAboveTheSetsLeavesThemAsTheyAre) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("2")});
  LoadRule("S1", R"(MaxYhType="2" MaxYhValue="4")");

  const Answer sale = Sell(LineXml(1, "BAR", "10", "5", "50") + LineXml(2, "BAR", "10", "7", "70"));

  // 5: two sets, one over. Room for two more: (1 + 7) / 2 = 4, cut to two.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 BAR: S1 on 2.00 gives 18.00", "2 BAR: S1 on 2.00 gives 18.00"));
}

TEST_F(Set, ALimitByMoneyCutsTheDiscountsAndNothingElse) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("2"), DirectRow("S1", 2, "NUTS").Price("4").SaleCount("2")});
  LoadRule("S1", R"(MaxYhType="1" MaxYhValue="5")");

  const Answer sale = Sell(LineXml(1, "BAR", "10", "2", "20") + LineXml(2, "NUTS", "10", "2", "20"));

  // 9 and 6 come to 15, three times the limit.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 BAR: S1 on 1.00 gives 3.00", "2 NUTS: S1 on 1.00 gives 2.00"));
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 BAR 2.00 x 10.00 = 11.00", "2 NUTS 2.00 x 10.00 = 14.00"));
}

TEST_F(Set, AMemberPriceIsMarkedWithTheMembersType) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("2")});
  LoadRule("S1", "", R"(<Vip><Row VipType="GOLD"/></Vip>)");

  const Answer sale = Sell(LineXml(1, "BAR", "10", "2", "20"), R"(<Vip><D VipType="GOLD"/></Vip>)");

  const Row discount = RowWhere(sale.Out, "ProResult", "ProBillNo", "S1");
  EXPECT_EQ(discount["IsVip"], "1");
  EXPECT_EQ(discount["VipType"], "GOLD");
}

TEST_F(Set, WithoutItsTableARuleGivesNothingAndTheNextSaleIsRight) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("2")});
  LoadRule("S1");
  const std::string line = LineXml(1, "BAR", "10", "2", "20");
  Sql("alter table tProPrjDirectProAct rename to Elsewhere");
  TakeLog();

  EXPECT_THAT(DiscountsOf(Sell(line).Out), IsEmpty());
  EXPECT_EQ(Count(TakeLog(), "获取普通类促销详情失败S1"), 1);

  Sql("alter table Elsewhere rename to tProPrjDirectProAct");
  EXPECT_THAT(DiscountsOf(Sell(line).Out), ElementsAre("1 BAR: S1 on 1.00 gives 9.00"));
}

}  // namespace
}  // namespace Corvane::Testing
