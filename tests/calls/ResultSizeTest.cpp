// How much room a result needs: the formula that docs/host-guide.md gives to hosts, against results that try to pass
// it.

#include <gmock/gmock.h>

#include <cstddef>
#include <string>

#include "tests/support/ResultRoom.h"
#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::Gt;
using ::testing::Le;
using ::testing::SizeIs;

/// A text of quotes, which take six bytes each on their way out, as it is written in XML.
std::string Quotes(std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += "&quot;";
  return text;
}

class ResultSize : public Till {
 protected:
  void SetUp() override {
    Till::SetUp();
    MakeTables();
  }

  static std::string Run(const std::string& mode, const std::string& xml) {
    const Answer answer = Calc("k", mode, xml);
    EXPECT_EQ(answer.Code, 0) << answer.Msg;
    return answer.Out;
  }

  /// With the sale number and the organisation of SaleXml.
  static void ExpectRoom(const Sizes& sizes, const std::string& result) {
    EXPECT_THAT(result.size() + 1, Le(RoomFor(sizes, result, std::string("B1S01").size())));
  }

  /// A gift of the rule G1, reached by any sale.
  static void PutGift(int serialNo, const std::string& goods, const std::string& unit) {
    Sql("insert into tProMzScheme (BillNo,SerialNo,PluCode,BaseConType,BaseDscType,SaleMaxIn) values ('G1'," +
        std::to_string(serialNo) + ",'" + goods + "','" + unit + "','NUM',999999999999999)");
  }
};

/// Every text of a line at once; PluType leaves no trace in a result.
std::string HostileTexts(const std::string& text) {
  std::string attributes;
  for (const char* name : {"PluCode", "BRD", "CAT", "SaleDate", "SaleTime", "ClsId", "PluID"}) {
    attributes += std::string(name) + "=\"" + text + "\" ";
  }
  return attributes;
}

TEST_F(ResultSize, LongTextsOfQuotesAndTheWidestNumbers) {
  const std::string integers = R"(PackCnt="-2147483648" PluDtId="-2147483648" PageNo="-2147483648" LnNo="-2147483648" )"
                               R"(YhBefore="-2147483648" VipPrice="-2147483648" )";
  const std::string line =
      LineXml(-2147483647, "A", "-999999999999999", "-1", "999999999999999", HostileTexts(Quotes(5000)) + integers);

  const std::string result = Run("All", SaleXml(line));

  EXPECT_THAT(result.size(), Gt(80U << 10U));  // what was once called ample for one line
  ExpectRoom(kNumbersBelow1e15, result);
}

TEST_F(ResultSize, NumbersOfThreeHundredDigits) {
  const std::string line = LineXml(1, "A", "-1e308", "1e308", "-1e308", R"(VipPrice="-1e308" YhBefore="-1e308")");
  const std::string offer = R"(<ProGifts><Row ProBillNo="G1" Total="-1e308" LeftTotal="-1e308" UsedTotal="-1e308">
    <Row SerialNo="1" Price="-1e308" DscPrice="-1e308" BaseConNum="-1e308" BaseDscNum="-1e308" AddConNum="-1e308"
         AddDscNum="-1e308" SaleMaxIn="-1e308" HgPluCount="-1e308"/></Row></ProGifts>)";

  const std::string result = Run("Gift", SaleXml(line, offer));

  EXPECT_THAT(result.size(), Gt(4000U));
  ExpectRoom(kAnyNumbers, result);
}

TEST_F(ResultSize, OffersThatGrowWithEachCall) {
  PutGift(1, std::string(400, '&'), "SUM");
  PutGift(2, std::string(400, '<'), "NUM");
  ASSERT_EQ(Load("MZZP", RuleXml("G1", "MZZP")).Code, 0);
  Run("All", SaleXml(LineXml(1, "A", "10", "1", "10")));
  std::string result;
  for (int call = 0; call < 50; ++call) result = Run("MzPromotion", SaleXml(""));

  EXPECT_THAT(OffersOf(result), SizeIs(100));  // two at each call: by money and by pieces
  EXPECT_THAT(result.size(), Gt(80U << 10U));
  ExpectRoom(kNumbersBelow1e15, result);
}

TEST_F(ResultSize, CouponsWithoutALine) {
  std::string coupons = "<Coupon>";
  for (int coupon = 0; coupon < 500; ++coupon) {
    coupons += R"(<Row BillNo="C&#1;" CouponTypeCode=")" + Quotes(30) +
               R"(" CouponValue="5.00" BgnDate="2026-01-01" EndDate="2026-12-31"/>)";
  }

  const std::string result = Run("MzPromotion", SaleXml("", coupons + "</Coupon>"));

  EXPECT_THAT(result.size(), Gt(64U << 10U));  // what was once called ample without lines
  ExpectRoom(kNumbersBelow1e15, result);
}

TEST_F(ResultSize, EveryRuleWritesARowOnEveryLineAndMembersHaveLongTypes) {
  constexpr int kRules = 20;
  std::string lines;
  for (int line = 1; line <= 10; ++line) lines += LineXml(line, "A", "10", "2", "20");
  for (int rule = 0; rule < kRules; ++rule) {
    const std::string bill = "R" + std::to_string(rule);
    Sql("insert into tpromzlist (BillNo,ListCode) values ('" + bill +
        "','1'); insert into tProMzDiscountAct "
        "(BillNo,ListCode,BaseMoney,BaseDscMoney,AddMoney) values ('" +
        bill + "','1',10,1,1000)");
    ASSERT_EQ(Load("MZMJ", RuleXml(bill, "MZMJ", R"(Primary="DJ")", "<Vip><Row VipType=\"*\"/></Vip>")).Code, 0);
  }
  Run("All", SaleXml(lines, "<Vip><Row VipType=\"" + Quotes(300) + "\"/></Vip>"));

  const std::string result = Run("MzPromotion", SaleXml(""));

  EXPECT_THAT(RowsOf(result, "ProResult"), SizeIs(10 * kRules));
  EXPECT_THAT(RowsOf(result, "Apportion"), SizeIs(10 * kRules));
  ExpectRoom(kNumbersBelow1e15, result);
}

TEST_F(ResultSize, APaymentGivesFurtherRowsWithEachCall) {
  const std::string groups = R"(<ProCtr><Row PayType="CARD" PriceTotal="6"/></ProCtr>
    <PluAction><Row DisPrice="30" DisRate="28"/></PluAction>)";
  ASSERT_EQ(Load("MZZF", RuleXml("F1", "MZZF", R"(Primary="DJ")", groups)).Code, 0);
  Run("All", SaleXml(LineXml(1, "A", "10", "10", "100")));
  std::string result = Run("Pay", SaleXml("", R"(<PayMode><Row PayMode="CARD" PayMoney="100"/></PayMode>)"));
  EXPECT_THAT(RowsOf(result, "ProResult"), SizeIs(2));  // one on the line, one for the whole sale

  for (int call = 0; call < 9; ++call) result = Run("Pay", SaleXml(""));

  EXPECT_THAT(RowsOf(result, "ProResult"), SizeIs(20));
  EXPECT_THAT(RowsOf(result, "Apportion"), SizeIs(1));
  ExpectRoom(kNumbersBelow1e15, result);
}

}  // namespace
}  // namespace Corvane::Testing
