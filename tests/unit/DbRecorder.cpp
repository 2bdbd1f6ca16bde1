#include "tests/unit/DbRecorder.h"

#include <QDateTime>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlRecord>
#include <QSqlResult>
#include <stdexcept>

#include "db/ConnectionHealth.h"

namespace dbtest {
namespace {

using Corvane::ConnectionHealth;

ConnectionHealth::Clock::time_point g_now;

bool Note(const QString& event) {
  TheRecorder().Events.push_back(event.toStdString());
  return true;
}

QString DirectionName(QSql::ParamType direction) {
  if (direction == QSql::InOut) return QStringLiteral("inout");
  return direction == QSql::Out ? QStringLiteral("out") : QStringLiteral("in");
}

QString Shown(const QVariant& value) {
  if (value.type() == QVariant::DateTime) return value.toDateTime().toString(Qt::ISODate);
  return value.toString();
}

class Result : public QSqlResult {
 public:
  explicit Result(const QSqlDriver* driver) : QSqlResult(driver) {}

 protected:
  bool reset(const QString& sql) override {
    Note(QStringLiteral("exec ") + sql);
    return Answer();
  }

  bool prepare(const QString& sql) override {
    Note(QStringLiteral("prepare ") + sql);
    return !Failed(TheRecorder().PrepareError);
  }

  bool exec() override {
    const int count = boundValueCount();
    for (int place = 0; place < count; ++place) {
      const QString name = bindingSyntax() == NamedBinding ? boundValueName(place) : QString::number(place);
      const QVariant value = boundValue(place);
      Note(QStringLiteral("bind %1 %2 %3 [%4]")
               .arg(name, DirectionName(bindValueType(place)), QLatin1String(value.typeName()), Shown(value)));
    }
    Note(QStringLiteral("exec prepared"));
    if (!Answer()) return false;
    const QMap<int, QVariant>& out = TheRecorder().OutValues;
    for (auto entry = out.begin(); entry != out.end(); ++entry) {
      bindValue(entry.key(), entry.value(), bindValueType(entry.key()));
    }
    return true;
  }

  QVariant data(int column) override { return TheRecorder().Rows.value(at()).value(column); }
  bool isNull(int column) override { return data(column).isNull(); }
  bool fetch(int row) override {
    if (row < 0 || row >= size()) return false;
    setAt(row);
    return true;
  }
  bool fetchFirst() override { return fetch(0); }
  bool fetchLast() override { return fetch(size() - 1); }
  int size() override { return TheRecorder().Rows.size(); }
  int numRowsAffected() override { return 0; }
  QSqlRecord record() const override {
    QSqlRecord columns;
    for (const QString& name : TheRecorder().Columns) columns.append(QSqlField(name));
    return columns;
  }

 private:
  bool Failed(const QString& reason) {
    if (reason.isEmpty()) return false;
    setLastError(QSqlError(reason, QString(), QSqlError::StatementError));
    return true;
  }

  bool Answer() {
    Advance(TheRecorder().Takes);
    if (TheRecorder().Throws) throw std::runtime_error("driver");
    if (Failed(TheRecorder().StatementError)) return false;
    setSelect(!TheRecorder().Columns.isEmpty());
    setActive(true);
    setAt(QSql::BeforeFirstRow);
    return true;
  }
};

/** Takes placeholders by name ("QOCI") or by position, as the real driver does: the statement shows what reaches it. */
template <QSqlDriver::DriverFeature Placeholders>
class Driver : public QSqlDriver {
 public:
  bool hasFeature(DriverFeature feature) const override {
    if (feature == Transactions) return TheRecorder().Transactions;
    return feature == Placeholders || feature == PreparedQueries;
  }

  bool open(const QString& database, const QString& user, const QString& password, const QString& host, int port,
            const QString& options) override {
    Note(QStringLiteral("open db[%1] user[%2] password[%3] host[%4] port[%5] options[%6]")
             .arg(database, user, password, host, QString::number(port), options));
    if (TheRecorder().Throws) throw std::runtime_error("driver");
    const QString reason = TheRecorder().OpenError;
    setOpen(reason.isEmpty());
    setOpenError(!reason.isEmpty());
    if (!reason.isEmpty()) setLastError(QSqlError(reason, QString(), QSqlError::ConnectionError));
    return reason.isEmpty();
  }

  void close() override {
    if (isOpen()) Note(QStringLiteral("close"));
    setOpen(false);
    setOpenError(false);
  }

  QSqlResult* createResult() const override { return new Result(this); }
  bool beginTransaction() override { return Note(QStringLiteral("begin")); }
  bool commitTransaction() override { return Note(QStringLiteral("commit")); }
  bool rollbackTransaction() override { return Note(QStringLiteral("rollback")); }
};

}  // namespace

Recorder& TheRecorder() {
  // Kept to the end of the process: Qt closes its connections after everything else.
  static Recorder& recorder = *new Recorder;
  return recorder;
}

std::vector<std::string> TakeEvents() {
  std::vector<std::string> events;
  events.swap(TheRecorder().Events);
  return events;
}

RecordingDriver::RecordingDriver(const QString& name) : m_name(name) {
  TheRecorder() = Recorder();
  ConnectionHealth::Now = [] { return g_now; };
  using ByName = QSqlDriverCreator<Driver<QSqlDriver::NamedPlaceholders>>;
  using ByPosition = QSqlDriverCreator<Driver<QSqlDriver::PositionalPlaceholders>>;
  if (name == QLatin1String("QOCI")) {
    QSqlDatabase::registerSqlDriver(name, new ByName);
  } else {
    QSqlDatabase::registerSqlDriver(name, new ByPosition);
  }
}

RecordingDriver::~RecordingDriver() {
  QSqlDatabase::registerSqlDriver(m_name, nullptr);
  ConnectionHealth::Now = &ConnectionHealth::Clock::now;
}

void Advance(std::chrono::milliseconds time) { g_now += time; }

void RestForAServersRestart() { g_now += ConnectionHealth::TrustedFor + std::chrono::milliseconds(1); }

QtMessagesAsEvents::QtMessagesAsEvents()
    : m_before(qInstallMessageHandler(
          [](QtMsgType, const QMessageLogContext&, const QString& text) { Note(QStringLiteral("qt ") + text); })) {}

QtMessagesAsEvents::~QtMessagesAsEvents() { qInstallMessageHandler(m_before); }

}  // namespace dbtest
