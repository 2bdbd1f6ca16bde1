#include <gmock/gmock.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "tests/face/Face.h"

using ::testing::HasSubstr;

namespace Corvane::Testing {
namespace {

using Json = nlohmann::json;

/// "severity where: what", one for each finding.
std::vector<std::string> FindingsIn(const Told& told) {
  std::vector<std::string> findings;
  const Json report = Json::parse(told.Text);
  for (const Json& finding : report["findings"]) {
    EXPECT_FALSE(finding["mend"].get<std::string>().empty());
    findings.push_back(finding["severity"].get<std::string>() + " " + finding["where"].get<std::string>() + ": " +
                       finding["what"].get<std::string>());
  }
  return findings;
}

TEST(Checking, FindsNothingInTheSampleStore) {
  const StoreFolder store;
  const Told told = Check(store.Path());
  EXPECT_EQ(told.Code, QNC_OK);
  EXPECT_EQ(told.Text, R"({"folder":")" + store.Path() + R"(","ok":true,"findings":[]})");
}

/// A store with something wrong.
struct Broken {
  const char* Name;
  std::function<void(const StoreFolder&)> Break;
  std::string Finding;  ///< the first that is told
  int Code = QNC_BAD_STORE;
};

std::string NameOf(const ::testing::TestParamInfo<Broken>& broken) { return broken.param.Name; }

class BrokenStores : public ::testing::TestWithParam<Broken> {};

TEST_P(BrokenStores, AreToldAndNotOpened) {
  const StoreFolder store;
  GetParam().Break(store);
  const Told told = Check(store.Path());
  EXPECT_EQ(told.Code, GetParam().Code) << told.Error;
  const std::vector<std::string> findings = FindingsIn(told);
  ASSERT_FALSE(findings.empty());
  EXPECT_THAT(findings.front(), HasSubstr(GetParam().Finding));
  const bool isError = findings.front().rfind("error", 0) == 0;
  EXPECT_EQ(isError, GetParam().Code != QNC_OK);
  EXPECT_EQ(Json::parse(told.Text)["ok"].get<bool>(), !isError);
  // What stands in the database's way stands in the engine's; rules are told when they are loaded.
  EXPECT_EQ(TryOpening(store.Path()).Code, GetParam().Code == QNC_BAD_STORE ? QNC_BAD_STORE : QNC_OK);
}

INSTANTIATE_TEST_SUITE_P(
    Settings, BrokenStores,
    ::testing::Values(
        Broken{"NoFile", [](const StoreFolder& s) { s.Remove("config.ini"); },
               "error config.ini: the folder has no such file"},
        Broken{"AFolder",
               [](const StoreFolder& s) {
                 s.Remove("config.ini");
                 std::filesystem::create_directory(s / "config.ini");
               },
               "error config.ini: can't be read"},
        Broken{"Empty", [](const StoreFolder& s) { s.Write("config.ini", ""); },
               "error config.ini: DbType is missing in the section [DataBase]"},
        Broken{"OtherSection", [](const StoreFolder& s) { s.Write("config.ini", "[Database1]\nDbType=SQLITE\n"); },
               "error config.ini: DbType is missing"},
        Broken{"UnknownKind", [](const StoreFolder& s) { s.Settings("DbType=SQLLITE\nDBName=./store.db"); },
               "error config.ini: DbType 'SQLLITE' is no kind of database"},
        Broken{"NoDriver", [](const StoreFolder& s) { s.Settings("DbType=ORACLE\nDBName=shop"); },
               "error config.ini: DbType 'ORACLE' needs Qt's driver QOCI, which is not there"},
        Broken{"NoDatabaseName", [](const StoreFolder& s) { s.Settings("DbType=SQLITE"); },
               "error config.ini: DBName is missing"},
        Broken{"MisspeltKey", [](const StoreFolder& s) { s.Settings("DbType=SQLITE\nDBName=./store.db\nDbPort=1"); },
               "warning config.ini: nothing reads the key 'DbPort' of [DataBase]", QNC_OK},
        Broken{"TimeoutInWords",
               [](const StoreFolder& s) { s.Settings("DbType=SQLITE\nDBName=./store.db\nReadTimeout=short"); },
               "warning config.ini: ReadTimeout 'short' is no whole number", QNC_OK}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Databases, BrokenStores,
    ::testing::Values(Broken{"Missing", [](const StoreFolder& s) { s.Remove("store.db"); },
                             "error ./store.db: the database file is missing"},
                      Broken{"Empty", [](const StoreFolder& s) { s.Write("store.db", ""); },
                             "error ./store.db: the database file is empty"},
                      Broken{"NoDatabase",
                             [](const StoreFolder& s) { s.Write("store.db", "This is a text and no database."); },
                             "error ./store.db: is no SQLite database"},
                      Broken{"AFolder",
                             [](const StoreFolder& s) {
                               s.Remove("store.db");
                               std::filesystem::create_directory(s / "store.db");
                             },
                             "error ./store.db: is no file"},
                      Broken{"CutOff",
                             [](const StoreFolder& s) { s.Write("store.db", s.Read("store.db").substr(0, 2000)); },
                             "error tProPrjDirectProAct: the table can't be read"},
                      Broken{"WithoutTables",
                             [](const StoreFolder& s) {
                               s.Remove("store.db");
                               s.Sql("create table other (a)");
                             },
                             "error tProPrjDirectProAct: the table can't be read: no such table: tProPrjDirectProAct"}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Rules, BrokenStores,
    ::testing::Values(
        Broken{"NoFolder", [](const StoreFolder& s) { s.Remove("rules"); }, "warning rules: there is no such folder",
               QNC_OK},
        Broken{"None",
               [](const StoreFolder& s) {
                 s.Remove("rules");
                 std::filesystem::create_directory(s / "rules");
               },
               "warning rules: there is no rule in it", QNC_OK},
        Broken{"NoXml", [](const StoreFolder& s) { s.Write("rules/A.xml", "<Rules>\n<Rule"); },
               "error rules/A.xml:2:6: is not XML", QNC_BAD_XML},
        Broken{"WrongDate",
               [](const StoreFolder& s) {
                 s.Write("rules/A.xml",
                         "<Rules><Rule BillNo='A' ProType='PTXS'>\n<ProTime><Row EndDate='31.12.2027'/>"
                         "</ProTime></Rule></Rules>");
               },
               "error rules/A.xml:2: EndDate '31.12.2027' is not YYYY-MM-DD", QNC_BAD_VALUE},
        Broken{
            "SameNumberTwice", [](const StoreFolder& s) { s.Write("rules/PTXS-02b.xml", RuleXml("PTXS-01")); },
            "warning rules/PTXS-02b.xml: BillNo 'PTXS-01' is that of rules/PTXS-01-juice.xml, which this file replaces",
            QNC_OK}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(Logs, BrokenStores,
                         ::testing::Values(Broken{
                             "AFolder",
                             [](const StoreFolder& s) { std::filesystem::create_directory(s / "QnCorvane.txt"); },
                             "warning QnCorvane.txt: the log can't be written", QNC_OK}),
                         NameOf);

TEST(Checking, OfAFolderThatIsNotThereSaysSo) {
  EXPECT_EQ(Check("").Code, QNC_BAD_ARGUMENT);
  const Told told = Check("/nowhere/at/all");
  EXPECT_EQ(told.Code, QNC_BAD_STORE);
  EXPECT_THAT(FindingsIn(told), ::testing::ElementsAre("error /nowhere/at/all: there is no such folder"));
}

TEST(Checking, NamesDebiansPackageOfADriver) {
  const StoreFolder store;
  store.Settings("DbType=ORACLE");
  EXPECT_THAT(TryOpening(store.Path()).Error, HasSubstr("Debian has no package of it"));
}

/// What Qt's driver puts behind each of SQLite's reasons.
const std::string kDriversWords = " Unable to execute statement";

using Columns = std::vector<std::pair<std::string, std::string>>;

/// Every table and column of the table definitions.
Columns ColumnsOf(const StoreFolder& store) {
  Columns columns;
  sqlite3* database = nullptr;
  EXPECT_EQ(sqlite3_open((store / "store.db").c_str(), &database), SQLITE_OK);
  const auto add = [](void* to, int, char** values, char**) {
    static_cast<Columns*>(to)->emplace_back(values[0], values[1]);
    return 0;
  };
  sqlite3_exec(database, "select m.name, c.name from sqlite_master m, pragma_table_info(m.name) c where m.type='table'",
               add, &columns, nullptr);
  sqlite3_close(database);
  return columns;
}

TEST(Checking, MissesEveryColumnThatTheTableDefinitionsHave) {
  const StoreFolder store;
  const Columns columns = ColumnsOf(store);
  ASSERT_GE(columns.size(), 80U);
  for (const auto& [table, column] : columns) {
    const std::string other = column == "BillNo" ? "BillNoX" : column + "X";
    store.Sql("alter table " + table + " rename column " + column + " to " + other);
    EXPECT_THAT(FindingsIn(Check(store.Path())),
                ::testing::ElementsAre("error " + table + ": the column " + column +
                                       " can't be read: no such column: " + column + kDriversWords));
    store.Sql("alter table " + table + " rename column " + other + " to " + column);
  }
  EXPECT_EQ(Check(store.Path()).Code, QNC_OK);
}

TEST(Checking, MissesEveryTable) {
  const StoreFolder store;
  std::string last;
  for (const auto& [table, column] : ColumnsOf(store)) {
    if (table == last) continue;
    last = table;
    store.Sql("alter table " + table + " rename to away");
    EXPECT_THAT(FindingsIn(Check(store.Path())),
                ::testing::ElementsAre("error " + table + ": the table can't be read: no such table: " + table +
                                       kDriversWords));
    store.Sql("alter table away rename to " + table);
  }
}

TEST(Checking, DoesNotDisturbAnEngineThatIsOpen) {
  const StoreFolder store;
  const StoreFolder other;
  other.Settings("DbType=SQLITE\nDBName=./store.db\n[Log]\nFlush=call");
  const OpenEngine engine(store.Path());
  ASSERT_EQ(engine.LoadRules().Code, QNC_OK);
  const std::string before = engine.Calculate("1", "All", Sample("sales/basket.xml")).Text;
  const std::string state = engine.State().Text;
  EXPECT_EQ(Check(other.Path()).Code, QNC_OK);
  EXPECT_EQ(Check(store.Path()).Code, QNC_OK);
  EXPECT_EQ(engine.State().Text, state);  // the database still open, for one
  other.Remove("store.db");
  EXPECT_EQ(Check(other.Path()).Code, QNC_BAD_STORE);
  EXPECT_EQ(engine.Calculate("1", "All", Sample("sales/basket.xml")).Text, before);
}

TEST(Checking, OfServersThatDoNotAnswerEndsInTime) {
  const StoreFolder store;
  store.Settings("DbType=MYSQL\nServiceName=127.0.0.1\nDBName=shop\nUserName=nobody\nConnectTimeout=1\nReadTimeout=1");
  const Told told = Check(store.Path());
  EXPECT_EQ(told.Code, QNC_BAD_STORE);
  // Without the driver its package is named, with it the server's answer.
  EXPECT_THAT(told.Error, ::testing::AnyOf(HasSubstr("libqt5sql5-mysql"), HasSubstr("the database can't be opened")));
}

}  // namespace
}  // namespace Corvane::Testing
