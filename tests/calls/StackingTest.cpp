#include <gmock/gmock.h>

#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::ElementsAre;

/// Rules of different families and stacking classes on one line: who sees what as taken.
class Stacking : public Till {
 protected:
  void SetUp() override {
    Till::SetUp();
    MakeTables();
  }
  static void LoadRule(const std::string& type, const std::string& billNo, const std::string& header = "") {
    ASSERT_EQ(Load(type, RuleXml(billNo, type, header)).Code, 0);
  }
  /// A fixed combination of `count` colas at `price` each.
  static void PutCombination(const std::string& billNo, const std::string& count, const std::string& price) {
    Sql("insert into tProPrjCombProAct (BillNo,SerialNo,PriceType) values ('" + billNo +
        "',1,'DP');"
        "insert into tProPrjCombPluSet (BillNo,SerialNo,PluCode,SaleCount,DscPrice) values ('" +
        billNo + "',1,'COLA'," + count + "," + price + ");");
  }
  static std::string Run(const std::string& mode, const std::string& xml) {
    const Answer sale = Calc("till", mode, xml);
    EXPECT_EQ(sale.Code, 0);
    EXPECT_EQ(sale.Msg, "sucess");
    return sale.Out;
  }
};

const std::string& ThreeColas() {
  static const std::string sale = SaleXml(LineXml(1, "COLA", "10", "3", "30"));
  return sale;
}

TEST_F(Stacking, WhatOneOrdinaryTypeTookIsTakenForAnotherButOpenForACombination) {
  Put({DirectRow("P1", 1, "COLA").Price("8"), DirectRow("X1", 1, "COLA").Price("1")});
  PutCombination("G1", "3", "5");
  LoadRule("PTPL", "P1", R"(JzDate="2026-06-01")");
  LoadRule("PTXS", "X1", R"(JzDate="2026-01-01")");
  LoadRule("ZHGD", "G1");

  const std::string sale = Run("All", ThreeColas());

  // Batch: 2.00 off each. Combination: all three at 5.00, from 24 / 3 = 8.00.
  EXPECT_THAT(DiscountsOf(sale), ElementsAre("1 COLA: P1 on 3.00 gives 6.00", "1 COLA: G1 on 3.00 gives 9.00"));
  EXPECT_THAT(LinesOf(sale), ElementsAre("1 COLA 3.00 x 10.00 = 15.00"));
}

TEST_F(Stacking, WhatAnExclusiveRuleTookIsTakenForEveryFamily) {
  PutCombination("GX", "2", "5");
  PutCombination("GO", "1", "4");
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("ZHGD", "GX", R"(Primary="DZ")");
  LoadRule("PTXS", "X1", R"(Primary="PT")");
  LoadRule("ZHGD", "GO", R"(Primary="PT")");

  const std::string sale = Run("All", ThreeColas());

  // Two at 5.00: 10.00 off, 20.00 left. The ordinary rule has one, from (10 + 20) / 3 = 10.00: 2.00 off, 18.00 left.
  // The other combination has one too, from (10 + 18) / 3 = 9.333 at 4.00: 5.333 off.
  EXPECT_THAT(DiscountsOf(sale), ElementsAre("1 COLA: GX on 2.00 gives 10.00", "1 COLA: X1 on 1.00 gives 2.00",
                                             "1 COLA: GO on 1.00 gives 5.33"));
  EXPECT_THAT(LinesOf(sale), ElementsAre("1 COLA 3.00 x 10.00 = 12.67"));
}

TEST_F(Stacking, AnExclusiveOrdinaryRuleLeavesNothingForACombination) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  PutCombination("G1", "1", "1");
  LoadRule("PTXS", "X1", R"(Primary="DZ")");
  LoadRule("ZHGD", "G1", R"(Primary="DJ")");

  EXPECT_THAT(DiscountsOf(Run("All", ThreeColas())), ElementsAre("1 COLA: X1 on 3.00 gives 6.00"));
}

TEST_F(Stacking, ACombinationThenAnOrdinaryRuleThenAnExtraOneEachTakeWhatIsLeft) {
  PutCombination("GX", "1", "5");
  Put({DirectRow("PO", 1, "COLA").Price("8").AtMost("1"), DirectRow("PE", 1, "COLA").Price("7")});
  LoadRule("ZHGD", "GX", R"(Primary="DZ" MaxYhType="2" MaxYhValue="1")");
  LoadRule("PTXS", "PO", R"(Primary="PT")");
  LoadRule("PTXS", "PE", R"(Primary="DJ")");

  const std::string sale = Run("Union", ThreeColas());

  // One at 5.00: 25.00 left. One at 8.00 from (5 + 25) / 3: 23.00 left. One at 7.00 from (7 + 23) / 3: 20.00 left.
  EXPECT_THAT(DiscountsOf(sale), ElementsAre("1 COLA: GX on 1.00 gives 5.00", "1 COLA: PO on 1.00 gives 2.00",
                                             "1 COLA: PE on 1.00 gives 3.00"));
  EXPECT_THAT(LinesOf(sale), ElementsAre("1 COLA 3.00 x 10.00 = 20.00"));
}

TEST_F(Stacking, AnExclusiveReductionClosesTheMoneyOfItsLinesToOtherReductions) {
  Sql("insert into tpromzlist values ('MX','1','ALL','ALL',0,'0'),('ME','1','ALL','ALL',0,'0');"
      "insert into tProMzDiscountAct values ('MX','1','PRC',10,5,1000,0,0),('ME','1','PRC',1,3,1000,0,0)");
  LoadRule("MZMJ", "MX", R"(Primary="DZ")");
  LoadRule("MZMJ", "ME", R"(Primary="DJ")");

  // The exclusive rule worked on all 30.00, more than the 25.00 left: nothing is open.
  EXPECT_THAT(DiscountsOf(Run("MzPromotion", ThreeColas())), ElementsAre("1 COLA: MX on 3.00 gives 5.00"));
}

TEST_F(Stacking, TheMoneyOfAnOrdinaryReductionIsClosedToOrdinaryOnesAndOpenToExtraOnes) {
  Sql("insert into tpromzlist values ('M1','1','ALL','ALL',0,'0'),('M2','1','ALL','ALL',0,'0'),"
      "('ME','1','ALL','ALL',0,'0');"
      "insert into tProMzDiscountAct values ('M1','1','PRC',10,5,1000,0,0),('M2','1','PRC',1,2,1000,0,0),"
      "('ME','1','PRC',25,3,1000,0,0)");
  LoadRule("MZMJ", "M1", R"(Primary="PT" JzDate="2026-06-01")");
  LoadRule("MZMJ", "M2", R"(Primary="PT" JzDate="2026-01-01")");
  LoadRule("MZMJ", "ME", R"(Primary="DJ")");

  const std::string sale = Run("MzPromotion", ThreeColas());

  EXPECT_THAT(DiscountsOf(sale), ElementsAre("1 COLA: M1 on 3.00 gives 5.00", "1 COLA: ME on 3.00 gives 3.00"));
}

// --- Cents -----------------------------------------------------------------------------------------------------------

/// A reduction of 10.00 on three lines of 10.00: the cent that doesn't divide.
class Cents : public Stacking {
 protected:
  static std::string Reduce(const std::string& area, const std::string& lines) {
    Sql("insert into tpromzlist values ('M1','1','" + area +
        "','ALL',0,'0');"
        "insert into tProMzDiscountAct values ('M1','1','PRC',30,10,1000,0,0);"
        "insert into tProMzConPluSet values ('M1','1',1,'1','A','PLU','IN'),('M1','1',2,'1','B','PLU','IN'),"
        "('M1','1',3,'1','C','PLU','IN')");
    LoadRule("MZMJ", "M1");
    return Run("MzPromotion", SaleXml(lines));
  }
};

TEST_F(Cents, OfChosenLinesTheFirstTakesTheTail) {
  const std::string sale = Reduce(
      "DES", LineXml(1, "A", "10", "1", "10") + LineXml(2, "B", "10", "1", "10") + LineXml(3, "C", "10", "1", "10"));

  // 10 x 10 / 30 = 3.33 each, and 0.01 over.
  EXPECT_THAT(DiscountsOf(sale),
              ElementsAre("1 A: M1 on 1.00 gives 3.34", "2 B: M1 on 1.00 gives 3.33", "3 C: M1 on 1.00 gives 3.33"));
  EXPECT_THAT(SharesOf(sale),
              ElementsAre("1 A: M1 on 1.00 gives 3.34", "2 B: M1 on 1.00 gives 3.33", "3 C: M1 on 1.00 gives 3.33"));
  EXPECT_THAT(LinesOf(sale),
              ElementsAre("1 A 1.00 x 10.00 = 6.66", "2 B 1.00 x 10.00 = 6.67", "3 C 1.00 x 10.00 = 6.67"));
}

TEST_F(Cents, OfAllLinesTheFirstTakesTheTail) {
  const std::string sale = Reduce(
      "ALL", LineXml(1, "A", "10", "1", "10") + LineXml(2, "B", "10", "1", "10") + LineXml(3, "C", "10", "1", "10"));

  EXPECT_THAT(DiscountsOf(sale),
              ElementsAre("1 A: M1 on 1.00 gives 3.34", "2 B: M1 on 1.00 gives 3.33", "3 C: M1 on 1.00 gives 3.33"));
  EXPECT_THAT(LinesOf(sale),
              ElementsAre("1 A 1.00 x 10.00 = 6.66", "2 B 1.00 x 10.00 = 6.67", "3 C 1.00 x 10.00 = 6.67"));
}

TEST_F(Cents, AWeighedLineCountsAsTheNextWholeNumberOfPieces) {
  const std::string sale = Reduce("DES", LineXml(1, "A", "20", "1.5", "30"));

  EXPECT_THAT(DiscountsOf(sale), ElementsAre("1 A: M1 on 2.00 gives 10.00"));
  EXPECT_THAT(LinesOf(sale), ElementsAre("1 A 1.50 x 20.00 = 20.00"));
}

// --- Full-amount rules among themselves ------------------------------------------------------------------------------

/// A rule that makes one cola free from two on, and another that makes one more free from three on.
class SameFamily : public Stacking {
 protected:
  void SetUp() override {
    Stacking::SetUp();
    Sql("insert into tProMzScheme (BillNo,SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum) "
        "values "
        "('FIRST',1,'COLA','NUM',2,'NUM',1,1000),('SECOND',1,'COLA','NUM',3,'NUM',1,1000)");
    LoadRule("MZZM", "FIRST", R"(Primary="PT" JzDate="2026-06-01")");
  }
};

TEST_F(SameFamily, AnOrdinaryRuleSeesWhatItsFamilyTookAsTaken) {
  LoadRule("MZZM", "SECOND", R"(Primary="PT" JzDate="2026-01-01")");

  EXPECT_THAT(DiscountsOf(Run("MzPromotion", ThreeColas())), ElementsAre("1 COLA: FIRST on 1.00 gives 10.00"));
}

TEST_F(SameFamily, AnExtraRuleDoesNot) {
  LoadRule("MZZM", "SECOND", R"(Primary="DJ")");

  // The second finds three colas, each at 20 / 3 = 6.67 by now.
  EXPECT_THAT(DiscountsOf(Run("MzPromotion", ThreeColas())),
              ElementsAre("1 COLA: FIRST on 1.00 gives 10.00", "1 COLA: SECOND on 1.00 gives 6.67"));
}

}  // namespace
}  // namespace Corvane::Testing
