#include "tests/face/Face.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

namespace Corvane::Testing {

namespace {

namespace fs = std::filesystem;

std::string ReadFile(const fs::path& path) {
  const std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  EXPECT_TRUE(file.good()) << path;
  return text.str();
}

Told Taken(int code, char* text, char* error) {
  Told told{code, text == nullptr ? "" : text, error == nullptr ? "" : error};
  qnc_free(text);
  qnc_free(error);
  EXPECT_EQ(code == QNC_OK, told.Error.empty()) << code << ": " << told.Error;
  return told;
}

std::vector<fs::path> SqlFiles() {
  const fs::path samples = fs::path(QNCORVANE_SOURCE_DIR) / "samples";
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(samples / "data")) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  files.insert(files.begin(), samples / "schema" / "sqlite.sql");
  return files;
}

}  // namespace

StoreFolder::StoreFolder() {
  std::string pattern = (fs::temp_directory_path() / "qncorvane-face-XXXXXX").string();
  m_path = mkdtemp(pattern.data());
  fs::copy(fs::path(QNCORVANE_SOURCE_DIR) / "samples" / "store", m_path, fs::copy_options::recursive);
  for (const fs::path& file : SqlFiles()) Sql("pragma synchronous=off;" + ReadFile(file));
}

StoreFolder::~StoreFolder() {
  std::error_code ignored;
  fs::remove_all(m_path, ignored);
}

void StoreFolder::Write(const std::string& name, const std::string& text) const {
  std::ofstream(m_path + "/" + name, std::ios::binary | std::ios::trunc) << text;
}

void StoreFolder::Remove(const std::string& name) const { fs::remove_all(m_path + "/" + name); }

std::string StoreFolder::Read(const std::string& name) const { return ReadFile(m_path + "/" + name); }

void StoreFolder::Sql(const std::string& statements) const {
  sqlite3* database = nullptr;
  ASSERT_EQ(sqlite3_open((m_path + "/store.db").c_str(), &database), SQLITE_OK);
  char* error = nullptr;
  EXPECT_EQ(sqlite3_exec(database, statements.c_str(), nullptr, nullptr, &error), SQLITE_OK) << error;
  sqlite3_free(error);
  sqlite3_close(database);
}

void StoreFolder::Settings(const std::string& lines) const { Write("config.ini", "[DataBase]\n" + lines + "\n"); }

OpenEngine::OpenEngine(const std::string& folder) {
  char* error = nullptr;
  const int code = qnc_open(folder.c_str(), &m_engine, &error);
  EXPECT_EQ(code, QNC_OK) << error;
  qnc_free(error);
}

OpenEngine::~OpenEngine() { qnc_close(m_engine, nullptr); }

Told OpenEngine::LoadRule(const std::string& xml, const char* name, unsigned flags) const {
  char* error = nullptr;
  const int code = qnc_load_rule(m_engine, xml.c_str(), name, flags, 0, &error);
  return Taken(code, nullptr, error);
}

Told OpenEngine::LoadRules(const char* folder, unsigned flags) const {
  char* report = nullptr;
  char* error = nullptr;
  const int code = qnc_load_rules(m_engine, folder, flags, 0, &report, &error);
  return Taken(code, report, error);
}

Told OpenEngine::ClearRules(const std::string& number) const {
  char* error = nullptr;
  const int code = qnc_clear_rules(m_engine, number.c_str(), 0, &error);
  return Taken(code, nullptr, error);
}

Told OpenEngine::Calculate(const std::string& key, const std::string& mode, const std::string& xml, unsigned flags,
                           unsigned limit) const {
  char* result = nullptr;
  char* error = nullptr;
  const int code = qnc_calculate(m_engine, key.c_str(), mode.c_str(), xml.c_str(), flags, limit, &result, &error);
  return Taken(code, result, error);
}

Told OpenEngine::Forget(const std::string& key) const {
  char* error = nullptr;
  const int code = qnc_forget_sale(m_engine, key.c_str(), 0, &error);
  return Taken(code, nullptr, error);
}

Told OpenEngine::State() const {
  char* state = nullptr;
  char* error = nullptr;
  const int code = qnc_state(m_engine, 0, &state, &error);
  return Taken(code, state, error);
}

Told TryOpening(const std::string& folder) {
  qnc_engine* engine = nullptr;
  char* error = nullptr;
  const int code = qnc_open(folder.c_str(), &engine, &error);
  EXPECT_EQ(code == QNC_OK, engine != nullptr);
  if (engine != nullptr) qnc_close(engine, nullptr);
  return Taken(code, nullptr, error);
}

Told Check(const std::string& folder, unsigned limit) {
  char* report = nullptr;
  char* error = nullptr;
  const int code = qnc_check(folder.c_str(), limit, &report, &error);
  return Taken(code, report, error);
}

Told Lint(const std::string& folder, unsigned limit) {
  char* report = nullptr;
  char* error = nullptr;
  const int code = qnc_lint(folder.c_str(), limit, &report, &error);
  return Taken(code, report, error);
}

std::string Sample(const std::string& name) { return ReadFile(fs::path(QNCORVANE_SOURCE_DIR) / "samples" / name); }

std::string RuleXml(const std::string& number, const std::string& type) {
  return R"(<Rules><Rule BillNo=")" + number + R"(" ProType=")" + type +
         R"(" ProMode="PT" Primary="PT" JzDate="2024-06-01"><OrgFilter><Row OrgCode="*"/></OrgFilter><ProTime>)"
         R"(<Row StartDate="2024-01-01" EndDate="2099-12-31" Frequency="DAY"/></ProTime></Rule></Rules>)";
}

std::string SaleXml(const std::string& attributes) {
  return R"(<Sale BillNo="S" OrgCode="01" IsCalc="0"><Plu><Row PackCnt="1" SaleDate="2024-06-15" SaleTime="10:30:00" )" +
         attributes + "/></Plu></Sale>";
}

}  // namespace Corvane::Testing
