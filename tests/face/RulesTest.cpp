#include <gmock/gmock.h>

#include <filesystem>

#include "tests/face/Face.h"

using ::testing::HasSubstr;

namespace Corvane::Testing {
namespace {

TEST(Rules, OfAFolderAreLoadedInTheOrderOfTheirNames) {
  const StoreFolder store;
  const OpenEngine engine(store.Path());
  const Told told = engine.LoadRules();
  EXPECT_EQ(told.Code, QNC_OK);
  EXPECT_THAT(told.Text, HasSubstr(R"("loaded":18,"refused":0,"files":[{"file":"MZDP-01-croissant.xml")"));
  EXPECT_THAT(told.Text, HasSubstr(R"({"file":"MZZQ-01-coupon.xml","billNo":"MZZQ-01","type":"MZZQ","loaded":true})"));
}

TEST(Rules, ThatAreRefusedDoNotKeepTheOthersOut) {
  const StoreFolder store;
  store.Write("rules/A.xml", "<Rules><Rule");
  store.Write("rules/B.xml", RuleXml("B", "PTXX"));
  std::filesystem::create_directory(store / "rules/C.xml");
  store.Write("rules/notes.txt", "no rule");
  const OpenEngine engine(store.Path());
  const Told told = engine.LoadRules();
  EXPECT_EQ(told.Code, QNC_BAD_XML);
  EXPECT_THAT(told.Error, HasSubstr("rules/A.xml:1:"));
  EXPECT_THAT(told.Text, HasSubstr(R"("loaded":18,"refused":3)"));
  EXPECT_THAT(told.Text, HasSubstr(R"("error":"rules/B.xml:1: ProType 'PTXX' is no type;)"));
  EXPECT_THAT(told.Text, HasSubstr("rules/C.xml: is no file"));
  EXPECT_THAT(engine.State().Text, HasSubstr("PTXS-01"));
}

TEST(Rules, OfAnotherFolderReplaceAllOrNone) {
  const StoreFolder store;
  std::filesystem::create_directory(store / "next");
  store.Write("next/A.xml", RuleXml("A"));
  store.Write("next/B.xml", "");
  const OpenEngine engine(store.Path());
  ASSERT_EQ(engine.LoadRules().Code, QNC_OK);
  const std::string before = engine.State().Text;

  const Told refused = engine.LoadRules("next", QNC_REPLACE);
  EXPECT_EQ(refused.Code, QNC_BAD_XML);
  EXPECT_THAT(refused.Text, HasSubstr(R"("loaded":0,"refused":1)"));
  EXPECT_EQ(engine.State().Text, before);

  store.Remove("next/B.xml");
  EXPECT_EQ(engine.LoadRules((store / "next").c_str(), QNC_REPLACE).Code, QNC_OK);
  EXPECT_THAT(engine.State().Text, HasSubstr(R"("rules":["A"])"));
}

TEST(Rules, OfAnUnknownTypeAreRefusedBeforeTheOthersGo) {
  const StoreFolder store;
  std::filesystem::create_directory(store / "next");
  store.Write("next/A.xml", RuleXml("A"));
  store.Write("next/B.xml", RuleXml("B", "PTXX"));
  const OpenEngine engine(store.Path());
  ASSERT_EQ(engine.LoadRules().Code, QNC_OK);
  const std::string before = engine.State().Text;
  for (const unsigned flags : {0U, unsigned{QNC_LENIENT}}) {
    const Told refused = engine.LoadRules("next", QNC_REPLACE | flags);
    EXPECT_EQ(refused.Code, QNC_BAD_VALUE);
    EXPECT_THAT(refused.Error, HasSubstr("ProType 'PTXX' is no type;"));
    EXPECT_THAT(refused.Error, ::testing::StartsWith("next/B.xml:"));
    EXPECT_EQ(engine.State().Text, before);
  }
}

TEST(Rules, OfAFolderThatIsNotThereAreRefused) {
  const StoreFolder store;
  const OpenEngine engine(store.Path());
  const Told told = engine.LoadRules("nowhere");
  EXPECT_EQ(told.Code, QNC_UNREADABLE);
  EXPECT_THAT(told.Error, HasSubstr("nowhere: the folder can't be read"));
}

TEST(Rules, AreReplacedByNumberAndRemovedInAnyCase) {
  const StoreFolder store;
  const OpenEngine engine(store.Path());
  for (const char* const number : {"R1", "R2", "R1"}) ASSERT_EQ(engine.LoadRule(RuleXml(number)).Code, QNC_OK);
  EXPECT_THAT(engine.State().Text, HasSubstr(R"("rules":["R1","R2"])"));
  ASSERT_EQ(engine.ClearRules("r1").Code, QNC_OK);
  EXPECT_THAT(engine.State().Text, HasSubstr(R"("rules":["R2"])"));
  ASSERT_EQ(engine.ClearRules("*").Code, QNC_OK);
  EXPECT_THAT(engine.State().Text, HasSubstr(R"("rules":[])"));
  EXPECT_EQ(engine.ClearRules("").Code, QNC_BAD_ARGUMENT);
}

TEST(Rules, ThatGiveCouponsAreLoadedUnderTheirOwnType) {
  const StoreFolder store;
  const OpenEngine engine(store.Path());
  EXPECT_EQ(engine.LoadRule(Sample("store/rules/MZZQ-01-coupon.xml")).Code, QNC_OK);
  EXPECT_THAT(engine.State().Text, HasSubstr("MZZQ-01"));
}

TEST(Rules, ReadLenientlyAreTakenAsFarAsTheyGo) {
  const StoreFolder store;
  const OpenEngine engine(store.Path());
  const std::string cutOff = R"(<Rules><Rule BillNo="R" ProType="PTXS"><OrgFil)";
  EXPECT_EQ(engine.LoadRule(cutOff).Code, QNC_BAD_XML);
  EXPECT_EQ(engine.LoadRule(cutOff, nullptr, QNC_LENIENT).Code, QNC_OK);
  EXPECT_THAT(engine.State().Text, HasSubstr(R"("rules":["R"])"));
  EXPECT_EQ(engine.LoadRule("<Rules/>", "x", QNC_LENIENT).Code, QNC_BAD_VALUE);
}

}  // namespace
}  // namespace Corvane::Testing
