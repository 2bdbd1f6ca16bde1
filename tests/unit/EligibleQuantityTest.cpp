// How much of a line a rule may still discount: the whole decision table, in quantity and in money.
#include "rule/EligibleQuantity.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "tests/unit/RuleFixture.h"

using Corvane::GetCalcCount;
using Corvane::GetLineLeftTotal;
using Corvane::GetRuleLeftCount;
using Corvane::ProInfo;
using Corvane::ProResult;
using Corvane::SalePlu;
using Corvane::Text;
using ruletest::Entries;
using ruletest::Line;
using ruletest::Row;
using ruletest::Rule;

namespace {

using Lines = std::vector<SalePlu>;

SalePlu LineWith(double count, const std::vector<ProResult>& rows) {
  SalePlu line = Line("G1", 10, count);
  line.ProResults = rows;
  return line;
}

// --- The table: one row on the line ----------------------------------------------------------------------------------

constexpr std::size_t kCells = 15;
constexpr std::array<Text, 5> kRowTypes = {"PTXS", "PTOS", "ZHGD", "MZZM", "XXZZ"};
constexpr std::array<Text, 3> kRowPrimaries = {"DZ", "PT", "DJ"};

/// What a rule gets, for each type and stacking class of the one row on the line.
struct TableRow {
  Text ProType;
  Text Primary;
  std::array<double, kCells> Expected;

  std::string Name() const { return std::string(ProType) + "_" + Primary; }
};

void PrintTo(const TableRow& row, std::ostream* out) { *out << row.Name(); }

template <class Ask>
void ExpectTableRow(const TableRow& table, const ProResult& pattern, const Ask& ask) {
  std::size_t cell = 0;
  for (const Text rowType : kRowTypes) {
    for (const Text rowPrimary : kRowPrimaries) {
      SCOPED_TRACE(table.Name() + " on a line with " + rowType + " " + rowPrimary);
      ProResult row = pattern;
      row.ProType = rowType;
      row.Primary = rowPrimary;
      EXPECT_EQ(ask(LineWith(10, {row})), table.Expected[cell++]);
    }
  }
}

class CalcCountTable : public testing::TestWithParam<TableRow> {
 private:
  ruletest::LogFolder m_log;
};

// A line of 10 pieces of which the row holds 3: 7 where the row counts as used, 10 where it doesn't; 0 where one "PTOS"
// rule meets the row of another.
// clang-format off
const TableRow kCalcCounts[] = {
  // a row of            PTXS             PTOS             ZHGD             MZZM             XXZZ
  //                 DZ   PT   DJ     DZ   PT   DJ     DZ   PT   DJ     DZ   PT   DJ     DZ   PT   DJ
  {"PTXS", "DZ",  {{  7,   7,   7,     7,   7,   7,     7,  10,  10,     7,  10,  10,     7,  10,  10}}},
  {"PTXS", "PT",  {{  7,   7,   7,     7,   7,   7,     7,  10,  10,     7,  10,  10,     7,  10,  10}}},
  {"PTXS", "DJ",  {{  7,   7,   7,     7,   7,   7,     7,  10,  10,     7,  10,  10,     7,  10,  10}}},
  {"PTPL", "DJ",  {{  7,   7,   7,     7,   7,   7,     7,  10,  10,     7,  10,  10,     7,  10,  10}}},
  {"PTOS", "DZ",  {{  7,   7,   7,     0,   0,   0,     7,  10,  10,     7,  10,  10,     7,  10,  10}}},
  {"PTOS", "PT",  {{  7,   7,   7,     0,   0,   0,     7,  10,  10,     7,  10,  10,     7,  10,  10}}},
  {"PTOS", "DJ",  {{  7,   7,   7,     0,   0,   0,     7,  10,  10,     7,  10,  10,     7,  10,  10}}},
  {"ZHGD", "DZ",  {{  7,  10,  10,     7,  10,  10,     7,   7,   7,     7,  10,  10,     7,  10,  10}}},
  {"ZHGD", "PT",  {{  7,  10,  10,     7,  10,  10,     7,   7,   7,     7,  10,  10,     7,  10,  10}}},
  {"ZHTJ", "DJ",  {{  7,  10,  10,     7,  10,  10,     7,   7,   7,     7,  10,  10,     7,  10,  10}}},
  {"MZMJ", "DZ",  {{  7,  10,  10,     7,  10,  10,     7,  10,  10,     7,   7,   7,     7,  10,  10}}},
  {"MZMJ", "PT",  {{  7,  10,  10,     7,  10,  10,     7,  10,  10,     7,   7,   7,     7,  10,  10}}},
  {"MZMJ", "DJ",  {{  7,  10,  10,     7,  10,  10,     7,  10,  10,     7,  10,  10,     7,  10,  10}}},
  {"MZMJ", "dj",  {{  7,  10,  10,     7,  10,  10,     7,  10,  10,     7,  10,  10,     7,  10,  10}}},
  {"MZZM", "Dj",  {{  7,  10,  10,     7,  10,  10,     7,  10,  10,     7,  10,  10,     7,  10,  10}}},
  {"MZZM", "",    {{  7,  10,  10,     7,  10,  10,     7,  10,  10,     7,   7,   7,     7,  10,  10}}},
  // A family that is none of the three counts its own rows only under exactly "PT".
  {"XXYY", "DZ",  {{  7,  10,  10,     7,  10,  10,     7,  10,  10,     7,  10,  10,     7,  10,  10}}},
  {"XXYY", "PT",  {{  7,  10,  10,     7,  10,  10,     7,  10,  10,     7,  10,  10,     7,   7,   7}}},
  {"XXYY", "pt",  {{  7,  10,  10,     7,  10,  10,     7,  10,  10,     7,  10,  10,     7,  10,  10}}},
  {"XXYY", "DJ",  {{  7,  10,  10,     7,  10,  10,     7,  10,  10,     7,  10,  10,     7,  10,  10}}},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(Of, CalcCountTable, testing::ValuesIn(kCalcCounts),
                         [](const auto& test) { return test.param.Name(); });

TEST_P(CalcCountTable, OneRowOnTheLine) {
  const ProInfo rule = Rule("R1", GetParam().ProType, GetParam().Primary);
  ExpectTableRow(GetParam(), Row("R2", "", "", 3), [&](const SalePlu& line) { return GetCalcCount(line, rule, {}); });
}

class LeftTotalTable : public testing::TestWithParam<TableRow> {};

// A line of 100.00 of which the row stands on 30.00: 70 where the row counts as used, 100 where it doesn't. A "DJ" row
// never counts, and nothing takes the whole line.
// clang-format off
const TableRow kLeftTotals[] = {
  // a row of            PTXS             PTOS             ZHGD             MZZM             XXZZ
  //                 DZ   PT   DJ     DZ   PT   DJ     DZ   PT   DJ     DZ   PT   DJ     DZ   PT   DJ
  {"PTXS", "DZ",  {{ 70,  70, 100,    70,  70, 100,    70, 100, 100,    70, 100, 100,    70, 100, 100}}},
  {"PTXS", "PT",  {{ 70,  70, 100,    70,  70, 100,    70, 100, 100,    70, 100, 100,    70, 100, 100}}},
  {"PTXS", "DJ",  {{ 70, 100, 100,    70, 100, 100,    70, 100, 100,    70, 100, 100,    70, 100, 100}}},
  {"PTOS", "PT",  {{ 70,  70, 100,    70,  70, 100,    70, 100, 100,    70, 100, 100,    70, 100, 100}}},
  {"PTOS", "DJ",  {{ 70, 100, 100,    70, 100, 100,    70, 100, 100,    70, 100, 100,    70, 100, 100}}},
  {"ZHGD", "DZ",  {{ 70, 100, 100,    70, 100, 100,    70,  70, 100,    70, 100, 100,    70, 100, 100}}},
  {"ZHGD", "PT",  {{ 70, 100, 100,    70, 100, 100,    70,  70, 100,    70, 100, 100,    70, 100, 100}}},
  {"ZHGD", "DJ",  {{ 70, 100, 100,    70, 100, 100,    70, 100, 100,    70, 100, 100,    70, 100, 100}}},
  {"MZMJ", "DZ",  {{ 70, 100, 100,    70, 100, 100,    70, 100, 100,    70,  70, 100,    70, 100, 100}}},
  {"MZMJ", "PT",  {{ 70, 100, 100,    70, 100, 100,    70, 100, 100,    70,  70, 100,    70, 100, 100}}},
  {"MZMJ", "DJ",  {{ 70, 100, 100,    70, 100, 100,    70, 100, 100,    70, 100, 100,    70, 100, 100}}},
  {"MZMJ", "dj",  {{ 70, 100, 100,    70, 100, 100,    70, 100, 100,    70, 100, 100,    70, 100, 100}}},
  {"MZZM", "",    {{ 70, 100, 100,    70, 100, 100,    70, 100, 100,    70,  70, 100,    70, 100, 100}}},
  {"XXYY", "PT",  {{ 70, 100, 100,    70, 100, 100,    70, 100, 100,    70, 100, 100,    70,  70, 100}}},
  {"XXYY", "DJ",  {{ 70, 100, 100,    70, 100, 100,    70, 100, 100,    70, 100, 100,    70, 100, 100}}},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(Of, LeftTotalTable, testing::ValuesIn(kLeftTotals),
                         [](const auto& test) { return test.param.Name(); });

TEST_P(LeftTotalTable, OneRowOnTheLine) {
  ExpectTableRow(GetParam(), Row("R2", "", "", 3, 20, 30),
                 [&](const SalePlu& line) { return GetLineLeftTotal(line, GetParam().Primary, GetParam().ProType); });
}

// --- Quantity: what is used ------------------------------------------------------------------------------------------

class CalcCount : public ruletest::WithLog {};

TEST_F(CalcCount, ALineWithoutRowsIsOpen) {
  EXPECT_EQ(GetCalcCount(LineWith(3, {}), Rule("R1", "PTXS", "PT"), {}), 3);
  EXPECT_EQ(GetCalcCount(LineWith(1.5, {}), Rule("R1", "PTOS", "PT"), {}), 1.5);
}

TEST_F(CalcCount, RowsAddUp) {
  const SalePlu line = LineWith(10, {Row("R2", "PTPL", "PT", 1), Row("R3", "ZHGD", "PT", 5), Row("R4", "ZHGD", "DZ", 2),
                                     Row("R5", "PTXS", "DJ", 0.5)});
  EXPECT_EQ(GetCalcCount(line, Rule("R1", "PTXS", "PT"), {}), 6.5);
}

TEST_F(CalcCount, MoneyOnTheRowsDoesNotMatter) {
  const SalePlu line = LineWith(10, {Row("R2", "PTPL", "PT", 1, 99, 99)});
  EXPECT_EQ(GetCalcCount(line, Rule("R1", "PTXS", "PT"), {}), 9);
}

TEST_F(CalcCount, RowsOfTheRuleItselfCountLikeAnyOther) {
  const SalePlu line = LineWith(10, {Row("R1", "PTXS", "PT", 4)});
  EXPECT_EQ(GetCalcCount(line, Rule("R1", "PTXS", "PT"), {}), 6);
  EXPECT_EQ(GetCalcCount(LineWith(10, {Row("R1", "MZMJ", "DJ", 4)}), Rule("R1", "MZMJ", "DJ"), {}), 10);
}

TEST_F(CalcCount, MayBeNegative) {
  const SalePlu line = LineWith(3, {Row("R2", "PTPL", "PT", 3), Row("R3", "PTXS", "PT", 1)});
  EXPECT_EQ(GetCalcCount(line, Rule("R1", "PTXS", "PT"), {}), -1);
}

// 0.751 - 0.25 - 0.25 - 0.251 is 2.8e-17.
TEST_F(CalcCount, WhatThreeRulesFillIsExactlyFull) {
  const SalePlu line =
      LineWith(0.751, {Row("A", "PTXS", "PT", 0.25), Row("B", "PTXS", "PT", 0.25), Row("C", "PTXS", "PT", 0.251)});
  EXPECT_EQ(GetCalcCount(line, ruletest::Rule("R", "PTXS", "PT"), {}), 0);
}

// 0.3 - 0.1 - 0.2 is -2.8e-17.
TEST_F(CalcCount, ARoomOfNoiseIsZero) {
  const SalePlu other = LineWith(5, {Row("R", "PTXS", "PT", 0.1), Row("R", "PTXS", "PT", 0.2)});
  ProInfo rule = ruletest::Rule("R", "PTXS", "PT");
  rule.MaxYhType = "2";
  rule.MaxYhValue = 0.3;
  EXPECT_EQ(GetCalcCount(LineWith(5, {}), rule, {other}), 0);
}

TEST_F(CalcCount, TwoRulesOfTheTypePtosNeverShareALine) {
  EXPECT_EQ(GetCalcCount(LineWith(10, {Row("R2", "PTOS", "PT", 0.01)}), Rule("R1", "PTOS", "PT"), {}), 0);
  EXPECT_EQ(GetCalcCount(LineWith(10, {Row("R2", "PTOS", "PT", 0)}), Rule("R1", "PTOS", "DJ"), {}), 0);
}

// From the last row to the first: the "PTOS" row sets the used quantity to 5, and the row in front of it adds 2.
TEST_F(CalcCount, ARowInFrontOfAPtosRowStillAdds) {
  const SalePlu line = LineWith(5, {Row("R2", "PTXS", "PT", 2), Row("R3", "PTOS", "PT", 1)});
  EXPECT_EQ(GetCalcCount(line, Rule("R1", "PTOS", "PT"), {}), -2);
}

// The row behind it is met first, and its 2 are replaced.
TEST_F(CalcCount, APtosRowReplacesWhatRowsBehindItUsed) {
  const SalePlu line = LineWith(5, {Row("R3", "PTOS", "PT", 1), Row("R2", "PTXS", "PT", 2)});
  EXPECT_EQ(GetCalcCount(line, Rule("R1", "PTOS", "PT"), {}), 0);
}

// 4 behind it is replaced by 5, 2 and 1 in front of it add: 5 - 8.
TEST_F(CalcCount, APtosRowInTheMiddleReplacesOnlyWhatStandsBehindIt) {
  const SalePlu line = LineWith(5, {Row("R2", "ZHGD", "DZ", 1), Row("R3", "PTPL", "DJ", 2), Row("R4", "PTOS", "PT", 1),
                                    Row("R5", "PTXS", "PT", 4)});
  EXPECT_EQ(GetCalcCount(line, Rule("R1", "PTOS", "PT"), {}), -3);
}

// The front one of two "PTOS" rows replaces the 2 between them as well.
TEST_F(CalcCount, OfTwoPtosRowsTheFrontOneDecides) {
  const SalePlu line =
      LineWith(5, {Row("R2", "PTOS", "PT", 1), Row("R3", "PTXS", "PT", 2), Row("R4", "PTOS", "PT", 1)});
  EXPECT_EQ(GetCalcCount(line, Rule("R1", "PTOS", "PT"), {}), 0);
}

TEST_F(CalcCount, ALowerCaseDzIsNoDz) {
  EXPECT_EQ(GetCalcCount(LineWith(10, {Row("R2", "ZHGD", "dz", 3)}), Rule("R1", "PTXS", "PT"), {}), 10);
}

TEST_F(CalcCount, NullTextsCompareAsEmpty) {
  const SalePlu line = LineWith(10, {Row(nullptr, nullptr, nullptr, 3)});
  EXPECT_EQ(GetCalcCount(line, Rule(nullptr, nullptr, nullptr), {}), 10);
  EXPECT_EQ(GetCalcCount(line, Rule(nullptr, nullptr, "PT"), {}), 7);
  EXPECT_EQ(GetCalcCount(line, Rule("R1", "MZMJ", nullptr), {}), 10);
  EXPECT_EQ(Logged().at(1), "促销类型：");
}

// --- Quantity: the limit ---------------------------------------------------------------------------------------------

ProInfo Limited(Text proType, double limit) {
  ProInfo rule = Rule("R1", proType, "PT");
  rule.MaxYhType = "2";
  rule.MaxYhValue = limit;
  return rule;
}

/// A line on which the rule "R1" holds a quantity.
SalePlu Holding(double quantity) { return LineWith(100, {Row("R1", "PTXS", "PT", quantity)}); }

struct TypeRow {
  Text ProType;
  double Expected;
};

// A limit of 4 against 5 pieces: the exempt types look after their limits themselves.
TEST_F(CalcCount, SomeTypesAreExemptFromTheLimit) {
  const TypeRow rows[] = {{"PTXS", 4}, {"PTPL", 4}, {"PTOS", 5}, {"ZHZY", 5}, {"ZHGD", 5}, {"ZHTJ", 4},
                          {"ZHZX", 5}, {"ZH", 5},   {"MZMJ", 4}, {"MZDP", 5}, {"MZZM", 4}, {"MZZP", 5},
                          {"MZHG", 5}, {"MZZQ", 4}, {"MZZF", 4}, {"MZYQ", 4}};
  for (const TypeRow& row : rows) {
    SCOPED_TRACE(row.ProType);
    EXPECT_EQ(GetCalcCount(LineWith(5, {}), Limited(row.ProType, 4), {}), row.Expected);
  }
}

TEST_F(CalcCount, OnlyALimitOfTheKindTwoIsAQuantity) {
  for (const Text kind : {static_cast<Text>(nullptr), "", "1", "0", "02", "2 ", "22"}) {
    SCOPED_TRACE(Corvane::OrEmpty(kind));
    ProInfo rule = Limited("PTXS", 4);
    rule.MaxYhType = kind;
    EXPECT_EQ(GetCalcCount(LineWith(5, {}), rule, {}), 5);
  }
}

// room 4 - 3 = 1, remaining 5.
TEST_F(CalcCount, TheRoomIsWhatTheRuleDoesNotHoldOnOtherLines) {
  const Lines lines = {LineWith(5, {}), Holding(3)};
  EXPECT_EQ(GetCalcCount(lines[0], Limited("PTXS", 4), lines), 1);
}

// room 4 - 6 = -2, remaining 5.
TEST_F(CalcCount, ARoomThatIsPassedIsNegative) {
  const Lines lines = {LineWith(5, {}), Holding(6)};
  EXPECT_EQ(GetCalcCount(lines[0], Limited("PTXS", 4), lines), -2);
}

// room 4 - 4 = 0, remaining 5.
TEST_F(CalcCount, ARoomThatIsUsedUpIsZero) {
  const Lines lines = {LineWith(5, {}), Holding(4)};
  EXPECT_EQ(GetCalcCount(lines[0], Limited("PTXS", 4), lines), 0);
}

TEST_F(CalcCount, OnlyRowsOfTheRuleTakeItsRoom) {
  const Lines lines = {LineWith(5, {}), LineWith(100, {Row("R2", "PTXS", "PT", 50), Row("R1", "PTXS", "PT", 1),
                                                       Row("r1", "PTXS", "PT", 50), Row(nullptr, "PTXS", "PT", 50),
                                                       Row("R1", "ZHGD", "DJ", 0.5)})};
  EXPECT_EQ(GetCalcCount(lines[0], Limited("PTXS", 4), lines), 2.5);
}

// Its 2 on this line lower both: remaining 3, room 2.
TEST_F(CalcCount, WhatTheRuleHoldsOnTheLineTakesRoomToo) {
  const Lines lines = {LineWith(5, {Row("R1", "PTXS", "PT", 2)})};
  EXPECT_EQ(GetCalcCount(lines[0], Limited("PTXS", 4), lines), 2);
}

TEST_F(CalcCount, ALimitAboveWhatRemainsChangesNothing) {
  EXPECT_EQ(GetCalcCount(LineWith(5, {}), Limited("PTXS", 100), {}), 5);
  EXPECT_EQ(GetCalcCount(LineWith(5, {}), Limited("PTXS", 5), {}), 5);
}

// used 5 of 5, room 4.
TEST_F(CalcCount, WithRoomANothingThatRemainsIsZero) {
  EXPECT_EQ(GetCalcCount(LineWith(5, {Row("R2", "PTPL", "PT", 5)}), Limited("PTXS", 4), {}), 0);
}

// used 7 of 5, room 4: 0 and not -2.
TEST_F(CalcCount, WithRoomALessThanNothingThatRemainsIsZero) {
  EXPECT_EQ(GetCalcCount(LineWith(5, {Row("R2", "PTPL", "PT", 7)}), Limited("PTXS", 4), {}), 0);
}

// remaining 5 - 7 = -2, room 4 - 10 = -6: the room is smaller still.
TEST_F(CalcCount, ARoomBelowANegativeRemainderIsReturned) {
  const Lines lines = {LineWith(5, {Row("R2", "PTPL", "PT", 7)}), Holding(10)};
  EXPECT_EQ(GetCalcCount(lines[0], Limited("PTXS", 4), lines), -6);
}

// remaining 5 - 7 = -2, room 4 - 6 = -2: not below, so nothing remains.
TEST_F(CalcCount, ARoomAtANegativeRemainderIsZero) {
  const Lines lines = {LineWith(5, {Row("R2", "PTPL", "PT", 7)}), Holding(6)};
  EXPECT_EQ(GetCalcCount(lines[0], Limited("PTXS", 4), lines), 0);
}

// A held quantity of -3 makes the room 7: above the 5 that remain, and yet no more than the limit of 4 is given.
TEST_F(CalcCount, NoMoreThanTheLimitWhereTheRoomIsLarger) {
  const Lines lines = {LineWith(5, {}), Holding(-3)};
  EXPECT_EQ(GetCalcCount(lines[0], Limited("PTXS", 4), lines), 4);
}

// The same with 9 pieces: the room of 7 is below what remains.
TEST_F(CalcCount, NoMoreThanTheLimitWhereTheRoomIsSmaller) {
  const Lines lines = {LineWith(9, {}), Holding(-3)};
  EXPECT_EQ(GetCalcCount(lines[0], Limited("PTXS", 4), lines), 4);
}

TEST_F(CalcCount, ANegativeLimitIsReturned) { EXPECT_EQ(GetCalcCount(LineWith(5, {}), Limited("PTXS", -1), {}), -1); }

TEST_F(CalcCount, ALimitOfZeroGivesNothing) { EXPECT_EQ(GetCalcCount(LineWith(5, {}), Limited("PTXS", 0), {}), 0); }

// A set menu asks under its family word, which frees it from the limit.
TEST_F(CalcCount, ARuleMayAskAsAnotherType) {
  EXPECT_EQ(GetCalcCount(LineWith(5, {}), Limited("ZHTJ", 4), "ZH", {}), 5);
  EXPECT_EQ(GetCalcCount(LineWith(5, {Row("R2", "PTXS", "PT", 2)}), Rule("R1", "ZHTJ", "PT"), "PTXS", {}), 3);
  EXPECT_EQ(Logged().at(1), "促销类型：ZH");
}

// --- Quantity: the log -----------------------------------------------------------------------------------------------

TEST_F(CalcCount, LogsWithoutALimit) {
  const Lines lines = {LineWith(5, {}), Holding(3)};
  GetCalcCount(lines[0], Rule("R1", "PTXS", "PT"), lines);
  EXPECT_EQ(Logged(), (Entries{"促销优惠类型：", "促销类型：PTXS", "计算整单已优惠数量：0"}));
}

TEST_F(CalcCount, LogsForAnExemptType) {
  const Lines lines = {LineWith(5, {}), Holding(3)};
  GetCalcCount(lines[0], Limited("ZHGD", 4), lines);
  EXPECT_EQ(Logged(), (Entries{"促销优惠类型：2", "促销类型：ZHGD", "计算整单已优惠数量：0"}));
}

TEST_F(CalcCount, LogsForALimitByMoney) {
  ProInfo rule = Limited("PTXS", 4);
  rule.MaxYhType = "1";
  GetCalcCount(LineWith(5, {}), rule, {});
  EXPECT_EQ(Logged(), (Entries{"促销优惠类型：1", "促销类型：PTXS", "计算整单已优惠数量：0"}));
}

TEST_F(CalcCount, LogsWithRoomForAllThatRemains) {
  GetCalcCount(LineWith(5, {}), Limited("PTXS", 9), {});
  EXPECT_EQ(Logged(),
            (Entries{"促销优惠类型：2", "促销类型：PTXS", "类型为2", "计算整单已优惠数量：0", "可计算数量：5"}));
}

// What is logged is what remains, not the limit of 4 that is returned.
TEST_F(CalcCount, LogsWhatRemainsWhereTheLimitIsReturned) {
  const Lines lines = {LineWith(5, {}), Holding(-3)};
  GetCalcCount(lines[0], Limited("PTXS", 4), lines);
  EXPECT_EQ(Logged(), (Entries{"促销优惠类型：2", "促销类型：PTXS", "类型为2", "11111", "计算整单已优惠数量：-3",
                               "可计算数量：5"}));
}

TEST_F(CalcCount, LogsEachRowOfTheRuleAndNoQuantityWhereTheRoomDecides) {
  const Lines lines = {
      LineWith(5, {}), Holding(2),
      LineWith(100, {Row("R1", "PTXS", "PT", 0.5), Row("R2", "PTXS", "PT", 7), Row("R1", "PTXS", "PT", 0.5)})};
  GetCalcCount(lines[0], Limited("PTXS", 4), lines);
  EXPECT_EQ(Logged(), (Entries{"促销优惠类型：2", "促销类型：PTXS", "类型为2", "11111", "11111", "11111",
                               "计算整单已优惠数量：3"}));
}

TEST_F(CalcCount, LogsNoQuantityWhereNothingRemains) {
  GetCalcCount(LineWith(5, {Row("R2", "PTPL", "PT", 5)}), Limited("PTXS", 4), {});
  EXPECT_EQ(Logged(), (Entries{"促销优惠类型：2", "促销类型：PTXS", "类型为2", "计算整单已优惠数量：0"}));
}

TEST_F(CalcCount, LogsQuantitiesWithSixSignificantDigits) {
  const Lines lines = {LineWith(1234567.891, {}), Holding(1.0 / 3)};
  GetCalcCount(lines[0], Limited("PTXS", 9e9), lines);
  EXPECT_EQ(Logged(), (Entries{"促销优惠类型：2", "促销类型：PTXS", "类型为2", "11111", "计算整单已优惠数量：0.333333",
                               "可计算数量：1.23457e+06"}));
}

TEST_F(CalcCount, ChangesNothingOnTheLine) {
  const Lines lines = {LineWith(5, {Row("R1", "PTXS", "PT", 2, 3, 4)})};
  GetCalcCount(lines[0], Limited("PTXS", 4), lines);
  EXPECT_EQ(lines[0].PluCount, 5);
  EXPECT_EQ(lines[0].Total, 50);
  EXPECT_EQ(lines[0].DisNum, 0);
  ASSERT_EQ(lines[0].ProResults.size(), 1U);
  EXPECT_EQ(lines[0].ProResults[0].DisNum, 2);
}

// --- Money -----------------------------------------------------------------------------------------------------------

TEST(LeftTotal, ALineWithoutRowsIsOpen) { EXPECT_EQ(GetLineLeftTotal(LineWith(3, {}), "PT", "PTXS"), 30); }

// 100 - (10 of the same family + 20 of a "DZ" rule); the "DJ" row and the other family stay open.
TEST(LeftTotal, RowsAddUp) {
  const SalePlu line = LineWith(10, {Row("R2", "PTPL", "PT", 1, 1, 10), Row("R3", "PTPL", "DJ", 1, 1, 30),
                                     Row("R4", "ZHGD", "DZ", 1, 1, 20), Row("R5", "ZHGD", "PT", 1, 1, 5)});
  EXPECT_EQ(GetLineLeftTotal(line, "PT", "PTXS"), 70);
}

TEST(LeftTotal, IsNeverNegative) {
  const SalePlu line = LineWith(10, {Row("R2", "ZHGD", "DZ", 1, 1, 60), Row("R3", "ZHGD", "DZ", 1, 1, 60)});
  EXPECT_EQ(GetLineLeftTotal(line, "PT", "PTXS"), 0);
}

TEST(LeftTotal, OfANegativeAmountIsZero) {
  SalePlu line = LineWith(1, {});
  line.Total = -5;
  EXPECT_EQ(GetLineLeftTotal(line, "PT", "PTXS"), 0);
}

TEST(LeftTotal, IsCountedInBaseMoney) {
  EXPECT_EQ(GetLineLeftTotal(LineWith(10, {Row("R2", "PTPL", "DZ", 10, 100, 0)}), "PT", "PTXS"), 100);
}

TEST(LeftTotal, StackingClassesOfRowsAreComparedExactly) {
  EXPECT_EQ(GetLineLeftTotal(LineWith(10, {Row("R2", "PTXS", "dz", 1, 1, 30)}), "PT", "PTXS"), 100);
  EXPECT_EQ(GetLineLeftTotal(LineWith(10, {Row("R2", "PTXS", "pt", 1, 1, 30)}), "PT", "PTXS"), 100);
}

TEST(LeftTotal, NullTextsCompareAsEmpty) {
  EXPECT_EQ(GetLineLeftTotal(LineWith(10, {Row(nullptr, nullptr, nullptr, 1, 1, 30)}), nullptr, nullptr), 100);
  EXPECT_EQ(GetLineLeftTotal(LineWith(10, {Row(nullptr, nullptr, "PT", 1, 1, 30)}), nullptr, nullptr), 70);
}

// --- The rule's own count --------------------------------------------------------------------------------------------

TEST(RuleLeftCount, IsTheLimitLessWhatTheRuleHolds) {
  const Lines lines = {LineWith(5, {Row("R1", "PTOS", "PT", 3), Row("R2", "PTOS", "PT", 50)}), LineWith(5, {}),
                       LineWith(5, {Row("R1", "PTOS", "PT", 1), Row("R1", "PTOS", "PT", 1.5)})};
  EXPECT_EQ(GetRuleLeftCount("R1", 10, lines), 4.5);
}

TEST(RuleLeftCount, IsTheLimitWhereTheRuleHoldsNothing) {
  EXPECT_EQ(GetRuleLeftCount("R1", 10, {LineWith(5, {Row("R2", "PTOS", "PT", 3)})}), 10);
  EXPECT_EQ(GetRuleLeftCount("R1", 10, {}), 10);
}

TEST(RuleLeftCount, MayBeNegative) {
  EXPECT_EQ(GetRuleLeftCount("R1", 2, {LineWith(5, {Row("R1", "PTOS", "PT", 5)})}), -3);
}

// 1 - 0.875 = 0.125, half a cent goes up.
TEST(RuleLeftCount, IsRoundedAwayFromZero) {
  EXPECT_EQ(GetRuleLeftCount("R1", 1, {LineWith(5, {Row("R1", "PTOS", "PT", 0.875)})}), 0.13);
}

TEST(RuleLeftCount, LosesTheDustOfSums) {
  EXPECT_EQ(GetRuleLeftCount("R1", 0.3, {LineWith(5, {Row("R1", "PTOS", "PT", 0.1), Row("R1", "PTOS", "PT", 0.2)})}),
            0);
}

}  // namespace
