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

TEST_F(CouponGiving, TheValueStandsOnTheSaleAndNoLineIsTouched) {
  Give(OfferXml("ALL", TierXml("100", "10"), Coupon()));

  const std::string sale = MzPromotion(SaleXml(LineXml(1, "A", "60", "1", "60") + LineXml(2, "B", "60", "1", "60")));

  EXPECT_EQ(PrintedGroup(sale, "ProResult"),
            R"(<ProResult>
        <Data SerialNo="0" PluCode="*" DisNum="0.00" DisMoney="10.00" ProBillNo="Q1" ProType="MZZQ" IsVip="0" VipType="" />
    </ProResult>)");
  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"60.00", "60.00"}));
  EXPECT_EQ(PrintedGroup(sale, "Apportion"), "<Apportion />");
}

// The coupons made stay with the rule; what goes out is what the sale brought in.
TEST_F(CouponGiving, GivenCouponsDoNotGoOutWithTheSale) {
  Give(OfferXml("ALL", TierXml("100", "10"), Coupon()));

  EXPECT_EQ(PrintedGroup(MzPromotion(OneLineOf("100")), "ProCoupons"), "<ProCoupons />");
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

TEST_F(CouponGiving, ASchemeThatIsNotReachedWritesNothing) {
  Give(OfferXml("ALL", TierXml("100", "10"), Coupon()));

  EXPECT_EQ(PrintedGroup(MzPromotion(OneLineOf("99.99")), "ProResult"), "<ProResult />");
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

// The amount is 0: only the threshold of 0 is reached.
TEST_F(CouponGiving, AnAreaThatIsNoneReachesAThresholdOfNothingOnly) {
  Give(OfferXml("all", TierXml("0", "5") + TierXml("1", "50"), Coupon()));

  EXPECT_EQ(Held(MzPromotion(OneLineOf("100")), "ProResult", "DisMoney"), Texts{"5.00"});
  EXPECT_TRUE(Holds(TakeLog(), "赠券方案内满足的金额0.000000"));
}

// The lines' totals as they stand: a reduction that lowered them counts, and what it marked as taken doesn't.
TEST_F(CouponGiving, TheWholeSaleIsItsTotalsAsTheyStand) {
  Offer("'M1','L1','ALL',0,'0'");
  Tier("'M1','L1',100,10,0,0,0");
  LoadRule("M1", "MZMJ", R"(JzDate="2026-02-01")");
  Give(OfferXml("ALL", TierXml("90", "9"), Coupon()));

  const std::string sale = MzPromotion(OneLineOf("100"));

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"9.00", "10.00"}));
  EXPECT_TRUE(Holds(TakeLog(), "赠券方案内满足的金额90.000000"));
}

// 60 of 150 count, and the remainder itself is those 60: 60 - 100 = -40 stays negative, so the threshold of 0 isn't
// reached.
TEST_F(CouponGiving, ANegativeRemainderIsNotRaised) {
  Give(OfferXml("ALL", TierXml("100", "10", "0", "0", "60") + TierXml("0", "3"), Coupon()));

  EXPECT_EQ(Held(MzPromotion(OneLineOf("150")), "ProResult", "DisMoney"), Texts{"10.00"});
}

TEST_F(CouponGiving, ARemainderOfNothingReachesAThresholdOfNothing) {
  Give(OfferXml("ALL", TierXml("100", "10") + TierXml("0", "3"), Coupon()));

  EXPECT_EQ(Held(MzPromotion(OneLineOf("100")), "ProResult", "DisMoney"), Texts{"13.00"});
}

// 300: 50 and (560 - 300) / 100 = 2 steps of 10; 60 left.
TEST_F(CouponGiving, FurtherStepsGiveMore) {
  Give(OfferXml("ALL", TierXml("300", "50", "100", "10") + TierXml("100", "10"), Coupon()));

  EXPECT_EQ(Held(MzPromotion(OneLineOf("560")), "ProResult", "DisMoney"), Texts{"70.00"});
}

// 50, then 60 is cut to 55. The log has the sum before the cut.
TEST_F(CouponGiving, TheSchemesCapHolds) {
  Give(OfferXml("ALL", TierXml("300", "50") + TierXml("100", "10"), Coupon(), R"(MaxDiscount="55")"));

  EXPECT_EQ(Held(MzPromotion(OneLineOf("460")), "ProResult", "DisMoney"), Texts{"55.00"});
  EXPECT_TRUE(Holds(TakeLog(), "真实赠券额60.000000"));
}

TEST_F(CouponGiving, EachSchemeWritesItsRow) {
  Give(OfferXml("ALL", TierXml("100", "10"), Coupon()) + OfferXml("ALL", TierXml("50", "7"), Coupon()));

  EXPECT_EQ(Held(MzPromotion(OneLineOf("100")), "ProResult", "DisMoney"), (Texts{"10.00", "14.00"}));
}

// 120 = 50 + 50 + 20.
TEST_F(CouponGiving, ASumIsCutIntoTheLargestDenominations) { EXPECT_EQ(GivenOf("120", {"20", "50"}), "120.00"); }

TEST_F(CouponGiving, WhatCannotBeCutIsNotGiven) { EXPECT_EQ(GivenOf("125.5", {"20", "50"}), "120.00"); }

// 60 = 50, and 10 can't be cut; 20 + 20 + 20 would fit, but the largest is taken first.
TEST_F(CouponGiving, TheLargestIsTakenFirstEvenIfTheRestIsLost) { EXPECT_EQ(GivenOf("60", {"20", "50"}), "50.00"); }

TEST_F(CouponGiving, DenominationsAboveTheSumGiveNothingAndWriteTheRow) {
  EXPECT_EQ(GivenOf("10", {"20", "50"}), "0.00");
}

// 0.3 less 0.1 less 0.1 is a hair below 0.1 in doubles.
TEST_F(CouponGiving, ARestAHairBelowADenominationIsNotCut) { EXPECT_EQ(GivenOf("0.3", {"0.1"}), "0.20"); }

TEST_F(CouponGiving, WithoutDenominationsTheWholeSumIsOneCoupon) { EXPECT_EQ(GivenOf("125.5", {}), "125.50"); }

TEST_F(CouponGiving, WithoutTheMarkDenominationsAreNotUsed) { EXPECT_EQ(GivenOf("125.5", {"20", "50"}, ""), "125.50"); }

// The mark counts by being there.
TEST_F(CouponGiving, TheMarkHoldsWhateverItSays) { EXPECT_EQ(GivenOf("125.5", {"20"}, R"(IsDenom="0")"), "120.00"); }

// The coupon's header may stand on the group or on a row in it.
TEST_F(CouponGiving, TheMarkMayStandOnARowOfTheGroup) {
  Give(
      OfferXml("ALL", TierXml("100", "125"), R"(<CouponType><Row IsDenom="1"/></CouponType>)" + Denominations({"20"})));

  EXPECT_EQ(Held(MzPromotion(OneLineOf("100")), "ProResult", "DisMoney"), Texts{"120.00"});
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

TEST_F(CouponGiving, ARuleOfTheNumberStarGivesNoCoupons) {
  Give(OfferXml("ALL", TierXml("100", "120"), Coupon()), "", "*");

  EXPECT_EQ(Held(MzPromotion(OneLineOf("100")), "ProResult", "DisMoney"), Texts{"0.00"});
}

TEST_F(CouponGiving, ARuleOfTheNumberStarCutsNoCoupons) {
  Give(OfferXml("ALL", TierXml("100", "120"), Coupon(R"(IsDenom="1")") + Denominations({"50", "20"})), "", "*");

  EXPECT_EQ(Held(MzPromotion(OneLineOf("100")), "ProResult", "DisMoney"), Texts{"0.00"});
}

// A second pass finds the rule's own row on the sale.
TEST_F(CouponGiving, ASaleGetsItsCouponsOnce) {
  Give(OfferXml("ALL", TierXml("100", "10"), Coupon()), R"(Primary="DJ")");
  MzPromotion(OneLineOf("100"));
  TakeLog();

  EXPECT_EQ(Held(MzPromotion(OneLineOf("100")), "ProResult", "DisMoney"), Texts{"10.00"});
  EXPECT_EQ(AfterReading(TakeLog()), Texts{});
}

// The ceiling meets rows that an earlier rule of this number left on the lines, not the value given: 3.00 become 1.00.
TEST_F(CouponGiving, TheCeilingIsForRowsOnLines) {
  Offer("'Q1','L1','ALL',0,'0'");
  Tier("'Q1','L1',30,3,0,0,0");
  LoadRule("Q1", "MZMJ");
  const std::string lines =
      LineXml(1, "A", "10", "1", "10") + LineXml(2, "B", "10", "1", "10") + LineXml(3, "C", "10", "1", "10");
  MzPromotion(SaleXml(lines));
  Give(OfferXml("ALL", TierXml("20", "8"), Coupon()), R"(MaxYhType="1" MaxYhValue="1")");
  TakeLog();

  const std::string sale = MzPromotion(AsItStands());

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"8.00", "0.33", "0.33", "0.33"}));
  EXPECT_EQ(AfterReading(TakeLog()).back(), "真实赠券额8.000000");
}

// Unlike one that takes coupons, such a rule keeps to its time.
TEST_F(CouponGiving, ARuleOutOfItsTimeGivesNothing) {
  ASSERT_EQ(
      Load("MZYQ", RuleXml("Q1", "MZZQ", "",
                           R"(<OrgFilter><Row OrgCode="*"/></OrgFilter>)"
                           R"(<ProTime><Row StartDate="2000-01-01" EndDate="2000-12-31" Frequency="DAY"/></ProTime>)" +
                               OfferXml("ALL", TierXml("100", "10"), Coupon()),
                           true))
          .Code,
      0);

  EXPECT_EQ(PrintedGroup(MzPromotion(OneLineOf("100")), "ProResult"), "<ProResult />");
  EXPECT_EQ(AfterReading(TakeLog()), Texts{"时间条件不满足"});
}

// The coupon step asks no type word: a rule that gives coupons takes some too, as long as it hasn't given any.
TEST_F(CouponGiving, InTheCouponModeTheRuleTakesCoupons) {
  Give(OfferXml("ALL", TierXml("100", "10"), Coupon()));

  const std::string sale = Result(
      "Coupon", SaleXml(LineXml(1, "A", "100", "1", "100"), R"(<Coupon><Row BillNo="K1" CouponValue="4"/></Coupon>)"));

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"4.00", "4.00"}));
  EXPECT_EQ(Held(sale, "ProResult", "ProType"), (Texts{"MZZQ", "MZZQ"}));
  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"96.00"});
}

TEST_F(CouponGiving, AfterGivingCouponsTheRuleTakesNone) {
  Give(OfferXml("ALL", TierXml("100", "10"), Coupon()));
  MzPromotion(OneLineOf("100"));

  const std::string sale = Result("Coupon", R"(<Sale><Coupon><Row BillNo="K1" CouponValue="4"/></Coupon></Sale>)");

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"10.00"});
  EXPECT_EQ(Held(sale, "ProCoupons", "Value"), Texts{"4"});
}

// A rule that takes coupons gives none.
TEST_F(CouponGiving, ARuleThatTakesCouponsDoesNotRunHere) {
  LoadRule("K1", "MZYQ", "", OfferXml("ALL", TierXml("100", "10"), Coupon()));

  EXPECT_EQ(PrintedGroup(MzPromotion(OneLineOf("100")), "ProResult"), "<ProResult />");
}

// A rule of another class with this type word has no such step.
TEST_F(CouponGiving, ARuleOfAnotherClassUnderThisTypeWordGivesNothing) {
  Offer("'M1','L1','ALL',0,'0'");
  Tier("'M1','L1',30,10,0,0,0");
  ASSERT_EQ(Load("MZMJ", RuleXml("M1", "MZZQ")).Code, 0);

  EXPECT_EQ(PrintedGroup(MzPromotion(OneLineOf("100")), "ProResult"), "<ProResult />");
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
