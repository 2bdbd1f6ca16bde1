// Which lines a rule covers.
#include "rule/LineSelection.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "rule/ResultRows.h"
#include "rule/RuleRows.h"
#include "tests/unit/RuleFixture.h"

using Corvane::LineHasClass;
using Corvane::LinePtrs;
using Corvane::PluCondition;
using Corvane::ProInfo;
using Corvane::RowPtrs;
using Corvane::RowsBy;
using Corvane::RuleLines;
using Corvane::SalePlu;
using Corvane::SplitRows;
using Corvane::Text;
using ruletest::Entries;
using ruletest::Line;
using ruletest::Row;
using ruletest::Rule;

namespace {

using Lines = std::vector<SalePlu>;
using Conditions = std::vector<PluCondition>;
using Codes = std::vector<std::string>;

PluCondition Condition(Text contain, Text pluType, Text pluCode) {
  PluCondition row;
  row.Contain = contain;
  row.PluType = pluType;
  row.PluCode = pluCode;
  return row;
}

SalePlu Classed(Text pluCode, Text word, Text code) {
  SalePlu line = Line(pluCode, 10, 1);
  line.LineClasses = {{word, code}};
  return line;
}

Codes CodesOf(const LinePtrs& lines) {
  Codes codes;
  for (const SalePlu* line : lines) codes.emplace_back(line->PluCode);
  return codes;
}

Codes CodesOf(const RowPtrs& rows) {
  Codes codes;
  for (const auto* row : rows) codes.emplace_back(row->PluCode);
  return codes;
}

// --- Classes ---------------------------------------------------------------------------------------------------------

TEST(LineClass, IsAPairOfWordAndCode) {
  SalePlu line = Line("G1", 10, 1);
  line.LineClasses = {{"CAT", "C1"}, {"BRD", "B1"}, {"CAT", "C2"}};
  EXPECT_TRUE(LineHasClass(line, "CAT", "C1"));
  EXPECT_TRUE(LineHasClass(line, "CAT", "C2"));
  EXPECT_TRUE(LineHasClass(line, "BRD", "B1"));
  EXPECT_FALSE(LineHasClass(line, "BRD", "C1"));
  EXPECT_FALSE(LineHasClass(line, "CAT", "C"));
  EXPECT_FALSE(LineHasClass(line, "cat", "C1"));
  EXPECT_FALSE(LineHasClass(line, "C1", "CAT"));
  EXPECT_FALSE(LineHasClass(line, "", ""));
}

TEST(LineClass, TheFieldsOfTheLineAreNoPairs) {
  SalePlu line = Line("G1", 10, 1);
  line.CAT = "C1";
  EXPECT_FALSE(LineHasClass(line, "CAT", "C1"));
}

TEST(LineClass, NullTextsCompareAsEmpty) {
  EXPECT_TRUE(LineHasClass(Classed("G1", "X", ""), "X", nullptr));
  EXPECT_FALSE(LineHasClass(Line("G1", 10, 1), nullptr, nullptr));
}

// --- Single packages -------------------------------------------------------------------------------------------------

struct PackRow {
  double PackCnt;
  bool Single;
};

TEST(SingleLines, AreOnePackageOrNone) {
  const PackRow rows[] = {{0, true},         {1, true},         {0.000009, true},
                          {-0.000009, true}, {0.999991, true},  {1.000009, true},
                          {0.00002, false},  {-0.00002, false}, {0.99998, false},
                          {1.00002, false},  {2, false},        {0.5, false},
                          {-1, false},       {12, false},       {std::numeric_limits<double>::quiet_NaN(), false}};
  for (const PackRow& row : rows) {
    SCOPED_TRACE(row.PackCnt);
    Lines lines = {Line("G1", 10, 5)};
    lines[0].PackCnt = row.PackCnt;
    EXPECT_EQ(Corvane::SelectSingleLines(lines).size(), row.Single ? 1U : 0U);
  }
}

TEST(SingleLines, KeepTheirOrderAndAreTheSalesOwn) {
  Lines lines = {Line("G1", 10, 1), Line("G2", 10, 1), Line("G3", 10, 1)};
  lines[1].PackCnt = 6;
  EXPECT_EQ(Corvane::SelectSingleLines(lines), (LinePtrs{&lines.front(), &lines.back()}));
}

// --- Rows and the lines outside of them ------------------------------------------------------------------------------

TEST(SplitRowsByKind, KeepsTheOrderOfTheRows) {
  const Conditions rows = {Condition("IN", "PLU", "1"),  Condition("NOT", "CAT", "2"), Condition("IN", "CAT", "3"),
                           Condition("NOT", "PLU", "4"), Condition("IN", "PLU", "5"),  Condition("NOT", "BRD", "6"),
                           Condition("IN", "", "7"),     Condition("NOT", "PLU", "8")};
  const SplitRows split(rows);
  EXPECT_EQ(CodesOf(split.PluIn), (Codes{"1", "5"}));
  EXPECT_EQ(CodesOf(split.PluNot), (Codes{"4", "8"}));
  EXPECT_EQ(CodesOf(split.ClassIn), (Codes{"3", "7"}));
  EXPECT_EQ(CodesOf(split.ClassNot), (Codes{"2", "6"}));
}

TEST(SplitRowsByKind, ARowThatNeitherIncludesNorExcludesIsInNoList) {
  const Conditions rows = {Condition("in", "PLU", "1"), Condition("", "PLU", "2"), Condition(nullptr, "CAT", "3"),
                           Condition("OUT", "CAT", "4")};
  const SplitRows split(rows);
  EXPECT_TRUE(split.PluIn.empty());
  EXPECT_TRUE(split.PluNot.empty());
  EXPECT_TRUE(split.ClassIn.empty());
  EXPECT_TRUE(split.ClassNot.empty());
}

class OutsideLines : public testing::Test {
 protected:
  Codes Outside(const Conditions& conditions, RowsBy by) {
    RowPtrs rows;
    for (const PluCondition& condition : conditions) rows.push_back(&condition);
    return CodesOf(Corvane::SelectOutsideLines(rows, Corvane::PointersTo(m_lines), by));
  }

  Lines m_lines = {Classed("G1", "CAT", "C1"), Classed("G2", "CAT", "C2"), Classed("G3", "BRD", "C1")};
};

TEST_F(OutsideLines, WithoutRowsAreAll) {
  EXPECT_EQ(Outside({}, RowsBy::Goods), (Codes{"G1", "G2", "G3"}));
  EXPECT_EQ(Outside({}, RowsBy::Class), (Codes{"G1", "G2", "G3"}));
}

TEST_F(OutsideLines, ByGoodsAreNotNamedByGoodsCode) {
  EXPECT_EQ(Outside({Condition("NOT", "PLU", "G2"), Condition("NOT", "PLU", "G9")}, RowsBy::Goods),
            (Codes{"G1", "G3"}));
}

TEST_F(OutsideLines, ByGoodsTheTypeOfTheRowDoesNotMatter) {
  EXPECT_EQ(Outside({Condition("NOT", "CAT", "G2"), Condition("NOT", "CAT", "C1")}, RowsBy::Goods),
            (Codes{"G1", "G3"}));
}

TEST_F(OutsideLines, ByClassAreNotNamedByClass) {
  EXPECT_EQ(Outside({Condition("NOT", "CAT", "C1")}, RowsBy::Class), (Codes{"G2", "G3"}));
  EXPECT_EQ(Outside({Condition("NOT", "CAT", "C1"), Condition("NOT", "CAT", "C2"), Condition("NOT", "BRD", "C1")},
                    RowsBy::Class),
            Codes{});
}

TEST_F(OutsideLines, ByClassAGoodsCodeNamesNothing) {
  EXPECT_EQ(Outside({Condition("NOT", "PLU", "G1")}, RowsBy::Class), (Codes{"G1", "G2", "G3"}));
}

// --- The lines of a full-amount rule ---------------------------------------------------------------------------------

class SelectedLines : public ruletest::WithLog {
 protected:
  RuleLines Select(const Conditions& rows) { return Select(rows, Rule("R1", "MZZM", "PT")); }
  RuleLines Select(const Conditions& rows, const ProInfo& rule) {
    ruletest::RuleOnSale sale(rule, m_lines);
    return Corvane::SelectRuleLines(sale.Run(), SplitRows(rows));
  }

  RuleLines SelectAmong(const LinePtrs& lines, const Conditions& rows, const ProInfo& rule) {
    ruletest::RuleOnSale sale(rule, m_lines);
    return Corvane::SelectRuleLinePtrs(sale.Run(), SplitRows(rows), lines);
  }

  /// Three lines of 10.00, 2 pieces for 20.00, 3 pieces for 30.00.
  Lines m_lines = {Line("G1", 10, 1), Line("G2", 10, 2), Line("G3", 10, 3)};
};

TEST_F(SelectedLines, WithoutRowsAreNone) {
  const RuleLines taken = Select({});
  EXPECT_TRUE(taken.Lines.empty());
  EXPECT_EQ(taken.Quantity, 0);
  EXPECT_EQ(taken.Money, 0);
  EXPECT_EQ(Logged(), Entries{});
}

TEST_F(SelectedLines, AreNamedByGoods) {
  const RuleLines taken = Select({Condition("IN", "PLU", "G3"), Condition("IN", "PLU", "G1")});
  EXPECT_EQ(taken.Lines, (LinePtrs{&m_lines.front(), &m_lines.back()}));
  EXPECT_EQ(taken.Quantity, 4);
  EXPECT_EQ(taken.Money, 40);
}

TEST_F(SelectedLines, AreNamedByClass) {
  m_lines[1].LineClasses = {{"CAT", "C1"}, {"BRD", "B1"}};
  m_lines[2].LineClasses = {{"CAT", "C2"}};
  const RuleLines taken = Select({Condition("IN", "BRD", "B1")});
  EXPECT_EQ(CodesOf(taken.Lines), (Codes{"G2"}));
  EXPECT_EQ(taken.Quantity, 2);
  EXPECT_EQ(taken.Money, 20);
}

TEST_F(SelectedLines, AreTakenOnceByWhateverNamesThem) {
  m_lines[0].LineClasses = {{"CAT", "C1"}};
  const RuleLines taken =
      Select({Condition("IN", "PLU", "G1"), Condition("IN", "PLU", "G1"), Condition("IN", "CAT", "C1")});
  EXPECT_EQ(CodesOf(taken.Lines), (Codes{"G1"}));
  EXPECT_EQ(taken.Quantity, 1);
  EXPECT_EQ(taken.Money, 10);
}

TEST_F(SelectedLines, AreNotExcludedByGoods) {
  const RuleLines taken =
      Select({Condition("IN", "PLU", "G1"), Condition("IN", "PLU", "G2"), Condition("NOT", "PLU", "G1")});
  EXPECT_EQ(CodesOf(taken.Lines), (Codes{"G2"}));
}

TEST_F(SelectedLines, AreNotExcludedByClass) {
  m_lines[0].LineClasses = {{"CAT", "C1"}};
  const RuleLines taken =
      Select({Condition("IN", "PLU", "G1"), Condition("IN", "PLU", "G2"), Condition("NOT", "CAT", "C1")});
  EXPECT_EQ(CodesOf(taken.Lines), (Codes{"G2"}));
}

TEST_F(SelectedLines, AreNoneWhereTheFirstSieveLeavesNone) {
  const RuleLines taken = Select({Condition("NOT", "PLU", "G1"), Condition("NOT", "PLU", "G2"),
                                  Condition("NOT", "PLU", "G3"), Condition("IN", "PLU", "G1")});
  EXPECT_TRUE(taken.Lines.empty());
  EXPECT_EQ(Logged(), Entries{});
}

TEST_F(SelectedLines, ARowThatNeitherIncludesNorExcludesNamesNothing) {
  EXPECT_TRUE(Select({Condition("in", "PLU", "G1")}).Lines.empty());
  EXPECT_EQ(CodesOf(Select({Condition("IN", "PLU", "G1"), Condition("not", "PLU", "G1")}).Lines), (Codes{"G1"}));
}

TEST_F(SelectedLines, ALineThatHasAResultOfTheRuleIsNotTaken) {
  m_lines[0].ProResults = {Row("R2", "MZZM", "DJ", 0), Row("R1", "MZZM", "PT", 0)};
  const RuleLines taken = Select({Condition("IN", "PLU", "G1"), Condition("IN", "PLU", "G2")});
  EXPECT_EQ(CodesOf(taken.Lines), (Codes{"G2"}));
  EXPECT_EQ(taken.Quantity, 2);
  EXPECT_EQ(taken.Money, 20);
}

TEST_F(SelectedLines, ALineThatHasAnApportionRowOfTheRuleIsTaken) {
  m_lines[0].Apportions = {Row("R1", "MZZM", "PT", 0)};
  EXPECT_EQ(CodesOf(Select({Condition("IN", "PLU", "G1")}).Lines), (Codes{"G1"}));
}

// 3 pieces for 30.00: a "DZ" row holds 1 piece and stands on 12.00. Open are 2 pieces and 18.00.
TEST_F(SelectedLines, BringTheMoneyThatIsOpenToTheRule) {
  m_lines[2].ProResults = {Row("R2", "ZHGD", "DZ", 1, 2, 12)};
  const RuleLines taken = Select({Condition("IN", "PLU", "G3")});
  EXPECT_EQ(taken.Quantity, 2);
  EXPECT_EQ(taken.Money, 18);
}

// The same line for "MZMJ": 2 open pieces at the final price of 9.50.
TEST_F(SelectedLines, OfMzmjBringTheOpenQuantityAtTheFinalPrice) {
  m_lines[2].FinalPrice = 9.5;
  m_lines[2].ProResults = {Row("R2", "ZHGD", "DZ", 1, 2, 12)};
  const RuleLines taken = Select({Condition("IN", "PLU", "G3")}, Rule("R1", "MZMJ", "PT"));
  EXPECT_EQ(taken.Quantity, 2);
  EXPECT_EQ(taken.Money, 19);
}

// Nothing of the 3 pieces is open, and the open money counts: 30.00 - 12.00.
TEST_F(SelectedLines, OfMzmjWithNoOpenQuantityBringTheOpenMoney) {
  m_lines[2].ProResults = {Row("R2", "ZHGD", "DZ", 3, 2, 12)};
  const RuleLines taken = Select({Condition("IN", "PLU", "G3")}, Rule("R1", "MZMJ", "PT"));
  EXPECT_EQ(taken.Quantity, 0);
  EXPECT_EQ(taken.Money, 18);
}

// -2 open pieces at 10.00.
TEST_F(SelectedLines, OfMzmjWithANegativeQuantityLowerBothSums) {
  m_lines[0].ProResults = {Row("R2", "MZZM", "DZ", 3, 0, 0)};
  const RuleLines taken =
      Select({Condition("IN", "PLU", "G1"), Condition("IN", "PLU", "G3")}, Rule("R1", "MZMJ", "PT"));
  EXPECT_EQ(taken.Quantity, 1);
  EXPECT_EQ(taken.Money, 10);
  EXPECT_EQ(CodesOf(taken.Lines), (Codes{"G3"}));
}

// The running sum decides and not the line's own share.
TEST_F(SelectedLines, ALineWithNothingLeftIsListedBehindOneThatBroughtMoney) {
  m_lines[1].Total = 0;
  const RuleLines taken = Select({Condition("IN", "PLU", "G1"), Condition("IN", "PLU", "G2")});
  EXPECT_EQ(CodesOf(taken.Lines), (Codes{"G1", "G2"}));
  EXPECT_EQ(taken.Money, 10);
}

TEST_F(SelectedLines, ALineWithNothingLeftIsNotListedInFrontOfThem) {
  m_lines[0].Total = 0;
  const RuleLines taken = Select({Condition("IN", "PLU", "G1"), Condition("IN", "PLU", "G2")});
  EXPECT_EQ(CodesOf(taken.Lines), (Codes{"G2"}));
  EXPECT_EQ(taken.Quantity, 3);
  EXPECT_EQ(taken.Money, 20);
}

TEST_F(SelectedLines, AskForTheQuantityOfEachTakenLineOnly) {
  Select({Condition("IN", "PLU", "G1"), Condition("IN", "PLU", "G3")});
  const Entries oneLine = {"促销优惠类型：", "促销类型：MZZM", "计算整单已优惠数量：0"};
  Entries expected = oneLine;
  expected.insert(expected.end(), oneLine.begin(), oneLine.end());
  EXPECT_EQ(Logged(), expected);
}

// A limit of 4 by quantity: the rule holds 3 on a line that is not among those to choose from, so that 1 is open.
TEST_F(SelectedLines, AmongSomeLinesTheLimitCountsOverAllOfThem) {
  m_lines[0].ProResults = {Row("R1", "MZZM", "DJ", 3)};
  ProInfo rule = Rule("R1", "MZZM", "PT");
  rule.MaxYhType = "2";
  rule.MaxYhValue = 4;
  const Conditions rows = {Condition("IN", "PLU", "G3")};
  const RuleLines taken = SelectAmong({&m_lines[1], &m_lines.back()}, rows, rule);
  EXPECT_EQ(taken.Lines, (LinePtrs{&m_lines.back()}));
  EXPECT_EQ(taken.Quantity, 1);
  EXPECT_EQ(taken.Money, 30);
}

TEST_F(SelectedLines, AmongSomeLinesOnlyThoseAreSieved) {
  const Conditions rows = {Condition("IN", "PLU", "G1"), Condition("IN", "PLU", "G2"), Condition("IN", "PLU", "G3"),
                           Condition("NOT", "PLU", "G2")};
  const RuleLines taken = SelectAmong({&m_lines.back(), &m_lines[1]}, rows, Rule("R1", "MZZM", "PT"));
  EXPECT_EQ(taken.Lines, (LinePtrs{&m_lines.back()}));
}

// --- Rows of a rule on a line ----------------------------------------------------------------------------------------

TEST(RowOfRule, IsTheFirst) {
  SalePlu line = Line("G1", 10, 1);
  line.ProResults = {Row("R2", "MZMJ", "PT", 1), Row("R1", "MZMJ", "PT", 2), Row("R1", "MZMJ", "PT", 3)};
  const SalePlu& fixed = line;
  EXPECT_EQ(Corvane::FindResult(line, "R1"), &line.ProResults[1]);
  EXPECT_EQ(Corvane::FindResult(fixed, "R1"), &line.ProResults[1]);
  EXPECT_EQ(Corvane::FindRow(line.ProResults, "R1"), &line.ProResults[1]);
}

TEST(RowOfRule, IsNullWithoutOne) {
  SalePlu line = Line("G1", 10, 1);
  line.ProResults = {Row("R2", "MZMJ", "PT", 1)};
  const SalePlu& fixed = line;
  EXPECT_EQ(Corvane::FindResult(line, "R1"), nullptr);
  EXPECT_EQ(Corvane::FindResult(fixed, "r2"), nullptr);
  EXPECT_EQ(Corvane::FindRow(line.Apportions, "R2"), nullptr);
}

}  // namespace
