#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

/// "MZMJ": from a threshold on, a sum comes off the whole sale or off chosen lines.
class Reduce : public FullAmount {
 protected:
  static std::string ThreeLinesOfTen() {
    return SaleXml(LineXml(1, "A", "10", "1", "10") + LineXml(2, "B", "10", "1", "10") +
                   LineXml(3, "C", "10", "1", "10"));
  }
  /// 10.00 off from 30.00 on, over the whole sale.
  static void TenOffThirty(const std::string& header = "") {
    Offer("'M1','L1','ALL',0,'0'");
    Tier("'M1','L1',30,10,0,0,0");
    LoadRule("M1", "MZMJ", header);
  }
  /// The same over lines that condition rows choose.
  static void TenOffThirtyOfChosenLines() {
    Offer("'M1','L1','DES',0,'0'");
    Tier("'M1','L1',30,10,0,0,0");
    LoadRule("M1", "MZMJ");
  }
};

// A row is one row by its number, offer and data number: the second one, of B, is taken for the first again.
TEST_F(Reduce, ASecondRowOfTheSameNumbersIsNotHeld) {
  LooseTable("tProMzConPluSet", "BillNo,SerialNo,PluCode,PluType,InRange,ListCode,DataId");
  TenOffThirtyOfChosenLines();
  Condition("'M1','L1',1,'D','A','PLU','IN'");
  Condition("'M1','L1',1,'D','B','PLU','IN'");

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "40", "1", "40") + LineXml(2, "B", "40", "1", "40")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"30.00", "40.00"}));
}

TEST_F(Reduce, TheCeilingIsAnnouncedEvenWhenNothingWasGiven) {
  TenOffThirty(R"(MaxYhType="1" MaxYhValue="6")");

  MzPromotion(SaleXml(LineXml(1, "A", "5", "1", "5")));

  EXPECT_EQ(AfterReading(TakeLog()), Joined({BaseConditionsMet(), {"促销单按照最大优惠额限制", "ProNums= 0"}}));
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

TEST_F(Reduce, ASaleWithoutLinesMeetsNoTime) {
  TenOffThirty();

  const std::string sale = MzPromotion(AsItStands());

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(AfterReading(TakeLog()), Texts{"时间条件不满足"});
}

}  // namespace
}  // namespace Corvane::Testing
