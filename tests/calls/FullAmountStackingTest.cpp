#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

/// How the full-amount promotions stand beside each other on one sale, and which of them may still act on it.
class FullAmountStacking : public FullAmount {
 protected:
  static std::string OneLine(const std::string& groups = "", const std::string& isCalc = "0") {
    return SaleXml(LineXml(1, "A", "100", "1", "100"), groups, isCalc);
  }
  /// A rule that writes a result of its own stacking class onto the sale and touches no line.
  static void LeavesItsMark(const std::string& primary) {
    ASSERT_EQ(Load("MZYQ", RuleXml("Q1", "MZZQ", "Primary=\"" + primary + "\" JzDate=\"2026-12-31\"",
                                   OfferXml("ALL", TierXml("100", "7"))))
                  .Code,
              0);
  }
  static void TenOff(const std::string& billNo, const std::string& header = "") {
    Offer("'" + billNo + "','L1','ALL',0,'0'");
    Tier("'" + billNo + "','L1',50,10,1000,0,0");
    LoadRule(billNo, "MZMJ", header);
  }
  /// Which rules left results, on the sale first.
  static Texts Rules(const std::string& sale) { return Held(sale, "ProResult", "ProBillNo"); }
};

TEST_F(FullAmountStacking, AnyClassActsOnASaleWithoutResults) {
  for (const char* primary : {"DZ", "PT", "DJ"}) {
    Sql("delete from tpromzlist; delete from tProMzDiscountAct");
    TenOff("M1", "Primary=\"" + std::string(primary) + "\"");
    EXPECT_EQ(Rules(MzPromotion(OneLine())), Texts{"M1"}) << primary;
  }
}

TEST_F(FullAmountStacking, ADzResultStopsEveryOtherRule) {
  LeavesItsMark("DZ");
  TenOff("M1", R"(Primary="DZ" JzDate="2000-01-01")");
  TenOff("M2", R"(Primary="PT")");
  TenOff("M3", R"(Primary="DJ")");

  EXPECT_EQ(Rules(MzPromotion(OneLine())), Texts{"Q1"});
}

TEST_F(FullAmountStacking, APtResultStopsPtRulesOnly) {
  LeavesItsMark("PT");
  TenOff("M2", R"(Primary="PT")");
  TenOff("M3", R"(Primary="DJ")");

  EXPECT_EQ(Rules(MzPromotion(OneLine())), (Texts{"Q1", "M3"}));
}

TEST_F(FullAmountStacking, ADjResultStopsNobodyElse) {
  LeavesItsMark("DJ");
  TenOff("M3", R"(Primary="DJ" JzDate="2000-01-01")");

  EXPECT_EQ(Rules(MzPromotion(OneLine())), (Texts{"Q1", "M3"}));
}

// A later call finds the "DJ" result, which stops neither class.
TEST_F(FullAmountStacking, ADjResultStopsNoPtRuleInALaterCall) {
  LeavesItsMark("DJ");
  MzPromotion(OneLine());
  TenOff("M2", R"(Primary="PT")");

  EXPECT_EQ(Rules(MzPromotion(AsItStands())), (Texts{"Q1", "M2"}));
}

// A result whose class is one of these type words counts as one that nobody may join.
TEST_F(FullAmountStacking, AResultOfAClassNamedAsATypeStopsEveryRule) {
  for (const char* primary : {"MZMJ", "MZDP", "MZZM", "MZZP"}) {
    Sql("delete from tpromzlist; delete from tProMzDiscountAct");
    Clear("*");
    ClearSales();
    LeavesItsMark(primary);
    EXPECT_EQ(Rules(MzPromotion(OneLine())), Texts{"Q1"}) << primary;
    Clear("*");
    TenOff("M3", R"(Primary="DJ")");
    EXPECT_EQ(Rules(MzPromotion(AsItStands())), Texts{"Q1"}) << primary;
  }
}

TEST_F(FullAmountStacking, AResultOfAnotherClassStopsNobody) {
  LeavesItsMark("MZHG");
  MzPromotion(OneLine());
  Clear("*");
  TenOff("M2");

  EXPECT_EQ(Rules(MzPromotion(AsItStands())), (Texts{"Q1", "M2"}));
}

// All six types ask the sale, before anything else is logged but what a gift announces.
TEST_F(FullAmountStacking, AStoppedRuleSaysNothing) {
  LeavesItsMark("DZ");
  MzPromotion(OneLine());
  for (const char* type : {"MZMJ", "MZDP", "MZZM", "MZZP", "MZHG"}) LoadRule(type, type);
  TakeLog();

  MzPromotion(AsItStands());

  EXPECT_EQ(AfterReading(TakeLog()), (Texts{"开始满减赠品计算", "开始满减赠品计算"}));
}

TEST_F(FullAmountStacking, CouponsAreNotTakenFromASaleOfADzResult) {
  LeavesItsMark("DZ");
  MzPromotion(OneLine());
  LoadRule("K1", "MZYQ", R"(Primary="DJ")", OfferXml("ALL", TierXml("50", "5")));

  EXPECT_EQ(Rules(Result("Coupon", R"(<Sale><Coupon><R CouponValue="5"/></Coupon></Sale>)")), Texts{"Q1"});
}

TEST_F(FullAmountStacking, APaymentAsksNobody) {
  LeavesItsMark("DZ");
  MzPromotion(OneLine());
  LoadRule(
      "P1", "MZZF", "",
      R"(<ProCtr><R PayType="CARD" PriceTotal="50"/></ProCtr><PluAction><R DisPrice="100" DisRate="95"/></PluAction>)");

  EXPECT_EQ(Rules(Result("Pay", R"(<Sale><PayMode><R PayMode="CARD" PayMoney="100"/></PayMode></Sale>)")),
            (Texts{"Q1", "P1", "P1"}));
}

// A subtotal takes the lines' results away, not the sale's.
TEST_F(FullAmountStacking, ASalesResultsOutliveASubtotal) {
  LeavesItsMark("PT");
  TenOff("M2");
  MzPromotion(OneLine());
  Result("All", OneLine());

  EXPECT_EQ(Rules(MzPromotion(OneLine())), Texts{"Q1"});
}

// The first reduction's rows say that 100.00 were its base: nothing is open to a second one of class "PT".
TEST_F(FullAmountStacking, OfTwoPtReductionsTheFirstTakesTheMoney) {
  TenOff("M1", R"(JzDate="2026-02-01")");
  TenOff("M2");

  EXPECT_EQ(Rules(MzPromotion(OneLine())), Texts{"M1"});
}

TEST_F(FullAmountStacking, ADjReductionActsOnWhatAPtReductionLeft) {
  TenOff("M1");
  TenOff("M2", R"(Primary="DJ")");

  const std::string sale = MzPromotion(OneLine());

  EXPECT_EQ(Rules(sale), (Texts{"M1", "M2"}));
  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"80.00"});
}

TEST_F(FullAmountStacking, ADzReductionTakesTheMoneyFromAll) {
  TenOff("M1", R"(Primary="DZ")");
  TenOff("M2");
  TenOff("M3", R"(Primary="DJ")");

  EXPECT_EQ(Rules(MzPromotion(OneLine())), Texts{"M1"});
}

// A line discount of class "PT" is of another family: its quantity stays open.
TEST_F(FullAmountStacking, ALineDiscountLeavesTheQuantityOpen) {
  Sql("insert into tProPrjDirectProAct (BillNo,SerialNo,PluCode,DscType,DscPrice) values ('X1',1,'A','PRC',8)");
  LoadRule("X1", "PTXS");
  Giving("'D1',1,'0','A','PLU','NUM',3,'NUM',1,0,0,0");
  LoadRule("D1", "MZDP");
  Result("All", SaleXml(LineXml(1, "A", "10", "4", "40")));

  // 32.00 for 4: a mean of 8.00. But what is shared goes by the unit price, which is still 10.00: 8 / 40 of 40.
  const std::string sale = MzPromotion(AsItStands());

  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"24.00"});
}

TEST_F(FullAmountStacking, ADzLineDiscountTakesTheQuantity) {
  Sql("insert into tProPrjDirectProAct (BillNo,SerialNo,PluCode,DscType,DscPrice) values ('X1',1,'A','PRC',8)");
  LoadRule("X1", "PTXS", R"(Primary="DZ")");
  Giving("'D1',1,'0','A','PLU','NUM',3,'NUM',1,0,0,0");
  LoadRule("D1", "MZDP");
  Result("All", SaleXml(LineXml(1, "A", "10", "4", "40")));

  EXPECT_EQ(Rules(MzPromotion(AsItStands())), Texts{"X1"});
}

// Another full-amount rule of class "PT" took 4 of the 8 pieces; a "DJ" rule sees them all.
TEST_F(FullAmountStacking, ADjRuleDoesNotSeeWhatItsFamilyTook) {
  Giving("'D1',1,'0','A','PLU','NUM',3,'NUM',1,100,0,0");
  LoadRule("D1", "MZDP");
  Scheme("'G1',1,'MUG','NUM',1,'NUM',1,0,0,0,0");
  LoadRule("G1", "MZZP", R"(JzDate="2025-01-01")");
  Scheme("'G2',1,'MUG','NUM',1,'NUM',1,0,0,0,0");
  LoadRule("G2", "MZZP", R"(Primary="DJ")");

  // 3 are paid for, 1 is given, 4 are left over.
  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "10", "8", "80")));

  EXPECT_EQ(Held(sale, "ProGifts", "Total"), (Texts{"4.00", "8.00"}));
}

TEST_F(FullAmountStacking, ASecondPassOfAnOrdinaryReductionGivesNothing) {
  TenOff("M1");
  MzPromotion(OneLine());

  const std::string sale = MzPromotion(AsItStands());

  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"90.00"});
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"10.00"});
}

// Its line is taken, and the sum comes onto the first row as a rounding tail.
TEST_F(FullAmountStacking, ASecondPassOfADjReductionGivesAgain) {
  TenOff("M1", R"(Primary="DJ")");
  MzPromotion(OneLine());

  const std::string sale = MzPromotion(AsItStands());

  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"80.00"});
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"20.00"});
}

TEST_F(FullAmountStacking, ASecondPassOfGivingFindsTheLineTaken) {
  Giving("'D1',1,'0','A','PLU','NUM',3,'NUM',1,0,0,0");
  LoadRule("D1", "MZDP", R"(Primary="DJ")");
  MzPromotion(SaleXml(LineXml(1, "A", "10", "4", "40")));

  EXPECT_EQ(Held(MzPromotion(AsItStands()), "Plu", "Total"), Texts{"30.00"});
}

TEST_F(FullAmountStacking, LinesThatAreSentAgainStartAnew) {
  TenOff("M1");
  MzPromotion(OneLine());

  EXPECT_EQ(Held(MzPromotion(OneLine()), "Plu", "Total"), Texts{"90.00"});
}

// "DVCZK" runs for "1", "NVCZK" for "2", the others for "0", and all for any other text.
TEST_F(FullAmountStacking, TheSkipTestDecidesByRemark) {
  LoadRule("R1", "MZMJ", R"(Remark="DVCZK")");
  LoadRule("R2", "MZMJ", R"(Remark="NVCZK")");
  LoadRule("R3", "MZMJ");
  for (const char* rule : {"R1", "R2", "R3"}) {
    Offer("'" + std::string(rule) + "','L1','DES',0,'0'");
    Tier("'" + std::string(rule) + "','L1',50,10,0,0,0");
    Condition("'" + std::string(rule) + "','L1',1,'0','A','PLU','IN'");
  }

  const std::vector<std::pair<std::string, Texts>> skipped = {
      {"0", {"R1", "R2"}}, {"1", {"R2", "R3"}}, {"2", {"R1", "R3"}}, {"3", {}}};
  for (const auto& [isCalc, rules] : skipped) {
    ClearSales();
    TakeLog();
    MzPromotion(OneLine("", isCalc));
    const Texts log = AfterReading(TakeLog());
    EXPECT_EQ(Count(log, "跳过促销"), static_cast<long>(rules.size())) << isCalc;
    for (const std::string& rule : rules) EXPECT_EQ(Count(log, rule), 1) << isCalc << " " << rule;
  }
}

// Rules that are not of these six types are passed over by type, but the skip test speaks first.
TEST_F(FullAmountStacking, ASkippedRuleIsToldWhateverItsType) {
  LoadRule("X1", "PTXS", R"(Remark="DVCZK")");

  MzPromotion(OneLine());

  EXPECT_EQ(AfterReading(TakeLog()), (Texts{"跳过促销", "X1"}));
}

// All "DZ", then all "PT", then all "DJ", each class from the latest date on; the types stand in no order of their own.
TEST_F(FullAmountStacking, RulesRunInTheRegistrysOrder) {
  const std::vector<std::pair<std::string, std::string>> headers = {{"G1", R"(Primary="DJ" JzDate="2026-09-09")"},
                                                                    {"G2", R"(Primary="PT" JzDate="2026-01-01")"},
                                                                    {"G3", R"(Primary="PT" JzDate="2026-02-01")"},
                                                                    {"G4", R"(Primary="DZ" JzDate="2020-01-01")"}};
  for (const auto& [billNo, header] : headers) {
    Scheme("'" + billNo + "',1,'MUG','SUM',1,'NUM',1,0,0,0,0");
    LoadRule(billNo, billNo == "G2" ? "MZHG" : "MZZP", header);
  }

  EXPECT_EQ(Held(MzPromotion(OneLine()), "ProGifts", "ProBillNo"), (Texts{"G4", "G3", "G2", "G1"}));
}

TEST_F(FullAmountStacking, WithoutRulesTheSaleComesOutAsItCameIn) {
  for (const char* mode : {"MzPromotion", "Gift", "Pay", "Coupon"}) {
    const Answer answer = Calc("till", mode, OneLine());
    EXPECT_EQ(answer.Code, 0) << mode;
    EXPECT_EQ(answer.Msg, "sucess") << mode;
    EXPECT_EQ(Held(answer.Out, "Plu", "Total"), Texts{"100.00"}) << mode;
  }
}

// Two sales beside each other: what stands on one means nothing to the other.
TEST_F(FullAmountStacking, SalesDoNotKnowOfEachOther) {
  LeavesItsMark("DZ");
  Calc("till 1", "MzPromotion", OneLine());
  TenOff("M2");
  Clear("Q1");

  EXPECT_EQ(Rules(Calc("till 2", "MzPromotion", OneLine()).Out), Texts{"M2"});
  EXPECT_EQ(Rules(Calc("till 1", "MzPromotion", OneLine()).Out), Texts{"Q1"});
}

}  // namespace
}  // namespace Corvane::Testing
