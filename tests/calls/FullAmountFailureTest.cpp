#include "tests/calls/FullAmount.h"

namespace Corvane::Testing {
namespace {

/// What the log tells, and what becomes of the sale, when a rule of the full-amount family can't read its tables. The
/// sale is one line of the goods "A", category "FOOD", brand "ACME".
class FullAmountFailure : public FullAmount {
 protected:
  void TearDown() override {
    if (m_hasView) Sql("drop view tProMzConPluSet");
  }
  /// From now on the condition rows can be searched, but those of "G1" and "F1" can't be read.
  void MakeConditionsUnreadable() {
    Sql("drop table tProMzConPluSet; create table unreadable (BillNo, PluCode, PluType, InRange, ListCode, DataId, "
        "number);"
        "create view tProMzConPluSet as select *, abs(number) as SerialNo from unreadable;"
        "insert into unreadable values ('G1','Z','PLU','IN','0','0',-9223372036854775807 - 1),"
        "('F1','Z','PLU','IN','0','0',-9223372036854775807 - 1)");
    m_hasView = true;
  }
  static std::string Calculate() {
    return MzPromotion(SaleXml(LineXml(1, "A", "300", "1", "300", R"(CAT="FOOD" BRD="ACME")")));
  }
  /// The entries behind the base conditions.
  static Texts Failure() {
    const Texts log = AfterReading(TakeLog());
    const Texts met = BaseConditionsMet();
    const std::size_t begin = !log.empty() && log.front() == "开始满减赠品计算" ? 1 : 0;
    if (log.size() < begin + met.size()) return log;
    EXPECT_EQ(Texts(log.begin() + static_cast<long>(begin), log.begin() + static_cast<long>(begin + met.size())), met);
    return {log.begin() + static_cast<long>(begin + met.size()), log.end()};
  }
  static std::string Query(const std::string& statement, const std::string& reason) {
    return "函数:openRecordset||执行:" + statement + "||" + reason + " Unable to execute statement";
  }
  static std::string LineQuery(const std::string& columns, const std::string& table, const std::string& billNo) {
    return "select " + columns + " from " + table + " where BillNo='" + billNo +
           "' and ((PluCode='A' and PluType='PLU') or (PluCode='FOOD' and PluType='CAT') or (PluCode='ACME' and "
           "PluType='BRD'))";
  }
  static std::string ConditionQuery(const std::string& billNo) {
    return LineQuery("SerialNo,PluCode,PluType,InRange,ListCode,DataId", "tProMzConPluSet", billNo);
  }
  /// A reduction of 10.00 from 30.00 on, a rule that runs behind the one under test and must not be touched by its
  /// failure.
  static void AnotherRule() {
    LooseTable("tProMzPluAct",
               "BillNo,SerialNo,PluCode,PluType,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum,"
               "AddDscNum,SaleMaxIn,DataId");
    Giving("'Z9',1,'0','A','PLU','SUM',100,'SUM',10,1000,0,0");
    LoadRule("Z9", "MZDP", R"(JzDate="2000-01-01")");
  }

 private:
  bool m_hasView = false;
};

// --- Reduction -------------------------------------------------------------------------------------------------------

constexpr const char* kListQuery =
    "SELECT ConAreaType,RstAreaType,MaxDiscount,DscIntoPlu,ListCode FROM tpromzlist where BillNo='M1'";
constexpr const char* kTierQuery =
    "SELECT DscType,BaseMoney,BaseDscMoney,AddMoney,AddDscMoney,SaleMaxIn FROM tProMzDiscountAct where BillNo='M1' and "
    "ListCode='L1'";

class ReduceFailure : public FullAmountFailure {
 protected:
  void SetUp() override {
    FullAmountFailure::SetUp();
    Offer("'M1','L1','ALL',0,'0'");
    Tier("'M1','L1',30,10,1000,0,0");
    LoadRule("M1", "MZMJ");
    TakeLog();
  }
};

TEST_F(ReduceFailure, OffersTableMissing) {
  Sql("drop table tpromzlist");

  EXPECT_EQ(PrintedGroup(Calculate(), "ProResult"), "<ProResult />");
  EXPECT_EQ(Failure(), Texts{"计算满减促销失败数据库查询失败" + Query(kListQuery, "no such table: tpromzlist")});
}

TEST_F(ReduceFailure, OffersColumnMissing) {
  Sql("alter table tpromzlist rename column DscIntoPlu to Other");

  Calculate();

  EXPECT_EQ(Failure(), Texts{"计算满减促销失败数据库查询失败" + Query(kListQuery, "no such column: DscIntoPlu")});
}

// The whole sale counts here, and yet its condition rows are read.
TEST_F(ReduceFailure, ConditionsTableMissing) {
  Sql("drop table tProMzConPluSet");

  EXPECT_EQ(PrintedGroup(Calculate(), "ProResult"), "<ProResult />");
  EXPECT_EQ(Failure(), Texts{"计算满减促销失败数据库查询失败" +
                             Query(ConditionQuery("M1") + " and ListCode='L1'", "no such table: tProMzConPluSet")});
}

TEST_F(ReduceFailure, ConditionsColumnMissing) {
  Sql("alter table tProMzConPluSet rename column InRange to Other");

  Calculate();

  EXPECT_EQ(Failure(), Texts{"计算满减促销失败数据库查询失败" +
                             Query(ConditionQuery("M1") + " and ListCode='L1'", "no such column: InRange")});
}

// The database's text stands in the log by itself first, and nothing is put before it.
TEST_F(ReduceFailure, TiersTableMissing) {
  Sql("drop table tProMzDiscountAct");

  EXPECT_EQ(PrintedGroup(Calculate(), "ProResult"), "<ProResult />");
  const std::string text = Query(kTierQuery, "no such table: tProMzDiscountAct");
  EXPECT_EQ(Failure(), (Texts{text, "计算满减促销失败" + text}));
}

TEST_F(ReduceFailure, TiersColumnMissing) {
  Sql("alter table tProMzDiscountAct rename column AddDscMoney to Other");

  Calculate();

  const std::string text = Query(kTierQuery, "no such column: AddDscMoney");
  EXPECT_EQ(Failure(), (Texts{text, "计算满减促销失败" + text}));
}

TEST_F(ReduceFailure, OtherRulesGoOn) {
  AnotherRule();
  Sql("drop table tpromzlist");

  EXPECT_EQ(Held(Calculate(), "ProResult", "ProBillNo"), Texts{"Z9"});
}

TEST_F(ReduceFailure, TheNextSaleWorks) {
  Sql("alter table tpromzlist rename to away");
  EXPECT_EQ(PrintedGroup(Calculate(), "ProResult"), "<ProResult />");

  Sql("alter table away rename to tpromzlist");

  EXPECT_EQ(Held(Calculate(), "ProResult", "DisMoney"), Texts{"10.00"});
}

// The ceiling is not announced: the rule has given up.
TEST_F(ReduceFailure, TheCeilingIsNotReached) {
  LoadRule("M1", "MZMJ", R"(MaxYhType="1" MaxYhValue="5")");
  Sql("drop table tpromzlist");

  Calculate();

  EXPECT_EQ(Failure().size(), 1U);
}

TEST_F(ReduceFailure, ACodeWithAQuoteIsACodeLikeAnyOther) {
  const std::string sale = MzPromotion(SaleXml(LineXml(1, "O'Neil", "300", "1", "300")));

  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"290.00"});
  EXPECT_EQ(Failure(), Texts{});
}

// --- Gift offers -----------------------------------------------------------------------------------------------------

constexpr const char* kOfferQuery =
    "select SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum,AddDscNum,SaleMaxIn,DscPrice from "
    "tProMzScheme where BillNo='G1'";

class GiftFailure : public FullAmountFailure {
 protected:
  void SetUp() override {
    FullAmountFailure::SetUp();
    Scheme("'G1',1,'MUG','SUM',100,'NUM',1,0,0,0,0");
    LoadRule("G1", "MZZP");
    TakeLog();
  }
};

TEST_F(GiftFailure, ConditionsTableMissing) {
  Sql("drop table tProMzConPluSet");

  EXPECT_EQ(PrintedGroup(Calculate(), "ProGifts"), "<ProGifts />");
  EXPECT_EQ(Failure(), Texts{"计算满赠赠品促销失败数据库查询失败" +
                             Query(ConditionQuery("G1"), "no such table: tProMzConPluSet")});
}

TEST_F(GiftFailure, ConditionsColumnMissing) {
  Sql("alter table tProMzConPluSet rename column DataId to Other");

  Calculate();

  EXPECT_EQ(Failure(),
            Texts{"计算满赠赠品促销失败数据库查询失败" + Query(ConditionQuery("G1"), "no such column: DataId")});
}

// The line's query finds no row and is fine; the query for any row at all fails as it reads the one that there is.
TEST_F(GiftFailure, AnyRowCannotBeRead) {
  MakeConditionsUnreadable();

  EXPECT_EQ(PrintedGroup(Calculate(), "ProGifts"), "<ProGifts />");
  EXPECT_EQ(Failure(),
            Texts{"计算满赠赠品促销失败数据库查询失败函数:openRecordset||执行:select "
                  "SerialNo,PluCode,PluType,InRange,ListCode,DataId from tProMzConPluSet where BillNo='G1' limit 1 "
                  "||integer overflow Unable to fetch row"});
}

TEST_F(GiftFailure, TiersTableMissing) {
  Sql("drop table tProMzScheme");

  EXPECT_EQ(PrintedGroup(Calculate(), "ProGifts"), "<ProGifts />");
  const std::string text = Query(kOfferQuery, "no such table: tProMzScheme");
  EXPECT_EQ(Failure(), (Texts{text, "计算满赠赠品促销失败" + text}));
}

TEST_F(GiftFailure, TiersColumnMissing) {
  Sql("alter table tProMzScheme rename column DscPrice to Other");

  Calculate();

  const std::string text = Query(kOfferQuery, "no such column: DscPrice");
  EXPECT_EQ(Failure(), (Texts{text, "计算满赠赠品促销失败" + text}));
}

TEST_F(GiftFailure, ExchangePurchasesFailInTheSameWords) {
  LoadRule("G1", "MZHG");
  Sql("drop table tProMzConPluSet");

  Calculate();

  EXPECT_EQ(Failure(), Texts{"计算满赠赠品促销失败数据库查询失败" +
                             Query(ConditionQuery("G1"), "no such table: tProMzConPluSet")});
}

TEST_F(GiftFailure, OtherRulesGoOn) {
  AnotherRule();
  Sql("drop table tProMzScheme");

  EXPECT_EQ(Held(Calculate(), "ProResult", "ProBillNo"), Texts{"Z9"});
}

// Offers of an earlier pass stay.
TEST_F(GiftFailure, StandingOffersStay) {
  Calculate();
  Sql("drop table tProMzScheme");

  EXPECT_EQ(Held(Calculate(), "ProGifts", "ProBillNo"), Texts{"G1"});
}

// --- Single-item giving ----------------------------------------------------------------------------------------------

class GivingFailure : public FullAmountFailure {
 protected:
  void SetUp() override {
    FullAmountFailure::SetUp();
    Giving("'D1',1,'0','A','PLU','SUM',100,'SUM',10,1000,0,0");
    LoadRule("D1", "MZDP");
    TakeLog();
  }
  static std::string GivingQuery() {
    return LineQuery(
        "SerialNo,PluCode,PluType,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum,AddDscNum,SaleMaxIn,"
        "DataId",
        "tProMzPluAct", "D1");
  }
};

TEST_F(GivingFailure, TableMissing) {
  Sql("drop table tProMzPluAct");

  EXPECT_EQ(PrintedGroup(Calculate(), "ProResult"), "<ProResult />");
  EXPECT_EQ(Failure(),
            Texts{"计算单品赠送促销失败数据库查询失败" + Query(GivingQuery(), "no such table: tProMzPluAct")});
}

TEST_F(GivingFailure, ColumnMissing) {
  Sql("alter table tProMzPluAct rename column SaleMaxIn to Other");

  Calculate();

  EXPECT_EQ(Failure(), Texts{"计算单品赠送促销失败数据库查询失败" + Query(GivingQuery(), "no such column: SaleMaxIn")});
}

TEST_F(GivingFailure, TheNextSaleWorks) {
  Sql("alter table tProMzPluAct rename to away");
  Calculate();
  Sql("alter table away rename to tProMzPluAct");

  EXPECT_EQ(Held(Calculate(), "ProResult", "DisMoney"), Texts{"10.00"});
}

// --- Goods free ------------------------------------------------------------------------------------------------------

constexpr const char* kFreeQuery =
    "select SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum,AddDscNum,SaleMaxIn from "
    "tProMzScheme "
    "where BillNo='F1'";

class FreeFailure : public FullAmountFailure {
 protected:
  void SetUp() override {
    FullAmountFailure::SetUp();
    Scheme("'F1',1,'A','SUM',100,'SUM',10,1000,0,0,0");
    LoadRule("F1", "MZZM");
    TakeLog();
  }
};

TEST_F(FreeFailure, ConditionsTableMissing) {
  Sql("drop table tProMzConPluSet");

  EXPECT_EQ(PrintedGroup(Calculate(), "ProResult"), "<ProResult />");
  EXPECT_EQ(Failure(), Texts{"计算商品直免促销失败数据库查询失败" +
                             Query(ConditionQuery("F1"), "no such table: tProMzConPluSet")});
}

TEST_F(FreeFailure, ConditionsColumnMissing) {
  Sql("alter table tProMzConPluSet rename column ListCode to Other");

  Calculate();

  EXPECT_EQ(Failure(),
            Texts{"计算商品直免促销失败数据库查询失败" + Query(ConditionQuery("F1"), "no such column: ListCode")});
}

TEST_F(FreeFailure, AnyRowCannotBeRead) {
  MakeConditionsUnreadable();

  EXPECT_EQ(PrintedGroup(Calculate(), "ProResult"), "<ProResult />");
  EXPECT_EQ(Failure(),
            Texts{"计算商品直免促销失败数据库查询失败函数:openRecordset||执行:select "
                  "SerialNo,PluCode,PluType,InRange,ListCode,DataId from tProMzConPluSet where BillNo='F1' limit 1 "
                  "||integer overflow Unable to fetch row"});
}

TEST_F(FreeFailure, TiersTableMissing) {
  Sql("drop table tProMzScheme");

  EXPECT_EQ(PrintedGroup(Calculate(), "ProResult"), "<ProResult />");
  const std::string text = Query(kFreeQuery, "no such table: tProMzScheme");
  EXPECT_EQ(Failure(), (Texts{text, "计算商品直免促销失败" + text}));
}

TEST_F(FreeFailure, TiersColumnMissing) {
  Sql("alter table tProMzScheme rename column AddConNum to Other");

  Calculate();

  const std::string text = Query(kFreeQuery, "no such column: AddConNum");
  EXPECT_EQ(Failure(), (Texts{text, "计算商品直免促销失败" + text}));
}

// The offered price is another type's column.
TEST_F(FreeFailure, ThePriceColumnIsNotNeeded) {
  Sql("alter table tProMzScheme rename column DscPrice to Other");

  EXPECT_EQ(Held(Calculate(), "ProResult", "DisMoney"), Texts{"10.00"});
}

// --- Any of them -----------------------------------------------------------------------------------------------------

// No table is there at all: four failures, and the sale comes out as it went in.
TEST_F(FullAmountFailure, AStoreWithoutTables) {
  Sql("drop table tpromzlist; drop table tProMzConPluSet; drop table tProMzDiscountAct; drop table tProMzScheme; "
      "drop table tProMzPluAct");
  LoadRule("M1", "MZMJ");
  LoadRule("G1", "MZZP");
  LoadRule("D1", "MZDP");
  LoadRule("F1", "MZZM");

  const std::string sale = Calculate();

  EXPECT_EQ(Held(sale, "Plu", "Total"), Texts{"300.00"});
  const Texts log = TakeLog();
  for (const char* words : {"计算满减促销失败数据库查询失败", "计算满赠赠品促销失败数据库查询失败",
                            "计算单品赠送促销失败数据库查询失败", "计算商品直免促销失败数据库查询失败"}) {
    EXPECT_EQ(Naming(log, words), 1) << words;
  }
}

}  // namespace
}  // namespace Corvane::Testing
