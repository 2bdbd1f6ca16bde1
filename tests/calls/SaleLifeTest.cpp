// What a sale, its rules and its results hold of each other while rules are replaced and cleared and sales deleted.
// Under AddressSanitizer, a text that is read after its end fails these tests.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <vector>

#include "qncorvane/qncorvane.h"
#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

using ::testing::IsSupersetOf;

/// Two sales under rules that leave in them all that a rule can leave: rows on lines with a member's type, sale-level
/// rows, gift offers and coupons.
class SaleLife : public Till {
 protected:
  void SetUp() override {
    Till::SetUp();
    MakeTables();
    Put({DirectRow("X1", 1, "COLA").Price("8")});
    Sql("insert into tProMzScheme (BillNo,SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum,"
        "AddDscNum,SaleMaxIn,DscPrice) values ('G1',1,'MUG','SUM',10,'NUM',1,0,0,1,0);"
        "insert into tProMzConPluSet (BillNo,SerialNo,PluCode,PluType,InRange) values ('G1',1,'COLA','PLU','IN');");
  }

  static std::string Member() { return R"(<Vip><R VipType="member of a long and separate name"/></Vip>)"; }
  static std::string AnyMember() { return R"(<Vip><R VipType="*"/></Vip>)"; }

  static void LoadDiscount() { ASSERT_EQ(Load("PTXS", RuleXml("X1", "PTXS", "", AnyMember())).Code, 0); }
  static void LoadGift() { ASSERT_EQ(Load("MZZP", RuleXml("G1", "MZZP", R"(Primary="DJ")")).Code, 0); }
  static void LoadCoupons() {
    ASSERT_EQ(Load("MZYQ", RuleXml("Q1", "MZZQ", R"(Primary="DJ")",
                                   "<ProList ConAreaType=\"ALL\"><PluAddAction><R BaseConNum=\"20\" BaseDscNum=\"5\"/>"
                                   "</PluAddAction><CouponType LimitType=\"1\" LimitDay=\"9\"/></ProList>"))
                  .Code,
              0);
  }
  static void LoadAll() {
    LoadDiscount();
    LoadGift();
    LoadCoupons();
  }

  static std::string Sale(const std::string& key) {
    return "<Sale OrgCode=\"S01\" BillNo=\"the number of the sale " + key + "\" IsCalc=\"0\"><Plu>" +
           LineXml(1, "COLA", "10", "3", "30", "CAT=\"a category of its own\" ClsId=\"class of " + key + "\"") +
           "</Plu>" + Member() + "</Sale>";
  }
  static void Fill(const std::string& key) {
    ASSERT_EQ(Calc(key, "All", Sale(key)).Code, 0);
    ASSERT_EQ(Calc(key, "MzPromotion", "<Sale/>").Code, 0);
  }

  /// Reads every text that the sale holds, its own and those of rules that may be gone.
  static void ExpectWholeSale(const std::string& key) {
    const Answer answer = Calc(key, "Gift", "<Sale/>");
    ASSERT_EQ(answer.Code, 0);
    EXPECT_THAT(answer.Out, ::testing::HasSubstr("BillNo=\"the number of the sale " + key + "\""));
    EXPECT_THAT(DiscountsOf(answer.Out), IsSupersetOf({"1 COLA: X1 on 3.00 gives 6.00", "*: Q1 on 0.00 gives 5.00"}));
    const Row discount = RowWhere(answer.Out, "ProResult", "ProBillNo", "X1");
    EXPECT_EQ(discount["VipType"], "member of a long and separate name");
    EXPECT_EQ(RowsOf(answer.Out, "Plu").at(0)["ClsId"], "class of " + key);
    ASSERT_EQ(OffersOf(answer.Out).size(), 1U);
    EXPECT_EQ(OffersOf(answer.Out)[0].Rows.at(0)["PluCode"], "MUG");
    EXPECT_EQ(OffersOf(answer.Out)[0].Head["ProBillNo"], "G1");
  }
  static void ExpectEmptySale(const std::string& key) {
    const Answer answer = Calc(key, "Gift", "<Sale/>");
    EXPECT_THAT(answer.Out, ::testing::HasSubstr("<Sale BillNo=\"\" OrgCode=\"\">"));
    EXPECT_THAT(RowsOf(answer.Out, "Plu"), ::testing::IsEmpty());
    ASSERT_EQ(DeleteSaleSetByKey(key.c_str()), 0);
  }
};

TEST_F(SaleLife, ResultsOutliveTheirRules) {
  LoadAll();
  Fill("first");
  ASSERT_EQ(Clear("*").Code, 0);

  ExpectWholeSale("first");
}

TEST_F(SaleLife, ADeletedSaleTakesNothingFromItsNeighbour) {
  LoadAll();
  Fill("first");
  Fill("second");
  ASSERT_EQ(DeleteSaleSetByKey("first"), 0);

  ExpectWholeSale("second");
  ExpectEmptySale("first");
}

// A rule has seen the texts of a sale that is gone: nothing of them may be left in it.
TEST_F(SaleLife, ARuleGoesOnBehindADeletedSale) {
  LoadAll();
  for (const char* const key : {"first", "second", "third"}) {
    Fill(key);
    ExpectWholeSale(key);
    ASSERT_EQ(DeleteSaleSetByKey(key), 0);
  }
  Fill("fourth");
  ASSERT_EQ(ClearSales().Code, 0);
  Fill("fifth");
  ExpectWholeSale("fifth");
}

TEST_F(SaleLife, ASaleThatIsSentAgainUnderItsKeyStartsAnew) {
  LoadAll();
  Fill("first");
  ASSERT_EQ(DeleteSaleSetByKey("first"), 0);
  Fill("first");

  ExpectWholeSale("first");
}

// All 120 orders of five steps; whatever stands between them is read after every one.
TEST_F(SaleLife, RulesAreReplacedAndClearedAndSalesDeletedInEveryOrder) {
  struct {
    bool First = true;
    bool Second = true;
  } stands;
  const std::array<std::function<void()>, 5> steps = {
      [] {
        LoadDiscount();
        LoadCoupons();
      },
      [] { EXPECT_EQ(Clear("G1").Code, 0); },
      [] { EXPECT_EQ(Clear("*").Code, 0); },
      [&] {
        EXPECT_EQ(DeleteSaleSetByKey("first"), 0);
        stands.First = false;
      },
      [&] {
        EXPECT_EQ(DeleteSaleSetByKey("second"), 0);
        stands.Second = false;
      },
  };
  std::array<int, 5> order = {0, 1, 2, 3, 4};
  do {
    SCOPED_TRACE(::testing::PrintToString(order));
    LoadAll();
    Fill("first");
    Fill("second");
    stands = {};
    for (const int step : order) {
      steps[static_cast<std::size_t>(step)]();
      if (stands.First) ExpectWholeSale("first");
      if (stands.Second) ExpectWholeSale("second");
      if (HasFatalFailure() || HasNonfatalFailure()) return;
    }
    ASSERT_EQ(Clear("*").Code, 0);
  } while (std::next_permutation(order.begin(), order.end()));
}

}  // namespace
}  // namespace Corvane::Testing
