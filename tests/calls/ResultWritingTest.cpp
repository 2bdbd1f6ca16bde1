#include <gmock/gmock.h>

#include <clocale>
#include <cstring>

#include "qncorvane/qncorvane.h"
#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::ElementsAre;

/// The result XML: its two forms, byte by byte, and its forms of numbers and texts.
class ResultWriting : public Till {
 protected:
  static std::string Run(const std::string& mode, const std::string& xml) {
    const Answer sale = Calc("till", mode, xml);
    EXPECT_EQ(sale.Code, 0);
    EXPECT_EQ(sale.Msg, "sucess");
    return sale.Out;
  }
  /// A line as a mode writes it that leaves the sale as it was read.
  static Row WriteLine(const std::string& attributes, const std::string& mode = "MzPromotion") {
    DeleteSaleSetByKey("till");
    const std::vector<Row> lines = RowsOf(Run(mode, "<Sale><Plu><D " + attributes + "/></Plu></Sale>"), "Plu");
    EXPECT_EQ(lines.size(), 1U);
    return lines.empty() ? Row({}) : lines.front();
  }
};

// --- The whole forms -------------------------------------------------------------------------------------------------

TEST_F(ResultWriting, TheSaleForm) {
  MakeTables();
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS", "", R"(<Vip><Row VipType="GOLD"/></Vip>)")).Code, 0);
  ASSERT_EQ(Load("MZZF", RuleXml("F1", "MZZF", "",
                                 R"(<ProCtr><Row PayType="CARD" PriceTotal="1000"/></ProCtr>)"
                                 R"(<PluAction><Row DisPrice="20" DisRate="17"/></PluAction>)"))
                .Code,
            0);
  Run("All", SaleXml(LineXml(1, "COLA", "10", "3", "30",
                             R"(BRD="ACME" CAT="DRINKS" PluDtId="71" PageNo="2" LnNo="3" )"
                             R"(YhBefore="9.9" ClsId="K1" PluID="P1" VipPrice="9.9")") +
                         LineXml(2, "TEA", "2.5", "2", "5", R"(PackCnt="2.5")"),
                     R"(<Vip><D VipType="GOLD"/></Vip>)"));

  const std::string result = Run(
      "Pay", R"(<Sale><PayMode><D PayMode="CARD" PayMoney="20"/></PayMode>)"
             R"(<Coupon><D BillNo="C1" CouponTypeCode="T1" CouponValue="5" BgnDate="2026-01-01" EndDate="2026-12-31"/>)"
             R"(<D BillNo="C2"/></Coupon>)"
             R"(<ProGifts><D ProBillNo="G1" Total="100" LeftTotal="40.5" UsedTotal="59.5">)"
             R"(<R SerialNo="1" PluCode="MUG" PluType="PLU" Price="7" DscPrice="5" BaseConTp="NUM" BaseConNum="50" )"
             R"(BaseDscTp="NUM" BaseDscNum="1" AddConNum="2" AddDscNum="3" SaleMaxIn="4" HgPluCount="6" CanPart="0"/>)"
             R"(<R SerialNo="2" PluCode="BAG"/></D><D ProBillNo="G2"/></ProGifts></Sale>)");

  // Cola: (10 - 8) x 3 = 6.00 off. Of 20.00 paid by card 3.00 come back: for the tea 3 x 5 / 29 = 0.517, up to 0.52,
  // and the rest for the cola; the shares go by list price, 3 x 30 / 35 and 3 x 5 / 35.
  EXPECT_EQ(
      result,
      "<?xml version=\"1.0\" ?>\n"
      "<Sale BillNo=\"B1\" OrgCode=\"S01\">\n"
      "    <Plu>\n"
      "        <Data SerialNo=\"2\" PluCode=\"TEA\" Price=\"2.50\" FinalPrice=\"2.5000\" PluCount=\"2.00\" "
      "DisNum=\"2.00\" Total=\"5.00\" PackCnt=\"2\" BRD=\"\" CAT=\"\" SaleDate=\"2026-11-21\" SaleTime=\"10:00:00\" "
      "PluDtId=\"0\" PageNo=\"0\" LnNo=\"0\" YhBefore=\"0\" ClsId=\"\" PluID=\"\" VipPrice=\"0\" />\n"
      "        <Data SerialNo=\"1\" PluCode=\"COLA\" Price=\"10.00\" FinalPrice=\"8.0000\" PluCount=\"3.00\" "
      "DisNum=\"3.00\" Total=\"24.00\" PackCnt=\"1\" BRD=\"ACME\" CAT=\"DRINKS\" SaleDate=\"2026-11-21\" "
      "SaleTime=\"10:00:00\" PluDtId=\"71\" PageNo=\"2\" LnNo=\"3\" YhBefore=\"9\" ClsId=\"K1\" PluID=\"P1\" "
      "VipPrice=\"9\" />\n"
      "    </Plu>\n"
      "    <ProResult>\n"
      "        <Data SerialNo=\"1\" PluCode=\"TEA\" DisNum=\"0.00\" DisMoney=\"0.52\" ProBillNo=\"F1\" "
      "ProType=\"MZZF\" IsVip=\"0\" VipType=\"\" RowID=\"2\" />\n"
      "        <Data SerialNo=\"2\" PluCode=\"COLA\" DisNum=\"0.00\" DisMoney=\"2.48\" ProBillNo=\"F1\" "
      "ProType=\"MZZF\" IsVip=\"0\" VipType=\"\" RowID=\"1\" />\n"
      "        <Data SerialNo=\"3\" PluCode=\"COLA\" DisNum=\"3.00\" DisMoney=\"6.00\" ProBillNo=\"X1\" "
      "ProType=\"PTXS\" IsVip=\"1\" VipType=\"GOLD\" RowID=\"1\" />\n"
      "        <Data SerialNo=\"0\" PluCode=\"*\" DisNum=\"17.00\" DisMoney=\"3.00\" ProBillNo=\"F1\" "
      "ProType=\"MZZF\" IsVip=\"0\" VipType=\"\" />\n"
      "    </ProResult>\n"
      "    <Apportion>\n"
      "        <Data SerialNo=\"1\" PluCode=\"TEA\" AppNum=\"2.00\" AppMoney=\"0.43\" ProBillNo=\"F1\" "
      "ProType=\"MZZF\" IsVip=\"0\" VipType=\"\" RowID=\"2\" />\n"
      "        <Data SerialNo=\"2\" PluCode=\"COLA\" AppNum=\"3.00\" AppMoney=\"2.57\" ProBillNo=\"F1\" "
      "ProType=\"MZZF\" IsVip=\"0\" VipType=\"\" RowID=\"1\" />\n"
      "        <Data SerialNo=\"3\" PluCode=\"COLA\" AppNum=\"3.00\" AppMoney=\"6.00\" ProBillNo=\"X1\" "
      "ProType=\"PTXS\" IsVip=\"1\" VipType=\"GOLD\" RowID=\"1\" />\n"
      "    </Apportion>\n"
      "    <ProGifts>\n"
      "        <ProGift ProBillNo=\"G2\" Total=\"0.00\" LeftTotal=\"0.00\" UsedTotal=\"0.00\" />\n"
      "        <ProGift ProBillNo=\"G1\" Total=\"100.00\" LeftTotal=\"40.50\" UsedTotal=\"59.50\">\n"
      "            <Data SerialNo=\"2\" PluCode=\"BAG\" PluType=\"PLU\" BaseConTp=\"SUM\" BaseConNum=\"0.00\" "
      "BaseDscTp=\"SUM\" BaseDscNum=\"0.00\" AddConNum=\"0.00\" AddDscNum=\"0.00\" SaleMaxIn=\"0.00\" "
      "DscPrice=\"0.00\" HgPluCount=\"0.00\" CanPart=\"1\" Price=\"0.00\" />\n"
      "            <Data SerialNo=\"1\" PluCode=\"MUG\" PluType=\"PLU\" BaseConTp=\"NUM\" BaseConNum=\"50.00\" "
      "BaseDscTp=\"NUM\" BaseDscNum=\"1.00\" AddConNum=\"2.00\" AddDscNum=\"3.00\" SaleMaxIn=\"4.00\" "
      "DscPrice=\"5.00\" HgPluCount=\"6.00\" CanPart=\"0\" Price=\"7.00\" />\n"
      "        </ProGift>\n"
      "    </ProGifts>\n"
      "    <ProCoupons>\n"
      "        <ProCouponS SendSaleNo=\"B1\" BillNo=\"C2\" CouponTypeCode=\"\" BgnDate=\"\" EndDate=\"\" Value=\"\" "
      "Remark=\"\" />\n"
      "        <ProCouponS SendSaleNo=\"B1\" BillNo=\"C1\" CouponTypeCode=\"T1\" BgnDate=\"2026-12-31\" "
      "EndDate=\"2026-01-01\" Value=\"5\" Remark=\"\" />\n"
      "    </ProCoupons>\n"
      "</Sale>\n");
}

TEST_F(ResultWriting, TheSingleForm) {
  MakeTables();
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS")).Code, 0);
  Calc("other", "All", SaleXml(LineXml(1, "COLA", "10", "1", "10")));

  const std::string result =
      Run("Single", SaleXml(LineXml(7, "COLA", "10", "3", "30", R"(CAT="DRINKS" VipPrice="9")")));

  EXPECT_EQ(result,
            "<?xml version=\"1.0\" ?>\n"
            "<Sale BillNo=\"B1\" OrgCode=\"S01\">\n"
            "    <Plu>\n"
            "        <Data SerialNo=\"7\" PluCode=\"COLA\" Price=\"10.00\" FinalPrice=\"8.0000\" PluCount=\"3.00\" "
            "DisNum=\"3.00\" Total=\"24.00\" PackCnt=\"1.00\" />\n"
            "    </Plu>\n"
            "    <ProResult>\n"
            "        <Data SerialNo=\"7\" PluCode=\"COLA\" DisNum=\"3.00\" DisMoney=\"6.00\" ProBillNo=\"X1\" "
            "ProType=\"PTXS\" IsVip=\"0\" VipType=\"\" RowID=\"7\" />\n"
            "    </ProResult>\n"
            "    <Apportion>\n"
            "        <Data SerialNo=\"7\" PluCode=\"COLA\" AppNum=\"3.00\" AppMoney=\"6.00\" ProBillNo=\"X1\" "
            "ProType=\"PTXS\" IsVip=\"0\" VipType=\"\" RowID=\"7\" />\n"
            "    </Apportion>\n"
            "</Sale>\n");
}

TEST_F(ResultWriting, ASaleWithoutLinesHasFiveEmptyGroups) {
  EXPECT_EQ(Run("All", R"(<Sale OrgCode="S01" BillNo="B1"/>)"),
            "<?xml version=\"1.0\" ?>\n"
            "<Sale BillNo=\"B1\" OrgCode=\"S01\">\n"
            "    <Plu />\n"
            "    <ProResult />\n"
            "    <Apportion />\n"
            "    <ProGifts />\n"
            "    <ProCoupons />\n"
            "</Sale>\n");
}

TEST_F(ResultWriting, ASingleLineWithoutDiscountsHasTwoEmptyGroups) {
  EXPECT_EQ(Run("Single", SaleXml(LineXml(1, "COLA", "10", "3", "30"))),
            "<?xml version=\"1.0\" ?>\n"
            "<Sale BillNo=\"B1\" OrgCode=\"S01\">\n"
            "    <Plu>\n"
            "        <Data SerialNo=\"1\" PluCode=\"COLA\" Price=\"10.00\" FinalPrice=\"10.0000\" PluCount=\"3.00\" "
            "DisNum=\"0.00\" Total=\"30.00\" PackCnt=\"1.00\" />\n"
            "    </Plu>\n"
            "    <ProResult />\n"
            "    <Apportion />\n"
            "</Sale>\n");
}

// --- Order -----------------------------------------------------------------------------------------------------------

TEST_F(ResultWriting, LinesAreWrittenFromTheLastToTheFirst) {
  const std::string result = Run(
      "All", SaleXml(LineXml(1, "A", "1", "1", "1") + LineXml(2, "B", "1", "1", "1") + LineXml(3, "C", "1", "1", "1")));

  std::vector<std::string> order;
  for (const Row& line : RowsOf(result, "Plu")) order.push_back(line["SerialNo"]);
  EXPECT_THAT(order, ElementsAre("3", "2", "1"));
}

TEST_F(ResultWriting, DiscountsAreNumberedOverAllLinesTheLastLinesLastOneFirst) {
  MakeTables();
  Put({DirectRow("X1", 1, "COLA").Price("8").AtMost("1"), DirectRow("X1", 2, "TEA").Price("8").AtMost("1"),
       DirectRow("X2", 1, "COLA").Price("7"), DirectRow("X2", 2, "TEA").Price("7")});
  ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS", R"(JzDate="2026-06-01")")).Code, 0);
  ASSERT_EQ(Load("PTXS", RuleXml("X2", "PTXS", R"(JzDate="2026-01-01")")).Code, 0);

  const std::string result =
      Run("All", SaleXml(LineXml(11, "COLA", "10", "3", "30") + LineXml(12, "TEA", "10", "3", "30")));

  for (const std::string group : {"ProResult", "Apportion"}) {
    std::vector<std::string> rows;
    for (const Row& row : RowsOf(result, group)) {
      rows.push_back(row["SerialNo"] + " " + row["PluCode"] + " " + row["ProBillNo"] + " " + row["RowID"]);
    }
    EXPECT_THAT(rows, ElementsAre("1 TEA X2 12", "2 TEA X1 12", "3 COLA X2 11", "4 COLA X1 11")) << group;
  }
}

TEST_F(ResultWriting, WhatBelongsToTheWholeSaleFollowsTheLinesTheLastFirst) {
  const std::string groups = R"(<ProCtr><Row PayType="CARD" PriceTotal="1000"/></ProCtr>)"
                             R"(<PluAction><Row DisPrice="10" DisRate="9"/></PluAction>)";
  ASSERT_EQ(Load("MZZF", RuleXml("F1", "MZZF", R"(JzDate="2026-06-01")", groups)).Code, 0);
  ASSERT_EQ(Load("MZZF", RuleXml("F2", "MZZF", R"(JzDate="2026-01-01")", groups)).Code, 0);

  const std::string result = Run(
      "Pay", SaleXml(LineXml(1, "COLA", "100", "1", "100"), R"(<PayMode><D PayMode="CARD" PayMoney="10"/></PayMode>)"));

  std::vector<std::string> rows;
  for (const Row& row : RowsOf(result, "ProResult")) {
    rows.push_back(row["SerialNo"] + " " + row["PluCode"] + " " + row["ProBillNo"] + " " + row["RowID"]);
  }
  EXPECT_THAT(rows, ElementsAre("1 COLA F2 1", "2 COLA F1 1", "0 * F2 (absent)", "0 * F1 (absent)"));
}

// --- Numbers ---------------------------------------------------------------------------------------------------------

TEST_F(ResultWriting, MoneyHasTwoDecimalsHalvesToEven) {
  EXPECT_EQ(WriteLine(R"(SerialNo="1" Total="1" PluCount="1" Price="0.125")")["Price"], "0.12");
  EXPECT_EQ(WriteLine(R"(SerialNo="1" Total="1" PluCount="1" Price="0.375")")["Price"], "0.38");
  EXPECT_EQ(WriteLine(R"(SerialNo="1" Total="1" PluCount="1" Price="-0.001")")["Price"], "-0.00");
  EXPECT_EQ(WriteLine(R"(SerialNo="1" Total="1" PluCount="1" Price="1234567.891")")["Price"], "1234567.89");
}

TEST_F(ResultWriting, ThePriceAfterDiscountHasFourDecimals) {
  EXPECT_EQ(WriteLine(R"(SerialNo="1" Total="2" PluCount="3")")["FinalPrice"], "0.6667");
}

TEST_F(ResultWriting, APackCountIsCutInTheSaleFormAndHasTwoDecimalsInTheSingleForm) {
  const std::string line = R"(SerialNo="1" Total="1" PluCount="1" PackCnt="2.5")";

  EXPECT_EQ(WriteLine(line)["PackCnt"], "2");
  EXPECT_EQ(WriteLine(line, "Single")["PackCnt"], "2.50");
}

TEST_F(ResultWriting, TheMemberPriceAndTheEarlierDiscountAreCut) {
  const Row line = WriteLine(R"(SerialNo="1" Total="1" PluCount="1" VipPrice="9.9" YhBefore="-9.9")");

  EXPECT_EQ(line["VipPrice"], "9");
  EXPECT_EQ(line["YhBefore"], "-9");
}

TEST_F(ResultWriting, ANumberThatNoWholeNumberHoldsIsTheSmallestOne) {
  const Row line = WriteLine(R"(SerialNo="1" Total="1" PluCount="1" VipPrice="1e10" YhBefore="-1e10" PackCnt="1e300" )"
                             R"(PluDtId="1e300" PageNo="-1e300" LnNo="2147483647.9")");

  EXPECT_EQ(line["VipPrice"], "-2147483648");
  EXPECT_EQ(line["YhBefore"], "-2147483648");
  EXPECT_EQ(line["PackCnt"], "-2147483648");
  EXPECT_EQ(line["PluDtId"], "-2147483648");
  EXPECT_EQ(line["PageNo"], "-2147483648");
  EXPECT_EQ(line["LnNo"], "2147483647");
}

/// Puts a locale with decimal commas in place for a while.
class DecimalComma {
 public:
  DecimalComma() : m_before(std::setlocale(LC_ALL, nullptr)) {
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "es_ES.UTF-8", "pl_PL.UTF-8"}) {
      if (std::setlocale(LC_ALL, name) != nullptr && std::strcmp(std::localeconv()->decimal_point, ",") == 0) return;
    }
    std::setlocale(LC_ALL, m_before.c_str());
  }
  DecimalComma(const DecimalComma&) = delete;
  DecimalComma& operator=(const DecimalComma&) = delete;
  ~DecimalComma() { std::setlocale(LC_ALL, m_before.c_str()); }
  static bool Stands() { return std::strcmp(std::localeconv()->decimal_point, ",") == 0; }

 private:
  std::string m_before;
};

TEST_F(ResultWriting, ATillWithDecimalCommasReadsAndWritesPointsAndKeepsItsLocale) {
  MakeTables();
  Put({DirectRow("X1", 1, "COLA").Price("8.5")});
  ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS", R"(MaxYhType="1" MaxYhValue="1.25")")).Code, 0);
  const DecimalComma german;
  if (!DecimalComma::Stands()) GTEST_SKIP() << "no locale with decimal commas is installed";
  TakeLog();

  const std::string result = Run("All", SaleXml(LineXml(1, "COLA", "9.90", "1.5", "14.85")));

  // 9.90 - 8.50 = 1.40; 1.40 x 1.5 = 2.10; cut to 1.25.
  EXPECT_THAT(LinesOf(result), ElementsAre("1 COLA 1.50 x 9.90 = 12.75"));
  EXPECT_THAT(DiscountsOf(result), ElementsAre("1 COLA: X1 on 1.50 gives 1.25"));
  EXPECT_TRUE(Holds(TakeLog(), "proInfo.MaxYhValue=1.25"));
  EXPECT_TRUE(DecimalComma::Stands());
}

// --- Texts -----------------------------------------------------------------------------------------------------------

TEST_F(ResultWriting, ATextWithADoubleQuoteStandsInSingleQuotes) {
  const std::string result = Run("All", R"(<Sale OrgCode='8" pan' BillNo="O&apos;Leary"/>)");

  EXPECT_NE(result.find("<Sale BillNo=\"O&apos;Leary\" OrgCode='8&quot; pan'>"), std::string::npos) << result;
}

TEST_F(ResultWriting, CharactersOfTheMarkupAndControlCharactersAreEscaped) {
  const std::string result = Run("All", "<Sale OrgCode=\"a&lt;b&gt;c&amp;d\" BillNo=\"one\ntwo&#x09;three\"/>");

  EXPECT_NE(result.find("<Sale BillNo=\"one&#x0A;two&#x09;three\" OrgCode=\"a&lt;b&gt;c&amp;d\">"), std::string::npos)
      << result;
}

TEST_F(ResultWriting, ChineseTextsAreWrittenAsTheyAre) {
  const std::string result = Run("All", R"(<Sale OrgCode="一号店" BillNo="B1"/>)");

  EXPECT_NE(result.find("<Sale BillNo=\"B1\" OrgCode=\"一号店\">"), std::string::npos) << result;
}

TEST_F(ResultWriting, AnAbsentTextIsWrittenAsTheEmptyText) {
  const Row line = WriteLine(R"(SerialNo="1" Total="1" PluCount="1")");

  EXPECT_EQ(line["PluCode"], "");
  EXPECT_EQ(line["BRD"], "");
  EXPECT_EQ(line["SaleDate"], "");
  EXPECT_EQ(line["PluID"], "");
}

}  // namespace
}  // namespace Corvane::Testing
