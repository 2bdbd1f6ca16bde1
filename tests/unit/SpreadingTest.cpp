// A rule's money on lines, in cents that add up.
#include "rule/Spreading.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "rule/LineSelection.h"
#include "tests/unit/RuleFixture.h"

using Corvane::Apportion;
using Corvane::LinePtrs;
using Corvane::ProInfo;
using Corvane::ProResult;
using Corvane::SalePlu;
using Corvane::SpreadOptions;
using Corvane::Text;
using ruletest::Entries;
using ruletest::Line;
using ruletest::Row;
using ruletest::Rule;

namespace {

using Lines = std::vector<SalePlu>;
using Numbers = std::vector<double>;

/// Cents are compared to a tiny part of a cent: a tail is a difference of sums.
constexpr double kDust = 1e-9;

void ExpectNumbers(const Numbers& actual, const Numbers& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t place = 0; place < expected.size(); ++place) {
    SCOPED_TRACE(place);
    EXPECT_NEAR(actual[place], expected[place], kDust);
  }
}

Numbers Totals(const Lines& lines) {
  Numbers totals;
  for (const SalePlu& line : lines) totals.push_back(line.Total);
  return totals;
}

Numbers FinalPrices(const Lines& lines) {
  Numbers prices;
  for (const SalePlu& line : lines) prices.push_back(line.FinalPrice);
  return prices;
}

/// The money of all result rows, lines and rows first to last.
Numbers ResultMoneys(const Lines& lines) {
  Numbers moneys;
  for (const SalePlu& line : lines) {
    for (const ProResult& row : line.ProResults) moneys.push_back(row.DisMoney);
  }
  return moneys;
}

Numbers ApportionMoneys(const Lines& lines) {
  Numbers moneys;
  for (const SalePlu& line : lines) {
    for (const Apportion& row : line.Apportions) moneys.push_back(row.AppMoney());
  }
  return moneys;
}

Numbers YhMoneys(const Lines& lines) {
  Numbers moneys;
  for (const SalePlu& line : lines) {
    for (const Apportion& row : line.Apportions) moneys.push_back(row.YhMoney);
  }
  return moneys;
}

Lines ThreeOfTen() { return {Line("G1", 10, 1), Line("G2", 10, 1), Line("G3", 10, 1)}; }

// --- By value at Price -----------------------------------------------------------------------------------------------

class ApportionByValue : public ruletest::WithLog {
 protected:
  void Apportion(Text proType, double money) {
    ruletest::RuleOnSale sale(Rule("R1", proType, "PT"), m_lines);
    Corvane::RuleRun run = sale.Run();
    Corvane::ApportionRecords(run, Corvane::PointersTo(run.Lines()), money);
  }

  Lines m_lines = ThreeOfTen();
};

TEST_F(ApportionByValue, MakesTheRowsThatAreMissing) {
  m_lines = {Line("G1", 10, 2)};
  Apportion("MZZM", 5);
  ASSERT_EQ(m_lines[0].Apportions.size(), 1U);
  const Corvane::Apportion& row = m_lines[0].Apportions[0];
  EXPECT_STREQ(row.ProBillNo, "R1");
  EXPECT_STREQ(row.Primary, "PT");
  EXPECT_STREQ(row.ProType, "MZZM");
  EXPECT_EQ(row.AppNum(), 2);
  EXPECT_EQ(row.NewPrice, 10);
  EXPECT_EQ(row.AppMoney(), 0);
  EXPECT_EQ(row.YhMoney, 5);
  EXPECT_EQ(m_lines[0].DisNum, 2);
}

TEST_F(ApportionByValue, TouchesApportionRowsOnly) {
  m_lines = {Line("G1", 10, 2)};
  Apportion("MZZF", 5);
  EXPECT_EQ(m_lines[0].Total, 20);
  EXPECT_EQ(m_lines[0].FinalPrice, 10);
  EXPECT_TRUE(m_lines[0].ProResults.empty());
}

// 10 * 1 * 10 / 30 = 3.3333 on each, which counts as 3.33; the 0.01 that is left goes to the first row.
TEST_F(ApportionByValue, SharesKeepTheirFractionsAndTheTailGoesToTheFirstRow) {
  Apportion("MZZF", 10);
  ExpectNumbers(YhMoneys(m_lines), {10.0 / 3 + 0.01, 10.0 / 3, 10.0 / 3});
}

TEST_F(ApportionByValue, OfMzzfAndZhtjSetsTheMoneyToo) {
  for (const Text proType : {"MZZF", "ZHTJ"}) {
    SCOPED_TRACE(proType);
    m_lines = ThreeOfTen();
    Apportion(proType, 10);
    ExpectNumbers(ApportionMoneys(m_lines), {10.0 / 3, 10.0 / 3, 10.0 / 3});
  }
}

TEST_F(ApportionByValue, OfOtherTypesLeavesTheMoney) {
  for (const Text proType : {"MZMJ", "MZYQ", "ZHGD", "PTXS"}) {
    SCOPED_TRACE(proType);
    m_lines = ThreeOfTen();
    Apportion(proType, 10);
    ExpectNumbers(ApportionMoneys(m_lines), {0, 0, 0});
  }
}

// 6 in the proportion of 10 to 20.
TEST_F(ApportionByValue, WeighsByQuantityAndPrice) {
  m_lines = {Line("G1", 10, 1), Line("G2", 4, 5)};
  m_lines[1].Total = 1;
  m_lines[1].FinalPrice = 1;
  Apportion("MZZF", 6);
  ExpectNumbers(YhMoneys(m_lines), {2, 4});
}

// The row holds 1 of 3 pieces: it weighs 10 against the 20 of the other line.
TEST_F(ApportionByValue, ARowThatStandsWeighsByItsOwnQuantity) {
  m_lines = {Line("G1", 10, 3), Line("G2", 10, 2)};
  m_lines[0].Apportions = {Row("R1", "MZZF", "PT", 1, 7)};
  Apportion("MZZF", 6);
  ASSERT_EQ(m_lines[0].Apportions.size(), 1U);
  ExpectNumbers(YhMoneys(m_lines), {2, 4});
  ExpectNumbers(ApportionMoneys(m_lines), {2, 4});
  EXPECT_EQ(m_lines[0].DisNum, 0);
  EXPECT_EQ(m_lines[1].DisNum, 2);
}

TEST_F(ApportionByValue, OfTwoRowsOfTheRuleTheLastWeighsAndTakes) {
  m_lines = {Line("G1", 10, 9), Line("G2", 10, 2)};
  m_lines[0].Apportions = {Row("R1", "MZZF", "PT", 5, 7), Row("R1", "MZZF", "PT", 1, 7), Row("R2", "MZZF", "PT", 5, 7)};
  Apportion("MZZF", 6);
  ExpectNumbers(YhMoneys(m_lines), {7, 2, 7, 4});
}

// The first row of the first line is another rule's.
TEST_F(ApportionByValue, TheTailGoesToTheFirstRowWhoeverWroteIt) {
  m_lines[0].Apportions = {Row("R2", "MZMJ", "PT", 1, 5)};
  Apportion("MZZF", 10);
  ExpectNumbers(YhMoneys(m_lines), {5.01, 10.0 / 3, 10.0 / 3, 10.0 / 3});
  ExpectNumbers(ApportionMoneys(m_lines), {5, 10.0 / 3, 10.0 / 3, 10.0 / 3});
}

// 0.125 on each line counts as 0.12, so that 0.01 is left.
TEST_F(ApportionByValue, HalfACentCountsDown) {
  m_lines = {Line("G1", 10, 1), Line("G2", 10, 1)};
  Apportion("MZZF", 0.25);
  ExpectNumbers(YhMoneys(m_lines), {0.125 + 0.01, 0.125});
}

// 167772.17 counts as 167772.16: its cents are taken in single precision.
TEST_F(ApportionByValue, CentsAreTakenInSinglePrecision) {
  m_lines = {Line("G1", 10, 1)};
  Apportion("MZZF", 167772.17);
  ExpectNumbers(YhMoneys(m_lines), {167772.18});
}

TEST_F(ApportionByValue, WithoutWeightEndsWhenTheRowsAreMade) {
  m_lines = {Line("G1", 0, 1), Line("G2", 10, 0)};
  Apportion("MZZF", 10);
  ExpectNumbers(YhMoneys(m_lines), {0, 0});
  ExpectNumbers(ApportionMoneys(m_lines), {0, 0});
  EXPECT_EQ(m_lines[0].DisNum, 1);
}

TEST_F(ApportionByValue, OverNoLinesDoesNothing) {
  m_lines.clear();
  Apportion("MZZF", 10);
  EXPECT_EQ(Logged(), Entries{});
}

TEST_F(ApportionByValue, LogsFromTheLastLineToTheFirst) {
  m_lines[1].Apportions = {Row("R2", "MZZF", "PT", 1)};
  m_lines[2].Apportions = {Row("R1", "MZZF", "PT", 1)};
  Apportion("MZZF", 10);
  EXPECT_EQ(Logged(),
            (Entries{"已有分摊记录", "不存在已有分摊记录，创建分摊记录", "不存在已有分摊记录，创建分摊记录"}));
}

// The second time round its row stands: it weighs 20 in all, and its row takes 10 * 10 / 20.
TEST_F(ApportionByValue, ALineThatStandsTwiceInTheListWeighsTwice) {
  Lines lines = {Line("G1", 10, 1)};
  {
    ruletest::RuleOnSale sale(Rule("R1", "MZZF", "PT"), lines);
    Corvane::RuleRun run = sale.Run();
    Corvane::ApportionRecords(run, {&run.Lines().front(), &run.Lines().front()}, 10);
  }
  ASSERT_EQ(lines[0].Apportions.size(), 1U);
  EXPECT_EQ(lines[0].Apportions[0].AppMoney(), 5);
  EXPECT_EQ(Logged(), (Entries{"不存在已有分摊记录，创建分摊记录", "已有分摊记录"}));
}

// --- Over chosen lines -----------------------------------------------------------------------------------------------

class SpreadOverChosen : public testing::Test {
 protected:
  void Spread(Text proType, double money, double base) { Spread(Rule("R1", proType, "PT"), money, base); }
  void Spread(const ProInfo& rule, double money, double base) {
    ruletest::RuleOnSale sale(rule, m_lines, m_vipType);
    Corvane::RuleRun run = sale.Run();
    Corvane::SpreadOverLinePtrs(run, Corvane::PointersTo(run.Lines()), money, base, m_options);
  }

  Lines m_lines = ThreeOfTen();
  SpreadOptions m_options;
  Text m_vipType = "";
};

// 10 / 30 * 10 = 3.3333 is cut to 3.33 on each. Their sum of 9.99 leaves a tail of 0.01.
TEST_F(SpreadOverChosen, TheTailGoesToTheFirstRows) {
  for (const Text proType : {"MZMJ", "MZDP", "ZHGD", "MZZM", "MZYQ", "MZZP", "MZHG", "MZZQ"}) {
    SCOPED_TRACE(proType);
    m_lines = ThreeOfTen();
    for (SalePlu& line : m_lines) line.DisNum = 1;
    Spread(proType, 10, 30);
    ExpectNumbers(ResultMoneys(m_lines), {3.34, 3.33, 3.33});
    ExpectNumbers(ApportionMoneys(m_lines), {3.34, 3.33, 3.33});
    ExpectNumbers(YhMoneys(m_lines), {3.33, 3.33, 3.33});
  }
}

TEST_F(SpreadOverChosen, ThreeTypesLowerTheTotalsByShareAndTail) {
  for (const Text proType : {"MZMJ", "MZDP", "ZHGD"}) {
    SCOPED_TRACE(proType);
    m_lines = ThreeOfTen();
    Spread(proType, 10, 30);
    ExpectNumbers(Totals(m_lines), {6.66, 6.67, 6.67});
  }
}

TEST_F(SpreadOverChosen, AllOtherTypesLeaveTheTotalsAlone) {
  for (const Text proType : {"MZZM", "MZYQ", "MZZP", "MZHG", "MZZQ", "MZZF", "ZHTJ", "PTXS"}) {
    SCOPED_TRACE(proType);
    m_lines = ThreeOfTen();
    Spread(proType, 10, 30);
    ExpectNumbers(Totals(m_lines), {10, 10, 10});
  }
}

TEST_F(SpreadOverChosen, WritesARow) {
  m_lines = {Line("G1", 10, 2)};
  Spread("MZMJ", 5, 20);
  ASSERT_EQ(m_lines[0].ProResults.size(), 1U);
  const ProResult& row = m_lines[0].ProResults[0];
  EXPECT_STREQ(row.ProBillNo, "R1");
  EXPECT_STREQ(row.Primary, "PT");
  EXPECT_STREQ(row.ProType, "MZMJ");
  EXPECT_EQ(row.DisNum, 2);
  EXPECT_EQ(row.DisMoney, 5);
  EXPECT_EQ(row.YhMoney, 5);
  EXPECT_EQ(row.NewPrice, 7.5);
  EXPECT_EQ(row.BaseMoney, 20);
  EXPECT_FALSE(row.IsVip);
  EXPECT_STREQ(row.VipType, "");
}

TEST_F(SpreadOverChosen, WritesTheSameRowToTheApportionList) {
  m_lines = {Line("G1", 10, 2)};
  Spread("MZMJ", 5, 20);
  ASSERT_EQ(m_lines[0].Apportions.size(), 1U);
  const Apportion& row = m_lines[0].Apportions[0];
  EXPECT_STREQ(row.ProBillNo, "R1");
  EXPECT_EQ(row.AppNum(), 2);
  EXPECT_EQ(row.AppMoney(), 5);
  EXPECT_EQ(row.NewPrice, 7.5);
  EXPECT_EQ(row.BaseMoney, 20);
}

TEST_F(SpreadOverChosen, AMemberTypeMarksTheRows) {
  m_vipType = "01";
  Spread("MZMJ", 9, 30);
  EXPECT_TRUE(m_lines[0].ProResults.at(0).IsVip);
  EXPECT_STREQ(m_lines[0].ProResults.at(0).VipType, "01");
  EXPECT_TRUE(m_lines[2].Apportions.at(0).IsVip);
}

TEST_F(SpreadOverChosen, RowsOfOtherRulesStayInFront) {
  m_lines[0].ProResults = {Row("R2", "ZHGD", "PT", 1)};
  m_lines[0].Apportions = {Row("R2", "ZHGD", "PT", 1)};
  Spread("MZMJ", 9, 30);
  ASSERT_EQ(m_lines[0].ProResults.size(), 2U);
  EXPECT_STREQ(m_lines[0].ProResults[0].ProBillNo, "R2");
  EXPECT_STREQ(m_lines[0].Apportions.at(0).ProBillNo, "R2");
}

// 9 over 30 leaves no tail: 3.00 each.
TEST_F(SpreadOverChosen, MoneyThatAddsUpLeavesNoTail) {
  Spread("MZMJ", 9, 30);
  ExpectNumbers(ResultMoneys(m_lines), {3, 3, 3});
  ExpectNumbers(Totals(m_lines), {7, 7, 7});
}

// 67 / 200 * 1 = 0.335 -> 340 / 10 -> 0.34; 133 / 200 * 1 = 0.665 -> 670 / 10 -> 0.67. The tail is -0.01.
TEST_F(SpreadOverChosen, HalfACentGoesUpAndTheTailMayBeNegative) {
  m_lines = {Line("G1", 67, 1), Line("G2", 133, 1)};
  Spread("MZMJ", 1, 200);
  ExpectNumbers(YhMoneys(m_lines), {0.34, 0.67});
  ExpectNumbers(ResultMoneys(m_lines), {0.33, 0.67});
  ExpectNumbers(Totals(m_lines), {66.67, 132.33});
}

// -10 / 3 -> (-3333.33 + 5) / 10 -> -332: the cut goes toward zero. The tail is -10 + 9.96.
TEST_F(SpreadOverChosen, MoneyBelowZeroIsCutTowardZero) {
  Spread("MZMJ", -10, 30);
  ExpectNumbers(YhMoneys(m_lines), {-3.32, -3.32, -3.32});
  ExpectNumbers(ResultMoneys(m_lines), {-3.36, -3.32, -3.32});
  ExpectNumbers(Totals(m_lines), {13.36, 13.32, 13.32});
}

// A currency of small units: cents beyond 32 bits are shared like others.
TEST_F(SpreadOverChosen, SharesBeyondThirtyTwoBitsAddUp) {
  m_lines = {Line("G1", 40000000, 1), Line("G2", 80000000, 1)};
  Spread("MZMJ", 90000000, 120000000);
  ExpectNumbers(YhMoneys(m_lines), {30000000, 60000000});
  ExpectNumbers(ResultMoneys(m_lines), {30000000, 60000000});
  ExpectNumbers(Totals(m_lines), {10000000, 20000000});
}

TEST_F(SpreadOverChosen, NoMoneyNoBaseOrNoLinesDoNothing) {
  Spread("MZMJ", 0, 30);
  Spread("MZMJ", 10, 0);
  ExpectNumbers(ResultMoneys(m_lines), {});
  ExpectNumbers(ApportionMoneys(m_lines), {});
  ExpectNumbers(Totals(m_lines), {10, 10, 10});
  m_lines.clear();
  Spread("MZMJ", 10, 30);
  EXPECT_TRUE(m_lines.empty());
}

TEST_F(SpreadOverChosen, ALineWithoutAShareGetsNoRowAndKeepsItsQuantity) {
  m_lines[1].Total = 0;
  for (SalePlu& line : m_lines) line.DisNum = 1;
  Spread("MZZM", 10, 20);
  ExpectNumbers(ResultMoneys(m_lines), {5, 5});
  EXPECT_TRUE(m_lines[1].ProResults.empty());
  EXPECT_TRUE(m_lines[1].Apportions.empty());
  EXPECT_EQ(m_lines[1].DisNum, 1);
}

// --- Over chosen lines: the rule's own rows --------------------------------------------------------------------------

// 10 / 30 * 9 on each of the other two; what the first line doesn't get is the tail, and lands on its old row.
TEST_F(SpreadOverChosen, ALineThatHasAResultOfTheRuleIsPassedOver) {
  m_lines[0].ProResults = {Row("R1", "MZMJ", "PT", 1, 1)};
  m_lines[0].Apportions = {Row("R1", "MZMJ", "PT", 1, 1)};
  Spread("MZMJ", 9, 30);
  ExpectNumbers(ResultMoneys(m_lines), {4, 3, 3});
  ExpectNumbers(ApportionMoneys(m_lines), {4, 3, 3});
  ExpectNumbers(Totals(m_lines), {7, 7, 7});
}

TEST_F(SpreadOverChosen, ALineThatHasAnApportionRowOfTheRuleIsNot) {
  m_lines[1].Apportions = {Row("R1", "MZMJ", "PT", 1, 1)};
  Spread("MZMJ", 9, 30);
  ExpectNumbers(ResultMoneys(m_lines), {3, 3, 3});
  ExpectNumbers(ApportionMoneys(m_lines), {3, 1, 3, 3});
}

// --- Over chosen lines: what a line's part is ------------------------------------------------------------------------

// Of the second line, 4.00 stand under a "DZ" rule: 10 and 6 of 16.
TEST_F(SpreadOverChosen, ThePartIsTheOpenMoney) {
  m_lines = {Line("G1", 10, 1), Line("G2", 10, 1)};
  m_lines[1].ProResults = {Row("R2", "ZHGD", "DZ", 1, 0, 4)};
  Spread("MZMJ", 8, 16);
  EXPECT_NEAR(m_lines[0].ProResults.at(0).DisMoney, 5, kDust);
  EXPECT_NEAR(m_lines[1].ProResults.at(1).DisMoney, 3, kDust);
}

// A rule of the class "DJ" doesn't see what its own family stands on.
TEST_F(SpreadOverChosen, ThePartFollowsTheStackingClass) {
  m_lines = {Line("G1", 10, 1), Line("G2", 10, 1)};
  m_lines[1].ProResults = {Row("R2", "MZZM", "PT", 1, 0, 4)};
  Spread(Rule("R1", "MZMJ", "DJ"), 8, 20);
  EXPECT_NEAR(m_lines[0].ProResults.at(0).DisMoney, 4, kDust);
  EXPECT_NEAR(m_lines[1].ProResults.at(1).DisMoney, 4, kDust);
}

TEST_F(SpreadOverChosen, ThePartOfGiftsIsTheWholeAmount) {
  for (const Text proType : {"MZZP", "MZHG"}) {
    SCOPED_TRACE(proType);
    m_lines = {Line("G1", 10, 1), Line("G2", 10, 1)};
    m_lines[1].ProResults = {Row("R2", "ZHGD", "DZ", 1, 0, 4)};
    Spread(proType, 8, 20);
    EXPECT_NEAR(m_lines[0].ProResults.at(0).DisMoney, 4, kDust);
    EXPECT_NEAR(m_lines[1].ProResults.at(1).DisMoney, 4, kDust);
  }
}

// --- Over chosen lines: quantity, price and base ---------------------------------------------------------------------

// 1.5 of a weighed goods: 2 in the row, and a base of 2 * 10. The new price is (15 - 3) / 1.5.
TEST_F(SpreadOverChosen, AQuantityIsRoundedUp) {
  m_lines = {Line("G1", 10, 1.5)};
  Spread("MZMJ", 3, 15);
  const ProResult& row = m_lines[0].ProResults.at(0);
  EXPECT_EQ(row.DisNum, 2);
  EXPECT_EQ(row.BaseMoney, 20);
  EXPECT_EQ(row.NewPrice, 8);
}

// 2.00000001 is 2 in single precision, and 16777217 is 16777216.
TEST_F(SpreadOverChosen, AQuantityIsRoundedUpInSinglePrecision) {
  m_lines = {Line("G1", 10, 2.00000001)};
  Spread("MZMJ", 5, 20);
  EXPECT_EQ(m_lines[0].ProResults.at(0).DisNum, 2);
  m_lines = {Line("G1", 1, 16777217)};
  Spread("MZMJ", 5, 16777217);
  EXPECT_EQ(m_lines[0].ProResults.at(0).DisNum, 16777216);
}

// The base is 3 * 9.00, whatever the price and the total say.
TEST_F(SpreadOverChosen, TheBaseOfARowIsQuantityAtFinalPrice) {
  m_lines = {Line("G1", 10, 3)};
  m_lines[0].FinalPrice = 9;
  m_options.Price = Corvane::FinalPrice::Follows;
  Spread("MZMJ", 6, 30);
  EXPECT_EQ(m_lines[0].ProResults.at(0).BaseMoney, 27);
  EXPECT_EQ(m_lines[0].ProResults.at(0).NewPrice, 8);
  EXPECT_EQ(m_lines[0].FinalPrice, 8);
}

TEST_F(SpreadOverChosen, TheFinalPriceIsSetOnDemandOnly) {
  Spread("MZMJ", 9, 30);
  ExpectNumbers(FinalPrices(m_lines), {10, 10, 10});
  m_lines = ThreeOfTen();
  m_options.Price = Corvane::FinalPrice::Follows;
  Spread("MZMJ", 9, 30);
  ExpectNumbers(FinalPrices(m_lines), {7, 7, 7});
}

// The tail doesn't come into the price: (10 - 3.33) / 1.
TEST_F(SpreadOverChosen, TheFinalPriceDoesNotSeeTheTail) {
  m_options.Price = Corvane::FinalPrice::Follows;
  Spread("MZMJ", 10, 30);
  ExpectNumbers(FinalPrices(m_lines), {6.67, 6.67, 6.67});
}

// 2 of 3 pieces: the row holds 2, stands on 2 * 10 and uses them up. The price is that of all 3: (30 - 6) / 3.
TEST_F(SpreadOverChosen, OfMzzmTheQuantityIsWhatTheLineHoldsReady) {
  m_lines = {Line("G1", 10, 3)};
  m_lines[0].DisNum = 2;
  Spread("MZZM", 6, 30);
  const ProResult& row = m_lines[0].ProResults.at(0);
  EXPECT_EQ(row.DisNum, 2);
  EXPECT_EQ(row.DisMoney, 6);
  EXPECT_EQ(row.BaseMoney, 20);
  EXPECT_EQ(row.NewPrice, 8);
  EXPECT_EQ(m_lines[0].DisNum, 0);
}

// With nothing held ready a line stands on its part of the base: 60 * 10 / 40 and 60 * 30 / 40.
TEST_F(SpreadOverChosen, WithoutAQuantityTheBaseOfARowIsThePartOfTheBase) {
  m_lines = {Line("G1", 10, 1), Line("G2", 10, 3)};
  Spread("MZZM", 6, 60);
  EXPECT_EQ(m_lines[0].ProResults.at(0).DisNum, 0);
  EXPECT_EQ(m_lines[0].ProResults.at(0).BaseMoney, 15);
  EXPECT_EQ(m_lines[1].ProResults.at(0).BaseMoney, 45);
}

// A quantity of -1 is not above 0. 40 * 10 / 40 for the one line; for the other, when the first is down to 9, 40 * 30
// / 39.
TEST_F(SpreadOverChosen, ThePartOfTheBaseIsReckonedOnTheTotalsOfTheMoment) {
  m_lines = {Line("G1", -10, -1), Line("G2", -30, -1)};
  Spread("MZMJ", 4, 40);
  EXPECT_NEAR(m_lines[0].ProResults.at(0).BaseMoney, 10, kDust);
  EXPECT_NEAR(m_lines[1].ProResults.at(0).BaseMoney, 1200.0 / 39, kDust);
}

TEST_F(SpreadOverChosen, OfOtherTypesTheLinesKeepWhatTheyHoldReady) {
  m_lines[0].DisNum = 1;
  Spread("MZMJ", 9, 30);
  EXPECT_EQ(m_lines[0].DisNum, 1);
}

// --- Over chosen lines: by the quantity held ready -------------------------------------------------------------------

class SpreadByDisNum : public SpreadOverChosen {
 protected:
  SpreadByDisNum() {
    m_options.Part = Corvane::PartBy::DisNum;
    m_lines = {Line("G1", 10, 3), Line("G2", 10, 1)};
    m_lines[0].DisNum = 2;
    m_lines[1].DisNum = 1;
  }
};

// 2 * 10 and 1 * 10 of 30: 4.00 and 2.00.
TEST_F(SpreadByDisNum, ThePartIsThatQuantityAtTheFinalPrice) {
  Spread("MZDP", 6, 30);
  ExpectNumbers(ResultMoneys(m_lines), {4, 2});
  ExpectNumbers(Totals(m_lines), {26, 8});
}

// (20 - 4) / 2.
TEST_F(SpreadByDisNum, TheRowSpeaksOfThatQuantity) {
  Spread("MZDP", 6, 30);
  const ProResult& row = m_lines[0].ProResults.at(0);
  EXPECT_EQ(row.DisNum, 2);
  EXPECT_EQ(row.NewPrice, 8);
  EXPECT_EQ(row.BaseMoney, 20);
}

TEST_F(SpreadByDisNum, ThatQuantityIsUsedUp) {
  Spread("MZDP", 6, 30);
  EXPECT_EQ(m_lines[0].DisNum, 0);
  EXPECT_EQ(m_lines[1].DisNum, 0);
}

TEST_F(SpreadByDisNum, ALineThatHoldsNothingReadyGetsNothing) {
  m_lines[1].DisNum = 0;
  Spread("MZDP", 6, 20);
  ExpectNumbers(ResultMoneys(m_lines), {6});
  EXPECT_TRUE(m_lines[1].ProResults.empty());
}

TEST_F(SpreadByDisNum, TheFinalPriceStays) {
  m_options.Price = Corvane::FinalPrice::Follows;
  Spread("MZDP", 6, 30);
  ExpectNumbers(FinalPrices(m_lines), {10, 10});
}

// 15 of 15 pays 3.00: (15 - 3) / 1.5. In the row the 1.5 become 2, on a base of 2 * 10.
TEST_F(SpreadByDisNum, ThePriceIsThatOfTheUnroundedQuantity) {
  m_lines = {Line("G1", 10, 3)};
  m_lines[0].DisNum = 1.5;
  Spread("MZDP", 3, 15);
  const ProResult& row = m_lines[0].ProResults.at(0);
  EXPECT_EQ(row.NewPrice, 8);
  EXPECT_EQ(row.DisNum, 2);
  EXPECT_EQ(row.BaseMoney, 20);
}

TEST_F(SpreadByDisNum, WhatOtherRulesStandOnDoesNotMatter) {
  m_lines[0].ProResults = {Row("R2", "ZHGD", "DZ", 3, 0, 30)};
  Spread("MZDP", 6, 30);
  EXPECT_NEAR(m_lines[0].ProResults.at(1).DisMoney, 4, kDust);
}

// --- Over chosen lines: where the tail lands -------------------------------------------------------------------------

TEST_F(SpreadOverChosen, TheTailLandsOnTheFirstRowsWhoeverWroteThem) {
  m_lines[1].ProResults = {Row("R2", "ZHGD", "PT", 1, 1)};
  m_lines[1].Apportions = {Row("R3", "ZHGD", "PT", 1, 2)};
  // The whole amount of the first line stands under a "DZ" rule: it gets no share and no apportion row.
  m_lines[0].ProResults = {Row("R4", "ZHGD", "DZ", 1, 3, 10)};
  Spread("MZMJ", 10, 30);
  ExpectNumbers(ResultMoneys(m_lines), {3 + 3.34, 1, 3.33, 3.33});
  ExpectNumbers(ApportionMoneys(m_lines), {2 + 3.34, 3.33, 3.33});
  ExpectNumbers(Totals(m_lines), {6.66, 6.67, 6.67});
}

TEST_F(SpreadOverChosen, TheTailOfOtherTypesLeavesTheTotalsOfForeignRowsAlone) {
  m_lines[0].ProResults = {Row("R2", "ZHGD", "PT", 1, 1)};
  Spread("MZYQ", 10, 30);
  ExpectNumbers(ResultMoneys(m_lines), {1.01, 3.33, 3.33, 3.33});
  ExpectNumbers(Totals(m_lines), {10, 10, 10});
}

// Every line has its row already: all the money is tail.
TEST_F(SpreadOverChosen, MoneyThatNoLineTakesIsTail) {
  m_lines = {Line("G1", 10, 1)};
  m_lines[0].ProResults = {Row("R1", "MZMJ", "PT", 1, 1)};
  Spread("MZMJ", 4, 10);
  ExpectNumbers(ResultMoneys(m_lines), {5});
  ExpectNumbers(ApportionMoneys(m_lines), {});
  ExpectNumbers(Totals(m_lines), {6});
}

// --- Over chosen lines: without result rows --------------------------------------------------------------------------

class SpreadWithoutResults : public SpreadOverChosen {
 protected:
  SpreadWithoutResults() { m_options.To = Corvane::Rows::Apportions; }
};

TEST_F(SpreadWithoutResults, OnlyApportionRowsAreWritten) {
  Spread("MZZM", 10, 30);
  ExpectNumbers(ApportionMoneys(m_lines), {3.34, 3.33, 3.33});
  ExpectNumbers(ResultMoneys(m_lines), {});
}

// No line has a result row, so that the tail stops at the apportion row.
TEST_F(SpreadWithoutResults, TheTotalsFallByTheSharesAndNotByTheTail) {
  Spread("MZMJ", 10, 30);
  ExpectNumbers(Totals(m_lines), {6.67, 6.67, 6.67});
}

// The second line has another rule's result: its total takes the tail, its row doesn't.
TEST_F(SpreadWithoutResults, TheTailLowersTheTotalWhereAResultStands) {
  m_lines[1].ProResults = {Row("R2", "ZHGD", "PT", 1, 1)};
  Spread("MZMJ", 10, 30);
  ExpectNumbers(ApportionMoneys(m_lines), {3.34, 3.33, 3.33});
  ExpectNumbers(ResultMoneys(m_lines), {1});
  ExpectNumbers(Totals(m_lines), {6.67, 6.66, 6.67});
}

// --- Over the whole sale ---------------------------------------------------------------------------------------------

class SpreadOverSale : public testing::Test {
 protected:
  void Spread(Text proType, double money, double base) {
    ruletest::RuleOnSale sale(Rule("R1", proType, "PT"), m_lines, m_vipType);
    Corvane::RuleRun run = sale.Run();
    Corvane::SpreadOverLines(run, money, base, m_options.Price);
  }

  Lines m_lines = ThreeOfTen();
  SpreadOptions m_options;
  Text m_vipType = "";
};

// 30 * 10 / 30 = 10 stand on each line; 10 / 30 * 10 is cut to 3.33, and 0.01 is left.
TEST_F(SpreadOverSale, TheTailGoesToTheRulesFirstRows) {
  for (const Text proType : {"MZMJ", "MZYQ"}) {
    SCOPED_TRACE(proType);
    m_lines = ThreeOfTen();
    Spread(proType, 10, 30);
    ExpectNumbers(ResultMoneys(m_lines), {3.34, 3.33, 3.33});
    ExpectNumbers(ApportionMoneys(m_lines), {3.34, 3.33, 3.33});
    ExpectNumbers(YhMoneys(m_lines), {3.33, 3.33, 3.33});
  }
}

// Here it is the other way about than over chosen lines: the caller lowers them.
TEST_F(SpreadOverSale, OfMzmjLeavesTheTotalsAlone) {
  Spread("MZMJ", 10, 30);
  ExpectNumbers(Totals(m_lines), {10, 10, 10});
}

TEST_F(SpreadOverSale, OfOtherTypesLowersTheTotalsByTheSharesAndNotByTheTail) {
  for (const Text proType : {"MZYQ", "MZDP", "ZHGD", "PTXS"}) {
    SCOPED_TRACE(proType);
    m_lines = ThreeOfTen();
    Spread(proType, 10, 30);
    ExpectNumbers(Totals(m_lines), {6.67, 6.67, 6.67});
  }
}

TEST_F(SpreadOverSale, WritesARow) {
  m_lines = {Line("G1", 10, 2)};
  m_vipType = "01";
  Spread("MZMJ", 5, 20);
  ASSERT_EQ(m_lines[0].ProResults.size(), 1U);
  const ProResult& row = m_lines[0].ProResults[0];
  EXPECT_STREQ(row.ProBillNo, "R1");
  EXPECT_STREQ(row.Primary, "PT");
  EXPECT_STREQ(row.ProType, "MZMJ");
  EXPECT_EQ(row.DisNum, 2);
  EXPECT_EQ(row.DisMoney, 5);
  EXPECT_EQ(row.YhMoney, 5);
  EXPECT_EQ(row.NewPrice, 7.5);
  EXPECT_EQ(row.BaseMoney, 20);
  EXPECT_TRUE(row.IsVip);
  EXPECT_STREQ(row.VipType, "01");
  ASSERT_EQ(m_lines[0].Apportions.size(), 1U);
  EXPECT_EQ(m_lines[0].Apportions[0].AppNum(), 2);
  EXPECT_EQ(m_lines[0].Apportions[0].AppMoney(), 5);
}

// A line stands on its part of the base, 60 * 10 / 40 and 60 * 30 / 40, and the final price doesn't matter.
TEST_F(SpreadOverSale, OfMzmjALineStandsOnItsPartOfTheBase) {
  m_lines = {Line("G1", 10, 1), Line("G2", 10, 3)};
  m_lines[0].FinalPrice = 99;
  Spread("MZMJ", 6, 60);
  EXPECT_NEAR(m_lines[0].ProResults.at(0).BaseMoney, 15, kDust);
  EXPECT_NEAR(m_lines[1].ProResults.at(0).BaseMoney, 45, kDust);
  ExpectNumbers(ResultMoneys(m_lines), {1.5, 4.5});
}

// 1.5 count as 2: a base of 2 * 9 against 1 * 6 of 24, for 8.00.
TEST_F(SpreadOverSale, OfOtherTypesALineStandsOnItsQuantityAtTheFinalPrice) {
  m_lines = {Line("G1", 10, 1.5), Line("G2", 10, 1)};
  m_lines[0].FinalPrice = 9;
  m_lines[1].FinalPrice = 6;
  Spread("MZYQ", 8, 24);
  EXPECT_EQ(m_lines[0].ProResults.at(0).DisNum, 2);
  EXPECT_EQ(m_lines[0].ProResults.at(0).BaseMoney, 18);
  EXPECT_EQ(m_lines[1].ProResults.at(0).BaseMoney, 6);
  ExpectNumbers(ResultMoneys(m_lines), {6, 2});
  // (15 - 6) / 1.5.
  EXPECT_EQ(m_lines[0].ProResults.at(0).NewPrice, 6);
}

TEST_F(SpreadOverSale, AQuantityIsRoundedUpInSinglePrecision) {
  m_lines = {Line("G1", 10, 2.00000001)};
  Spread("MZMJ", 5, 20);
  EXPECT_EQ(m_lines[0].ProResults.at(0).DisNum, 2);
}

// 1 of 3 pieces, on a base of 1 * 10. What the line holds ready stays.
TEST_F(SpreadOverSale, OfMzzmTheQuantityIsWhatTheLineHoldsReadyAndKeeps) {
  m_lines = {Line("G1", 10, 3)};
  m_lines[0].DisNum = 1;
  Spread("MZZM", 4, 10);
  EXPECT_EQ(m_lines[0].ProResults.at(0).DisNum, 1);
  EXPECT_EQ(m_lines[0].ProResults.at(0).BaseMoney, 10);
  EXPECT_EQ(m_lines[0].ProResults.at(0).DisMoney, 4);
  EXPECT_EQ(m_lines[0].DisNum, 1);
}

TEST_F(SpreadOverSale, WithoutAQuantityALineStandsOnItsPartOfTheBase) {
  m_lines = {Line("G1", 10, 3)};
  Spread("MZZM", 4, 20);
  EXPECT_EQ(m_lines[0].ProResults.at(0).DisNum, 0);
  EXPECT_EQ(m_lines[0].ProResults.at(0).BaseMoney, 20);
  EXPECT_EQ(m_lines[0].ProResults.at(0).DisMoney, 4);
}

TEST_F(SpreadOverSale, TheFinalPriceIsSetOnDemandOnly) {
  Spread("MZMJ", 9, 30);
  ExpectNumbers(FinalPrices(m_lines), {10, 10, 10});
  m_lines = ThreeOfTen();
  m_options.Price = Corvane::FinalPrice::Follows;
  Spread("MZMJ", 10, 30);
  ExpectNumbers(FinalPrices(m_lines), {6.67, 6.67, 6.67});
}

TEST_F(SpreadOverSale, AShareOfNothingStillWritesItsRow) {
  m_lines[1].Total = 0;
  Spread("MZMJ", 10, 20);
  ExpectNumbers(ResultMoneys(m_lines), {5, 0, 5});
  ExpectNumbers(ApportionMoneys(m_lines), {5, 0, 5});
}

TEST_F(SpreadOverSale, NoMoneyWritesRowsOfNothing) {
  Spread("MZMJ", 0, 30);
  ExpectNumbers(ResultMoneys(m_lines), {0, 0, 0});
}

TEST_F(SpreadOverSale, NoBaseOrNoLinesDoNothing) {
  Spread("MZMJ", 10, 0);
  ExpectNumbers(ResultMoneys(m_lines), {});
  ExpectNumbers(ApportionMoneys(m_lines), {});
  m_lines.clear();
  Spread("MZMJ", 10, 30);
  EXPECT_TRUE(m_lines.empty());
}

// A sale and its return: 50 and -50.
TEST_F(SpreadOverSale, LinesWhoseTotalsSumToNothingGetNothing) {
  m_lines = {Line("G1", 50, 1), Line("G1", 50, -1)};
  Spread("MZMJ", 10, 50);
  Spread("MZYQ", 10, 50);
  ExpectNumbers(ResultMoneys(m_lines), {});
  ExpectNumbers(ApportionMoneys(m_lines), {});
  ExpectNumbers(Totals(m_lines), {50, -50});
}

// Weighed goods and their return: 0.1 + 0.2 - 0.3 is 5.6e-17, and a tenth of that is no share.
TEST_F(SpreadOverSale, LinesWhoseTotalsSumToAHairGetNothing) {
  m_lines = {Line("G1", 1, 0.1), Line("G1", 1, 0.2), Line("G1", 1, -0.3)};
  Spread("MZMJ", 10, 0.3);
  ExpectNumbers(ResultMoneys(m_lines), {});
  ExpectNumbers(Totals(m_lines), {0.1, 0.2, -0.3});
}

// --- Over the whole sale: where the tail lands -----------------------------------------------------------------------

// Rows of another rule stand in front of the rule's own, and are left alone.
TEST_F(SpreadOverSale, TheTailLandsOnRowsOfTheRuleOnly) {
  m_lines[0].ProResults = {Row("R2", "ZHGD", "PT", 1, 1)};
  m_lines[0].Apportions = {Row("R2", "ZHGD", "PT", 1, 2)};
  Spread("MZMJ", 10, 30);
  ExpectNumbers(ResultMoneys(m_lines), {1, 3.34, 3.33, 3.33});
  ExpectNumbers(ApportionMoneys(m_lines), {2, 3.34, 3.33, 3.33});
}

// The first line is passed over: 6.66 are shared, and 3.34 land on its old rows.
TEST_F(SpreadOverSale, TheTailLandsOnOldRowsOfTheRuleToo) {
  m_lines[0].ProResults = {Row("R1", "MZMJ", "PT", 1, 1)};
  m_lines[0].Apportions = {Row("R1", "MZMJ", "PT", 1, 2)};
  Spread("MZMJ", 10, 30);
  ExpectNumbers(ResultMoneys(m_lines), {4.34, 3.33, 3.33});
  ExpectNumbers(ApportionMoneys(m_lines), {5.34, 3.33, 3.33});
}

// The line has a result of the rule and no apportion row: the tail ends there all the same.
TEST_F(SpreadOverSale, TheTailEndsAtTheFirstResultOfTheRule) {
  m_lines[0].ProResults = {Row("R1", "MZMJ", "PT", 1, 1)};
  Spread("MZMJ", 10, 30);
  ExpectNumbers(ResultMoneys(m_lines), {4.34, 3.33, 3.33});
  ExpectNumbers(ApportionMoneys(m_lines), {3.33, 3.33});
}

// The line's old apportion row is the first of the rule and takes the tail; the new result takes it too.
TEST_F(SpreadOverSale, OfTwoApportionRowsOfTheRuleTheFirstTakesTheTail) {
  m_lines[0].Apportions = {Row("R1", "MZMJ", "PT", 1, 1)};
  Spread("MZMJ", 10, 30);
  ExpectNumbers(ResultMoneys(m_lines), {3.34, 3.33, 3.33});
  ExpectNumbers(ApportionMoneys(m_lines), {1.01, 3.33, 3.33, 3.33});
}

}  // namespace
