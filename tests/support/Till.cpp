#include "tests/support/Till.h"

#include <sqlite3.h>
#include <stdlib.h>
#include <tinyxml.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>

#include "qncorvane/qncorvane.h"

namespace Corvane::Testing {

namespace {

constexpr const char* kUntouched = "(untouched)";
constexpr const char* kLogFile = "QnCorvane.txt";

/// Far more room than any test's answer needs. Not initialised: thousands of calls would do little else.
class Buffer {
 public:
  Buffer() : m_room(new char[4U << 20U]) { std::strcpy(Data(), kUntouched); }
  char* Data() { return m_room.get(); }
  std::string Text() const { return m_room.get(); }

 private:
  std::unique_ptr<char[]> m_room;
};

/// The directory of this process's till, removed at its end.
class TillDirectory {
 public:
  TillDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "qncorvane-till-XXXXXX").string();
    m_path = mkdtemp(pattern.data());
    std::ofstream(m_path + "/config.ini")
        << "[DataBase]\nDbType=SQLITE\nServiceName=\nDBName=" << m_path << "/store.db\nUserName=\nPassword=\nPort=0\n";
  }
  TillDirectory(const TillDirectory&) = delete;
  TillDirectory& operator=(const TillDirectory&) = delete;
  ~TillDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  const std::string& Path() const { return m_path; }

 private:
  std::string m_path;
};

const TillDirectory& OwnDirectory() {
  static const TillDirectory directory;
  return directory;
}

using Database = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;

Database OpenStore() {
  sqlite3* store = nullptr;
  if (sqlite3_open((OwnDirectory().Path() + "/store.db").c_str(), &store) != SQLITE_OK) ADD_FAILURE() << "no store";
  sqlite3_busy_timeout(store, 5000);
  // A test's store needs no safety against a power cut, and waiting for the disk would be most of a test's time. Many
  // tests put rows into it that make no sense, to see what the engine does with them in a store whose tables check less
  // than those of the samples: here the checks let them in.
  sqlite3_exec(store, "pragma synchronous=off; pragma journal_mode=memory; pragma ignore_check_constraints=on", nullptr,
               nullptr, nullptr);
  return {store, sqlite3_close};
}

void Execute(sqlite3* store, const std::string& statements) {
  char* error = nullptr;
  if (sqlite3_exec(store, statements.c_str(), nullptr, nullptr, &error) == SQLITE_OK) return;
  ADD_FAILURE() << statements << ": " << error;
  sqlite3_free(error);
}

std::string Drops(sqlite3* store) {
  std::string drops;
  const auto append = [](void* all, int, char** values, char**) {
    *static_cast<std::string*>(all) += "drop table \"" + std::string(values[0]) + "\";";
    return 0;
  };
  sqlite3_exec(store, "select name from sqlite_master where type='table'", append, &drops, nullptr);
  return drops;
}

using AttributeList = std::vector<std::pair<std::string, std::string>>;

AttributeList AttributesOf(const TiXmlElement& element) {
  AttributeList attributes;
  for (const TiXmlAttribute* next = element.FirstAttribute(); next != nullptr; next = next->Next()) {
    attributes.emplace_back(next->Name(), next->Value());
  }
  return attributes;
}

const TiXmlElement* GroupOf(const TiXmlDocument& result, const std::string& group) {
  const TiXmlElement* sale = result.RootElement();
  return sale == nullptr ? nullptr : sale->FirstChildElement(group);
}

std::vector<Row> RowsBelow(const TiXmlElement& parent) {
  std::vector<Row> rows;
  for (const TiXmlElement* row = parent.FirstChildElement(); row != nullptr; row = row->NextSiblingElement()) {
    rows.emplace_back(AttributesOf(*row));
  }
  return rows;
}

/// Header attributes written as in XML overrule those of the same name and follow the others.
AttributeList Overruled(AttributeList header, const std::string& written) {
  TiXmlDocument document;
  document.Parse(("<Rule " + written + "/>").c_str());
  for (const auto& [name, value] : AttributesOf(*document.RootElement())) {
    const auto held =
        std::find_if(header.begin(), header.end(), [&name = name](const auto& pair) { return pair.first == name; });
    if (held != header.end()) {
      held->second = value;
    } else {
      header.emplace_back(name, value);
    }
  }
  return header;
}

}  // namespace

std::string Row::operator[](const std::string& name) const {
  const auto found =
      std::find_if(m_attributes.begin(), m_attributes.end(), [&](const auto& pair) { return pair.first == name; });
  return found == m_attributes.end() ? "(absent)" : found->second;
}

std::vector<Row> RowsOf(const std::string& result, const std::string& group) {
  TiXmlDocument document;
  document.Parse(result.c_str());
  const TiXmlElement* parent = GroupOf(document, group);
  if (parent != nullptr) return RowsBelow(*parent);
  ADD_FAILURE() << "no group " << group << " in " << result;
  return {};
}

std::vector<Offer> OffersOf(const std::string& result) {
  TiXmlDocument document;
  document.Parse(result.c_str());
  std::vector<Offer> offers;
  const TiXmlElement* parent = GroupOf(document, "ProGifts");
  const TiXmlElement* offer = parent == nullptr ? nullptr : parent->FirstChildElement();
  for (; offer != nullptr; offer = offer->NextSiblingElement()) {
    offers.push_back({Row(AttributesOf(*offer)), RowsBelow(*offer)});
  }
  return offers;
}

Row RowWhere(const std::string& result, const std::string& group, const std::string& name, const std::string& value) {
  std::vector<Row> found;
  for (const Row& row : RowsOf(result, group)) {
    if (row[name] == value) found.push_back(row);
  }
  if (found.size() != 1) {
    ADD_FAILURE() << found.size() << " rows of " << group << " with " << name << "=" << value << " in " << result;
  }
  return found.empty() ? Row({}) : found.front();
}

namespace {

/// Rows of a result from the first to the last: the result lists them the other way about.
std::vector<Row> FirstToLast(const std::string& result, const std::string& group) {
  std::vector<Row> rows = RowsOf(result, group);
  std::reverse(rows.begin(), rows.end());
  return rows;
}

std::vector<std::string> Given(const std::string& result, const std::string& group, const std::string& count,
                               const std::string& money) {
  std::vector<std::string> given;
  for (const Row& row : FirstToLast(result, group)) {
    const std::string line = row["PluCode"] == "*" ? "*" : row["RowID"] + " " + row["PluCode"];
    given.push_back(line + ": " + row["ProBillNo"] + " on " + row[count] + " gives " + row[money]);
  }
  return given;
}

/// Ends this process: with 0 when all expectations of the test held.
[[noreturn]] void ExitWithVerdict() {
  const ::testing::TestResult& result = *::testing::UnitTest::GetInstance()->current_test_info()->result();
  for (int part = 0; part < result.total_part_count(); ++part) std::cerr << result.GetTestPartResult(part).summary();
  std::exit(result.Passed() ? 0 : 1);
}

}  // namespace

std::vector<std::string> LinesOf(const std::string& result) {
  std::vector<std::string> lines;
  for (const Row& row : FirstToLast(result, "Plu")) {
    lines.push_back(row["SerialNo"] + " " + row["PluCode"] + " " + row["PluCount"] + " x " + row["Price"] + " = " +
                    row["Total"]);
  }
  return lines;
}

std::vector<std::string> DiscountsOf(const std::string& result) {
  return Given(result, "ProResult", "DisNum", "DisMoney");
}

std::vector<std::string> SharesOf(const std::string& result) {
  return Given(result, "Apportion", "AppNum", "AppMoney");
}

void Till::SetUp() {
  std::filesystem::current_path(Directory());
  FinishInitPro();
  ASSERT_EQ(Clear("*").Code, 0);
  ASSERT_EQ(ClearSales().Code, 0);
  const Database store = OpenStore();
  Execute(store.get(), Drops(store.get()));
  TakeLog();
}

void Till::Sql(const std::string& statements) { Execute(OpenStore().get(), statements); }

void Till::MakeTables() {
  std::ifstream schema(QNCORVANE_SOURCE_DIR "/samples/schema/sqlite.sql");
  std::stringstream statements;
  statements << schema.rdbuf();
  ASSERT_FALSE(statements.str().empty());
  Sql(statements.str());
}

void Till::Put(const std::vector<DirectRow>& rows) {
  std::string statements;
  for (const DirectRow& row : rows) statements += row.Insert();
  Sql(statements);
}

Answer Till::Load(const std::string& type, const std::string& xml) {
  Buffer msg;
  const int code = InitPromotion(type.c_str(), xml.c_str(), msg.Data());
  return {code, msg.Text(), ""};
}

Answer Till::Clear(const std::string& billNo) {
  Buffer msg;
  const int code = ClearPromotion(msg.Data(), billNo.c_str());
  return {code, msg.Text(), ""};
}

Answer Till::Calc(const std::string& key, const std::string& mode, const std::string& xml) {
  Buffer out;
  Buffer msg;
  const int code = CalcPromotion(key.c_str(), mode.c_str(), xml.c_str(), out.Data(), msg.Data());
  return {code, msg.Text(), out.Text()};
}

Answer Till::ClearSales() {
  Buffer msg;
  const int code = ClearSaleSetForNet(msg.Data());
  return {code, msg.Text(), ""};
}

std::string Till::State() {
  Buffer word;
  return GetState(word.Data());
}

std::size_t EntriesIn(const std::string& log) {
  std::size_t count = 0;
  for (std::size_t at = log.find("\n\r"); at != std::string::npos; at = log.find("\n\r", at + 2)) ++count;
  return count;
}

std::vector<std::string> Till::TakeLog() {
  constexpr std::size_t kStampLength = sizeof "yyyy-MM-dd hh:mm:ss  " - 1;
  std::ifstream file(kLogFile, std::ios::binary);
  std::stringstream all;
  all << file.rdbuf();
  std::string text = all.str();
  std::vector<std::string> entries;
  for (std::size_t end = text.find("\n\r"); end != std::string::npos; end = text.find("\n\r")) {
    entries.push_back(text.substr(std::min(kStampLength, end), end - std::min(kStampLength, end)));
    text.erase(0, end + 2);
  }
  std::filesystem::remove(kLogFile);
  return entries;
}

long Till::Count(const std::vector<std::string>& log, const std::string& entry) {
  return std::count(log.begin(), log.end(), entry);
}

const std::string& Till::Directory() { return OwnDirectory().Path(); }

void FreshTill::SetUp() {
  const std::string empty = Directory() + "/fresh";
  std::filesystem::remove_all(empty);
  std::filesystem::create_directory(empty);
  std::filesystem::current_path(empty);
}

void FreshTill::InFreshProcess(const std::function<void()>& body) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        body();
        ExitWithVerdict();
      },
      ::testing::ExitedWithCode(0), "");
}

void FreshTill::WriteSettings(const std::string& dbType, const std::string& dbName) {
  std::ofstream("config.ini") << "[DataBase]\nDbType=" << dbType << "\nDBName=" << dbName << "\n";
}

DirectRow::DirectRow(std::string billNo, int serialNo, std::string code, std::string type)
    : m_billNo(std::move(billNo)), m_serialNo(serialNo), m_code(std::move(code)), m_type(std::move(type)) {}

DirectRow& DirectRow::Dsc(const std::string& type, const std::string& price, const std::string& rate) {
  m_dscType = type;
  m_price = price;
  m_rate = rate;
  return *this;
}

DirectRow& DirectRow::SaleCount(const std::string& count) {
  m_saleCount = count;
  return *this;
}

DirectRow& DirectRow::AtMost(const std::string& count) {
  m_atMost = count;
  return *this;
}

std::string DirectRow::Insert() const {
  const std::string texts = "'" + m_code + "','" + m_type + "','IN','" + m_dscType + "'";
  return "insert into tProPrjDirectProAct (BillNo,SerialNo,PluCode,PluType,InRange,DscType,DscPrice,DscRate,SaleCount,"
         "TradeMaxCount) values ('" +
         m_billNo + "'," + std::to_string(m_serialNo) + "," + texts + "," + m_price + "," + m_rate + "," + m_saleCount +
         "," + m_atMost + ");";
}

std::string RuleXml(const std::string& billNo, const std::string& proType, const std::string& header,
                    const std::string& groups, bool ownFilters) {
  const AttributeList usual = {
      {"BillNo", billNo}, {"OrgCode", "S01"}, {"ProType", proType},     {"ProMode", proType.substr(0, 2)},
      {"ProStatus", "1"}, {"Primary", "PT"},  {"JzDate", "2026-01-01"}, {"MaxYhValue", "0"},
      {"MaxYhType", ""},  {"Remark", ""}};
  std::string xml = "<Rules><Rule";
  for (const auto& [name, value] : Overruled(usual, header)) xml.append(" ").append(name).append("=\"" + value + "\"");
  xml += ">";
  if (!ownFilters) xml.append(kEveryOrganisation).append(kEveryDay);
  return xml + groups + "</Rule></Rules>";
}

std::string SaleXml(const std::string& lines, const std::string& groups, const std::string& isCalc) {
  return "<Sale OrgCode=\"S01\" BillNo=\"B1\" IsCalc=\"" + isCalc + "\"><Plu>" + lines + "</Plu>" + groups + "</Sale>";
}

std::string LineXml(int serialNo, const std::string& pluCode, const std::string& price, const std::string& count,
                    const std::string& total, const std::string& more) {
  return "<D SerialNo=\"" + std::to_string(serialNo) + "\" PluCode=\"" + pluCode + "\" Price=\"" + price +
         "\" PluCount=\"" + count + "\" Total=\"" + total +
         "\" PackCnt=\"1\" SaleDate=\"2026-11-21\" SaleTime=\"10:00:00\" " + more + "/>";
}

}  // namespace Corvane::Testing
