// The line discount of the price-setting rules.
#include "rule/ActionPrice.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "tests/unit/RuleFixture.h"

using Corvane::PluAction;
using Corvane::ProInfo;
using Corvane::ProResult;
using Corvane::SalePlu;
using Corvane::Text;
using ruletest::Entries;
using ruletest::Line;
using ruletest::Row;

namespace {

PluAction SetPrice(double price) {
  PluAction action;
  action.DisType = "PRC";
  action.DisPrice = price;
  return action;
}

PluAction Percent(double rate) {
  PluAction action;
  action.DisType = "RAT";
  action.DisRate = rate;
  return action;
}

PluAction Less(double money) {
  PluAction action;
  action.DisType = "2";
  action.DisPrice = money;
  return action;
}

/// The rule "R1" of type "PTXS" on a line of 3 pieces at 10.00, among no other lines.
class LineDiscount : public ruletest::WithLog {
 protected:
  LineDiscount() { SetType("PTXS", "PT"); }

  void SetType(Text proType, Text proMode) {
    m_rule = ruletest::Rule("R1", proType, "PT");
    m_rule.ProMode = proMode;
  }

  bool Apply(const PluAction& action, double limit = 0) {
    ruletest::RuleOnSale sale(m_rule, m_lines, m_vipType);
    Corvane::Allowance allowance{limit, m_applied};
    m_taken = sale.Run().Discount(m_line, action, allowance);
    m_applied = allowance.Applied;
    return m_taken.has_value();
  }

  void ExpectUntouched() const {
    EXPECT_EQ(m_line.Total, 30);
    EXPECT_EQ(m_line.FinalPrice, 10);
    EXPECT_EQ(m_line.DisNum, 0);
    EXPECT_TRUE(m_line.ProResults.empty());
    EXPECT_TRUE(m_line.Apportions.empty());
    EXPECT_EQ(m_taken.value_or(0), 0);
  }

  ProInfo m_rule;
  SalePlu m_line = Line("G1", 10, 3);
  std::vector<SalePlu> m_lines;
  std::optional<double> m_taken;
  double m_applied = 0;
  Text m_vipType = "";
};

// --- Kinds of price --------------------------------------------------------------------------------------------------

// (10 - 8) * 3 = 6.
TEST_F(LineDiscount, ASetPriceLowersTheLine) {
  EXPECT_TRUE(Apply(SetPrice(8)));
  EXPECT_EQ(m_line.Total, 24);
  EXPECT_EQ(m_line.FinalPrice, 8);
  EXPECT_EQ(m_line.DisNum, 3);
  EXPECT_EQ(m_line.PluCount, 3);
  EXPECT_EQ(m_line.Price, 10);
}

TEST_F(LineDiscount, OnlyPtxsSetsTheFinalPrice) {
  SetType("PTPL", "PT");
  EXPECT_TRUE(Apply(SetPrice(8)));
  EXPECT_EQ(m_line.Total, 24);
  EXPECT_EQ(m_line.FinalPrice, 10);
}

TEST_F(LineDiscount, ASetPriceThatIsNotBelowTheBaseGivesNothing) {
  EXPECT_FALSE(Apply(SetPrice(10)));
  EXPECT_FALSE(Apply(SetPrice(10.01)));
  ExpectUntouched();
  EXPECT_EQ(m_applied, 0);
}

// 3 x 0.37 = 1.1099999999999999, and a third of that is 0.36999999999999994 or 0.37: no gain either way.
TEST_F(LineDiscount, ASetPriceEqualToThePriceGivesNothingWhateverTheDigits) {
  for (const double price : {0.37, 0.38, 0.07, 1.15, 19.99}) {
    SCOPED_TRACE(price);
    for (const double count : {3.0, 7.0, 0.751}) {
      m_line = Line("G1", price, count);
      EXPECT_FALSE(Apply(SetPrice(price)));
      EXPECT_FALSE(Apply(Percent(100)));
      EXPECT_TRUE(m_line.ProResults.empty());
    }
  }
}

// 0.5 - 1 is less than nothing: a combination that took a whole piece of half a kilogram leaves no surcharge behind.
TEST_F(LineDiscount, AQuantityBelowZeroGivesNothing) {
  m_line = Line("G1", 10, 0.5);
  m_line.ProResults.push_back(ruletest::Row("Z", "ZHGD", "DZ", 1));
  const SalePlu before = m_line;
  for (const PluAction& action : {SetPrice(8), Percent(80), Less(1)}) EXPECT_FALSE(Apply(action));
  EXPECT_EQ(m_line.Total, before.Total);
  EXPECT_EQ(m_line.ProResults.size(), 1U);
  EXPECT_FALSE(m_taken.has_value());
}

// 0.7 - 0.71 is -0.010000000000000009: a cent, and not less than one.
TEST_F(LineDiscount, AReductionThatMissesThePriceByACentIsRefusedWhateverTheDigits) {
  for (const double price : {0.7, 0.5, 10.0, 0.07}) {
    SCOPED_TRACE(price);
    m_line = Line("G1", price, 1);
    EXPECT_TRUE(Apply(Less(price + 0.0099)));
    m_line = Line("G1", price, 1);
    EXPECT_FALSE(Apply(Less(price + 0.0101)));
  }
}

TEST_F(LineDiscount, ASetPriceOfZeroGivesTheGoodsAway) {
  EXPECT_TRUE(Apply(SetPrice(0)));
  EXPECT_EQ(m_line.Total, 0);
  EXPECT_EQ(m_line.FinalPrice, 0);
}

// (10 - 9.999) * 3 = 0.003, which rounds to no money; the row is written all the same.
TEST_F(LineDiscount, ASetPriceJustBelowTheBaseGivesARowOfNoMoney) {
  EXPECT_TRUE(Apply(SetPrice(9.999)));
  EXPECT_EQ(m_line.Total, 30);
  ASSERT_EQ(m_line.ProResults.size(), 1U);
  EXPECT_EQ(m_line.ProResults[0].DisMoney, 0);
  EXPECT_EQ(m_line.ProResults[0].NewPrice, 9.999);
}

// 80 * 10 / 100 = 8, (10 - 8) * 3 = 6.
TEST_F(LineDiscount, ARateIsThePercentageThatIsLeftToPay) {
  EXPECT_TRUE(Apply(Percent(80)));
  EXPECT_EQ(m_line.Total, 24);
  ASSERT_EQ(m_line.ProResults.size(), 1U);
  EXPECT_EQ(m_line.ProResults[0].DisMoney, 6);
  EXPECT_EQ(m_line.ProResults[0].NewPrice, 8);
}

TEST_F(LineDiscount, ARateOfAHundredAndMoreGivesNothing) {
  EXPECT_FALSE(Apply(Percent(100)));
  EXPECT_FALSE(Apply(Percent(120)));
  ExpectUntouched();
}

TEST_F(LineDiscount, AReductionIsTakenOffEachPiece) {
  EXPECT_TRUE(Apply(Less(1.5)));
  EXPECT_EQ(m_line.Total, 25.5);
  ASSERT_EQ(m_line.ProResults.size(), 1U);
  EXPECT_EQ(m_line.ProResults[0].DisMoney, 4.5);
  EXPECT_EQ(m_line.ProResults[0].NewPrice, 8.5);
}

// 10 - 10.005 misses by half a cent and passes; 10.005 * 3 = 30.015000000000000568 rounds to 30.02.
TEST_F(LineDiscount, AReductionThatMissesThePriceByLessThanACentIsGiven) {
  EXPECT_TRUE(Apply(Less(10.005)));
  EXPECT_NEAR(m_line.Total, -0.02, 1e-9);
  ASSERT_EQ(m_line.ProResults.size(), 1U);
  EXPECT_EQ(m_line.ProResults[0].DisMoney, 30.02);
  EXPECT_NEAR(m_line.ProResults[0].NewPrice, -0.005, 1e-9);
}

TEST_F(LineDiscount, AReductionThatMissesThePriceByMoreGivesNothing) {
  EXPECT_FALSE(Apply(Less(10.02)));
  ExpectUntouched();
}

// 0 - 0.01 is exactly a cent below.
TEST_F(LineDiscount, AReductionThatMissesThePriceByJustACentGivesNothing) {
  m_line.Total = 0;
  EXPECT_FALSE(Apply(Less(0.01)));
  EXPECT_TRUE(m_line.ProResults.empty());
}

// 0.125 * 1 rounds to 0.13: half a cent goes up.
TEST_F(LineDiscount, MoneyIsRoundedAwayFromZero) {
  m_line = Line("G1", 1, 1);
  EXPECT_TRUE(Apply(Less(0.125)));
  EXPECT_EQ(m_line.Total, 0.87);
  EXPECT_EQ(m_line.ProResults.at(0).DisMoney, 0.13);
  EXPECT_EQ(m_line.ProResults.at(0).NewPrice, 0.875);
}

// Only the row is written, with the quantity and no money.
TEST_F(LineDiscount, AnUnknownKindOfPriceLeavesTheLineAloneAndWritesItsRow) {
  for (const Text kind : {"prc", "rat", "", "1", "3", static_cast<Text>(nullptr)}) {
    SCOPED_TRACE(Corvane::OrEmpty(kind));
    m_line = Line("G1", 10, 3);
    PluAction action = SetPrice(8);
    action.DisType = kind;
    EXPECT_TRUE(Apply(action));
    EXPECT_EQ(m_line.Total, 30);
    EXPECT_EQ(m_line.FinalPrice, 10);
    EXPECT_EQ(m_line.DisNum, 0);
    EXPECT_EQ(m_applied, 0);
    EXPECT_EQ(m_taken.value_or(0), 0);
    ASSERT_EQ(m_line.ProResults.size(), 1U);
    EXPECT_EQ(m_line.ProResults[0].DisNum, 3);
    EXPECT_EQ(m_line.ProResults[0].DisMoney, 0);
    EXPECT_EQ(m_line.ProResults[0].YhMoney, 0);
    EXPECT_EQ(m_line.Apportions.size(), 1U);
  }
}

// --- The rows --------------------------------------------------------------------------------------------------------

TEST_F(LineDiscount, WritesARow) {
  EXPECT_TRUE(Apply(SetPrice(8)));
  ASSERT_EQ(m_line.ProResults.size(), 1U);
  const ProResult& row = m_line.ProResults[0];
  EXPECT_EQ(row.ProBillNo, m_rule.BillNo);
  EXPECT_EQ(row.Primary, m_rule.Primary);
  EXPECT_EQ(row.ProType, m_rule.ProType);
  EXPECT_EQ(row.DisNum, 3);
  EXPECT_EQ(row.DisMoney, 6);
  EXPECT_EQ(row.YhMoney, 6);
  EXPECT_EQ(row.NewPrice, 8);
  EXPECT_EQ(row.BaseMoney, 0);
  EXPECT_FALSE(row.IsVip);
  EXPECT_STREQ(row.VipType, "");
}

TEST_F(LineDiscount, WritesTheSameRowToTheApportionList) {
  EXPECT_TRUE(Apply(SetPrice(8)));
  ASSERT_EQ(m_line.Apportions.size(), 1U);
  const Corvane::Apportion& row = m_line.Apportions[0];
  EXPECT_EQ(row.ProBillNo, m_rule.BillNo);
  EXPECT_EQ(row.ProType, m_rule.ProType);
  EXPECT_EQ(row.AppNum(), 3);
  EXPECT_EQ(row.AppMoney(), 6);
  EXPECT_EQ(row.YhMoney, 6);
  EXPECT_EQ(row.NewPrice, 8);
}

TEST_F(LineDiscount, AMemberTypeMarksTheRow) {
  m_vipType = "01";
  EXPECT_TRUE(Apply(SetPrice(8)));
  EXPECT_TRUE(m_line.ProResults.at(0).IsVip);
  EXPECT_STREQ(m_line.ProResults.at(0).VipType, "01");
  EXPECT_TRUE(m_line.Apportions.at(0).IsVip);
}

TEST_F(LineDiscount, RowsOfOtherRulesStayInFront) {
  m_line.ProResults = {Row("R2", "ZHGD", "PT", 1)};
  m_line.Apportions = {Row("R2", "ZHGD", "PT", 1)};
  EXPECT_TRUE(Apply(SetPrice(8)));
  ASSERT_EQ(m_line.ProResults.size(), 2U);
  EXPECT_STREQ(m_line.ProResults[0].ProBillNo, "R2");
  EXPECT_STREQ(m_line.ProResults[1].ProBillNo, "R1");
  ASSERT_EQ(m_line.Apportions.size(), 2U);
  EXPECT_STREQ(m_line.Apportions[1].ProBillNo, "R1");
}

// 1 piece: 2.00. Then the 2 pieces that are open, on a base of (2 + 28) / 3 = 10: 4.00. The apportion row stays as it
// was.
TEST_F(LineDiscount, ASecondVisitAddsToTheResultRowOnly) {
  EXPECT_TRUE(Apply(SetPrice(8), 1));
  EXPECT_EQ(m_line.Total, 28);
  EXPECT_TRUE(Apply(SetPrice(8)));
  EXPECT_EQ(m_line.Total, 24);
  EXPECT_EQ(m_line.DisNum, 2);
  EXPECT_EQ(m_applied, 3);
  ASSERT_EQ(m_line.ProResults.size(), 1U);
  EXPECT_EQ(m_line.ProResults[0].DisNum, 3);
  EXPECT_EQ(m_line.ProResults[0].DisMoney, 6);
  EXPECT_EQ(m_line.ProResults[0].YhMoney, 2);
  ASSERT_EQ(m_line.Apportions.size(), 1U);
  EXPECT_EQ(m_line.Apportions[0].AppNum(), 1);
  EXPECT_EQ(m_line.Apportions[0].AppMoney(), 2);
}

TEST_F(LineDiscount, OfTwoRowsOfTheRuleTheFirstIsAddedTo) {
  m_line.ProResults = {Row("R2", "ZHGD", "PT", 1), Row("R1", "ZHGD", "PT", 1, 1), Row("R1", "ZHGD", "PT", 1, 1)};
  EXPECT_TRUE(Apply(SetPrice(8)));
  ASSERT_EQ(m_line.ProResults.size(), 3U);
  EXPECT_EQ(m_line.ProResults[0].DisMoney, 0);
  EXPECT_EQ(m_line.ProResults[1].DisNum, 4);
  EXPECT_EQ(m_line.ProResults[1].DisMoney, 7);
  EXPECT_EQ(m_line.ProResults[2].DisMoney, 1);
  EXPECT_TRUE(m_line.Apportions.empty());
}

TEST_F(LineDiscount, AnswersWithTheQuantityTaken) {
  EXPECT_TRUE(Apply(SetPrice(8), 2));
  EXPECT_EQ(m_taken, 2);
}

// --- The base price --------------------------------------------------------------------------------------------------

// 1 piece is taken for 6.00: (6 + 24) / 3 = 10, (10 - 9) * 2 = 2.
TEST_F(LineDiscount, DiscountsOfTheOwnFamilyAreGivenBackFirst) {
  m_line.Total = 24;
  m_line.ProResults = {Row("R2", "PTPL", "PT", 1, 6)};
  EXPECT_TRUE(Apply(SetPrice(9)));
  EXPECT_EQ(m_line.Total, 22);
  EXPECT_DOUBLE_EQ(m_line.FinalPrice, 22.0 / 3);
}

TEST_F(LineDiscount, DiscountsOfADzRuleAreGivenBackFirst) {
  m_line.Total = 24;
  m_line.ProResults = {Row("R2", "ZHGD", "DZ", 1, 6)};
  EXPECT_TRUE(Apply(SetPrice(9)));
  EXPECT_EQ(m_line.Total, 22);
}

TEST_F(LineDiscount, AllSuchDiscountsAreGivenBack) {
  m_line.Total = 24;
  m_line.ProResults = {Row("R2", "ZHGD", "DZ", 1, 4), Row("R3", "ZHGD", "PT", 1, 50), Row("R4", "PTPL", "DJ", 1, 2)};
  EXPECT_TRUE(Apply(SetPrice(9)));
  EXPECT_EQ(m_line.Total, 23);
}

// The base is 24 / 3 = 8.
TEST_F(LineDiscount, DiscountsOfOtherFamiliesStay) {
  m_line.Total = 24;
  m_line.ProResults = {Row("R2", "ZHGD", "PT", 1, 6)};
  EXPECT_FALSE(Apply(SetPrice(8)));
  EXPECT_TRUE(Apply(SetPrice(7)));
  EXPECT_EQ(m_line.Total, 21);
}

TEST_F(LineDiscount, TheModeAndNotTheTypeNamesTheOwnFamily) {
  SetType("PTXS", "ZH");
  m_line.Total = 24;
  m_line.ProResults = {Row("R2", "ZHGD", "PT", 1, 6)};
  EXPECT_TRUE(Apply(SetPrice(9)));
  EXPECT_EQ(m_line.Total, 21);
}

TEST_F(LineDiscount, AModeOfMoreThanTwoLettersNamesNoFamily) {
  SetType("PTXS", "PTPL");
  m_line.Total = 24;
  m_line.ProResults = {Row("R2", "PTPL", "PT", 1, 6)};
  EXPECT_FALSE(Apply(SetPrice(9)));
}

TEST_F(LineDiscount, GivesBackRowsOfTheModeAndOfDz) {
  EXPECT_TRUE(Corvane::IsGivenBack(Row("R2", "PTPL", "DJ", 1), m_rule));
  EXPECT_TRUE(Corvane::IsGivenBack(Row("R2", "MZMJ", "DZ", 1), m_rule));
  EXPECT_FALSE(Corvane::IsGivenBack(Row("R2", "MZMJ", "PT", 1), m_rule));
  EXPECT_FALSE(Corvane::IsGivenBack(Row("R2", "MZMJ", "dz", 1), m_rule));
  EXPECT_FALSE(Corvane::IsGivenBack(Row("R2", nullptr, nullptr, 1), m_rule));
}

// --- Quantities ------------------------------------------------------------------------------------------------------

// 2 of 3 pieces are open.
TEST_F(LineDiscount, TakesTheOpenQuantityOnly) {
  m_line.ProResults = {Row("R2", "PTPL", "PT", 1)};
  EXPECT_TRUE(Apply(SetPrice(8)));
  EXPECT_EQ(m_line.Total, 26);
  EXPECT_EQ(m_line.DisNum, 2);
  EXPECT_EQ(m_applied, 2);
}

TEST_F(LineDiscount, WithNoOpenQuantityGivesNothing) {
  m_line.ProResults = {Row("R2", "PTPL", "PT", 3)};
  EXPECT_FALSE(Apply(SetPrice(8)));
  EXPECT_EQ(m_line.Total, 30);
  EXPECT_EQ(m_line.ProResults.size(), 1U);
  EXPECT_FALSE(m_taken.has_value());
}

TEST_F(LineDiscount, ALineOfNoQuantityGivesNothing) {
  m_line.PluCount = 0;
  EXPECT_FALSE(Apply(SetPrice(8)));
  EXPECT_EQ(m_line.Total, 30);
}

TEST_F(LineDiscount, TheLimitOfTheRowCaps) {
  EXPECT_TRUE(Apply(SetPrice(8), 2));
  EXPECT_EQ(m_line.Total, 26);
  EXPECT_EQ(m_line.DisNum, 2);
  EXPECT_EQ(m_applied, 2);
}

TEST_F(LineDiscount, WhatWasAppliedUnderTheLimitCountsAgainstIt) {
  m_applied = 0.5;
  EXPECT_TRUE(Apply(SetPrice(8), 2));
  EXPECT_EQ(m_line.Total, 27);
  EXPECT_EQ(m_line.DisNum, 1.5);
  EXPECT_EQ(m_applied, 2);
}

TEST_F(LineDiscount, ALimitThatIsReachedGivesNothing) {
  m_applied = 2;
  EXPECT_FALSE(Apply(SetPrice(8), 2));
  m_applied = 3;
  EXPECT_FALSE(Apply(SetPrice(8), 2));
  ExpectUntouched();
  EXPECT_EQ(m_applied, 3);
}

TEST_F(LineDiscount, ALimitOfZeroIsNone) {
  m_applied = 100;
  EXPECT_TRUE(Apply(SetPrice(8), 0));
  EXPECT_EQ(m_line.Total, 24);
  EXPECT_EQ(m_applied, 103);
}

TEST_F(LineDiscount, ALimitAboveTheOpenQuantityChangesNothing) {
  EXPECT_TRUE(Apply(SetPrice(8), 100));
  EXPECT_EQ(m_line.DisNum, 3);
}

// A limit of 4 by quantity, of which the rule holds 3 elsewhere.
TEST_F(LineDiscount, TheRulesOwnLimitIsCountedOverTheSale) {
  m_rule.MaxYhType = "2";
  m_rule.MaxYhValue = 4;
  m_lines = {Line("G2", 10, 5)};
  m_lines[0].ProResults = {Row("R1", "PTXS", "PT", 3)};
  EXPECT_TRUE(Apply(SetPrice(8)));
  EXPECT_EQ(m_line.DisNum, 1);
  EXPECT_EQ(m_line.Total, 28);
}

/// A limit of 4 by quantity, of which the rule holds 6 elsewhere: the open quantity is -2.
class LineDiscountBelowZero : public LineDiscount {
 protected:
  LineDiscountBelowZero() {
    m_rule.MaxYhType = "2";
    m_rule.MaxYhValue = 4;
    m_lines = {Line("G2", 10, 9)};
    m_lines[0].ProResults = {Row("R1", "PTXS", "PT", 6)};
  }
};

TEST_F(LineDiscountBelowZero, ASetPriceGivesNothing) {
  EXPECT_FALSE(Apply(SetPrice(8)));
  ExpectUntouched();
}

// A rule that is past its limit takes nothing back.
TEST_F(LineDiscountBelowZero, ARateGivesNothing) {
  EXPECT_FALSE(Apply(Percent(80)));
  ExpectUntouched();
}

TEST_F(LineDiscountBelowZero, AReductionGivesNothing) {
  EXPECT_FALSE(Apply(Less(1.5)));
  ExpectUntouched();
}

// --- The log ---------------------------------------------------------------------------------------------------------

TEST_F(LineDiscount, LogsTheQuantityAndNothingElse) {
  Apply(SetPrice(8));
  EXPECT_EQ(Logged(), (Entries{"促销优惠类型：", "促销类型：PTXS", "计算整单已优惠数量：0"}));
}

TEST_F(LineDiscount, AsksForTheQuantityBeforeTheLimit) {
  m_applied = 2;
  EXPECT_FALSE(Apply(SetPrice(8), 2));
  EXPECT_EQ(Logged(), (Entries{"促销优惠类型：", "促销类型：PTXS", "计算整单已优惠数量：0"}));
}

}  // namespace
