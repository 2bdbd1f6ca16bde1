#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

/// "MZMJ": from a threshold on, a sum comes off the whole sale or off chosen lines.
class Reduce : public FullAmount {
 protected:
  static std::string ThreeLinesOfTen(const std::string& groups = "") {
    return SaleXml(
        LineXml(1, "A", "10", "1", "10") + LineXml(2, "B", "10", "1", "10") + LineXml(3, "C", "10", "1", "10"), groups);
  }
  /// 10.00 off from 30.00 on, over the whole sale.
  static void TenOffThirty(const std::string& header = "", const std::string& intoPlu = "0") {
    Offer("'M1','L1','ALL',0,'" + intoPlu + "'");
    Tier("'M1','L1',30,10,0,0,0");
    LoadRule("M1", "MZMJ", header);
  }
  /// The same over lines that condition rows choose.
  static void TenOffThirtyOfChosenLines(const std::string& header = "", const std::string& intoPlu = "0") {
    Offer("'M1','L1','DES',0,'" + intoPlu + "'");
    Tier("'M1','L1',30,10,0,0,0");
    LoadRule("M1", "MZMJ", header);
  }
};

// 10.00 over three equal lines: 3.33 each, and the cent that is left goes to the first row, and with it to its line.
TEST_F(Reduce, TenOffThreeLinesOfTenLeavesTwenty) {
  TenOffThirty();

  const std::string sale = MzPromotion(ThreeLinesOfTen());

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"6.66", "6.67", "6.67"}));
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"3.34", "3.33", "3.33"}));
  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), (Texts{"1.00", "1.00", "1.00"}));
  EXPECT_EQ(Held(sale, "ProResult", "RowID"), (Texts{"1", "2", "3"}));
  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), (Texts{"3.34", "3.33", "3.33"}));
  EXPECT_EQ(Held(sale, "Apportion", "ProType"), (Texts{"MZMJ", "MZMJ", "MZMJ"}));
}

TEST_F(Reduce, TenOffThreeChosenLinesOfTenLeavesTwenty) {
  TenOffThirtyOfChosenLines();
  Condition("'M1','L1',1,'0','A','PLU','IN'");
  Condition("'M1','L1',2,'0','B','PLU','IN'");
  Condition("'M1','L1',3,'0','C','PLU','IN'");

  const std::string sale = MzPromotion(ThreeLinesOfTen());

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"6.66", "6.67", "6.67"}));
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"3.34", "3.33", "3.33"}));
  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), (Texts{"3.34", "3.33", "3.33"}));
}

// 90.00 and 30.00 share 20.00 three to one.
TEST_F(Reduce, SharesFollowTheLinesMoney) {
  Offer("'M1','L1','ALL',0,'0'");
  Tier("'M1','L1',100,20,0,0,0");
  LoadRule("M1", "MZMJ");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "45", "2", "90") + LineXml(2, "B", "30", "1", "30")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"75.00", "25.00"}));
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"15.00", "5.00"}));
  EXPECT_EQ(Held(sale, "ProResult", "DisNum"), (Texts{"2.00", "1.00"}));
}

TEST_F(Reduce, OnlyChosenLinesCountAndGetTheDiscount) {
  TenOffThirtyOfChosenLines();
  Condition("'M1','L1',1,'0','FOOD','CAT','IN'");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "20", "1", "20", R"(CAT="FOOD")") +
                                               LineXml(2, "B", "100", "1", "100", R"(CAT="TOYS")") +
                                               LineXml(3, "C", "20", "1", "20", R"(CAT="FOOD")")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"15.00", "100.00", "15.00"}));
  EXPECT_EQ(Held(sale, "ProResult", "RowID"), (Texts{"1", "3"}));
}

TEST_F(Reduce, UnchosenMoneyDoesNotHelpToReachTheThreshold) {
  TenOffThirtyOfChosenLines();
  Condition("'M1','L1',1,'0','A','PLU','IN'");

  const std::string sale = MzPromotion(ThreeLinesOfTen());

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
}

TEST_F(Reduce, ABrandRowChoosesLines) {
  TenOffThirtyOfChosenLines();
  Condition("'M1','L1',1,'0','ACME','BRD','IN'");

  const std::string sale = MzPromotion(
      SaleXml(LineXml(1, "A", "40", "1", "40", R"(BRD="ACME")") + LineXml(2, "B", "40", "1", "40", R"(BRD="NONE")")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"30.00", "40.00"}));
}

// 20.00 of FOOD stay: the row that excludes B sieves it out of its category.
TEST_F(Reduce, AnExcludedArticleOfAChosenCategoryDoesNotCount) {
  TenOffThirtyOfChosenLines();
  Condition("'M1','L1',1,'0','FOOD','CAT','IN'");
  Condition("'M1','L1',2,'0','B','PLU','NOT'");

  const std::string sale = MzPromotion(
      SaleXml(LineXml(1, "A", "20", "1", "20", R"(CAT="FOOD")") + LineXml(2, "B", "20", "1", "20", R"(CAT="FOOD")")));

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
}

TEST_F(Reduce, AnExcludedCategorySievesAChosenArticle) {
  TenOffThirtyOfChosenLines();
  Condition("'M1','L1',1,'0','A','PLU','IN'");
  Condition("'M1','L1',2,'0','FOOD','CAT','NOT'");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "40", "1", "40", R"(CAT="FOOD")")));

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
}

TEST_F(Reduce, ARowThatNeitherIncludesNorExcludesChoosesNothing) {
  TenOffThirtyOfChosenLines();
  Condition("'M1','L1',1,'0','A','PLU','in'");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "40", "1", "40")));

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
}

TEST_F(Reduce, ConditionRowsOfAnotherOfferDoNotCount) {
  TenOffThirtyOfChosenLines();
  Condition("'M1','L2',1,'0','A','PLU','IN'");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "40", "1", "40")));

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
}

// A row is one row by its number, offer and data number: the second one, of B, is taken for the first again.
TEST_F(Reduce, ASecondRowOfTheSameNumbersIsNotHeld) {
  LooseTable("tProMzConPluSet", "BillNo,SerialNo,PluCode,PluType,InRange,ListCode,DataId");
  TenOffThirtyOfChosenLines();
  Condition("'M1','L1',1,'D','A','PLU','IN'");
  Condition("'M1','L1',1,'D','B','PLU','IN'");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "40", "1", "40") + LineXml(2, "B", "40", "1", "40")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"30.00", "40.00"}));
}

TEST_F(Reduce, RowsOfOneNumberDifferByTheirDataNumber) {
  LooseTable("tProMzConPluSet", "BillNo,SerialNo,PluCode,PluType,InRange,ListCode,DataId");
  Offer("'M1','L1','DES',0,'0'");
  Tier("'M1','L1',80,10,0,0,0");
  LoadRule("M1", "MZMJ");
  Condition("'M1','L1',1,'D','A','PLU','IN'");
  Condition("'M1','L1',1,'E','B','PLU','IN'");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "40", "1", "40") + LineXml(2, "B", "40", "1", "40")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"35.00", "35.00"}));
}

TEST_F(Reduce, ChosenLinesWithoutARowThatTouchesTheSaleEndTheOffer) {
  Offer("'M1','L1','DES',0,'0'");
  Tier("'M1','L1',0,10,0,0,0");
  Condition("'M1','L1',1,'0','Z','PLU','IN'");
  LoadRule("M1", "MZMJ");

  const std::string sale = MzPromotion(ThreeLinesOfTen());

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"10.00", "10.00", "10.00"}));
}

TEST_F(Reduce, TheWholeSaleReadsItsConditionRowsAndDoesNotUseThem) {
  TenOffThirty();
  Condition("'M1','L1',1,'0','A','PLU','NOT'");

  const std::string sale = MzPromotion(ThreeLinesOfTen());

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"6.66", "6.67", "6.67"}));
}

// The amount is 0: the threshold 0 is reached, and yet neither way of spreading is taken.
TEST_F(Reduce, AnAreaThatIsNoneGivesNothingEvenAtAThresholdOfNothing) {
  Offer("'M1','L1','all',0,'0'");
  Tier("'M1','L1',0,10,0,0,0");
  Offer("'M1','L2','',0,'0'");
  Tier("'M1','L2',0,10,0,0,0");
  LoadRule("M1", "MZMJ");

  const std::string sale = MzPromotion(ThreeLinesOfTen());

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"10.00", "10.00", "10.00"}));
}

TEST_F(Reduce, AThresholdOfTheVeryAmountIsReached) {
  TenOffThirty();

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "30", "1", "30")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"20.00"});
}

TEST_F(Reduce, ACentBelowTheThresholdGivesNothing) {
  TenOffThirty();

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "29.99", "1", "29.99")));

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(PrintedGroup(sale, "Apportion"), "<Apportion />");
}

TEST_F(Reduce, KindOfDiscountAndResultAreaChangeNothing) {
  Sql("insert into tpromzlist values ('M1','L1','ALL','NOWHERE',0,'0')");
  Sql("insert into tProMzDiscountAct values ('M1','L1','RAT',30,10,0,0,0)");
  LoadRule("M1", "MZMJ");

  const std::string sale = MzPromotion(ThreeLinesOfTen());

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"6.66", "6.67", "6.67"}));
}

// The unit price is the one before the rounding tail: (10 - 3.33) / 1, on the first line too.
TEST_F(Reduce, TheDiscountGoesIntoTheUnitPriceOnlyWhenTheOfferSaysSo) {
  TenOffThirty("", "1");
  EXPECT_EQ(Held(MzPromotion(ThreeLinesOfTen()), "Plu", "FinalPrice"), (Texts{"6.6700", "6.6700", "6.6700"}));

  Sql("update tpromzlist set DscIntoPlu='10'");
  EXPECT_EQ(Held(MzPromotion(ThreeLinesOfTen()), "Plu", "FinalPrice"), (Texts{"10.0000", "10.0000", "10.0000"}));
}

TEST_F(Reduce, TheDiscountOfChosenLinesGoesIntoTheUnitPriceOnlyWhenTheOfferSaysSo) {
  TenOffThirtyOfChosenLines("", "1");
  Condition("'M1','L1',1,'0','A','PLU','IN'");
  const std::string lines = LineXml(1, "A", "20", "2", "40");
  EXPECT_EQ(Held(MzPromotion(SaleXml(lines)), "Plu", "FinalPrice"), Texts{"15.0000"});

  Sql("update tpromzlist set DscIntoPlu='true'");
  EXPECT_EQ(Held(MzPromotion(SaleXml(lines)), "Plu", "FinalPrice"), Texts{"20.0000"});
}

TEST_F(Reduce, AWeighedLineCountsAsTheNextWholeNumber) {
  TenOffThirty();
  const std::string whole = MzPromotion(SaleXml(LineXml(1, "A", "40", "1.5", "60")));
  EXPECT_EQ(Held(whole, "ProResult", "DisNum"), Texts{"2.00"});
  EXPECT_EQ(Held(whole, "ProResult", "DisMoney"), Texts{"20.00"});  // 60 - 30 is one step more

  Sql("update tpromzlist set ConAreaType='DES'");
  Condition("'M1','L1',1,'0','A','PLU','IN'");
  const std::string chosen = MzPromotion(SaleXml(LineXml(1, "A", "40", "1.5", "60")));
  EXPECT_EQ(Held(chosen, "ProResult", "DisNum"), Texts{"2.00"});
  EXPECT_EQ(Held(chosen, "Apportion", "AppNum"), Texts{"2.00"});
}

// The first offer leaves 20.00. A "DJ" rule doesn't see its own "DJ" rows, so the second one is reached; but every line
// has a row of the rule by then, so its 2.00 come onto the first line as a rounding tail.
TEST_F(Reduce, ASecondOfferOverTheWholeSaleArrivesThroughTheTail) {
  TenOffThirty(R"(Primary="DJ")");
  Offer("'M1','L2','ALL',0,'0'");
  Tier("'M1','L2',15,2,0,0,0");

  const std::string sale = MzPromotion(ThreeLinesOfTen());

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"4.66", "6.67", "6.67"}));
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"5.34", "3.33", "3.33"}));
  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), (Texts{"5.34", "3.33", "3.33"}));
}

// Each line's row has a base of 10.00 and 6.67 are left of it: nothing is open to a "PT" rule any more.
TEST_F(Reduce, ASecondOfferOfAnOrdinaryRuleFindsNoMoneyOpen) {
  TenOffThirty();
  Offer("'M1','L2','ALL',0,'0'");
  Tier("'M1','L2',0.01,2,0,0,0");

  const std::string sale = MzPromotion(ThreeLinesOfTen());

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"6.66", "6.67", "6.67"}));
}

// The second offer is reached at 0, but there is no amount of which the lines could have a part.
TEST_F(Reduce, ASumWithoutAnAmountIsNotSpread) {
  TenOffThirty();
  Offer("'M1','L2','ALL',0,'0'");
  Tier("'M1','L2',0,2,0,0,0");

  const std::string sale = MzPromotion(ThreeLinesOfTen());

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"6.66", "6.67", "6.67"}));
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"3.34", "3.33", "3.33"}));
}

TEST_F(Reduce, ASecondOfferOverChosenLinesFindsThemTaken) {
  TenOffThirtyOfChosenLines(R"(Primary="DJ")");
  Condition("'M1','L1',1,'0','A','PLU','IN'");
  Offer("'M1','L2','DES',0,'0'");
  Tier("'M1','L2',1,5,0,0,0");
  Condition("'M1','L2',1,'0','A','PLU','IN'");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "40", "1", "40")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"30.00"});
}

// 5.00 and 7.00 by the offers' caps; the rule's own ceiling of 6.00 halves the records and leaves the lines alone.
TEST_F(Reduce, EachOfferHasItsCapAndTheRuleHasItsCeiling) {
  Offer("'M1','L1','DES',5,'0'");
  Tier("'M1','L1',10,50,0,0,0");
  Condition("'M1','L1',1,'0','A','PLU','IN'");
  Offer("'M1','L2','DES',7,'0'");
  Tier("'M1','L2',10,50,0,0,0");
  Condition("'M1','L2',1,'0','B','PLU','IN'");
  const std::string lines = LineXml(1, "A", "100", "1", "100") + LineXml(2, "B", "100", "1", "100");
  LoadRule("M1", "MZMJ");
  const std::string capped = MzPromotion(SaleXml(lines));
  EXPECT_EQ(Held(capped, "ProResult", "DisMoney"), (Texts{"5.00", "7.00"}));

  LoadRule("M1", "MZMJ", R"(MaxYhType="1" MaxYhValue="6")");
  TakeLog();
  const std::string limited = MzPromotion(SaleXml(lines));
  const Texts log = TakeLog();

  EXPECT_EQ(Held(limited, "ProResult", "DisMoney"), (Texts{"2.50", "3.50"}));  // 5 x 6 / 12, and 6 - 2.5
  EXPECT_EQ(Held(limited, "Apportion", "AppMoney"), (Texts{"5.00", "7.00"}));
  EXPECT_EQ(Held(limited, "Plu", "Total"), (Texts{"95.00", "93.00"}));
  const Texts limit = {
      "促销单按照最大优惠额限制", "ProNums= 2",    "ProNumsT为：1",       "allocated=2.5", "ProNumsT为：2",
      "ProNumsT=ProNums",         "allocated=2.5", "proInfo.MaxYhValue=6"};
  ASSERT_GE(log.size(), limit.size());
  EXPECT_EQ(Texts(log.end() - 8, log.end()), limit);
}

TEST_F(Reduce, TheCeilingIsAnnouncedEvenWhenNothingWasGiven) {
  TenOffThirty(R"(MaxYhType="1" MaxYhValue="6")");

  MzPromotion(SaleXml(LineXml(1, "A", "5", "1", "5")));

  EXPECT_EQ(AfterReading(TakeLog()), Joined({BaseConditionsMet(), {"促销单按照最大优惠额限制", "ProNums= 0"}}));
}

// One piece of three may count: 10.00, so 5.00 are given. The share goes by the line's whole 30.00, 15.00, and the tail
// of -10.00 brings record and line back to 5.00.
TEST_F(Reduce, ALimitByQuantityBoundsTheChosenMoney) {
  Offer("'M1','L1','DES',0,'0'");
  Tier("'M1','L1',10,5,0,0,0");
  Condition("'M1','L1',1,'0','A','PLU','IN'");
  LoadRule("M1", "MZMJ", R"(MaxYhType="2" MaxYhValue="1")");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "10", "3", "30")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"25.00"});
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"5.00"});
  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), Texts{"5.00"});
  EXPECT_EQ(AfterReading(TakeLog()),
            Joined({BaseConditionsMet(), {"促销优惠类型：2", "促销类型：MZMJ", "类型为2", "计算整单已优惠数量：0"}}));
}

TEST_F(Reduce, ALimitByQuantityMeansNothingOverTheWholeSale) {
  TenOffThirty(R"(MaxYhType="2" MaxYhValue="1")");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "10", "3", "30")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"20.00"});
}

TEST_F(Reduce, TheLogTellsTheBaseConditionsAndNothingElseOverTheWholeSale) {
  TenOffThirty();

  MzPromotion(ThreeLinesOfTen());

  EXPECT_EQ(TakeLog(), Joined({{"MzPromotion", "till:1\n", "开始初始化流水", "初始化流水完成"}, BaseConditionsMet()}));
}

TEST_F(Reduce, TheLogAsksForTheQuantityOfEachChosenLine) {
  TenOffThirtyOfChosenLines();
  Condition("'M1','L1',1,'0','A','PLU','IN'");
  Condition("'M1','L1',2,'0','C','PLU','IN'");

  MzPromotion(ThreeLinesOfTen());

  EXPECT_EQ(AfterReading(TakeLog()), Joined({BaseConditionsMet(), AskedQuantity("MZMJ"), AskedQuantity("MZMJ")}));
}

TEST_F(Reduce, TheRowsNameTheFirstMemberOfTheSaleWhenTheRuleAsksForMembers) {
  Offer("'M1','L1','ALL',0,'0'");
  Tier("'M1','L1',30,10,0,0,0");
  LoadRule("M1", "MZMJ", "", R"(<Vip><Row VipType="GOLD"/></Vip>)");

  const std::string sale = MzPromotion(ThreeLinesOfTen(R"(<Vip><Row VipType="SILVER"/><Row VipType="GOLD"/></Vip>)"));

  EXPECT_EQ(Held(sale, "ProResult", "VipType"), (Texts{"SILVER", "SILVER", "SILVER"}));
  EXPECT_EQ(Held(sale, "ProResult", "IsVip"), (Texts{"1", "1", "1"}));
  EXPECT_EQ(Held(sale, "Apportion", "VipType"), (Texts{"SILVER", "SILVER", "SILVER"}));
}

TEST_F(Reduce, TheRowsNameNoMemberWhenTheRuleAsksForNone) {
  TenOffThirty();

  const std::string sale = MzPromotion(ThreeLinesOfTen(R"(<Vip><Row VipType="GOLD"/></Vip>)"));

  EXPECT_EQ(Held(sale, "ProResult", "VipType"), (Texts{"", "", ""}));
  EXPECT_EQ(Held(sale, "ProResult", "IsVip"), (Texts{"0", "0", "0"}));
}

TEST_F(Reduce, ARuleForMembersGivesNothingToOthers) {
  Offer("'M1','L1','ALL',0,'0'");
  Tier("'M1','L1',30,10,0,0,0");
  LoadRule("M1", "MZMJ", "", R"(<Vip><Row VipType="GOLD"/></Vip>)");

  const std::string sale = MzPromotion(ThreeLinesOfTen());

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
}

// Nothing is kept from sale to sale: the next one sees the tables as they are then.
TEST_F(Reduce, AChangeInTheTablesHoldsForTheNextSale) {
  TenOffThirty();
  EXPECT_EQ(Held(MzPromotion(SaleXml(LineXml(1, "A", "30", "1", "30"))), "Plu", "Total"), Texts{"20.00"});

  Sql("update tProMzDiscountAct set BaseDscMoney=12");
  EXPECT_EQ(Held(MzPromotion(SaleXml(LineXml(1, "A", "30", "1", "30"))), "Plu", "Total"), Texts{"18.00"});

  Sql("delete from tProMzDiscountAct");
  EXPECT_EQ(Held(MzPromotion(SaleXml(LineXml(1, "A", "30", "1", "30"))), "Plu", "Total"), Texts{"30.00"});
}

TEST_F(Reduce, NoOffersAreNoFailure) {
  LoadRule("M1", "MZMJ");

  const std::string sale = MzPromotion(ThreeLinesOfTen());

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(AfterReading(TakeLog()), BaseConditionsMet());
}

// Null is 0 or the empty text: no cap, no steps, no limit, and the unit price is left alone.
TEST_F(Reduce, NullsReadAsNothing) {
  LooseTable("tpromzlist", "BillNo,ConAreaType,RstAreaType,MaxDiscount,DscIntoPlu,ListCode");
  LooseTable("tProMzDiscountAct", "BillNo,ListCode,DscType,BaseMoney,BaseDscMoney,AddMoney,AddDscMoney,SaleMaxIn");
  Offer("'M1','L1','ALL',null,null");
  Tier("'M1','L1',30,10,null,null,null");
  LoadRule("M1", "MZMJ");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "60", "1", "60")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"40.00"});  // 10.00, and one step of 30.00 more
  EXPECT_EQ(Held(sale, "Plu", "FinalPrice"), Texts{"60.0000"});
}

TEST_F(Reduce, AnAreaOfNullIsNone) {
  LooseTable("tpromzlist", "BillNo,ConAreaType,RstAreaType,MaxDiscount,DscIntoPlu,ListCode");
  Offer("'M1','L1',null,0,'0'");
  Tier("'M1','L1',0,10,0,0,0");
  LoadRule("M1", "MZMJ");

  EXPECT_EQ(PrintedGroup(MzPromotion(ThreeLinesOfTen()), "ProResult"), "<ProResult />");
}

// The offer's code is the empty text, which is not what stands in the tier table.
TEST_F(Reduce, AnOfferWhoseCodeIsNullHasNoTiers) {
  LooseTable("tpromzlist", "BillNo,ConAreaType,RstAreaType,MaxDiscount,DscIntoPlu,ListCode");
  LooseTable("tProMzDiscountAct", "BillNo,ListCode,DscType,BaseMoney,BaseDscMoney,AddMoney,AddDscMoney,SaleMaxIn");
  Offer("'M1',null,'ALL',0,'0'");
  Tier("'M1',null,30,10,0,0,0");
  LoadRule("M1", "MZMJ");

  EXPECT_EQ(PrintedGroup(MzPromotion(ThreeLinesOfTen()), "ProResult"), "<ProResult />");
}

TEST_F(Reduce, ARangeOfNullIsNone) {
  LooseTable("tProMzConPluSet", "BillNo,SerialNo,PluCode,PluType,InRange,ListCode,DataId");
  TenOffThirtyOfChosenLines();
  Condition("'M1','L1',null,null,'A','PLU',null");

  EXPECT_EQ(PrintedGroup(MzPromotion(SaleXml(LineXml(1, "A", "40", "1", "40"))), "ProResult"), "<ProResult />");
}

// The line asks for rows with an empty code and finds this one, but it carries no category that the row could name.
TEST_F(Reduce, ALineWithoutACategoryIsNoneOfAnEmptyCategory) {
  TenOffThirtyOfChosenLines();
  Condition("'M1','L1',1,'0','','CAT','IN'");

  EXPECT_EQ(PrintedGroup(MzPromotion(SaleXml(LineXml(1, "A", "40", "1", "40"))), "ProResult"), "<ProResult />");
}

// A tier of 0.01 steps: (100,301.00 - 1.00) / 0.01 = 10,030,000 steps of 0.001, and 1.00 for the threshold. Whoever
// bounds the steps at ten million gives nothing here.
TEST_F(Reduce, StepsAreNotBounded) {
  Offer("'M1','L1','ALL',0,'0'");
  Tier("'M1','L1',1,1,0.01,0.001,0");
  LoadRule("M1", "MZMJ");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "100301", "1", "100301")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"90270.00"});
}

// 199,000,000,000 steps are no 32-bit number: the count is the smallest integer then, and there are no steps.
TEST_F(Reduce, ACountOfStepsBeyondAllIntegersGivesNoSteps) {
  Offer("'M1','L1','ALL',0,'0'");
  Tier("'M1','L1',1,0.5,0.000000001,0.01,0");
  LoadRule("M1", "MZMJ");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "200", "1", "200")));

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"0.50"});
}

// The cap ends a repetition long before any bound: 10 x 0.50.
TEST_F(Reduce, TinyStepsUnderACapAreGiven) {
  Offer("'M1','L1','ALL',5,'0'");
  Tier("'M1','L1',1,0.5,0.0000001,0.5,0");
  LoadRule("M1", "MZMJ");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "200", "1", "200")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"195.00"});
  EXPECT_EQ(AfterReading(TakeLog()), BaseConditionsMet());
}

// 1,000,001 cents by repeated additions is far within what is given.
TEST_F(Reduce, AMillionStepsAreGiven) {
  Offer("'M1','L1','ALL',0,'0'");
  Tier("'M1','L1',1,0.01,0.01,0.01,0");
  LoadRule("M1", "MZMJ");

  // (10001 - 1) / 0.01 = 1,000,000 steps; 0.01 + 1,000,000 x 0.01 = 10000.01
  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "10001", "1", "10001")));

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"10000.01"});
}

// Numbers as texts, no numbers at all, and numbers beyond all bounds: the call ends, and the next one works.
TEST_F(Reduce, OddNumbersInTheTablesDoNoHarm) {
  LooseTable("tpromzlist", "BillNo,ConAreaType,RstAreaType,MaxDiscount,DscIntoPlu,ListCode");
  LooseTable("tProMzDiscountAct", "BillNo,ListCode,DscType,BaseMoney,BaseDscMoney,AddMoney,AddDscMoney,SaleMaxIn");
  Offer("'M1','L1','ALL','many','0'");
  Tier("'M1','L1','much','few',0,0,'all'");
  Offer("'M1','L2','ALL',9e999,'0'");
  Tier("'M1','L2',-9e999,9e999,1,9e999,9e999");
  Offer("'M1','L3','ALL',-9e999,'0'");
  Tier("'M1','L3',9e999,-9e999,-1,-9e999,-9e999");
  LoadRule("M1", "MZMJ");
  MzPromotion(ThreeLinesOfTen());

  Sql("delete from tpromzlist; delete from tProMzDiscountAct");
  Offer("'M1','L1','ALL',0,'0'");
  Tier("'M1','L1',30,10,0,0,0");

  EXPECT_EQ(Held(MzPromotion(ThreeLinesOfTen()), "Plu", "Total"), (Texts{"6.66", "6.67", "6.67"}));
}

// The goods were lowered to 8.00 each at the subtotal; what counts afterwards is what is left to pay.
TEST_F(Reduce, TheAmountIsWhatEarlierDiscountsLeft) {
  Sql("insert into tProPrjDirectProAct (BillNo,SerialNo,PluCode,DscType,DscPrice) values ('X1',1,'A','PRC',8)");
  LoadRule("X1", "PTXS");
  Offer("'M1','L1','ALL',0,'0'");
  Tier("'M1','L1',30,10,0,0,0");
  Tier("'M1','L1',24,4,0,0,0");
  LoadRule("M1", "MZMJ");
  EXPECT_EQ(Held(Result("All", SaleXml(LineXml(1, "A", "10", "3", "30"))), "Plu", "Total"), Texts{"24.00"});

  const std::string sale = MzPromotion(AsItStands());

  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"20.00"});
  EXPECT_EQ(Held(sale, "ProResult", "ProBillNo"), (Texts{"X1", "M1"}));
}

TEST_F(Reduce, ASaleWithoutLinesMeetsNoTime) {
  TenOffThirty();

  const std::string sale = MzPromotion(AsItStands());

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(AfterReading(TakeLog()), Texts{"时间条件不满足"});
}

TEST_F(Reduce, OtherModesDoNotRunIt) {
  TenOffThirty();

  for (const char* mode : {"Single", "All", "Union", "Zh", "Gift", "Pay", "Coupon"}) {
    EXPECT_EQ(PrintedGroup(Result(mode, SaleXml(LineXml(1, "A", "30", "1", "30"))), "ProResult"), "<ProResult />")
        << mode;
  }
}

}  // namespace
}  // namespace Corvane::Testing
