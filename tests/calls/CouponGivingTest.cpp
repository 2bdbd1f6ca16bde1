#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

/// "MZZQ": from a threshold on, the customer gets coupons. Such a rule is loaded as "MZYQ".
class CouponGiving : public FullAmount {
 protected:
  static std::string OneLineOf(const std::string& total) { return SaleXml(LineXml(1, "A", total, "1", total)); }

  static void Give(const std::string& offers, const std::string& header = "", const std::string& billNo = "Q1") {
    ASSERT_EQ(Load("MZYQ", RuleXml(billNo, "MZZQ", header, offers)).Code, 0);
  }
  /// A coupon of a week for everything that an offer brings.
  static std::string Coupon(const std::string& more = "") {
    return "<CouponType BgnDate=\"2026-11-21\" EndDate=\"2026-12-31\" CouponTypeCode=\"T1\" LimitType=\"1\" "
           "LimitDay=\"7\" " +
           more + "/>";
  }
  static std::string Denominations(const std::vector<std::string>& values) {
    std::string rows;
    for (const std::string& value : values) rows += "<Row Denomination=\"" + value + "\"/>";
    return "<CouponDenomination>" + rows + "</CouponDenomination>";
  }
  /// The value given on a sale of 100.00 that brings `sum`, cut into denominations.
  static std::string GivenOf(const std::string& sum, const std::vector<std::string>& denominations,
                             const std::string& isDenom = R"(IsDenom="1")") {
    ClearSales();
    Give(OfferXml("ALL", TierXml("100", sum), Coupon(isDenom) + Denominations(denominations)));
    const Texts given = Held(MzPromotion(OneLineOf("100")), "ProResult", "DisMoney");
    EXPECT_EQ(given.size(), 1U);
    return given.empty() ? "" : given.front();
  }
};

TEST_F(CouponGiving, IsRefusedUnderItsOwnTypeWord) {
  const std::string xml = RuleXml("Q1", "MZZQ", "", OfferXml("ALL", TierXml("100", "10")));

  const Answer answer = Load("MZZQ", xml);

  EXPECT_EQ(answer.Code, -1);
  EXPECT_EQ(answer.Msg, "pro initialize failed" + xml);
}

TEST_F(CouponGiving, TheLogTellsTheScheme) {
  Give(OfferXml("ALL", TierXml("100", "10") + TierXml("30", "2"), Coupon()));

  MzPromotion(OneLineOf("135.5"));

  // 100: 10, 35.5 left. 30: 12.
  EXPECT_EQ(AfterReading(TakeLog()),
            Joined({BaseConditionsMet(),
                    {"赠券方案个数1", "赠券方案内的行为个数2", "赠券方案内满足的金额135.500000", "真实赠券额10.000000",
                     "真实赠券额12.000000"}}));
}

TEST_F(CouponGiving, TheLogTellsThatThereAreNoSchemes) {
  Give("");

  EXPECT_EQ(PrintedGroup(MzPromotion(OneLineOf("100")), "ProResult"), "<ProResult />");
  EXPECT_EQ(AfterReading(TakeLog()), Joined({BaseConditionsMet(), {"赠券方案个数0"}}));
}

TEST_F(CouponGiving, ASchemeWithoutActionsIsPassedOver) {
  Give(OfferXml("ALL", "", Coupon()) + OfferXml("ALL", TierXml("100", "10"), Coupon()));

  EXPECT_EQ(Held(MzPromotion(OneLineOf("100")), "ProResult", "DisMoney"), Texts{"10.00"});
  EXPECT_EQ(AfterReading(TakeLog()), Joined({BaseConditionsMet(),
                                             {"赠券方案个数2", "赠券方案内的行为个数0", "赠券方案内的行为个数1",
                                              "赠券方案内满足的金额100.000000", "真实赠券额10.000000"}}));
}

// "B" alone: 60.00 reach 50.
TEST_F(CouponGiving, ChosenLinesCountAlone) {
  Give(OfferXml(
      "DES", TierXml("50", "5") + TierXml("100", "10"),
      Coupon() + R"(<PluCondition><Row SerialNo="1" PluCode="B" PluType="PLU" Contain="IN"/></PluCondition>)"));

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "60", "1", "60") + LineXml(2, "B", "60", "1", "60")));

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"5.00"});
  EXPECT_EQ(AfterReading(TakeLog()), Joined({BaseConditionsMet(),
                                             {"赠券方案个数1", "赠券方案内的行为个数2"},
                                             AskedQuantity("MZZQ"),
                                             {"赠券方案内满足的金额60.000000", "真实赠券额5.000000"}}));
}

TEST_F(CouponGiving, ChosenLinesThatAreNotThereEndTheSchemeBeforeItsAmountIsTold) {
  Give(OfferXml(
      "DES", TierXml("0", "5"),
      Coupon() + R"(<PluCondition><Row SerialNo="1" PluCode="Z" PluType="PLU" Contain="IN"/></PluCondition>)"));

  EXPECT_EQ(PrintedGroup(MzPromotion(OneLineOf("100")), "ProResult"), "<ProResult />");
  EXPECT_EQ(AfterReading(TakeLog()), Joined({BaseConditionsMet(), {"赠券方案个数1", "赠券方案内的行为个数1"}}));
}

// 50, then 60 is cut to 55. The log has the sum before the cut.
TEST_F(CouponGiving, TheSchemesCapHolds) {
  Give(OfferXml("ALL", TierXml("300", "50") + TierXml("100", "10"), Coupon(), R"(MaxDiscount="55")"));

  EXPECT_EQ(Held(MzPromotion(OneLineOf("460")), "ProResult", "DisMoney"), Texts{"55.00"});
  EXPECT_TRUE(Holds(TakeLog(), "真实赠券额60.000000"));
}

// Nothing can be cut into nothing, and the log says so.
TEST_F(CouponGiving, ADenominationOfNothingGivesNothing) {
  EXPECT_EQ(GivenOf("10", {"0"}), "0.00");
  EXPECT_EQ(Naming(AfterReading(TakeLog()), "Q1"), 1);
}

TEST_F(CouponGiving, ANegativeDenominationGivesNothing) {
  EXPECT_EQ(GivenOf("10", {"-5"}), "0.00");
  EXPECT_EQ(Naming(AfterReading(TakeLog()), "Q1"), 1);
}

// 5 and 5 of 12, then only the denominations of nothing fit the 2 that are left.
TEST_F(CouponGiving, GoodDenominationsBesideOnesOfNothingAreGiven) {
  EXPECT_EQ(GivenOf("12", {"0", "5", "-1"}), "10.00");
  EXPECT_EQ(Naming(AfterReading(TakeLog()), "Q1"), 1);
}

TEST_F(CouponGiving, ADenominationThatIsNoNumberGivesNothing) {
  EXPECT_EQ(GivenOf("10", {"five"}), "0.00");
  EXPECT_EQ(GivenOf("10", {"nan"}), "0.00");
}

// A billion coupons of a millionth. Whatever is given, the call ends, the log names the rule, and the next sale works.
TEST_F(CouponGiving, ATinyDenominationEndsAndTheLogSaysSo) {
  Give(OfferXml("ALL", TierXml("100", "1000"), Coupon(R"(IsDenom="1")") + Denominations({"0.000001"})));
  MzPromotion(OneLineOf("100"));
  EXPECT_EQ(Naming(AfterReading(TakeLog()), "Q1"), 1);

  Give(OfferXml("ALL", TierXml("100", "10"), Coupon()), "", "Q2");
  Clear("Q1");
  const Answer next = Calc("another till", "MzPromotion", OneLineOf("100"));
  EXPECT_EQ(Held(next.Out, "ProResult", "DisMoney"), Texts{"10.00"});
}

// (200 - 1) / 0.0000001 = 1,990,000,000 steps of 0.5, and 0.5 for the threshold.
TEST_F(CouponGiving, StepsAreNotBounded) {
  Give(OfferXml("ALL", TierXml("1", "0.5", "0.0000001", "0.5"), Coupon()));

  EXPECT_EQ(Held(MzPromotion(OneLineOf("200")), "ProResult", "DisMoney"), Texts{"995000000.50"});
}

TEST_F(CouponGiving, OddHeadersDoNoHarm) {
  for (const char* header : {R"(LimitDay="2147483647")", R"(LimitDay="-2147483648")", R"(LimitDay="99999999999")",
                             R"(LimitDay="" LimitType="")", R"(LimitType="0" EndDate="")"}) {
    Give(OfferXml("ALL", TierXml("100", "10"),
                  "<CouponType LimitType=\"1\"/>" + std::string("<CouponType ") + header + "/>"));
    ClearSales();
    EXPECT_EQ(Held(MzPromotion(OneLineOf("100")), "ProResult", "DisMoney"), Texts{"10.00"}) << header;
  }
  ClearSales();
  const Answer undated = Calc("till", "MzPromotion",
                              R"(<Sale OrgCode="S01"><Plu><D SerialNo="1" Total="100" PluCount="1"/></Plu></Sale>)");
  EXPECT_EQ(undated.Code, 0);
}

}  // namespace
}  // namespace Corvane::Testing
