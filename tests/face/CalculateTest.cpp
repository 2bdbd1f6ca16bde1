#include <gmock/gmock.h>

#include "tests/face/Face.h"

using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace Corvane::Testing {
namespace {

class Calculating : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(m_engine.LoadRules().Code, QNC_OK); }

  StoreFolder m_store;
  OpenEngine m_engine{m_store.Path()};
};

TEST_F(Calculating, GivesTheResultAsAText) {
  // Three juices of 2.50 at 1.99: 1.53 off.
  const Told told = m_engine.Calculate("1", "All", SaleXml());
  EXPECT_EQ(told.Code, QNC_OK);
  EXPECT_THAT(told.Text, StartsWith("<?xml"));
  EXPECT_THAT(told.Text, HasSubstr(R"(DisMoney="1.53" ProBillNo="PTXS-01")"));
}

TEST_F(Calculating, TakesOneScannedLineInModeSingle) {
  const std::string two = R"(<Sale OrgCode="01"><Plu><Row SerialNo="1" PluCode="A" PluCount="1" Total="1"/>)"
                          R"(<Row SerialNo="2" PluCode="B" PluCount="1" Total="1"/></Plu></Sale>)";
  EXPECT_EQ(m_engine.Calculate("1", "Single", SaleXml()).Code, QNC_OK);
  const Told told = m_engine.Calculate("1", "Single", two);
  EXPECT_EQ(told.Code, QNC_BAD_VALUE);
  EXPECT_EQ(told.Error,
            "sale: mode Single takes one line, and here are 2; send the line that was scanned, and no other");
  EXPECT_EQ(m_engine.Calculate("1", "Single", "<Sale/>").Code, QNC_BAD_VALUE);
}

TEST_F(Calculating, WithoutKeyModeOrSaleIsRefused) {
  EXPECT_EQ(m_engine.Calculate("", "All", SaleXml()).Code, QNC_BAD_ARGUMENT);
  EXPECT_EQ(m_engine.Calculate("1", "All", "").Code, QNC_BAD_XML);
  const Told told = m_engine.Calculate("1", "all", SaleXml());
  EXPECT_EQ(told.Code, QNC_BAD_ARGUMENT);
  EXPECT_EQ(told.Error, "mode 'all' is none; the modes are Single, All, Union, Zh, MzPromotion, Gift, Pay, Coupon");
  // An unknown word would have merged the sale all the same.
  EXPECT_THAT(m_engine.State().Text, HasSubstr(R"("sales":0)"));
}

TEST_F(Calculating, ARefusedSaleChangesNothing) {
  ASSERT_EQ(m_engine.Calculate("1", "All", SaleXml()).Code, QNC_OK);
  const std::string before = m_engine.Calculate("1", "All", SaleXml()).Text;
  EXPECT_EQ(m_engine.Calculate("1", "All", SaleXml() + "<").Code, QNC_BAD_XML);
  EXPECT_EQ(m_engine.Calculate("1", "All", SaleXml(R"(SerialNo="2" PluCode="A" PluCount="x" Total="1")")).Code,
            QNC_BAD_VALUE);
  EXPECT_EQ(m_engine.Calculate("1", "All", SaleXml()).Text, before);
}

TEST_F(Calculating, TellsWhyAGiftChoiceIsRefused) {
  // The walk "till" up to its refused choice: two bags where one may be taken.
  for (const char* const scan : {"1-scan-washing-powder", "2-scan-olive-oil", "3-scan-orange-juice"}) {
    ASSERT_EQ(m_engine.Calculate("1", "Single", Sample(std::string("sales/till/") + scan + ".xml")).Code, QNC_OK);
  }
  ASSERT_EQ(m_engine.Calculate("1", "All", Sample("sales/till/4-subtotal.xml")).Code, QNC_OK);
  ASSERT_EQ(m_engine.Calculate("1", "MzPromotion", "<Sale/>").Code, QNC_OK);
  const Told told = m_engine.Calculate("1", "Gift", Sample("sales/till/5-gift-two-bags.xml"));
  EXPECT_EQ(told.Code, QNC_NUMBER_OVERFLOW);
  EXPECT_EQ(told.Error, "number overflow: more of a gift was chosen than is offered; choose less and send again");
}

TEST_F(Calculating, ForgetsSales) {
  ASSERT_EQ(m_engine.Calculate("1", "All", SaleXml()).Code, QNC_OK);
  ASSERT_EQ(m_engine.Calculate("2", "All", SaleXml()).Code, QNC_OK);
  EXPECT_EQ(m_engine.Forget("1").Code, QNC_OK);
  EXPECT_EQ(m_engine.Forget("unknown").Code, QNC_OK);
  EXPECT_THAT(m_engine.State().Text, HasSubstr(R"("sales":1)"));
  EXPECT_EQ(qnc_forget_sales(m_engine.Get(), 0, nullptr), QNC_OK);
  EXPECT_THAT(m_engine.State().Text, HasSubstr(R"("sales":0)"));
}

TEST_F(Calculating, ReadsCutOffSalesOnlyWhenAsked) {
  const std::string cutOff = SaleXml().substr(0, SaleXml().size() - 8);
  EXPECT_EQ(m_engine.Calculate("1", "All", cutOff).Code, QNC_BAD_XML);
  const Told told = m_engine.Calculate("1", "All", cutOff, QNC_LENIENT);
  EXPECT_EQ(told.Code, QNC_OK);
  EXPECT_THAT(told.Text, HasSubstr(R"(DisMoney="1.53")"));
}

}  // namespace
}  // namespace Corvane::Testing
