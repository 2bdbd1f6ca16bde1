#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

/// "MZZM": from a threshold on, goods of the sale itself become free or cheaper.
class GoodsFree : public FullAmount {
 protected:
  static std::string Food(const std::string& count, const std::string& total, int serialNo = 1) {
    return LineXml(serialNo, "FOOD", "10", count, total, R"(CAT="FOOD")");
  }
  /// Food fills the threshold.
  static void FoodCounts() { Condition("'F1','0',1,'0','FOOD','CAT','IN'"); }

  /// What a rule with these tiers makes of food, on its own, and of a mug line.
  static std::string WithMugs(const std::string& foodCount, const std::string& foodTotal, const std::string& mugCount,
                              const std::string& mugTotal, const std::string& header = "") {
    FoodCounts();
    LoadRule("F1", "MZZM", header);
    return MzPromotion(SaleXml(Food(foodCount, foodTotal) + LineXml(2, "MUG", "20", mugCount, mugTotal)));
  }
};

// 100.00 of food make the mug free. The mug's line has the discount; the food's has its share of it as apportion row
// only.
TEST_F(GoodsFree, AThresholdOfMoneyMakesAnArticleFree) {
  Scheme("'F1',1,'MUG','SUM',100,'NUM',1,0,0,0,0");

  const std::string sale = WithMugs("10", "100", "1", "20");

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"100.00", "0.00"}));
  EXPECT_EQ(Held(sale, "Plu", "DisNum"), (Texts{"0.00", "1.00"}));
  EXPECT_EQ(Held(sale, "Plu", "FinalPrice"), (Texts{"10.0000", "20.0000"}));
  EXPECT_EQ(Held(sale, "ProResult", "RowID"), Texts{"2"});
  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), Texts{"1.00"});
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"20.00"});
  EXPECT_EQ(Held(sale, "ProResult", "ProType"), Texts{"MZZM"});
  EXPECT_EQ(Held(sale, "Apportion", "RowID"), Texts{"1"});
  EXPECT_EQ(Held(sale, "Apportion", "AppNum"), Texts{"10.00"});
  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), Texts{"20.00"});
}

TEST_F(GoodsFree, ACentBelowTheThresholdGivesNothing) {
  Scheme("'F1',1,'MUG','SUM',100,'NUM',1,0,0,0,0");

  const std::string sale = WithMugs("1", "99.99", "1", "20");

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(PrintedGroup(sale, "Apportion"), "<Apportion />");
}

// Money off: 15.00 of the mug's 20.00, and no pieces.
TEST_F(GoodsFree, AThresholdOfMoneyMakesAnArticleCheaper) {
  Scheme("'F1',1,'MUG','SUM',100,'SUM',15,0,0,0,0");

  const std::string sale = WithMugs("10", "100", "1", "20");

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"100.00", "5.00"}));
  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), Texts{"0.00"});
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"15.00"});
}

// Every 3 of 10 pieces free a mug: 1, and 7 / 3 = 2 more; 1 piece is left over, so 9 take part. 60.00 on 90.00.
TEST_F(GoodsFree, AThresholdOfPiecesFreesPieces) {
  Scheme("'F1',1,'MUG','NUM',3,'NUM',1,0,0,0,0");

  const std::string sale = WithMugs("10", "100", "5", "100");

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"100.00", "40.00"}));
  EXPECT_EQ(Held(sale, "Plu", "DisNum"), (Texts{"0.00", "3.00"}));
  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), Texts{"3.00"});
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"60.00"});
  EXPECT_EQ(Held(sale, "Apportion", "AppNum"), Texts{"9.00"});
  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), Texts{"60.00"});
}

// 10.00 is half a mug; 7 / 3 = 2 more: one mug and a half, 30.00.
TEST_F(GoodsFree, AThresholdOfPiecesTakesMoneyOff) {
  Scheme("'F1',1,'MUG','NUM',3,'SUM',10,0,0,0,0");

  const std::string sale = WithMugs("10", "100", "5", "100");

  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), Texts{"1.50"});
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"30.00"});
}

// 3 at the threshold free one, then each 2 free two: 7 / 2 = 3 rounds, of which the last finds no mug any more: 5 mugs.
TEST_F(GoodsFree, FurtherStepsHaveTheirOwnSizeAndGift) {
  Scheme("'F1',1,'MUG','NUM',3,'NUM',1,2,2,0,0");

  const std::string sale = WithMugs("10", "100", "5", "100");

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"100.00"});
  EXPECT_EQ(Held(sale, "Apportion", "AppNum"), Texts{"9.00"});  // 10 - 3 - 3 x 2 = 1 is left over
}

// 2 mugs are gone after the first gift and one round. The other three rounds use up the condition all the same: nothing
// is left over, and all 10 pieces take part.
TEST_F(GoodsFree, RoundsUseUpTheConditionAfterTheGoodsAreGone) {
  Scheme("'F1',1,'MUG','NUM',2,'NUM',1,0,0,0,0");

  const std::string sale = WithMugs("10", "100", "2", "40");

  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), Texts{"2.00"});
  EXPECT_EQ(Held(sale, "Apportion", "AppNum"), Texts{"10.00"});
}

// The same with a limit of 5: the cap is then the 2 mugs that there are. It is reached in the first round, which ends
// the repetition: 10 - 2 - 2 = 6 are left over and 4 take part.
TEST_F(GoodsFree, AMostAboveTheGoodsMakesTheGoodsTheCap) {
  Scheme("'F1',1,'MUG','NUM',2,'NUM',1,0,0,5,0");

  const std::string sale = WithMugs("10", "100", "2", "40");

  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), Texts{"2.00"});
  EXPECT_EQ(Held(sale, "Apportion", "AppNum"), Texts{"4.00"});
}

TEST_F(GoodsFree, AMostBelowTheGoodsIsTheCap) {
  Scheme("'F1',1,'MUG','NUM',2,'NUM',1,0,0,3,0");

  const std::string sale = WithMugs("10", "100", "5", "100");

  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), Texts{"3.00"});
  EXPECT_EQ(Held(sale, "Apportion", "AppNum"), Texts{"6.00"});  // 3 x 2
}

// The first gift is above the cap: it is cut, and the goods count as gone.
TEST_F(GoodsFree, TheCapCutsTheFirstGift) {
  Scheme("'F1',1,'MUG','NUM',2,'NUM',4,0,0,3,0");

  EXPECT_EQ(Held(WithMugs("10", "100", "5", "100"), "ProResult", "DisMoney"), Texts{"60.00"});
}

// A limit of 1 piece is 20.00 there.
TEST_F(GoodsFree, AMostOfPiecesIsTheirMoneyWhenMoneyIsCounted) {
  Scheme("'F1',1,'MUG','SUM',10,'NUM',1,0,0,1,0");

  EXPECT_EQ(Held(WithMugs("10", "100", "5", "100"), "ProResult", "DisMoney"), Texts{"20.00"});
}

// A limit of 30.00 is 1.5 pieces there. 10.00 are half a piece; two rounds more.
TEST_F(GoodsFree, AMostOfMoneyIsItsPiecesWhenPiecesAreCounted) {
  Scheme("'F1',1,'MUG','NUM',2,'SUM',10,0,0,30,0");

  EXPECT_EQ(Held(WithMugs("10", "100", "5", "100"), "ProResult", "DisMoney"), Texts{"30.00"});
}

TEST_F(GoodsFree, GoodsThatAreNotOnTheSaleAreNotAdded) {
  Scheme("'F1',1,'CUP','SUM',100,'NUM',1,0,0,0,0");

  const std::string sale = WithMugs("10", "100", "1", "20");

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(Held(sale, "Plu", "PluCode"), (Texts{"FOOD", "MUG"}));
}

// The tier names its goods by their code alone.
TEST_F(GoodsFree, ACategoryOfThatNameIsNoGoods) {
  Scheme("'F1',1,'FOOD2','SUM',100,'NUM',1,0,0,0,0");
  FoodCounts();
  LoadRule("F1", "MZZM");

  const std::string sale =
      MzPromotion(SaleXml(Food("10", "100") + LineXml(2, "MUG", "20", "1", "20", R"(CAT="FOOD2")")));

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
}

// 3 mugs in lines of 2 and 2; the price is the last one's, 20.00: 60.00 and 3 pieces go onto the lines in order, each
// up to its own count and amount.
TEST_F(GoodsFree, TheGiftGoesOntoTheGoodsLinesInOrder) {
  Scheme("'F1',1,'MUG','NUM',10,'NUM',3,0,0,0,0");
  FoodCounts();
  LoadRule("F1", "MZZM");

  const std::string sale =
      MzPromotion(SaleXml(Food("10", "100") + LineXml(2, "MUG", "16", "2", "32") + LineXml(3, "MUG", "20", "2", "40")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"100.00", "0.00", "12.00"}));
  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), (Texts{"2.00", "1.00"}));
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"32.00", "28.00"}));
}

// 2 pieces at the last line's 20.00 are 40.00, more than the first line's 32.00: the rest falls on the second line,
// which gets a row without pieces.
TEST_F(GoodsFree, MoneyLeftGoesOnWithoutPieces) {
  Scheme("'F1',1,'MUG','NUM',10,'NUM',2,0,0,0,0");
  FoodCounts();
  LoadRule("F1", "MZZM");

  const std::string sale =
      MzPromotion(SaleXml(Food("10", "100") + LineXml(2, "MUG", "16", "2", "32") + LineXml(3, "MUG", "20", "2", "40")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"100.00", "0.00", "32.00"}));
  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), (Texts{"2.00", "0.00"}));
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"32.00", "8.00"}));
}

// Without condition rows the mug fills the threshold too. It has its row by the time the sum is spread, and gets no
// share.
TEST_F(GoodsFree, WithoutConditionRowsTheWholeSaleCounts) {
  Scheme("'F1',1,'MUG','SUM',120,'NUM',1,0,0,0,0");
  LoadRule("F1", "MZZM");

  const std::string sale = MzPromotion(SaleXml(Food("10", "100") + LineXml(2, "MUG", "20", "1", "20")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"100.00", "0.00"}));
  EXPECT_EQ(Held(sale, "Apportion", "RowID"), Texts{"1"});
  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), Texts{"20.00"});
}

TEST_F(GoodsFree, RowsOfWhichNoneTouchesTheSaleReachNothing) {
  Scheme("'F1',1,'MUG','SUM',1,'NUM',1,0,0,0,0");
  Condition("'F1','0',1,'0','Z','PLU','IN'");
  LoadRule("F1", "MZZM");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "MUG", "20", "1", "20")));

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
}

// The threshold of 0 is reached with nothing. The mug is free, and there are no condition lines to spread its price
// over.
TEST_F(GoodsFree, AThresholdOfNothingNeedsNoConditionLines) {
  for (const char* unit : {"SUM", "NUM"}) {
    Sql("delete from tProMzScheme; delete from tProMzConPluSet");
    Scheme("'F1',1,'MUG','" + std::string(unit) + "',0,'NUM',1,0,0,0,0");
    Condition("'F1','0',1,'0','Z','PLU','IN'");
    LoadRule("F1", "MZZM");

    const std::string sale = MzPromotion(SaleXml(LineXml(1, "MUG", "20", "1", "20")));

    EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"0.00"}) << unit;
    EXPECT_EQ(PrintedGroup(sale, "Apportion"), "<Apportion />") << unit;
  }
}

// 100.00: 60.00 free a mug and leave 40.00, which free another by the lower tier of the same goods. The lower tier's
// own turn finds nothing left of the condition.
TEST_F(GoodsFree, WhatIsLeftOverGoesToTheLowerTierOfTheSameGoods) {
  Scheme("'F1',1,'MUG','SUM',60,'NUM',1,0,0,0,0");
  Scheme("'F1',2,'MUG','SUM',40,'NUM',1,0,0,0,0");

  const std::string sale = WithMugs("10", "100", "5", "100");

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"100.00", "60.00"}));
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"20.00", "20.00"}));
}

// 100.00 are used up by the first tier; the second one's cup is not reached.
TEST_F(GoodsFree, NothingLeftReachesNoFurtherTier) {
  Scheme("'F1',1,'MUG','SUM',100,'NUM',1,0,0,0,0");
  Scheme("'F1',2,'CUP','SUM',50,'NUM',1,0,0,0,0");
  FoodCounts();
  LoadRule("F1", "MZZM");

  const std::string sale =
      MzPromotion(SaleXml(Food("10", "100") + LineXml(2, "MUG", "20", "1", "20") + LineXml(3, "CUP", "8", "1", "8")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"100.00", "0.00", "8.00"}));
}

// 130.00 of food, one piece. 100.00 take 10.00 off the mug and leave 30.00. The cup wants 5 pieces, and finds a value
// of 30.
TEST_F(GoodsFree, ALaterTierOfTheOtherUnitSeesWhatTheFirstUnitLeft) {
  Scheme("'F1',1,'MUG','SUM',100,'SUM',10,1000,0,0,0");
  Scheme("'F1',2,'CUP','NUM',5,'NUM',1,0,0,0,0");
  FoodCounts();
  LoadRule("F1", "MZZM");

  const std::string sale =
      MzPromotion(SaleXml(Food("1", "130") + LineXml(2, "MUG", "20", "1", "20") + LineXml(3, "CUP", "8", "1", "8")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"130.00", "10.00", "0.00"}));
  EXPECT_EQ(Held(sale, "Apportion", "AppNum"), Texts{"1.00"});
  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), Texts{"18.00"});
}

// 10 pieces in lines of 6 and 4. 5 of them free the mug: 5 of the first line. 3 of the other 5 free the cup: the first
// line's last piece and 2 of the second line. 28.00 over 60.00 and 20.00.
TEST_F(GoodsFree, TiersTakeTheirPiecesOneAfterTheOther) {
  Scheme("'F1',1,'MUG','NUM',5,'NUM',1,100,0,0,0");
  Scheme("'F1',2,'CUP','NUM',3,'NUM',1,100,0,0,0");
  FoodCounts();
  LoadRule("F1", "MZZM");

  const std::string sale = MzPromotion(SaleXml(Food("6", "60") + Food("4", "40", 2) +
                                               LineXml(3, "MUG", "20", "1", "20") + LineXml(4, "CUP", "8", "1", "8")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"60.00", "40.00", "0.00", "0.00"}));
  EXPECT_EQ(Held(sale, "Apportion", "AppNum"), (Texts{"6.00", "2.00"}));
  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), (Texts{"21.00", "7.00"}));
}

// One line of 10: the mug's 5 pieces stand on it. The cup's 3 are fewer than the 5 that are open on it, and then the
// line's pieces become 3, without the 5 that stood there: 28.00 on 30.00.
TEST_F(GoodsFree, PiecesThatALineHasMoreThanEnoughOfReplaceTheEarlierOnes) {
  Scheme("'F1',1,'MUG','NUM',5,'NUM',1,100,0,0,0");
  Scheme("'F1',2,'CUP','NUM',3,'NUM',1,100,0,0,0");
  FoodCounts();
  LoadRule("F1", "MZZM");

  const std::string sale =
      MzPromotion(SaleXml(Food("10", "100") + LineXml(2, "MUG", "20", "1", "20") + LineXml(3, "CUP", "8", "1", "8")));

  EXPECT_EQ(Held(sale, "Apportion", "AppNum"), Texts{"3.00"});
  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), Texts{"28.00"});
}

// The tier answers that it was reached, and neither gives nor uses anything up: the next tier finds all 10 pieces.
TEST_F(GoodsFree, AGiftOfAnotherWordLeavesTheConditionAlone) {
  Scheme("'F1',1,'MUG','NUM',9,'XYZ',1,0,0,0,0");
  Scheme("'F1',2,'CUP','NUM',8,'NUM',1,100,0,0,0");
  FoodCounts();
  LoadRule("F1", "MZZM");

  const std::string sale =
      MzPromotion(SaleXml(Food("10", "100") + LineXml(2, "MUG", "20", "1", "20") + LineXml(3, "CUP", "8", "1", "8")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"100.00", "20.00", "0.00"}));
  EXPECT_EQ(Held(sale, "Apportion", "AppNum"), Texts{"8.00"});
}

// An unset value counts as 0: a threshold of 0 is reached and gives nothing, any other is not.
TEST_F(GoodsFree, AThresholdOfAnotherWordGivesNothing) {
  Scheme("'F1',1,'MUG','XYZ',5,'NUM',1,0,0,0,0");
  Scheme("'F1',2,'MUG','XYZ',0,'NUM',1,0,0,0,0");

  const std::string sale = WithMugs("10", "100", "1", "20");

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(PrintedGroup(sale, "Apportion"), "<Apportion />");
  EXPECT_EQ(Held(sale, "Plu", "DisNum"), (Texts{"0.00", "0.00"}));
}

// A word that is none doesn't set the value; the pieces tier behind it does.
TEST_F(GoodsFree, AThresholdOfAnotherWordLeavesTheValueToTheNextTier) {
  Scheme("'F1',1,'MUG','XYZ',50,'NUM',1,0,0,0,0");
  Scheme("'F1',2,'MUG','NUM',10,'NUM',1,0,0,0,0");

  EXPECT_EQ(Held(WithMugs("10", "100", "1", "20"), "ProResult", "DisMoney"), Texts{"20.00"});
}

// 10 / 0 is no number of rounds.
TEST_F(GoodsFree, AThresholdOfNothingGivesOnce) {
  Scheme("'F1',1,'MUG','NUM',0,'NUM',1,0,0,0,0");

  EXPECT_EQ(Held(WithMugs("10", "100", "5", "100"), "ProResult", "DisMoney"), Texts{"20.00"});
}

TEST_F(GoodsFree, NoTiersGiveNothing) {
  const std::string sale = WithMugs("10", "100", "1", "20");

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(Held(sale, "Plu", "DisNum"), (Texts{"0.00", "0.00"}));
}

TEST_F(GoodsFree, TheCeilingCutsTheRecordAndLeavesTheLine) {
  Scheme("'F1',1,'MUG','SUM',100,'NUM',1,0,0,0,0");

  const std::string sale = WithMugs("10", "100", "1", "20", R"(MaxYhType="1" MaxYhValue="5")");

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"5.00"});
  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"100.00", "0.00"}));
  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), Texts{"20.00"});
}

TEST_F(GoodsFree, TheCeilingIsAnnouncedEvenWhenNothingWasGiven) {
  Scheme("'F1',1,'MUG','SUM',1000,'NUM',1,0,0,0,0");

  WithMugs("10", "100", "1", "20", R"(MaxYhType="1" MaxYhValue="5")");

  const Texts log = TakeLog();
  ASSERT_GE(log.size(), 2U);
  EXPECT_EQ(Texts(log.end() - 2, log.end()), (Texts{"促销单按照最大优惠额限制", "ProNums= 0"}));
}

// One mug of the five may be counted, and 3 pieces of food: the rule's limit is the least of both.
TEST_F(GoodsFree, ALimitByQuantityBoundsConditionAndGoods) {
  Scheme("'F1',1,'MUG','NUM',3,'NUM',5,100,0,0,0");

  const std::string sale = WithMugs("10", "100", "5", "100", R"(MaxYhType="2" MaxYhValue="3")");

  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), Texts{"3.00"});
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"60.00"});
}

TEST_F(GoodsFree, AThresholdAboveTheLimitByQuantityIsNotReached) {
  Scheme("'F1',1,'MUG','NUM',4,'NUM',5,100,0,0,0");

  const std::string sale = WithMugs("10", "100", "5", "100", R"(MaxYhType="2" MaxYhValue="3")");

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
}

// The food's open quantity at the selection, the mug's for the tier.
TEST_F(GoodsFree, TheLogOfAThresholdOfMoney) {
  Scheme("'F1',1,'MUG','SUM',100,'NUM',1,0,0,0,0");

  WithMugs("10", "100", "1", "20");

  EXPECT_EQ(AfterReading(TakeLog()), Joined({BaseConditionsMet(), AskedQuantity("MZZM"), AskedQuantity("MZZM")}));
}

// And with pieces the food's twice more: for what was used up, and for the line's difference.
TEST_F(GoodsFree, TheLogOfAThresholdOfPieces) {
  Scheme("'F1',1,'MUG','NUM',10,'NUM',1,0,0,0,0");

  WithMugs("10", "100", "1", "20");

  EXPECT_EQ(AfterReading(TakeLog()), Joined({BaseConditionsMet(), AskedQuantity("MZZM"), AskedQuantity("MZZM"),
                                             AskedQuantity("MZZM"), AskedQuantity("MZZM")}));
}

TEST_F(GoodsFree, TheRowsNameTheMember) {
  Scheme("'F1',1,'MUG','SUM',100,'NUM',1,0,0,0,0");
  FoodCounts();
  LoadRule("F1", "MZZM", "", R"(<Vip><Row VipType="GOLD"/></Vip>)");

  const std::string sale = MzPromotion(
      SaleXml(Food("10", "100") + LineXml(2, "MUG", "20", "1", "20"), R"(<Vip><Row VipType="GOLD"/></Vip>)"));

  EXPECT_EQ(Held(sale, "ProResult", "IsVip"), Texts{"1"});
  EXPECT_EQ(Held(sale, "ProResult", "VipType"), Texts{"GOLD"});
  EXPECT_EQ(Held(sale, "Apportion", "VipType"), Texts{"GOLD"});
}

// 5.00 / 0 pieces is no price. Whatever comes of it, the call ends and the next one works.
TEST_F(GoodsFree, AGoodsLineWithoutAQuantityDoesNoHarm) {
  Scheme("'F1',1,'MUG','SUM',100,'NUM',1,0,0,0,0");
  Scheme("'F1',2,'MUG','NUM',1,'SUM',1,0,0,1,0");
  FoodCounts();
  LoadRule("F1", "MZZM");
  MzPromotion(SaleXml(Food("10", "100") + LineXml(2, "MUG", "20", "1", "20") + LineXml(3, "MUG", "5", "0", "5")));

  Sql("delete from tProMzScheme where SerialNo=2");
  const Answer next =
      Calc("another till", "MzPromotion", SaleXml(Food("10", "100") + LineXml(2, "MUG", "20", "1", "20")));

  EXPECT_EQ(Held(next.Out, "Plu", "Total"), (Texts{"100.00", "0.00"}));
}

TEST_F(GoodsFree, NullsReadAsNothing) {
  LooseTable("tProMzScheme",
             "BillNo,SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum,AddDscNum,"
             "SaleMaxIn,DscPrice");
  Scheme("'F1',null,'MUG','SUM',100,'NUM',1,null,null,null,null");
  Scheme("'F1',2,null,null,null,null,null,null,null,null,null");

  EXPECT_EQ(Held(WithMugs("10", "100", "1", "20"), "Plu", "Total"), (Texts{"100.00", "0.00"}));
}

// 99,000,000 rounds of a ten-millionth are 9.90, and a millionth for the threshold: 20.00 - 9.90.
TEST_F(GoodsFree, StepsAreNotBounded) {
  Scheme("'F1',1,'MUG','SUM',1,'SUM',0.000001,0.000001,0.0000001,0,0");
  FoodCounts();
  LoadRule("F1", "MZZM");

  const std::string sale = MzPromotion(SaleXml(Food("10", "100") + LineXml(2, "MUG", "20", "1", "20")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"100.00", "10.10"}));
}

TEST_F(GoodsFree, OddNumbersInTheTablesDoNoHarm) {
  LooseTable("tProMzScheme",
             "BillNo,SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum,AddDscNum,"
             "SaleMaxIn,DscPrice");
  Scheme("'F1',1,'MUG','NUM','a','NUM','b','c','d','e','f'");
  Scheme("'F1',2,'MUG','SUM',-9e999,'SUM',9e999,-9e999,9e999,9e999,0");
  Scheme("'F1',3,'MUG','NUM',-9e999,'SUM',-9e999,9e999,-9e999,-9e999,0");
  Scheme("'F1',4,'MUG','NUM',-1,'NUM',-2,-3,-4,-5,0");
  WithMugs("10", "100", "5", "100");
  Sql("delete from tProMzScheme");
  Scheme("'F1',1,'MUG','SUM',100,'NUM',1,0,0,0,0");

  const Answer next =
      Calc("another till", "MzPromotion", SaleXml(Food("10", "100") + LineXml(2, "MUG", "20", "1", "20")));

  EXPECT_EQ(Held(next.Out, "Plu", "Total"), (Texts{"100.00", "0.00"}));
}

}  // namespace
}  // namespace Corvane::Testing
