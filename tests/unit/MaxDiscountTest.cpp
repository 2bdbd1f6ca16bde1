// The money ceiling of a rule.
#include "rule/MaxDiscount.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "tests/unit/RuleFixture.h"

using Corvane::LimitByMaxDiscount;
using Corvane::LimitLog;
using Corvane::ProInfo;
using Corvane::ProSale;
using Corvane::Text;
using ruletest::Entries;
using ruletest::Line;
using ruletest::Row;
using ruletest::Rule;

namespace {

using Moneys = std::vector<double>;

class MaxDiscount : public ruletest::WithLog {
 protected:
  /// A line for each amount that the rule "R1" gave.
  void Give(const Moneys& moneys) {
    for (const double money : moneys) {
      m_sale.Plus.push_back(Line("G1", 100, 1));
      m_sale.Plus.back().ProResults = {Row("R1", "PTXS", "PT", 1, money, 100)};
      m_sale.Plus.back().Apportions = m_sale.Plus.back().ProResults;
    }
  }

  static ProInfo Ceiling(double money) {
    ProInfo rule = Rule("R1", "PTXS", "PT");
    rule.MaxYhType = "1";
    rule.MaxYhValue = money;
    return rule;
  }

  /// What the rows of "R1" hold now.
  Moneys Held() const {
    Moneys held;
    for (const Corvane::SalePlu& line : m_sale.Plus) {
      for (const Corvane::ProResult& row : line.ProResults) {
        if (Corvane::Same(row.ProBillNo, "R1")) held.push_back(row.DisMoney);
      }
    }
    return held;
  }

  ProSale m_sale;
};

TEST_F(MaxDiscount, OnlyALimitOfTheKindOneIsMoney) {
  for (const Text kind : {"2", "", "01", "1 ", static_cast<Text>(nullptr)}) {
    SCOPED_TRACE(Corvane::OrEmpty(kind));
    m_sale.Plus.clear();
    Give({100});
    ProInfo rule = Ceiling(50);
    rule.MaxYhType = kind;
    LimitByMaxDiscount(rule, m_sale);
    EXPECT_EQ(Held(), (Moneys{100}));
    EXPECT_EQ(Logged(), Entries{});
  }
}

TEST_F(MaxDiscount, WithinACentOfTheCeilingChangesNothing) {
  Give({100});
  LimitByMaxDiscount(Ceiling(100.005), m_sale);
  EXPECT_EQ(Held(), (Moneys{100}));
  EXPECT_EQ(Logged(), (Entries{"促销单按照最大优惠额限制", "ProNums= 1"}));
}

TEST_F(MaxDiscount, LessThanACentAboveTheCeilingChangesNothing) {
  Give({60, 40.005});
  LimitByMaxDiscount(Ceiling(100), m_sale);
  EXPECT_EQ(Held(), (Moneys{60, 40.005}));
  EXPECT_EQ(Logged(), (Entries{"促销单按照最大优惠额限制", "ProNums= 2"}));
}

TEST_F(MaxDiscount, BelowTheCeilingChangesNothing) {
  Give({99});
  LimitByMaxDiscount(Ceiling(100), m_sale);
  EXPECT_EQ(Held(), (Moneys{99}));
  EXPECT_EQ(Logged(), (Entries{"促销单按照最大优惠额限制", "ProNums= 1"}));
}

// 60 * 50 / 100 = 30, and the last row takes 50 - 30.
TEST_F(MaxDiscount, TheRowsKeepTheirProportions) {
  Give({60, 40});
  LimitByMaxDiscount(Ceiling(50), m_sale);
  EXPECT_EQ(Held(), (Moneys{30, 20}));
  EXPECT_EQ(Logged(), (Entries{"促销单按照最大优惠额限制", "ProNums= 2", "ProNumsT为：1", "allocated=30",
                               "ProNumsT为：2", "ProNumsT=ProNums", "allocated=30", "proInfo.MaxYhValue=50"}));
}

// 33.33 * 10 / 100 = 3.333, twice 3.33, and the last row takes 10 - 6.66.
TEST_F(MaxDiscount, TheLastRowTakesWhatTheRoundingLeft) {
  Give({33.33, 33.33, 33.34});
  LimitByMaxDiscount(Ceiling(10), m_sale);
  ASSERT_EQ(Held().size(), 3U);
  EXPECT_DOUBLE_EQ(Held()[0], 3.33);
  EXPECT_DOUBLE_EQ(Held()[1], 3.33);
  EXPECT_DOUBLE_EQ(Held()[2], 3.34);
  EXPECT_EQ(Logged(), (Entries{"促销单按照最大优惠额限制", "ProNums= 3", "ProNumsT为：1", "allocated=3.33",
                               "ProNumsT为：2", "allocated=6.66", "ProNumsT为：3", "ProNumsT=ProNums", "allocated=6.66",
                               "proInfo.MaxYhValue=10"}));
}

TEST_F(MaxDiscount, ASingleRowIsTheLastRow) {
  Give({80});
  LimitByMaxDiscount(Ceiling(50), m_sale);
  EXPECT_EQ(Held(), (Moneys{50}));
  EXPECT_EQ(Logged(), (Entries{"促销单按照最大优惠额限制", "ProNums= 1", "ProNumsT为：1", "ProNumsT=ProNums",
                               "allocated=0", "proInfo.MaxYhValue=50"}));
}

// 0.25 * 0.5 / 1 = 0.125, half a cent goes up.
TEST_F(MaxDiscount, SharesAreRoundedAwayFromZero) {
  Give({0.25, 0.75});
  LimitByMaxDiscount(Ceiling(0.5), m_sale);
  ASSERT_EQ(Held().size(), 2U);
  EXPECT_DOUBLE_EQ(Held()[0], 0.13);
  EXPECT_DOUBLE_EQ(Held()[1], 0.37);
}

TEST_F(MaxDiscount, ACeilingOfZeroTakesEverything) {
  Give({60, 40});
  LimitByMaxDiscount(Ceiling(0), m_sale);
  EXPECT_EQ(Held(), (Moneys{0, 0}));
}

TEST_F(MaxDiscount, NumbersAreLoggedWithSixSignificantDigits) {
  Give({2000000, 2000000});
  LimitByMaxDiscount(Ceiling(2469135.78), m_sale);
  EXPECT_EQ(Logged(),
            (Entries{"促销单按照最大优惠额限制", "ProNums= 2", "ProNumsT为：1", "allocated=1.23457e+06",
                     "ProNumsT为：2", "ProNumsT=ProNums", "allocated=1.23457e+06", "proInfo.MaxYhValue=2.46914e+06"}));
}

// 10, 20, 30, 40 of 100 to a ceiling of 50: the last row of the last line takes the rest.
TEST_F(MaxDiscount, WalksLinesAndTheirRowsFromFirstToLast) {
  m_sale.Plus = {Line("G1", 100, 1), Line("G2", 100, 1)};
  m_sale.Plus[0].ProResults = {Row("R1", "PTXS", "PT", 1, 10), Row("R1", "PTXS", "PT", 1, 20)};
  m_sale.Plus[1].ProResults = {Row("R1", "PTXS", "PT", 1, 30), Row("R1", "PTXS", "PT", 1, 40)};
  LimitByMaxDiscount(Ceiling(50), m_sale);
  EXPECT_EQ(Held(), (Moneys{5, 10, 15, 20}));
  EXPECT_EQ(Logged(), (Entries{"促销单按照最大优惠额限制", "ProNums= 4", "ProNumsT为：1", "allocated=5",
                               "ProNumsT为：2", "allocated=15", "ProNumsT为：3", "allocated=30", "ProNumsT为：4",
                               "ProNumsT=ProNums", "allocated=30", "proInfo.MaxYhValue=50"}));
}

TEST_F(MaxDiscount, RowsOfOtherRulesStay) {
  Give({80});
  m_sale.Plus[0].ProResults.insert(m_sale.Plus[0].ProResults.begin(), Row("R2", "PTXS", "PT", 1, 500));
  m_sale.Plus[0].ProResults.push_back(Row("r1", "PTXS", "PT", 1, 700));
  LimitByMaxDiscount(Ceiling(50), m_sale);
  EXPECT_EQ(m_sale.Plus[0].ProResults[0].DisMoney, 500);
  EXPECT_EQ(m_sale.Plus[0].ProResults[1].DisMoney, 50);
  EXPECT_EQ(m_sale.Plus[0].ProResults[2].DisMoney, 700);
}

TEST_F(MaxDiscount, ChangesTheDiscountRecordsOnly) {
  Give({80});
  LimitByMaxDiscount(Ceiling(50), m_sale);
  const Corvane::SalePlu& line = m_sale.Plus[0];
  EXPECT_EQ(line.Total, 100);
  EXPECT_EQ(line.FinalPrice, 100);
  EXPECT_EQ(line.Apportions[0].AppMoney(), 80);
  EXPECT_EQ(line.ProResults[0].YhMoney, 80);
  EXPECT_EQ(line.ProResults[0].BaseMoney, 100);
  EXPECT_EQ(line.ProResults[0].DisNum, 1);
}

TEST_F(MaxDiscount, ARuleThatGaveNothingIsCounted) {
  LimitByMaxDiscount(Ceiling(50), m_sale);
  EXPECT_EQ(Logged(), (Entries{"促销单按照最大优惠额限制", "ProNums= 0"}));
}

TEST_F(MaxDiscount, ANegativeCeilingFindsNoRowToCut) {
  LimitByMaxDiscount(Ceiling(-50), m_sale);
  EXPECT_EQ(Logged(), (Entries{"促销单按照最大优惠额限制", "ProNums= 0"}));
}

TEST_F(MaxDiscount, AnAmountThatIsNoNumberChangesNothing) {
  Give({std::numeric_limits<double>::quiet_NaN(), 40});
  LimitByMaxDiscount(Ceiling(50), m_sale);
  EXPECT_EQ(Held()[1], 40);
  EXPECT_EQ(Logged(), (Entries{"促销单按照最大优惠额限制", "ProNums= 2"}));
}

TEST_F(MaxDiscount, UnannouncedItLogsTheSameWithoutItsFirstEntry) {
  Give({80});
  LimitByMaxDiscount(Ceiling(50), m_sale, LimitLog::Unannounced);
  EXPECT_EQ(Held(), (Moneys{50}));
  EXPECT_EQ(Logged(),
            (Entries{"ProNums= 1", "ProNumsT为：1", "ProNumsT=ProNums", "allocated=0", "proInfo.MaxYhValue=50"}));
}

}  // namespace
