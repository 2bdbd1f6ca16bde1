#include <gmock/gmock.h>

#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// "PTXS": a price, a rate or a reduction for goods, classes and brands, line by line.
class TimeLimit : public Till {
 protected:
  void SetUp() override {
    Till::SetUp();
    MakeTables();
  }
  static void LoadRule(const std::string& billNo) { ASSERT_EQ(Load("PTXS", RuleXml(billNo, "PTXS")).Code, 0); }
  static Answer Sell(const std::string& lines) {
    const Answer sale = Calc("till", "All", SaleXml(lines));
    EXPECT_EQ(sale.Code, 0);
    EXPECT_EQ(sale.Msg, "sucess");
    return sale;
  }
};

TEST_F(TimeLimit, AReturnedOrEmptyLineGetsNothing) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "-1", "-10") + LineXml(2, "COLA", "10", "0", "0"));

  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA -1.00 x 10.00 = -10.00", "2 COLA 0.00 x 10.00 = 0.00"));
  EXPECT_THAT(DiscountsOf(sale.Out), IsEmpty());
}

TEST_F(TimeLimit, ARowThatTwoLinesAskForIsHeldOnce) {
  Put({DirectRow("X1", 1, "ACME", "BRD").Price("8")});
  LoadRule("X1");

  Sell(LineXml(1, "COLA", "10", "1", "10", R"(BRD="ACME")") + LineXml(2, "SOAP", "10", "1", "10", R"(BRD="ACME")"));

  // Twice a line: what is open, and again when the one row is applied.
  EXPECT_EQ(Count(TakeLog(), "促销类型：PTXS"), 4);
}

TEST_F(TimeLimit, ASecondRowOfTheSameNumberIsNotRead) {
  Sql("drop table tProPrjDirectProAct;"
      "create table tProPrjDirectProAct (BillNo,SerialNo,PluCode,PluType,InRange,DscType,DscPrice,DscRate,SaleCount,"
      "TradeMaxCount)");
  Put({DirectRow("X1", 7, "COLA").Price("8"), DirectRow("X1", 7, "FANTA").Price("8")});
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "FANTA", "10", "1", "10") + LineXml(2, "COLA", "10", "1", "10"));

  // Line 1 brings its row in as number 7; the row for line 2 has the same number.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 FANTA: X1 on 1.00 gives 2.00"));
}

TEST_F(TimeLimit, ARowsTextsAndNumbersMayBeNull) {
  Sql("insert into tProPrjDirectProAct values ('X1',1,'COLA','PLU','IN',null,null,null,null,null),"
      "('X1',2,'FANTA','PLU',null,'PRC',8,0,0,0),('X1',3,'TEA','PLU','IN','RAT',null,null,null,null)");
  LoadRule("X1");

  const Answer sale = Sell(LineXml(1, "COLA", "10", "1", "10") + LineXml(2, "FANTA", "10", "1", "10") +
                           LineXml(3, "TEA", "10", "1", "10"));

  // No kind of price gives a row of nothing, no range no effect, no rate nothing off.
  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 COLA: X1 on 1.00 gives 0.00"));
}

TEST_F(TimeLimit, WithoutItsTableARuleGivesNothingAndTheSaleGoesOn) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("X1");
  const std::string line = LineXml(1, "COLA", "10", "1", "10");
  Sql("alter table tProPrjDirectProAct rename to Elsewhere");
  TakeLog();

  EXPECT_THAT(LinesOf(Sell(line).Out), ElementsAre("1 COLA 1.00 x 10.00 = 10.00"));
  const auto log = TakeLog();
  EXPECT_EQ(Count(log, "获取普通类促销详情失败X1"), 1);
  EXPECT_EQ(Count(log, "获取普通类促销详情成功X1"), 0);

  Sql("alter table Elsewhere rename to tProPrjDirectProAct");
  EXPECT_THAT(LinesOf(Sell(line).Out), ElementsAre("1 COLA 1.00 x 10.00 = 8.00"));
  EXPECT_EQ(Count(TakeLog(), "获取普通类促销详情成功X1"), 1);
}

TEST_F(TimeLimit, WithoutAColumnARuleGivesNothingAndTheSaleGoesOn) {
  Put({DirectRow("X1", 1, "COLA").Price("8")});
  LoadRule("X1");
  Sql("alter table tProPrjDirectProAct rename column DscRate to Rate");
  TakeLog();

  EXPECT_THAT(LinesOf(Sell(LineXml(1, "COLA", "10", "1", "10")).Out), ElementsAre("1 COLA 1.00 x 10.00 = 10.00"));
  EXPECT_EQ(Count(TakeLog(), "获取普通类促销详情失败X1"), 1);
}

TEST_F(TimeLimit, ACodeWithAQuoteGetsItsDiscount) {
  Put({DirectRow("X1", 1, "O''LEARY").Price("8"), DirectRow("X1", 2, "L''OR", "BRD").Price("7")});
  LoadRule("X1");
  TakeLog();

  const Answer sale =
      Sell(LineXml(1, "O'LEARY", "10", "1", "10") + LineXml(2, "COLA", "10", "1", "10", R"(BRD="L'OR")"));

  EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("1 O'LEARY: X1 on 1.00 gives 2.00", "2 COLA: X1 on 1.00 gives 3.00"));
  EXPECT_EQ(Count(TakeLog(), "获取普通类促销详情成功X1"), 2);
}

}  // namespace
}  // namespace Corvane::Testing
