// Whether a rule applies to a sale at all: the four stages, and what each of them logs.
#include <gtest/gtest.h>

#include "rule/ProBase.h"
#include "tests/unit/RuleFixture.h"

using Corvane::ProBase;
using Corvane::ProOrgFilter;
using Corvane::ProPayMode;
using Corvane::ProSale;
using Corvane::ProTime;
using Corvane::ProVip;
using Corvane::Text;
using ruletest::Entries;
using ruletest::Line;

namespace {

const Entries kPassed = {"时间满足", "组织满足", "会员满足", "所有基本条件都被判断过，满足"};

/// A rule that applies in every organisation in 2026, and a sale of organisation "A" on 2026-11-21 at 10:00:00.
class BaseCondition : public ruletest::WithLog {
 protected:
  BaseCondition() {
    m_rule.Info = ruletest::Rule("R1", "PTXS", "PT");
    m_rule.Times = {Days("2026-01-01", "2026-12-31")};
    m_rule.OrgFilters = {Org("*")};
    m_sale.OrgCode = "A";
    m_sale.Plus = {LineOn("2026-11-21", "10:00:00")};
  }

  static ProTime Days(Text startDate, Text endDate) {
    ProTime row;
    row.BillNo = "R1";
    row.StartDate = startDate;
    row.EndDate = endDate;
    row.Frequency = "DAY";
    return row;
  }
  static ProTime Past() { return Days("2020-01-01", "2020-12-31"); }
  static ProOrgFilter Org(Text code) { return {"R1", code}; }
  static ProVip Vip(Text type) { return {"R1", type}; }
  static ProPayMode Pay(Text mode, double money) { return {"R1", mode, nullptr, money}; }

  static Corvane::SalePlu LineOn(Text date, Text time) {
    Corvane::SalePlu line = Line("G1", 10, 1);
    line.SaleDate = date;
    line.SaleTime = time;
    return line;
  }

  bool Check() const { return m_rule.CheckBaseCondition(m_sale); }

  ProBase m_rule;
  ProSale m_sale;
};

TEST_F(BaseCondition, ANewRuleHasNoHeaderAndNoRows) {
  const ProBase rule;
  for (const Text text : {rule.Info.BillNo, rule.Info.OrgCode, rule.Info.ProType, rule.Info.ProMode,
                          rule.Info.ProStatus, rule.Info.Primary, rule.Info.JzDate}) {
    EXPECT_EQ(text, nullptr);
  }
  EXPECT_TRUE(rule.OrgFilters.empty());
  EXPECT_TRUE(rule.Times.empty());
  EXPECT_TRUE(rule.PayModes.empty());
  EXPECT_TRUE(rule.Vips.empty());
}

TEST_F(BaseCondition, TellsEachStageThatPasses) {
  EXPECT_TRUE(Check());
  EXPECT_EQ(Logged(), kPassed);
}

TEST_F(BaseCondition, TellsTheSameWithMemberAndPaymentRows) {
  m_rule.Vips = {Vip("01")};
  m_sale.Vips = {Vip("01")};
  m_rule.PayModes = {Pay("01", 100)};
  m_sale.Pays = {Pay("01", 100)};
  EXPECT_TRUE(Check());
  EXPECT_EQ(Logged(), kPassed);
}

TEST_F(BaseCondition, ARuleWithoutAnyRowsIsRefusedSilently) {
  EXPECT_FALSE(ProBase().CheckBaseCondition(m_sale));
  EXPECT_EQ(Logged(), Entries{});
}

// --- Time ------------------------------------------------------------------------------------------------------------

TEST_F(BaseCondition, WithoutTimeRowsIsRefusedSilently) {
  m_rule.Times.clear();
  EXPECT_FALSE(Check());
  EXPECT_EQ(Logged(), Entries{});
}

TEST_F(BaseCondition, WithoutAMatchingTimeRowIsRefused) {
  m_rule.Times = {Past(), Past()};
  EXPECT_FALSE(Check());
  EXPECT_EQ(Logged(), (Entries{"时间条件不满足"}));
}

TEST_F(BaseCondition, TheHourOfTheFirstLineIsAskedFor) {
  m_rule.Times[0].StartTime = "10:00:01";
  m_rule.Times[0].EndTime = "23:59:59";
  EXPECT_FALSE(Check());
  m_sale.Plus[0].SaleTime = "10:00:01";
  EXPECT_TRUE(Check());
}

TEST_F(BaseCondition, ACouponRuleWithoutTimeRowsPassesTheTime) {
  m_rule.Info.ProType = "MZYQ";
  m_rule.Times.clear();
  EXPECT_TRUE(Check());
  EXPECT_EQ(Logged(), kPassed);
}

TEST_F(BaseCondition, ACouponRuleHasItsOtherStages) {
  m_rule.Info.ProType = "MZYQ";
  m_rule.OrgFilters = {Org("B")};
  EXPECT_FALSE(Check());
  EXPECT_EQ(Logged(), (Entries{"时间满足", "组织条件不满足"}));
}

TEST_F(BaseCondition, ASaleWithoutLinesMeetsARuleWithoutTimeRowsSilently) {
  m_sale.Plus.clear();
  m_rule.Times.clear();
  EXPECT_FALSE(Check());
  EXPECT_EQ(Logged(), Entries{});
}

TEST_F(BaseCondition, ACouponRulePassesTheTimeOfASaleWithoutLines) {
  m_sale.Plus.clear();
  m_rule.Info.ProType = "MZYQ";
  EXPECT_TRUE(Check());
  EXPECT_EQ(Logged(), kPassed);
}

// --- Organisation ----------------------------------------------------------------------------------------------------

TEST_F(BaseCondition, WithoutOrganisationsIsRefusedSilently) {
  m_rule.OrgFilters.clear();
  EXPECT_FALSE(Check());
  EXPECT_EQ(Logged(), (Entries{"时间满足"}));
}

TEST_F(BaseCondition, AnotherOrganisationIsRefused) {
  m_rule.OrgFilters = {Org("B"), Org("a"), Org("A1")};
  EXPECT_FALSE(Check());
  EXPECT_EQ(Logged(), (Entries{"时间满足", "组织条件不满足"}));
}

TEST_F(BaseCondition, AStarIsEveryOrganisation) {
  m_rule.OrgFilters = {Org("B"), Org("*")};
  EXPECT_TRUE(Check());
  m_sale.OrgCode = nullptr;
  EXPECT_TRUE(Check());
}

TEST_F(BaseCondition, ANullOrganisationIsTheEmptyText) {
  m_rule.OrgFilters = {Org(nullptr)};
  EXPECT_FALSE(Check());
  m_sale.OrgCode = nullptr;
  EXPECT_TRUE(Check());
  m_sale.OrgCode = "";
  EXPECT_TRUE(Check());
}

// --- Members ---------------------------------------------------------------------------------------------------------

TEST_F(BaseCondition, AnotherMemberTypeIsRefused) {
  m_rule.Vips = {Vip("01"), Vip("02")};
  m_sale.Vips = {Vip("03"), Vip("1")};
  EXPECT_FALSE(Check());
  EXPECT_EQ(Logged(), (Entries{"时间满足", "组织满足", "会员条件不满足"}));
}

TEST_F(BaseCondition, ASaleWithoutMembersIsRefusedSilently) {
  m_rule.Vips = {Vip("01")};
  EXPECT_FALSE(Check());
  EXPECT_EQ(Logged(), (Entries{"时间满足", "组织满足"}));
}

TEST_F(BaseCondition, ANullMemberTypeIsTheEmptyText) {
  m_rule.Vips = {Vip(nullptr)};
  m_sale.Vips = {Vip("01")};
  EXPECT_FALSE(Check());
  m_sale.Vips = {Vip("")};
  EXPECT_TRUE(Check());
}

// --- Payment ---------------------------------------------------------------------------------------------------------

TEST_F(BaseCondition, WithoutAMatchingPaymentIsRefused) {
  m_rule.PayModes = {Pay("01", 100)};
  m_sale.Pays = {Pay("02", 200), Pay("01", 50)};
  EXPECT_FALSE(Check());
  EXPECT_EQ(Logged(), (Entries{"时间满足", "组织满足", "会员满足", "支付条件不满足"}));
}

// --- The member type under which the rule acts -----------------------------------------------------------------------

TEST_F(BaseCondition, TheMemberTypeIsEmptyWithoutMembersOrMemberRows) {
  EXPECT_STREQ(m_rule.MemberText(m_sale), "");
  m_rule.Vips = {Vip("*")};
  EXPECT_STREQ(m_rule.MemberText(m_sale), "");
  m_rule.Vips.clear();
  m_sale.Vips = {Vip("01")};
  EXPECT_STREQ(m_rule.MemberText(m_sale), "");
}

TEST_F(BaseCondition, AMemberTypeThatIsAbsentIsEmpty) {
  m_rule.Vips = {Vip("*")};
  m_sale.Vips = {Vip(nullptr)};
  EXPECT_STREQ(m_rule.MemberText(m_sale), "");
}

// --- The order of the stages -----------------------------------------------------------------------------------------

TEST_F(BaseCondition, TheFirstStageThatFailsEndsTheTest) {
  m_rule.Times = {Past()};
  m_rule.OrgFilters = {Org("B")};
  m_rule.Vips = {Vip("01")};
  m_sale.Vips = {Vip("02")};
  m_rule.PayModes = {Pay("01", 100)};
  EXPECT_FALSE(Check());
  EXPECT_EQ(Logged(), (Entries{"时间条件不满足"}));
}

TEST_F(BaseCondition, MembersAreTestedBeforePayments) {
  m_rule.Vips = {Vip("01")};
  m_sale.Vips = {Vip("02")};
  m_rule.PayModes = {Pay("01", 100)};
  EXPECT_FALSE(Check());
  EXPECT_EQ(Logged(), (Entries{"时间满足", "组织满足", "会员条件不满足"}));
}

}  // namespace
