#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

/// "MZZF": who pays so much in a named way gets a part of it back.
class PayReduction : public FullAmount {
 protected:
  /// 10.00 back for each 100.00 paid by card.
  static std::string TenOfHundred() { return Steps(R"(<Row DisPrice="100" DisRate="90"/>)"); }
  static std::string Steps(const std::string& rows) { return "<PluAction>" + rows + "</PluAction>"; }
  static std::string Control(const std::string& priceTotal = "1000") {
    return "<ProCtr><Row PayType=\"CARD\" PriceTotal=\"" + priceTotal + "\"/></ProCtr>";
  }
  static void Pay(const std::string& groups) { LoadRule("P1", "MZZF", "", groups); }

  static std::string Paid(const std::string& money) { return "<Row PayMode=\"CARD\" PayMoney=\"" + money + "\"/>"; }
  static std::string OneLine(const std::string& total, const std::string& payments) {
    return SaleXml(LineXml(1, "A", total, "1", total), "<PayMode>" + payments + "</PayMode>");
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

}  // namespace
}  // namespace Corvane::Testing
