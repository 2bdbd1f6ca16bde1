#include <gmock/gmock.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <regex>
#include <string>
#include <vector>

#include "tests/face/Face.h"

namespace Corvane::Testing {
namespace {

using Json = nlohmann::ordered_json;
using ::testing::HasSubstr;

constexpr unsigned kExplain = QNC_EXPLAIN;

class Explaining : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(m_engine.LoadRules().Code, QNC_OK); }

  Json Result(const std::string& mode, const std::string& xml, const std::string& key = "1") const {
    const Told told = m_engine.Calculate(key, mode, xml, kExplain);
    EXPECT_EQ(told.Code, QNC_OK) << told.Error;
    return Json::parse(told.Text);
  }

  Json Explained(const std::string& mode, const std::string& xml) const { return Result(mode, xml)["explanation"]; }

  /// The rule's outcomes that are its own: not those of passes that take others.
  static std::vector<Json> OutcomesOf(const Json& explanation, const std::string& billNo) {
    std::vector<Json> own;
    for (const Json& rule : explanation["rules"]) {
      if (rule["billNo"] != billNo) continue;
      for (const Json& outcome : rule["outcomes"]) {
        const bool isElsewhere = outcome["because"].is_object() && (outcome["because"]["reason"] == "OtherPass" ||
                                                                    outcome["because"]["reason"] == "OtherClass");
        if (!isElsewhere) own.push_back(outcome);
      }
    }
    return own;
  }

  static Json ReasonOf(const Json& explanation, const std::string& billNo) {
    const std::vector<Json> own = OutcomesOf(explanation, billNo);
    EXPECT_EQ(own.size(), 1U) << billNo;
    return own.empty() ? Json() : own.front()["because"];
  }

  static Json NearMissOf(const Json& explanation, const std::string& billNo) {
    for (const Json& near : explanation["nearMisses"]) {
      if (near["billNo"] == billNo) return near;
    }
    return {};
  }

  StoreFolder m_store;
  OpenEngine m_engine{m_store.Path()};
};

TEST_F(Explaining, IsAskedForByAFlagAndNotThereWithout) {
  EXPECT_TRUE(Result("All", SaleXml()).contains("explanation"));
  const Told without = m_engine.Calculate("2", "All", SaleXml(), QNC_JSON);
  EXPECT_FALSE(Json::parse(without.Text).contains("explanation"));
}

TEST_F(Explaining, LeavesTheResultAsItIs) {
  Json explained = Result("All", Sample("sales/weekly-shop.xml"), "1");
  explained.erase("explanation");
  const Told plain = m_engine.Calculate("2", "All", Sample("sales/weekly-shop.xml"), QNC_JSON);
  EXPECT_EQ(explained, Json::parse(plain.Text));
}

TEST_F(Explaining, TellsThePassesOfASubtotal) {
  const Json passes = Explained("All", SaleXml())["passes"];
  ASSERT_EQ(passes.size(), 4U);
  EXPECT_EQ(passes[0], (Json{{"pass", 1}, {"kind", "Combination"}, {"class", "DZ"}}));
  EXPECT_EQ(passes[1], (Json{{"pass", 2}, {"kind", "Ordinary"}, {"class", "DZ"}}));
  EXPECT_EQ(passes[2], (Json{{"pass", 3}, {"kind", "Ordinary"}, {"class", ""}}));
  EXPECT_EQ(passes[3], (Json{{"pass", 4}, {"kind", "Combination"}, {"class", ""}}));
}

TEST_F(Explaining, TellsWhatAnAppliedRuleTookOffByLine) {
  // Three juices of 2.50 at 1.99.
  const Json explanation = Explained("All", SaleXml());
  const std::vector<Json> own = OutcomesOf(explanation, "PTXS-01");
  ASSERT_EQ(own.size(), 1U);
  EXPECT_EQ(own[0]["outcome"], "applied");
  EXPECT_EQ(own[0]["cents"], 153);
  EXPECT_EQ(own[0]["lines"], (Json::array({Json{{"serialNo", 1}, {"cents", 153}, {"money", 1.53}}})));
  EXPECT_TRUE(own[0]["because"].is_null());
}

TEST_F(Explaining, TellsWhatARuleMissesWithHaveAndNeed) {
  const Json reason = ReasonOf(Explained("All", Sample("sales/yoghurt-five.xml")), "PTPL-01");
  EXPECT_EQ(reason["reason"], "BelowMinimum");
  EXPECT_EQ(reason["lines"], (Json::array({1, 2})));
  EXPECT_EQ(reason["unit"], "quantity");
  EXPECT_EQ(reason["have"], 5);
  EXPECT_EQ(reason["need"], 6);
}

TEST_F(Explaining, TellsWhoTookWhatIsMissing) {
  // The bundle takes the pasta, and comes round a second time with all the others.
  const std::vector<Json> own = OutcomesOf(Explained("All", Sample("sales/pasta-night.xml")), "ZHGD-01");
  ASSERT_EQ(own.size(), 2U);
  EXPECT_EQ(own[0]["outcome"], "applied");
  EXPECT_EQ(own[1]["because"]["reason"], "ArticleShort");
  EXPECT_EQ(own[1]["because"]["takenBy"], (Json::array({Json{{"billNo", "ZHGD-01"}, {"primary", "DZ"}}})));
}

TEST_F(Explaining, TellsTheFirstFilterThatRefuses) {
  const auto reasonOn = [&](const std::string& date, const std::string& extra) {
    const std::string xml =
        R"(<Sale OrgCode="01" IsCalc="0"><Plu><Row SerialNo="1" PluCode="110101" Price="6.90" PluCount="1" Total="6.90" PackCnt="1" SaleDate=")" +
        date + R"(" SaleTime="10:30:00"/></Plu>)" + extra + "</Sale>";
    return ReasonOf(Result("All", xml, date + extra)["explanation"], "PTXS-04")["reason"];
  };
  EXPECT_EQ(reasonOn("2023-12-31", ""), "DateOutside");
  EXPECT_EQ(reasonOn("2024-06-15", ""), "MemberMissing");
  EXPECT_EQ(reasonOn("2024-06-15", R"(<Vip><Row VipType="99"/></Vip>)"), "MemberOther");
}

TEST_F(Explaining, TellsTheWayOfALinesAmountOverSeveralCalls) {
  Explained("All", Sample("sales/till/4-subtotal.xml"));
  const Json line = Explained("MzPromotion", "<Sale/>")["lines"][2];
  EXPECT_EQ(line["beforeCents"], 500);
  ASSERT_EQ(line["steps"].size(), 2U);
  EXPECT_EQ(line["steps"][0]["kind"], "earlier");
  EXPECT_EQ(line["steps"][0]["pass"], 0);
  EXPECT_EQ(line["steps"][0]["billNo"], "PTXS-01");
  EXPECT_EQ(line["steps"][0]["leftCents"], 398);
  EXPECT_EQ(line["steps"][1]["kind"], "discount");
  EXPECT_EQ(line["steps"][1]["billNo"], "MZMJ-01");
  EXPECT_EQ(line["leftCents"], 362);
}

TEST_F(Explaining, ShowsRoundingTailsAsSuch) {
  // 1.00 off two lines of 1.00 and 2.00: shares of 0.33 and 0.67, half a cent up and cut.
  m_store.Sql(
      "delete from tProMzDiscountAct where BillNo='MZMJ-01';"
      "insert into tProMzDiscountAct (BillNo, ListCode, DscType, BaseMoney, BaseDscMoney, AddMoney, AddDscMoney, "
      "SaleMaxIn) values ('MZMJ-01', '1', '', 3, 1, 0, 0, 3)");
  const std::string row =
      R"( Price="1.00" PluCount="1" Total="1.00" PackCnt="1" SaleDate="2024-06-15" SaleTime="10:30:00"/>)";
  const std::string xml = R"(<Sale OrgCode="01" IsCalc="0"><Plu><Row SerialNo="1" PluCode="A")" + row +
                          R"(<Row SerialNo="2" PluCode="B")" + row + R"(<Row SerialNo="3" PluCode="C")" + row +
                          "</Plu></Sale>";
  const Json explanation = Explained("MzPromotion", xml);
  const Json& steps = explanation["lines"][0]["steps"];
  ASSERT_EQ(steps.size(), 2U);
  EXPECT_EQ(steps[0]["cents"], 33);
  EXPECT_EQ(steps[1]["kind"], "tail");
  EXPECT_EQ(steps[1]["cents"], 1);
  EXPECT_EQ(steps[1]["by"], "MZMJ-01");
  EXPECT_EQ(explanation["lines"][0]["leftCents"], 66);
}

TEST_F(Explaining, FindsWhatOneMorePieceBrings) {
  // The sixth yoghurt: 6 x 0.80 at 0.65.
  const Json near = NearMissOf(Explained("All", Sample("sales/yoghurt-five.xml")), "PTPL-01");
  EXPECT_EQ(near["missing"], 1);
  ASSERT_EQ(near["add"].size(), 1U);
  EXPECT_EQ(near["add"][0]["pluCode"], "200201");
  EXPECT_EQ(near["add"][0]["count"], 1);
  EXPECT_EQ(near["brings"]["cents"], 90);
  EXPECT_EQ(near["brings"]["ruleCents"], 90);
}

TEST_F(Explaining, FindsWhatGoodsBringThatOnlyTheStoresListHas) {
  // The whole bundle is missing: 2 x 1.50, 2.30 and 4.20 for 8.50.
  const Json near = NearMissOf(Explained("All", Sample("sales/yoghurt-five.xml")), "ZHGD-01");
  EXPECT_EQ(near["add"].size(), 3U);
  EXPECT_EQ(near["brings"]["ruleCents"], 100);
}

TEST_F(Explaining, GoesOnWithAGoodsListThatMakesNoSense) {
  std::string blanks;
  blanks.resize(10000000, ' ');
  std::string deep;
  for (int depth = 0; depth < 100000; ++depth) deep += "<Row PluCode='700101' Price='1'>";
  const std::vector<std::string> lists = {"",
                                          "<",
                                          "no XML",
                                          std::string("\0\xff\xfe", 3),
                                          deep,
                                          "<Goods><Row/><Row PluCode='700101' Price='NaN'/></Goods>",
                                          "<Goods>" + blanks};
  for (const std::string& list : lists) {
    m_store.Write("goods.xml", list);
    const Json near = NearMissOf(Explained("All", Sample("sales/yoghurt-five.xml")), "ZHGD-01");
    EXPECT_TRUE(near["brings"].is_null()) << list.substr(0, 60);
  }
  m_store.Remove("goods.xml");
  EXPECT_TRUE(NearMissOf(Explained("All", Sample("sales/yoghurt-five.xml")), "ZHGD-01")["brings"].is_null());
}

TEST_F(Explaining, OfAGiftChoiceThatIsRefusedTellsWhatDoesNotFit) {
  ASSERT_EQ(m_engine.Calculate("1", "All", Sample("sales/till/4-subtotal.xml")).Code, QNC_OK);
  ASSERT_EQ(m_engine.Calculate("1", "MzPromotion", "<Sale/>").Code, QNC_OK);
  const Told told = m_engine.Calculate("1", "Gift", Sample("sales/till/5-gift-two-bags.xml"), kExplain);
  EXPECT_EQ(told.Code, QNC_NUMBER_OVERFLOW);
  EXPECT_THAT(told.Error, HasSubstr("number overflow"));
  const Json answer = Json::parse(told.Text);
  EXPECT_EQ(answer.size(), 1U);
  const Json reason = ReasonOf(answer["explanation"], "MZZP-01");
  EXPECT_EQ(reason["reason"], "ChoiceTooMany");
  EXPECT_EQ(reason["goods"], "900101");
  EXPECT_EQ(reason["have"], 2);
  EXPECT_EQ(reason["need"], 1);
}

TEST_F(Explaining, OfACallThatIsRefusedGivesNothing) {
  const Told told = m_engine.Calculate("1", "All", "<Sale", kExplain);
  EXPECT_EQ(told.Code, QNC_BAD_XML);
  EXPECT_EQ(told.Text, "");
}

/// The log's entries without their times.
std::vector<std::string> EntriesOf(const StoreFolder& store) {
  const std::string bytes = store.Read("QnCorvane.txt");
  const std::regex stamp(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d  )");
  return {std::sregex_token_iterator(bytes.begin(), bytes.end(), stamp, -1), std::sregex_token_iterator()};
}

/// What a customer's way through the till leaves, explained or not: the results, and the log.
std::vector<std::string> WayThroughTheTill(unsigned flags) {
  const StoreFolder store;
  std::vector<std::string> left;
  {
    const OpenEngine engine(store.Path());
    engine.LoadRules();
    const auto calculate = [&](const std::string& mode, const std::string& xml, unsigned asked) {
      const Told told = engine.Calculate("1", mode, xml, asked);
      if (asked == 0) left.push_back(told.Text);
    };
    calculate("All", Sample("sales/till/4-subtotal.xml"), flags);
    // What follows an explained call is as it would be without: rules keep rows of the last subtotal for this mode.
    calculate("Single", Sample("sales/till/3-scan-orange-juice.xml"), 0);
    calculate("All", Sample("sales/yoghurt-five.xml"), flags);
    calculate("MzPromotion", "<Sale/>", flags);
    calculate("MzPromotion", "<Sale/>", 0);
    calculate("Pay", Sample("sales/till/8-card.xml"), flags);
    calculate("Coupon", Sample("sales/till/9-coupons.xml"), 0);
  }
  for (const std::string& entry : EntriesOf(store)) left.push_back(entry);
  return left;
}

TEST(ExplainingLeavesNoTrace, NeitherInWhatFollowsNorInTheLog) {
  const std::vector<std::string> plain = WayThroughTheTill(QNC_JSON);
  ASSERT_GT(plain.size(), 100U);
  EXPECT_THAT(plain[0], HasSubstr("<Data"));
  EXPECT_EQ(WayThroughTheTill(kExplain), plain);
}

}  // namespace
}  // namespace Corvane::Testing
