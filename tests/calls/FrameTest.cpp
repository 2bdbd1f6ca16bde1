#include <gmock/gmock.h>

#include "qncorvane/qncorvane.h"
#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What every calculation does before its mode: its arguments, the sale of its key, and what it logs on the way.
class Frame : public Till {
 protected:
  /// What the engine holds of a sale: no rule is loaded here, and this mode leaves the sale as it is.
  static std::vector<std::string> Held(const std::string& key) {
    return LinesOf(Calc(key, "MzPromotion", "<Sale/>").Out);
  }
};

// --- Arguments -------------------------------------------------------------------------------------------------------

TEST_F(Frame, TheArgumentsAreKeyModeXmlOutMsg) {
  char out[4096] = "";
  char msg[64] = "";
  const std::string xml = R"(<Sale OrgCode="S01" BillNo="B1" IsCalc="0"/>)";

  EXPECT_EQ(CalcPromotion("till", "All", xml.c_str(), out, msg), 0);

  EXPECT_STREQ(msg, "sucess");
  EXPECT_EQ(std::string(out).rfind("<?xml version=\"1.0\" ?>\n<Sale BillNo=\"B1\" OrgCode=\"S01\">", 0), 0U);
}

TEST_F(Frame, AnEmptyKeyIsNamedFirst) {
  const Answer sale = Calc("", "", "");

  EXPECT_EQ(sale.Code, -1);
  EXPECT_EQ(sale.Msg, "销售单主键为空！");
  EXPECT_EQ(sale.Out, "(untouched)");
  EXPECT_THAT(TakeLog(), ElementsAre("", ":0\n"));
}

TEST_F(Frame, AnEmptyModeIsNamedBeforeAnEmptySale) {
  const Answer sale = Calc("till", "", "");

  EXPECT_EQ(sale.Code, -1);
  EXPECT_EQ(sale.Msg, "计算方式为空！");
  EXPECT_THAT(TakeLog(), ElementsAre("", "till:0\n"));
}

TEST_F(Frame, AnEmptySaleIsRefusedAndWhatIsHeldOfItStays) {
  Calc("till", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));
  TakeLog();

  const Answer sale = Calc("till", "All", "");

  EXPECT_EQ(sale.Code, -1);
  EXPECT_EQ(sale.Msg, "销售单为空！");
  EXPECT_THAT(TakeLog(), ElementsAre("All", "till:0\n"));
  EXPECT_THAT(Held("till"), ElementsAre("1 COLA 3.00 x 10.00 = 30.00"));
}

TEST_F(Frame, AnEmptySaleIsNoSale) {
  EXPECT_EQ(Calc("till", "All", "").Code, -1);

  EXPECT_THAT(Held("till"), IsEmpty());
}

// --- Modes -----------------------------------------------------------------------------------------------------------

TEST_F(Frame, ModesAreExactAndTheSaleHasBeenReadByThen) {
  const Answer sale = Calc("till", "single", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  EXPECT_EQ(sale.Code, -1);
  EXPECT_EQ(sale.Msg, "sucess");
  EXPECT_EQ(sale.Out, "(untouched)");
  EXPECT_THAT(TakeLog(), ElementsAre("single", "till:0\n", "开始初始化流水", "初始化流水完成", "sucess"));
  EXPECT_THAT(Held("till"), ElementsAre("1 COLA 3.00 x 10.00 = 30.00"));
}

TEST_F(Frame, AModeWithABlankIsNoMode) {
  for (const std::string mode : {"All ", " All", "ALL", "all", "Mz", "Gifts", "0", " "}) {
    const Answer sale = Calc("till", mode, "<Sale/>");
    EXPECT_EQ(sale.Code, -1) << mode;
    EXPECT_EQ(sale.Msg, "sucess") << mode;
  }
}

TEST_F(Frame, EveryModeNeedsNoMoreThanARootElement) {
  for (const std::string mode : {"All", "Union", "Zh", "MzPromotion", "Gift", "Pay", "Coupon"}) {
    const Answer sale = Calc("till", mode, "<Anything/>");
    EXPECT_EQ(sale.Code, 0) << mode;
    EXPECT_EQ(sale.Msg, "sucess") << mode;
  }
}

TEST_F(Frame, ATextWithoutARootElementIsReadAsNothingAndTheModeRunsOn) {
  for (const std::string text : {"garbage", " ", "<!-- nothing -->", "<?xml version=\"1.0\"?>", "&amp;", ">"}) {
    const Answer sale = Calc("till", "All", text);
    EXPECT_EQ(sale.Code, 0) << text;
    EXPECT_EQ(sale.Msg, "sucess") << text;
    EXPECT_EQ(sale.Out,
              "<?xml version=\"1.0\" ?>\n"
              "<Sale BillNo=\"\" OrgCode=\"\">\n"
              "    <Plu />\n"
              "    <ProResult />\n"
              "    <Apportion />\n"
              "    <ProGifts />\n"
              "    <ProCoupons />\n"
              "</Sale>\n")
        << text;
  }
}

TEST_F(Frame, ASingleWithTwoLinesHasNoLineToWorkOnAndBothLinesWereRead) {
  const Answer sale =
      Calc("till", "Single", SaleXml(LineXml(1, "COLA", "10", "3", "30") + LineXml(2, "TEA", "2", "1", "2")));

  EXPECT_EQ(sale.Code, -1);
  EXPECT_EQ(sale.Msg, "unknow error");
  EXPECT_EQ(sale.Out, "(untouched)");
  EXPECT_FALSE(Holds(TakeLog(), "unknow error"));
  EXPECT_THAT(Held("till"), ElementsAre("1 COLA 3.00 x 10.00 = 30.00", "2 TEA 1.00 x 2.00 = 2.00"));
}

TEST_F(Frame, ASingleOnASaleWithoutLinesHasNoLineToWorkOn) {
  for (const std::string text : {"<Sale/>", "<Sale><Plu/></Sale>", "garbage"}) {
    const Answer sale = Calc("till", "Single", text);
    EXPECT_EQ(sale.Code, -1) << text;
    EXPECT_EQ(sale.Msg, "unknow error") << text;
    EXPECT_EQ(sale.Out, "(untouched)") << text;
  }
}

TEST_F(Frame, TheNextCallAfterAFailureWorks) {
  Calc("till", "Single", "<Sale/>");

  const Answer sale = Calc("till", "Single", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  EXPECT_EQ(sale.Code, 0);
  EXPECT_EQ(sale.Msg, "sucess");
  EXPECT_EQ(State(), "Free");
}

// --- An empty registry -----------------------------------------------------------------------------------------------

TEST_F(Frame, WithoutRulesTheSaleComesBackAsItIsAndTheCallIsASuccess) {
  const Answer sale =
      Calc("till", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30") + LineXml(2, "TEA", "2.5", "1", "2.5")));

  EXPECT_EQ(sale.Code, 0);
  EXPECT_EQ(sale.Msg, "sucess");
  EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 30.00", "2 TEA 1.00 x 2.50 = 2.50"));
  EXPECT_THAT(DiscountsOf(sale.Out), IsEmpty());
}

TEST_F(Frame, WithoutRulesTheLogIsTheFramesAlone) {
  Calc("till", "MzPromotion", "<Sale/>");

  EXPECT_THAT(TakeLog(), ElementsAre("MzPromotion", "till:0\n", "开始初始化流水", "初始化流水完成"));
}

TEST_F(Frame, TheNumberOfRulesIsLoggedBehindTheKey) {
  for (int rule = 1; rule <= 12; ++rule) Load("MZMJ", RuleXml("M" + std::to_string(rule), "MZMJ"));

  Calc("销售 7", "Zh", "<Sale/>");

  EXPECT_THAT(TakeLog(), ElementsAre("Zh", "销售 7:12\n", "开始初始化流水", "初始化流水完成", "计算模式为Zh时"));
}

// --- Keys ------------------------------------------------------------------------------------------------------------

TEST_F(Frame, SalesOfDifferentKeysDoNotMix) {
  Calc("till", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));
  Calc("Till", "All", SaleXml(LineXml(1, "TEA", "2", "1", "2")));
  Calc("till ", "All", SaleXml(LineXml(1, "RICE", "5", "1", "5")));

  EXPECT_THAT(Held("till"), ElementsAre("1 COLA 3.00 x 10.00 = 30.00"));
  EXPECT_THAT(Held("Till"), ElementsAre("1 TEA 1.00 x 2.00 = 2.00"));
  EXPECT_THAT(Held("till "), ElementsAre("1 RICE 1.00 x 5.00 = 5.00"));
}

TEST_F(Frame, AKeyIsAnyText) {
  const std::vector<std::string> keys = {"收银台 1", "'; drop table t; --", "a\nb", "<&\">", std::string(5000, 'k')};
  for (const std::string& key : keys) {
    Calc(key, "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));
    EXPECT_THAT(Held(key), ElementsAre("1 COLA 3.00 x 10.00 = 30.00"));
    EXPECT_EQ(DeleteSaleSetByKey(key.c_str()), 0);
    EXPECT_THAT(Held(key), IsEmpty());
  }
}

TEST_F(Frame, AForgottenSaleStartsAgainEmpty) {
  Calc("till", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  EXPECT_EQ(DeleteSaleSetByKey("till"), 0);

  const Answer sale = Calc("till", "MzPromotion", "<Sale/>");
  EXPECT_THAT(LinesOf(sale.Out), IsEmpty());
  EXPECT_NE(sale.Out.find("<Sale BillNo=\"\" OrgCode=\"\">"), std::string::npos);
}

TEST_F(Frame, ForgettingAnUnknownSaleChangesNothing) {
  Calc("till", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));

  EXPECT_EQ(DeleteSaleSetByKey("other"), 0);

  EXPECT_THAT(Held("till"), ElementsAre("1 COLA 3.00 x 10.00 = 30.00"));
}

TEST_F(Frame, ClearingSalesClearsThemAll) {
  Calc("a", "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));
  Calc("b", "All", SaleXml(LineXml(1, "TEA", "2", "1", "2")));

  EXPECT_EQ(ClearSales().Msg, "sucess");

  EXPECT_THAT(Held("a"), IsEmpty());
  EXPECT_THAT(Held("b"), IsEmpty());
}

}  // namespace
}  // namespace Corvane::Testing
