// The records of a sale, the store that keeps sales by key, and the questions that rules ask of a sale.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/ProError.h"
#include "engine/ProState.h"
#include "engine/SaleCalls.h"
#include "sale/Multiton.h"
#include "sale/ProSale.h"
#include "tests/unit/RuleFixture.h"

using Corvane::Multiton;
using Corvane::ProResult;
using Corvane::ProSale;
using Corvane::ProState;
using Corvane::Text;
using ruletest::Entries;
using ruletest::Line;
using ruletest::Row;

namespace {

// --- Records ---------------------------------------------------------------------------------------------------------

TEST(SaleRecords, ANewSaleIsEmpty) {
  const ProSale sale;
  EXPECT_EQ(sale.OrgCode, nullptr);
  EXPECT_EQ(sale.BillNo, nullptr);
  EXPECT_EQ(sale.IsCalc, nullptr);
  EXPECT_TRUE(sale.Plus.empty());
  EXPECT_TRUE(sale.Pays.empty());
  EXPECT_TRUE(sale.Vips.empty());
  EXPECT_TRUE(sale.SaleResults.empty());
  EXPECT_TRUE(sale.ProGifts.empty());
  EXPECT_TRUE(sale.Gifts.empty());
  EXPECT_TRUE(sale.Coupons.empty());
}

TEST(SaleRecords, ASaleIsDestroyedThroughItsBase) {
  EXPECT_TRUE(std::has_virtual_destructor_v<ProSale>);
  EXPECT_TRUE((std::is_base_of_v<Corvane::ProError, ProSale>));
}

TEST(SaleRecords, ANewLineHoldsNothingButItsTypeAndItsInclusion) {
  const Corvane::SalePlu line;
  EXPECT_STREQ(line.PluType, "PLU");
  EXPECT_STREQ(line.Contain, "IN");
  for (const Text text :
       {line.BillNo, line.PluCode, line.PluID, line.CAT, line.BRD, line.SaleDate, line.SaleTime, line.ClsId}) {
    EXPECT_EQ(text, nullptr);
  }
  for (const double number : {line.Price, line.FinalPrice, line.VipPrice, line.PluCount, line.Total, line.DisNum,
                              line.PackCnt, line.YhBefore}) {
    EXPECT_EQ(number, 0);
  }
  for (const std::int32_t number : {line.SerialNo, line.Index, line.PluDtId, line.PageNo, line.LnNo}) {
    EXPECT_EQ(number, 0);
  }
  EXPECT_TRUE(line.LineClasses.empty());
  EXPECT_TRUE(line.ProResults.empty());
  EXPECT_TRUE(line.Apportions.empty());
}

TEST(SaleRecords, ANewResultHasZeroNumbersAndNoMember) {
  const ProResult row;
  for (const double number : {row.DisNum, row.DisMoney, row.NewPrice, row.BaseMoney, row.YhMoney}) {
    EXPECT_EQ(number, 0);
  }
  EXPECT_FALSE(row.IsVip);
  EXPECT_STREQ(row.VipType, "");
}

TEST(SaleRecords, AnApportionRowIsAResultUnderOtherNames) {
  Corvane::Apportion row;
  row.DisNum = 2;
  row.DisMoney = 3;
  EXPECT_EQ(row.AppNum(), 2);
  EXPECT_EQ(row.AppMoney(), 3);
  row.AppNum() = 7;
  row.AppMoney() = 8;
  EXPECT_EQ(row.DisNum, 7);
  EXPECT_EQ(row.DisMoney, 8);
}

TEST(SaleRecords, OnlyAMemberTypeMarksARowAsAMembers) {
  ProResult row;
  row.SetMember("01");
  EXPECT_TRUE(row.IsVip);
  EXPECT_STREQ(row.VipType, "01");
  row.SetMember("");
  EXPECT_FALSE(row.IsVip);
  row.SetMember(nullptr);
  EXPECT_FALSE(row.IsVip);
  EXPECT_STREQ(row.VipType, "");
}

// --- The store -------------------------------------------------------------------------------------------------------

/// Tells when it dies.
class Tracked : public Multiton<Tracked, std::string> {
 public:
  ~Tracked() { Gone().push_back(Name); }
  static std::vector<std::string>& Gone() {
    static auto* const gone = new std::vector<std::string>;
    return *gone;
  }
  std::string Name;
};

/// A store of its own, empty at first.
class ObjectStore : public testing::Test {
 protected:
  ObjectStore() {
    Tracked::DestroyAll();
    Tracked::Gone().clear();
  }
  ~ObjectStore() override { Tracked::DestroyAll(); }

  static Tracked& Make(const std::string& key) {
    Tracked& made = Tracked::Create(key);
    made.Name = key;
    return made;
  }
};

TEST_F(ObjectStore, FindsNothingUnderAnUnknownKey) { EXPECT_EQ(Tracked::Find("K1"), nullptr); }

TEST_F(ObjectStore, FindsWhatWasCreated) {
  Tracked& made = Make("K1");
  EXPECT_EQ(Tracked::Find("K1"), &made);
}

TEST_F(ObjectStore, FindingCreatesNothing) {
  Tracked::Find("K1");
  EXPECT_EQ(Tracked::Find("K1"), nullptr);
}

TEST_F(ObjectStore, CreatingAgainGivesTheSameObject) {
  Tracked& made = Make("K1");
  EXPECT_EQ(&Tracked::Create("K1"), &made);
  EXPECT_EQ(Tracked::Gone(), std::vector<std::string>{});
}

TEST_F(ObjectStore, KeepsKeysApartByEveryByte) {
  Tracked& made = Make("K1");
  EXPECT_NE(&Make("k1"), &made);
  EXPECT_NE(&Make("K1 "), &made);
  EXPECT_NE(&Make(""), &made);
}

TEST_F(ObjectStore, DestroysTheObjectOfAKey) {
  Make("K1");
  Make("K2");
  Tracked::Destroy("K1");
  EXPECT_EQ(Tracked::Find("K1"), nullptr);
  EXPECT_EQ(Tracked::Gone(), std::vector<std::string>{"K1"});
  EXPECT_EQ(Tracked::Find("K2")->Name, "K2");
}

TEST_F(ObjectStore, ADestroyedKeyStartsAnew) {
  Make("K1");
  Tracked::Destroy("K1");
  EXPECT_EQ(Tracked::Create("K1").Name, "");
}

TEST_F(ObjectStore, DestroyingAnUnknownKeyChangesNothing) {
  Tracked& made = Make("K1");
  Tracked::Destroy("K2");
  EXPECT_EQ(Tracked::Find("K1"), &made);
  EXPECT_EQ(Tracked::Find("K2"), nullptr);
}

TEST_F(ObjectStore, DestroysAllInTheByteOrderOfTheKeys) {
  for (const char* const key : {"b", "单", "a", "B", "10", "9"}) Make(key);
  Tracked::DestroyAll();
  EXPECT_EQ(Tracked::Gone(), (std::vector<std::string>{"10", "9", "B", "a", "b", "单"}));
  EXPECT_EQ(Tracked::Find("a"), nullptr);
}

TEST_F(ObjectStore, WhatWasDestroyedIsNotDestroyedAgain) {
  Make("K1");
  Tracked::Destroy("K1");
  Make("K2");
  Tracked::DestroyAll();
  EXPECT_EQ(Tracked::Gone(), (std::vector<std::string>{"K1", "K2"}));
}

// --- The calls that end sales ----------------------------------------------------------------------------------------

/// The store of sales, empty at first, in an engine that is free.
class SaleStore : public ruletest::WithLog {
 protected:
  SaleStore() { Reset(); }
  ~SaleStore() override { Reset(); }

  static void Reset() {
    ProState::Instance().Set("Free", nullptr);
    ProSale::DestroyAll();
  }

  char m_msg[112] = "untouched";
};

TEST_F(SaleStore, DeletingAnUnknownKeySucceedsAndChangesNothing) {
  const ProSale& sale = ProSale::Create("K1");
  EXPECT_EQ(Corvane::DeleteSaleSetByKey("K2"), 0);
  EXPECT_EQ(ProSale::Find("K1"), &sale);
}

TEST_F(SaleStore, ADeletedSaleStartsEmpty) {
  ProSale::Create("K1").Plus.push_back(Line("G1", 10, 1));
  EXPECT_EQ(Corvane::DeleteSaleSetByKey("K1"), 0);
  EXPECT_EQ(ProSale::Find("K1"), nullptr);
  EXPECT_TRUE(ProSale::Create("K1").Plus.empty());
}

TEST_F(SaleStore, DeletingLooksAtNoState) {
  ProSale::Create("K1");
  ProState::Instance().Set("Init", nullptr);
  EXPECT_EQ(Corvane::DeleteSaleSetByKey("K1"), 0);
  EXPECT_EQ(ProSale::Find("K1"), nullptr);
}

TEST_F(SaleStore, ANullKeyIsTheEmptyKey) {
  ProSale::Create("");
  EXPECT_EQ(Corvane::DeleteSaleSetByKey(nullptr), 0);
  EXPECT_EQ(ProSale::Find(""), nullptr);
}

TEST_F(SaleStore, ClearingDropsAllSales) {
  ProSale::Create("K1");
  ProSale::Create("K2");
  EXPECT_EQ(Corvane::ClearSaleSetForNet(m_msg), 0);
  EXPECT_STREQ(m_msg, "sucess");
  EXPECT_EQ(ProSale::Find("K1"), nullptr);
  EXPECT_EQ(ProSale::Find("K2"), nullptr);
  EXPECT_EQ(Logged(), Entries{});
}

TEST_F(SaleStore, ClearingNoSalesSucceeds) {
  EXPECT_EQ(Corvane::ClearSaleSetForNet(m_msg), 0);
  EXPECT_STREQ(m_msg, "sucess");
}

TEST_F(SaleStore, ClearingLeavesTheEngineFree) {
  Corvane::ClearSaleSetForNet(m_msg);
  EXPECT_EQ(ProState::Instance().Check(m_msg), 1);
}

TEST_F(SaleStore, ClearingIsRefusedAndLoggedWhereTheEngineIsNotFree) {
  const std::pair<Text, Text> rows[] = {
      {"Init", "pro inititalzing"}, {"Using", "pro using"}, {"Clear", "pro cleaning"}};
  Entries expected;
  for (const auto& [word, report] : rows) {
    SCOPED_TRACE(word);
    const ProSale& sale = ProSale::Create("K1");
    ProState::Instance().Set(word, nullptr);
    EXPECT_EQ(Corvane::ClearSaleSetForNet(m_msg), -1);
    EXPECT_STREQ(m_msg, report);
    EXPECT_EQ(ProSale::Find("K1"), &sale);
    expected.emplace_back(report);
    EXPECT_EQ(Logged(), expected);
  }
}

// --- The reset in front of a calculation -----------------------------------------------------------------------------

class SaleReset : public testing::Test {
 protected:
  SaleReset() {
    m_sale.Plus = {Line("G1", 10, 3), Line("G2", 10, 1)};
    m_sale.Plus[0].Total = 24;
    m_sale.Plus[0].FinalPrice = 8;
    m_sale.Plus[0].DisNum = 3;
    for (Corvane::SalePlu& line : m_sale.Plus) {
      line.ProResults = {Row("R1", "PTXS", "PT", 3, 6)};
      line.Apportions = {Row("R1", "PTXS", "PT", 3, 6)};
    }
    m_sale.ProGifts.resize(1);
    m_sale.Gifts.resize(1);
    m_sale.Coupons.resize(1);
    m_sale.SaleResults = {Row("R1", "MZZQ", "PT", 1)};
    m_sale.Pays.resize(1);
    m_sale.Vips.resize(1);
    m_sale.ResetResults();
  }

  ProSale m_sale;
};

TEST_F(SaleReset, EmptiesTheResultsOfEveryLine) {
  for (const Corvane::SalePlu& line : m_sale.Plus) {
    EXPECT_TRUE(line.ProResults.empty());
    EXPECT_TRUE(line.Apportions.empty());
  }
}

TEST_F(SaleReset, EmptiesOffersGiftsAndCoupons) {
  EXPECT_TRUE(m_sale.ProGifts.empty());
  EXPECT_TRUE(m_sale.Gifts.empty());
  EXPECT_TRUE(m_sale.Coupons.empty());
}

TEST_F(SaleReset, LeavesSaleResultsPaymentsAndMembers) {
  EXPECT_EQ(m_sale.SaleResults.size(), 1U);
  EXPECT_EQ(m_sale.Pays.size(), 1U);
  EXPECT_EQ(m_sale.Vips.size(), 1U);
}

TEST_F(SaleReset, LeavesTheLinesAndTheirAmounts) {
  ASSERT_EQ(m_sale.Plus.size(), 2U);
  EXPECT_EQ(m_sale.Plus[0].Total, 24);
  EXPECT_EQ(m_sale.Plus[0].FinalPrice, 8);
  EXPECT_EQ(m_sale.Plus[0].DisNum, 3);
}

// --- What rules ask --------------------------------------------------------------------------------------------------

TEST(SaleTotal, IsZeroWithoutLines) { EXPECT_EQ(ProSale().SaleTotal(), 0); }

TEST(SaleTotal, IsTheSumOverTheLines) {
  ProSale sale;
  sale.Plus = {Line("G1", 10, 1), Line("G2", 2.5, 3), Line("G3", -4, 1)};
  EXPECT_EQ(sale.SaleTotal(), 13.5);
}

struct SaleResultRow {
  Text Primary;
  bool ForDz;
  bool ForPt;
  bool ForDj;
};

TEST(CanApplyToSale, WithoutResultsEveryRuleMay) {
  const ProSale sale;
  EXPECT_TRUE(sale.CanApplyToSale("DZ", "R1"));
  EXPECT_TRUE(sale.CanApplyToSale("PT", "R1"));
  EXPECT_TRUE(sale.CanApplyToSale("DJ", "R1"));
  EXPECT_TRUE(sale.CanApplyToSale(nullptr, nullptr));
}

TEST(CanApplyToSale, ARuleMayOnlyOnce) {
  ProSale sale;
  sale.SaleResults = {Row("R1", "MZZQ", "DJ", 1)};
  EXPECT_FALSE(sale.CanApplyToSale("DJ", "R1"));
  EXPECT_TRUE(sale.CanApplyToSale("DJ", "R2"));
}

// The words of the last four are rule types, and yet it is the stacking class that is compared with them.
TEST(CanApplyToSale, TheStackingClassOfAnotherRulesResultDecides) {
  const SaleResultRow rows[] = {
      {"DZ", false, false, false},   {"PT", true, false, true},     {"DJ", true, true, true},
      {"", true, true, true},        {nullptr, true, true, true},   {"MZHG", true, true, true},
      {"MZZQ", true, true, true},    {"dz", true, true, true},      {"MZMJ", false, false, false},
      {"MZDP", false, false, false}, {"MZZM", false, false, false}, {"MZZP", false, false, false}};
  for (const SaleResultRow& row : rows) {
    SCOPED_TRACE(Corvane::OrEmpty(row.Primary));
    ProSale sale;
    sale.SaleResults = {Row("R2", "MZMJ", row.Primary, 1)};
    EXPECT_EQ(sale.CanApplyToSale("DZ", "R1"), row.ForDz);
    EXPECT_EQ(sale.CanApplyToSale("PT", "R1"), row.ForPt);
    EXPECT_EQ(sale.CanApplyToSale("DJ", "R1"), row.ForDj);
  }
}

TEST(CanApplyToSale, EveryResultIsLookedAt) {
  for (const Text hindering : {"DZ", "MZZM", "PT"}) {
    SCOPED_TRACE(hindering);
    ProSale first;
    first.SaleResults = {Row("R2", "MZMJ", hindering, 1), Row("R3", "MZMJ", "DJ", 1), Row("R4", "MZMJ", "DJ", 1)};
    EXPECT_FALSE(first.CanApplyToSale("PT", "R1"));
    ProSale last;
    last.SaleResults = {Row("R2", "MZMJ", "DJ", 1), Row("R3", "MZMJ", "DJ", 1), Row("R4", "MZMJ", hindering, 1)};
    EXPECT_FALSE(last.CanApplyToSale("PT", "R1"));
  }
}

TEST(CanApplyToSale, ResultsOnLinesDoNotMatter) {
  ProSale sale;
  sale.Plus = {Line("G1", 10, 1)};
  sale.Plus[0].ProResults = {Row("R1", "MZMJ", "DZ", 1)};
  EXPECT_TRUE(sale.CanApplyToSale("PT", "R1"));
}

}  // namespace
