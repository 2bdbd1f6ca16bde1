#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/face/Face.h"

using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace Corvane::Testing {
namespace {

using Json = nlohmann::json;

std::vector<std::string> CodesIn(const Told& told) {
  std::vector<std::string> codes;
  const Json report = Json::parse(told.Text);
  for (const Json& finding : report["findings"]) codes.push_back(finding["code"]);
  return codes;
}

TEST(Linting, FindsNothingInTheSampleStore) {
  const StoreFolder store;
  const Told told = Lint(store.Path());
  EXPECT_EQ(told.Code, QNC_OK);
  EXPECT_EQ(told.Text, R"({"folder":")" + store.Path() + R"(","errors":0,"warnings":0,"findings":[]})");
}

TEST(Linting, TellsOfARowWhereItIsAndWhatToWrite) {
  const StoreFolder store;
  store.Sql(
      "pragma ignore_check_constraints=on;"
      "update tProPrjDirectProAct set DscType='PCR' where BillNo='PTXS-02' and SerialNo=1");
  const Told told = Lint(store.Path());
  EXPECT_EQ(told.Code, QNC_BAD_STORE);
  EXPECT_EQ(told.Error,
            "tProPrjDirectProAct BillNo=PTXS-02 SerialNo=1: DscType 'PCR' is no kind of price: the row gives nothing; "
            "did you mean PRC? write PRC, RAT or 2");
  EXPECT_EQ(Json::parse(told.Text), Json::parse(R"({"folder":")" + store.Path() + R"(", "errors":1, "warnings":0,
      "findings":[{"severity":"error", "code":"unknown-price-kind", "file":"", "line":0, "table":"tProPrjDirectProAct",
      "key":"BillNo=PTXS-02 SerialNo=1", "billNo":"PTXS-02", "what":"DscType 'PCR' is no kind of price: the row gives nothing",
      "mend":"did you mean PRC? write PRC, RAT or 2"}]})"));
}

TEST(Linting, IsContentWithWarnings) {
  const StoreFolder store;
  store.Sql("update tProPrjDirectProAct set PluCode='100109' where BillNo='PTXS-01'");
  const Told told = Lint(store.Path());
  EXPECT_EQ(told.Code, QNC_OK);
  EXPECT_THAT(CodesIn(told), ElementsAre("unknown-goods"));
}

TEST(Linting, AnswersWithTheCodeOfARefusedRule) {
  const StoreFolder store;
  store.Write("rules/A.xml", RuleXml("A", "PTSX"));
  EXPECT_EQ(Lint(store.Path()).Code, QNC_BAD_VALUE);
  store.Write("rules/A.xml", "<Rules>");
  const Told told = Lint(store.Path());
  EXPECT_EQ(told.Code, QNC_BAD_XML);
  EXPECT_THAT(told.Error, HasSubstr("rules/A.xml:1: is not XML"));
}

TEST(Linting, FindsWhatTheCheckFinds) {
  const StoreFolder store;
  store.Remove("store.db");
  EXPECT_EQ(Lint(store.Path()).Code, QNC_BAD_STORE);
  EXPECT_THAT(CodesIn(Lint(store.Path())), ElementsAre("store"));
  store.Remove("config.ini");
  EXPECT_THAT(CodesIn(Lint(store.Path())), ElementsAre("store"));
  EXPECT_THAT(CodesIn(Lint("/no/such/folder")), ElementsAre("store"));
}

TEST(Linting, OfNoFolderIsABadArgument) {
  EXPECT_EQ(Lint("").Code, QNC_BAD_ARGUMENT);
  EXPECT_EQ(qnc_lint(nullptr, 0, nullptr, nullptr), QNC_BAD_ARGUMENT);
}

TEST(Linting, NeedsNoPlaceForItsTexts) {
  const StoreFolder store;
  EXPECT_EQ(qnc_lint(store.Path().c_str(), 0, nullptr, nullptr), QNC_OK);
}

TEST(Linting, DoesNotDisturbAnEngineThatIsOpen) {
  const StoreFolder store;
  const StoreFolder other;
  other.Settings("DbType=SQLITE\nDBName=./store.db\n[Log]\nFlush=call");
  const OpenEngine engine(store.Path());
  ASSERT_EQ(engine.LoadRules().Code, QNC_OK);
  const std::string before = engine.Calculate("1", "All", Sample("sales/basket.xml")).Text;
  const std::string state = engine.State().Text;
  EXPECT_EQ(Lint(store.Path()).Code, QNC_OK);
  EXPECT_EQ(Lint(other.Path()).Code, QNC_OK);
  other.Write("rules/A.xml", "<");
  EXPECT_EQ(Lint(other.Path()).Code, QNC_BAD_XML);
  EXPECT_EQ(engine.State().Text, state);
  EXPECT_EQ(engine.Calculate("1", "All", Sample("sales/basket.xml")).Text, before);
}

TEST(Linting, KeepsATimeLimit) {
  const StoreFolder store;
  // Rules enough that a millisecond is over.
  for (int number = 0; number < 300; ++number) {
    store.Write("rules/T" + std::to_string(number) + ".xml", RuleXml("T" + std::to_string(number)));
  }
  const Told told = Lint(store.Path(), 1);
  EXPECT_EQ(told.Code, QNC_TIMED_OUT);
  EXPECT_EQ(told.Text, "");
  EXPECT_THAT(CodesIn(Lint(store.Path())), ::testing::Contains("no-rows"));
}

}  // namespace
}  // namespace Corvane::Testing
