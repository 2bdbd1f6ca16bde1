#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

/// "MZYQ": coupons that the customer presents come off the sale, as much as its amount allows.
class CouponUse : public FullAmount {
 protected:
  static void Take(const std::string& offers, const std::string& header = "", const std::string& billNo = "K1") {
    LoadRule(billNo, "MZYQ", header, offers);
  }
  static std::string Coupons(const std::vector<std::string>& values) {
    std::string rows;
    for (const std::string& value : values)
      rows += "<Row BillNo=\"C\" CouponTypeCode=\"T1\" CouponValue=\"" + value + "\"/>";
    return "<Coupon>" + rows + "</Coupon>";
  }
  static std::string OneLine(const std::string& total, const std::vector<std::string>& coupons) {
    return SaleXml(LineXml(1, "A", total, "1", total), Coupons(coupons));
  }
  /// What a sale of one line takes in; "" for nothing.
  static std::string Taken(const std::string& total, const std::vector<std::string>& coupons) {
    const std::string result = Result("Coupon", OneLine(total, coupons));
    if (PrintedGroup(result, "ProResult") == "<ProResult />") return "";
    return RowWhere(result, "ProResult", "SerialNo", "0")["DisMoney"];
  }
};

TEST_F(CouponUse, CouponsComeOffTheWholeSale) {
  Take(OfferXml("ALL", TierXml("100", "20")));

  const std::string sale =
      Result("Coupon", SaleXml(LineXml(1, "A", "75", "1", "75") + LineXml(2, "B", "25", "1", "25"), Coupons({"20"})));

  EXPECT_EQ(PrintedGroup(sale, "ProResult"),
            R"(<ProResult>
        <Data SerialNo="1" PluCode="B" DisNum="1.00" DisMoney="5.00" ProBillNo="K1" ProType="MZYQ" IsVip="0" VipType="" RowID="2" />
        <Data SerialNo="2" PluCode="A" DisNum="1.00" DisMoney="15.00" ProBillNo="K1" ProType="MZYQ" IsVip="0" VipType="" RowID="1" />
        <Data SerialNo="0" PluCode="*" DisNum="0.00" DisMoney="20.00" ProBillNo="K1" ProType="MZYQ" IsVip="0" VipType="" />
    </ProResult>)");
  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"60.00", "20.00"}));
  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), (Texts{"15.00", "5.00"}));
  EXPECT_EQ(PrintedGroup(sale, "ProCoupons"), "<ProCoupons />");
}

TEST_F(CouponUse, TheLogOfTheCouponMode) {
  Take(OfferXml("ALL", TierXml("100", "20")));

  Result("Coupon", OneLine("100", {"20"}));

  EXPECT_EQ(TakeLog(),
            Joined({{"Coupon", "till:1\n", "开始初始化流水", "初始化流水完成", "满赠用券"}, BaseConditionsMet()}));
}

// 10.00 on three lines of 10.00: 3.33 each come off, and the cent that is left goes to the first record alone.
TEST_F(CouponUse, TheRoundingTailIsInTheRecordsOnly) {
  Take(OfferXml("ALL", TierXml("30", "10")));

  const std::string sale = Result(
      "Coupon",
      SaleXml(LineXml(1, "A", "10", "1", "10") + LineXml(2, "B", "10", "1", "10") + LineXml(3, "C", "10", "1", "10"),
              Coupons({"10"})));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"6.67", "6.67", "6.67"}));
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"10.00", "3.34", "3.33", "3.33"}));
  EXPECT_EQ(Held(sale, "Apportion", "AppMoney"), (Texts{"3.34", "3.33", "3.33"}));
}

// Chosen lines get their records and keep their amounts.
TEST_F(CouponUse, CouponsOnChosenLinesLeaveTheTotals) {
  Take(OfferXml("DES", TierXml("50", "10"), R"(<PluCondition><Row PluCode="FOOD" PluType="CAT"/></PluCondition>)"));

  const std::string sale =
      Result("Coupon", SaleXml(LineXml(1, "A", "30", "1", "30", R"(CAT="FOOD")") + LineXml(2, "B", "50", "1", "50") +
                                   LineXml(3, "C", "20", "1", "20", R"(CAT="FOOD")"),
                               Coupons({"10"})));

  EXPECT_EQ(Held(sale, "Plu", "Total"), (Texts{"30.00", "50.00", "20.00"}));
  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"10.00", "6.00", "4.00"}));
  EXPECT_EQ(Held(sale, "ProResult", "RowID"), (Texts{"(absent)", "1", "3"}));
}

TEST_F(CouponUse, TheDiscountGoesIntoTheUnitPriceOnlyWhenTheOfferSaysSo) {
  Take(OfferXml("ALL", TierXml("100", "20")));
  EXPECT_EQ(Held(Result("Coupon", OneLine("100", {"20"})), "Plu", "FinalPrice"), Texts{"100.0000"});

  Take(R"(<ProList ConAreaType="ALL" DscIntoPlu="1"><PluAddAction>)" + TierXml("100", "20") +
       "</PluAddAction></ProList>");
  ClearSales();
  EXPECT_EQ(Held(Result("Coupon", OneLine("100", {"20"})), "Plu", "FinalPrice"), Texts{"80.0000"});
}

TEST_F(CouponUse, CouponsAboveTheSumAreLost) {
  Take(OfferXml("ALL", TierXml("100", "20")));

  const std::string sale = Result("Coupon", OneLine("100", {"15", "15"}));

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"20.00", "20.00"}));
  EXPECT_EQ(PrintedGroup(sale, "ProCoupons"), "<ProCoupons />");
}

TEST_F(CouponUse, CouponsBelowTheSumAreTakenWhole) {
  Take(OfferXml("ALL", TierXml("100", "20")));

  EXPECT_EQ(Taken("100", {"4.5", "3"}), "7.50");
}

TEST_F(CouponUse, NoCouponsNoDiscount) {
  Take(OfferXml("ALL", TierXml("100", "20")));

  const std::string sale = Result("Coupon", OneLine("100", {}));

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"100.00"});
}

TEST_F(CouponUse, AnUnreachedThresholdLeavesTheCoupons) {
  Take(OfferXml("ALL", TierXml("100", "20")));

  const std::string sale = Result("Coupon", OneLine("99", {"5"}));

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(Held(sale, "ProCoupons", "Value"), Texts{"5"});
}

TEST_F(CouponUse, AValueThatIsNoNumberIsNothing) {
  Take(OfferXml("ALL", TierXml("100", "20")));

  EXPECT_EQ(Taken("100", {"five", "", "3"}), "3.00");
}

TEST_F(CouponUse, ANegativeSumOfCouponsIsNotTaken) {
  Take(OfferXml("ALL", TierXml("100", "20")));

  const std::string sale = Result("Coupon", OneLine("100", {"5", "-6"}));

  EXPECT_EQ(PrintedGroup(sale, "ProResult"), "<ProResult />");
  EXPECT_EQ(Held(sale, "ProCoupons", "Value"), (Texts{"5", "-6"}));
}

TEST_F(CouponUse, ValuesThatAreNoFiniteNumbersDoNoHarm) {
  Take(OfferXml("ALL", TierXml("100", "20")));
  Taken("100", {"nan"});
  ClearSales();
  Taken("100", {"inf", "-inf"});
  ClearSales();
  Taken("100", {"1e999"});
  ClearSales();

  EXPECT_EQ(Taken("100", {"3"}), "3.00");
}

// The first offer with something to take takes the coupons; the second finds none.
TEST_F(CouponUse, ASecondOfferFindsNoCoupons) {
  Take(OfferXml("ALL", TierXml("100", "20")) + OfferXml("ALL", TierXml("50", "10")), R"(Primary="DJ")");

  EXPECT_EQ(Taken("100", {"50"}), "20.00");
}

TEST_F(CouponUse, ChosenLinesThatAreNotThereLeaveTheCouponsToALaterOffer) {
  Take(OfferXml("DES", TierXml("0", "5"), R"(<PluCondition><Row PluCode="Z"/></PluCondition>)") +
       OfferXml("ALL", TierXml("100", "20")));

  EXPECT_EQ(Taken("100", {"12"}), "12.00");
}

TEST_F(CouponUse, AnOfferWithoutTiersLeavesTheCouponsToALaterOffer) {
  Take(OfferXml("ALL", "") + OfferXml("ALL", TierXml("100", "20")));

  EXPECT_EQ(Taken("100", {"12"}), "12.00");
}

// The amount is 0, and a threshold of 0 gives 5.00: the coupons are used up, and no line gets anything of it.
TEST_F(CouponUse, AnAreaThatIsNoneMayUseTheCouponsUpForNothing) {
  Take(OfferXml("all", TierXml("0", "5")));

  const std::string sale = Result("Coupon", OneLine("100", {"12"}));

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), Texts{"5.00"});
  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"100.00"});
  EXPECT_EQ(PrintedGroup(sale, "ProCoupons"), "<ProCoupons />");
}

// 300: 50 and (560 - 300) / 100 = 2 steps of 10; 60 left.
TEST_F(CouponUse, FurtherStepsTakeMore) {
  Take(OfferXml("ALL", TierXml("300", "50", "100", "10") + TierXml("100", "10")));

  EXPECT_EQ(Taken("560", {"500"}), "70.00");
}

TEST_F(CouponUse, WhatTheHigherTierLeavesReachesTheLower) {
  Take(OfferXml("ALL", TierXml("300", "50") + TierXml("100", "10")));

  EXPECT_EQ(Taken("460", {"500"}), "60.00");
}

TEST_F(CouponUse, TheOffersCapHolds) {
  Take(OfferXml("ALL", TierXml("300", "50") + TierXml("100", "10"), "", R"(MaxDiscount="55")"));

  EXPECT_EQ(Taken("460", {"500"}), "55.00");
}

// 300 of 560 count: 10 + 2 x 10, nothing left.
TEST_F(CouponUse, WhatLiesAboveTheMostIsDropped) {
  Take(OfferXml("ALL", TierXml("100", "10", "0", "0", "300") + TierXml("50", "5")));

  EXPECT_EQ(Taken("560", {"500"}), "30.00");
}

// 60 of 150 count: 60 - 100 = -40 stays negative, so the threshold of 0 isn't reached.
TEST_F(CouponUse, ANegativeRemainderIsNotRaised) {
  Take(OfferXml("ALL", TierXml("100", "10", "0", "0", "60") + TierXml("0", "3")));

  EXPECT_EQ(Taken("150", {"500"}), "10.00");
}

TEST_F(CouponUse, AThresholdOfNothingGivesOnce) {
  Take(OfferXml("ALL", TierXml("0", "7")));

  EXPECT_EQ(Taken("80", {"500"}), "7.00");
}

// 19.99 in single precision is 19.98999977..., below the threshold.
TEST_F(CouponUse, AnAmountMayFallShortOfItsOwnThresholdInSinglePrecision) {
  Take(OfferXml("ALL", TierXml("19.99", "5")));

  EXPECT_EQ(Taken("19.99", {"5"}), "");
}

// 20.01 in single precision is 20.01000022..., at or above the threshold.
TEST_F(CouponUse, AnAmountMayReachItsOwnThresholdInSinglePrecision) {
  Take(OfferXml("ALL", TierXml("20.01", "5")));

  EXPECT_EQ(Taken("20.01", {"5"}), "5.00");
}

// 16,777,219 is no number of single precision; the nearest is 16,777,220, which reaches a threshold that the amount
// doesn't.
TEST_F(CouponUse, AnAmountMayReachAThresholdAboveItInSinglePrecision) {
  Take(OfferXml("ALL", TierXml("16777220", "5")));

  EXPECT_EQ(Taken("16777219", {"5"}), "5.00");
}

// 20,000,001 is stored as 20,000,000.
TEST_F(CouponUse, TheSumIsOfSinglePrecision) {
  Take(OfferXml("ALL", TierXml("100", "20000001", "1000000000", "0")));

  EXPECT_EQ(Taken("100000000", {"30000000"}), "20000000.00");
}

// The value presented is summed as it is: 20,000,001 stay 20,000,001.
TEST_F(CouponUse, TheCouponsAreNotOfSinglePrecision) {
  Take(OfferXml("ALL", TierXml("100", "40000000", "1000000000", "0")));

  EXPECT_EQ(Taken("100000000", {"20000000", "1"}), "20000001.00");
}

// 0.1 and 9,999 times 0.1 more, each sum stored in single precision, come to 999.9029.
TEST_F(CouponUse, EachRepeatedSumIsStoredInSinglePrecision) {
  Take(OfferXml("ALL", TierXml("1", "0.1")));

  EXPECT_EQ(Taken("10000", {"5000"}), "999.90");
}

// The most of 20.1 is 20.10000038... in single precision, 0.00000038... above itself: (20.1... - 10) / 10 = 1 step, and
// 20.1... - 20 + 0.00000038... = 0.10000076... Without the add-on it were 0.10000038..., below the lower threshold.
TEST_F(CouponUse, WhatSinglePrecisionAddsToTheMostIsAddedToTheRemainder) {
  Take(OfferXml("ALL", TierXml("10", "1", "0", "0", "20.1") + TierXml("0.1000005", "5", "1000")));

  EXPECT_EQ(Taken("50", {"500"}), "7.00");
}

// The most of 33.3 is 33.29999923... in single precision, below itself: nothing is added and nothing is taken off. 2
// steps, and 33.29999923... - 30 = 3.29999923... reaches 3.299999.
TEST_F(CouponUse, WhatSinglePrecisionTakesFromTheMostIsNotTakenTwice) {
  Take(OfferXml("ALL", TierXml("10", "1", "0", "0", "33.3") + TierXml("3.299999", "5", "1000")));

  EXPECT_EQ(Taken("50", {"500"}), "8.00");
}

// 1,990,000,000 steps of 0.5 allow far more than the 5.00 that were presented.
TEST_F(CouponUse, StepsAreNotBounded) {
  Take(OfferXml("ALL", TierXml("1", "0.5", "0.0000001", "0.5")));

  EXPECT_EQ(Taken("200", {"5"}), "5.00");
}

TEST_F(CouponUse, OddNumbersDoNoHarm) {
  for (const char* number : {"nan", "inf", "-inf", "1e300", "-1e300", "x", ""}) {
    Take(OfferXml("ALL",
                  TierXml(number, number, number, number, number) + TierXml("1", number, "1", number, number) +
                      TierXml(number, "1", number, "1", "1"),
                  "", "MaxDiscount=\"" + std::string(number) + "\""));
    ClearSales();
    EXPECT_EQ(Calc("till", "Coupon", OneLine("100", {"5"})).Code, 0) << number;
  }
  Take(OfferXml("ALL", TierXml("100", "20")));
  ClearSales();
  EXPECT_EQ(Taken("100", {"5"}), "5.00");
}

// Time has no power over such a rule, nor has its absence.
TEST_F(CouponUse, ARuleOutOfItsTimeTakesCoupons) {
  ASSERT_EQ(
      Load("MZYQ", RuleXml("K1", "MZYQ", "",
                           R"(<OrgFilter><Row OrgCode="*"/></OrgFilter>)"
                           R"(<ProTime><Row StartDate="2000-01-01" EndDate="2000-12-31" Frequency="DAY"/></ProTime>)" +
                               OfferXml("ALL", TierXml("100", "20")),
                           true))
          .Code,
      0);
  EXPECT_EQ(Taken("100", {"5"}), "5.00");
  EXPECT_TRUE(Holds(TakeLog(), "时间满足"));

  ASSERT_EQ(Load("MZYQ",
                 RuleXml("K1", "MZYQ", "",
                         R"(<OrgFilter><Row OrgCode="*"/></OrgFilter>)" + OfferXml("ALL", TierXml("100", "20")), true))
                .Code,
            0);
  ClearSales();
  EXPECT_EQ(Taken("100", {"5"}), "5.00");
}

TEST_F(CouponUse, ARuleTakesCouponsOnceASale) {
  Take(OfferXml("ALL", TierXml("50", "20")), R"(Primary="DJ")");
  Result("Coupon", OneLine("100", {"5"}));
  TakeLog();

  const std::string sale = Result("Coupon", "<Sale>" + Coupons({"7"}) + "</Sale>");

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"5.00", "5.00"}));
  EXPECT_EQ(Held(sale, "ProCoupons", "Value"), Texts{"7"});
  EXPECT_EQ(AfterReading(TakeLog()), Texts{"满赠用券"});
}

// The chosen lines may count with no more than the limit's pieces; the whole line's money counts all the same.
TEST_F(CouponUse, ALimitByQuantityIsAskedForChosenLines) {
  Take(OfferXml("DES", TierXml("30", "10"), R"(<PluCondition><Row PluCode="A"/></PluCondition>)"),
       R"(MaxYhType="2" MaxYhValue="1")");

  const std::string sale = Result("Coupon", SaleXml(LineXml(1, "A", "10", "3", "30"), Coupons({"10"})));

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"10.00", "10.00"}));
  EXPECT_EQ(AfterReading(TakeLog()),
            Joined({{"满赠用券"},
                    BaseConditionsMet(),
                    {"促销优惠类型：2", "促销类型：MZYQ", "类型为2", "计算整单已优惠数量：0"}}));
}

TEST_F(CouponUse, TheCeilingIsNotForThisType) {
  Take(OfferXml("ALL", TierXml("100", "20")), R"(MaxYhType="1" MaxYhValue="5")");

  const std::string sale = Result("Coupon", OneLine("100", {"20"}));

  EXPECT_EQ(Held(sale, "ProResult", "DisMoney"), (Texts{"20.00", "20.00"}));
  EXPECT_FALSE(Holds(TakeLog(), "促销单按照最大优惠额限制"));
}

TEST_F(CouponUse, TheLinesRowsNameTheMemberAndTheSalesRowDoesNot) {
  Take(OfferXml("ALL", TierXml("100", "20")) + R"(<Vip><Row VipType="GOLD"/></Vip>)");

  const std::string sale = Result(
      "Coupon", SaleXml(LineXml(1, "A", "100", "1", "100"), Coupons({"20"}) + R"(<Vip><Row VipType="GOLD"/></Vip>)"));

  EXPECT_EQ(Held(sale, "ProResult", "IsVip"), (Texts{"0", "1"}));
  EXPECT_EQ(Held(sale, "ProResult", "VipType"), (Texts{"", "GOLD"}));
}

TEST_F(CouponUse, NothingIsSkippedByRemark) {
  Take(OfferXml("ALL", TierXml("100", "20")), R"(Remark="DVCZK")");

  EXPECT_EQ(Taken("100", {"5"}), "5.00");
}

// The two dates of a coupon change places on their way through.
TEST_F(CouponUse, UntakenCouponsGoOutWithTheirDatesExchanged) {
  Take(OfferXml("ALL", TierXml("100", "20")));

  const std::string sale = Result(
      "Coupon",
      SaleXml(
          LineXml(1, "A", "10", "1", "10"),
          R"(<Coupon><Row BillNo="C7" CouponTypeCode="T1" CouponValue="5" BgnDate="2026-01-01" EndDate="2026-12-31"/></Coupon>)"));

  EXPECT_EQ(PrintedGroup(sale, "ProCoupons"),
            R"(<ProCoupons>
        <ProCouponS SendSaleNo="B1" BillNo="C7" CouponTypeCode="T1" BgnDate="2026-12-31" EndDate="2026-01-01" Value="5" Remark="" />
    </ProCoupons>)");
}

TEST_F(CouponUse, RulesOfOtherTypesDoNothingInThisMode) {
  Offer("'M1','L1','ALL',0,'0'");
  Tier("'M1','L1',30,10,0,0,0");
  LoadRule("M1", "MZMJ");
  LoadRule("X1", "PTXS");

  EXPECT_EQ(Taken("100", {"5"}), "");
  EXPECT_EQ(AfterReading(TakeLog()), Texts{"满赠用券"});
}

TEST_F(CouponUse, OtherModesDoNotRunIt) {
  Take(OfferXml("ALL", TierXml("100", "20")));

  for (const char* mode : {"Single", "All", "Union", "Zh", "MzPromotion", "Gift", "Pay"}) {
    EXPECT_EQ(PrintedGroup(Result(mode, OneLine("100", {"5"})), "ProResult"), "<ProResult />") << mode;
  }
}

}  // namespace
}  // namespace Corvane::Testing
