#include <gmock/gmock.h>

#include <algorithm>

#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Entries = std::vector<std::string>;

/// When, where, for whom and for what payment a rule applies, and what the log says about it.
class Filters : public Till {
 protected:
  void SetUp() override {
    Till::SetUp();
    MakeTables();
  }

  /// What the log says between the start of the mode's work and the reading of the rule's rows.
  static Entries Verdict(const std::string& rule, const std::string& sale) {
    Clear("*");
    ClearSales();
    EXPECT_EQ(Load("PTXS", rule).Code, 0);
    TakeLog();
    EXPECT_EQ(Calc("till", "All", sale).Code, 0);
    return Cut(TakeLog(), "计算模式为ALL时", "获取普通类促销详情成功X1");
  }
  static Entries Cut(const Entries& log, const std::string& after, const std::string& before) {
    const auto begin = std::find(log.begin(), log.end(), after);
    if (begin == log.end()) return log;
    return {begin + 1, std::find(begin, log.end(), before)};
  }
  static std::string Rule(const std::string& groups) { return RuleXml("X1", "PTXS", "", groups, true); }
  static std::string Sale(const std::string& more = "", const std::string& groups = "") {
    return SaleXml(LineXml(1, "COLA", "10", "1", "10", more), groups);
  }

  /// Whether a rule with this row of times applies to a sale at this date and time.
  static bool InTime(const std::string& row, const std::string& date, const std::string& time = "10:00:00") {
    const std::string rule = Rule(std::string(kEveryOrganisation) + "<ProTime><Row " + row + "/></ProTime>");
    const Entries verdict = Verdict(rule, Sale("SaleDate=\"" + date + "\" SaleTime=\"" + time + "\""));
    if (verdict == kPassed) return true;
    EXPECT_THAT(verdict, ElementsAre("时间条件不满足"));
    return false;
  }
  static Entries Members(const std::string& rows, const std::string& members) {
    return Verdict(RuleXml("X1", "PTXS", "", "<Vip>" + rows + "</Vip>"), Sale("", "<Vip>" + members + "</Vip>"));
  }
  static Entries Payments(const std::string& rows, const std::string& payments) {
    return Verdict(RuleXml("X1", "PTXS", "", "<PayMode>" + rows + "</PayMode>"),
                   Sale("", "<PayMode>" + payments + "</PayMode>"));
  }

  inline static const Entries kPassed = {"时间满足", "组织满足", "会员满足", "所有基本条件都被判断过，满足"};
};

// --- When ------------------------------------------------------------------------------------------------------------

TEST_F(Filters, ARuleWithoutTimesIsRefusedWithoutAWord) {
  EXPECT_THAT(Verdict(Rule(kEveryOrganisation), Sale()), IsEmpty());
  EXPECT_THAT(Verdict(Rule(std::string(kEveryOrganisation) + "<ProTime/>"), Sale()), IsEmpty());
}

TEST_F(Filters, TheFirstAndTheLastDayBelongToTheTime) {
  EXPECT_TRUE(InTime(R"(StartDate="2026-11-21" EndDate="2026-11-21" Frequency="DAY")", "2026-11-21"));
  EXPECT_FALSE(InTime(R"(StartDate="2026-11-21" EndDate="2026-11-21" Frequency="DAY")", "2026-11-20"));
  EXPECT_FALSE(InTime(R"(StartDate="2026-11-21" EndDate="2026-11-21" Frequency="DAY")", "2026-11-22"));
}

TEST_F(Filters, OneRowOfSeveralIsEnough) {
  const std::string never = R"(<Row StartDate="1999-01-01" EndDate="1999-12-31" Frequency="DAY"/>)";
  const std::string always = R"(<Row StartDate="2000-01-01" EndDate="2099-12-31" Frequency="DAY"/>)";

  EXPECT_EQ(Verdict(Rule(kEveryOrganisation + ("<ProTime>" + never + always + "</ProTime>")), Sale()), kPassed);
  EXPECT_EQ(Verdict(Rule(kEveryOrganisation + ("<ProTime>" + always + never + "</ProTime>")), Sale()), kPassed);
}

TEST_F(Filters, AWeekdayIsCountedFromSundayAsZero) {
  // 2026-11-22 is a Sunday, 2026-11-21 a Saturday.
  const std::string weekend = R"(StartDate="2000-01-01" EndDate="2099-12-31" Frequency="WEEK" WeekDays="0,6")";
  EXPECT_TRUE(InTime(weekend, "2026-11-22"));
  EXPECT_TRUE(InTime(weekend, "2026-11-21"));
  EXPECT_FALSE(InTime(weekend, "2026-11-20"));
  EXPECT_FALSE(InTime(weekend, "2026-11-23"));
}

TEST_F(Filters, WeekdaysHoldOverLeapYearsAndCenturies) {
  const std::vector<std::pair<std::string, std::string>> days = {
      {"1901-01-01", "2"}, {"1904-02-29", "1"}, {"1904-03-01", "2"}, {"2000-02-29", "2"},
      {"2000-12-31", "0"}, {"2023-12-31", "0"}, {"2024-01-01", "1"}, {"2024-02-29", "4"},
      {"2024-03-01", "5"}, {"2025-03-01", "6"}, {"2100-02-28", "0"}, {"2100-03-01", "1"}};
  for (const auto& [date, weekday] : days) {
    const std::string row = R"(StartDate="1900-01-01" EndDate="2199-12-31" Frequency="WEEK" WeekDays=")";
    EXPECT_TRUE(InTime(row + weekday + "\"", date)) << date;
    const std::string other = weekday == "0" ? "1,2,3,4,5,6" : "0";
    EXPECT_FALSE(InTime(row + other + "\"", date)) << date;
  }
}

TEST_F(Filters, SevenIsNoWeekdayAndNoWeekdaysAreNone) {
  EXPECT_FALSE(InTime(R"(StartDate="2000-01-01" EndDate="2099-12-31" Frequency="WEEK" WeekDays="7")", "2026-11-22"));
  EXPECT_FALSE(InTime(R"(StartDate="2000-01-01" EndDate="2099-12-31" Frequency="WEEK" WeekDays="")", "2026-11-22"));
  EXPECT_FALSE(InTime(R"(StartDate="2000-01-01" EndDate="2099-12-31" Frequency="WEEK")", "2026-11-22"));
}

TEST_F(Filters, AnyOtherFrequencyIsEveryDayWhateverTheDaysSay) {
  EXPECT_TRUE(InTime(R"(StartDate="2000-01-01" EndDate="2099-12-31" Frequency="week" WeekDays="1")", "2026-11-22"));
  EXPECT_TRUE(InTime(R"(StartDate="2000-01-01" EndDate="2099-12-31" Frequency="MONTH" MonthDays="1")", "2026-11-22"));
}

TEST_F(Filters, TheFirstAndTheLastSecondBelongToTheTime) {
  const std::string morning =
      R"(StartDate="2000-01-01" EndDate="2099-12-31" Frequency="DAY" StartTime="08:00:00" EndTime="12:00:00")";
  EXPECT_TRUE(InTime(morning, "2026-11-21", "08:00:00"));
  EXPECT_TRUE(InTime(morning, "2026-11-21", "12:00:00"));
  EXPECT_FALSE(InTime(morning, "2026-11-21", "07:59:59"));
  EXPECT_FALSE(InTime(morning, "2026-11-21", "12:00:01"));
}

TEST_F(Filters, AStartWithoutAnEndIsNeverAndAnEndWithoutAStartIsAlways) {
  EXPECT_FALSE(
      InTime(R"(StartDate="2000-01-01" EndDate="2099-12-31" Frequency="DAY" StartTime="08:00:00")", "2026-11-21"));
  EXPECT_FALSE(InTime(R"(StartDate="2000-01-01" EndDate="2099-12-31" Frequency="DAY" StartTime="08:00:00" EndTime="")",
                      "2026-11-21"));
  EXPECT_TRUE(
      InTime(R"(StartDate="2000-01-01" EndDate="2099-12-31" Frequency="DAY" EndTime="08:00:00")", "2026-11-21"));
  EXPECT_TRUE(InTime(R"(StartDate="2000-01-01" EndDate="2099-12-31" Frequency="DAY" StartTime="" EndTime="08:00:00")",
                     "2026-11-21", "23:00:00"));
}

TEST_F(Filters, ARowWithoutItsDatesOrItsFrequencyMatchesNothing) {
  EXPECT_FALSE(InTime(R"(EndDate="2099-12-31" Frequency="DAY")", "2026-11-21"));
  EXPECT_FALSE(InTime(R"(StartDate="2000-01-01" Frequency="DAY")", "2026-11-21"));
  EXPECT_FALSE(InTime(R"(StartDate="2000-01-01" EndDate="2099-12-31")", "2026-11-21"));
}

TEST_F(Filters, ADateThatIsNoneIsNoWeekday) {
  const std::string row = R"(StartDate="" EndDate="zzzz" Frequency="WEEK" WeekDays="9")";
  for (const std::string date : {"", "-", "--", "x", "2026", "2026-13-01", "2026-00-00", "2026--1-1", "2147483647-1-1",
                                 "99999999999-99999999999-99999999999", "-2147483648-12-31"}) {
    EXPECT_FALSE(InTime(row, date)) << date;
  }
}

TEST_F(Filters, TheFirstLinesDateIsTheSales) {
  const std::string rule =
      Rule(kEveryOrganisation +
           std::string(R"(<ProTime><Row StartDate="2026-11-21" EndDate="2026-11-21" Frequency="DAY"/></ProTime>)"));
  const std::string today = LineXml(1, "COLA", "10", "1", "10");
  const std::string tomorrow = LineXml(2, "TEA", "2", "1", "2", R"(SaleDate="2026-11-22")");

  EXPECT_EQ(Verdict(rule, SaleXml(today + tomorrow)), kPassed);
  EXPECT_THAT(Verdict(rule, SaleXml(tomorrow + today)), ElementsAre("时间条件不满足"));
}

TEST_F(Filters, ASaleWithoutLinesIsOutOfTime) {
  EXPECT_THAT(Verdict(RuleXml("X1", "PTXS"), SaleXml("")), ElementsAre("时间条件不满足"));
}

/// The time stage of coupon use.
class CouponUseFilters : public Filters {
 protected:
  static Entries CouponVerdict(const std::string& groups) {
    EXPECT_EQ(Load("MZYQ", RuleXml("Q1", "MZYQ", "", groups, true)).Code, 0);
    TakeLog();
    EXPECT_EQ(Calc("till", "Coupon", Sale()).Code, 0);
    return Cut(TakeLog(), "满赠用券", "");
  }
};

TEST_F(CouponUseFilters, CouponUseWithoutTimesIsInTime) { EXPECT_EQ(CouponVerdict(kEveryOrganisation), kPassed); }

TEST_F(CouponUseFilters, CouponUseIsInTimeWhateverItsTimesSay) {
  EXPECT_EQ(
      CouponVerdict(
          kEveryOrganisation +
          std::string(R"(<ProTime><Row StartDate="1999-01-01" EndDate="1999-12-31" Frequency="DAY"/></ProTime>)")),
      kPassed);
}

TEST_F(CouponUseFilters, CouponUseIsRefusedByItsOtherFiltersLikeAnyRule) {
  EXPECT_THAT(CouponVerdict(R"(<OrgFilter><Row OrgCode="S99"/></OrgFilter>)"),
              ElementsAre("时间满足", "组织条件不满足"));
}

TEST_F(CouponUseFilters, CouponGivingHasNoSuchPrivilegeThoughItLoadsUnderTheSameWord) {
  ASSERT_EQ(Load("MZYQ", RuleXml("Q1", "MZZQ", "", kEveryOrganisation, true)).Code, 0);
  TakeLog();
  EXPECT_EQ(Calc("till", "MzPromotion", Sale()).Code, 0);

  EXPECT_THAT(Cut(TakeLog(), "初始化流水完成", ""), IsEmpty());
}

// --- Where -----------------------------------------------------------------------------------------------------------

TEST_F(Filters, ARuleWithoutOrganisationsIsRefusedWithoutAWord) {
  EXPECT_THAT(Verdict(Rule(kEveryDay), Sale()), ElementsAre("时间满足"));
}

TEST_F(Filters, TheSalesOrganisationMustBeNamed) {
  const auto at = [](const std::string& rows) {
    return Verdict(Rule(kEveryDay + ("<OrgFilter>" + rows + "</OrgFilter>")), Sale());
  };

  EXPECT_EQ(at(R"(<Row OrgCode="S99"/><Row OrgCode="S01"/>)"), kPassed);
  EXPECT_THAT(at(R"(<Row OrgCode="S99"/><Row OrgCode="s01"/>)"), ElementsAre("时间满足", "组织条件不满足"));
  EXPECT_THAT(at("<Row/>"), ElementsAre("时间满足", "组织条件不满足"));
}

TEST_F(Filters, AStarIsEveryOrganisationWhereverItStands) {
  const auto at = [](const std::string& rows) {
    return Verdict(Rule(kEveryDay + ("<OrgFilter>" + rows + "</OrgFilter>")), Sale());
  };

  EXPECT_EQ(at(R"(<Row OrgCode="A"/><Row OrgCode="*"/>)"), kPassed);
  EXPECT_EQ(at(R"(<Row OrgCode="*"/><Row OrgCode="A"/>)"), kPassed);
}

// --- For whom --------------------------------------------------------------------------------------------------------

TEST_F(Filters, AMemberOfANamedTypePasses) {
  EXPECT_EQ(Members(R"(<Row VipType="01"/><Row VipType="02"/>)", R"(<D VipType="01"/>)"), kPassed);
  EXPECT_EQ(Members(R"(<Row VipType="01"/>)", R"(<D VipType="09"/><D VipType="01"/>)"), kPassed);
}

TEST_F(Filters, AMemberOfNoNamedTypeIsRefused) {
  EXPECT_THAT(Members(R"(<Row VipType="01"/>)", R"(<D VipType="09"/>)"),
              ElementsAre("时间满足", "组织满足", "会员条件不满足"));
}

TEST_F(Filters, WithoutMembersAStarCountsOnlyInTheLastRow) {
  EXPECT_THAT(Members(R"(<Row VipType="*"/><Row VipType="01"/>)", ""), ElementsAre("时间满足", "组织满足"));
  EXPECT_EQ(Members(R"(<Row VipType="01"/><Row VipType="*"/>)", ""), kPassed);
}

TEST_F(Filters, WithMembersAStarCountsInEveryRow) {
  EXPECT_EQ(Members(R"(<Row VipType="*"/><Row VipType="01"/>)", R"(<D VipType="09"/>)"), kPassed);
}

// --- For what payment ------------------------------------------------------------------------------------------------

TEST_F(Filters, APaymentMustReachItsRowsMoneyUnlessItStatesNone) {
  const Entries refused = {"时间满足", "组织满足", "会员满足", "支付条件不满足"};
  const std::string row = R"(<Row PayMode="01" PayMoney="100"/>)";

  EXPECT_EQ(Payments(row, R"(<D PayMode="01" PayMoney="0.00"/>)"), kPassed);
  EXPECT_EQ(Payments(row, R"(<D PayMode="01"/>)"), kPassed);
  EXPECT_EQ(Payments(row, R"(<D PayMode="01" PayMoney="50.00"/>)"), refused);
  EXPECT_EQ(Payments(row, R"(<D PayMode="01" PayMoney="100.00"/>)"), kPassed);
}

TEST_F(Filters, APaymentOfAnotherKindIsRefused) {
  const Entries refused = {"时间满足", "组织满足", "会员满足", "支付条件不满足"};

  EXPECT_EQ(Payments(R"(<Row PayMode="01"/>)", R"(<D PayMode="02" PayMoney="100"/>)"), refused);
  EXPECT_EQ(Payments(R"(<Row PayMode="01"/>)", ""), refused);
}

TEST_F(Filters, AnyPaymentAndAnyRowMayMatch) {
  EXPECT_EQ(Payments(R"(<Row PayMode="01"/><Row PayMode="02" PayMoney="10"/>)",
                     R"(<D PayMode="03" PayMoney="1"/><D PayMode="02" PayMoney="10"/>)"),
            kPassed);
}

TEST_F(Filters, AStarIsEveryPaymentAndNone) {
  EXPECT_EQ(Payments(R"(<Row PayMode="*"/><Row PayMode="01"/>)", R"(<D PayMode="02" PayMoney="1"/>)"), kPassed);
  EXPECT_EQ(Payments(R"(<Row PayMode="*"/><Row PayMode="01"/>)", ""), kPassed);
}

TEST_F(Filters, ThePaymentsCardNumberIsNotTested) {
  EXPECT_EQ(Payments(R"(<Row PayMode="01" PayCardNo="6222"/>)", R"(<D PayMode="01" PayCardNo="9999" PayMoney="1"/>)"),
            kPassed);
}

// --- Rows of several rule elements, steps of payment rules -----------------------------------------------------------

TEST_F(Filters, FilterRowsOfAllRuleElementsAddUp) {
  const std::string rule = R"(<Rules><Rule BillNo="X1" ProType="PTXS" ProMode="PT" Primary="PT" Remark="">)" +
                           std::string(kEveryDay) + R"(<OrgFilter><Row OrgCode="S99"/></OrgFilter></Rule>)" +
                           R"(<Rule><OrgFilter><Row OrgCode="S01"/></OrgFilter></Rule></Rules>)";

  EXPECT_EQ(Verdict(rule, Sale()), kPassed);
}

TEST_F(Filters, StepsOfAWholePriceTakeThePriceOfTheirGroup) {
  const std::string groups =
      R"(<ProCtr><Row PayType="CARD" PriceTotal="1000"/></ProCtr>)"
      R"(<PluAction ActionType="TC" PrjTotal="30"><Row DisPrice="100" DisRate="20"/></PluAction>)";
  ASSERT_EQ(Load("MZZF", RuleXml("F1", "MZZF", "", groups)).Code, 0);

  const Answer sale =
      Calc("till", "Pay",
           SaleXml(LineXml(1, "COLA", "10", "6", "60"), R"(<PayMode><D PayMode="CARD" PayMoney="50"/></PayMode>)"));

  // One step of 30 (and not of 100) fits into 50: 30 - 20 = 10.00 back.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("*: F1 on 40.00 gives 10.00", "1 COLA: F1 on 0.00 gives 10.00"));
}

}  // namespace
}  // namespace Corvane::Testing
