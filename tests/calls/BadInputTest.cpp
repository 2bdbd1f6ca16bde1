#include <gmock/gmock.h>

#include <chrono>

#include "qncorvane/qncorvane.h"
#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::Eq;
using ::testing::SizeIs;

const std::vector<std::string>& AllModes() {
  static const std::vector<std::string> modes = {"Single",      "All",  "Union", "Zh",
                                                 "MzPromotion", "Gift", "Pay",   "Coupon"};
  return modes;
}

const std::vector<std::string>& AllTypes() {
  static const std::vector<std::string> types = {"PTXS", "PTPL", "PTOS", "ZHZY", "ZHGD", "ZHTJ", "ZHZX",
                                                 "MZMJ", "MZDP", "MZZM", "MZZP", "MZHG", "MZZF", "MZYQ"};
  return types;
}

std::string Repeat(const std::string& text, int times) {
  std::string repeated;
  repeated.reserve(text.size() * static_cast<std::size_t>(times));
  for (int time = 0; time < times; ++time) repeated += text;
  return repeated;
}

/// What no correct host sends: the engine answers, doesn't hang, and the next sale is right.
class BadInput : public Till {
 protected:
  void SetUp() override {
    Till::SetUp();
    MakeTables();
    Put({DirectRow("X1", 1, "COLA").Price("8"), DirectRow("P1", 1, "TEA").PercentOff("20").SaleCount("2"),
         DirectRow("S1", 1, "BAR").Price("1").SaleCount("2"), DirectRow("P2", 1, "DRINKS", "CAT").MoneyOff("1")});
    ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS")).Code, 0);
    ASSERT_EQ(Load("PTPL", RuleXml("P1", "PTPL", R"(MaxYhType="1" MaxYhValue="50")")).Code, 0);
    ASSERT_EQ(Load("PTPL", RuleXml("P2", "PTPL", R"(MaxYhType="2" MaxYhValue="50")")).Code, 0);
    ASSERT_EQ(Load("PTOS", RuleXml("S1", "PTOS", R"(Primary="DZ")")).Code, 0);
  }

  /// Sends the text in every mode; what the engine makes of it is its own affair.
  static void SendEverywhere(const std::string& xml) {
    for (const std::string& mode : AllModes()) {
      EXPECT_THAT(Calc("bad", mode, xml).Code, AnyOf(Eq(0), Eq(-1), Eq(-2), Eq(-3)));
    }
    EXPECT_EQ(DeleteSaleSetByKey("bad"), 0);
    ExpectTheNextSaleIsRight();
  }
  static void ExpectTheNextSaleIsRight() {
    EXPECT_EQ(State(), "Free");
    const Answer sale = Calc("good", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));
    EXPECT_EQ(sale.Code, 0);
    EXPECT_EQ(sale.Msg, "sucess");
    EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 24.00"));
    EXPECT_EQ(DeleteSaleSetByKey("good"), 0);
  }
};

// --- Texts that are no XML -------------------------------------------------------------------------------------------

TEST_F(BadInput, AMegabyteOfOpeningBrackets) { SendEverywhere(std::string(1 << 20, '<')); }

TEST_F(BadInput, AMegabyteOfBlanks) { SendEverywhere(std::string(1 << 20, ' ')); }

TEST_F(BadInput, AMegabyteOfAmpersandsInAValue) {
  SendEverywhere("<Sale BillNo=\"" + std::string(1 << 20, '&') + "\"/>");
}

TEST_F(BadInput, ElementsNestedAHundredThousandDeep) {
  SendEverywhere(Repeat("<a>", 100000));
  SendEverywhere(Repeat("<a>", 100000) + Repeat("</a>", 100000));
  SendEverywhere("<Sale><Plu>" + Repeat("<D SerialNo=\"1\">", 100000));
}

TEST_F(BadInput, UnclosedPiecesOfMarkup) {
  for (const std::string text : {"<",
                                 "<?",
                                 "<?xml",
                                 "<!",
                                 "<!-",
                                 "<!--",
                                 "<!-- -",
                                 "<![CDATA[",
                                 "<![CDATA[x]]",
                                 "<!DOCTYPE",
                                 "<!DOCTYPE x [<!ENTITY",
                                 "</",
                                 "</Sale>",
                                 "<Sale",
                                 "<Sale ",
                                 "<Sale a",
                                 "<Sale a=",
                                 "<Sale a=\"",
                                 "<Sale a='",
                                 "<Sale a=\"x",
                                 "<Sale a=x",
                                 "<Sale/",
                                 "<Sale/>",
                                 "<Sale><",
                                 "<Sale></",
                                 "<Sale></Sale",
                                 "<Sale></Plu>",
                                 "<Sale>&",
                                 "<Sale>&#",
                                 "<Sale>&#x",
                                 "<Sale>&#x;",
                                 "<Sale a=\"&#\"/>",
                                 "<Sale a=\"&#x\"/>",
                                 "<Sale a=\"&bogus;\"/>",
                                 "<Sale a=\"&#0;\"/>",
                                 "<Sale a=\"&#x110000;\"/>",
                                 "<Sale a=\"&#99999999999999999999;\"/>",
                                 "<Sale a=\"&#xFFFFFFFFFFFFFFFFF;\"/>",
                                 "<>",
                                 "< >",
                                 "<1/>",
                                 "<=/>",
                                 "<Sale =\"x\"/>",
                                 "<Sale \"x\"/>",
                                 "<Sale a=\"x\"b=\"y\"/>",
                                 "<Sale/><Sale/>",
                                 "]]>"}) {
    SendEverywhere(text);
  }
}

TEST_F(BadInput, EveryBeginningOfASale) {
  const std::string sale =
      "<?xml version=\"1.0\"?><!-- x -->" +
      SaleXml(LineXml(1, "COLA", "10", "3", "30", R"(CAT="DRINKS")") + LineXml(2, "可乐", "2", "1", "2"),
              R"(<PayMode><D PayMode="01" PayMoney="5"/></PayMode><Vip><D VipType="G"/></Vip>)"
              R"(<Gift><D SerialNo="1" PluCode="X"/></Gift><Coupon><D BillNo="C" CouponValue="5"/></Coupon>)"
              R"(<ProGifts><D ProBillNo="X1" Total="5"><R SerialNo="1" HgPluCount="2"/></D></ProGifts>)");
  for (std::size_t length = 1; length <= sale.size(); ++length) {
    EXPECT_THAT(Calc("bad", "All", sale.substr(0, length)).Code, AnyOf(Eq(0), Eq(-1))) << length;
  }
  ExpectTheNextSaleIsRight();
}

TEST_F(BadInput, MalformedUtf8Anywhere) {
  for (const std::string bytes : {"\xFF", "\xC3", "\xE4\xBD", "\xF0\x9F\x98", "\x80\x80", "\xED\xA0\x80", "\xFE\xFF",
                                  "\xC0\xAF", "\xF8\x88\x80\x80\x80", "\xEF\xBB"}) {
    SendEverywhere(bytes);
    SendEverywhere("<Sale BillNo=\"" + bytes + "\"/>");
    SendEverywhere("<Sale " + bytes + "=\"1\"/>");
    SendEverywhere("<" + bytes + "/>");
    SendEverywhere("<Sale>" + bytes);
    SendEverywhere("<Sale BillNo=\"x" + bytes);
    SendEverywhere("<Sale><Plu><D SerialNo=\"1\" PluCode=\"" + bytes + "\" " + bytes);
    EXPECT_EQ(Calc("good", bytes, "<Sale/>").Code, -1);
    EXPECT_EQ(Calc(bytes, "All", "<Sale/>").Code, 0);
    EXPECT_EQ(Load(bytes, bytes).Msg, "pro initialize failed" + bytes);
    EXPECT_EQ(Load("PTXS", RuleXml("BAD", "PTXS", "Remark=\"" + bytes + "\"")).Code, 0);
    EXPECT_EQ(Clear("BAD").Code, 0);
  }
}

TEST_F(BadInput, LongKeysModesAndTypes) {
  const std::string megabyte(1 << 20, 'k');

  EXPECT_EQ(Calc(megabyte, "All", "<Sale/>").Code, 0);
  EXPECT_EQ(Calc("till", megabyte, "<Sale/>").Code, -1);
  EXPECT_EQ(Load(megabyte, "<x/>").Code, -1);
  EXPECT_EQ(Load("NONE", megabyte).Msg.size(), megabyte.size() + std::string("pro initialize failed").size());
  EXPECT_EQ(Clear(megabyte).Code, 0);
  EXPECT_EQ(DeleteSaleSetByKey(megabyte.c_str()), 0);
  ExpectTheNextSaleIsRight();
}

// --- Sales that make no sense ----------------------------------------------------------------------------------------

TEST_F(BadInput, LinesAndGroupsWithoutAttributes) {
  SendEverywhere(
      "<Sale><Plu><D/></Plu><PayMode><D/></PayMode><Vip><D/></Vip><Gift><D/></Gift><Coupon><D/></Coupon>"
      "<ProGifts><D/><D><R/></D></ProGifts></Sale>");
  SendEverywhere("<Sale><Plu><D/><D/><D/></Plu></Sale>");
  SendEverywhere("<Sale><Plu>text</Plu><PayMode>text</PayMode><ProGifts>text</ProGifts></Sale>");
}

TEST_F(BadInput, NumbersThatAreNone) {
  const std::vector<std::string> values = {"nan",
                                           "-nan",
                                           "inf",
                                           "-inf",
                                           "1e308",
                                           "-1e308",
                                           "1e999",
                                           "-1e999",
                                           "1e-320",
                                           "99999999999999999999",
                                           "-99999999999999999999",
                                           "2147483648",
                                           "-2147483649",
                                           "0",
                                           "-0",
                                           "",
                                           "x",
                                           "0x7fffffffffffffff",
                                           "1e-5"};
  for (const std::string attribute : {"SerialNo", "Price", "PluCount", "Total", "PackCnt", "PluDtId", "PageNo", "LnNo",
                                      "YhBefore", "VipPrice", "SaleDate", "SaleTime"}) {
    for (const std::string& value : values) {
      const std::string bad = attribute + ("=\"" + value + "\"");
      const std::string sale =
          SaleXml(LineXml(1, "COLA", "10", "3", "30", bad) + LineXml(2, "TEA", "2", "5", "10", bad) +
                  LineXml(3, "BAR", "1", "7", "7", bad) + LineXml(4, "FANTA", "1", "7", "7", R"(CAT="DRINKS" )" + bad));
      EXPECT_THAT(Calc("bad", "All", sale).Code, Eq(0)) << bad;
      EXPECT_THAT(Calc("bad", "MzPromotion", sale).Code, Eq(0)) << bad;
      DeleteSaleSetByKey("bad");
    }
  }
  ExpectTheNextSaleIsRight();
}

TEST_F(BadInput, ALineOfNoQuantityGetsNothingAndTheOthersAreRight) {
  const Answer sale =
      Calc("till", "All", SaleXml(LineXml(1, "COLA", "10", "0", "30") + LineXml(2, "COLA", "10", "3", "30")));

  EXPECT_EQ(sale.Code, 0);
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 0.00 x 10.00 = 30.00", "2 COLA 3.00 x 10.00 = 24.00"));
}

TEST_F(BadInput, AttributesInTheThousands) {
  std::string attributes;
  for (int number = 0; number < 5000; ++number) attributes += "a" + std::to_string(number) + "=\"v\" ";

  SendEverywhere("<Sale " + attributes + "/>");
  SendEverywhere(SaleXml(LineXml(1, "COLA", "10", "3", "30", attributes)));
  SendEverywhere(SaleXml(LineXml(1, "COLA", "10", "3", "30", Repeat("Total=\"30\" ", 5000))));
}

TEST_F(BadInput, ThousandsOfLinesAreCalculatedRight) {
  std::string lines;
  for (int number = 1; number <= 3000; ++number) lines += LineXml(number, "COLA", "10", "1", "10");
  const auto begin = std::chrono::steady_clock::now();

  const Answer sale = Calc("till", "All", SaleXml(lines));

  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(60));
  EXPECT_EQ(sale.Code, 0);
  const std::vector<std::string> bought = LinesOf(sale.Out);
  ASSERT_THAT(bought, SizeIs(3000));
  EXPECT_EQ(bought.front(), "1 COLA 1.00 x 10.00 = 8.00");
  EXPECT_EQ(bought.back(), "3000 COLA 1.00 x 10.00 = 8.00");
  EXPECT_THAT(DiscountsOf(sale.Out), SizeIs(3000));
}

TEST_F(BadInput, OneLineThousandsOfTimesIsOneLine) {
  EXPECT_THAT(LinesOf(Calc("till", "All", SaleXml(Repeat(LineXml(1, "COLA", "10", "3", "30"), 3000))).Out),
              ElementsAre("1 COLA 3.00 x 10.00 = 24.00"));
}

TEST_F(BadInput, StatementsInCodesReadNothingAndChangeNothing) {
  const std::string drop = "x'; drop table tProPrjDirectProAct; --";

  EXPECT_EQ(Calc("till", "All", SaleXml(LineXml(1, drop, "10", "1", "10"))).Code, 0);

  ExpectTheNextSaleIsRight();
}

// --- Rules that make no sense ----------------------------------------------------------------------------------------

TEST_F(BadInput, RuleTextsOfGarbageLoadUnderEveryType) {
  const std::vector<std::string> texts = {
      "garbage",
      "<",
      std::string(1 << 16, '<'),
      Repeat("<a>", 50000),
      "<Rules><Rule",
      "<Rules><Rule BillNo='A'><OrgFilter><Row",
      "<Rules>text</Rules>",
      "\xFF\xFE\xFD",
      "<Rules><Rule><OrgFilter>x</OrgFilter><ProTime>y</ProTime><Vip/></Rule></Rules>",
      "<Rules><Rule><ProList/><ProList><PluAddAction/></ProList><PluAction/><ProCtr/><CardNoFilter/></Rule></Rules>",
      "<Rules><Rule><PluCondition/></Rule></Rules>",
      "<Rules>" + Repeat("<Rule/>", 5000) + "</Rules>"};
  const std::string sale = SaleXml(LineXml(1, "COLA", "10", "3", "30"));
  for (const std::string& type : AllTypes()) {
    for (const std::string& text : texts) {
      EXPECT_EQ(Load(type, text).Msg, "sucess") << type;
      EXPECT_EQ(Calc("bad", "All", sale).Code, 0) << type;
    }
  }
  EXPECT_EQ(Clear("").Code, 0);
  ExpectTheNextSaleIsRight();
}

TEST_F(BadInput, EveryBeginningOfARule) {
  const std::string rule =
      RuleXml("CUT", "PTXS", R"(MaxYhType="1" MaxYhValue="5")",
              R"(<Vip><Row VipType="01"/></Vip><PayMode><Row PayMode="01" PayMoney="5"/></PayMode>)");
  for (std::size_t length = 0; length <= rule.size(); ++length) {
    EXPECT_EQ(Load("PTXS", rule.substr(0, length)).Code, 0) << length;
  }
  EXPECT_EQ(Calc("bad", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30"))).Code, 0);
  EXPECT_EQ(Clear("*").Code, 0);
}

TEST_F(BadInput, LimitsThatAreNoNumbers) {
  for (const std::string value : {"nan", "inf", "-inf", "1e308", "-1e308", "", "x", "-5", "0"}) {
    for (const std::string type : {"1", "2", "3"}) {
      Clear("*");
      for (const std::string word : {"PTXS", "PTPL", "PTOS"}) {
        const std::string header = "MaxYhType=\"" + type + "\" MaxYhValue=\"" + value + "\"";
        const std::string billNo = word == "PTXS" ? "X1" : word == "PTPL" ? "P1" : "S1";
        EXPECT_EQ(Load(word, RuleXml(billNo, word, header)).Code, 0);
      }
      EXPECT_EQ(Calc("bad", "All",
                     SaleXml(LineXml(1, "COLA", "10", "3", "30") + LineXml(2, "TEA", "2", "5", "10") +
                             LineXml(3, "BAR", "1", "7", "7")))
                    .Code,
                0)
          << value << " as " << type;
    }
  }
}

// --- Rows that make no sense -----------------------------------------------------------------------------------------

TEST_F(BadInput, RowsOfNullsTextsAndHugeNumbers) {
  const std::string sale =
      SaleXml(LineXml(1, "COLA", "10", "3", "30") + LineXml(2, "TEA", "2", "5", "10") +
              LineXml(3, "BAR", "1", "7", "7") + LineXml(4, "FANTA", "1", "7", "7", R"(CAT="DRINKS")"));
  for (const std::string column :
       {"DscPrice", "DscRate", "SaleCount", "TradeMaxCount", "DscType", "InRange", "PluType"}) {
    for (const std::string value : {"null", "'abc'", "''", "1e308", "-1e308", "9e999", "-9e999", "1e-320", "x'00ff'",
                                    "-1", "0.999", "2147483648", "'nan'"}) {
      Sql("create table Kept as select * from tProPrjDirectProAct;"
          "update tProPrjDirectProAct set " +
          column + "=" + value);
      EXPECT_EQ(Calc("bad", "All", sale).Code, 0) << column << "=" << value;
      EXPECT_EQ(Calc("bad", "Union", sale).Code, 0) << column << "=" << value;
      Sql("delete from tProPrjDirectProAct; insert into tProPrjDirectProAct select * from Kept; drop table Kept");
    }
  }
  ExpectTheNextSaleIsRight();
}

TEST_F(BadInput, ATableThatIsAnotherThing) {
  Sql("alter table tProPrjDirectProAct rename to Kept; create table tProPrjDirectProAct (Something text)");
  EXPECT_EQ(Calc("bad", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30"))).Code, 0);

  Sql("drop table tProPrjDirectProAct; alter table Kept rename to tProPrjDirectProAct");
  ExpectTheNextSaleIsRight();
}

// --- Gifts that make no sense ----------------------------------------------------------------------------------------

TEST_F(BadInput, GiftChoicesOfNoNumbers) {
  for (const std::string attribute : {"HgPluCount", "SaleMaxIn", "BaseConNum", "BaseDscNum", "DscPrice", "CanPart"}) {
    for (const std::string value : {"nan", "inf", "-inf", "1e308", "-1", "0", "99999999999"}) {
      const std::string row = R"(<R SerialNo="1" DscPrice="5" BaseConNum="30" BaseDscNum="1" HgPluCount="2" )" +
                              attribute + "=\"" + value + "\"/>";
      EXPECT_THAT(
          Calc("bad", "Gift", SaleXml("", R"(<ProGifts><D ProBillNo="X1" Total="100">)" + row + "</D></ProGifts>"))
              .Code,
          AnyOf(Eq(0), Eq(-2), Eq(-3)))
          << attribute << "=" << value;
    }
  }
  ExpectTheNextSaleIsRight();
}

}  // namespace
}  // namespace Corvane::Testing
