// The table of types: which class a word loads, and when which of its steps runs.
#include "promo/RuleTable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "rule/RuleType.h"

namespace Corvane {
namespace {

/// A step that says that it ran, for a type that no promotion has.
int stepsRun = 0;
void CountStep(AnyRule& /*rule*/, RuleRun& /*run*/) { ++stepsRun; }

RulePtr MakePlain(const QnPosDBPro& db) { return std::make_shared<AnyRule>(std::in_place_type<ProDirectLimit>, db); }

std::vector<std::string> WordsOf(Pass pass) {
  std::vector<std::string> words;
  for (const RuleKind& kind : RuleKinds()) {
    if (kind.RunsIn == pass) words.emplace_back(kind.Word);
  }
  return words;
}

TEST(RuleTable, EachPassHasItsTypes) {
  using Words = std::vector<std::string>;
  EXPECT_EQ(WordsOf(Pass::Ordinary), (Words{"PTXS", "PTPL", "PTOS"}));
  EXPECT_EQ(WordsOf(Pass::Combination), (Words{"ZHZY", "ZHGD", "ZHTJ", "ZHZX"}));
  EXPECT_EQ(WordsOf(Pass::FullAmount), (Words{"MZMJ", "MZZQ", "MZDP", "MZZM", "MZZP", "MZHG"}));
  EXPECT_EQ(WordsOf(Pass::Pay), (Words{"MZZF"}));
  EXPECT_EQ(WordsOf(Pass::Coupon), (Words{"MZYQ"}));
}

TEST(RuleTable, WordsAreComparedExactly) {
  const QnPosDBPro db;
  EXPECT_NE(MakeRule(RuleKinds(), "PTXS", db), nullptr);
  for (const Text word : {"ptxs", "PTXS ", "PTX", "", static_cast<Text>(nullptr)}) {
    EXPECT_EQ(MakeRule(RuleKinds(), word, db), nullptr) << OrEmpty(word);
  }
}

// A rule that gives coupons is loaded as one that takes them.
TEST(RuleTable, NothingIsLoadedAsTheTypeThatGivesCoupons) {
  EXPECT_NE(FindKind(RuleKinds(), "MZZQ"), nullptr);
  EXPECT_EQ(MakeRule(RuleKinds(), "MZZQ", QnPosDBPro()), nullptr);
}

TEST(RuleTable, AStepThatDoesNotFitTheClassDoesNothing) {
  const RulePtr rule = MakeRule(RuleKinds(), "PTXS", QnPosDBPro());
  ProSale sale;
  RuleRun run(BaseOf(*rule), sale);
  for (const RuleKind& kind : RuleKinds()) {
    if (!Same(kind.Word, "PTXS")) kind.Calc(*rule, run);
  }
  EXPECT_TRUE(sale.SaleResults.empty());
  EXPECT_TRUE(sale.ProGifts.empty());
}

TEST(RuleTable, ASixteenthTypeIsOneRowMore) {
  RuleTable table = RuleKinds();
  table.push_back({"PTNW", MakePlain, Pass::Ordinary, CountStep});
  EXPECT_EQ(FindKind(RuleKinds(), "PTNW"), nullptr);

  const RulePtr rule = MakeRule(table, "PTNW", QnPosDBPro());
  ASSERT_NE(rule, nullptr);
  const RuleKind* const kind = FindKind(table, "PTNW");
  ASSERT_NE(kind, nullptr);
  EXPECT_EQ(kind->RunsIn, Pass::Ordinary);
  ProSale sale;
  RuleRun run(BaseOf(*rule), sale);
  stepsRun = 0;
  kind->Calc(*rule, run);
  EXPECT_EQ(stepsRun, 1);
}

// The facts of a type that has no row are those of a type without peculiarities.
TEST(RuleType, AnUnknownTypeHasNoFacts) {
  for (const Text word : {"PTNW", "ptos", "", static_cast<Text>(nullptr)}) {
    EXPECT_EQ(TypeOf(word).Facts, Fact::None) << OrEmpty(word);
  }
}

TEST(RuleType, EveryTypeOfTheTableHasARowOfFacts) {
  for (const RuleKind& kind : RuleKinds()) EXPECT_STREQ(TypeOf(kind.Word).Word, kind.Word);
}

}  // namespace
}  // namespace Corvane
