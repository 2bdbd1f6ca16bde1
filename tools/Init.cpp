#include <sqlite3.h>

#include <iostream>
#include <memory>
#include <system_error>

#include "Commands.h"
#include "Schema.h"
#include "StoreTemplates.h"
#include "ToolError.h"
#include "XmlFile.h"

namespace Corvane::Tool {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSettings = "[DataBase]\nDbType=SQLITE\nDBName=./store.db\n";

struct CloseDatabase {
  void operator()(sqlite3* database) const { sqlite3_close(database); }
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;

void Execute(const Database& database, const fs::path& file, const std::string& statements) {
  if (sqlite3_exec(database.get(), statements.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK) return;
  throw ToolError(file.string() + ": " + sqlite3_errmsg(database.get()));
}

void MakeDatabase(const fs::path& file, const std::string& rows) {
  sqlite3* opened = nullptr;
  const int code = sqlite3_open_v2(file.c_str(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
  const Database database(opened);
  if (code != SQLITE_OK) throw ToolError(file.string() + ": " + sqlite3_errstr(code));
  // In one piece: a database is whole or empty.
  Execute(database, file, "BEGIN;\n" + std::string(kSqliteSchema) + rows + "\nCOMMIT;");
}

/// Makes the folder if it isn't there. One with something in it may be somebody's store.
void RequireEmptyFolder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) throw ToolError(folder.string() + ": the folder can't be made: " + error.message());
  const bool isEmpty = fs::is_empty(folder, error);
  if (error) throw ToolError(folder.string() + ": " + error.message());
  if (!isEmpty) throw ToolError(folder.string() + ": the folder isn't empty; give one that is, or a new one");
}

/// The path as a shell takes it.
std::string ForShell(const fs::path& path) {
  std::string text = path.string();
  const char* const plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-./+,@%:=";
  if (text.find_first_not_of(plain) == std::string::npos) return text;
  std::string quoted = "'";
  for (const char letter : text) quoted += letter == '\'' ? "'\\''" : std::string(1, letter);
  return quoted + "'";
}

/// A path that begins with a dash would be taken for an option.
fs::path AsArgument(const fs::path& path) { return path.string().rfind('-', 0) == 0 ? fs::path(".") / path : path; }

}  // namespace

int RunInit(const InitCommand& command) {
  const StoreTemplate& store = TemplateOf(command.type);
  RequireEmptyFolder(command.folder);
  WriteFile(command.folder / "config.ini", kSettings);
  WriteFile(command.folder / "rules" / (store.type + "-1.xml"), RuleXml(store));
  WriteFile(command.folder / "goods.xml", GoodsXml());
  WriteFile(command.folder / "sale.xml", SaleXml(store));
  MakeDatabase(command.folder / "store.db", store.rows);
  const fs::path folder = AsArgument(command.folder);
  std::cout << "A store with one rule, " << store.type << ": " << store.name << ". Try it:\n\n  qncorvane calc --store "
            << ForShell(folder) << " --mode " << store.modes << " " << ForShell(folder / "sale.xml") << "\n";
  return 0;
}

}  // namespace Corvane::Tool
