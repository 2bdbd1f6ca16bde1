#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "promo/mz/ProMzCoupon.h"
#include "tests/unit/RuleFixture.h"

namespace Corvane {
namespace {

/// The coupons that a rule made, which stay in its own offers.
class OpenCouponRule : public ProMzCoupon {
 public:
  const std::vector<SaleCoupon>& Given(std::size_t offer = 0) const { return m_lists.at(offer).Given; }
  std::vector<std::string> Values() const {
    std::vector<std::string> values;
    for (const SaleCoupon& coupon : Given()) values.emplace_back(OrEmpty(coupon.Value));
    return values;
  }
};

class CouponsGiven : public ::testing::Test {
 protected:
  /// An offer that brings `sum` from 100.00 on.
  OpenCouponRule Rule(const std::string& sum, const std::string& groups, const std::string& billNo = "Q1") {
    m_xml = "<Rules><Rule BillNo=\"" + billNo +
            "\" ProType=\"MZZQ\" Primary=\"PT\" MaxYhType=\"\" Remark=\"\"><OrgFilter><R OrgCode=\"*\"/></OrgFilter>"
            "<ProTime><R StartDate=\"2000-01-01\" EndDate=\"2099-12-31\" Frequency=\"DAY\"/></ProTime>"
            "<ProList ConAreaType=\"ALL\"><PluAddAction><R BaseConNum=\"100\" BaseDscNum=\"" +
            sum + "\"/></PluAddAction>" + groups + "</ProList></Rule></Rules>";
    OpenCouponRule rule;
    rule.InitRule(m_xml.c_str());
    return rule;
  }
  static ProSale& Calculate(OpenCouponRule& rule, ProSale& sale) {
    SalePlu line;
    line.PluCount = 1;
    line.Price = line.FinalPrice = line.Total = 100;
    line.SaleDate = "2026-11-21";
    line.SaleTime = "10:20:30";
    sale.Plus.push_back(line);
    rule.CalcRule(sale);
    return sale;
  }

 private:
  ruletest::LogFolder m_folder;
  std::string m_xml;
};

TEST_F(CouponsGiven, ACouponHasTheRulesNumberAndTheHeadersData) {
  OpenCouponRule rule =
      Rule("12.5", R"(<CouponType CouponTypeCode="T1" BgnDate="2026-11-22" LimitType="1" LimitDay="7"/>)");
  ProSale sale;
  Calculate(rule, sale);

  ASSERT_EQ(rule.Given().size(), 1U);
  const SaleCoupon& coupon = rule.Given().front();
  EXPECT_STREQ(coupon.BillNo, "Q1");
  EXPECT_STREQ(coupon.CouponTypeCode, "T1");
  EXPECT_STREQ(coupon.BgnDate, "2026-11-22");
  EXPECT_STREQ(coupon.EndDate, "2026-11-28 10:20:30");
  EXPECT_STREQ(coupon.Value, "12.500000");
  EXPECT_TRUE(sale.Coupons.empty());
}

TEST_F(CouponsGiven, AFixedEndIsTheHeaders) {
  OpenCouponRule rule = Rule("12.5", R"(<CouponType EndDate="2026-12-31" LimitType="0" LimitDay="7"/>)");
  ProSale sale;
  Calculate(rule, sale);

  EXPECT_STREQ(rule.Given().front().EndDate, "2026-12-31");
}

TEST_F(CouponsGiven, TheLargestDenominationsComeFirst) {
  OpenCouponRule rule = Rule("125", R"(<CouponType IsDenom="1"/><CouponDenomination><R Denomination="20"/>)"
                                    R"(<R Denomination="50"/></CouponDenomination>)");
  ProSale sale;
  Calculate(rule, sale);

  EXPECT_EQ(rule.Values(), (std::vector<std::string>{"50.000000", "50.000000", "20.000000"}));
  ASSERT_EQ(sale.SaleResults.size(), 1U);
  EXPECT_EQ(sale.SaleResults.front().DisMoney, 120);
  EXPECT_EQ(sale.SaleResults.front().YhMoney, 120);
  EXPECT_EQ(sale.SaleResults.front().BaseMoney, 0);
}

TEST_F(CouponsGiven, DenominationsAboveTheSumMakeNone) {
  OpenCouponRule rule =
      Rule("10", R"(<CouponType IsDenom="1"/><CouponDenomination><R Denomination="20"/></CouponDenomination>)");
  ProSale sale;
  Calculate(rule, sale);

  EXPECT_TRUE(rule.Given().empty());
  EXPECT_EQ(sale.SaleResults.size(), 1U);
}

TEST_F(CouponsGiven, ARuleOfTheNumberStarKeepsNone) {
  OpenCouponRule whole = Rule("10", "", "*");
  ProSale sale;
  Calculate(whole, sale);
  EXPECT_TRUE(whole.Given().empty());

  OpenCouponRule cut =
      Rule("10", R"(<CouponType IsDenom="1"/><CouponDenomination><R Denomination="5"/></CouponDenomination>)", "*");
  ProSale other;
  Calculate(cut, other);
  EXPECT_TRUE(cut.Given().empty());
}

// Nothing takes them out between sales.
TEST_F(CouponsGiven, TheyPileUpOverTheSales) {
  OpenCouponRule rule = Rule("10", "");
  ProSale first;
  Calculate(rule, first);
  ProSale second;
  Calculate(rule, second);

  EXPECT_EQ(rule.Values(), (std::vector<std::string>{"10.000000", "10.000000"}));
}

}  // namespace
}  // namespace Corvane
