#include <gmock/gmock.h>

#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

/// "PTPL": from a minimum quantity on, all of the goods are discounted, those too that came before it was reached.
class Batch : public Till {
 protected:
  void SetUp() override {
    Till::SetUp();
    MakeTables();
  }
  static void LoadRule(const std::string& billNo) { ASSERT_EQ(Load("PTPL", RuleXml(billNo, "PTPL")).Code, 0); }
  static Answer Sell(const std::string& lines) {
    const Answer sale = Calc("till", "All", SaleXml(lines));
    EXPECT_EQ(sale.Code, 0);
    EXPECT_EQ(sale.Msg, "sucess");
    return sale;
  }
};

TEST_F(Batch, WithoutItsTableARuleGivesNothingAndTheNextSaleIsRight) {
  Put({DirectRow("P1", 1, "COLA").Price("8")});
  LoadRule("P1");
  const std::string line = LineXml(1, "COLA", "10", "1", "10");
  Sql("alter table tProPrjDirectProAct rename to Elsewhere");
  TakeLog();

  EXPECT_THAT(LinesOf(Sell(line).Out), ::testing::ElementsAre("1 COLA 1.00 x 10.00 = 10.00"));
  EXPECT_EQ(Count(TakeLog(), "获取普通类促销详情失败P1"), 1);

  Sql("alter table Elsewhere rename to tProPrjDirectProAct");
  EXPECT_THAT(LinesOf(Sell(line).Out), ::testing::ElementsAre("1 COLA 1.00 x 10.00 = 8.00"));
}

}  // namespace
}  // namespace Corvane::Testing
