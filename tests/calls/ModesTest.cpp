#include <gmock/gmock.h>

#include <algorithm>

#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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
};

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

TEST_F(Modes, GiftWithoutOffersSaysLittle) {
  LoadRule("PTXS", "G1");
  TakeLog();

  const Answer sale = Run("Gift", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 30.00"));
  EXPECT_THAT(TakeLog(), ElementsAre("Gift", "till:1\n", "开始初始化流水", "初始化流水完成", "赠品返回数据计算"));
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
