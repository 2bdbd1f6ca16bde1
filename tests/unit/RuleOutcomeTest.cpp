// What is told of a rule's run: which decision decides, what counts as given, and that nothing is told where nobody asks.
#include "rule/RuleOutcome.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <variant>
#include <vector>

#include "sale/ModeTrail.h"
#include "tests/unit/RuleFixture.h"

using Corvane::Change;
using Corvane::Decision;
using Corvane::NameOf;
using Corvane::Note;
using Corvane::ProResult;
using Corvane::Reason;
using Corvane::Refuse;
using Corvane::RuleOutcome;
using Corvane::SalePlu;
using Corvane::Text;
using Corvane::Unit;
using ruletest::Line;

namespace {

SalePlu LineAt(std::int32_t place) {
  SalePlu line = Line("G1", 10, 1);
  line.Index = place;
  return line;
}

TEST(RuleOutcomeTest, ARuleWithoutADecisionIsUnexplained) {
  EXPECT_EQ(RuleOutcome().Deciding().Why, Reason::Unexplained);
  EXPECT_FALSE(RuleOutcome().HasGiven());
}

TEST(RuleOutcomeTest, TheReasonNearestToADiscountDecides) {
  RuleOutcome outcome;
  Note(&outcome, Reason::NotNamed);
  Note(&outcome, Reason::BelowMinimum);
  Note(&outcome, Reason::NothingOpen);
  EXPECT_EQ(outcome.Deciding().Why, Reason::BelowMinimum);
}

TEST(RuleOutcomeTest, WhatEndedTheStepDecidesBeforeAnythingNearer) {
  RuleOutcome outcome;
  Refuse(&outcome, Reason::Unreadable);
  Note(&outcome, Reason::BelowMinimum);
  EXPECT_EQ(outcome.Deciding().Why, Reason::Unreadable);
}

TEST(RuleOutcomeTest, OfSeveralAlikeTheOneThatMissesLeastDecides) {
  RuleOutcome outcome;
  Note(&outcome, Reason::BelowThreshold).Tier(0).Has(Unit::Money, 40).Needs(100);
  Note(&outcome, Reason::BelowThreshold).Tier(1).Has(Unit::Money, 40).Needs(50);
  Note(&outcome, Reason::BelowThreshold).Tier(2).Has(Unit::Money, 40).Needs(60);
  EXPECT_EQ(outcome.Deciding().Tier, 2);
}

TEST(RuleOutcomeTest, AShortageIsToldWithTheRulesThatTookTheLines) {
  RuleOutcome outcome;
  ProResult row;
  row.ProBillNo = "R02";
  row.Primary = "DZ";
  Note(&outcome, Reason::NothingOpen).TakenBy(row).TakenBy(row);
  Note(&outcome, Reason::BelowMinimum).Has(Unit::Quantity, 2).Needs(3);
  const Decision deciding = outcome.Deciding();
  ASSERT_EQ(deciding.TakenBy.size(), 1U);
  EXPECT_STREQ(deciding.TakenBy.front().BillNo, "R02");
  EXPECT_STREQ(deciding.TakenBy.front().Primary, "DZ");
}

TEST(RuleOutcomeTest, MeasuresAreNumbersTextsSpansAndLists) {
  RuleOutcome outcome;
  const std::vector<std::string> words = {"A", "", "B"};
  Note(&outcome, Reason::DateOutside).Has(Unit::Date, "2026-11-21").Needs("2026-01-01", nullptr);
  EXPECT_EQ(std::get<std::string>(outcome.Decisions.back().Have), "2026-11-21");
  EXPECT_EQ(std::get<std::string>(outcome.Decisions.back().Need), "2026-01-01..");
  Note(&outcome, Reason::MemberOther).NeedsEach(words, [](const std::string& word) { return word; });
  EXPECT_EQ(std::get<std::string>(outcome.Decisions.back().Need), "A, B");
  Note(&outcome, Reason::NoGain).Has(Unit::Price, 2.5).Needs(Text{nullptr});
  EXPECT_EQ(std::get<double>(outcome.Decisions.back().Have), 2.5);
  EXPECT_EQ(std::get<std::string>(outcome.Decisions.back().Need), "");
}

TEST(RuleOutcomeTest, GivenIsWhatStaysGivenOnALine) {
  RuleOutcome outcome;
  outcome.Movements = {{Change::Discount, 0, 0, 1, 0, 2}, {Change::Limit, 0, 0, 0, 2, 0}};
  EXPECT_FALSE(outcome.HasGiven()) << "the limit took all of it back";
  outcome.Movements = {{Change::Discount, 0, 0, 1, 0, 0.004}};
  EXPECT_FALSE(outcome.HasGiven()) << "less than half a cent";
  outcome.Movements = {{Change::Discount, 0, 0, 1, 0, 2}, {Change::Discount, 1, 0, 1, 0, -2}};
  EXPECT_TRUE(outcome.HasGiven()) << "a sale and its return";
}

TEST(RuleOutcomeTest, OffersCouponsAndRowsOfTheSaleAreGivenToo) {
  RuleOutcome offers;
  offers.Offers = 1;
  RuleOutcome coupons;
  coupons.Coupons = 1;
  RuleOutcome rows;
  rows.SaleRows = 1;
  EXPECT_TRUE(offers.HasGiven());
  EXPECT_TRUE(coupons.HasGiven());
  EXPECT_TRUE(rows.HasGiven());
}

TEST(RuleOutcomeTest, AChangedRowIsToldByItsPlaceAndAnUnchangedOneNotAtAll) {
  std::vector<SalePlu> lines = {LineAt(0), LineAt(1)};
  lines[1].ProResults.resize(2);
  ProResult& row = lines[1].ProResults[1];
  row.DisMoney = 1;
  RuleOutcome outcome;
  SetRowMoney(&outcome, lines, row, 1.01, Change::Tail);
  SetRowMoney(&outcome, lines, row, 1.01, Change::Rounding);
  EXPECT_EQ(row.DisMoney, 1.01);
  ASSERT_EQ(outcome.Movements.size(), 1U);
  EXPECT_EQ(outcome.Movements[0].Line, 1);
  EXPECT_EQ(outcome.Movements[0].Row, 1);
  EXPECT_EQ(outcome.Movements[0].Before, 1);
  EXPECT_EQ(outcome.Movements[0].After, 1.01);
  EXPECT_EQ(outcome.Movements[0].How, Change::Tail);
}

TEST(RuleOutcomeTest, WhereNobodyAsksNothingIsTold) {
  std::vector<SalePlu> lines = {LineAt(0)};
  lines[0].ProResults.resize(1);
  SetRowMoney(nullptr, lines, lines[0].ProResults[0], 3, Change::Tail);
  EXPECT_EQ(lines[0].ProResults[0].DisMoney, 3);
  EXPECT_FALSE(Note(nullptr, Reason::NotNamed).On(lines[0]).Has(Unit::Date, "x").Needs("a", "b").IsAsked());
}

TEST(RuleOutcomeTest, EachReasonHasANameOfItsOwn) {
  std::set<std::string> names;
  constexpr int kCount = static_cast<int>(Reason::Unexplained) + 1;
  for (int place = 0; place < kCount; ++place) names.insert(NameOf(static_cast<Reason>(place)));
  EXPECT_EQ(names.size(), static_cast<std::size_t>(kCount));
  EXPECT_STREQ(NameOf(Reason::OtherPass), "OtherPass");
  EXPECT_STREQ(NameOf(Reason::BelowThreshold), "BelowThreshold");
  EXPECT_STREQ(NameOf(Reason::Unexplained), "Unexplained");
  EXPECT_STREQ(NameOf(Unit::None), "");
  EXPECT_STREQ(NameOf(Unit::Coupon), "coupon");
  EXPECT_STREQ(NameOf(Unit::Words), "text");
}

TEST(ModeTrailTest, HoldsTheModesSinceTheLastSubtotal) {
  Corvane::ModeTrail trail;
  trail.Add("Single");
  trail.Restart("All");
  trail.Add("MzPromotion");
  EXPECT_EQ(std::vector<std::string>(trail.begin(), trail.end()), (std::vector<std::string>{"All", "MzPromotion"}));
  EXPECT_TRUE(trail.IsWhole());
}

TEST(ModeTrailTest, OfASaleThatGoesOnAndOnIsNotFollowed) {
  Corvane::ModeTrail trail;
  trail.Restart("All");
  for (int time = 0; time < 8; ++time) trail.Add("Pay");
  EXPECT_FALSE(trail.IsWhole());
  EXPECT_EQ(trail.begin(), trail.end());
  trail.Restart("All");
  EXPECT_TRUE(trail.IsWhole());
}

}  // namespace
