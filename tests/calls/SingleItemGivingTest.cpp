#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

/// "MZDP": buy some of these goods, get some of them, or some money off them.
class SingleItemGiving : public FullAmount {
 protected:
  static std::string Colas(const std::string& count, const std::string& total, const std::string& more = "") {
    return LineXml(1, "COLA", "10", count, total, more);
  }
  static std::string Sold(const std::string& count, const std::string& total) {
    return MzPromotion(SaleXml(Colas(count, total)));
  }
  /// Buy 3, get 1.
  static void ThreePlusOne(const std::string& header = "") {
    Giving("'D1',1,'0','COLA','PLU','NUM',3,'NUM',1,0,0,0");
    LoadRule("D1", "MZDP", header);
  }
};

// 3 of 8 are paid for and bring 1; the 4 that are left bring 1 more: 3 + 1. Two pieces at 10.00 come off eight.
TEST_F(SingleItemGiving, BuyThreeGetOneOnEight) {
  ThreePlusOne();

  const std::string sale = Sold("8", "80");

  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"60.00"});
  EXPECT_EQ(Held(sale, "Plu", "FinalPrice"), Texts{"10.0000"});
  EXPECT_EQ(Held(sale, "Plu", "DisNum"), Texts{"0.00"});
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"20.00"});
  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), Texts{"8.00"});
  EXPECT_EQ(Held(sale, "ProResult", "ProType"), Texts{"MZDP"});
  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), Texts{"20.00"});
  EXPECT_EQ(Held(sale, "Apportion", "AppNum"), Texts{"8.00"});
}

// 3 and 1 of 7; the round with the 3 that are left has nothing behind its step. They are not consumed: 4 pieces take
// part.
TEST_F(SingleItemGiving, ARoundWithNothingBehindItsStepGivesNothing) {
  ThreePlusOne();

  const std::string sale = Sold("7", "70");

  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"60.00"});
  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), Texts{"4.00"});
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"10.00"});
}

// The threshold is paid for and leaves 0: a gift of 0, for which no row is written. The line is marked as taken.
TEST_F(SingleItemGiving, AValueOfTheVeryThresholdGivesNothing) {
  ThreePlusOne();

  const std::string sale = Sold("3", "30");

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"30.00"});
  EXPECT_EQ(Held(sale, "Plu", "DisNum"), Texts{"3.00"});
}

TEST_F(SingleItemGiving, BelowTheThresholdTheLineIsLeftAlone) {
  ThreePlusOne();

  const std::string sale = Sold("2", "20");

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(Held(sale, "Plu", "DisNum"), Texts{"0.00"});
}

// 3.5: half a piece is there to be given.
TEST_F(SingleItemGiving, NoMoreIsGivenThanIsThere) {
  ThreePlusOne();

  const std::string sale = Sold("3.5", "35");

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"5.00"});
  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), Texts{"4.00"});
}

// 7 pieces in lines of 5 and 2; 3 of them bring nothing. The last line has only 2, so it takes part as a whole, and
// what is left over then is forgotten: the first line takes part with all 5. 50 / 70 x 10 = 7.142..., 20 / 70 x 10
// = 2.857...
TEST_F(SingleItemGiving, WhatIsNotConsumedIsSoughtOnTheLastLineOnly) {
  ThreePlusOne();

  const std::string sale =
      MzPromotion(SaleXml(LineXml(1, "COLA", "10", "5", "50") + LineXml(2, "COLA", "10", "2", "20")));

  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), (Texts{"5.00", "2.00"}));
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"7.14", "2.86"}));
  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"42.86", "17.14"}));
}

// 7 pieces in lines of 2 and 5, 3 left over: the last line takes part with 2, the first with 2. 10.00 over 40.00.
TEST_F(SingleItemGiving, TheLastLineTakesPartWithWhatWasConsumed) {
  ThreePlusOne();

  const std::string sale =
      MzPromotion(SaleXml(LineXml(1, "COLA", "10", "2", "20") + LineXml(2, "COLA", "10", "5", "50")));

  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), (Texts{"2.00", "2.00"}));
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"5.00", "5.00"}));
  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"15.00", "45.00"}));
}

// 3 at the threshold bring 1, then each 2 bring 1. 10: rest 7, 1 given, 6 left. 2 and 1, 3 left. 2 and 1, 0 left. The
// third round has nothing any more.
TEST_F(SingleItemGiving, FurtherStepsHaveTheirOwnSizeAndGift) {
  Giving("'D1',1,'0','COLA','PLU','NUM',3,'NUM',1,2,1,0");
  LoadRule("D1", "MZDP");

  EXPECT_EQ(Held(Sold("10", "100"), "ProResult", "DisMoney"), Texts{"30.00"});
}

// 6 left behind the first gift, a step of 5, a gift of 2: only 1 is behind the step.
TEST_F(SingleItemGiving, ARoundGivesNoMoreThanIsBehindItsStep) {
  Giving("'D1',1,'0','COLA','PLU','NUM',3,'NUM',1,5,2,0");
  LoadRule("D1", "MZDP");

  EXPECT_EQ(Held(Sold("10", "100"), "ProResult", "DisMoney"), Texts{"20.00"});
}

// 80.00: 30.00 bring 10.00 and leave 40.00; 30.00 more bring 10.00.
TEST_F(SingleItemGiving, MoneyForMoney) {
  Giving("'D1',1,'0','COLA','PLU','SUM',30,'SUM',10,0,0,0");
  LoadRule("D1", "MZDP");

  const std::string sale = Sold("8", "80");

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"20.00"});
  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), Texts{"8.00"});
}

// 80.00: 30.00 bring 1 piece, 10.00, and leave 40.00; the repetition goes in money: 30.00 more bring 10.00.
TEST_F(SingleItemGiving, PiecesForMoney) {
  Giving("'D1',1,'0','COLA','PLU','SUM',30,'NUM',1,0,0,0");
  LoadRule("D1", "MZDP");

  EXPECT_EQ(Held(Sold("8", "80"), "ProResult", "DisMoney"), Texts{"20.00"});
}

// The cap of 1 piece is 10.00 there.
TEST_F(SingleItemGiving, PiecesForMoneyUnderACapOfPieces) {
  Giving("'D1',1,'0','COLA','PLU','SUM',30,'NUM',1,0,0,1");
  LoadRule("D1", "MZDP");

  EXPECT_EQ(Held(Sold("8", "80"), "ProResult", "DisMoney"), Texts{"10.00"});
}

// 8 pieces: 3 bring 5.00, which is half a piece, and leave 4.5; 3 more bring half a piece.
TEST_F(SingleItemGiving, MoneyForPieces) {
  Giving("'D1',1,'0','COLA','PLU','NUM',3,'SUM',5,0,0,0");
  LoadRule("D1", "MZDP");

  EXPECT_EQ(Held(Sold("8", "80"), "ProResult", "DisMoney"), Texts{"10.00"});
}

// The cap of 5.00 is half a piece there, and is reached by the first gift.
TEST_F(SingleItemGiving, MoneyForPiecesUnderACapOfMoney) {
  Giving("'D1',1,'0','COLA','PLU','NUM',3,'SUM',5,0,0,5");
  LoadRule("D1", "MZDP");

  EXPECT_EQ(Held(Sold("8", "80"), "ProResult", "DisMoney"), Texts{"5.00"});
}

// The tier is reached and gives nothing, and its rounds use nothing up. The whole value of 8 is left over; the line,
// not longer than that, is marked as a whole.
TEST_F(SingleItemGiving, AGiftOfAnotherWordIsNothing) {
  Giving("'D1',1,'0','COLA','PLU','NUM',3,'XYZ',1,0,0,0");
  LoadRule("D1", "MZDP");

  const std::string sale = Sold("8", "80");

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(Held(sale, "Plu", "DisNum"), Texts{"8.00"});
}

TEST_F(SingleItemGiving, AGiftOfAnotherWordForMoneyIsNothing) {
  Giving("'D1',1,'0','COLA','PLU','SUM',30,'XYZ',1,0,0,0");
  LoadRule("D1", "MZDP");

  const std::string sale = Sold("8", "80");

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(Held(sale, "Plu", "DisNum"), Texts{"8.00"});
}

// The value is 0 then: only a threshold of 0 is reached, and it gives nothing and marks nothing.
TEST_F(SingleItemGiving, AThresholdOfAnotherWordGivesNothing) {
  Giving("'D1',1,'0','COLA','PLU','XYZ',0,'NUM',1,0,0,0");
  Giving("'D1',2,'0','COLA','PLU','XYZ',3,'NUM',1,0,0,0");
  LoadRule("D1", "MZDP");

  const std::string sale = Sold("8", "80");

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(Held(sale, "Plu", "DisNum"), Texts{"0.00"});
}

// 5 pieces: 0 are paid for, 1 is given, and 4 / 0 is no number of rounds.
TEST_F(SingleItemGiving, AThresholdOfNothingGivesOnce) {
  Giving("'D1',1,'0','COLA','PLU','NUM',0,'NUM',1,0,0,0");
  LoadRule("D1", "MZDP");

  EXPECT_EQ(Held(Sold("5", "50"), "ProResult", "DisMoney"), Texts{"10.00"});
}

// 20 pieces: 1 given, 16 left, five rounds to go; the first brings 2, which is the cap.
TEST_F(SingleItemGiving, ARoundReachesTheCap) {
  Giving("'D1',1,'0','COLA','PLU','NUM',3,'NUM',1,0,0,2");
  LoadRule("D1", "MZDP");

  const std::string sale = Sold("20", "200");

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"20.00"});
  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), Texts{"8.00"});  // 2 x (3 + 1); 12 are left over
}

// The cap of 1 is reached before any round: the value is 0 from then on, so the lower tier gets none of the 4 left
// over, and all 8 pieces take part.
TEST_F(SingleItemGiving, ACapReachedBeforeAnyRoundStopsTheLowerTiers) {
  Giving("'D1',1,'0','COLA','PLU','NUM',3,'NUM',1,0,0,1");
  Giving("'D1',2,'0','COLA','PLU','NUM',1,'NUM',1,0,0,0");
  LoadRule("D1", "MZDP");

  const std::string sale = Sold("8", "80");

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"10.00"});
  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), Texts{"8.00"});
}

// A cap below the first gift cuts it.
TEST_F(SingleItemGiving, ACapCutsTheFirstGift) {
  Giving("'D1',1,'0','COLA','PLU','NUM',3,'NUM',3,0,0,2");
  LoadRule("D1", "MZDP");

  EXPECT_EQ(Held(Sold("8", "80"), "ProResult", "DisMoney"), Texts{"20.00"});
}

// 7 pieces: 4 bring 1 and leave 2. The tier of 3 is not reached and changes nothing; the tier of 1 brings 1 for them.
TEST_F(SingleItemGiving, WhatIsLeftOverGoesToTheLowerTiersOfTheSameGoods) {
  Giving("'D1',1,'0','COLA','PLU','NUM',4,'NUM',1,0,0,0");
  Giving("'D1',2,'0','COLA','PLU','NUM',3,'NUM',1,0,0,0");
  Giving("'D1',3,'0','COLA','PLU','NUM',1,'NUM',1,0,0,0");
  LoadRule("D1", "MZDP");

  const std::string sale = Sold("7", "70");

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"20.00"});
  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), Texts{"7.00"});
}

// 7 pieces: 4 bring 1, 2 left. The lower tiers name the goods by their category, or count money: they get nothing of
// it, and when their own turn comes the line has its row already.
TEST_F(SingleItemGiving, ALowerTierOfOtherGoodsOrAnotherUnitGetsNothingOfIt) {
  Giving("'D1',1,'0','COLA','PLU','NUM',4,'NUM',1,0,0,0");
  Giving("'D1',2,'0','DRINKS','CAT','NUM',1,'NUM',1,0,0,0");
  Giving("'D1',3,'0','COLA','PLU','SUM',1,'SUM',1,0,0,0");
  LoadRule("D1", "MZDP");

  const std::string sale = MzPromotion(SaleXml(Colas("7", "70", R"(CAT="DRINKS")")));

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"10.00"});
}

TEST_F(SingleItemGiving, EachTierHasItsGoods) {
  Giving("'D1',1,'0','COLA','PLU','NUM',3,'NUM',1,0,0,0");
  Giving("'D1',2,'0','SWEETS','CAT','NUM',2,'NUM',1,0,0,0");
  Giving("'D1',3,'0','ACME','BRD','NUM',1,'NUM',1,0,0,0");
  LoadRule("D1", "MZDP");

  const std::string sale =
      MzPromotion(SaleXml(Colas("4", "40") + LineXml(2, "BAR", "3", "3", "9", R"(CAT="SWEETS")") +
                          LineXml(3, "SOAP", "2", "2", "4", R"(BRD="ACME")") + LineXml(4, "MILK", "1", "9", "9")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"30.00", "6.00", "2.00", "9.00"}));
}

// 3 at 10.00 and 1 at 2.00: a mean of 8.00 for the piece that is given. 8 / 32 of 30.00 and of 2.00.
TEST_F(SingleItemGiving, ThePriceIsTheMeanOfTheChosenGoods) {
  Giving("'D1',1,'0','DRINKS','CAT','NUM',3,'NUM',1,0,0,0");
  LoadRule("D1", "MZDP");

  const std::string sale =
      MzPromotion(SaleXml(Colas("3", "30", R"(CAT="DRINKS")") + LineXml(2, "WATER", "2", "1", "2", R"(CAT="DRINKS")")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"22.50", "1.50"}));
}

TEST_F(SingleItemGiving, PackagesDoNotTakePart) {
  ThreePlusOne();

  const std::string sale = MzPromotion(SaleXml(
      R"(<D SerialNo="1" PluCode="COLA" Price="10" PluCount="8" Total="80" PackCnt="6" SaleDate="2026-11-21" SaleTime="10:00:00"/>)" +
      LineXml(2, "COLA", "10", "4", "40")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"80.00", "30.00"}));
}

// No line is a single article: the rule ends there, and its ceiling is not even announced.
TEST_F(SingleItemGiving, ASaleOfPackagesEndsTheRuleWithoutItsCeiling) {
  ThreePlusOne(R"(MaxYhType="1" MaxYhValue="5")");

  MzPromotion(SaleXml(
      R"(<D SerialNo="1" PluCode="COLA" Price="10" PluCount="8" Total="80" PackCnt="6" SaleDate="2026-11-21" SaleTime="10:00:00"/>)"));

  EXPECT_EQ(AfterReading(TakeLog()), BaseConditionsMet());
}

TEST_F(SingleItemGiving, WithoutRowsTheCeilingIsAnnounced) {
  LoadRule("D1", "MZDP", R"(MaxYhType="1" MaxYhValue="5")");

  Sold("8", "80");

  EXPECT_EQ(AfterReading(TakeLog()), Joined({BaseConditionsMet(), {"促销单按照最大优惠额限制", "ProNums= 0"}}));
}

TEST_F(SingleItemGiving, TheCeilingCutsTheRecordAndLeavesTheLine) {
  ThreePlusOne(R"(MaxYhType="1" MaxYhValue="5")");

  const std::string sale = Sold("8", "80");

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"5.00"});
  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), Texts{"20.00"});
  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"60.00"});
}

TEST_F(SingleItemGiving, ALimitByQuantityIsNotForThisType) {
  ThreePlusOne(R"(MaxYhType="2" MaxYhValue="1")");

  EXPECT_EQ(Held(Sold("8", "80"), "ProResult", "DisMoney"), Texts{"20.00"});
}

// The quantity is asked for at the selection. The last line has more than is left over, and its open quantity is asked
// for once more.
TEST_F(SingleItemGiving, TheLogAsksForTheQuantityTwice) {
  ThreePlusOne();

  Sold("8", "80");

  EXPECT_EQ(AfterReading(TakeLog()), Joined({BaseConditionsMet(), AskedQuantity("MZDP"), AskedQuantity("MZDP")}));
}

TEST_F(SingleItemGiving, TheLogAsksOnceWhenMoneyIsCounted) {
  Giving("'D1',1,'0','COLA','PLU','SUM',30,'SUM',10,0,0,0");
  LoadRule("D1", "MZDP");

  Sold("8", "80");

  EXPECT_EQ(AfterReading(TakeLog()), Joined({BaseConditionsMet(), AskedQuantity("MZDP")}));
}

TEST_F(SingleItemGiving, TheRowNamesTheMember) {
  Giving("'D1',1,'0','COLA','PLU','NUM',3,'NUM',1,0,0,0");
  LoadRule("D1", "MZDP", "", R"(<Vip><Row VipType="*"/></Vip>)");

  const std::string sale = MzPromotion(SaleXml(Colas("8", "80"), R"(<Vip><Row VipType="GOLD"/></Vip>)"));

  EXPECT_EQ(Held(sale, "ProResult", "IsVip"), Texts{"1"});
  EXPECT_EQ(Held(sale, "ProResult", "VipType"), Texts{"GOLD"});
}

// 0.00 / 0 is no price, and the value of 0 fails the threshold.
TEST_F(SingleItemGiving, AQuantityOfNothingReachesNothing) {
  ThreePlusOne();

  const std::string sale = Sold("0", "0");

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"0.00"});
}

TEST_F(SingleItemGiving, AQuantityOfNothingAtAThresholdOfNothingDoesNoHarm) {
  Giving("'D1',1,'0','COLA','PLU','NUM',0,'SUM',1,0,0,5");
  Giving("'D1',2,'0','COLA','PLU','SUM',0,'NUM',1,0,0,5");
  LoadRule("D1", "MZDP");
  Sold("0", "0");
  Sold("0", "10");

  EXPECT_EQ(Calc("another till", "MzPromotion", SaleXml(LineXml(1, "MILK", "1", "1", "1"))).Code, 0);
}

// One row by its number, goods and data number.
TEST_F(SingleItemGiving, ASecondRowOfTheSameNumbersIsNotHeld) {
  LooseTable("tProMzPluAct",
             "BillNo,SerialNo,PluCode,PluType,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum,"
             "AddDscNum,SaleMaxIn,DataId");
  Giving("'D1',1,'D','COLA','PLU','NUM',99,'NUM',1,0,0,0");
  Giving("'D1',1,'D','COLA','PLU','NUM',3,'NUM',1,0,0,0");
  LoadRule("D1", "MZDP");
  EXPECT_EQ(PrintedGroup(Sold("8", "80"), "ProResult"), "<ProResult />");

  Giving("'D1',1,'E','COLA','PLU','NUM',3,'NUM',1,0,0,0");
  EXPECT_EQ(Held(Sold("8", "80"), "ProResult", "DisMoney"), Texts{"20.00"});
}

TEST_F(SingleItemGiving, NullsReadAsNothing) {
  LooseTable("tProMzPluAct",
             "BillNo,SerialNo,PluCode,PluType,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum,"
             "AddDscNum,SaleMaxIn,DataId");
  Giving("'D1',null,null,'COLA','PLU','NUM',3,'NUM',1,null,null,null");
  Giving("'D1',2,null,'COLA','PLU',null,null,null,null,null,null,null");
  LoadRule("D1", "MZDP");

  EXPECT_EQ(Held(Sold("8", "80"), "ProResult", "DisMoney"), Texts{"20.00"});
}

// 7 / 0.0000001 = 70,000,000 rounds, each of which takes 0.0000002 of the 7 pieces: half of them are given.
TEST_F(SingleItemGiving, StepsAreNotBounded) {
  Giving("'D1',1,'0','COLA','PLU','NUM',1,'NUM',0.0000001,0.0000001,0.0000001,0");
  LoadRule("D1", "MZDP");

  EXPECT_EQ(Held(Sold("8", "80"), "ProResult", "DisMoney"), Texts{"35.00"});
}

TEST_F(SingleItemGiving, OddNumbersInTheTablesDoNoHarm) {
  LooseTable("tProMzPluAct",
             "BillNo,SerialNo,PluCode,PluType,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum,"
             "AddDscNum,SaleMaxIn,DataId");
  Giving("'D1',1,'0','COLA','PLU','NUM','x','NUM','y','z',0,0");
  Giving("'D1',2,'0','COLA','PLU','NUM',-9e999,'SUM',9e999,-9e999,9e999,9e999");
  Giving("'D1',3,'0','COLA','PLU','SUM',-3,'NUM',-9e999,9e999,-9e999,-9e999");
  Giving("'D1',4,'0','COLA','PLU','SUM',-3,'SUM',-5,-1,-1,-1");
  LoadRule("D1", "MZDP");
  Sold("8", "80");
  Clear("*");
  LoadRule("D2", "MZDP");
  Giving("'D2',1,'0','BAR','PLU','NUM',3,'NUM',1,0,0,0");

  const Answer next = Calc("another till", "MzPromotion", SaleXml(LineXml(1, "BAR", "10", "8", "80")));

  EXPECT_EQ(Held(next.Out, "Plu", "Total"), Texts{"60.00"});
}

}  // namespace
}  // namespace Corvane::Testing
