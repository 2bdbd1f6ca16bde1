// Result sets that break off in the middle: each loader takes them for a failed statement and keeps none of their rows.
#include <sqlite3.h>

#include <algorithm>
#include <ostream>

#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

constexpr const char* kDirect = "tProPrjDirectProAct (BillNo,SerialNo,PluCode,PluType,InRange,DscType,DscPrice)";
constexpr const char* kCombGoods =
    "tProPrjCombPluSet (BillNo,SerialNo,ProActCode,PluCode,PluType,SaleCount,DscType,DscPrice,DscRate)";
constexpr const char* kCombPrices =
    "tProPrjCombProAct (BillNo,SerialNo,SaleCount,PriceType,PriceTotal,ProActCode,IsRequired)";
constexpr const char* kOffers = "tpromzlist (BillNo,ListCode,ConAreaType,MaxDiscount)";
constexpr const char* kConditions = "tProMzConPluSet (BillNo,ListCode,SerialNo,DataId,PluCode,PluType,InRange)";
constexpr const char* kTiers = "tProMzDiscountAct (BillNo,ListCode,BaseMoney,BaseDscMoney)";
constexpr const char* kScheme = "tProMzScheme (BillNo,SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum)";
constexpr const char* kGiving =
    "tProMzPluAct (BillNo,SerialNo,DataId,PluCode,PluType,BaseConType,BaseConNum,BaseDscType,BaseDscNum)";

struct Rows {
  const char* Into;
  const char* Values;
};

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// A rule "R" whose rows give something on two lines of goods; and one of its tables, the second row of which breaks.
struct Case {
  const char* Type;
  const char* Mode;
  std::vector<Rows> Store;
  const char* Table;
  const char* Column;  ///< the value that can't be computed
  const char* Second;  ///< the row in which it can't
  const char* Words;   ///< what the log's entries begin with, in front of the database's own text
  int Entries;         ///< how many entries the loader's failure makes
};

std::ostream& operator<<(std::ostream& out, const Case& broken) { return out << broken.Type << " " << broken.Table; }

class BrokenRows : public FullAmount, public ::testing::WithParamInterface<Case> {
 protected:
  void TearDown() override {
    if (m_isBroken) Sql(std::string("drop view ") + GetParam().Table);
  }

  void Break() {
    const Case& broken = GetParam();
    const std::string table = broken.Table;
    const std::string columns =
        ColumnsOf(table, broken.Column,
                  "case when " + std::string(broken.Second) + " then abs(-9223372036854775807 - 1) else " +
                      broken.Column + " end as " + broken.Column);
    Sql("alter table " + table + " rename to whole; create view " + table + " as select " + columns + " from whole");
    m_isBroken = true;
  }

  static std::string Sell() {
    const Answer sale = Calc("till", GetParam().Mode,
                             SaleXml(LineXml(1, "A", "100", "3", "300", R"(CAT="FOOD" BRD="ACME")") +
                                     LineXml(2, "B", "50", "2", "100", R"(CAT="FOOD" BRD="ACME")")));
    EXPECT_EQ(sale.Code, 0);
    return sale.Out;
  }

  static bool GivesSomething(const std::string& result) {
    return !DiscountsOf(result).empty() || !OffersOf(result).empty();
  }

 private:
  /// The table's columns for a selection, with an expression in the place of one of them.
  static std::string ColumnsOf(const std::string& table, const std::string& replaced, const std::string& expression) {
    sqlite3* store = nullptr;
    EXPECT_EQ(sqlite3_open((Directory() + "/store.db").c_str(), &store), SQLITE_OK);
    sqlite3_stmt* names = nullptr;
    sqlite3_prepare_v2(store, ("select name from pragma_table_info('" + table + "')").c_str(), -1, &names, nullptr);
    std::string columns;
    while (sqlite3_step(names) == SQLITE_ROW) {
      const std::string name = reinterpret_cast<const char*>(sqlite3_column_text(names, 0));
      columns += (columns.empty() ? "" : ",") + (name == replaced ? expression : name);
    }
    sqlite3_finalize(names);
    sqlite3_close(store);
    return columns;
  }

  bool m_isBroken = false;
};

TEST_P(BrokenRows, AreAFailedStatement) {
  const Case& broken = GetParam();
  for (const Rows& rows : broken.Store) Sql(std::string("insert into ") + rows.Into + " values " + rows.Values);
  LoadRule("R", broken.Type);
  ASSERT_TRUE(GivesSomething(Sell())) << "the rule gives nothing even with whole rows";
  ASSERT_EQ(ClearSales().Code, 0);
  Break();
  TakeLog();

  EXPECT_FALSE(GivesSomething(Sell()));

  const Texts log = TakeLog();
  const std::string table = std::string(broken.Table) + " where BillNo='R'";
  const auto failures = std::count_if(log.begin(), log.end(), [&](const std::string& entry) {
    if (entry.rfind(broken.Words, 0) != 0) return false;
    if (std::string(broken.Words) == "获取普通类促销详情失败R") return entry == broken.Words;
    return entry.find(table) != std::string::npos && EndsWith(entry, "||integer overflow Unable to fetch row");
  });
  EXPECT_EQ(failures, broken.Entries) << ::testing::PrintToString(log);
}

const Rows kGoodsOfR{kCombGoods, "('R',1,'S','A','PLU',1,'PRC',80,10),('R',2,'S','FOOD','CAT',1,'PRC',80,10)"};
const Rows kArticlesOfR{kCombGoods, "('R',1,'S','A','PLU',1,'PRC',80,10),('R',2,'S','B','PLU',1,'PRC',40,10)"};
const Rows kTiersOfR{kCombPrices, "('R',1,2,'DP',60,'S',1),('R',2,5,'DP',100,'T',0)"};
const Rows kUnitsOfR{kCombPrices, "('R',1,1,'DP',60,'S',1),('R',2,1,'DP',100,'T',0)"};
const Rows kConditionsOfR{kConditions, "('R','L1',1,'0','A','PLU','IN'),('R','L1',2,'0','FOOD','CAT','IN')"};
const Rows kOffersOfR{kOffers, "('R','L1','DES',0),('R','L2','ALL',0)"};
const Rows kMoneyOfR{kTiers, "('R','L1',100,10),('R','L1',200,20)"};
const Rows kSchemeOfR{kScheme, "('R',1,'A','SUM',100,'SUM',10),('R',2,'B','SUM',50,'SUM',5)"};

INSTANTIATE_TEST_SUITE_P(
    Loader, BrokenRows,
    ::testing::Values(
        Case{"PTXS",
             "All",
             {{kDirect, "('R',1,'A','PLU','IN','PRC',80),('R',2,'FOOD','CAT','IN','PRC',10)"}},
             "tProPrjDirectProAct",
             "TradeMaxCount",
             "SerialNo=2",
             "获取普通类促销详情失败R",
             2},
        Case{"PTPL",
             "All",
             {{kDirect, "('R',1,'A','PLU','IN','PRC',80),('R',2,'FOOD','CAT','IN','PRC',10)"}},
             "tProPrjDirectProAct",
             "TradeMaxCount",
             "SerialNo=2",
             "获取普通类促销详情失败R",
             2},
        Case{"ZHZY", "All", {kGoodsOfR, kTiersOfR}, "tProPrjCombPluSet", "SerialNo", "SerialNo=2", "数据库查询失败", 1},
        Case{"ZHZY",
             "All",
             {kGoodsOfR, kTiersOfR},
             "tProPrjCombProAct",
             "PriceTotal",
             "SerialNo=2",
             "数据库查询失败",
             1},
        Case{"ZHGD",
             "All",
             {kArticlesOfR, kUnitsOfR},
             "tProPrjCombProAct",
             "PriceTotal",
             "SerialNo=2",
             "数据库查询失败",
             1},
        Case{"ZHGD",
             "All",
             {kArticlesOfR, kUnitsOfR},
             "tProPrjCombPluSet",
             "DscPrice",
             "SerialNo=2",
             "查询数据库失败",
             1},
        Case{"ZHZX",
             "All",
             {kArticlesOfR, kUnitsOfR},
             "tProPrjCombProAct",
             "IsRequired",
             "SerialNo=2",
             "数据库查询失败",
             1},
        Case{"ZHZX",
             "All",
             {kArticlesOfR, kUnitsOfR},
             "tProPrjCombPluSet",
             "DscPrice",
             "SerialNo=2",
             "数据库查询失败",
             1},
        Case{"ZHTJ",
             "All",
             {kGoodsOfR, {"tProCombConditionAct (BillNo,SerialNo,PluCode,SaleCount)", "('R',1,'A',1),('R',2,'B',1)"}},
             "tProCombConditionAct",
             "SaleCount",
             "SerialNo=2",
             "计算条件组合促销失败数据库查询失败",
             1},
        Case{"ZHTJ",
             "All",
             {kGoodsOfR, {"tProPrjCombCtrl (BillNo,SerialNo,CountTotal)", "('R',1,1),('R',2,1)"}},
             "tProPrjCombCtrl",
             "CountTotal",
             "SerialNo=2",
             "计算条件组合促销失败数据库查询失败",
             1},
        Case{"ZHTJ", "All", {kGoodsOfR}, "tProPrjCombPluSet", "DscRate", "SerialNo=2", "数据库查询失败", 1},
        Case{"MZMJ",
             "MzPromotion",
             {kOffersOfR, kConditionsOfR, kMoneyOfR},
             "tpromzlist",
             "MaxDiscount",
             "ListCode='L2'",
             "计算满减促销失败数据库查询失败",
             1},
        Case{"MZMJ",
             "MzPromotion",
             {kOffersOfR, kConditionsOfR, kMoneyOfR},
             "tProMzConPluSet",
             "SerialNo",
             "SerialNo=2",
             "计算满减促销失败数据库查询失败",
             1},
        Case{"MZMJ",
             "MzPromotion",
             {kOffersOfR, kConditionsOfR, kMoneyOfR},
             "tProMzDiscountAct",
             "AddMoney",
             "BaseMoney=200",
             "函数:openRecordset",
             1},
        Case{"MZMJ",
             "MzPromotion",
             {kOffersOfR, kConditionsOfR, kMoneyOfR},
             "tProMzDiscountAct",
             "AddMoney",
             "BaseMoney=200",
             "计算满减促销失败函数:openRecordset",
             1},
        Case{"MZDP",
             "MzPromotion",
             {{kGiving, "('R',1,'0','A','PLU','NUM',1,'NUM',1),('R',2,'0','FOOD','CAT','NUM',1,'NUM',1)"}},
             "tProMzPluAct",
             "AddConNum",
             "SerialNo=2",
             "计算单品赠送促销失败数据库查询失败",
             1},
        Case{"MZZM",
             "MzPromotion",
             {kConditionsOfR, kSchemeOfR},
             "tProMzConPluSet",
             "SerialNo",
             "SerialNo=2",
             "计算商品直免促销失败数据库查询失败",
             1},
        Case{"MZZM",
             "MzPromotion",
             {kConditionsOfR, kSchemeOfR},
             "tProMzScheme",
             "AddConNum",
             "SerialNo=2",
             "计算商品直免促销失败函数:openRecordset",
             1},
        Case{"MZZP",
             "MzPromotion",
             {kConditionsOfR, kSchemeOfR},
             "tProMzConPluSet",
             "SerialNo",
             "SerialNo=2",
             "计算满赠赠品促销失败数据库查询失败",
             1},
        Case{"MZHG",
             "MzPromotion",
             {kConditionsOfR, kSchemeOfR},
             "tProMzScheme",
             "AddConNum",
             "SerialNo=2",
             "计算满赠赠品促销失败函数:openRecordset",
             1}));

}  // namespace
}  // namespace Corvane::Testing
