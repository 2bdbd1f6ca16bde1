#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

/// "MZYQ": coupons that the customer presents come off the sale, as much as its amount allows.
class CouponUse : public FullAmount {
 protected:
  static void Take(const std::string& offers, const std::string& header = "") {
    LoadRule("K1", "MZYQ", header, offers);
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

TEST_F(CouponUse, TheLogOfTheCouponMode) {
  Take(OfferXml("ALL", TierXml("100", "20")));

  Result("Coupon", OneLine("100", {"20"}));

  EXPECT_EQ(TakeLog(),
            Joined({{"Coupon", "till:1\n", "开始初始化流水", "初始化流水完成", "满赠用券"}, BaseConditionsMet()}));
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

}  // namespace
}  // namespace Corvane::Testing
