#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "promo/mz/ProMzCoupon.h"
#include "tests/unit/RuleFixture.h"

namespace Corvane {
namespace {

std::vector<std::string> ValuesOf(const ProSale& sale) {
  std::vector<std::string> values;
  for (const SaleCoupon& coupon : sale.GivenCoupons) values.emplace_back(OrEmpty(coupon.Value));
  return values;
}

class CouponsGiven : public ::testing::Test {
 protected:
  /// An offer that brings `sum` from 100.00 on.
  ProMzCoupon Rule(const std::string& sum, const std::string& groups, const std::string& billNo = "Q1") {
    m_xml = "<Rules><Rule BillNo=\"" + billNo +
            "\" ProType=\"MZZQ\" Primary=\"PT\" MaxYhType=\"\" Remark=\"\"><OrgFilter><R OrgCode=\"*\"/></OrgFilter>"
            "<ProTime><R StartDate=\"2000-01-01\" EndDate=\"2099-12-31\" Frequency=\"DAY\"/></ProTime>"
            "<ProList ConAreaType=\"ALL\"><PluAddAction><R BaseConNum=\"100\" BaseDscNum=\"" +
            sum + "\"/></PluAddAction>" + groups + "</ProList></Rule></Rules>";
    ProMzCoupon rule;
    rule.InitRule(m_xml.c_str());
    return rule;
  }
  static ProSale& Calculate(ProMzCoupon& rule, ProSale& sale) {
    SalePlu line;
    line.PluCount = 1;
    line.Price = line.FinalPrice = line.Total = 100;
    line.SaleDate = "2026-11-21";
    line.SaleTime = "10:20:30";
    sale.Plus.push_back(line);
    RuleRun run(rule, sale);
    rule.CalcRule(run);
    return sale;
  }

 private:
  ruletest::LogFolder m_folder;
  std::string m_xml;
};

TEST_F(CouponsGiven, ACouponHasTheRulesNumberAndTheHeadersData) {
  ProMzCoupon rule =
      Rule("12.5", R"(<CouponType CouponTypeCode="T1" BgnDate="2026-11-22" LimitType="1" LimitDay="7"/>)");
  ProSale sale;
  Calculate(rule, sale);

  ASSERT_EQ(sale.GivenCoupons.size(), 1U);
  const SaleCoupon& coupon = sale.GivenCoupons.front();
  EXPECT_STREQ(coupon.BillNo, "Q1");
  EXPECT_STREQ(coupon.CouponTypeCode, "T1");
  EXPECT_STREQ(coupon.BgnDate, "2026-11-22");
  EXPECT_STREQ(coupon.EndDate, "2026-11-28 10:20:30");
  EXPECT_STREQ(coupon.Value, "12.500000");
  EXPECT_TRUE(sale.Coupons.empty());
}

TEST_F(CouponsGiven, AFixedEndIsTheHeaders) {
  ProMzCoupon rule = Rule("12.5", R"(<CouponType EndDate="2026-12-31" LimitType="0" LimitDay="7"/>)");
  ProSale sale;
  Calculate(rule, sale);

  EXPECT_STREQ(sale.GivenCoupons.front().EndDate, "2026-12-31");
}

TEST_F(CouponsGiven, TheLargestDenominationsComeFirst) {
  ProMzCoupon rule = Rule("125", R"(<CouponType IsDenom="1"/><CouponDenomination><R Denomination="20"/>)"
                                 R"(<R Denomination="50"/></CouponDenomination>)");
  ProSale sale;
  Calculate(rule, sale);

  EXPECT_EQ(ValuesOf(sale), (std::vector<std::string>{"50.000000", "50.000000", "20.000000"}));
  ASSERT_EQ(sale.SaleResults.size(), 1U);
  EXPECT_EQ(sale.SaleResults.front().DisMoney, 120);
  EXPECT_EQ(sale.SaleResults.front().YhMoney, 120);
  EXPECT_EQ(sale.SaleResults.front().BaseMoney, 0);
}

TEST_F(CouponsGiven, DenominationsAboveTheSumMakeNone) {
  ProMzCoupon rule =
      Rule("10", R"(<CouponType IsDenom="1"/><CouponDenomination><R Denomination="20"/></CouponDenomination>)");
  ProSale sale;
  Calculate(rule, sale);

  EXPECT_TRUE(sale.GivenCoupons.empty());
  EXPECT_EQ(sale.SaleResults.size(), 1U);
}

TEST_F(CouponsGiven, ARuleOfTheNumberStarKeepsNone) {
  ProMzCoupon whole = Rule("10", "", "*");
  ProSale sale;
  Calculate(whole, sale);
  EXPECT_TRUE(sale.GivenCoupons.empty());

  ProMzCoupon cut =
      Rule("10", R"(<CouponType IsDenom="1"/><CouponDenomination><R Denomination="5"/></CouponDenomination>)", "*");
  ProSale other;
  Calculate(cut, other);
  EXPECT_TRUE(other.GivenCoupons.empty());
}

// What a sale made goes with the sale; the rule stands for weeks.
TEST_F(CouponsGiven, EachSaleHasItsOwn) {
  ProMzCoupon rule = Rule("10", "");
  ProSale first;
  Calculate(rule, first);
  ProSale second;
  Calculate(rule, second);

  EXPECT_EQ(ValuesOf(first), std::vector<std::string>{"10.000000"});
  EXPECT_EQ(ValuesOf(second), std::vector<std::string>{"10.000000"});
}

TEST_F(CouponsGiven, ThoseOfSeveralRulesAreAllKept) {
  ProSale sale;
  ProMzCoupon rule = Rule("10", "");
  Calculate(rule, sale);
  ProMzCoupon other = Rule("20", "", "Q2");
  other.Info.Primary = "DJ";
  RuleRun run(other, sale);
  other.CalcRule(run);

  EXPECT_EQ(ValuesOf(sale), (std::vector<std::string>{"10.000000", "20.000000"}));
  EXPECT_STREQ(sale.GivenCoupons.front().BillNo, "Q1");
  EXPECT_STREQ(sale.GivenCoupons.back().BillNo, "Q2");
}

}  // namespace
}  // namespace Corvane
