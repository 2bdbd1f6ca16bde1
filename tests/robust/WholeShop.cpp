#include "tests/robust/WholeShop.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <qncorvane/qncorvane.h>
#include <sys/stat.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "tests/robust/StatementWatch.h"

namespace Corvane::Testing {

namespace fs = std::filesystem;

namespace {

std::string g_wholeStore;  // its bytes

constexpr const char* kRows =
    "insert into tProPrjDirectProAct (BillNo,SerialNo,PluCode,PluType,InRange,DscType,DscPrice,SaleCount) values"
    " ('PTXS',1,'PTXS','PLU','IN','PRC',8,0), ('PTPL',1,'PTPL','PLU','IN','PRC',8,2),"
    " ('PTOS',1,'PTOS','PLU','IN','PRC',1,2);"
    "insert into tProPrjCombPluSet (BillNo,SerialNo,ProActCode,PluCode,PluType,SaleCount,DscType,DscPrice) values"
    " ('ZHZY',1,'','ZHZY','PLU',1,'PRC',8), ('ZHGD',1,'','ZHGD','PLU',1,'PRC',8), ('ZHTJ',1,'','ZHTJ','PLU',1,'PRC',8),"
    " ('ZHZX',1,'S','ZHZX','PLU',1,'PRC',8);"
    "insert into tProPrjCombProAct (BillNo,SerialNo,SaleCount,PriceType,PriceTotal,ProActCode,IsRequired) values"
    " ('ZHZY',1,2,'DP',15,'',0), ('ZHGD',1,1,'TC',7,'',0), ('ZHZX',1,1,'DP',8,'S',1);"
    "insert into tProCombConditionAct (BillNo,SerialNo,PluCode,SaleCount) values ('ZHTJ',1,'ZHTJ',1);"
    "insert into tProPrjCombCtrl (BillNo,SerialNo,CountTotal) values ('ZHTJ',1,1);"
    "insert into tpromzlist (BillNo,ListCode,ConAreaType,MaxDiscount) values ('MZMJ','L1','DES',0);"
    "insert into tProMzConPluSet (BillNo,ListCode,SerialNo,PluCode) values ('MZMJ','L1',1,'MZMJ'),"
    " ('MZZM','0',1,'MZZM'), ('MZZP','0',1,'MZZP'), ('MZHG','0',1,'MZHG');"
    "insert into tProMzDiscountAct (BillNo,ListCode,BaseMoney,BaseDscMoney) values ('MZMJ','L1',20,3);"
    "insert into tProMzScheme (BillNo,SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum,DscPrice) values"
    " ('MZZM',1,'MZZM','SUM',10,'NUM',1,0), ('MZZP',1,'BAG','SUM',10,'NUM',1,0), ('MZHG',1,'MUG','SUM',10,'NUM',1,2);"
    "insert into tProMzPluAct (BillNo,SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum) values"
    " ('MZDP',1,'MZDP','NUM',1,'NUM',1);";

/// Rows of other rules, so that tables take several pages.
std::string FillingRows() {
  std::string rows;
  for (const char* table : {"tProPrjDirectProAct", "tProPrjCombPluSet", "tProCombConditionAct", "tProMzConPluSet",
                            "tProMzScheme", "tProMzPluAct"}) {
    const std::string discount = std::string(table) == "tProPrjDirectProAct" ? ",DscType) " : ") ";
    const std::string type = discount == ") " ? "" : ",'PRC'";
    rows += std::string("insert into ") + table + " (BillNo,SerialNo,PluCode" + discount +
            "with recursive n(i) as (select 1 union all select i+1 from n where i<40) "
            "select case when i<20 then 'A' else 'Z-' end||i,i,'other goods'" +
            type + " from n;";
  }
  return rows;
}

/// The rule that an entry complains of; empty for an entry that doesn't.
std::string RuleOfFailure(const std::string& entry) {
  constexpr const char* kOrdinary = "获取普通类促销详情失败";
  if (entry.rfind(kOrdinary, 0) == 0) return entry.substr(std::string(kOrdinary).size());
  if (entry.find("函数:openRecordset") == std::string::npos) return "";
  constexpr const char* kNumber = "BillNo='";
  const std::size_t begin = entry.find(kNumber) + std::string(kNumber).size();
  return entry.substr(begin, entry.find('\'', begin) - begin);
}

}  // namespace

std::string BytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteBytes(const std::string& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

void WholeShop::SetUp() {
  StatementWatch::Install();
  fs::remove_all(Directory() + "/store.db");
  Till::SetUp();
  Sql("pragma journal_mode=delete; pragma page_size=512; vacuum");
  MakeTables();
  Sql(std::string(kRows) + FillingRows());
  LearnStore();
  LoadRules();
  for (const ShopRule& rule : kShopRules) {
    ASSERT_NE(ResultsWithout({}), ResultsWithout({rule.Type})) << rule.Type << " gives nothing in a whole store";
  }
}

void WholeShop::LearnStore() {
  g_wholeStore = BytesOf(StoreFile());
  m_known.clear();
  RenewStore();
}

void WholeShop::RenewStore() {
  for (const char* kept : {"-journal", "-wal", "-shm"}) fs::remove(StoreFile() + kept);
  if (!fs::is_regular_file(fs::symlink_status(StoreFile()))) fs::remove_all(StoreFile());
  WriteBytes(Directory() + "/renewed.db", g_wholeStore);
  fs::rename(Directory() + "/renewed.db", StoreFile());
}

void WholeShop::HealStore() {
  WriteBytes(StoreFile(), g_wholeStore);
  // The system's clock of files may stand still from one write to the next.
  static long second = 0;
  const timespec times[] = {{++second, 0}, {second, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, StoreFile().c_str(), times, 0), 0);
}

std::string WholeShop::OtherStore() {
  RenewStore();
  Sql("update tProPrjDirectProAct set DscPrice=6; update tProMzDiscountAct set BaseDscMoney=4");
  fs::rename(StoreFile(), Directory() + "/other.db");
  RenewStore();
  return Directory() + "/other.db";
}

void WholeShop::LoadRules(const std::set<std::string>& without) {
  ASSERT_EQ(Clear("*").Code, 0);
  for (const ShopRule& rule : kShopRules) {
    if (without.count(rule.Type) != 0) continue;
    ASSERT_EQ(Load(rule.Type, RuleXml(rule.Type, rule.Type, R"(Primary="DJ")")).Code, 0);
  }
}

std::string WholeShop::Line(int serialNo, const std::string& goods) {
  return LineXml(serialNo, goods, "10", "3", "30", R"(CAT="FOOD" BRD="ACME")");
}

std::string WholeShop::Sale() {
  std::string lines;
  int serialNo = 0;
  for (const ShopRule& rule : kShopRules) lines += Line(++serialNo, rule.Type);
  return SaleXml(lines);
}

std::vector<PlayedCall> WholeShop::Play() {
  DeleteSaleSetByKey("till");
  TakeLog();
  std::vector<PlayedCall> calls;
  for (const char* mode : {"All", "MzPromotion"}) {
    const Answer answer = Calc("till", mode, calls.empty() ? Sale() : "<Sale OrgCode=\"S01\" IsCalc=\"0\"/>");
    EXPECT_EQ(answer.Code, 0);
    EXPECT_EQ(answer.Msg, "sucess");
    calls.push_back({answer.Out, TakeLog()});
  }
  return calls;
}

std::vector<std::string> WholeShop::Results(const std::vector<PlayedCall>& calls) {
  std::vector<std::string> results;
  results.reserve(calls.size());
  for (const PlayedCall& call : calls) results.push_back(call.Result);
  return results;
}

const std::vector<std::string>& WholeShop::ResultsWithout(const std::set<std::string>& rules) {
  const auto known = m_known.find(rules);
  if (known != m_known.end()) return known->second;
  RenewStore();
  LoadRules(rules);
  const std::vector<PlayedCall> calls = Play();
  EXPECT_THAT(LostRules(calls), ::testing::IsEmpty());
  LoadRules();
  return m_known.emplace(rules, Results(calls)).first->second;
}

std::set<std::string> WholeShop::LostRules(const PlayedCall& call, const std::string& mode) {
  std::set<std::string> lost;
  for (const std::string& entry : call.Log) {
    const std::string rule = RuleOfFailure(entry);
    if (!rule.empty()) lost.insert(rule);
    if (entry.find("数据库打开失败！") == std::string::npos) continue;
    // Nothing can be read, and not every rule says so.
    for (const ShopRule& each : kShopRules) {
      if (each.Mode == mode) lost.insert(each.Type);
    }
  }
  return lost;
}

std::set<std::string> WholeShop::LostRules(const std::vector<PlayedCall>& calls) {
  std::set<std::string> lost = LostRules(calls.front(), "All");
  lost.merge(LostRules(calls.back(), "MzPromotion"));
  return lost;
}

void WholeShop::ExpectLostRulesAlone(const std::vector<PlayedCall>& calls, const std::string& fault) {
  const std::set<std::string> lost = LostRules(calls);
  EXPECT_EQ(Results(calls), ResultsWithout(lost)) << fault << ", lost: " << ::testing::PrintToString(lost);
}

void WholeShop::ExpectWhole(const std::string& fault) {
  const std::vector<PlayedCall> calls = Play();
  EXPECT_THAT(LostRules(calls), ::testing::IsEmpty()) << "after " << fault;
  EXPECT_EQ(Results(calls), ResultsWithout({})) << "after " << fault;
}

}  // namespace Corvane::Testing
