// The rule's XML: header, filter groups and the row families.
#include "rule/RuleReader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/Xml.h"

using Corvane::CouponDenomination;
using Corvane::CouponType;
using Corvane::PluAction;
using Corvane::PluAddAction;
using Corvane::PluCondition;
using Corvane::ProBase;
using Corvane::ReadRule;
using Corvane::Text;
using Corvane::XmlDocument;

namespace {

ProBase RuleOf(Text xml) {
  ProBase rule;
  ReadRule(xml, rule);
  return rule;
}

void ExpectEmpty(const ProBase& rule) {
  for (const Text text :
       {rule.Info.BillNo, rule.Info.OrgCode, rule.Info.ProType, rule.Info.ProMode, rule.Info.ProStatus,
        rule.Info.Primary, rule.Info.JzDate, rule.Info.MaxYhType, rule.Info.Remark}) {
    EXPECT_EQ(text, nullptr);
  }
  EXPECT_EQ(rule.Info.MaxYhValue, 0);
  EXPECT_TRUE(rule.OrgFilters.empty());
  EXPECT_TRUE(rule.Times.empty());
  EXPECT_TRUE(rule.PayModes.empty());
  EXPECT_TRUE(rule.Vips.empty());
}

// --- Header ----------------------------------------------------------------------------------------------------------

TEST(RuleHeader, HoldsTheTenAttributes) {
  const ProBase rule = RuleOf(
      "<Rules><Rule Remark='DVCZK' MaxYhType='2' MaxYhValue='12.5' JzDate='2026-11-01' Primary='DZ' ProStatus='1' "
      "ProMode='PT' ProType='PTXS' OrgCode='A' BillNo='R1'/></Rules>");
  EXPECT_STREQ(rule.Info.BillNo, "R1");
  EXPECT_STREQ(rule.Info.OrgCode, "A");
  EXPECT_STREQ(rule.Info.ProType, "PTXS");
  EXPECT_STREQ(rule.Info.ProMode, "PT");
  EXPECT_STREQ(rule.Info.ProStatus, "1");
  EXPECT_STREQ(rule.Info.Primary, "DZ");
  EXPECT_STREQ(rule.Info.JzDate, "2026-11-01");
  EXPECT_EQ(rule.Info.MaxYhValue, 12.5);
  EXPECT_STREQ(rule.Info.MaxYhType, "2");
  EXPECT_STREQ(rule.Info.Remark, "DVCZK");
}

TEST(RuleHeader, SkipsOtherAttributes) {
  ExpectEmpty(RuleOf("<Rules><Rule billno='R1' BillNO='R1' Name='x' BillNo1='R1'/></Rules>"));
}

TEST(RuleHeader, TakesNothingFromTheRoot) { ExpectEmpty(RuleOf("<Rules BillNo='R1'><Rule/></Rules>")); }

TEST(RuleHeader, ElementNamesDoNotCount) { EXPECT_STREQ(RuleOf("<x><OrgFilter BillNo='R1'/></x>").Info.BillNo, "R1"); }

TEST(RuleHeader, ALimitThatIsNoNumberIsZero) {
  EXPECT_EQ(RuleOf("<x><y MaxYhValue='much'/></x>").Info.MaxYhValue, 0);
  EXPECT_EQ(RuleOf("<x><y MaxYhValue=''/></x>").Info.MaxYhValue, 0);
  EXPECT_EQ(RuleOf("<x><y MaxYhValue='9.90 Yuan'/></x>").Info.MaxYhValue, 9.9);
}

TEST(RuleHeader, AnEmptyAttributeIsTheEmptyTextAndAMissingOneIsNull) {
  const ProBase rule = RuleOf("<x><y Remark=''/></x>");
  ASSERT_NE(rule.Info.Remark, nullptr);
  EXPECT_STREQ(rule.Info.Remark, "");
  EXPECT_EQ(rule.Info.MaxYhType, nullptr);
}

TEST(RuleHeader, OfALaterElementOverwritesWhatItBrings) {
  const ProBase rule = RuleOf(
      "<Rules><Rule BillNo='R1' OrgCode='A' MaxYhValue='5' Remark='x'/><Rule BillNo='R2' MaxYhValue='6'/></Rules>");
  EXPECT_STREQ(rule.Info.BillNo, "R2");
  EXPECT_EQ(rule.Info.MaxYhValue, 6);
  EXPECT_STREQ(rule.Info.OrgCode, "A");
  EXPECT_STREQ(rule.Info.Remark, "x");
}

TEST(RuleHeader, OutlivesTheTextThatItWasReadFrom) {
  std::string xml = "<x><y BillNo='reader-outlives'><OrgFilter><r OrgCode='reader-org'/></OrgFilter></y></x>";
  const ProBase rule = RuleOf(xml.c_str());
  xml.assign(xml.size(), 'X');
  EXPECT_STREQ(rule.Info.BillNo, "reader-outlives");
  EXPECT_STREQ(rule.OrgFilters.at(0).OrgCode, "reader-org");
}

// --- Texts that bring no rule ----------------------------------------------------------------------------------------

TEST(RuleText, ThatDoesNotParseLeavesTheRuleEmpty) {
  for (const Text xml : {static_cast<Text>(nullptr), "", "no xml", "<", "<Rules", "<Rules>", "<Rules/>",
                         "<Rules></Rules>", "<Rules>text<!-- --></Rules>", "<?xml version='1.0'?>"}) {
    SCOPED_TRACE(Corvane::OrEmpty(xml));
    ExpectEmpty(RuleOf(xml));
  }
}

TEST(RuleText, ThatIsCutOffGivesWhatStandsBeforeTheFault) {
  const ProBase rule = RuleOf("<x><y BillNo='R1'><OrgFilter><r OrgCode='A'/></OrgFilter><Vip><r VipTy");
  EXPECT_STREQ(rule.Info.BillNo, "R1");
  ASSERT_EQ(rule.OrgFilters.size(), 1U);
  EXPECT_STREQ(rule.OrgFilters[0].OrgCode, "A");
}

// --- Filter groups ---------------------------------------------------------------------------------------------------

TEST(RuleFilters, ReadOrganisations) {
  const ProBase rule =
      RuleOf("<x><y BillNo='R1'><OrgFilter><r OrgCode='A'/><s OrgCode='*' Other='1'/></OrgFilter></y></x>");
  ASSERT_EQ(rule.OrgFilters.size(), 2U);
  EXPECT_STREQ(rule.OrgFilters[0].BillNo, "R1");
  EXPECT_STREQ(rule.OrgFilters[0].OrgCode, "A");
  EXPECT_STREQ(rule.OrgFilters[1].BillNo, "R1");
  EXPECT_STREQ(rule.OrgFilters[1].OrgCode, "*");
}

TEST(RuleFilters, ReadTimes) {
  const ProBase rule = RuleOf(
      "<x><y BillNo='R1'><ProTime><r MonthDays='1,15' WeekDays='0,6' Frequency='WEEK' EndTime='12:00:00' "
      "StartTime='08:00:00' EndDate='2026-12-31' StartDate='2026-01-01'/></ProTime></y></x>");
  ASSERT_EQ(rule.Times.size(), 1U);
  const Corvane::ProTime& row = rule.Times[0];
  EXPECT_STREQ(row.BillNo, "R1");
  EXPECT_STREQ(row.StartDate, "2026-01-01");
  EXPECT_STREQ(row.EndDate, "2026-12-31");
  EXPECT_STREQ(row.StartTime, "08:00:00");
  EXPECT_STREQ(row.EndTime, "12:00:00");
  EXPECT_STREQ(row.Frequency, "WEEK");
  EXPECT_STREQ(row.WeekDays, "0,6");
  EXPECT_STREQ(row.MonthDays, "1,15");
}

// The hours of a whole day are not filled in: a rule that wants them writes them.
TEST(RuleFilters, LeaveNullWhatATimeRowDoesNotGive) {
  const ProBase rule = RuleOf("<x><y BillNo='R1'><ProTime><r/></ProTime></y></x>");
  ASSERT_EQ(rule.Times.size(), 1U);
  const Corvane::ProTime& row = rule.Times[0];
  for (const Text text :
       {row.StartDate, row.EndDate, row.StartTime, row.EndTime, row.Frequency, row.WeekDays, row.MonthDays}) {
    EXPECT_EQ(text, nullptr);
  }
}

TEST(RuleFilters, ReadPayments) {
  const ProBase rule = RuleOf(
      "<x><y BillNo='R1'><PayMode><r PayMoney='100.5' PayCardNo='6222' PayMode='01'/><r "
      "PayMoney='?'/></PayMode></y></x>");
  ASSERT_EQ(rule.PayModes.size(), 2U);
  EXPECT_STREQ(rule.PayModes[0].BillNo, "R1");
  EXPECT_STREQ(rule.PayModes[0].PayMode, "01");
  EXPECT_STREQ(rule.PayModes[0].PayCardNo, "6222");
  EXPECT_EQ(rule.PayModes[0].PayMoney, 100.5);
  EXPECT_EQ(rule.PayModes[1].PayMode, nullptr);
  EXPECT_EQ(rule.PayModes[1].PayMoney, 0);
}

TEST(RuleFilters, ReadMembers) {
  const ProBase rule = RuleOf("<x><y BillNo='R1'><Vip><r VipType='01'/><r/></Vip></y></x>");
  ASSERT_EQ(rule.Vips.size(), 2U);
  EXPECT_STREQ(rule.Vips[0].BillNo, "R1");
  EXPECT_STREQ(rule.Vips[0].VipType, "01");
  EXPECT_EQ(rule.Vips[1].VipType, nullptr);
}

TEST(RuleFilters, AnEmptyGroupHasNoRows) {
  ExpectEmpty(RuleOf("<x><y><OrgFilter/><ProTime></ProTime><PayMode>text</PayMode><Vip><!-- --></Vip></y></x>"));
}

TEST(RuleFilters, GroupNamesAreComparedExactly) {
  ExpectEmpty(
      RuleOf("<x><y><orgfilter><r OrgCode='A'/></orgfilter><OrgFilter1><r OrgCode='A'/></OrgFilter1>"
             "<Time><r StartDate='1'/></Time><VIP><r VipType='1'/></VIP></y></x>"));
}

TEST(RuleFilters, UnknownGroupsAreSkipped) {
  const ProBase rule =
      RuleOf("<x><y BillNo='R1'><Other><r OrgCode='B'/></Other><OrgFilter><r OrgCode='A'/></OrgFilter><Last/></y></x>");
  ASSERT_EQ(rule.OrgFilters.size(), 1U);
  EXPECT_STREQ(rule.OrgFilters[0].OrgCode, "A");
}

TEST(RuleFilters, RowsOfSeveralGroupsAddUp) {
  const ProBase rule =
      RuleOf("<x><y BillNo='R1'><Vip><r VipType='01'/></Vip><OrgFilter/><Vip><r VipType='02'/></Vip></y></x>");
  ASSERT_EQ(rule.Vips.size(), 2U);
  EXPECT_STREQ(rule.Vips[0].VipType, "01");
  EXPECT_STREQ(rule.Vips[1].VipType, "02");
}

TEST(RuleFilters, RowsOfSeveralRuleElementsAddUpUnderTheirOwnNumbers) {
  const ProBase rule = RuleOf(
      "<x><y BillNo='R1'><OrgFilter><r OrgCode='A'/></OrgFilter></y>"
      "<y BillNo='R2'><OrgFilter><r OrgCode='B'/></OrgFilter></y></x>");
  ASSERT_EQ(rule.OrgFilters.size(), 2U);
  EXPECT_STREQ(rule.OrgFilters[0].BillNo, "R1");
  EXPECT_STREQ(rule.OrgFilters[0].OrgCode, "A");
  EXPECT_STREQ(rule.OrgFilters[1].BillNo, "R2");
  EXPECT_STREQ(rule.OrgFilters[1].OrgCode, "B");
}

TEST(RuleFilters, OtherGroupsGoToTheReaderOfTheType) {
  ProBase rule;
  std::vector<std::string> groups;
  ReadRule("<x><y BillNo='R1'><Vip/><ProList/><OrgFilter/><PayMode/><ProCtr/><ProTime/></y><y><ProList/></y></x>", rule,
           [&](const TiXmlElement& group) { groups.emplace_back(group.Value()); });
  EXPECT_EQ(groups, (std::vector<std::string>{"ProList", "ProCtr", "ProList"}));
}

TEST(RuleFilters, TheReaderOfTheTypeSeesTheHeader) {
  ProBase rule;
  std::string seen;
  ReadRule("<x><y BillNo='R1'><ProList/></y></x>", rule, [&](const TiXmlElement&) { seen = rule.Info.BillNo; });
  EXPECT_EQ(seen, "R1");
}

// --- Row families ----------------------------------------------------------------------------------------------------

/// The rows that a reader makes of a group that stands as root.
template <class Row>
std::vector<Row> RowsOf(void (*read)(const TiXmlElement&, Text, std::vector<Row>&), Text xml) {
  const XmlDocument document(xml);
  std::vector<Row> rows;
  read(*document.Root(), "R1", rows);
  return rows;
}

TEST(RuleRows, ReadConditions) {
  const auto rows = RowsOf(Corvane::ReadPluCondition,
                           "<g><r MinMoney='3.5' LimitNum='2.5' MinNum='1.5' Contain='NOT' PluType='CAT' PluCode='C1' "
                           "SerialNo='7'/></g>");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_STREQ(rows[0].BillNo, "R1");
  EXPECT_EQ(rows[0].SerialNo, 7);
  EXPECT_EQ(rows[0].Index, 0);
  EXPECT_STREQ(rows[0].PluCode, "C1");
  EXPECT_STREQ(rows[0].PluType, "CAT");
  EXPECT_STREQ(rows[0].Contain, "NOT");
  EXPECT_EQ(rows[0].MinNum, 1.5);
  EXPECT_EQ(rows[0].LimitNum, 2.5);
  EXPECT_EQ(rows[0].MinMoney, 3.5);
}

TEST(RuleRows, AConditionWithoutAttributesHasTheDefaults) {
  const auto rows = RowsOf(Corvane::ReadPluCondition, "<g><r/></g>");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0].SerialNo, 0);
  EXPECT_EQ(rows[0].PluCode, nullptr);
  EXPECT_STREQ(rows[0].PluType, "PLU");
  EXPECT_STREQ(rows[0].Contain, "IN");
  EXPECT_EQ(rows[0].PluID, nullptr);
  EXPECT_EQ(rows[0].MinNum, 0);
  EXPECT_EQ(rows[0].LimitNum, 0);
  EXPECT_EQ(rows[0].MinMoney, 0);
}

TEST(RuleRows, AnEmptyAttributeReplacesTheDefault) {
  const auto rows = RowsOf(Corvane::ReadPluCondition, "<g><r PluType='' Contain=''/></g>");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_STREQ(rows[0].PluType, "");
  EXPECT_STREQ(rows[0].Contain, "");
}

TEST(RuleRows, TheIndexIsThePlaceAndNeverAnAttribute) {
  const Text xml = "<g><r Index='5' SerialNo='3'/><r Index='5' SerialNo='1'/><r SerialNo='2'/></g>";
  const auto conditions = RowsOf(Corvane::ReadPluCondition, xml);
  const auto actions = RowsOf(Corvane::ReadPluAction, xml);
  const auto tiers = RowsOf(Corvane::ReadPluAddAction, xml);
  ASSERT_EQ(conditions.size(), 3U);
  ASSERT_EQ(actions.size(), 3U);
  ASSERT_EQ(tiers.size(), 3U);
  for (const int place : {0, 1, 2}) {
    SCOPED_TRACE(place);
    const auto row = static_cast<std::size_t>(place);
    EXPECT_EQ(conditions[row].Index, place);
    EXPECT_EQ(actions[row].Index, place);
    EXPECT_EQ(tiers[row].Index, place);
  }
}

TEST(RuleRows, TheGoodsIdentityIsNotRead) {
  const auto rows = RowsOf(Corvane::ReadPluCondition, "<g><r PluID='9'/></g>");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0].PluID, nullptr);
}

TEST(RuleRows, ASerialNumberIsReadAsFarAsItIsANumber) {
  const auto rows =
      RowsOf(Corvane::ReadPluCondition, "<g><r SerialNo='7.9'/><r SerialNo='x'/><r SerialNo='99999999999'/></g>");
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_EQ(rows[0].SerialNo, 7);
  EXPECT_EQ(rows[1].SerialNo, 0);
  EXPECT_EQ(rows[2].SerialNo, 1215752191);  // 99999999999 - 23 x 2^32
}

TEST(RuleRows, ReadActions) {
  const auto rows =
      RowsOf(Corvane::ReadPluAction,
             "<g><r SaleCount='4.5' DisRate='80' DisPrice='9.9' DisType='RAT' Contain='NOT' PluType='BRD' "
             "PluCode='B1' SerialNo='7'/></g>");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_STREQ(rows[0].BillNo, "R1");
  EXPECT_EQ(rows[0].SerialNo, 7);
  EXPECT_STREQ(rows[0].PluCode, "B1");
  EXPECT_STREQ(rows[0].PluType, "BRD");
  EXPECT_STREQ(rows[0].Contain, "NOT");
  EXPECT_STREQ(rows[0].DisType, "RAT");
  EXPECT_EQ(rows[0].DisPrice, 9.9);
  EXPECT_EQ(rows[0].DisRate, 80);
  EXPECT_EQ(rows[0].SaleCount, 4.5);
}

TEST(RuleRows, AnActionWithoutAttributesHasTheDefaults) {
  const auto rows = RowsOf(Corvane::ReadPluAction, "<g><r/></g>");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0].SerialNo, 0);
  EXPECT_EQ(rows[0].PluCode, nullptr);
  EXPECT_STREQ(rows[0].PluType, "PLU");
  EXPECT_STREQ(rows[0].Contain, "IN");
  EXPECT_EQ(rows[0].DisPrice, 0);
  EXPECT_EQ(rows[0].DisRate, 0);
  EXPECT_EQ(rows[0].SaleCount, 0);
}

TEST(RuleRows, ASetPriceOfTheGroupOverwritesThatOfEveryRow) {
  const auto rows = RowsOf(Corvane::ReadPluAction,
                           "<g ActionType='TC' PrjTotal='30'><r DisPrice='5'/><r/><r DisPrice='50' DisRate='80'/></g>");
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_EQ(rows[0].DisPrice, 30);
  EXPECT_EQ(rows[1].DisPrice, 30);
  EXPECT_EQ(rows[2].DisPrice, 30);
  EXPECT_EQ(rows[2].DisRate, 80);
}

TEST(RuleRows, ASetPriceThatIsMissingIsZero) {
  const auto rows = RowsOf(Corvane::ReadPluAction, "<g ActionType='TC'><r DisPrice='5'/></g>");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0].DisPrice, 0);
}

TEST(RuleRows, OnlyTheTypeTcSetsThePrice) {
  for (const Text group :
       {"<g PrjTotal='30'><r DisPrice='5'/></g>", "<g ActionType='' PrjTotal='30'><r DisPrice='5'/></g>",
        "<g ActionType='tc' PrjTotal='30'><r DisPrice='5'/></g>",
        "<g ActionType='TCX' PrjTotal='30'><r DisPrice='5'/></g>",
        "<g><r ActionType='TC' PrjTotal='30' DisPrice='5'/></g>"}) {
    SCOPED_TRACE(group);
    const auto rows = RowsOf(Corvane::ReadPluAction, group);
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].DisPrice, 5);
  }
}

TEST(RuleRows, ReadTiers) {
  const auto rows =
      RowsOf(Corvane::ReadPluAddAction,
             "<g><r SerialNo='7' PluCode='G1' PluType='CAT' Contain='NOT' DisType='RAT' DisRate='1.5' DscPrice='2.5' "
             "BaseConTp='NUM' BaseConNum='3.5' BaseDscTp='num' BaseDscNum='4.5' AddConNum='5.5' AddDscTp='Num' "
             "AddDscNum='6.5' SaleMaxIn='7.5'/></g>");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_STREQ(rows[0].BillNo, "R1");
  EXPECT_EQ(rows[0].SerialNo, 7);
  EXPECT_STREQ(rows[0].PluCode, "G1");
  EXPECT_STREQ(rows[0].PluType, "CAT");
  EXPECT_STREQ(rows[0].Contain, "NOT");
  EXPECT_STREQ(rows[0].DisType, "RAT");
  EXPECT_EQ(rows[0].DisRate, 1.5);
  EXPECT_EQ(rows[0].DscPrice, 2.5);
  EXPECT_STREQ(rows[0].BaseConTp, "NUM");
  EXPECT_EQ(rows[0].BaseConNum, 3.5);
  EXPECT_STREQ(rows[0].BaseDscTp, "num");
  EXPECT_EQ(rows[0].BaseDscNum, 4.5);
  EXPECT_EQ(rows[0].AddConNum, 5.5);
  EXPECT_STREQ(rows[0].AddDscTp, "Num");
  EXPECT_EQ(rows[0].AddDscNum, 6.5);
  EXPECT_EQ(rows[0].SaleMaxIn, 7.5);
}

TEST(RuleRows, ATierWithoutAttributesHasTheDefaults) {
  const auto rows = RowsOf(Corvane::ReadPluAddAction, "<g><r/></g>");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_STREQ(rows[0].PluType, "PLU");
  EXPECT_STREQ(rows[0].Contain, "IN");
  EXPECT_STREQ(rows[0].DisType, "PRC");
  EXPECT_STREQ(rows[0].BaseConTp, "SUM");
  EXPECT_STREQ(rows[0].BaseDscTp, "SUM");
  EXPECT_STREQ(rows[0].AddDscTp, "SUM");
  for (const double number : {rows[0].DisRate, rows[0].DscPrice, rows[0].BaseConNum, rows[0].BaseDscNum,
                              rows[0].AddConNum, rows[0].AddDscNum, rows[0].SaleMaxIn, rows[0].HgPluCount}) {
    EXPECT_EQ(number, 0);
  }
  EXPECT_EQ(rows[0].CanPart, 1);
}

// What the cashier's picks fill is not for a rule to set.
TEST(RuleRows, ATierOfARuleDoesNotReadWhatOffersCarry) {
  const auto rows = RowsOf(Corvane::ReadPluAddAction, "<g><r HgPluCount='5' CanPart='0' Price='9'/></g>");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0].HgPluCount, 0);
  EXPECT_EQ(rows[0].CanPart, 1);
  EXPECT_EQ(rows[0].Price, 0);
}

TEST(RuleRows, AreAppended) {
  const XmlDocument document("<g><r SerialNo='2'/></g>");
  std::vector<PluCondition> rows(1);
  rows[0].SerialNo = 1;
  Corvane::ReadPluCondition(*document.Root(), "R1", rows);
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0].SerialNo, 1);
  EXPECT_EQ(rows[1].SerialNo, 2);
}

TEST(RuleRows, AnEmptyGroupHasNone) {
  EXPECT_TRUE(RowsOf(Corvane::ReadPluCondition, "<g/>").empty());
  EXPECT_TRUE(RowsOf(Corvane::ReadPluAction, "<g ActionType='TC'/>").empty());
  EXPECT_TRUE(RowsOf(Corvane::ReadPluAddAction, "<g>text</g>").empty());
}

// --- Coupons ---------------------------------------------------------------------------------------------------------

CouponType CouponOf(Text xml) {
  const XmlDocument document(xml);
  CouponType coupon;
  Corvane::ReadCouponType(*document.Root(), coupon);
  return coupon;
}

TEST(RuleCoupons, EachTextIsFilledFromTheAttributeOfItsName) {
  const CouponType coupon = CouponOf(
      "<g BgnDate='1' BillNoType='2' CouponTypeCode='3' CouponTypeName='4' EndDate='5' LimitDay='30' LimitType='6' "
      "PrintType='7' SaleRefType='8' ShareType='9' BillNoRule='10' CouponMedium='11' CouponPosition='12' "
      "PayReflect='13' "
      "PayType='14' UsePluCode='15' UseOrgCode='16'/>");
  EXPECT_STREQ(coupon.BgnDate, "1");
  EXPECT_STREQ(coupon.BillNoType, "2");
  EXPECT_STREQ(coupon.CouponTypeCode, "3");
  EXPECT_STREQ(coupon.CouponTypeName, "4");
  EXPECT_STREQ(coupon.EndDate, "5");
  EXPECT_EQ(coupon.LimitDay, 30);
  EXPECT_STREQ(coupon.LimitType, "6");
  EXPECT_STREQ(coupon.PrintType, "7");
  EXPECT_STREQ(coupon.SaleRefType, "8");
  EXPECT_STREQ(coupon.ShareType, "9");
  EXPECT_STREQ(coupon.BillNoRule, "10");
  EXPECT_STREQ(coupon.CouponMedium, "11");
  EXPECT_STREQ(coupon.CouponPosition, "12");
  EXPECT_STREQ(coupon.PayReflect, "13");
  EXPECT_STREQ(coupon.PayType, "14");
  EXPECT_STREQ(coupon.UsePluCode, "15");
  EXPECT_STREQ(coupon.UseOrgCode, "16");
}

TEST(RuleCoupons, TheBooleansAreFalseWithoutTheirAttribute) {
  const CouponType coupon = CouponOf("<g isCheck='1' Check='1'/>");
  EXPECT_FALSE(coupon.IsCheck);
  EXPECT_FALSE(coupon.IsDenom);
  EXPECT_FALSE(coupon.IsTrack);
}

TEST(RuleCoupons, TheBooleansAreTrueByPresenceWhateverTheTextSays) {
  for (const std::string text : {"0", "false", "", "1", "true"}) {
    SCOPED_TRACE(text);
    EXPECT_TRUE(CouponOf(("<g IsCheck='" + text + "'/>").c_str()).IsCheck);
    EXPECT_TRUE(CouponOf(("<g IsDenom='" + text + "'/>").c_str()).IsDenom);
    EXPECT_TRUE(CouponOf(("<g IsTrack='" + text + "'/>").c_str()).IsTrack);
  }
}

TEST(RuleCoupons, EachBooleanIsItsOwn) {
  const CouponType coupon = CouponOf("<g IsDenom='0'/>");
  EXPECT_FALSE(coupon.IsCheck);
  EXPECT_TRUE(coupon.IsDenom);
  EXPECT_FALSE(coupon.IsTrack);
}

TEST(RuleCoupons, TheDaysAreReadAsFarAsTheyAreANumber) {
  EXPECT_EQ(CouponOf("<g LimitDay='7.9 days'/>").LimitDay, 7);
  EXPECT_EQ(CouponOf("<g LimitDay='week'/>").LimitDay, 0);
  EXPECT_EQ(CouponOf("<g LimitDay='99999999999'/>").LimitDay, 1215752191);
}

TEST(RuleCoupons, AttributesStandOnTheGroupAndOnItsChildren) {
  const CouponType coupon =
      CouponOf("<g CouponTypeCode='C1'><r LimitDay='30'/><r IsTrack='0' EndDate='2026-12-31'/></g>");
  EXPECT_STREQ(coupon.CouponTypeCode, "C1");
  EXPECT_EQ(coupon.LimitDay, 30);
  EXPECT_TRUE(coupon.IsTrack);
  EXPECT_STREQ(coupon.EndDate, "2026-12-31");
}

TEST(RuleCoupons, ReadDenominations) {
  const XmlDocument document(
      "<g><r CouponUnit='Y' CouponDenomiCode='D50' Denomination='50.5'/><r Denomination='ten'/></g>");
  std::vector<CouponDenomination> rows;
  Corvane::ReadCouponDenomination(*document.Root(), rows);
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0].Denomination, 50.5);
  EXPECT_STREQ(rows[0].CouponDenomiCode, "D50");
  EXPECT_STREQ(rows[0].CouponUnit, "Y");
  EXPECT_EQ(rows[1].Denomination, 0);
  EXPECT_EQ(rows[1].CouponDenomiCode, nullptr);
}

}  // namespace
