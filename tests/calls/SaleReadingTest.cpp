#include <gmock/gmock.h>

#include "qncorvane/qncorvane.h"
#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// How a sale's XML is merged into what the engine holds of the sale.
class SaleReading : public Till {
 protected:
  static Answer Run(const std::string& mode, const std::string& xml) {
    const Answer sale = Calc("till", mode, xml);
    EXPECT_EQ(sale.Code, 0);
    EXPECT_EQ(sale.Msg, "sucess");
    return sale;
  }
  /// Merges a sale and shows it: this mode leaves the sale as it was read.
  static std::string Read(const std::string& xml) { return Run("MzPromotion", xml).Out; }
  static Row ReadLine(const std::string& attributes) {
    DeleteSaleSetByKey("till");
    const std::vector<Row> lines = RowsOf(Read("<Sale><Plu><D " + attributes + "/></Plu></Sale>"), "Plu");
    EXPECT_EQ(lines.size(), 1U);
    return lines.empty() ? Row({}) : lines.front();
  }
};

// --- Lines -----------------------------------------------------------------------------------------------------------

TEST_F(SaleReading, LinesArriveOneByOneAndKeepTheOrderOfTheirFirstArrival) {
  EXPECT_THAT(LinesOf(Run("Single", SaleXml(LineXml(5, "COLA", "10", "1", "10"))).Out),
              ElementsAre("5 COLA 1.00 x 10.00 = 10.00"));
  EXPECT_THAT(LinesOf(Run("Single", SaleXml(LineXml(2, "TEA", "2", "1", "2"))).Out),
              ElementsAre("2 TEA 1.00 x 2.00 = 2.00"));

  EXPECT_THAT(LinesOf(Read("<Sale/>")), ElementsAre("5 COLA 1.00 x 10.00 = 10.00", "2 TEA 1.00 x 2.00 = 2.00"));
}

TEST_F(SaleReading, ALineThatIsSentAgainIsReplacedInItsPlaceWithAllThatRulesDidToIt) {
  MakeTables();
  Put({DirectRow("X1", 1, "COLA").Price("8"), DirectRow("X1", 2, "TEA").Price("1")});
  ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS")).Code, 0);
  Run("All", SaleXml(LineXml(1, "TEA", "2", "1", "2") + LineXml(2, "COLA", "10", "1", "10")));

  const std::string sale = Read(SaleXml(LineXml(1, "TEA", "2", "4", "8")));

  EXPECT_THAT(LinesOf(sale), ElementsAre("1 TEA 4.00 x 2.00 = 8.00", "2 COLA 1.00 x 10.00 = 8.00"));
  EXPECT_THAT(DiscountsOf(sale), ElementsAre("2 COLA: X1 on 1.00 gives 2.00"));
  EXPECT_THAT(SharesOf(sale), ElementsAre("2 COLA: X1 on 1.00 gives 2.00"));
  EXPECT_EQ(RowWhere(sale, "Plu", "SerialNo", "1")["DisNum"], "0.00");
}

TEST_F(SaleReading, ASingleOfALineThatIsSentAgainWorksOnThatLine) {
  Run("All", SaleXml(LineXml(1, "TEA", "2", "1", "2") + LineXml(2, "COLA", "10", "1", "10")));

  EXPECT_THAT(LinesOf(Run("Single", SaleXml(LineXml(2, "COLA", "10", "3", "30"))).Out),
              ElementsAre("2 COLA 3.00 x 10.00 = 30.00"));
}

TEST_F(SaleReading, EachGroupOfLinesCountsByItselfForASingle) {
  const std::string one = "<Plu>" + LineXml(1, "TEA", "2", "1", "2") + "</Plu>";
  const std::string two = "<Plu>" + LineXml(2, "COLA", "10", "1", "10") + LineXml(3, "RICE", "5", "1", "5") + "</Plu>";

  // The last group has one line: that is the one. The other way about there is none.
  EXPECT_THAT(LinesOf(Run("Single", "<Sale>" + two + one + "</Sale>").Out), ElementsAre("1 TEA 1.00 x 2.00 = 2.00"));
  EXPECT_EQ(Calc("till", "Single", "<Sale>" + one + two + "</Sale>").Msg, "unknow error");
}

TEST_F(SaleReading, AGroupWithoutLinesIsPassedOver) {
  Run("Single", SaleXml(LineXml(1, "TEA", "2", "1", "2")));

  EXPECT_THAT(LinesOf(Run("Single", "<Sale><Plu></Plu></Sale>").Out), ElementsAre("1 TEA 1.00 x 2.00 = 2.00"));
}

TEST_F(SaleReading, LinesWithoutANumberAreLineZero) {
  Read(R"(<Sale><Plu><D PluCode="COLA" PluCount="1" Total="10"/></Plu></Sale>)");

  const std::string sale = Read(R"(<Sale><Plu><D PluCode="TEA" PluCount="1" Total="2"/></Plu></Sale>)");

  EXPECT_THAT(LinesOf(sale), ElementsAre("0 TEA 1.00 x 0.00 = 2.00"));
}

TEST_F(SaleReading, ThePriceOfALineIsItsTotalByItsQuantityWhateverItsXmlSays) {
  EXPECT_EQ(ReadLine(R"(SerialNo="1" FinalPrice="9.99" Total="20" PluCount="2")")["FinalPrice"], "10.0000");
  EXPECT_EQ(ReadLine(R"(SerialNo="1" Total="10" PluCount="3" FinalPrice="1")")["FinalPrice"], "3.3333");
  EXPECT_EQ(ReadLine(R"(SerialNo="1" Total="5" PluCount="0")")["FinalPrice"], "0.0000");
  EXPECT_EQ(ReadLine(R"(SerialNo="1" Total="0" PluCount="0")")["FinalPrice"], "0.0000");
}

TEST_F(SaleReading, ANumberThatIsNotFiniteReadsAsZero) {
  for (const std::string value : {"inf", "-inf", "nan", "1e999", "-1e999"}) {
    SCOPED_TRACE(value);
    const Row line = ReadLine("SerialNo=\"1\" Price=\"" + value + "\" PluCount=\"" + value + "\" Total=\"" + value +
                              "\" VipPrice=\"" + value + "\" PackCnt=\"" + value + "\"");
    EXPECT_EQ(line["Price"], "0.00");
    EXPECT_EQ(line["PluCount"], "0.00");
    EXPECT_EQ(line["Total"], "0.00");
    EXPECT_EQ(line["FinalPrice"], "0.0000");
    EXPECT_EQ(line["VipPrice"], "0");
    EXPECT_EQ(line["PackCnt"], "0");
  }
}

// They differ in the low 32 bits, which is what stays of them.
TEST_F(SaleReading, SerialNumbersOfElevenDigitsStayDifferentLines) {
  const Answer sale =
      Run("All", SaleXml(R"(<Row SerialNo="20240615001" PluCode="A" Price="1" PluCount="1" Total="1"/>)"
                         R"(<Row SerialNo="20240615002" PluCode="B" Price="2" PluCount="1" Total="2"/>)"
                         R"(<Row SerialNo="20240615003" PluCode="C" Price="3" PluCount="1" Total="3"/>)"));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("-1234221479 A 1.00 x 1.00 = 1.00", "-1234221478 B 1.00 x 2.00 = 2.00",
                                             "-1234221477 C 1.00 x 3.00 = 3.00"));
}

TEST_F(SaleReading, ALineKeepsTheSaleNumberThatItCameWith) {
  Run("Single", R"(<Sale BillNo="B1"><Plu>)" + LineXml(1, "TEA", "2", "1", "2") + "</Plu></Sale>");

  const Answer sale = Run("Single", R"(<Sale BillNo="B2"/>)");

  EXPECT_NE(sale.Out.find(R"(<Sale BillNo="B1" )"), std::string::npos);
  EXPECT_NE(Read("<Sale/>").find(R"(<Sale BillNo="B2" )"), std::string::npos);
}

// --- Attributes ------------------------------------------------------------------------------------------------------

TEST_F(SaleReading, WholeNumbersAreReadUpToTheFirstCharacterThatIsNoDigit) {
  EXPECT_EQ(ReadLine(R"(SerialNo="7x" Total="1" PluCount="1")")["SerialNo"], "7");
  EXPECT_EQ(ReadLine(R"(SerialNo=" +7.9" Total="1" PluCount="1")")["SerialNo"], "7");
  EXPECT_EQ(ReadLine(R"(SerialNo="1e2" Total="1" PluCount="1")")["SerialNo"], "1");
  EXPECT_EQ(ReadLine(R"(SerialNo="-3" Total="1" PluCount="1")")["SerialNo"], "-3");
  EXPECT_EQ(ReadLine(R"(SerialNo="abc" Total="1" PluCount="1")")["SerialNo"], "0");
  EXPECT_EQ(ReadLine(R"(SerialNo="" Total="1" PluCount="1")")["SerialNo"], "0");
}

TEST_F(SaleReading, PassedThroughNumbersAreReadAsDoublesAndCut) {
  const Row line = ReadLine(R"(SerialNo="1" Total="1" PluCount="1" PluDtId="12.9" PageNo="1e2" LnNo="-3.7")");

  EXPECT_EQ(line["PluDtId"], "12");
  EXPECT_EQ(line["PageNo"], "100");
  EXPECT_EQ(line["LnNo"], "-3");
}

TEST_F(SaleReading, DoublesAreReadAsTheCLibraryReadsThem) {
  EXPECT_EQ(ReadLine(R"(SerialNo="1" Total="1" PluCount="1" Price="9.90")")["Price"], "9.90");
  EXPECT_EQ(ReadLine(R"(SerialNo="1" Total="1" PluCount="1" Price=" 9.9 euro")")["Price"], "9.90");
  EXPECT_EQ(ReadLine(R"(SerialNo="1" Total="1" PluCount="1" Price="9,90")")["Price"], "9.00");
  EXPECT_EQ(ReadLine(R"(SerialNo="1" Total="1" PluCount="1" Price="-1.5e1")")["Price"], "-15.00");
  EXPECT_EQ(ReadLine(R"(SerialNo="1" Total="1" PluCount="1" Price=".5")")["Price"], "0.50");
  EXPECT_EQ(ReadLine(R"(SerialNo="1" Total="1" PluCount="1" Price="0x10")")["Price"], "16.00");
  EXPECT_EQ(ReadLine(R"(SerialNo="1" Total="1" PluCount="1" Price="free")")["Price"], "0.00");
  EXPECT_EQ(ReadLine(R"(SerialNo="1" Total="1" PluCount="1" Price="")")["Price"], "0.00");
}

TEST_F(SaleReading, OfAnAttributeThatOccursTwiceTheLastValueCountsAndTheRestIsRead) {
  const std::string sale = Read(R"(<Sale><Plu><D SerialNo="1" PluCode="COLA" PluCount="1" PluCount="2" Total="20"/>)" +
                                LineXml(2, "TEA", "2", "1", "2") + R"(</Plu><Coupon><D BillNo="C1"/></Coupon></Sale>)");

  EXPECT_THAT(LinesOf(sale), ElementsAre("1 COLA 2.00 x 0.00 = 20.00", "2 TEA 1.00 x 2.00 = 2.00"));
  EXPECT_EQ(RowsOf(sale, "ProCoupons").size(), 1U);
}

TEST_F(SaleReading, AttributesStandInAnyOrderAndTheirNamesAreExact) {
  const Row line = ReadLine(R"(Total="20" plucode="X" PluCount="2" PLUCODE="Y" PluCode="COLA" SerialNo="4")");

  EXPECT_EQ(line["SerialNo"], "4");
  EXPECT_EQ(line["PluCode"], "COLA");
  EXPECT_EQ(line["FinalPrice"], "10.0000");
}

TEST_F(SaleReading, AnUnknownAttributeIsAClassOfTheLineAndSoAreCategoryAndBrand) {
  const std::string line = LineXml(1, "COLA", "10", "1", "10", R"(CAT="DRINKS" BRD="ACME" Season="SUMMER")");
  const auto refund = [&line](const std::string& type, const std::string& code) {
    Clear("*");
    ClearSales();
    const std::string groups = "<PluCondition><Row PluType=\"" + type + "\" PluCode=\"" + code + "\" MinNum=\"1\"/>" +
                               R"(</PluCondition><ProCtr><Row PayType="CARD" PriceTotal="9"/></ProCtr>)"
                               R"(<PluAction><Row DisPrice="10" DisRate="9"/></PluAction>)";
    Load("MZZF", RuleXml("F1", "MZZF", "", groups));
    return !DiscountsOf(Run("Pay", SaleXml(line, R"(<PayMode><D PayMode="CARD" PayMoney="10"/></PayMode>)")).Out)
                .empty();
  };

  EXPECT_TRUE(refund("Season", "SUMMER"));
  EXPECT_TRUE(refund("CAT", "DRINKS"));
  EXPECT_TRUE(refund("BRD", "ACME"));
  EXPECT_FALSE(refund("Season", "WINTER"));
  EXPECT_FALSE(refund("season", "SUMMER"));
  // A field of the line is none of its classes.
  EXPECT_FALSE(refund("PluCode", "COLA"));
}

TEST_F(SaleReading, CategoryAndBrandAreFieldsOfTheLine) {
  const Row line = ReadLine(R"(SerialNo="1" Total="1" PluCount="1" CAT="DRINKS" BRD="ACME" cat="X")");

  EXPECT_EQ(line["CAT"], "DRINKS");
  EXPECT_EQ(line["BRD"], "ACME");
}

TEST_F(SaleReading, TextsKeepTheirCharacters) {
  const std::string chinese =
      ReadLine(R"(SerialNo="1" Total="1" PluCount="1" PluCode="可乐 500ml" ClsId=" a  b ")")["PluCode"];
  EXPECT_EQ(chinese, "可乐 500ml");
  EXPECT_EQ(ReadLine(R"(SerialNo="1" Total="1" PluCount="1" ClsId=" a  b ")")["ClsId"], " a  b ");
  EXPECT_EQ(ReadLine(R"(SerialNo="1" Total="1" PluCount="1" ClsId='"&lt;&#65;&amp;')")["ClsId"], "\"<A&");
}

// --- Document --------------------------------------------------------------------------------------------------------

TEST_F(SaleReading, OnlyTheNamesOfTheGroupsCount) {
  const std::string sale =
      Read(R"(<?xml version="1.0" encoding="UTF-8"?><!-- a sale --><Anything><plu><D SerialNo="8"/></plu>)"
           R"(<Other><D SerialNo="9"/></Other><Plu>)" +
           LineXml(1, "COLA", "10", "1", "10") +
           R"(<!-- and --><Row SerialNo="2" PluCode="TEA" PluCount="1" Total="2"/></Plu></Anything>)");

  EXPECT_THAT(LinesOf(sale), ElementsAre("1 COLA 1.00 x 10.00 = 10.00", "2 TEA 1.00 x 0.00 = 2.00"));
}

TEST_F(SaleReading, AByteOrderMarkIsNoPartOfTheSale) {
  EXPECT_THAT(LinesOf(Read("\xEF\xBB\xBF" + SaleXml(LineXml(1, "可乐", "10", "1", "10")))),
              ElementsAre("1 可乐 1.00 x 10.00 = 10.00"));
}

TEST_F(SaleReading, WhatStandsBeforeAFaultIsRead) {
  EXPECT_THAT(LinesOf(Read("<Sale><Plu>" + LineXml(1, "COLA", "10", "1", "10") + LineXml(2, "TEA", "2", "1", "2") +
                           "<D SerialNo=\"3\" <<<")),
              ::testing::Contains("1 COLA 1.00 x 10.00 = 10.00"));
}

TEST_F(SaleReading, TheHeadOfTheSaleIsReplacedAttributeByAttribute) {
  Read(R"(<Sale OrgCode="S01" BillNo="B1" IsCalc="1" Cashier="7"/>)");

  EXPECT_NE(Read(R"(<Sale OrgCode="S02"/>)").find(R"(<Sale BillNo="B1" OrgCode="S02">)"), std::string::npos);
}

TEST_F(SaleReading, TheKindOfTheSaleStaysUntilAnotherComes) {
  ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS")).Code, 0);
  Read(R"(<Sale IsCalc="1"/>)");
  TakeLog();

  Run("Zh", "<Sale/>");
  EXPECT_TRUE(Holds(TakeLog(), "跳过促销"));
  Run("Zh", R"(<Sale IsCalc="0"/>)");
  EXPECT_FALSE(Holds(TakeLog(), "跳过促销"));
}

// --- Payments, members, coupons, offers ------------------------------------------------------------------------------

TEST_F(SaleReading, PaymentsAreLoggedGroupByGroupAndOneByOne) {
  Read("<Sale><PayMode><D PayMode=\"01\" PayMoney=\"5\"/><D PayMode=\"02\"/></PayMode></Sale>");
  EXPECT_THAT(TakeLog(), ElementsAre("MzPromotion", "till:0\n", "开始初始化流水", "初始化支付对象",
                                     "读到支付对象，开始初始化", "读到支付对象，开始初始化", "初始化流水完成"));

  Read("<Sale><PayMode/></Sale>");
  EXPECT_THAT(TakeLog(), ElementsAre("MzPromotion", "till:0\n", "开始初始化流水", "初始化支付对象", "初始化流水完成"));
}

TEST_F(SaleReading, PaymentsThatAreSentAgainAreDoubled) {
  ASSERT_EQ(Load("MZZF", RuleXml("F1", "MZZF", "",
                                 R"(<ProCtr><Row PayType="CARD" PriceTotal="1000"/></ProCtr>)"
                                 R"(<PluAction><Row DisPrice="50" DisRate="45"/></PluAction>)"))
                .Code,
            0);
  const std::string payment = R"(<PayMode><D PayMode="CARD" PayMoney="50"/></PayMode>)";
  Read(SaleXml(LineXml(1, "COLA", "10", "12", "120"), payment));

  const Answer sale = Run("Pay", SaleXml("", payment));

  // Two times 50.00 paid, two times 5.00 back.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("*: F1 on 90.00 gives 10.00", "1 COLA: F1 on 0.00 gives 10.00"));
}

TEST_F(SaleReading, MembersAddUpAndTheFirstStaysTheFirst) {
  MakeTables();
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS", "", R"(<Vip><Row VipType="GOLD"/></Vip>)")).Code, 0);
  Read(R"(<Sale><Vip><D VipType="SILVER"/></Vip></Sale>)");

  const Answer sale = Run("All", SaleXml(LineXml(1, "COLA", "10", "1", "10"), R"(<Vip><D VipType="GOLD"/></Vip>)"));

  EXPECT_EQ(RowWhere(sale.Out, "ProResult", "ProBillNo", "X1")["VipType"], "SILVER");
}

TEST_F(SaleReading, TheTwoDatesOfACouponChangePlaces) {
  const std::string sale = Read(R"(<Sale BillNo="B1"><Coupon><D BillNo="C1" CouponTypeCode="T1" CouponValue="5.5" )"
                                R"(BgnDate="2026-01-01" EndDate="2026-12-31"/></Coupon></Sale>)");

  const Row coupon = RowWhere(sale, "ProCoupons", "BillNo", "C1");
  EXPECT_EQ(coupon["BgnDate"], "2026-12-31");
  EXPECT_EQ(coupon["EndDate"], "2026-01-01");
  EXPECT_EQ(coupon["CouponTypeCode"], "T1");
  EXPECT_EQ(coupon["Value"], "5.5");
  EXPECT_EQ(coupon["SendSaleNo"], "B1");
  EXPECT_EQ(coupon["Remark"], "");
}

TEST_F(SaleReading, CouponsThatAreSentAgainAreDoubled) {
  const std::string coupon = R"(<Sale><Coupon><D BillNo="C1"/></Coupon></Sale>)";
  Read(coupon);

  EXPECT_EQ(RowsOf(Read(coupon), "ProCoupons").size(), 2U);
}

TEST_F(SaleReading, OffersThatAreSentReplaceThoseThatAreHeldOnceAGroup) {
  Read(R"(<Sale><ProGifts><D ProBillNo="A"/></ProGifts></Sale>)");

  const std::string two = Read(R"(<Sale><ProGifts><D ProBillNo="B"/><D ProBillNo="C"/></ProGifts></Sale>)");
  EXPECT_EQ(RowsOf(two, "ProGifts").size(), 2U);
  const std::string last =
      Read(R"(<Sale><ProGifts><D ProBillNo="D"/></ProGifts><ProGifts><D ProBillNo="E"/></ProGifts></Sale>)");
  EXPECT_EQ(RowsOf(last, "ProGifts").size(), 1U);
  EXPECT_EQ(RowsOf(last, "ProGifts").front()["ProBillNo"], "E");
  EXPECT_THAT(RowsOf(Read("<Sale><ProGifts/></Sale>"), "ProGifts"), IsEmpty());
}

}  // namespace
}  // namespace Corvane::Testing
