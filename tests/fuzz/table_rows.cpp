// Rows of the rule tables with any value in any column, and sales under them.
//
// An input is a row of steps, each a byte and what belongs to it:
//   a table row: the table, the rule that it is of, and how many columns have another value than a usual row; for each of
//                them the column and the value, which is a byte for its form and what belongs to that
//   a rule:      the type to load as, and the XML up to a zero byte; the first one takes the place of the shop's rules
//   a call:      the mode, and the sale's XML up to a zero byte; empty for a sale of all goods of the shop
// Without a call, the sale of all goods goes through the modes in their usual order.
#include <sqlite3.h>

#include <cmath>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include "qncorvane/qncorvane.h"
#include "tests/fuzz/Check.h"
#include "tests/fuzz/Formats.h"
#include "tests/fuzz/Shop.h"
#include "tests/fuzz/Target.h"

namespace {

using namespace Corvane::Fuzz;

constexpr const char* kKey = "sale";
constexpr int kMostRows = 60;
constexpr int kMostRules = 8;
constexpr int kMostCalls = 8;
constexpr std::size_t kMostColumns = 16;

constexpr const char* kWords[] = {
    "SUM",   "NUM",   "PRC",  "RAT",   "2",      "DP",     "TC",     "IN",     "NOT",    "PLU",    "CAT",    "BRD",
    "*",     "ALL",   "DES",  "1",     "0",      "",       "100101", "950101", "950201", "300101", "300201", "HOUSE",
    "DAIRY", "CARE",  "LAVA", "NONNA", "600201", "600301", "700101", "700102", "700103", "800101", "800201", "SNACK",
    "DRINK", "SWEET", "C5",   "nan",   "inf",    "1e999",  "0x10",   " 7 ",    "-1",     "9,9",    "1e-320", "true"};

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kDoubles[] = {kInfinity, -kInfinity,   1.7e308,       -1.7e308,           5e-324, 1e15,
                               -0.0,      2147483648.0, -2147483649.0, 9007199254740993.0, 0.005,  1e-9,
                               1e-10,     0.1,          1e9,           99999999999999.0,   1e300};

/// Puts a value of any form into a statement.
void Bind(sqlite3_stmt* statement, int place, Bytes& input) {
  const auto text = [&](const std::string& value) {
    sqlite3_bind_text(statement, place, value.data(), static_cast<int>(value.size()), SQLITE_TRANSIENT);
  };
  switch (input.Below(ValueForm::kCount)) {
    case ValueForm::kNull:
      sqlite3_bind_null(statement, place);
      return;
    case ValueForm::kInteger:
      sqlite3_bind_int64(statement, place, input.Raw<std::int64_t>());
      return;
    case ValueForm::kReal:
      sqlite3_bind_double(statement, place, input.Raw<double>());
      return;
    case ValueForm::kText:
      return text(input.Text());
    case ValueForm::kBlob: {
      const std::string bytes = input.Text();
      sqlite3_bind_blob(statement, place, bytes.data(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT);
      return;
    }
    case ValueForm::kSmallInteger:
      sqlite3_bind_int64(statement, place, input.Raw<std::int8_t>());
      return;
    case ValueForm::kMoney:
      sqlite3_bind_double(statement, place, input.Raw<std::int16_t>() / 100.0);
      return;
    case ValueForm::kNumberText:
      return text(std::to_string(input.Raw<std::int16_t>()) + "." + std::to_string(input.Byte()));
    case ValueForm::kOddReal:
      sqlite3_bind_double(statement, place, kDoubles[input.Below(std::size(kDoubles))]);
      return;
    case ValueForm::kTextWithZero:
      return text(input.Text() + std::string("\0'", 2));
    default:
      return text(kWords[input.Below(std::size(kWords))]);
  }
}

sqlite3_stmt* Insertion(std::size_t table) {
  static std::vector<sqlite3_stmt*> prepared(Tables().size());
  if (prepared[table] == nullptr) {
    std::string sql = std::string("insert into ") + Tables()[table].Name + " values (?";
    for (std::size_t column = 1; column < Tables()[table].Columns.size(); ++column) sql += ",?";
    Require(sqlite3_prepare_v2(Store(), (sql + ")").c_str(), -1, &prepared[table], nullptr) == SQLITE_OK,
            "a row can be written", sql);
  }
  return prepared[table];
}

void AddRow(Bytes& input, const std::vector<std::string>& billNos) {
  const std::size_t table = input.Below(Tables().size());
  const std::vector<const char*>& usual = Tables()[table].Usual;
  sqlite3_stmt* const row = Insertion(table);
  const std::string& billNo = billNos[input.Below(billNos.size())];
  sqlite3_bind_text(row, 1, billNo.data(), static_cast<int>(billNo.size()), SQLITE_TRANSIENT);
  for (std::size_t column = 1; column < usual.size(); ++column) {
    sqlite3_bind_text(row, static_cast<int>(column) + 1, usual[column], -1, SQLITE_STATIC);
  }
  for (std::size_t changes = input.Below(kMostColumns); changes > 0; --changes) {
    Bind(row, static_cast<int>(input.Below(usual.size())) + 1, input);
  }
  Require(sqlite3_step(row) == SQLITE_DONE, "a row is written");
  sqlite3_reset(row);
}

std::vector<std::string> ShopBillNos() {
  std::vector<std::string> numbers;
  for (const LoadedRule& rule : ShopRules()) {
    const std::size_t begin = rule.Xml.find("BillNo=\"") + 8;
    numbers.push_back(rule.Xml.substr(begin, rule.Xml.find('"', begin) - begin));
  }
  return numbers;
}

void UsualCalls(bool isUtf8) {
  Calc(kKey, "All", BigSale().c_str(), isUtf8);
  for (const char* mode : {"MzPromotion", "Gift"}) Calc(kKey, mode, "<Sale/>", isUtf8);
}

/// The store as it is between inputs.
void Restore(bool hasOwnRules) {
  std::string sql = "begin;";
  for (const Table& table : Tables()) sql += std::string("delete from ") + table.Name + ";";
  Sql(sql + "commit");
  if (!hasOwnRules) return;
  Require(Clear("*").Code == 0, "rules are cleared");
  LoadShopRules();
}

}  // namespace

void Corvane::Fuzz::Prepare() {
  MakeStore();
  for (const Table& table : Tables()) {
    // Columns without a type take a value as it is.
    std::string sql = std::string("drop table ") + table.Name + "; create table " + table.Name + "(";
    for (const char* column : table.Columns) sql += std::string(column) + ",";
    sql.back() = ')';
    Sql(sql);
  }
  LoadShopRules();
}

void Corvane::Fuzz::Try(Bytes input) {
  static const std::vector<std::string> billNos = ShopBillNos();
  int rows = 0;
  int rules = 0;
  int calls = 0;
  bool isUtf8 = true;  // what the store holds comes out of it as UTF-8
  Sql("begin");
  while (!input.AtEnd() && rows < kMostRows && rules < kMostRules && calls < kMostCalls) {
    const std::size_t step = input.Below(Step::kCount);
    if (step < Step::kRule) {
      AddRow(input, billNos);
      ++rows;
    } else if (step == Step::kRule) {
      if (rules++ == 0) Require(Clear("*").Code == 0, "rules are cleared");
      const char* const type = kTypes[input.Below(std::size(kTypes))];
      const std::string xml = input.Text();
      isUtf8 = isUtf8 && IsUtf8(xml);
      Require(Load(type, xml.c_str()).Code == 0, "a rule of any text is loaded");
    } else {
      const char* const mode = kModes[input.Below(std::size(kModes))];
      const std::string xml = input.Text();
      isUtf8 = isUtf8 && IsUtf8(xml);
      if (sqlite3_get_autocommit(Store()) == 0) Sql("commit");
      Calc(kKey, mode, (xml.empty() ? BigSale() : xml).c_str(), isUtf8);
      ++calls;
    }
  }
  if (sqlite3_get_autocommit(Store()) == 0) Sql("commit");
  if (calls == 0) UsualCalls(isUtf8);
  Require(DeleteSaleSetByKey(kKey) == 0, "a sale is deleted");
  Restore(rules > 0);
  RequireSameSale();
}
