#include <gmock/gmock.h>

#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// "PTOS": of each complete set of pieces of a goods, one piece gets the price.
class Set : public Till {
 protected:
  void SetUp() override {
    Till::SetUp();
    MakeTables();
  }
  static void LoadRule(const std::string& billNo) { ASSERT_EQ(Load("PTOS", RuleXml(billNo, "PTOS")).Code, 0); }
  static Answer Sell(const std::string& lines) {
    const Answer sale = Calc("till", "All", SaleXml(lines));
    EXPECT_EQ(sale.Code, 0);
    EXPECT_EQ(sale.Msg, "sucess");
    return sale;
  }
};

TEST_F(Set, ASetSizeBelowOneGivesNothingIsLoggedOnceAndTheRestGoesOn) {
  for (const std::string size : {"0", "0.5", "-2"}) {
    Sql("delete from tProPrjDirectProAct");
    Put({DirectRow("S1", 421, "BAR").Price("1").SaleCount(size), DirectRow("S1", 2, "NUTS").Price("1").SaleCount("2"),
         DirectRow("S2", 1, "TEA").Price("1").SaleCount("2")});
    LoadRule("S1");
    LoadRule("S2");
    TakeLog();

    const Answer sale = Sell(LineXml(1, "BAR", "10", "5", "50") + LineXml(2, "BAR", "10", "5", "50") +
                             LineXml(3, "NUTS", "10", "2", "20") + LineXml(4, "TEA", "10", "2", "20"));

    EXPECT_THAT(DiscountsOf(sale.Out), ElementsAre("3 NUTS: S1 on 1.00 gives 9.00", "4 TEA: S2 on 1.00 gives 9.00"));
    const auto log = TakeLog();
    EXPECT_EQ(std::count_if(log.begin(), log.end(),
                            [](const auto& entry) {
                              return ::testing::Matches(AllOf(HasSubstr("S1"), HasSubstr("421")))(entry);
                            }),
              1)
        << size;
  }
}

TEST_F(Set, WithoutItsTableARuleGivesNothingAndTheNextSaleIsRight) {
  Put({DirectRow("S1", 1, "BAR").Price("1").SaleCount("2")});
  LoadRule("S1");
  const std::string line = LineXml(1, "BAR", "10", "2", "20");
  Sql("alter table tProPrjDirectProAct rename to Elsewhere");
  TakeLog();

  EXPECT_THAT(DiscountsOf(Sell(line).Out), IsEmpty());
  EXPECT_EQ(Count(TakeLog(), "获取普通类促销详情失败S1"), 1);

  Sql("alter table Elsewhere rename to tProPrjDirectProAct");
  EXPECT_THAT(DiscountsOf(Sell(line).Out), ElementsAre("1 BAR: S1 on 1.00 gives 9.00"));
}

}  // namespace
}  // namespace Corvane::Testing
