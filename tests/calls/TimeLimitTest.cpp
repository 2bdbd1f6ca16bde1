#include <gmock/gmock.h>

#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// "PTXS": a price, a rate or a reduction for goods, classes and brands, line by line.
class TimeLimit : public Till {
 protected:
  void SetUp() override {
    Till::SetUp();
    MakeTables();
  }
  static void LoadRule(const std::string& billNo, const std::string& header = "", const std::string& groups = "") {
    ASSERT_EQ(Load("PTXS", RuleXml(billNo, "PTXS", header, groups)).Code, 0);
  }
  static Answer Sell(const std::string& lines, const std::string& groups = "") {
    const Answer sale = Calc("till", "All", SaleXml(lines, groups));
    EXPECT_EQ(sale.Code, 0);
    EXPECT_EQ(sale.Msg, "sucess");
    return sale;
  }
};

// --- Price, rate, reduction ------------------------------------------------------------------------------------------

TEST_F(TimeLimit, ASetPriceLowersTheLineToIt) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "3", "30"));

  // (10 - 8) x 3 = 6.00
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 24.00"));
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 3.00 gives 6.00"));
  EXPECT_THAT(SharesOf(sale.Out), ElementsAre("1 COLA: X1 on 3.00 gives 6.00"));
  const Row line = RowWhere(sale.Out, "Plu", "SerialNo", "1");
  EXPECT_EQ(line["FinalPrice"], "8.0000");
  EXPECT_EQ(line["DisNum"], "3.00");
}

TEST_F(TimeLimit, ASetPriceAtTheLinesOwnPriceGivesNothing) {
  Put({DirectRow("X1", 1, "COLA").Price("10")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "3", "30"));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 30.00"));
  EXPECT_THAT(DiscountsOf(sale.Out), IsEmpty());
  EXPECT_THAT(SharesOf(sale.Out), IsEmpty());
}

TEST_F(TimeLimit, ASetPriceBelowByLessThanHalfACentWritesARowOfNothing) {
  Put({DirectRow("X1", 1, "COLA").Price("9.999")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 1.00 gives 0.00"));
  EXPECT_EQ(RowWhere(sale.Out, "Plu", "SerialNo", "1")["DisNum"], "1.00");
}

TEST_F(TimeLimit, TwentyPercentOffLeavesEightyPercentOfThePrice) {
  Put({DirectRow("X1", 1, "COLA").PercentOff("20")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "3", "30"));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 24.00"));
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 3.00 gives 6.00"));
}

TEST_F(TimeLimit, ARateOfZeroPercentGivesNothing) {
  Put({DirectRow("X1", 1, "COLA").PercentOff("0")});
  LoadRule("X1");

  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "COLA", "10", "3", "30")).Out), IsEmpty());
}

TEST_F(TimeLimit, AHundredPercentOffMakesTheGoodsCostNothing) {
  Put({DirectRow("X1", 1, "COLA").PercentOff("100")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "3", "30"));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 0.00"));
  EXPECT_EQ(RowWhere(sale.Out, "Plu", "SerialNo", "1")["FinalPrice"], "0.0000");
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 3.00 gives 30.00"));
}

TEST_F(TimeLimit, AHundredAndTwentyPercentOffIsAHundred) {
  Put({DirectRow("X1", 1, "COLA").PercentOff("120")});
  LoadRule("X1");

  EXPECT_THAT(LinesOf(Sell(LineXml(1, "COLA", "10", "3", "30")).Out), ElementsAre("1 COLA 3.00 x 10.00 = 0.00"));
}

TEST_F(TimeLimit, ARateThatLeavesLessThanHalfAHundredthOfAPercentLeavesNothing) {
  Put({DirectRow("X1", 1, "RING").PercentOff("99.996")});
  LoadRule("X1");

  // 100 - 99.996 prints as 0.00. Kept as it is, 0.004 percent of 10000 would leave 0.40.
  EXPECT_THAT(LinesOf(Sell(LineXml(1, "RING", "10000", "1", "10000")).Out),
              ElementsAre("1 RING 1.00 x 10000.00 = 0.00"));
}

TEST_F(TimeLimit, AReductionComesOffEachPiece) {
  Put({DirectRow("X1", 1, "COLA").MoneyOff("1.5")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "3", "30"));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 25.50"));
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 3.00 gives 4.50"));
}

TEST_F(TimeLimit, AReductionMayFallShortOfThePriceByLessThanACent) {
  Put({DirectRow("X1", 1, "COLA").MoneyOff("10.005")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "2", "20"));

  // 10.005 x 2 = 20.01: one cent more than the line costs.
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 2.00 x 10.00 = -0.01"));
  EXPECT_EQ(RowWhere(sale.Out, "Plu", "SerialNo", "1")["FinalPrice"], "-0.0050");
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 2.00 gives 20.01"));
}

TEST_F(TimeLimit, AReductionAboveThePriceGivesNothing) {
  Put({DirectRow("X1", 1, "COLA").MoneyOff("10.02")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "2", "20"));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 2.00 x 10.00 = 20.00"));
  EXPECT_THAT(DiscountsOf(sale.Out), IsEmpty());
}

TEST_F(TimeLimit, AReductionThatFallsShortByAWholeCentGivesNothing) {
  Put({DirectRow("X1", 1, "LEAFLET").MoneyOff("0.01"), DirectRow("X1", 2, "BAG").MoneyOff("0.009")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "LEAFLET", "0", "1", "0") + LineXml(2, "BAG", "0", "1", "0"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("2 BAG: X1 on 1.00 gives 0.01"));
}

TEST_F(TimeLimit, AnUnknownKindOfPriceLeavesTheLineAloneAndWritesARowOfNothing) {
  Put({DirectRow("X1", 1, "COLA").Dsc("prc", "8", "0")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "3", "30"));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 30.00"));
  EXPECT_EQ(RowWhere(sale.Out, "Plu", "SerialNo", "1")["DisNum"], "0.00");
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 3.00 gives 0.00"));
}

TEST_F(TimeLimit, MoneyIsRoundedToTheCentHalvesAwayFromZero) {
  Put({DirectRow("X1", 1, "TEA").Price("0.5")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "TEA", "1", "0.25", "0.25"));

  // (1 - 0.5) x 0.25 = 0.125
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 TEA 0.25 x 1.00 = 0.12"));
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 TEA: X1 on 0.25 gives 0.13"));
}

TEST_F(TimeLimit, WeighedGoodsAreDiscountedByTheirWeight) {
  Put({DirectRow("X1", 1, "CHEESE").Price("9.99")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "CHEESE", "12", "1.375", "16.5"));

  // (12 - 9.99) x 1.375 = 2.76375; 16.50 - 2.76 = 13.74; 13.74 / 1.375 = 9.99272...
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 CHEESE 1.38 x 12.00 = 13.74"));
  EXPECT_EQ(RowWhere(sale.Out, "Plu", "SerialNo", "1")["FinalPrice"], "9.9927");
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 CHEESE: X1 on 1.38 gives 2.76"));
}

TEST_F(TimeLimit, ThePriceIsTheLinesTotalByItsQuantityAndNotItsListPrice) {
  Put({DirectRow("X1", 1, "COLA").PercentOff("50")});
  LoadRule("X1");

  // Listed at 10.00, sold at 18 / 2 = 9.00 already.
  const Answer sale = Sell(LineXml(1, "COLA", "10", "2", "18"));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 2.00 x 10.00 = 9.00"));
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 2.00 gives 9.00"));
}

TEST_F(TimeLimit, AReturnedOrEmptyLineGetsNothing) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "-1", "-10") + LineXml(2, "COLA", "10", "0", "0"));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA -1.00 x 10.00 = -10.00", "2 COLA 0.00 x 10.00 = 0.00"));
  EXPECT_THAT(DiscountsOf(sale.Out), IsEmpty());
}

// --- Which goods -----------------------------------------------------------------------------------------------------

TEST_F(TimeLimit, ACategoryAndABrandAreGoodsToo) {
  Put({DirectRow("X1", 1, "DRINKS", "CAT").Price("8"), DirectRow("X1", 2, "ACME", "BRD").Price("7")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10", R"(CAT="DRINKS")") +
                           LineXml(2, "SOAP", "10", "1", "10", R"(BRD="ACME")") + LineXml(3, "RICE", "10", "1", "10"));

  EXPECT_THAT(LinesOf(sale.Out),
              ElementsAre("1 COLA 1.00 x 10.00 = 8.00", "2 SOAP 1.00 x 10.00 = 7.00", "3 RICE 1.00 x 10.00 = 10.00"));
}

TEST_F(TimeLimit, GoodsThatAreExceptedGetNothingFromTheirCategory) {
  Put({DirectRow("X1", 1, "COLA").Except(), DirectRow("X1", 2, "DRINKS", "CAT").Price("8")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10", R"(CAT="DRINKS")") +
                           LineXml(2, "FANTA", "10", "1", "10", R"(CAT="DRINKS")"));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 1.00 x 10.00 = 10.00", "2 FANTA 1.00 x 10.00 = 8.00"));
}

TEST_F(TimeLimit, ACategoryThatIsExceptedGetsNothingFromItsBrand) {
  Put({DirectRow("X1", 1, "DRINKS", "CAT").Except(), DirectRow("X1", 2, "ACME", "BRD").Price("8")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10", R"(CAT="DRINKS" BRD="ACME")"));

  EXPECT_THAT(DiscountsOf(sale.Out), IsEmpty());
}

TEST_F(TimeLimit, ACategoryThatIsExceptedDoesNotStopARowForTheGoods) {
  Put({DirectRow("X1", 1, "DRINKS", "CAT").Except(), DirectRow("X1", 2, "COLA").Price("8")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10", R"(CAT="DRINKS")"));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 1.00 x 10.00 = 8.00"));
}

TEST_F(TimeLimit, ARowThatIsNeitherInNorNotHasNoEffect) {
  Put({DirectRow("X1", 1, "COLA").Price("8").InRange("in"), DirectRow("X1", 2, "FANTA").Price("8").InRange("")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10") + LineXml(2, "FANTA", "10", "1", "10"));

  EXPECT_THAT(DiscountsOf(sale.Out), IsEmpty());
}

TEST_F(TimeLimit, ALineWithoutACategoryMatchesARowOfTheEmptyCategory) {
  Put({DirectRow("X1", 1, "", "CAT").Price("8")});
  LoadRule("X1");

  const Answer sale =
      Sell(LineXml(1, "COLA", "10", "1", "10") + LineXml(2, "COLA", "10", "1", "10", R"(CAT="DRINKS")"));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 1.00 x 10.00 = 8.00", "2 COLA 1.00 x 10.00 = 10.00"));
}

TEST_F(TimeLimit, ARowForABrandHasNoSayInACategoryOfTheSameCode) {
  Put({DirectRow("X1", 1, "ACME", "BRD").Price("8")});
  LoadRule("X1");

  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "COLA", "10", "1", "10", R"(CAT="ACME")")).Out), IsEmpty());
}

// --- Packages --------------------------------------------------------------------------------------------------------

TEST_F(TimeLimit, ASetPriceForGoodsIsNotForAPackage) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10", R"(PackCnt="6")") +
                           LineXml(2, "COLA", "10", "1", "10", R"(PackCnt="0")") +
                           LineXml(3, "COLA", "10", "1", "10", R"(PackCnt="1.004")"));

  // The third prints as 1.00 and is a single piece.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("3 COLA: X1 on 1.00 gives 2.00"));
}

TEST_F(TimeLimit, ARateAndAReductionAreForPackagesToo) {
  Put({DirectRow("X1", 1, "COLA").PercentOff("20"), DirectRow("X1", 2, "FANTA").MoneyOff("3")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10", R"(PackCnt="6")") +
                           LineXml(2, "FANTA", "10", "1", "10", R"(PackCnt="6")"));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 1.00 x 10.00 = 8.00", "2 FANTA 1.00 x 10.00 = 7.00"));
}

TEST_F(TimeLimit, ASetPriceForACategoryIsForPackagesToo) {
  Put({DirectRow("X1", 1, "DRINKS", "CAT").Price("8")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10", R"(PackCnt="6" CAT="DRINKS")"));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 1.00 x 10.00 = 8.00"));
}

// --- TradeMaxCount ---------------------------------------------------------------------------------------------------

TEST_F(TimeLimit, TheTradesMaximumRunsOverTheLinesInTheirOrder) {
  Put({DirectRow("X1", 1, "COLA").Price("8").AtMost("3")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "2", "20") + LineXml(2, "COLA", "10", "2", "20") +
                           LineXml(3, "COLA", "10", "2", "20"));

  EXPECT_THAT(LinesOf(sale.Out),
              ElementsAre("1 COLA 2.00 x 10.00 = 16.00", "2 COLA 2.00 x 10.00 = 18.00", "3 COLA 2.00 x 10.00 = 20.00"));
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 2.00 gives 4.00", "2 COLA: X1 on 1.00 gives 2.00"));
}

TEST_F(TimeLimit, TheTradesMaximumPassesOverLinesOfOtherGoods) {
  Put({DirectRow("X1", 1, "COLA").Price("8").AtMost("3"), DirectRow("X1", 2, "TEA").Price("1")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "TEA", "2", "1", "2") + LineXml(2, "COLA", "10", "2", "20") +
                           LineXml(3, "TEA", "2", "1", "2") + LineXml(4, "COLA", "10", "2", "20"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 TEA: X1 on 1.00 gives 1.00", "2 COLA: X1 on 2.00 gives 4.00",
                                                 "3 TEA: X1 on 1.00 gives 1.00", "4 COLA: X1 on 1.00 gives 2.00"));
}

TEST_F(TimeLimit, ATradesMaximumOfZeroIsNone) {
  Put({DirectRow("X1", 1, "COLA").Price("8").AtMost("0")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "2", "20") + LineXml(2, "COLA", "10", "2", "20") +
                           LineXml(3, "COLA", "10", "2", "20"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 2.00 gives 4.00", "2 COLA: X1 on 2.00 gives 4.00",
                                                 "3 COLA: X1 on 2.00 gives 4.00"));
}

TEST_F(TimeLimit, WhatAnotherRuleTookOnEarlierLinesCountsTowardTheTradesMaximum) {
  Put({DirectRow("X1", 1, "COLA").Price("8").AtMost("2"), DirectRow("X2", 1, "COLA").Price("9").AtMost("2")});
  LoadRule("X1", R"(JzDate="2026-02-02")");
  LoadRule("X2", R"(JzDate="2026-02-01")");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "2", "20") + LineXml(2, "COLA", "10", "2", "20"));

  // X1 takes two on line 1; on line 2 both rules find their two used up, though X2 has given nothing.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 2.00 gives 4.00"));
}

TEST_F(TimeLimit, ARowWhoseMaximumIsUsedUpLeavesTheLineToTheOtherRows) {
  Put({DirectRow("X1", 1, "COLA").Price("9"), DirectRow("X1", 2, "COLA").Price("8").AtMost("1")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10") + LineXml(2, "COLA", "10", "2", "20"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 1.00 gives 2.00", "2 COLA: X1 on 2.00 gives 2.00"));
}

TEST_F(TimeLimit, ACategorysMaximumHoldsForEachLineByItself) {
  Put({DirectRow("X1", 1, "DRINKS", "CAT").Price("8").AtMost("3")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "2", "20", R"(CAT="DRINKS")") +
                           LineXml(2, "COLA", "10", "4", "40", R"(CAT="DRINKS")"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 2.00 gives 4.00", "2 COLA: X1 on 3.00 gives 6.00"));
}

// --- Rows of one rule ------------------------------------------------------------------------------------------------

TEST_F(TimeLimit, TheLastRowForTheGoodsComesFirst) {
  Put({DirectRow("X1", 1, "COLA").Price("9"), DirectRow("X1", 2, "COLA").Price("8")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "3", "30"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 3.00 gives 6.00"));
}

TEST_F(TimeLimit, ASecondRowAddsToTheDiscountAndLeavesTheShareAsItWas) {
  Put({DirectRow("X1", 1, "COLA").Price("9"), DirectRow("X1", 2, "COLA").Price("8").AtMost("1")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "3", "30"));

  // Row 2: one at 8, 2.00 off, 28.00 left. Row 1: two at 9 from (2 + 28) / 3 = 10, 2.00 off, 26.00 left.
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 26.00"));
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 3.00 gives 4.00"));
  EXPECT_THAT(SharesOf(sale.Out), ElementsAre("1 COLA: X1 on 1.00 gives 2.00"));
  EXPECT_EQ(RowWhere(sale.Out, "Plu", "SerialNo", "1")["DisNum"], "2.00");
}

TEST_F(TimeLimit, ARowThatTwoLinesAskForIsHeldOnce) {
  Put({DirectRow("X1", 1, "ACME", "BRD").Price("8")});
  LoadRule("X1");

  Sell(LineXml(1, "COLA", "10", "1", "10", R"(BRD="ACME")") + LineXml(2, "SOAP", "10", "1", "10", R"(BRD="ACME")"));

  // Twice a line: what is open, and again when the one row is applied.
  EXPECT_EQ(Count(TakeLog(), "促销类型：PTXS"), 4);
}

TEST_F(TimeLimit, ASecondRowOfTheSameNumberIsNotRead) {
  Sql("drop table tProPrjDirectProAct;"
      "create table tProPrjDirectProAct (BillNo,SerialNo,PluCode,PluType,InRange,DscType,DscPrice,DscRate,SaleCount,"
      "TradeMaxCount)");
  Put({DirectRow("X1", 7, "COLA").Price("8"), DirectRow("X1", 7, "FANTA").Price("8")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "FANTA", "10", "1", "10") + LineXml(2, "COLA", "10", "1", "10"));

  // Line 1 brings its row in as number 7; the row for line 2 has the same number.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 FANTA: X1 on 1.00 gives 2.00"));
}

TEST_F(TimeLimit, ARowsTextsAndNumbersMayBeNull) {
  Sql("insert into tProPrjDirectProAct values ('X1',1,'COLA','PLU','IN',null,null,null,null,null),"
      "('X1',2,'FANTA','PLU',null,'PRC',8,0,0,0),('X1',3,'TEA','PLU','IN','RAT',null,null,null,null)");
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10") + LineXml(2, "FANTA", "10", "1", "10") +
                           LineXml(3, "TEA", "10", "1", "10"));

  // No kind of price gives a row of nothing, no range no effect, no rate nothing off.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 1.00 gives 0.00"));
}

TEST_F(TimeLimit, RowsOfOtherRulesHaveNoSay) {
  Put({DirectRow("X2", 1, "COLA").Price("8")});
  LoadRule("X1");

  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "COLA", "10", "1", "10")).Out), IsEmpty());
}

TEST_F(TimeLimit, AChangeInTheTableCountsFromTheNextSale) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("X1");
  const std::string line = LineXml(1, "COLA", "10", "1", "10");

  EXPECT_THAT(LinesOf(Sell(line).Out), ElementsAre("1 COLA 1.00 x 10.00 = 8.00"));
  Sql("update tProPrjDirectProAct set DscPrice=6");
  EXPECT_THAT(LinesOf(Sell(line).Out), ElementsAre("1 COLA 1.00 x 10.00 = 6.00"));
}

// --- Two rules on one line -------------------------------------------------------------------------------------------

TEST_F(TimeLimit, OfTwoRulesForALineTheLaterOneTakesItWhole) {
  Put({DirectRow("OLD", 1, "COLA").Price("5"), DirectRow("NEW", 1, "COLA").Price("8")});
  LoadRule("OLD", R"(JzDate="2026-01-01")");
  LoadRule("NEW", R"(JzDate="2026-06-01")");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "3", "30"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: NEW on 3.00 gives 6.00"));
}

TEST_F(TimeLimit, WhatTheFirstRuleLeavesOpenTheSecondSellsFromThePriceBefore) {
  Put({DirectRow("X1", 1, "COLA").Price("8").AtMost("1"), DirectRow("X2", 1, "COLA").Price("7")});
  LoadRule("X1", R"(JzDate="2026-06-01")");
  LoadRule("X2", R"(JzDate="2026-01-01")");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "3", "30"));

  // X1: one at 8, 2.00 off, 28.00 left. X2: two at 7 from (2 + 28) / 3 = 10, 6.00 off, 22.00 left.
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 22.00"));
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 1.00 gives 2.00", "1 COLA: X2 on 2.00 gives 6.00"));
  const Row line = RowWhere(sale.Out, "Plu", "SerialNo", "1");
  EXPECT_EQ(line["FinalPrice"], "7.3333");
  EXPECT_EQ(line["DisNum"], "2.00");
}

TEST_F(TimeLimit, ARuleOfAnotherModeWordSellsFromThePriceAfter) {
  Put({DirectRow("X1", 1, "COLA").Price("8").AtMost("1"), DirectRow("X2", 1, "COLA").Price("7")});
  LoadRule("X1", R"(JzDate="2026-06-01")");
  LoadRule("X2", R"(JzDate="2026-01-01" ProMode="OT")");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "3", "30"));

  // X2 doesn't give X1's 2.00 back: (28 / 3 - 7) x 2 = 4.67, 23.33 left.
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 23.33"));
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 1.00 gives 2.00", "1 COLA: X2 on 2.00 gives 4.67"));
}

TEST_F(TimeLimit, AnExtraRuleFindsWhatTheOrdinaryRuleTookAsTaken) {
  Put({DirectRow("X1", 1, "COLA").Price("8").AtMost("2"), DirectRow("X2", 1, "COLA").Price("7")});
  LoadRule("X1", R"(Primary="PT")");
  LoadRule("X2", R"(Primary="DJ")");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "3", "30"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 2.00 gives 4.00", "1 COLA: X2 on 1.00 gives 3.00"));
}

// --- Members ---------------------------------------------------------------------------------------------------------

TEST_F(TimeLimit, AMemberPriceIsMarkedWithTheMembersType) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("X1", "", R"(<Vip><Row VipType="GOLD"/></Vip>)");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10"), R"(<Vip><D VipType="GOLD"/></Vip>)");

  const Row discount = RowWhere(sale.Out, "ProResult", "ProBillNo", "X1");
  EXPECT_EQ(discount["IsVip"], "1");
  EXPECT_EQ(discount["VipType"], "GOLD");
  const Row share = RowWhere(sale.Out, "Apportion", "ProBillNo", "X1");
  EXPECT_EQ(share["IsVip"], "1");
  EXPECT_EQ(share["VipType"], "GOLD");
}

TEST_F(TimeLimit, TheMarkIsTheFirstMembersTypeWhicheverOneOpenedTheRule) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("X1", "", R"(<Vip><Row VipType="GOLD"/></Vip>)");

  const Answer sale =
      Sell(LineXml(1, "COLA", "10", "1", "10"), R"(<Vip><D VipType="SILVER"/><D VipType="GOLD"/></Vip>)");

  EXPECT_EQ(RowWhere(sale.Out, "ProResult", "ProBillNo", "X1")["VipType"], "SILVER");
}

TEST_F(TimeLimit, ARuleForEverybodyIsNoMemberPriceThoughAMemberBuys) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10"), R"(<Vip><D VipType="GOLD"/></Vip>)");

  const Row discount = RowWhere(sale.Out, "ProResult", "ProBillNo", "X1");
  EXPECT_EQ(discount["IsVip"], "0");
  EXPECT_EQ(discount["VipType"], "");
}

TEST_F(TimeLimit, AMemberPriceIsNotForAStranger) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("X1", "", R"(<Vip><Row VipType="GOLD"/></Vip>)");

  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "COLA", "10", "1", "10")).Out), IsEmpty());
}

TEST_F(TimeLimit, ARuleForAnyMemberIsNoMemberPriceForAStranger) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("X1", "", R"(<Vip><Row VipType="*"/></Vip>)");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10"));

  const Row discount = RowWhere(sale.Out, "ProResult", "ProBillNo", "X1");
  EXPECT_EQ(discount["DisMoney"], "2.00");
  EXPECT_EQ(discount["IsVip"], "0");
}

// --- Limits of the rule ----------------------------------------------------------------------------------------------

TEST_F(TimeLimit, ALimitByQuantityRunsOverAllGoodsOfTheRule) {
  Put({DirectRow("X1", 1, "FANTA").Price("8"), DirectRow("X1", 2, "COLA").Price("8")});
  LoadRule("X1", R"(MaxYhType="2" MaxYhValue="4")");

  const Answer sale = Sell(LineXml(1, "FANTA", "10", "3", "30") + LineXml(2, "COLA", "10", "5", "50"));

  // On line 2 the rule has room for 4 - 3 = 1.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 FANTA: X1 on 3.00 gives 6.00", "2 COLA: X1 on 1.00 gives 2.00"));
}

TEST_F(TimeLimit, ALimitByQuantityCountsTheRulesOwnDiscountsAmongThoseOfOthers) {
  Put({DirectRow("X1", 1, "COLA").Price("9").AtMost("1"), DirectRow("X2", 1, "COLA").Price("8").AtMost("0")});
  LoadRule("X1", R"(JzDate="2026-06-01")");
  LoadRule("X2", R"(JzDate="2026-01-01" MaxYhType="2" MaxYhValue="2")");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "3", "30") + LineXml(2, "COLA", "10", "3", "30"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 1.00 gives 1.00", "1 COLA: X2 on 2.00 gives 4.00"));
}

TEST_F(TimeLimit, ARuleAtItsLimitByQuantityGivesNothingMore) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("X1", R"(MaxYhType="2" MaxYhValue="3")");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "3", "30") + LineXml(2, "COLA", "10", "1", "10"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 3.00 gives 6.00"));
}

TEST_F(TimeLimit, ALimitOfAnyOtherKindIsNone) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("X1", R"(MaxYhType="0" MaxYhValue="1")");

  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "COLA", "10", "3", "30")).Out), ElementsAre("1 COLA: X1 on 3.00 gives 6.00"));
}

TEST_F(TimeLimit, ALimitByMoneyCutsTheDiscountsInProportionAndNothingElse) {
  Put({DirectRow("X1", 1, "TV").Price("40"), DirectRow("X1", 2, "RADIO").Price("60")});
  LoadRule("X1", R"(MaxYhType="1" MaxYhValue="50")");

  const Answer sale = Sell(LineXml(1, "TV", "100", "1", "100") + LineXml(2, "RADIO", "100", "1", "100"));

  // 60 and 40 come to 100, twice the limit. The lines and the shares keep what the rule wrote.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 TV: X1 on 1.00 gives 30.00", "2 RADIO: X1 on 1.00 gives 20.00"));
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 TV 1.00 x 100.00 = 40.00", "2 RADIO 1.00 x 100.00 = 60.00"));
  EXPECT_THAT(SharesOf(sale.Out), ElementsAre("1 TV: X1 on 1.00 gives 60.00", "2 RADIO: X1 on 1.00 gives 40.00"));
}

TEST_F(TimeLimit, TheLastDiscountTakesTheCentThatRoundingTheOthersLeft) {
  Put({DirectRow("X1", 1, "A").MoneyOff("33.33"), DirectRow("X1", 2, "B").MoneyOff("33.33"),
       DirectRow("X1", 3, "C").MoneyOff("33.34")});
  LoadRule("X1", R"(MaxYhType="1" MaxYhValue="10")");

  const Answer sale = Sell(LineXml(1, "A", "100", "1", "100") + LineXml(2, "B", "100", "1", "100") +
                           LineXml(3, "C", "100", "1", "100"));

  // 33.33 x 10 / 100 = 3.333; 10 - 3.33 - 3.33 = 3.34
  EXPECT_THAT(DiscountsOf(sale.Out),
              ElementsAre("1 A: X1 on 1.00 gives 3.33", "2 B: X1 on 1.00 gives 3.33", "3 C: X1 on 1.00 gives 3.34"));
}

TEST_F(TimeLimit, ASingleDiscountIsCutToTheLimit) {
  Put({DirectRow("X1", 1, "TV").MoneyOff("80")});
  LoadRule("X1", R"(MaxYhType="1" MaxYhValue="50")");

  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "TV", "100", "1", "100")).Out), ElementsAre("1 TV: X1 on 1.00 gives 50.00"));
}

TEST_F(TimeLimit, DiscountsBelowTheLimitOrAtItStayAsTheyAre) {
  Put({DirectRow("X1", 1, "TV").MoneyOff("99"), DirectRow("X2", 1, "RADIO").MoneyOff("100")});
  LoadRule("X1", R"(MaxYhType="1" MaxYhValue="100")");
  LoadRule("X2", R"(MaxYhType="1" MaxYhValue="100.005")");

  const Answer sale = Sell(LineXml(1, "TV", "200", "1", "200") + LineXml(2, "RADIO", "200", "1", "200"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 TV: X1 on 1.00 gives 99.00", "2 RADIO: X2 on 1.00 gives 100.00"));
}

TEST_F(TimeLimit, DiscountsAboveTheLimitByLessThanACentStayAsTheyAre) {
  Put({DirectRow("X1", 1, "TV").MoneyOff("100")});
  LoadRule("X1", R"(MaxYhType="1" MaxYhValue="99.995")");

  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "TV", "200", "1", "200")).Out), ElementsAre("1 TV: X1 on 1.00 gives 100.00"));
}

// --- The store fails -------------------------------------------------------------------------------------------------

TEST_F(TimeLimit, WithoutItsTableARuleGivesNothingAndTheSaleGoesOn) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("X1");
  const std::string line = LineXml(1, "COLA", "10", "1", "10");
  Sql("alter table tProPrjDirectProAct rename to Elsewhere");
  TakeLog();

  EXPECT_THAT(LinesOf(Sell(line).Out), ElementsAre("1 COLA 1.00 x 10.00 = 10.00"));
  const auto log = TakeLog();
  EXPECT_EQ(Count(log, "获取普通类促销详情失败X1"), 1);
  EXPECT_EQ(Count(log, "获取普通类促销详情成功X1"), 0);

  Sql("alter table Elsewhere rename to tProPrjDirectProAct");
  EXPECT_THAT(LinesOf(Sell(line).Out), ElementsAre("1 COLA 1.00 x 10.00 = 8.00"));
  EXPECT_EQ(Count(TakeLog(), "获取普通类促销详情成功X1"), 1);
}

TEST_F(TimeLimit, WithoutAColumnARuleGivesNothingAndTheSaleGoesOn) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("X1");
  Sql("alter table tProPrjDirectProAct rename column DscRate to Rate");
  TakeLog();

  EXPECT_THAT(LinesOf(Sell(LineXml(1, "COLA", "10", "1", "10")).Out), ElementsAre("1 COLA 1.00 x 10.00 = 10.00"));
  EXPECT_EQ(Count(TakeLog(), "获取普通类促销详情失败X1"), 1);
}

TEST_F(TimeLimit, ACodeWithAQuoteGetsItsDiscount) {
  Put({DirectRow("X1", 1, "O''LEARY").Price("8"), DirectRow("X1", 2, "L''OR", "BRD").Price("7")});
  LoadRule("X1");
  TakeLog();

  const Answer sale =
      Sell(LineXml(1, "O'LEARY", "10", "1", "10") + LineXml(2, "COLA", "10", "1", "10", R"(BRD="L'OR")"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 O'LEARY: X1 on 1.00 gives 2.00", "2 COLA: X1 on 1.00 gives 3.00"));
  EXPECT_EQ(Count(TakeLog(), "获取普通类促销详情成功X1"), 2);
}

}  // namespace
}  // namespace Corvane::Testing
