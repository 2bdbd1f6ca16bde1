#include <gmock/gmock.h>
#include <sys/resource.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/face/Face.h"

namespace Corvane::Testing {
namespace {

/// Every call with one engine, whatever that is. @return the codes.
std::vector<int> EveryCall(qnc_engine* engine) {
  char* text = nullptr;
  std::vector<int> codes = {
      qnc_load_rule(engine, RuleXml("R").c_str(), nullptr, 0, 0, nullptr),
      qnc_load_rule(engine, "no XML", nullptr, 0, 0, nullptr),
      qnc_load_rules(engine, nullptr, 0, 0, nullptr, nullptr),
      qnc_clear_rules(engine, "*", 0, nullptr),
      qnc_calculate(engine, "1", "All", "<Sale/>", 0, 0, &text, nullptr),
      qnc_forget_sale(engine, "1", 0, nullptr),
      qnc_forget_sales(engine, 0, nullptr),
      qnc_state(engine, 0, &text, nullptr),
      qnc_close(engine, nullptr),
  };
  EXPECT_EQ(text, nullptr);
  return codes;
}

TEST(Abuse, EnginesThatAreNoneAreNeverFollowed) {
  const std::vector<int> closed(9, QNC_CLOSED);
  int local = 0;
  for (const std::uintptr_t garbage :
       {std::uintptr_t{0}, std::uintptr_t{1}, ~std::uintptr_t{0}, reinterpret_cast<std::uintptr_t>(&local)}) {
    EXPECT_EQ(EveryCall(reinterpret_cast<qnc_engine*>(garbage)), closed);  // NOLINT(performance-no-int-to-ptr)
  }
  const StoreFolder store;
  const OpenEngine engine(store.Path());
  EXPECT_EQ(EveryCall(nullptr), closed);
  EXPECT_EQ(engine.State().Code, QNC_OK);
}

TEST(Abuse, NullTextsAndPlacesAreAnswered) {
  const StoreFolder store;
  EXPECT_EQ(qnc_open(nullptr, nullptr, nullptr), QNC_BAD_ARGUMENT);
  qnc_engine* none = nullptr;
  EXPECT_EQ(qnc_open(nullptr, &none, nullptr), QNC_BAD_ARGUMENT);
  EXPECT_EQ(none, nullptr);
  const OpenEngine engine(store.Path());
  EXPECT_EQ(qnc_load_rule(engine.Get(), nullptr, nullptr, 0, 0, nullptr), QNC_BAD_XML);
  EXPECT_EQ(qnc_clear_rules(engine.Get(), nullptr, 0, nullptr), QNC_BAD_ARGUMENT);
  char* text = nullptr;
  EXPECT_EQ(qnc_calculate(engine.Get(), nullptr, nullptr, nullptr, 0, 0, &text, nullptr), QNC_BAD_ARGUMENT);
  EXPECT_EQ(qnc_calculate(engine.Get(), "1", "All", "<Sale/>", 0, 0, nullptr, nullptr), QNC_BAD_ARGUMENT);
  EXPECT_EQ(qnc_forget_sale(engine.Get(), nullptr, 0, nullptr), QNC_OK);
  EXPECT_EQ(qnc_state(engine.Get(), 0, nullptr, nullptr), QNC_BAD_ARGUMENT);
  EXPECT_EQ(qnc_check(nullptr, 0, nullptr, nullptr), QNC_BAD_ARGUMENT);
  EXPECT_EQ(qnc_check(store.Path().c_str(), 0, nullptr, nullptr), QNC_OK);
  EXPECT_EQ(qnc_lint(nullptr, 0, nullptr, nullptr), QNC_BAD_ARGUMENT);
  EXPECT_EQ(qnc_lint(store.Path().c_str(), 0, nullptr, nullptr), QNC_OK);
  qnc_free(nullptr);
}

TEST(Abuse, FlagsThatMeanNothingAreRefused) {
  const StoreFolder store;
  const OpenEngine engine(store.Path());
  EXPECT_EQ(engine.Calculate("1", "All", SaleXml(), 1U << 20U).Code, QNC_BAD_ARGUMENT);
  EXPECT_EQ(engine.Calculate("1", "All", SaleXml(), QNC_REPLACE).Code, QNC_BAD_ARGUMENT);
  EXPECT_EQ(engine.LoadRule(RuleXml("R"), nullptr, QNC_JSON).Code, QNC_BAD_ARGUMENT);
  EXPECT_EQ(engine.LoadRules(nullptr, QNC_JSON).Code, QNC_BAD_ARGUMENT);
}

TEST(Abuse, ResultsOfAnySizeComeBackWhole) {
  const StoreFolder store;
  const OpenEngine engine(store.Path());
  ASSERT_EQ(engine.LoadRules().Code, QNC_OK);
  std::string sale = R"(<Sale BillNo="S" OrgCode="01" IsCalc="0"><Plu>)";
  constexpr int kLines = 20000;
  for (int line = 1; line <= kLines; ++line) {
    sale += R"(<Row SaleDate="2024-06-15" SaleTime="10:30:00" PluCode="100101" Price="2.50" PluCount="3" Total="7.50")";
    sale += R"( PackCnt="1" SerialNo=")" + std::to_string(line) + R"(" ClsId="&quot;&quot;&quot;&quot;"/>)";
  }
  const Told told = engine.Calculate("1", "All", sale + "</Plu></Sale>");
  ASSERT_EQ(told.Code, QNC_OK);
  EXPECT_GT(told.Text.size(), std::size_t{kLines} * 250);
  EXPECT_EQ(told.Text.substr(told.Text.size() - 8), "</Sale>\n");
}

TEST(Abuse, TextsOfManyMegabytesAreAnswered) {
  const StoreFolder store;
  const OpenEngine engine(store.Path());
  const std::string text(10U << 20U, 'x');
  EXPECT_EQ(engine.Calculate(text, "All", SaleXml()).Code, QNC_OK);
  EXPECT_EQ(engine.Calculate("1", text.substr(0, 1000), SaleXml()).Code, QNC_BAD_ARGUMENT);
  EXPECT_EQ(engine.Calculate("1", "All", text).Code, QNC_BAD_XML);
  EXPECT_EQ(engine.Calculate("1", "All", std::string(10U << 20U, '<')).Code, QNC_BAD_XML);
  std::string nested;
  for (int level = 0; level < 1000000; ++level) nested += "<a>";
  EXPECT_EQ(engine.Calculate("1", "All", nested).Code, QNC_BAD_XML);
  EXPECT_EQ(engine.Calculate("1", "All", R"(<Sale BillNo=")" + text + R"("/>)").Code, QNC_OK);
  EXPECT_EQ(engine.LoadRule(RuleXml(text)).Code, QNC_OK);
}

}  // namespace
}  // namespace Corvane::Testing
