// Put in front of the engine's calls (LD_PRELOAD), writes what a test gives to them as inputs of the targets: table_rows
// gets the rules, the store's rows and the sales of each test, rule_xml each rule. The folder RECORD_TO/TARGET must be
// there for both.
#include <dlfcn.h>
#include <sqlite3.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "qncorvane/qncorvane.h"
#include "tests/fuzz/Formats.h"

namespace {

using namespace Corvane::Fuzz;

char Sign(std::size_t value) { return static_cast<char>(value); }

std::string Closed(const char* text) { return std::string(text == nullptr ? "" : text) + '\0'; }

/// A name that two equal inputs share.
void Write(const std::string& target, const std::string& input) {
  const char* const folder = std::getenv("RECORD_TO");
  if (folder == nullptr || input.empty()) return;
  const std::string name = std::to_string(std::hash<std::string>()(input));
  std::ofstream(folder + ("/" + target) + "/scenario-" + name, std::ios::binary) << input;
}

template <class Number>
std::string Raw(Number number) {
  std::string bytes(sizeof number, '\0');
  std::memcpy(bytes.data(), &number, sizeof number);
  return bytes;
}

std::string Value(sqlite3_stmt* row, int column) {
  switch (sqlite3_column_type(row, column)) {
    case SQLITE_NULL:
      return {Sign(ValueForm::kNull)};
    case SQLITE_INTEGER:
      return Sign(ValueForm::kInteger) + Raw(static_cast<std::int64_t>(sqlite3_column_int64(row, column)));
    case SQLITE_FLOAT:
      return Sign(ValueForm::kReal) + Raw(sqlite3_column_double(row, column));
    default:
      return Sign(ValueForm::kText) + Closed(reinterpret_cast<const char*>(sqlite3_column_text(row, column)));
  }
}

/// All rows of a table of the store in the current directory.
std::string Rows(sqlite3* store, std::size_t table) {
  std::string sql = "select ";
  for (const char* column : Tables()[table].Columns) sql += std::string(column) + ",";
  sql.back() = ' ';
  sqlite3_stmt* row = nullptr;
  std::string input;
  if (sqlite3_prepare_v2(store, (sql + "from " + Tables()[table].Name).c_str(), -1, &row, nullptr) != SQLITE_OK)
    return "";
  while (sqlite3_step(row) == SQLITE_ROW) {
    const std::size_t columns = Tables()[table].Columns.size();
    input += std::string{Sign(Step::kRow), Sign(table), '\0', Sign(columns)};
    for (std::size_t column = 0; column < columns; ++column) {
      input += Sign(column) + Value(row, static_cast<int>(column));
    }
  }
  sqlite3_finalize(row);
  return input;
}

std::string StoreRows() {
  sqlite3* store = nullptr;
  std::string input;
  if (sqlite3_open_v2("store.db", &store, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
    for (std::size_t table = 0; table < Tables().size(); ++table) input += Rows(store, table);
  }
  sqlite3_close(store);
  return input;
}

/// One test's rules, rows and sales.
class Recording {
 public:
  ~Recording() { End(); }
  void Rule(std::size_t type, const char* xml) {
    m_input += std::string{Sign(Step::kRule), Sign(type)} + Closed(xml);
    m_hasRows = false;
  }
  void Call(std::size_t mode, const char* xml) {
    if (!m_hasRows) m_input += StoreRows();
    m_hasRows = true;
    m_hasCalls = true;
    m_input += std::string{Sign(Step::kCall), Sign(mode)} + Closed(xml);
  }
  void End() {
    if (m_hasCalls) Write("table_rows", m_input);
    m_input.clear();
    m_hasRows = false;
    m_hasCalls = false;
  }

 private:
  std::string m_input;
  bool m_hasRows = false;
  bool m_hasCalls = false;
};

Recording& Now() {
  static Recording recording;
  return recording;
}

template <class Words>
std::size_t PlaceOf(const Words& words, const char* word) {
  std::size_t place = 0;
  while (place < std::size(words) && std::strcmp(words[place], word == nullptr ? "" : word) != 0) ++place;
  return place;
}

template <class Call>
Call Next(const char* name) {
  return reinterpret_cast<Call>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

int InitPromotion(const char* type, const char* xml, char* msg) {
  const std::size_t place = PlaceOf(kTypes, type);
  if (place < std::size(kTypes)) {
    Now().Rule(place, xml);
    Write("rule_xml", Sign(place) + std::string(xml == nullptr ? "" : xml));
  }
  return Next<decltype(&InitPromotion)>("InitPromotion")(type, xml, msg);
}

int ClearPromotion(char* msg, const char* billNo) {
  Now().End();
  return Next<decltype(&ClearPromotion)>("ClearPromotion")(msg, billNo);
}

int CalcPromotion(const char* key, const char* mode, const char* xml, char* out, char* msg) {
  const std::size_t place = PlaceOf(kModes, mode);
  if (place < std::size(kModes)) Now().Call(place, xml);
  return Next<decltype(&CalcPromotion)>("CalcPromotion")(key, mode, xml, out, msg);
}

}  // extern "C"
