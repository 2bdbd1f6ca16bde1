#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

/// "MZZF": who pays so much in a named way gets a part of it back.
class PayReduction : public FullAmount {
 protected:
  /// 10.00 back for each 100.00 paid by card.
  static std::string TenOfHundred() { return Steps(R"(<Row DisPrice="100" DisRate="90"/>)"); }
  static std::string Steps(const std::string& rows) { return "<PluAction>" + rows + "</PluAction>"; }
  static std::string Control(const std::string& priceTotal = "1000", const std::string& more = "") {
    return "<ProCtr><Row PayType=\"CARD\" PriceTotal=\"" + priceTotal + "\" " + more + "/></ProCtr>";
  }
  static void Pay(const std::string& groups, const std::string& header = "") { LoadRule("P1", "MZZF", header, groups); }

  static std::string Paid(const std::string& money, const std::string& mode = "CARD", const std::string& card = "") {
    return "<Row PayMode=\"" + mode + "\" PayCardNo=\"" + card + "\" PayMoney=\"" + money + "\"/>";
  }
  static std::string OneLine(const std::string& total, const std::string& payments, const std::string& more = "") {
    return SaleXml(LineXml(1, "A", total, "1", total, more), "<PayMode>" + payments + "</PayMode>");
  }
  static std::string TwoLines(const std::string& payments) {
    return SaleXml(LineXml(1, "A", "200", "1", "200") + LineXml(2, "B", "100", "1", "100"),
                   "<PayMode>" + payments + "</PayMode>");
  }
  /// What the sale gets back; "" for nothing.
  static std::string Back(const std::string& sale) {
    const std::string result = Result("Pay", sale);
    if (PrintedGroup(result, "ProResult") == "<ProResult />") return "";
    return RowWhere(result, "ProResult", "SerialNo", "0")["DisMoney"];
  }
};

// 250.00 paid: 100.00 twice, 20.00 back. 20 x 100 / 300 = 6.666..., in cents 6.67, on the second line; the first gets
// the rest.
TEST_F(PayReduction, EachFullStepGivesItsPartBack) {
  Pay(Control() + TenOfHundred());

  const std::string sale = Result("Pay", TwoLines(Paid("250")));

  EXPECT_EQ(PrintedGroup(sale, "ProResult"),
            R"(<ProResult>
        <Data SerialNo="1" PluCode="B" DisNum="0.00" DisMoney="6.67" ProBillNo="P1" ProType="MZZF" IsVip="0" VipType="" RowID="2" />
        <Data SerialNo="2" PluCode="A" DisNum="0.00" DisMoney="13.33" ProBillNo="P1" ProType="MZZF" IsVip="0" VipType="" RowID="1" />
        <Data SerialNo="0" PluCode="*" DisNum="230.00" DisMoney="20.00" ProBillNo="P1" ProType="MZZF" IsVip="0" VipType="" />
    </ProResult>)");
  EXPECT_EQ(Held(sale, "Apportion", "AppNum"), (Texts{"1.00", "1.00"}));
  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), (Texts{"13.33", "6.67"}));
}

TEST_F(PayReduction, TheLinesAmountsStay) {
  Pay(Control() + TenOfHundred());

  const std::string sale = Result("Pay", TwoLines(Paid("250")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"200.00", "100.00"}));
  EXPECT_EQ(Held(sale, "Plu", "FinalPrice"), (Texts{"200.0000", "100.0000"}));
  EXPECT_EQ(Held(sale, "Plu", "DisNum"), (Texts{"1.00", "1.00"}));
}

TEST_F(PayReduction, TheLogOfAPayment) {
  Pay(Control() + TenOfHundred());
  EXPECT_EQ(TakeLog(), Texts{"判断节点是PluAction时"});

  Result("Pay", TwoLines(Paid("250")));

  EXPECT_EQ(TakeLog(), Joined({{"Pay", "till:1\n", "开始初始化流水", "初始化支付对象", "读到支付对象，开始初始化",
                                "初始化流水完成", "进入Pay节"},
                               BaseConditionsMet(),
                               {"不存在已有分摊记录，创建分摊记录", "不存在已有分摊记录，创建分摊记录"}}));
}

TEST_F(PayReduction, UnmetBaseConditionsAreTold) {
  Pay(Control() + TenOfHundred() + R"(<Vip><Row VipType="GOLD"/></Vip>)");

  Result("Pay", TwoLines(Paid("250")));

  EXPECT_EQ(AfterReading(TakeLog()), (Texts{"进入Pay节", "时间满足", "组织满足", "基本条件不满足，再检查！"}));
}

TEST_F(PayReduction, NothingPaidIsNothingBack) {
  Pay(Control() + TenOfHundred());

  EXPECT_EQ(Back(SaleXml(LineXml(1, "A", "300", "1", "300"))), "");
}

TEST_F(PayReduction, AStepOfTheVerySumIsTaken) {
  Pay(Control() + TenOfHundred());

  EXPECT_EQ(Back(OneLine("300", Paid("100"))), "10.00");
}

TEST_F(PayReduction, ACentBelowAStepIsNothing) {
  Pay(Control() + TenOfHundred());

  EXPECT_EQ(Back(OneLine("300", Paid("99.99"))), "");
}

TEST_F(PayReduction, AMultipleOfAStepUsesItThatManyTimes) {
  Pay(Control() + TenOfHundred());

  EXPECT_EQ(Back(OneLine("300", Paid("300"))), "30.00");
}

// 100.00 twice bring 20.00, and of the 50.00 left 20.00 twice bring 2.00.
TEST_F(PayReduction, TheHighestStepComesFirst) {
  Pay(Control() + Steps(R"(<Row DisPrice="20" DisRate="19"/><Row DisPrice="100" DisRate="90"/>)"));

  EXPECT_EQ(Back(OneLine("300", Paid("250"))), "22.00");
}

// 100.00 twice bring nothing and leave only 50.00 for the step of 40.00.
TEST_F(PayReduction, AStepThatGivesNothingUsesThePaymentUp) {
  Pay(Control() + Steps(R"(<Row DisPrice="100" DisRate="100"/><Row DisPrice="40" DisRate="35"/>)"));

  EXPECT_EQ(Back(OneLine("300", Paid("250"))), "5.00");
}

TEST_F(PayReduction, OnlyTheNamedWayOfPayingCounts) {
  Pay(Control() + TenOfHundred());

  EXPECT_EQ(Back(OneLine("300", Paid("150", "CASH") + Paid("80") + Paid("30"))), "10.00");
}

TEST_F(PayReduction, WaysOfPayingAreComparedExactly) {
  Pay(Control() + TenOfHundred());

  EXPECT_EQ(Back(OneLine("300", Paid("150", "card") + Paid("150", "CARD "))), "");
}

// 500.00 paid on 250.00: only 250.00 can still be discounted.
TEST_F(PayReduction, APaymentCountsUpToTheOpenAmount) {
  Pay(Control() + TenOfHundred());

  EXPECT_EQ(Back(OneLine("250", Paid("500"))), "20.00");
}

TEST_F(PayReduction, CardsOutsideAllRangesDoNotCount) {
  Pay(Control() + TenOfHundred() +
      R"(<CardNoFilter><Row BgnCardNo="6000" EndCardNo="6099"/><Row BgnCardNo="7000" EndCardNo="7099"/></CardNoFilter>)");

  // 6050 and 7099 are in a range: 200.00
  EXPECT_EQ(Back(OneLine("900", Paid("100", "CARD", "6050") + Paid("100", "CARD", "6100") +
                                    Paid("100", "CARD", "7099") + Paid("100", "CARD", "5999"))),
            "20.00");
}

TEST_F(PayReduction, TheBoundsOfARangeBelongToIt) {
  Pay(Control() + TenOfHundred() + R"(<CardNoFilter><Row BgnCardNo="6000" EndCardNo="6099"/></CardNoFilter>)");

  EXPECT_EQ(Back(OneLine("900", Paid("100", "CARD", "6000") + Paid("100", "CARD", "6099"))), "20.00");
}

// As texts "605" lies between "6000" and "6099", "60991" behind it and "6" before it.
TEST_F(PayReduction, CardNumbersAreComparedAsTexts) {
  Pay(Control() + TenOfHundred() + R"(<CardNoFilter><Row BgnCardNo="6000" EndCardNo="6099"/></CardNoFilter>)");

  EXPECT_EQ(Back(OneLine("900", Paid("100", "CARD", "605") + Paid("100", "CARD", "60991") + Paid("100", "CARD", "6"))),
            "10.00");
}

TEST_F(PayReduction, WithoutRangesEveryCardCounts) {
  Pay(Control() + TenOfHundred());

  EXPECT_EQ(Back(OneLine("900", Paid("100", "CARD", "") + Paid("100", "CARD", "x"))), "20.00");
}

TEST_F(PayReduction, AWholeBillMustBePaidInOnePayment) {
  Pay(Control("1000", R"(WholeBillPay="1")") + TenOfHundred());

  EXPECT_EQ(Back(OneLine("300", Paid("150") + Paid("150"))), "");
}

// The other payment need not be of the named way.
TEST_F(PayReduction, AWholeBillWithASecondPaymentOfAnotherWayIsNone) {
  Pay(Control("1000", R"(WholeBillPay="1")") + TenOfHundred());

  EXPECT_EQ(Back(OneLine("300", Paid("200") + Paid("100", "CASH"))), "");
}

TEST_F(PayReduction, AWholeBillPaidInOnePaymentPasses) {
  Pay(Control("1000", R"(WholeBillPay="1")") + TenOfHundred());

  EXPECT_EQ(Back(OneLine("300", Paid("300"))), "30.00");
}

TEST_F(PayReduction, AWholeBillWithoutAPaymentHasNothingToGoBy) {
  Pay(Control("1000", R"(WholeBillPay="1")") + TenOfHundred());

  EXPECT_EQ(Back(SaleXml(LineXml(1, "A", "300", "1", "300"))), "");
}

TEST_F(PayReduction, OnlyTheTextOneAsksForAWholeBill) {
  Pay(Control("1000", R"(WholeBillPay="true")") + TenOfHundred());

  EXPECT_EQ(Back(OneLine("300", Paid("150") + Paid("150"))), "30.00");
}

// The second step would bring 20.00, and 15.00 is all that the rule gives. It has taken 200.00 for them.
TEST_F(PayReduction, TheRulesCapHolds) {
  Pay(Control("15") + TenOfHundred());

  const std::string sale = Result("Pay", OneLine("300", Paid("250")));

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"15.00", "15.00"}));
  EXPECT_EQ(RowWhere(sale, "ProResult", "SerialNo", "0")["DisNum"], "235.00");
}

TEST_F(PayReduction, ACapOfTheVerySumEndsTheSteps) {
  Pay(Control("20") + TenOfHundred());

  EXPECT_EQ(Back(OneLine("900", Paid("900"))), "20.00");
}

TEST_F(PayReduction, ACapOfNothingGivesNothing) {
  Pay(Control("0") + TenOfHundred());

  EXPECT_EQ(Back(OneLine("300", Paid("250"))), "");
}

// The goods that the rule asks for cost 8.00: no more than that comes back.
TEST_F(PayReduction, TheGoodsMoneyIsACapToo) {
  Pay(Control() + TenOfHundred() + R"(<PluCondition><Row PluCode="B" PluType="PLU"/></PluCondition>)");

  const std::string sale = Result("Pay", SaleXml(LineXml(1, "A", "292", "1", "292") + LineXml(2, "B", "8", "1", "8"),
                                                 "<PayMode>" + Paid("300") + "</PayMode>"));

  EXPECT_EQ(RowWhere(sale, "ProResult", "SerialNo", "0")["DisMoney"], "8.00");
  // All lines share it: 8 x 8 / 300 = 0.2133..., in cents 0.21, and the rest.
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"8.00", "7.79", "0.21"}));
  // The share records are for the goods alone.
  EXPECT_EQ(Held(sale, "Apportion", "RowID"), Texts{"2"});
  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), Texts{"8.00"});
}

TEST_F(PayReduction, GoodsThatAreNotThereAskForNothingAndCapAtNothing) {
  Pay(Control() + TenOfHundred() + R"(<PluCondition><Row PluCode="Z" PluType="PLU"/></PluCondition>)");

  EXPECT_EQ(Back(OneLine("300", Paid("250"))), "");
}

TEST_F(PayReduction, TooFewPiecesOfTheGoodsEndTheRule) {
  Pay(Control() + TenOfHundred() + R"(<PluCondition><Row PluCode="A" PluType="PLU" MinNum="2"/></PluCondition>)");
  EXPECT_EQ(Back(OneLine("300", Paid("250"))), "");
  EXPECT_EQ(Back(SaleXml(LineXml(1, "A", "150", "2", "300"))), "20.00");  // the payment is still there
}

TEST_F(PayReduction, TooLittleMoneyOfTheGoodsEndsTheRule) {
  Pay(Control() + TenOfHundred() +
      R"(<PluCondition><Row PluCode="A" PluType="PLU" MinMoney="300.01"/></PluCondition>)");
  EXPECT_EQ(Back(OneLine("300", Paid("250"))), "");
  EXPECT_EQ(Back(SaleXml(LineXml(1, "A", "300.01", "1", "300.01"))), "20.00");
}

TEST_F(PayReduction, AllGoodsMustBeThere) {
  Pay(Control() + TenOfHundred() +
      R"(<PluCondition><Row PluCode="A" MinNum="1"/><Row PluCode="Z" MinNum="1"/></PluCondition>)");

  EXPECT_EQ(Back(OneLine("300", Paid("250"))), "");
}

TEST_F(PayReduction, GoodsMayBeNamedByAnyClass) {
  Pay(Control() + TenOfHundred() + R"(<PluCondition><Row PluCode="XMAS" PluType="SEASON" MinNum="1"/></PluCondition>)");

  EXPECT_EQ(Back(OneLine("300", Paid("250"), R"(SEASON="XMAS")")), "20.00");
}

TEST_F(PayReduction, WhetherARowIncludesIsNotAsked) {
  Pay(Control() + TenOfHundred() + R"(<PluCondition><Row PluCode="A" Contain="NOT"/></PluCondition>)");

  EXPECT_EQ(Back(OneLine("300", Paid("250"))), "20.00");
}

// Both rows name the line: it counts twice, so 16.00 is the goods' money, and its share record is weighed twice.
TEST_F(PayReduction, ALineThatTwoRowsNameCountsTwice) {
  Pay(Control() + TenOfHundred() +
      R"(<PluCondition><Row PluCode="B" PluType="PLU"/><Row PluCode="XMAS" PluType="SEASON"/></PluCondition>)");

  const std::string sale =
      Result("Pay", SaleXml(LineXml(1, "A", "292", "1", "292") + LineXml(2, "B", "8", "1", "8", R"(SEASON="XMAS")"),
                            "<PayMode>" + Paid("300") + "</PayMode>"));

  EXPECT_EQ(RowWhere(sale, "ProResult", "SerialNo", "0")["DisMoney"], "16.00");
  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), Texts{"8.00"});
  const Texts log = TakeLog();
  EXPECT_EQ(Texts(log.end() - 2, log.end()), (Texts{"不存在已有分摊记录，创建分摊记录", "已有分摊记录"}));
}

// 400,000.02 over two equal lines. 20,000,000.5 is no number of single precision; the next one is 20,000,000: the
// second line gets 200,000.00 and the first what is left.
TEST_F(PayReduction, SharesAreRoundedInSinglePrecision) {
  Pay(Control("1000000") + Steps(R"(<Row DisPrice="1000000" DisRate="599999.98"/>)"));

  const std::string sale =
      Result("Pay", SaleXml(LineXml(1, "A", "1000000", "1", "1000000") + LineXml(2, "B", "1000000", "1", "1000000"),
                            "<PayMode>" + Paid("1000000") + "</PayMode>"));

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"400000.02", "200000.02", "200000.00"}));
}

TEST_F(PayReduction, ALineOfNothingGetsItsRowOfNothing) {
  Pay(Control() + TenOfHundred());

  const std::string sale = Result("Pay", SaleXml(LineXml(1, "A", "0", "1", "0") + LineXml(2, "B", "300", "1", "300"),
                                                 "<PayMode>" + Paid("100") + "</PayMode>"));

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"10.00", "0.00", "10.00"}));
}

TEST_F(PayReduction, ASaleOfNothingGetsNothing) {
  Pay(Control() + TenOfHundred());

  EXPECT_EQ(Back(OneLine("0", Paid("100"))), "");
}

// A step that takes nothing gives 5.00 to a sale of nothing, if the goods' money didn't cap it at 0.
TEST_F(PayReduction, AStepOfNothingOnASaleOfNothingIsCappedAtNothing) {
  Pay(Control() + Steps(R"(<Row DisPrice="0" DisRate="-5"/>)"));

  EXPECT_EQ(Back(OneLine("0", Paid("100"))), "");
}

// 5, 10, 15: cut to 12.
TEST_F(PayReduction, AStepThatTakesNothingGivesUpToTheCap) {
  Pay(Control("12") + Steps(R"(<Row DisPrice="0" DisRate="-5"/>)"));

  EXPECT_EQ(Back(OneLine("300", Paid("100"))), "12.00");
}

// After 20.00 for 200.00, the step of nothing would be taken for ever. The walk ends there with what was given.
TEST_F(PayReduction, AStepThatTakesAndGivesNothingEndsTheWalkAndTheLogSaysSo) {
  Pay(Control() + Steps(R"(<Row DisPrice="0" DisRate="0"/><Row DisPrice="100" DisRate="90"/>)"));
  TakeLog();

  EXPECT_EQ(Back(OneLine("300", Paid("250"))), "20.00");
  EXPECT_EQ(Naming(AfterReading(TakeLog()), "P1"), 1);
}

TEST_F(PayReduction, AStepThatTakesNothingAndLosesEndsTheWalkAndTheLogSaysSo) {
  Pay(Control() + Steps(R"(<Row DisPrice="0" DisRate="3"/>)"));
  TakeLog();

  Result("Pay", OneLine("300", Paid("250")));

  EXPECT_EQ(Naming(AfterReading(TakeLog()), "P1"), 1);
}

// A billion steps, steps that grow what was paid, steps that are no numbers: the call ends, and the next rule works.
TEST_F(PayReduction, OddStepsDoNoHarm) {
  for (const char* step :
       {R"(DisPrice="0.0000001" DisRate="0.00000009")", R"(DisPrice="0.0000001" DisRate="0.0000001")",
        R"(DisPrice="-1" DisRate="-1")", R"(DisPrice="-1" DisRate="5")", R"(DisPrice="-1" DisRate="-1.0000001")",
        R"(DisPrice="nan" DisRate="1")", R"(DisPrice="1" DisRate="nan")", R"(DisPrice="-inf" DisRate="1")",
        R"(DisPrice="1" DisRate="-inf")", R"(DisPrice="1" DisRate="inf")", R"(DisPrice="x" DisRate="y")"}) {
    Pay(Control("nan") + Steps("<Row " + std::string(step) + "/>"));
    EXPECT_EQ(Calc("odd till", "Pay", OneLine("300", Paid("250"))).Code, 0) << step;
    Pay(Control() + Steps("<Row " + std::string(step) + "/>"));
    EXPECT_EQ(Calc("odd till", "Pay", OneLine("300", Paid("250"))).Code, 0) << step;
  }
  Pay(Control() + TenOfHundred());
  EXPECT_EQ(Back(OneLine("300", Paid("250"))), "20.00");
}

// 2,500,000 steps of a ten-thousandth, each worth a half of it.
TEST_F(PayReduction, MillionsOfStepsAreGiven) {
  Pay(Control() + Steps(R"(<Row DisPrice="0.0001" DisRate="0.00005"/>)"));

  EXPECT_EQ(Back(OneLine("300", Paid("250"))), "125.00");
}

// The first result on the sale is one of 0.00, which another rule wrote: there are no share records then.
TEST_F(PayReduction, TheSalesFirstResultDecidesOnTheShareRecords) {
  const std::string offer =
      OfferXml("ALL", TierXml("100", "10"),
               R"(<CouponType IsDenom="1"/><CouponDenomination><Row Denomination="50"/></CouponDenomination>)");
  ASSERT_EQ(Load("MZYQ", RuleXml("Q1", "MZZQ", "", offer)).Code, 0);
  Pay(Control() + TenOfHundred());
  EXPECT_EQ(Held(MzPromotion(OneLine("300", Paid("250"))), "ProResult", "DisMoney"), Texts{"0.00"});

  const std::string sale = Result("Pay", AsItStands());

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"0.00", "20.00", "20.00"}));
  EXPECT_EQ(PrintedGroup(sale, "Apportion"), "<Apportion />");
}

TEST_F(PayReduction, AnotherRulesFirstResultServesAsWell) {
  ASSERT_EQ(Load("MZYQ", RuleXml("Q1", "MZZQ", "", OfferXml("ALL", TierXml("100", "10")))).Code, 0);
  Pay(Control() + TenOfHundred());
  MzPromotion(OneLine("300", Paid("250")));

  const std::string sale = Result("Pay", AsItStands());

  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), Texts{"20.00"});
}

// Full-amount rules ask the sale whether they may act; this one doesn't. But 200.00 of the 300.00 are taken now.
TEST_F(PayReduction, ASecondPaymentPassGivesOnWhatIsStillOpen) {
  Pay(Control() + TenOfHundred());
  Result("Pay", OneLine("300", Paid("250")));

  const std::string sale = Result("Pay", AsItStands());

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"20.00", "10.00", "20.00", "10.00"}));
}

TEST_F(PayReduction, PaymentsThatAreSentAgainCountAgain) {
  Pay(Control() + TenOfHundred(), R"(Primary="DJ")");
  EXPECT_EQ(Back(OneLine("900", Paid("100"))), "10.00");

  const std::string sale = Result("Pay", OneLine("900", Paid("100")));

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"10.00", "20.00", "20.00"}));  // the line came anew
}

// A "PT" result stands on the sale: rules of the class "PT" may not act any more, those of the class "DJ" may, and
// don't see what the payment took.
TEST_F(PayReduction, AfterAPaymentOnlyLesserFullAmountRulesAct) {
  Pay(Control() + TenOfHundred());
  Scheme("'G1',1,'MUG','SUM',1,'NUM',1,0,0,0,0");
  Scheme("'G2',1,'MUG','SUM',1,'NUM',1,0,0,0,0");
  Result("Pay", OneLine("300", Paid("200")));
  LoadRule("G1", "MZZP");
  LoadRule("G2", "MZZP", R"(Primary="DJ")");

  const std::string sale = MzPromotion(AsItStands());

  EXPECT_EQ(Held(sale, "ProGifts", "ProBillNo"), Texts{"G2"});
  EXPECT_EQ(Held(sale, "ProGifts", "Total"), Texts{"300.00"});
}

TEST_F(PayReduction, NothingIsSkippedByRemark) {
  Pay(Control() + TenOfHundred(), R"(Remark="DVCZK")");

  EXPECT_EQ(Back(OneLine("300", Paid("250"))), "20.00");
  EXPECT_FALSE(Holds(TakeLog(), "跳过促销"));
}

TEST_F(PayReduction, TheRowsNameTheMember) {
  Pay(Control() + TenOfHundred() + R"(<Vip><Row VipType="*"/></Vip>)");

  const std::string sale =
      Result("Pay", SaleXml(LineXml(1, "A", "300", "1", "300"),
                            "<PayMode>" + Paid("250") + R"(</PayMode><Vip><Row VipType="GOLD"/></Vip>)"));

  EXPECT_EQ(Held(sale, "ProResult", "IsVip"), (Texts{"1", "1"}));
  EXPECT_EQ(Held(sale, "ProResult", "VipType"), (Texts{"GOLD", "GOLD"}));
}

// A filter on payments, one of the rule's base conditions, stands beside the way of paying that counts.
TEST_F(PayReduction, APaymentFilterStillHolds) {
  Pay(Control() + TenOfHundred() + R"(<PayMode><Row PayMode="CASH" PayMoney="50"/></PayMode>)");
  EXPECT_EQ(Back(OneLine("300", Paid("250"))), "");
  EXPECT_TRUE(Holds(TakeLog(), "支付条件不满足"));

  EXPECT_EQ(Back(OneLine("300", Paid("50", "CASH"))), "20.00");
}

// Several rows of the group add up to one record; what the last one says stands.
TEST_F(PayReduction, ControlRowsAddUp) {
  Pay(R"(<ProCtr><Row PayType="CASH" PriceTotal="15"/><Row PayType="CARD"/></ProCtr>)" + TenOfHundred());

  EXPECT_EQ(Back(OneLine("300", Paid("250"))), "15.00");
}

TEST_F(PayReduction, WithoutControlNothingIsGiven) {
  Pay(TenOfHundred());

  EXPECT_EQ(Back(OneLine("300", Paid("250", ""))), "");
}

// A set price for all steps.
TEST_F(PayReduction, AGroupOfOnePriceSetsEveryStep) {
  Pay(Control() + R"(<PluAction ActionType="TC" PrjTotal="100"><Row DisPrice="7" DisRate="90"/></PluAction>)");

  EXPECT_EQ(Back(OneLine("300", Paid("250"))), "20.00");
}

TEST_F(PayReduction, TheCeilingIsNotForThisType) {
  Pay(Control() + TenOfHundred(), R"(MaxYhType="1" MaxYhValue="5")");

  EXPECT_EQ(Back(OneLine("300", Paid("250"))), "20.00");
}

TEST_F(PayReduction, OtherModesDoNotRunIt) {
  Pay(Control() + TenOfHundred());

  for (const char* mode : {"Single", "All", "Union", "Zh", "MzPromotion", "Gift", "Coupon"}) {
    EXPECT_EQ(PrintedGroup(Result(mode, OneLine("300", Paid("250"))), "ProResult"), "<ProResult />") << mode;
  }
}

TEST_F(PayReduction, ASaleWithoutLinesMeetsNoTime) {
  Pay(Control() + TenOfHundred());

  EXPECT_EQ(Back("<Sale><PayMode>" + Paid("250") + "</PayMode></Sale>"), "");
}

TEST_F(PayReduction, ARuleWithoutGroupsGivesNothing) {
  Pay("");

  EXPECT_EQ(Back(OneLine("300", Paid("250"))), "");
}

}  // namespace
}  // namespace Corvane::Testing
