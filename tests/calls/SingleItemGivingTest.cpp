#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

/// "MZDP": buy some of these goods, get some of them, or some money off them.
class SingleItemGiving : public FullAmount {
 protected:
  static std::string Colas(const std::string& count, const std::string& total) {
    return LineXml(1, "COLA", "10", count, total);
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
