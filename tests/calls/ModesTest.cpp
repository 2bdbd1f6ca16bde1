#include <gmock/gmock.h>

#include <algorithm>

#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

/// Which rules run in which mode, in which order, on what of the sale.
class Modes : public Till {
 protected:
  void SetUp() override {
    Till::SetUp();
    MakeTables();
  }
  static void LoadRule(const std::string& type, const std::string& billNo, const std::string& header = "",
                       const std::string& groups = "") {
    ASSERT_EQ(Load(type, RuleXml(billNo, type, header, groups)).Code, 0);
  }
  static Answer Run(const std::string& mode, const std::string& xml) {
    const Answer sale = Calc("till", mode, xml);
    EXPECT_EQ(sale.Code, 0);
    EXPECT_EQ(sale.Msg, "sucess");
    return sale;
  }
  /// The rules that started to calculate, in order, of those types that log their start with their number.
  static std::vector<std::string> Started() {
    const std::vector<std::string> starts = {"开始计算普通限时促销，促销单号：", "开始计算自由组合促销，促销单号："};
    std::vector<std::string> rules;
    for (const std::string& entry : TakeLog()) {
      for (const std::string& start : starts) {
        if (entry.rfind(start, 0) == 0) rules.push_back(entry.substr(start.size()));
      }
    }
    return rules;
  }
};

/// A rule that gives a part of a payment by card back: 5.00 of every 50.00.
constexpr const char* kCardGroups = R"(<ProCtr><Row PayType="CARD" PriceTotal="1000" WholeBillPay="0"/></ProCtr>)"
                                    R"(<PluAction><Row DisPrice="50" DisRate="45"/></PluAction>)";
constexpr const char* kPaidByCard = R"(<PayMode><D PayMode="CARD" PayMoney="50"/></PayMode>)";

// --- Passes ----------------------------------------------------------------------------------------------------------

TEST_F(Modes, AllRunsExclusiveRulesTwiceAndEverythingElseOnce) {
  LoadRule("ZHZY", "ZX", R"(Primary="DZ")");
  LoadRule("PTXS", "PX", R"(Primary="DZ")");
  LoadRule("ZHZY", "ZO", R"(Primary="PT")");
  LoadRule("PTXS", "PO", R"(Primary="PT")");
  LoadRule("PTXS", "PE", R"(Primary="DJ")");
  LoadRule("ZHZY", "ZE", R"(Primary="DJ")");

  Run("All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  // Exclusive combinations; exclusive ordinary ones; all ordinary ones; all combinations.
  EXPECT_THAT(Started(), ElementsAre("ZX", "PX", "PX", "PO", "PE", "ZX", "ZO", "ZE"));
}

TEST_F(Modes, UnionHasNoLastPassForCombinations) {
  LoadRule("ZHZY", "ZX", R"(Primary="DZ")");
  LoadRule("PTXS", "PX", R"(Primary="DZ")");
  LoadRule("ZHZY", "ZO", R"(Primary="PT")");
  LoadRule("PTXS", "PO", R"(Primary="PT")");

  Run("Union", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  EXPECT_THAT(Started(), ElementsAre("ZX", "PX", "PX", "PO"));
}

TEST_F(Modes, ZhRunsCombinationsAloneOfEveryStackingClass) {
  LoadRule("ZHZY", "ZE", R"(Primary="DJ")");
  LoadRule("ZHZY", "ZX", R"(Primary="DZ")");
  LoadRule("PTXS", "PX", R"(Primary="DZ")");
  LoadRule("ZHZY", "ZO", R"(Primary="PT")");
  LoadRule("PTXS", "PO", R"(Primary="PT")");

  Run("Zh", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  EXPECT_THAT(Started(), ElementsAre("ZX", "ZO", "ZE"));
}

TEST_F(Modes, SingleRunsTimeLimitsAloneOfEveryStackingClass) {
  LoadRule("PTXS", "PE", R"(Primary="DJ")");
  LoadRule("PTXS", "PX", R"(Primary="DZ")");
  LoadRule("ZHZY", "ZX", R"(Primary="DZ")");
  LoadRule("PTPL", "PB");
  LoadRule("PTOS", "PS");
  LoadRule("PTXS", "PO", R"(Primary="PT")");
  TakeLog();

  Run("Single", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  EXPECT_THAT(Started(), ElementsAre("PX", "PO", "PE"));
}

TEST_F(Modes, TheSecondVisitOfAnExclusiveRuleGivesNothingMore) {
  Put({DirectRow("PX", 1, "COLA").Price("8")});
  LoadRule("PTXS", "PX", R"(Primary="DZ")");

  const Answer sale = Run("All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: PX on 3.00 gives 6.00"));
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 24.00"));
  EXPECT_THAT(Started(), ElementsAre("PX", "PX"));
}

TEST_F(Modes, TheSecondVisitOfAnExclusiveRuleTakesWhatItsOwnLimitLeft) {
  Put({DirectRow("PX", 1, "COLA").Price("8").AtMost("2")});
  LoadRule("PTXS", "PX", R"(Primary="DZ")");

  const Answer sale = Run("All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  // Two on the first visit. On the second the earlier lines hold none of the two, so that the last one is served as
  // well.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: PX on 3.00 gives 6.00"));
  EXPECT_THAT(SharesOf(sale.Out), ElementsAre("1 COLA: PX on 2.00 gives 4.00"));
}

TEST_F(Modes, FullAmountRulesArePassedOverInTheLineModesWithoutALogEntry) {
  LoadRule("MZMJ", "M1");
  LoadRule("MZMJ", "M2", R"(Primary="DZ")");

  Run("All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  EXPECT_THAT(TakeLog(), ElementsAre("All", "till:2\n", "开始初始化流水", "初始化流水完成", "计算模式为ALL时"));
}

// --- The skip test ---------------------------------------------------------------------------------------------------

/// Four rules, each for goods of its own, that differ in what their remark says.
class SkipTest : public Modes {
 protected:
  void SetUp() override {
    Modes::SetUp();
    Put({DirectRow("PLAIN", 1, "A").Price("8"), DirectRow("DV", 1, "B").Price("8"), DirectRow("NV", 1, "C").Price("8"),
         DirectRow("OTHER", 1, "D").Price("8")});
    LoadRule("PTXS", "PLAIN", R"(JzDate="4" Remark="")");
    LoadRule("PTXS", "DV", R"(JzDate="3" Remark="DVCZK")");
    LoadRule("PTXS", "NV", R"(JzDate="2" Remark="NVCZK")");
    LoadRule("PTXS", "OTHER", R"(JzDate="1" Remark="dvczk")");
    TakeLog();
  }
  static std::string SaleOfKind(const std::string& isCalc) {
    return SaleXml(LineXml(1, "A", "10", "1", "10") + LineXml(2, "B", "10", "1", "10") +
                       LineXml(3, "C", "10", "1", "10") + LineXml(4, "D", "10", "1", "10"),
                   "", isCalc);
  }
};

TEST_F(SkipTest, ASaleOfKindZeroRunsAllRulesButTheTwoWithAWord) {
  EXPECT_THAT(DiscountsOf(Run("All", SaleOfKind("0")).Out),
              ElementsAre("1 A: PLAIN on 1.00 gives 2.00", "4 D: OTHER on 1.00 gives 2.00"));
}

TEST_F(SkipTest, ASaleOfKindOneRunsTheRulesOfTheFirstWordAlone) {
  EXPECT_THAT(DiscountsOf(Run("All", SaleOfKind("1")).Out), ElementsAre("2 B: DV on 1.00 gives 2.00"));
}

TEST_F(SkipTest, ASaleOfKindTwoRunsTheRulesOfTheSecondWordAlone) {
  EXPECT_THAT(DiscountsOf(Run("All", SaleOfKind("2")).Out), ElementsAre("3 C: NV on 1.00 gives 2.00"));
}

TEST_F(SkipTest, ASaleOfAnyOtherKindRunsAllRules) {
  for (const std::string kind : {"3", "", "00", "1 "}) {
    EXPECT_THAT(DiscountsOf(Run("All", SaleOfKind(kind)).Out),
                ElementsAre("1 A: PLAIN on 1.00 gives 2.00", "2 B: DV on 1.00 gives 2.00", "3 C: NV on 1.00 gives 2.00",
                            "4 D: OTHER on 1.00 gives 2.00"))
        << kind;
  }
}

TEST_F(SkipTest, ASaleWithoutAKindRunsAllRules) {
  const Answer sale = Run("All", R"(<Sale OrgCode="S01"><Plu>)" + LineXml(2, "B", "10", "1", "10") + "</Plu></Sale>");

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("2 B: DV on 1.00 gives 2.00"));
}

TEST_F(SkipTest, EveryModeWithTheTestSkipsTheSameRules) {
  for (const std::string mode : {"Union", "Zh", "Single", "MzPromotion", "All"}) {
    TakeLog();
    Calc(mode, mode, SaleXml(LineXml(1, "A", "10", "1", "10"), "", "1"));
    const auto log = TakeLog();
    EXPECT_TRUE(Holds(log, "PLAIN")) << mode;
    EXPECT_TRUE(Holds(log, "NV")) << mode;
    EXPECT_TRUE(Holds(log, "OTHER")) << mode;
    EXPECT_FALSE(Holds(log, "DV")) << mode;
  }
}

TEST_F(SkipTest, ModesWithoutTheTestSkipNone) {
  for (const std::string mode : {"Gift", "Pay", "Coupon"}) {
    TakeLog();
    Run(mode, SaleOfKind("1"));
    EXPECT_FALSE(Holds(TakeLog(), "跳过促销")) << mode;
  }
}

TEST_F(Modes, ASkippedRuleIsLoggedOnceAPassInTwoEntriesBeforeThePassesOwnFilters) {
  LoadRule("MZMJ", "M1");
  const std::string sale = SaleXml(LineXml(1, "COLA", "10", "3", "30"), "", "2");
  TakeLog();

  Run("All", sale);
  EXPECT_THAT(TakeLog(), ElementsAre("All", "till:1\n", "开始初始化流水", "初始化流水完成", "计算模式为ALL时",
                                     "跳过促销", "M1", "跳过促销", "M1", "跳过促销", "M1", "跳过促销", "M1"));
  Run("Union", sale);
  EXPECT_THAT(TakeLog(), ElementsAre("Union", "till:1\n", "开始初始化流水", "初始化流水完成", "计算模式为Union时",
                                     "跳过促销", "M1", "跳过促销", "M1", "跳过促销", "M1"));
  Run("Zh", sale);
  EXPECT_THAT(TakeLog(),
              ElementsAre("Zh", "till:1\n", "开始初始化流水", "初始化流水完成", "计算模式为Zh时", "跳过促销", "M1"));
  Run("MzPromotion", sale);
  EXPECT_THAT(TakeLog(), ElementsAre("MzPromotion", "till:1\n", "开始初始化流水", "初始化流水完成", "跳过促销", "M1"));
  Run("Single", sale);
  EXPECT_THAT(TakeLog(), ElementsAre("Single", "till:1\n", "开始初始化流水", "初始化流水完成", "跳过促销", "M1",
                                     "获取一个销售流水经过计算之后的xml"));
}

TEST_F(Modes, ARuleWithoutARemarkHasAnEmptyOne) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  const std::string rule = R"(<Rules><Rule BillNo="X1" ProType="PTXS" ProMode="PT" Primary="PT">)" +
                           std::string(kEveryOrganisation) + kEveryDay + "</Rule></Rules>";
  ASSERT_EQ(Load("PTXS", rule).Code, 0);
  const std::string line = LineXml(1, "COLA", "10", "3", "30");

  EXPECT_THAT(DiscountsOf(Run("All", SaleXml(line, "", "0")).Out), ElementsAre("1 COLA: X1 on 3.00 gives 6.00"));
  EXPECT_THAT(DiscountsOf(Run("All", SaleXml(line, "", "1")).Out), IsEmpty());
}

// --- The reset -------------------------------------------------------------------------------------------------------

TEST_F(Modes, AllTwiceWithTheSameSaleGivesTheSameResult) {
  Put({DirectRow("X1", 1, "COLA").PercentOff("20")});
  LoadRule("PTXS", "X1");
  const std::string sale = SaleXml(LineXml(1, "COLA", "10", "3", "30"));

  const std::string first = Run("All", sale).Out;
  const std::string second = Run("All", sale).Out;

  EXPECT_THAT(LinesOf(second), ElementsAre("1 COLA 3.00 x 10.00 = 24.00"));
  EXPECT_EQ(first, second);
}

TEST_F(Modes, AllWithoutLinesInItsXmlCalculatesOnTopOfTheEarlierResult) {
  Put({DirectRow("X1", 1, "COLA").PercentOff("20")});
  LoadRule("PTXS", "X1");
  Run("All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  const Answer sale = Run("All", R"(<Sale IsCalc="0"/>)");

  // 30 - 6 = 24.00, and 20 percent off that.
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 19.20"));
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 3.00 gives 4.80"));
}

TEST_F(Modes, ZhWipesTheDiscountsOfAnEarlierAllAndLeavesTheAmounts) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("PTXS", "X1");
  Run("All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  const Answer sale = Run("Zh", SaleXml(LineXml(2, "TEA", "2", "1", "2")));

  EXPECT_THAT(DiscountsOf(sale.Out), IsEmpty());
  EXPECT_THAT(SharesOf(sale.Out), IsEmpty());
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 24.00", "2 TEA 1.00 x 2.00 = 2.00"));
  EXPECT_EQ(RowWhere(sale.Out, "Plu", "SerialNo", "1")["DisNum"], "3.00");
}

TEST_F(Modes, TheLineModesEmptyOffersAndCouponsThoseToo) {
  const std::string coupon = R"(<Coupon><D BillNo="C1" CouponValue="5"/></Coupon>)";
  const std::string offer = R"(<ProGifts><D ProBillNo="G1" Total="9"><R SerialNo="1"/></D></ProGifts>)";
  const std::string sale = SaleXml(LineXml(1, "COLA", "10", "3", "30"), coupon + offer);
  for (const std::string mode : {"All", "Union", "Zh"}) {
    const std::string kept = Run("MzPromotion", sale).Out;
    EXPECT_FALSE(RowsOf(kept, "ProCoupons").empty());
    EXPECT_FALSE(RowsOf(kept, "ProGifts").empty());

    const std::string emptied = Run(mode, R"(<Sale IsCalc="0"/>)").Out;
    EXPECT_THAT(RowsOf(emptied, "ProCoupons"), IsEmpty()) << mode;
    EXPECT_THAT(RowsOf(emptied, "ProGifts"), IsEmpty()) << mode;

    // The sale is read first and reset then.
    const std::string sent = Run(mode, sale).Out;
    EXPECT_THAT(RowsOf(sent, "ProCoupons"), IsEmpty()) << mode;
    EXPECT_THAT(RowsOf(sent, "ProGifts"), IsEmpty()) << mode;
  }
}

TEST_F(Modes, TheLineModesKeepWhatBelongsToTheWholeSale) {
  LoadRule("MZZF", "F1", "", kCardGroups);
  const std::string line = LineXml(1, "COLA", "10", "6", "60");
  EXPECT_THAT(DiscountsOf(Run("Pay", SaleXml(line, kPaidByCard)).Out),
              ElementsAre("*: F1 on 45.00 gives 5.00", "1 COLA: F1 on 0.00 gives 5.00"));

  EXPECT_THAT(DiscountsOf(Run("All", SaleXml(line)).Out), ElementsAre("*: F1 on 45.00 gives 5.00"));
}

TEST_F(Modes, TheLineModesKeepPaymentsAndMembers) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("PTXS", "X1", "",
           R"(<Vip><Row VipType="GOLD"/></Vip><PayMode><Row PayMode="CARD" PayMoney="0"/></PayMode>)");
  const std::string line = LineXml(1, "COLA", "10", "3", "30");
  Run("All", SaleXml(line, kPaidByCard + std::string(R"(<Vip><D VipType="GOLD"/></Vip>)")));

  EXPECT_THAT(DiscountsOf(Run("All", SaleXml(line)).Out), ElementsAre("1 COLA: X1 on 3.00 gives 6.00"));
}

TEST_F(Modes, MzPromotionResetsNothing) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("PTXS", "X1");
  Run("All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  for (const std::string mode : {"MzPromotion", "Gift", "Pay", "Coupon"}) {
    EXPECT_THAT(DiscountsOf(Run(mode, "<Sale/>").Out), ElementsAre("1 COLA: X1 on 3.00 gives 6.00")) << mode;
  }
}

// --- Single ----------------------------------------------------------------------------------------------------------

TEST_F(Modes, SingleGivesNothingBeforeAnAllHasReadTheRows) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("PTXS", "X1");
  const std::string scan = SaleXml(LineXml(1, "COLA", "10", "3", "30"));

  EXPECT_THAT(DiscountsOf(Run("Single", scan).Out), IsEmpty());

  Calc("other", "All", scan);
  const Answer sale = Run("Single", scan);
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 24.00"));
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 3.00 gives 6.00"));
}

TEST_F(Modes, SingleSeesTheRowsOfTheLastAllOnly) {
  Put({DirectRow("X1", 1, "COLA").Price("8"), DirectRow("X1", 2, "FANTA").Price("8")});
  LoadRule("PTXS", "X1");
  const std::string cola = SaleXml(LineXml(1, "COLA", "10", "1", "10"));
  const std::string fanta = SaleXml(LineXml(1, "FANTA", "10", "1", "10"));

  Calc("other", "All", cola);
  EXPECT_THAT(DiscountsOf(Run("Single", cola).Out), ElementsAre("1 COLA: X1 on 1.00 gives 2.00"));
  EXPECT_THAT(DiscountsOf(Run("Single", fanta).Out), IsEmpty());

  Calc("other", "All", fanta);
  EXPECT_THAT(DiscountsOf(Run("Single", cola).Out), IsEmpty());
  EXPECT_THAT(DiscountsOf(Run("Single", fanta).Out), ElementsAre("1 FANTA: X1 on 1.00 gives 2.00"));
}

TEST_F(Modes, SingleGivesNothingAfterAnAllThatTheRuleRefused) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS", "",
                                 R"(<OrgFilter><Row OrgCode="S01"/></OrgFilter>)" + std::string(kEveryDay), true))
                .Code,
            0);
  const std::string scan = SaleXml(LineXml(1, "COLA", "10", "3", "30"));
  Calc("other", "All", scan);
  EXPECT_THAT(DiscountsOf(Run("Single", scan).Out), ElementsAre("1 COLA: X1 on 3.00 gives 6.00"));

  Calc("abroad", "All",
       R"(<Sale OrgCode="S99" IsCalc="0"><Plu>)" + LineXml(1, "COLA", "10", "3", "30") + "</Plu></Sale>");

  EXPECT_THAT(DiscountsOf(Run("Single", scan).Out), IsEmpty());
}

TEST_F(Modes, SingleDoesNotAskWhenWhereAndForWhom) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS", "",
                                 R"(<OrgFilter><Row OrgCode="S01"/></OrgFilter>)" + std::string(kEveryDay), true))
                .Code,
            0);
  Calc("other", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  const Answer sale =
      Run("Single", R"(<Sale OrgCode="S99" IsCalc="0"><Plu>)" +
                        LineXml(1, "COLA", "10", "3", "30", R"(SaleDate="1999-01-01")") + "</Plu></Sale>");

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 3.00 gives 6.00"));
}

TEST_F(Modes, SingleKeepsTheTradesMaximumOverTheLinesScannedBefore) {
  Put({DirectRow("X1", 1, "COLA").Price("8").AtMost("3")});
  LoadRule("PTXS", "X1");
  Calc("other", "All", SaleXml(LineXml(1, "COLA", "10", "1", "10")));

  EXPECT_THAT(DiscountsOf(Run("Single", SaleXml(LineXml(1, "COLA", "10", "2", "20"))).Out),
              ElementsAre("1 COLA: X1 on 2.00 gives 4.00"));
  EXPECT_THAT(DiscountsOf(Run("Single", SaleXml(LineXml(2, "COLA", "10", "2", "20"))).Out),
              ElementsAre("2 COLA: X1 on 1.00 gives 2.00"));
  EXPECT_THAT(DiscountsOf(Run("Single", SaleXml(LineXml(3, "COLA", "10", "2", "20"))).Out), IsEmpty());
}

TEST_F(Modes, SingleDoesNotCutToTheLimitByMoney) {
  Put({DirectRow("X1", 1, "TV").MoneyOff("80")});
  LoadRule("PTXS", "X1", R"(MaxYhType="1" MaxYhValue="50")");
  const std::string scan = SaleXml(LineXml(1, "TV", "100", "1", "100"));

  EXPECT_THAT(DiscountsOf(Run("All", scan).Out), ElementsAre("1 TV: X1 on 1.00 gives 50.00"));
  EXPECT_THAT(DiscountsOf(Run("Single", scan).Out), ElementsAre("1 TV: X1 on 1.00 gives 80.00"));
}

TEST_F(Modes, SingleWithoutLinesInItsXmlWorksOnTheFirstLine) {
  Run("Single", SaleXml(LineXml(7, "COLA", "10", "1", "10")));
  Run("Single", SaleXml(LineXml(8, "TEA", "2", "1", "2")));

  EXPECT_THAT(LinesOf(Run("Single", "<Sale/>").Out), ElementsAre("7 COLA 1.00 x 10.00 = 10.00"));
}

TEST_F(Modes, ALineThatIsScannedAgainStartsAgain) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("PTXS", "X1");
  Calc("other", "All", SaleXml(LineXml(1, "COLA", "10", "1", "10")));
  Run("Single", SaleXml(LineXml(1, "COLA", "10", "1", "10")));

  const Answer sale = Run("Single", SaleXml(LineXml(1, "COLA", "10", "2", "20")));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 2.00 x 10.00 = 16.00"));
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 2.00 gives 4.00"));
}

// --- MzPromotion -----------------------------------------------------------------------------------------------------

TEST_F(Modes, MzPromotionTwiceWithoutAnAllBetweenGivesItsReductionOnce) {
  Sql("insert into tpromzlist values ('M1','1','ALL','ALL',0,'0');"
      "insert into tProMzDiscountAct values ('M1','1','PRC',10,5,1000,0,0)");
  LoadRule("MZMJ", "M1");
  Run("All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  EXPECT_THAT(DiscountsOf(Run("MzPromotion", "<Sale/>").Out), ElementsAre("1 COLA: M1 on 3.00 gives 5.00"));
  const Answer again = Run("MzPromotion", "<Sale/>");

  EXPECT_THAT(DiscountsOf(again.Out), ElementsAre("1 COLA: M1 on 3.00 gives 5.00"));
  EXPECT_THAT(LinesOf(again.Out), ElementsAre("1 COLA 3.00 x 10.00 = 25.00"));
}

TEST_F(Modes, WhatBelongsToTheWholeSaleClosesItToOrdinaryFullAmountRulesButNotToExtraOnes) {
  Sql("insert into tpromzlist values ('MP','1','ALL','ALL',0,'0'),('ME','1','ALL','ALL',0,'0');"
      "insert into tProMzDiscountAct values ('MP','1','PRC',10,5,1000,0,0),('ME','1','PRC',10,3,1000,0,0)");
  LoadRule("MZZF", "F1", "", kCardGroups);
  LoadRule("MZMJ", "MP", R"(Primary="PT")");
  LoadRule("MZMJ", "ME", R"(Primary="DJ")");
  Run("Pay", SaleXml(LineXml(1, "COLA", "10", "6", "60"), kPaidByCard));

  const Answer sale = Run("MzPromotion", R"(<Sale IsCalc="0"/>)");

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("*: F1 on 45.00 gives 5.00", "1 COLA: F1 on 0.00 gives 5.00",
                                                 "1 COLA: ME on 6.00 gives 3.00"));
}

TEST_F(Modes, WhatAnExclusiveRuleDidToTheWholeSaleClosesItToEveryFullAmountRule) {
  Sql("insert into tpromzlist values ('ME','1','ALL','ALL',0,'0');"
      "insert into tProMzDiscountAct values ('ME','1','PRC',10,3,1000,0,0)");
  LoadRule("MZZF", "F1", R"(Primary="DZ")", kCardGroups);
  LoadRule("MZMJ", "ME", R"(Primary="DJ")");
  Run("Pay", SaleXml(LineXml(1, "COLA", "10", "6", "60"), kPaidByCard));

  EXPECT_THAT(DiscountsOf(Run("MzPromotion", R"(<Sale IsCalc="0"/>)").Out),
              ElementsAre("*: F1 on 45.00 gives 5.00", "1 COLA: F1 on 0.00 gives 5.00"));
}

TEST_F(Modes, WhatARuleOfTheSameNumberDidToTheWholeSaleClosesItToTheRule) {
  Sql("insert into tpromzlist values ('F1','1','ALL','ALL',0,'0');"
      "insert into tProMzDiscountAct values ('F1','1','PRC',10,3,1000,0,0)");
  LoadRule("MZZF", "F1", R"(Primary="DJ")", kCardGroups);
  Run("Pay", SaleXml(LineXml(1, "COLA", "10", "6", "60"), kPaidByCard));
  LoadRule("MZMJ", "F1", R"(Primary="DJ")");

  EXPECT_THAT(DiscountsOf(Run("MzPromotion", R"(<Sale IsCalc="0"/>)").Out),
              ElementsAre("*: F1 on 45.00 gives 5.00", "1 COLA: F1 on 0.00 gives 5.00"));
}

TEST_F(Modes, DiscountsOutliveTheirRule) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("PTXS", "X1");
  Run("All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));
  ASSERT_EQ(Clear("*").Code, 0);
  LoadRule("MZMJ", "OTHER");

  const std::string sale = Run("MzPromotion", "<Sale/>").Out;

  EXPECT_THAT(DiscountsOf(sale), ElementsAre("1 COLA: X1 on 3.00 gives 6.00"));
  EXPECT_EQ(RowWhere(sale, "ProResult", "ProBillNo", "X1")["ProType"], "PTXS");
}

TEST_F(Modes, ACouponGivingRuleRunsInMzPromotionHoweverItWasLoaded) {
  ASSERT_EQ(Load("MZYQ", RuleXml("Q1", "MZZQ", "", R"(<ProList ConAreaType="ALL"/>)")).Code, 0);
  TakeLog();

  Run("MzPromotion", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  EXPECT_THAT(TakeLog(), ::testing::Contains(StartsWith("赠券方案个数")));
}

// --- Gift ------------------------------------------------------------------------------------------------------------

/// Gifts come back by the number of a rule, whatever its type.
class GiftMode : public Modes {
 protected:
  void SetUp() override {
    Modes::SetUp();
    LoadRule("PTXS", "G1");
    TakeLog();
  }
  static std::string Choice(const std::string& rows, const std::string& billNo = "G1") {
    return SaleXml("", "<ProGifts><D ProBillNo=\"" + billNo + "\" Total=\"100\">" + rows + "</D></ProGifts>");
  }
};

TEST_F(GiftMode, WithoutOffersAllIsWell) {
  const Answer sale = Run("Gift", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 30.00"));
  EXPECT_THAT(TakeLog(), ElementsAre("Gift", "till:1\n", "开始初始化流水", "初始化流水完成", "赠品返回数据计算"));
}

TEST_F(GiftMode, AChoiceUsesUpTheOffersMoney) {
  const Answer sale =
      Run("Gift", Choice(R"(<R SerialNo="1" DscPrice="5" BaseConNum="30" BaseDscNum="1" HgPluCount="2"/>)"
                         R"(<R SerialNo="2" DscPrice="5" BaseConNum="50" BaseDscNum="1"/>)"));

  // Twice 30 of 100: 40 left, enough for the first tier and not for the second.
  const Row offer = RowWhere(sale.Out, "ProGifts", "ProBillNo", "G1");
  EXPECT_EQ(offer["Total"], "100.00");
  EXPECT_EQ(offer["LeftTotal"], "40.00");
  EXPECT_EQ(offer["UsedTotal"], "60.00");
  ASSERT_EQ(OffersOf(sale.Out).size(), 1U);
  const std::vector<Row> rows = OffersOf(sale.Out).front().Rows;
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0]["SerialNo"], "2");
  EXPECT_EQ(rows[0]["CanPart"], "0");
  EXPECT_EQ(rows[1]["SerialNo"], "1");
  EXPECT_EQ(rows[1]["CanPart"], "1");
}

TEST_F(GiftMode, AChoiceAboveTheMostThatMayBePickedIsRefused) {
  const Answer sale = Calc("till", "Gift", Choice(R"(<R SerialNo="1" BaseDscNum="1" SaleMaxIn="2" HgPluCount="3"/>)"));

  EXPECT_EQ(sale.Code, -3);
  EXPECT_EQ(sale.Msg, "number overflow");
  EXPECT_EQ(sale.Out, "(untouched)");
}

TEST_F(GiftMode, AChoiceAboveTheOffersMoneyIsRefusedAndTheOfferKeepsItsValues) {
  const Answer sale =
      Calc("till", "Gift", Choice(R"(<R SerialNo="1" DscPrice="5" BaseConNum="30" BaseDscNum="1" HgPluCount="4"/>)"));

  EXPECT_EQ(sale.Code, -2);
  EXPECT_EQ(sale.Msg, "total overflow");
  EXPECT_EQ(sale.Out, "(untouched)");
  const Row offer = RowWhere(Calc("till", "MzPromotion", "<Sale/>").Out, "ProGifts", "ProBillNo", "G1");
  EXPECT_EQ(offer["Total"], "100.00");
  EXPECT_EQ(offer["LeftTotal"], "0.00");
  EXPECT_EQ(offer["UsedTotal"], "0.00");
}

TEST_F(GiftMode, AnOfferOfNoRuleIsNotLookedAt) {
  const Answer sale = Run("Gift", Choice(R"(<R SerialNo="1" SaleMaxIn="2" HgPluCount="3" CanPart="7"/>)", "G2"));

  EXPECT_EQ(RowWhere(sale.Out, "ProGifts", "ProBillNo", "G2")["LeftTotal"], "0.00");
}

// --- Pay and Coupon --------------------------------------------------------------------------------------------------

TEST_F(Modes, PayHasNoSkipTest) {
  LoadRule("MZZF", "F1", R"(Remark="DVCZK")", kCardGroups);
  TakeLog();

  const Answer sale = Run("Pay", SaleXml(LineXml(1, "COLA", "10", "6", "60"), kPaidByCard, "0"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("*: F1 on 45.00 gives 5.00", "1 COLA: F1 on 0.00 gives 5.00"));
  EXPECT_EQ(Count(TakeLog(), "进入Pay节"), 1);
}

TEST_F(Modes, PayRunsPaymentRulesAlone) {
  LoadRule("PTXS", "X1");
  LoadRule("ZHZY", "Z1");
  LoadRule("MZMJ", "M1");
  TakeLog();

  Run("Pay", SaleXml(LineXml(1, "COLA", "10", "6", "60"), kPaidByCard));

  EXPECT_THAT(TakeLog(), ElementsAre("Pay", "till:3\n", "开始初始化流水", "初始化支付对象", "读到支付对象，开始初始化",
                                     "初始化流水完成", "进入Pay节"));
}

TEST_F(Modes, CouponComesToNothingOnRulesOfOtherTypes) {
  LoadRule("PTXS", "X1");
  LoadRule("ZHZY", "Z1");
  LoadRule("MZMJ", "M1");
  LoadRule("MZZF", "F1", "", kCardGroups);
  TakeLog();

  const Answer sale = Run(
      "Coupon", SaleXml(LineXml(1, "COLA", "10", "6", "60"), R"(<Coupon><D BillNo="C1" CouponValue="5"/></Coupon>)"));

  EXPECT_THAT(DiscountsOf(sale.Out), IsEmpty());
  EXPECT_EQ(RowsOf(sale.Out, "ProCoupons").size(), 1U);
  EXPECT_THAT(TakeLog(), ElementsAre("Coupon", "till:4\n", "开始初始化流水", "初始化流水完成", "满赠用券"));
}

}  // namespace
}  // namespace Corvane::Testing
