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
  static std::string Sale(const std::string& more = "") { return SaleXml(LineXml(1, "COLA", "10", "1", "10", more)); }

  /// Whether a rule with this row of times applies to a sale at this date.
  static bool InTime(const std::string& row, const std::string& date) {
    const std::string rule = Rule(std::string(kEveryOrganisation) + "<ProTime><Row " + row + "/></ProTime>");
    const Entries verdict = Verdict(rule, Sale("SaleDate=\"" + date + "\""));
    if (verdict == kPassed) return true;
    EXPECT_THAT(verdict, ElementsAre("时间条件不满足"));
    return false;
  }
  inline static const Entries kPassed = {"时间满足", "组织满足", "会员满足", "所有基本条件都被判断过，满足"};
};

TEST_F(Filters, ARuleWithoutTimesIsRefusedWithoutAWord) {
  EXPECT_THAT(Verdict(Rule(kEveryOrganisation), Sale()), IsEmpty());
  EXPECT_THAT(Verdict(Rule(std::string(kEveryOrganisation) + "<ProTime/>"), Sale()), IsEmpty());
}

TEST_F(Filters, ADateThatIsNoneIsNoWeekday) {
  const std::string row = R"(StartDate="" EndDate="zzzz" Frequency="WEEK" WeekDays="9")";
  for (const std::string date : {"", "-", "--", "x", "2026", "2026-13-01", "2026-00-00", "2026--1-1", "2147483647-1-1",
                                 "99999999999-99999999999-99999999999", "-2147483648-12-31"}) {
    EXPECT_FALSE(InTime(row, date)) << date;
  }
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

TEST_F(CouponUseFilters, CouponGivingHasNoSuchPrivilegeThoughItLoadsUnderTheSameWord) {
  ASSERT_EQ(Load("MZYQ", RuleXml("Q1", "MZZQ", "", kEveryOrganisation, true)).Code, 0);
  TakeLog();
  EXPECT_EQ(Calc("till", "MzPromotion", Sale()).Code, 0);

  EXPECT_THAT(Cut(TakeLog(), "初始化流水完成", ""), IsEmpty());
}

TEST_F(Filters, ARuleWithoutOrganisationsIsRefusedWithoutAWord) {
  EXPECT_THAT(Verdict(Rule(kEveryDay), Sale()), ElementsAre("时间满足"));
}

TEST_F(Filters, FilterRowsOfAllRuleElementsAddUp) {
  const std::string rule = R"(<Rules><Rule BillNo="X1" ProType="PTXS" ProMode="PT" Primary="PT" Remark="">)" +
                           std::string(kEveryDay) + R"(<OrgFilter><Row OrgCode="S99"/></OrgFilter></Rule>)" +
                           R"(<Rule><OrgFilter><Row OrgCode="S01"/></OrgFilter></Rule></Rules>)";

  EXPECT_EQ(Verdict(rule, Sale()), kPassed);
}

}  // namespace
}  // namespace Corvane::Testing
