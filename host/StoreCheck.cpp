#include "host/StoreCheck.h"

#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <map>
#include <utility>

#include "db/HostDirectory.h"
#include "db/Kind.h"
#include "db/QnPosDBPro.h"
#include "db/Settings.h"
#include "host/Failure.h"
#include "host/JsonWriter.h"
#include "host/RuleFolder.h"
#include "host/StoreTables.h"
#include "log/LogFlush.h"

namespace Corvane::Host {

namespace {

constexpr const char* kSettings = "config.ini";
constexpr const char* kKeys[] = {"DbType",   "ServiceName", "DBName",         "UserName",
                                 "Password", "Port",        "ConnectTimeout", "ReadTimeout"};
constexpr const char* kNumberKeys[] = {"Port", "ConnectTimeout", "ReadTimeout"};

Finding Error(std::string where, std::string what, std::string mend) {
  return {Finding::Severity::kError, QNC_BAD_STORE, std::move(where), std::move(what), std::move(mend)};
}

Finding Warning(std::string where, std::string what, std::string mend) {
  return {Finding::Severity::kWarning, QNC_BAD_STORE, std::move(where), std::move(what), std::move(mend)};
}

std::string Quoted(const QString& text) { return "'" + text.toStdString() + "'"; }

/// One look through a store. Each step answers whether the next makes sense.
class StoreCheck {
 public:
  explicit StoreCheck(const std::string& folder) : m_folder(folder), m_path(QString::fromStdString(folder)) {}

  Findings Database() {
    static_cast<void>(CheckFolder() && CheckSettings() && CheckKind() && CheckDriver() && CheckFile() &&
                      CheckOpening());
    return std::move(m_findings);
  }

  Findings Rules() {
    CheckRules();
    CheckLog();
    return std::move(m_findings);
  }

 private:
  bool Refuse(Finding finding) {
    m_findings.push_back(std::move(finding));
    return false;
  }

  bool CheckFolder() {
    const QFileInfo folder(m_path);
    if (!folder.exists()) return Refuse(Error(m_folder, "there is no such folder", "name the folder of a store"));
    if (!folder.isDir()) return Refuse(Error(m_folder, "is no folder", "name the folder of a store"));
    return true;
  }

  bool CheckSettings() {
    QFile file(m_path + QLatin1Char('/') + QLatin1String(kSettings));
    if (!file.exists()) {
      return Refuse(Error(kSettings, "the folder has no such file", "write one with a section [DataBase]"));
    }
    if (!file.open(QIODevice::ReadOnly)) {
      return Refuse(Error(kSettings, "can't be read: " + file.errorString().toStdString(), "let this user read it"));
    }
    const LogFlush before = CurrentLogFlush();
    m_settings = ReadSettings(m_path);
    SetLogFlush(before);  // an engine may be open on another folder
    CheckKeys();
    return true;
  }

  /// Keys that nobody reads are misspelt more often than meant.
  void CheckKeys() {
    QSettings settings(m_path + QLatin1Char('/') + QLatin1String(kSettings), QSettings::IniFormat);
    settings.setIniCodec("UTF-8");
    settings.beginGroup(QStringLiteral("DataBase"));
    QStringList known;
    for (const char* const key : kKeys) known += QLatin1String(key);
    for (const QString& key : settings.childKeys()) {
      if (known.contains(key)) continue;
      m_findings.push_back(Warning(kSettings, "nothing reads the key " + Quoted(key) + " of [DataBase]",
                                   "the keys are " + known.join(QStringLiteral(", ")).toStdString()));
    }
    for (const char* const key : kNumberKeys) {
      const QString value = settings.value(QLatin1String(key)).toString().trimmed();
      bool isRead = false;
      const int number = value.toInt(&isRead);
      if (value.isEmpty() || (isRead && number >= 0)) continue;
      m_findings.push_back(
          Warning(kSettings, std::string(key) + " " + Quoted(value) + " is no whole number", "write digits alone"));
    }
  }

  bool CheckKind() {
    const char* const kinds = "write SQLITE, MYSQL, SQLSERVER, ORACLE or ACCESS";
    if (m_settings.DbType.isEmpty()) {
      return Refuse(Error(kSettings, "DbType is missing in the section [DataBase]", kinds));
    }
    m_kind = m_settings.DbType.toUpper();
    if (!DriverOf(m_kind).isEmpty()) return true;
    return Refuse(Error(kSettings, "DbType " + Quoted(m_settings.DbType) + " is no kind of database", kinds));
  }

  bool CheckDriver() {
    static const std::map<QString, const char*> packages = {
        {QStringLiteral("QSQLITE"), "install Debian's package libqt5sql5-sqlite"},
        {QStringLiteral("QMYSQL"), "install Debian's package libqt5sql5-mysql"},
        {QStringLiteral("QODBC"), "install Debian's package libqt5sql5-odbc, and the database's own ODBC driver"},
        {QStringLiteral("QOCI"), "build Qt's plugin QOCI with the database's own client; Debian has no package of it"}};
    const QString driver = DriverOf(m_kind);
    if (QSqlDatabase::isDriverAvailable(driver)) return true;
    return Refuse(Error(
        kSettings,
        "DbType " + Quoted(m_settings.DbType) + " needs Qt's driver " + driver.toStdString() + ", which is not there",
        packages.at(driver)));
  }

  /// SQLite makes a file that is missing and takes an empty one for a database without tables.
  bool CheckFile() {
    if (m_kind != Kind::kSqlite) return true;
    const QString name = m_settings.DBName.trimmed();
    if (name.isEmpty()) return Refuse(Error(kSettings, "DBName is missing", "name the database file"));
    const QString path = InFolder(m_path, name);
    const std::string mend = "make it by the table definitions, or mend DBName in config.ini";
    const QFileInfo info(path);
    if (!info.exists()) return Refuse(Error(name.toStdString(), "the database file is missing", mend));
    if (!info.isFile()) return Refuse(Error(name.toStdString(), "is no file", mend));
    if (info.size() == 0) return Refuse(Error(name.toStdString(), "the database file is empty", mend));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
      return Refuse(Error(name.toStdString(), "can't be read: " + file.errorString().toStdString(),
                          "let this user read and write it"));
    }
    if (file.read(kSqliteMark.size()) == kSqliteMark) return true;
    return Refuse(Error(name.toStdString(), "is no SQLite database", mend));
  }

  bool CheckOpening() {
    QnPosDBPro database(m_path);
    const DatabaseCall call(database.Shared());
    QString reason;
    if (database.EnsureOpen(reason)) {
      for (const StoreTable& table : kStoreTables) CheckTable(database, table);
    } else {
      Refuse(Error(kSettings, "the database can't be opened: " + reason.trimmed().toStdString(),
                   "look at server, name, login and port there"));
    }
    database.Shared().End();
    return true;
  }

  static bool Answers(QnPosDBPro& database, const QString& columns, const StoreTable& table, QString& reason) {
    const QString sql = QStringLiteral("select %1 from %2 where 1=0").arg(columns, QLatin1String(table.Name));
    QSqlQuery query;
    QString error;
    const bool answered = database.openRecordset(sql, query, error);
    if (!answered) reason = error.section(QStringLiteral("||"), -1).trimmed();
    return answered;
  }

  void CheckTable(QnPosDBPro& database, const StoreTable& table) {
    QString reason;
    if (Answers(database, QLatin1String(table.Columns), table, reason)) return;
    const std::string mend = "make it as the table definitions say";
    if (!Answers(database, QStringLiteral("count(*)"), table, reason)) {
      Refuse(Error(table.Name, "the table can't be read: " + reason.toStdString(), mend));
      return;
    }
    for (const QString& column : QString::fromLatin1(table.Columns).split(QLatin1Char(','))) {
      if (Answers(database, column, table, reason)) continue;
      Finding finding =
          Error(table.Name, "the column " + column.toStdString() + " can't be read: " + reason.toStdString(), mend);
      finding.Column = column.toStdString();
      Refuse(std::move(finding));
    }
  }

  void CheckRules() {
    std::vector<RuleFile> rules;
    try {
      rules = ReadRuleFolder(m_folder + "/rules", "rules", false);
    } catch (const Failure&) {
      m_findings.push_back(Warning("rules", "there is no such folder, or it can't be read", "put the rules there"));
      return;
    }
    if (rules.empty())
      m_findings.push_back(Warning("rules", "there is no rule in it", "put the rules there, as *.xml"));
    std::map<std::string, std::string> files;
    for (const RuleFile& rule : rules) CheckRuleFile(rule, files);
  }

  /// @param files in and out: by number, the file that has it.
  void CheckRuleFile(const RuleFile& rule, std::map<std::string, std::string>& files) {
    if (rule.Refusal) {
      m_findings.push_back(FromRefusal(*rule.Refusal));
      return;
    }
    const auto [first, isNew] = files.emplace(rule.Header.BillNo, rule.Name);
    if (isNew) return;
    m_findings.push_back(
        Warning("rules/" + rule.Name,
                "BillNo '" + rule.Header.BillNo + "' is that of rules/" + first->second + ", which this file replaces",
                "give each rule a number of its own"));
  }

  /// The text of a refusal begins with the place.
  static Finding FromRefusal(const Failure& refusal) {
    const std::size_t colon = refusal.Text.find(": ");
    return {Finding::Severity::kError, refusal.Code, refusal.Text.substr(0, colon), refusal.Text.substr(colon + 2),
            "mend the file"};
  }

  void CheckLog() {
    const std::string log = m_folder + "/QnCorvane.txt";
    const QFileInfo info(QString::fromStdString(log));
    const bool isWritable =
        info.exists() ? !info.isDir() && access(log.c_str(), W_OK) == 0 : access(m_folder.c_str(), W_OK) == 0;
    if (isWritable) return;
    m_findings.push_back(Warning("QnCorvane.txt", "the log can't be written", "let this user write it"));
  }

  static const QByteArray kSqliteMark;

  std::string m_folder;
  QString m_path;
  DatabaseSettings m_settings;
  QString m_kind;
  Findings m_findings;
};

const QByteArray StoreCheck::kSqliteMark = QByteArrayLiteral("SQLite format 3");

}  // namespace

Findings CheckDatabase(const std::string& folder) { return StoreCheck(folder).Database(); }

Findings CheckStore(const std::string& folder) {
  Findings findings = CheckDatabase(folder);
  if (!QFileInfo(QString::fromStdString(folder)).isDir()) return findings;
  for (Finding& finding : StoreCheck(folder).Rules()) findings.push_back(std::move(finding));
  return findings;
}

const Finding* FirstError(const Findings& findings) {
  for (const Finding& finding : findings) {
    if (finding.Weight == Finding::Severity::kError) return &finding;
  }
  return nullptr;
}

std::string ReportOf(const std::string& folder, const Findings& findings) {
  JsonWriter json;
  json.Object();
  json.Key("folder").String(folder);
  json.Key("ok").Boolean(FirstError(findings) == nullptr);
  json.Key("findings").Array();
  for (const Finding& finding : findings) {
    json.Object();
    json.Key("severity").String(finding.Weight == Finding::Severity::kError ? "error" : "warning");
    json.Key("where").String(finding.Where);
    json.Key("what").String(finding.What);
    json.Key("mend").String(finding.Mend);
    json.End();
  }
  json.End();
  json.End();
  return json.Take();
}

}  // namespace Corvane::Host
