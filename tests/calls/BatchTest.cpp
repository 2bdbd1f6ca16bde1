#include <gmock/gmock.h>

#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// "PTPL": from a minimum quantity on, all of the goods are discounted, those too that came before it was reached.
class Batch : public Till {
 protected:
  void SetUp() override {
    Till::SetUp();
    MakeTables();
  }
  static void LoadRule(const std::string& billNo, const std::string& header = "", const std::string& groups = "") {
    ASSERT_EQ(Load("PTPL", RuleXml(billNo, "PTPL", header, groups)).Code, 0);
  }
  static Answer Sell(const std::string& lines, const std::string& groups = "") {
    const Answer sale = Calc("till", "All", SaleXml(lines, groups));
    EXPECT_EQ(sale.Code, 0);
    EXPECT_EQ(sale.Msg, "sucess");
    return sale;
  }
};

// --- The minimum -----------------------------------------------------------------------------------------------------

TEST_F(Batch, AtTheMinimumTheLinesThatWaitedAreDiscountedToo) {
  Put({DirectRow("P1", 1, "COLA").Price("8").SaleCount("3")});
  LoadRule("P1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10") + LineXml(2, "COLA", "10", "1", "10") +
                           LineXml(3, "COLA", "10", "1", "10"));

  EXPECT_THAT(LinesOf(sale.Out),
              ElementsAre("1 COLA 1.00 x 10.00 = 8.00", "2 COLA 1.00 x 10.00 = 8.00", "3 COLA 1.00 x 10.00 = 8.00"));
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: P1 on 1.00 gives 2.00", "2 COLA: P1 on 1.00 gives 2.00",
                                                 "3 COLA: P1 on 1.00 gives 2.00"));
}

TEST_F(Batch, TheLineThatReachesTheMinimumIsServedBeforeThoseThatWaited) {
  Put({DirectRow("P1", 1, "COLA").Price("8").SaleCount("3").AtMost("2")});
  LoadRule("P1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10") + LineXml(2, "COLA", "10", "1", "10") +
                           LineXml(3, "COLA", "10", "1", "10"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: P1 on 1.00 gives 2.00", "3 COLA: P1 on 1.00 gives 2.00"));
}

TEST_F(Batch, BelowTheMinimumNothingIsGiven) {
  Put({DirectRow("P1", 1, "COLA").Price("8").SaleCount("3")});
  LoadRule("P1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10") + LineXml(2, "COLA", "10", "1", "10"));

  EXPECT_THAT(DiscountsOf(sale.Out), IsEmpty());
}

TEST_F(Batch, ALineThatReachesTheMinimumByItselfIsDiscountedWhole) {
  Put({DirectRow("P1", 1, "COLA").Price("8").SaleCount("2")});
  LoadRule("P1");

  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "COLA", "10", "5", "50")).Out),
              ElementsAre("1 COLA: P1 on 5.00 gives 10.00"));
}

TEST_F(Batch, EachGoodsHasItsOwnMinimum) {
  Put({DirectRow("P1", 1, "COLA").Price("8").SaleCount("2"), DirectRow("P1", 2, "FANTA").Price("8").SaleCount("2")});
  LoadRule("P1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10") + LineXml(2, "FANTA", "10", "1", "10") +
                           LineXml(3, "FANTA", "10", "1", "10"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("2 FANTA: P1 on 1.00 gives 2.00", "3 FANTA: P1 on 1.00 gives 2.00"));
}

TEST_F(Batch, ACategoryReachesItsMinimumOverItsGoods) {
  Put({DirectRow("P1", 1, "DRINKS", "CAT").Price("8").SaleCount("3")});
  LoadRule("P1");

  const Answer sale =
      Sell(LineXml(1, "COLA", "10", "1", "10", R"(CAT="DRINKS")") + LineXml(2, "RICE", "10", "1", "10") +
           LineXml(3, "FANTA", "10", "2", "20", R"(CAT="DRINKS")"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: P1 on 1.00 gives 2.00", "3 FANTA: P1 on 2.00 gives 4.00"));
}

TEST_F(Batch, PackagesNeitherCountNorGetADiscount) {
  Put({DirectRow("P1", 1, "COLA").Price("8").SaleCount("3")});
  LoadRule("P1");

  const std::string package = LineXml(1, "COLA", "10", "5", "50", R"(PackCnt="6")");

  EXPECT_THAT(DiscountsOf(Sell(package + LineXml(2, "COLA", "10", "2", "20")).Out), IsEmpty());
  EXPECT_THAT(DiscountsOf(Sell(package + LineXml(2, "COLA", "10", "3", "30")).Out),
              ElementsAre("2 COLA: P1 on 3.00 gives 6.00"));
}

TEST_F(Batch, ALineWithoutAPackCountIsASinglePiece) {
  Put({DirectRow("P1", 1, "COLA").Price("8").SaleCount("2")});
  LoadRule("P1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10", R"(PackCnt="0")") +
                           LineXml(2, "COLA", "10", "1", "10", R"(PackCnt="1.000001")"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: P1 on 1.00 gives 2.00", "2 COLA: P1 on 1.00 gives 2.00"));
}

TEST_F(Batch, ForGoodsOnlyWhatIsStillOpenCountsTowardTheMinimum) {
  Put({DirectRow("X1", 1, "COLA").Price("8").AtMost("4"), DirectRow("P1", 1, "COLA").Price("7").SaleCount("5")});
  ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS", R"(JzDate="2026-06-01")")).Code, 0);
  LoadRule("P1");

  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "COLA", "10", "5", "50")).Out), ElementsAre("1 COLA: X1 on 4.00 gives 8.00"));
}

TEST_F(Batch, ForACategoryTheWholeLineCountsTowardTheMinimum) {
  Put({DirectRow("X1", 1, "COLA").Price("8").AtMost("4"),
       DirectRow("P1", 1, "DRINKS", "CAT").Price("7").SaleCount("5")});
  ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS", R"(JzDate="2026-06-01")")).Code, 0);
  LoadRule("P1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "5", "50", R"(CAT="DRINKS")"));

  // One of five is open, and five count. (8 + 42) / 5 = 10 is the price before; 3.00 off one.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 4.00 gives 8.00", "1 COLA: P1 on 1.00 gives 3.00"));
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 5.00 x 10.00 = 39.00"));
}

TEST_F(Batch, ALineThatIsTakenWholeIsPassedOver) {
  Put({DirectRow("X1", 1, "COLA").Price("8").AtMost("2"), DirectRow("X1", 2, "SOAP").Price("8").AtMost("2"),
       DirectRow("P1", 1, "COLA").Price("7").SaleCount("3"),
       DirectRow("P1", 2, "ACME", "BRD").Price("7").SaleCount("3")});
  ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS", R"(JzDate="2026-06-01")")).Code, 0);
  LoadRule("P1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "2", "20") + LineXml(2, "SOAP", "10", "2", "20", R"(BRD="ACME")") +
                           LineXml(3, "COLA", "10", "3", "30") + LineXml(4, "SOAP", "10", "3", "30", R"(BRD="ACME")"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 2.00 gives 4.00", "2 SOAP: X1 on 2.00 gives 4.00",
                                                 "3 COLA: P1 on 3.00 gives 9.00", "4 SOAP: P1 on 3.00 gives 9.00"));
}

TEST_F(Batch, ALineThatCannotGetCheaperEndsItsRowAndTheWaitingLinesAreServed) {
  Put({DirectRow("P1", 1, "COLA").Price("8").SaleCount("2")});
  LoadRule("P1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10") + LineXml(2, "COLA", "7", "1", "7") +
                           LineXml(3, "COLA", "10", "1", "10"));

  // Line 2 reaches the minimum, costs less than 8 already, and the walk ends there: line 3 is never looked at.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: P1 on 1.00 gives 2.00"));
}

// --- Limits ----------------------------------------------------------------------------------------------------------

TEST_F(Batch, AtTheTradesMaximumTheRowEnds) {
  Put({DirectRow("P1", 1, "COLA").Price("8").SaleCount("1").AtMost("2")});
  LoadRule("P1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "3", "30") + LineXml(2, "COLA", "10", "3", "30"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: P1 on 2.00 gives 4.00"));
}

TEST_F(Batch, WhatTheRuleTookForTheGoodsCountsTowardTheMaximumOfTheirCategory) {
  Put({DirectRow("P1", 1, "DRINKS", "CAT").Price("8").AtMost("3"), DirectRow("P1", 2, "COLA").Price("7")});
  LoadRule("P1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "2", "20", R"(CAT="DRINKS")") +
                           LineXml(2, "FANTA", "10", "3", "30", R"(CAT="DRINKS")"));

  // The cola has two of the category's three.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: P1 on 2.00 gives 6.00", "2 FANTA: P1 on 1.00 gives 2.00"));
}

TEST_F(Batch, ASecondClassRowAddsToTheDiscountAndLeavesTheShareAsItWas) {
  Put({DirectRow("P1", 1, "DRINKS", "CAT").Price("8").AtMost("3"),
       DirectRow("P1", 2, "ACME", "BRD").Price("7").AtMost("2")});
  LoadRule("P1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "4", "40", R"(CAT="DRINKS" BRD="ACME")"));

  // Brand: two at 7, 6.00 off. Category: one more up to three, from (6 + 34) / 4 = 10, 2.00 off.
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 4.00 x 10.00 = 32.00"));
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: P1 on 3.00 gives 8.00"));
  EXPECT_THAT(SharesOf(sale.Out), ElementsAre("1 COLA: P1 on 2.00 gives 6.00"));
}

TEST_F(Batch, ALimitByQuantityRunsOverAllGoodsOfTheRule) {
  Put({DirectRow("P1", 1, "COLA").Price("8"), DirectRow("P1", 2, "FANTA").Price("8")});
  LoadRule("P1", R"(MaxYhType="2" MaxYhValue="4")");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "3", "30") + LineXml(2, "FANTA", "10", "3", "30"));

  // The last row comes first: three fantas, and one cola up to four.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: P1 on 1.00 gives 2.00", "2 FANTA: P1 on 3.00 gives 6.00"));
}

TEST_F(Batch, ALimitByMoneyCutsTheDiscountsAndNothingElse) {
  Put({DirectRow("P1", 1, "TV").Price("40"), DirectRow("P1", 2, "RADIO").Price("60")});
  LoadRule("P1", R"(MaxYhType="1" MaxYhValue="50")");

  const Answer sale = Sell(LineXml(1, "TV", "100", "1", "100") + LineXml(2, "RADIO", "100", "1", "100"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 TV: P1 on 1.00 gives 30.00", "2 RADIO: P1 on 1.00 gives 20.00"));
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 TV 1.00 x 100.00 = 40.00", "2 RADIO 1.00 x 100.00 = 60.00"));
}

// --- Which goods -----------------------------------------------------------------------------------------------------

TEST_F(Batch, GoodsThatARowNamesAreNotInTheirBrandsRow) {
  Put({DirectRow("P1", 1, "COLA").Price("9").SaleCount("2"), DirectRow("P1", 2, "ACME", "BRD").Price("5")});
  LoadRule("P1");
  const std::string brand = R"(BRD="ACME")";

  EXPECT_THAT(
      LinesOf(Sell(LineXml(1, "COLA", "10", "2", "20", brand) + LineXml(2, "SOAP", "10", "1", "10", brand)).Out),
      ElementsAre("1 COLA 2.00 x 10.00 = 18.00", "2 SOAP 1.00 x 10.00 = 5.00"));
  // Not even when they don't reach the minimum of their own row.
  EXPECT_THAT(
      LinesOf(Sell(LineXml(1, "COLA", "10", "1", "10", brand) + LineXml(2, "SOAP", "10", "1", "10", brand)).Out),
      ElementsAre("1 COLA 1.00 x 10.00 = 10.00", "2 SOAP 1.00 x 10.00 = 5.00"));
}

TEST_F(Batch, ExceptedGoodsNeitherCountNorGetADiscount) {
  Put({DirectRow("P1", 1, "DRINKS", "CAT").Price("8").SaleCount("2"), DirectRow("P1", 2, "COLA").Except()});
  LoadRule("P1");
  const std::string drink = R"(CAT="DRINKS")";

  EXPECT_THAT(
      DiscountsOf(Sell(LineXml(1, "COLA", "10", "5", "50", drink) + LineXml(2, "FANTA", "10", "1", "10", drink)).Out),
      IsEmpty());
  EXPECT_THAT(
      DiscountsOf(Sell(LineXml(1, "COLA", "10", "5", "50", drink) + LineXml(2, "FANTA", "10", "2", "20", drink)).Out),
      ElementsAre("2 FANTA: P1 on 2.00 gives 4.00"));
}

TEST_F(Batch, AnExceptedCategoryIsOutOfItsBrandButNotOutOfItsGoods) {
  Put({DirectRow("P1", 1, "ACME", "BRD").Price("8"), DirectRow("P1", 2, "DRINKS", "CAT").Except(),
       DirectRow("P1", 3, "COLA").Price("9")});
  LoadRule("P1");
  const std::string drink = R"(CAT="DRINKS" BRD="ACME")";

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10", drink) + LineXml(2, "FANTA", "10", "1", "10", drink) +
                           LineXml(3, "SOAP", "10", "1", "10", R"(BRD="ACME")"));

  EXPECT_THAT(LinesOf(sale.Out),
              ElementsAre("1 COLA 1.00 x 10.00 = 9.00", "2 FANTA 1.00 x 10.00 = 10.00", "3 SOAP 1.00 x 10.00 = 8.00"));
}

// --- Prices and quantities -------------------------------------------------------------------------------------------

TEST_F(Batch, ThePriceFieldOfTheLineIsLeftAlone) {
  Put({DirectRow("P1", 1, "COLA").Price("8")});
  LoadRule("P1");

  const Row line = RowWhere(Sell(LineXml(1, "COLA", "10", "3", "30")).Out, "Plu", "SerialNo", "1");

  EXPECT_EQ(line["Total"], "24.00");
  EXPECT_EQ(line["FinalPrice"], "10.0000");
  EXPECT_EQ(line["DisNum"], "3.00");
}

TEST_F(Batch, ARateAndAReductionWorkToo) {
  Put({DirectRow("P1", 1, "COLA").PercentOff("20"), DirectRow("P1", 2, "FANTA").MoneyOff("3")});
  LoadRule("P1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "3", "30") + LineXml(2, "FANTA", "10", "2", "20"));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 24.00", "2 FANTA 2.00 x 10.00 = 14.00"));
}

TEST_F(Batch, AReductionMayFallShortOfThePriceByLessThanACent) {
  Put({DirectRow("P1", 1, "COLA").MoneyOff("10.005"), DirectRow("P1", 2, "FANTA").MoneyOff("10.02")});
  LoadRule("P1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "2", "20") + LineXml(2, "FANTA", "10", "2", "20"));

  // 10.005 x 2 = 20.01
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 2.00 x 10.00 = -0.01", "2 FANTA 2.00 x 10.00 = 20.00"));
}

TEST_F(Batch, WeighedGoodsReachTheMinimumByTheirWeight) {
  Put({DirectRow("P1", 1, "CHEESE").Price("9.99").SaleCount("2")});
  LoadRule("P1");

  const Answer sale = Sell(LineXml(1, "CHEESE", "12", "1.375", "16.5") + LineXml(2, "CHEESE", "12", "1.375", "16.5"));

  // (12 - 9.99) x 1.375 = 2.76375
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 CHEESE 1.38 x 12.00 = 13.74", "2 CHEESE 1.38 x 12.00 = 13.74"));
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 CHEESE: P1 on 1.38 gives 2.76", "2 CHEESE: P1 on 1.38 gives 2.76"));
}

TEST_F(Batch, AReturnNeitherCountsNorGivesADiscountBack) {
  Put({DirectRow("P1", 1, "COLA").PercentOff("20").SaleCount("3"),
       DirectRow("P1", 2, "DRINKS", "CAT").PercentOff("20")});
  LoadRule("P1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "-2", "-20") + LineXml(2, "COLA", "10", "3", "30") +
                           LineXml(3, "FANTA", "10", "-2", "-20", R"(CAT="DRINKS")"));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA -2.00 x 10.00 = -20.00", "2 COLA 3.00 x 10.00 = 24.00",
                                             "3 FANTA -2.00 x 10.00 = -20.00"));
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("2 COLA: P1 on 3.00 gives 6.00"));
}

// --- Two rules, members, a failing store -----------------------------------------------------------------------------

TEST_F(Batch, OfTwoRulesForALineTheSecondGetsWhatTheFirstLeaves) {
  Put({DirectRow("P1", 1, "COLA").Price("8").AtMost("2"), DirectRow("P2", 1, "COLA").Price("7").SaleCount("3")});
  LoadRule("P1", R"(JzDate="2026-06-01")");
  LoadRule("P2", R"(JzDate="2026-01-01")");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "5", "50"));

  // P1: two at 8. P2: the three left reach its minimum; from (4 + 46) / 5 = 10 at 7.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: P1 on 2.00 gives 4.00", "1 COLA: P2 on 3.00 gives 9.00"));
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 5.00 x 10.00 = 37.00"));
}

TEST_F(Batch, ALineThatOneRuleTookWholeIsNothingToAnother) {
  Put({DirectRow("P1", 1, "COLA").Price("8"), DirectRow("P2", 1, "COLA").Price("5")});
  LoadRule("P1", R"(JzDate="2026-06-01")");
  LoadRule("P2", R"(JzDate="2026-01-01")");

  EXPECT_THAT(DiscountsOf(Sell(LineXml(1, "COLA", "10", "3", "30")).Out), ElementsAre("1 COLA: P1 on 3.00 gives 6.00"));
}

TEST_F(Batch, AMemberPriceIsMarkedWithTheMembersType) {
  Put({DirectRow("P1", 1, "COLA").Price("8").SaleCount("2")});
  LoadRule("P1", "", R"(<Vip><Row VipType="GOLD"/></Vip>)");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "2", "20"), R"(<Vip><D VipType="GOLD"/></Vip>)");

  const Row discount = RowWhere(sale.Out, "ProResult", "ProBillNo", "P1");
  EXPECT_EQ(discount["IsVip"], "1");
  EXPECT_EQ(discount["VipType"], "GOLD");
}

TEST_F(Batch, WithoutItsTableARuleGivesNothingAndTheNextSaleIsRight) {
  Put({DirectRow("P1", 1, "COLA").Price("8")});
  LoadRule("P1");
  const std::string line = LineXml(1, "COLA", "10", "1", "10");
  Sql("alter table tProPrjDirectProAct rename to Elsewhere");
  TakeLog();

  EXPECT_THAT(LinesOf(Sell(line).Out), ElementsAre("1 COLA 1.00 x 10.00 = 10.00"));
  EXPECT_EQ(Count(TakeLog(), "获取普通类促销详情失败P1"), 1);

  Sql("alter table Elsewhere rename to tProPrjDirectProAct");
  EXPECT_THAT(LinesOf(Sell(line).Out), ElementsAre("1 COLA 1.00 x 10.00 = 8.00"));
}

}  // namespace
}  // namespace Corvane::Testing
