#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

/// "PTXS": a price, a rate or a reduction for goods, classes and brands, line by line.
class TimeLimit : public Till {
 protected:
  void SetUp() override {
    Till::SetUp();
    MakeTables();
  }
  static void Row(const std::string& values) {
    Sql("insert into tProPrjDirectProAct (BillNo,SerialNo,PluCode,PluType,InRange,DscType,DscPrice,DscRate,SaleCount,"
        "TradeMaxCount) values (" + values + ")");
  }
};

TEST_F(TimeLimit, ASetPriceLowersTheLineToIt) {
  Row("'X1',1,'COLA','PLU','IN','PRC',8,0,0,0");
  ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS")).Code, 0);

  const Answer sale = Calc("till", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  EXPECT_EQ(sale.Code, 0);
  const auto line = RowWhere(sale.Out, "Plu", "SerialNo", "1");
  EXPECT_EQ(line["Total"], "24.00");
  EXPECT_EQ(line["FinalPrice"], "8.0000");
  const auto discount = RowWhere(sale.Out, "ProResult", "ProBillNo", "X1");
  EXPECT_EQ(discount["DisNum"], "3.00");
  EXPECT_EQ(discount["DisMoney"], "6.00");
}

}  // namespace
}  // namespace Corvane::Testing
