#include "tests/fuzz/Shop.h"

#include <sqlite3.h>
#include <stdlib.h>
#include <tinyxml.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include "qncorvane/qncorvane.h"
#include "tests/fuzz/Check.h"

namespace Corvane::Fuzz {

namespace {

namespace fs = std::filesystem;

const std::string kSource = QNCORVANE_SOURCE_DIR;

/// A folder in memory spares the disk, and a machine without one has its usual place.
class Folder {
 public:
  Folder() {
    std::error_code ignored;
    const fs::path parent = fs::is_directory("/dev/shm", ignored) ? "/dev/shm" : fs::temp_directory_path();
    std::string pattern = (parent / "qncorvane-fuzz-XXXXXX").string();
    Require(mkdtemp(pattern.data()) != nullptr, "there is a temporary folder", pattern);
    m_path = pattern;
    fs::current_path(m_path);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
  }
  const std::string& Path() const { return m_path; }

 private:
  std::string m_path;
};

std::vector<std::string> FilesIn(const std::string& folder, const std::string& extension) {
  std::vector<std::string> files;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() == extension) files.push_back(entry.path().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

/// Exactly so many bytes on the heap.
class Room {
 public:
  explicit Room(std::size_t size) : m_bytes(new char[size]) { m_bytes[0] = '\0'; }
  char* Data() { return m_bytes.get(); }
  std::string Text() const { return m_bytes.get(); }

 private:
  std::unique_ptr<char[]> m_bytes;
};

// What the calls ask for.
constexpr std::size_t kInitMsg = 22;
constexpr std::size_t kClearMsg = 18;
constexpr std::size_t kCalcMsg = 25;
constexpr std::size_t kClearSalesMsg = 18;
constexpr std::size_t kStateWord = 6;
/// More than any result of an input of the size that the fuzzer makes.
constexpr std::size_t kResult = std::size_t{64} << 20U;

char* ResultRoom() {
  static char* const room = new char[kResult];
  return room;
}

bool IsOneOf(const std::string& text, std::initializer_list<const char*> texts) {
  return std::any_of(texts.begin(), texts.end(), [&](const char* one) { return text == one; });
}

std::string TypeOf(const std::string& xml) {
  TiXmlDocument document;
  document.Parse(xml.c_str());
  const char* const type =
      TiXmlHandle(&document).FirstChildElement().FirstChildElement().Element()->Attribute("ProType");
  // A rule that gives coupons is loaded as one that takes them.
  return std::strcmp(type, "MZZQ") == 0 ? "MZYQ" : type;
}

std::vector<LoadedRule> ReadShopRules() {
  std::vector<LoadedRule> rules;
  for (const char* folder : {"/samples/store/rules", "/tests/fuzz/store"}) {
    for (const std::string& file : FilesIn(kSource + folder, ".xml")) {
      if (file.find("sale.xml") != std::string::npos) continue;
      const std::string xml = FileText(file);
      rules.push_back({TypeOf(xml), xml});
    }
  }
  return rules;
}

}  // namespace

const std::string& EnterFolder() {
  static const Folder folder;
  return folder.Path();
}

std::string FileText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  Require(file.good(), "a file is there", path);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void MakeStore() {
  // Gathered entries are the lesser cost: one file access a call.
  std::ofstream("config.ini") << "[DataBase]\nDbType=SQLITE\nDBName=" << EnterFolder()
                              << "/store.db\n[Log]\nFlush=call\n";
  Sql(FileText(kSource + "/samples/schema/sqlite.sql"));
  for (const char* folder : {"/samples/data", "/tests/fuzz/store"}) {
    for (const std::string& file : FilesIn(kSource + folder, ".sql")) Sql(FileText(file));
  }
}

sqlite3* Store() {
  static sqlite3* const store = [] {
    sqlite3* opened = nullptr;
    const std::string path = EnterFolder() + "/store.db";
    Require(sqlite3_open(path.c_str(), &opened) == SQLITE_OK, "the store opens", path);
    sqlite3_busy_timeout(opened, 5000);
    sqlite3_exec(opened, "pragma synchronous=off; pragma journal_mode=memory;", nullptr, nullptr, nullptr);
    return opened;
  }();
  return store;
}

void Sql(const std::string& statements) {
  char* error = nullptr;
  const int code = sqlite3_exec(Store(), statements.c_str(), nullptr, nullptr, &error);
  Require(code == SQLITE_OK, "a statement runs", error != nullptr ? error : "");
}

long long Number(const char* statement) {
  sqlite3_stmt* prepared = nullptr;
  Require(sqlite3_prepare_v2(Store(), statement, -1, &prepared, nullptr) == SQLITE_OK, "a statement runs", statement);
  Require(sqlite3_step(prepared) == SQLITE_ROW, "a statement brings a row", statement);
  const long long number = sqlite3_column_int64(prepared, 0);
  sqlite3_finalize(prepared);
  return number;
}

const std::vector<LoadedRule>& ShopRules() {
  static const std::vector<LoadedRule> rules = ReadShopRules();
  return rules;
}

Answer Load(const char* type, const char* xml) {
  Room msg(kInitMsg + (xml != nullptr ? std::strlen(xml) : 0));
  Answer answer{InitPromotion(type, xml, msg.Data()), msg.Text(), ""};
  Require(answer.Code == 0 || answer.Code == -1, "a load answers 0 or -1");
  const std::string failed = std::string("pro initialize failed") + (xml != nullptr ? xml : "");
  Require(answer.Msg == (answer.Code == 0 ? "sucess" : failed), "a load tells how it went", answer.Msg);
  return answer;
}

Answer Clear(const char* billNo) {
  Room msg(kClearMsg);
  Answer answer{ClearPromotion(msg.Data(), billNo), msg.Text(), ""};
  const bool isTold = answer.Code == 0 ? answer.Msg == "sucess"
                                       : IsOneOf(answer.Msg, {"pro inititalzing", "pro cleaning", "pro using"});
  Require(isTold, "clearing tells how it went", answer.Msg);
  return answer;
}

Answer Calc(const char* key, const char* mode, const char* xml, bool isUtf8) {
  Room msg(kCalcMsg);
  ResultRoom()[0] = '\0';
  Answer answer{CalcPromotion(key, mode, xml, ResultRoom(), msg.Data()), msg.Text(), ResultRoom()};
  const bool isGift = mode != nullptr && std::strcmp(mode, "Gift") == 0;
  Require(answer.Code == 0 || answer.Code == -1 || (isGift && (answer.Code == -2 || answer.Code == -3)),
          "a calculation answers 0 or -1");
  Require(!answer.Msg.empty(), "a calculation tells how it went");
  if (answer.Code != 0) {
    Require(answer.Out.empty(), "a call that fails leaves the result alone", answer.Out);
    return answer;
  }
  Require(answer.Msg == "sucess", "a calculation that went well says so", answer.Msg);
  RequireResult(answer.Out, isUtf8);
  return answer;
}

Answer ClearSales() {
  Room msg(kClearSalesMsg);
  Answer answer{ClearSaleSetForNet(msg.Data()), msg.Text(), ""};
  const bool isTold = answer.Code == 0 ? answer.Msg == "sucess"
                                       : IsOneOf(answer.Msg, {"pro inititalzing", "pro cleaning", "pro using"});
  Require(isTold, "clearing sales tells how it went", answer.Msg);
  return answer;
}

std::string State() {
  Room word(kStateWord);
  Require(GetState(word.Data()) == word.Data(), "the state is in the caller's buffer");
  return word.Text();
}

void LoadShopRules() {
  Require(BeginInitPro() == 0, "the store opens");
  for (const LoadedRule& rule : ShopRules()) {
    Require(Load(rule.Type.c_str(), rule.Xml.c_str()).Code == 0, "a rule is loaded", rule.Xml);
  }
  FinishInitPro();
}

const std::string& BigSale() {
  static const std::string sale = FileText(kSource + "/tests/fuzz/store/sale.xml");
  return sale;
}

const LoadedRule& ProbeRule() {
  return *std::find_if(ShopRules().begin(), ShopRules().end(),
                       [](const LoadedRule& rule) { return rule.Type == "ZHZY"; });
}

void RequireSameSale() {
  constexpr const char* kSale =
      "<Sale BillNo='S' OrgCode='01' IsCalc='0'><Plu><R SerialNo='1' PluCode='600301' Price='2.90' PluCount='3' "
      "Total='8.70' PackCnt='1' SaleDate='2026-11-21' SaleTime='10:00:00'/></Plu></Sale>";
  constexpr const char* kKey = "the next call";
  const Answer answer = Calc(kKey, "Zh", kSale, true);
  DeleteSaleSetByKey(kKey);
  static const std::string first = answer.Out;
  Require(answer.Code == 0 && answer.Out == first, "the next call works as the first", answer.Out);
}

}  // namespace Corvane::Fuzz
