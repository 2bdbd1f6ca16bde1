#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

/// "MZZM": from a threshold on, goods of the sale itself become free or cheaper.
class GoodsFree : public FullAmount {
 protected:
  static std::string Food(const std::string& count, const std::string& total) {
    return LineXml(1, "FOOD", "10", count, total, R"(CAT="FOOD")");
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

TEST_F(GoodsFree, TheCeilingIsAnnouncedEvenWhenNothingWasGiven) {
  Scheme("'F1',1,'MUG','SUM',1000,'NUM',1,0,0,0,0");

  WithMugs("10", "100", "1", "20", R"(MaxYhType="1" MaxYhValue="5")");

  const Texts log = TakeLog();
  ASSERT_GE(log.size(), 2U);
  EXPECT_EQ(Texts(log.end() - 2, log.end()), (Texts{"促销单按照最大优惠额限制", "ProNums= 0"}));
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
