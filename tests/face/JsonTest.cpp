#include <gmock/gmock.h>

#include <cmath>
#include <map>
#include <nlohmann/json.hpp>

#include "tests/face/Face.h"

namespace Corvane::Testing {
namespace {

using Json = nlohmann::ordered_json;

class JsonResults : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(m_engine.LoadRules().Code, QNC_OK); }

  Json Calculate(const std::string& mode, const std::string& xml, unsigned flags = 0) const {
    const Told told = m_engine.Calculate("1", mode, xml, flags | QNC_JSON);
    EXPECT_EQ(told.Code, QNC_OK) << told.Error;
    return Json::parse(told.Text);
  }

  StoreFolder m_store;
  OpenEngine m_engine{m_store.Path()};
};

TEST_F(JsonResults, HaveTheFieldsOfTheXmlWithNumbersAndCents) {
  // Three juices of 2.50 at 1.99.
  const Json json = Calculate("All", SaleXml());
  EXPECT_EQ(json["sale"]["BillNo"], "S");
  EXPECT_EQ(json["sale"]["OrgCode"], "01");
  const Json& line = json["sale"]["Plu"][0];
  EXPECT_EQ(line["SerialNo"], 1);
  EXPECT_EQ(line["PluCode"], "100101");
  EXPECT_EQ(line["Price"], 2.5);
  EXPECT_EQ(line["PriceCents"], 250);
  EXPECT_EQ(line["FinalPrice"], 1.99);
  EXPECT_EQ(line["Total"], 5.97);
  EXPECT_EQ(line["TotalCents"], 597);
  const Json& discount = json["sale"]["ProResult"][0];
  EXPECT_EQ(discount["ProBillNo"], "PTXS-01");
  EXPECT_EQ(discount["DisMoney"], 1.53);
  EXPECT_EQ(discount["DisMoneyCents"], 153);
  EXPECT_EQ(discount["RowID"], 1);
  EXPECT_EQ(json["sale"]["Apportion"][0]["AppMoneyCents"], 153);
  EXPECT_TRUE(json["sale"]["ProGifts"].empty());
  EXPECT_TRUE(json["sale"]["ProCoupons"].empty());
}

TEST_F(JsonResults, TellTheTotalsInCents) {
  // The receipt of samples/receipts/basket.txt.
  const Json totals = Calculate("All", Sample("sales/basket.xml"))["totals"];
  EXPECT_EQ(totals["beforeCents"], 4011);
  EXPECT_EQ(totals["before"], 40.11);
  EXPECT_EQ(totals["toPayCents"], 3606);
  EXPECT_EQ(totals["toPay"], 36.06);
  ASSERT_EQ(totals["rules"].size(), 3U);
  std::map<std::string, int> cents;
  for (const Json& rule : totals["rules"]) cents[rule["billNo"]] = rule["cents"];
  EXPECT_EQ(cents, (std::map<std::string, int>{{"PTXS-01", 153}, {"PTXS-02", 52}, {"PTXS-03", 200}}));
  EXPECT_EQ(totals["rules"][0]["type"], "PTXS");
}

TEST_F(JsonResults, OfASubtotalWithoutLinesBeginWithWhatWasLeft) {
  ASSERT_EQ(Calculate("All", SaleXml())["totals"]["toPayCents"], 597);
  const Json again = Calculate("All", "<Sale/>")["totals"];
  EXPECT_EQ(again["beforeCents"], 597);
  EXPECT_LE(again["toPayCents"], 597);
}

TEST_F(JsonResults, OfOneScannedLineHaveItsForm) {
  ASSERT_EQ(Calculate("All", SaleXml())["totals"]["toPayCents"], 597);
  const Json json = Calculate("Single", SaleXml());
  EXPECT_EQ(json["sale"]["Plu"].size(), 1U);
  EXPECT_FALSE(json["sale"].contains("ProGifts"));
  EXPECT_EQ(json["totals"]["beforeCents"], 750);
  EXPECT_EQ(json["totals"]["toPayCents"], 597);
}

TEST_F(JsonResults, HaveTheGoodsOfOffersInThem) {
  Calculate("All", Sample("sales/till/4-subtotal.xml"));
  const Json json = Calculate("MzPromotion", "<Sale/>");
  ASSERT_FALSE(json["sale"]["ProGifts"].empty());
  for (const Json& offer : json["sale"]["ProGifts"]) {
    EXPECT_TRUE(offer["TotalCents"].is_number_integer());
    ASSERT_FALSE(offer["Goods"].empty());
    EXPECT_TRUE(offer["Goods"][0]["SaleMaxIn"].is_number());
    EXPECT_TRUE(offer["Goods"][0]["PluCode"].is_string());
  }
}

TEST_F(JsonResults, HoldTextsOfAnyKindAndNumbersOfAnySize) {
  const Json json =
      Calculate("All", SaleXml(R"(SerialNo="1" PluCode="&quot;\&#10;&#8364;中" PluCount="1" Total="1e300")"));
  EXPECT_EQ(json["sale"]["Plu"][0]["PluCode"], "\"\\\n€中");
  EXPECT_TRUE(std::isfinite(json["sale"]["Plu"][0]["Total"].get<double>()));
  EXPECT_EQ(json["sale"]["Plu"][0]["TotalCents"], 9223372036854775807);
  EXPECT_EQ(json["totals"]["toPayCents"], 9223372036854775807);
}

TEST_F(JsonResults, HoldTheCentsOfAmountsThatNoNumberHolds) {
  const Json json = Calculate("All", SaleXml(R"(SerialNo="1" PluCode="A" PluCount="1" Total="-99999999999999.97")"));
  EXPECT_EQ(json["sale"]["Plu"][0]["TotalCents"], -9999999999999997);
  EXPECT_EQ(json["totals"]["toPayCents"], -9999999999999997);
}

TEST_F(JsonResults, OfBytesThatAreNoTextAreJsonAllTheSame) {
  const Json json =
      Calculate("All", SaleXml("SerialNo=\"1\" PluCode=\"\xFF\" PluCount=\"1\" Total=\"1\""), QNC_LENIENT);
  EXPECT_EQ(json["sale"]["Plu"][0]["PluCode"], "\xEF\xBF\xBD");
}

}  // namespace
}  // namespace Corvane::Testing
