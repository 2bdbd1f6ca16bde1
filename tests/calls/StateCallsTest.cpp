#include <gmock/gmock.h>

#include <fstream>

#include "qncorvane/qncorvane.h"
#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Which call runs in which state, and what each says when it doesn't.
class StateCalls : public Till {};

// --- Before anything was called --------------------------------------------------------------------------------------

TEST_F(FreshTill, TheStateIsFreeBeforeAnyOtherCall) {
  InFreshProcess([] { EXPECT_EQ(State(), "Free"); });
}

TEST_F(FreshTill, WithoutSettingsLoadingDoesNotBeginAndTheStateStaysInit) {
  InFreshProcess([] {
    EXPECT_EQ(BeginInitPro(), -1);

    EXPECT_EQ(State(), "Init");
    EXPECT_THAT(TakeLog(), ElementsAre("数据库连接失败"));
  });
}

TEST_F(FreshTill, WithADatabaseThatCannotBeOpenedTheTillIsLockedUntilLoadingIsFinished) {
  InFreshProcess([] {
    WriteSettings("SQLITE", Directory() + "/no/such/directory/store.db");

    EXPECT_EQ(BeginInitPro(), -1);
    EXPECT_EQ(State(), "Init");
    EXPECT_THAT(TakeLog(), ElementsAre("数据库连接失败"));

    EXPECT_EQ(BeginInitPro(), -1);
    EXPECT_EQ(Calc("till", "All", SaleXml("")).Msg, "pro inititalzing");
    EXPECT_EQ(Clear("*").Msg, "pro inititalzing");
    EXPECT_EQ(ClearSales().Msg, "pro inititalzing");
    EXPECT_EQ(State(), "Init");

    EXPECT_EQ(FinishInitPro(), 0);
    EXPECT_EQ(State(), "Free");
    EXPECT_EQ(Calc("till", "All", SaleXml("")).Code, 0);
  });
}

TEST_F(FreshTill, WithADatabaseThatCannotBeOpenedRulesGiveNothingAndTheSaleGoesOn) {
  InFreshProcess([] {
    WriteSettings("SQLITE", Directory() + "/no/such/directory/store.db");
    ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS")).Code, 0);

    const Answer sale = Calc("till", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

    EXPECT_EQ(sale.Code, 0);
    EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 30.00"));
    EXPECT_EQ(Count(TakeLog(), "获取普通类促销详情失败X1"), 1);
  });
}

TEST_F(FreshTill, AnUnknownKindOfDatabaseCannotBeOpened) {
  InFreshProcess([] {
    WriteSettings("PAPER", "ledger");

    EXPECT_EQ(BeginInitPro(), -1);
    EXPECT_EQ(State(), "Init");
  });
}

TEST_F(FreshTill, AHostThatNeverBeginsLoadingGetsItsRowsAllTheSame) {
  InFreshProcess([] {
    WriteSettings("sqlite", Directory() + "/store.db");
    MakeTables();
    Put({DirectRow("X1", 1, "COLA").Price("8")});
    ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS")).Code, 0);

    const Answer sale = Calc("till", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

    EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 24.00"));
  });
}

// --- Loading ---------------------------------------------------------------------------------------------------------

TEST_F(StateCalls, LoadingTakesTheStateFromFreeToInitAndBack) {
  EXPECT_EQ(State(), "Free");

  EXPECT_EQ(BeginInitPro(), 0);
  EXPECT_EQ(State(), "Init");
  EXPECT_THAT(TakeLog(), ElementsAre("数据库连接成功"));

  EXPECT_EQ(FinishInitPro(), 0);
  EXPECT_EQ(State(), "Free");
  EXPECT_THAT(TakeLog(), IsEmpty());
}

TEST_F(StateCalls, ASecondBeginIsRefusedAndTheStateStaysInit) {
  ASSERT_EQ(BeginInitPro(), 0);
  TakeLog();

  EXPECT_EQ(BeginInitPro(), -1);

  EXPECT_EQ(State(), "Init");
  EXPECT_THAT(TakeLog(), IsEmpty());
}

TEST_F(StateCalls, FinishingInFreeChangesNothing) {
  EXPECT_EQ(FinishInitPro(), 0);

  EXPECT_EQ(State(), "Free");
  EXPECT_THAT(TakeLog(), IsEmpty());
}

TEST_F(StateCalls, RulesLoadInAnyState) {
  EXPECT_EQ(Load("PTXS", RuleXml("X1", "PTXS")).Msg, "sucess");
  ASSERT_EQ(BeginInitPro(), 0);

  EXPECT_EQ(Load("PTXS", RuleXml("X2", "PTXS")).Msg, "sucess");

  EXPECT_EQ(State(), "Init");
}

// --- What "Init" refuses ---------------------------------------------------------------------------------------------

TEST_F(StateCalls, WhileLoadingACalculationIsRefusedAndTheRefusalLogged) {
  ASSERT_EQ(BeginInitPro(), 0);
  TakeLog();

  const Answer sale = Calc("till", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  EXPECT_EQ(sale.Code, -1);
  EXPECT_EQ(sale.Msg, "pro inititalzing");
  EXPECT_EQ(sale.Out, "(untouched)");
  EXPECT_THAT(TakeLog(), ElementsAre("All", "pro inititalzing"));
  // The line never arrived.
  FinishInitPro();
  EXPECT_THAT(LinesOf(Calc("till", "MzPromotion", "<Sale/>").Out), IsEmpty());
}

TEST_F(StateCalls, WhileLoadingAClearOfRulesIsRefusedWithoutALogEntry) {
  ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS")).Code, 0);
  ASSERT_EQ(BeginInitPro(), 0);
  TakeLog();

  const Answer clear = Clear("*");

  EXPECT_EQ(clear.Code, -1);
  EXPECT_EQ(clear.Msg, "pro inititalzing");
  EXPECT_THAT(TakeLog(), IsEmpty());
  FinishInitPro();
  Calc("till", "Zh", "<Sale/>");
  EXPECT_TRUE(Holds(TakeLog(), "till:1\n"));
}

TEST_F(StateCalls, WhileLoadingAClearOfSalesIsRefusedLoggedAndAllSalesStay) {
  Calc("till", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));
  ASSERT_EQ(BeginInitPro(), 0);
  TakeLog();

  const Answer clear = ClearSales();

  EXPECT_EQ(clear.Code, -1);
  EXPECT_EQ(clear.Msg, "pro inititalzing");
  EXPECT_THAT(TakeLog(), ElementsAre("pro inititalzing"));
  FinishInitPro();
  EXPECT_THAT(LinesOf(Calc("till", "MzPromotion", "<Sale/>").Out), ElementsAre("1 COLA 3.00 x 10.00 = 30.00"));
}

TEST_F(StateCalls, WhileLoadingASaleCanBeForgotten) {
  Calc("till", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));
  ASSERT_EQ(BeginInitPro(), 0);

  EXPECT_EQ(DeleteSaleSetByKey("till"), 0);

  FinishInitPro();
  EXPECT_THAT(LinesOf(Calc("till", "MzPromotion", "<Sale/>").Out), IsEmpty());
}

// --- What "Free" lets run --------------------------------------------------------------------------------------------

TEST_F(StateCalls, EveryCallLeavesTheStateFree) {
  EXPECT_EQ(Calc("till", "All", SaleXml("")).Code, 0);
  EXPECT_EQ(State(), "Free");
  EXPECT_EQ(Calc("till", "all", SaleXml("")).Code, -1);
  EXPECT_EQ(State(), "Free");
  EXPECT_EQ(Clear("*").Msg, "sucess");
  EXPECT_EQ(State(), "Free");
  EXPECT_EQ(ClearSales().Msg, "sucess");
  EXPECT_EQ(State(), "Free");
}

TEST_F(StateCalls, ClearingWhenThereIsNothingToClearIsASuccess) {
  EXPECT_EQ(Clear("*").Code, 0);
  EXPECT_EQ(Clear("X1").Msg, "sucess");
  EXPECT_EQ(ClearSales().Code, 0);
  EXPECT_EQ(ClearSales().Msg, "sucess");
  EXPECT_EQ(DeleteSaleSetByKey("nobody"), 0);
}

TEST_F(StateCalls, TheStateIsWrittenIntoTheHostsBufferWhichComesBack) {
  char word[16] = "";

  EXPECT_EQ(GetState(word), word);

  EXPECT_STREQ(word, "Free");
}

// --- Null pointers ---------------------------------------------------------------------------------------------------

TEST_F(StateCalls, NullBuffersAreLeftAlone) {
  EXPECT_EQ(GetState(nullptr), nullptr);
  EXPECT_EQ(InitPromotion("PTXS", RuleXml("X1", "PTXS").c_str(), nullptr), 0);
  EXPECT_EQ(InitPromotion("NONE", "<x/>", nullptr), -1);
  EXPECT_EQ(CalcPromotion("till", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")).c_str(), nullptr, nullptr), 0);
  EXPECT_EQ(CalcPromotion("till", "none", "<Sale/>", nullptr, nullptr), -1);
  EXPECT_EQ(CalcPromotion("", "All", "<Sale/>", nullptr, nullptr), -1);
  EXPECT_EQ(ClearPromotion(nullptr, "*"), 0);
  EXPECT_EQ(ClearSaleSetForNet(nullptr), 0);
  ASSERT_EQ(BeginInitPro(), 0);
  EXPECT_EQ(CalcPromotion("till", "All", "<Sale/>", nullptr, nullptr), -1);
  EXPECT_EQ(ClearPromotion(nullptr, "*"), -1);
  EXPECT_EQ(ClearSaleSetForNet(nullptr), -1);
}

TEST_F(StateCalls, NullTextsCountAsEmpty) {
  char out[64] = "(untouched)";
  char msg[64] = "";

  EXPECT_EQ(CalcPromotion(nullptr, "All", "<Sale/>", out, msg), -1);
  EXPECT_STREQ(msg, "销售单主键为空！");
  EXPECT_EQ(CalcPromotion("till", nullptr, "<Sale/>", out, msg), -1);
  EXPECT_STREQ(msg, "计算方式为空！");
  EXPECT_EQ(CalcPromotion("till", "All", nullptr, out, msg), -1);
  EXPECT_STREQ(msg, "销售单为空！");
  EXPECT_STREQ(out, "(untouched)");
  EXPECT_EQ(InitPromotion(nullptr, nullptr, msg), -1);
  EXPECT_STREQ(msg, "pro initialize failed");
  EXPECT_EQ(InitPromotion("PTXS", nullptr, msg), 0);
  EXPECT_STREQ(msg, "sucess");
  EXPECT_EQ(DeleteSaleSetByKey(nullptr), 0);
}

TEST_F(StateCalls, AClearOfTheNullNumberLeavesRulesThatHaveANumber) {
  ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS")).Code, 0);
  char msg[64] = "";

  EXPECT_EQ(ClearPromotion(msg, nullptr), 0);

  EXPECT_STREQ(msg, "sucess");
  Calc("till", "Zh", "<Sale/>");
  EXPECT_TRUE(Holds(TakeLog(), "till:1\n"));
}

}  // namespace
}  // namespace Corvane::Testing
