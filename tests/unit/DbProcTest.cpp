// Stored procedures: the statements that go out, what is bound, and what comes back.
#include <gtest/gtest.h>

#include <QSqlDatabase>
#include <memory>

#include "db/ProcArg.h"
#include "tests/unit/DbRecorder.h"
#include "tests/unit/DbStore.h"

using Corvane::ProcArg;
using Corvane::ProcParam;
using dbtest::OpenFields;
using dbtest::RecordingDriver;
using dbtest::Store;
using dbtest::TakeEvents;
using dbtest::TheRecorder;
using dbtest::Utf8;
using Events = std::vector<std::string>;

namespace {

class DbProc : public testing::Test {
 protected:
  /** Opens a connection of this kind over the recording driver. */
  OpenFields& Open(const char* kind, const char* driver) {
    m_driver = std::make_unique<RecordingDriver>(QString::fromLatin1(driver));
    Store::Configure("DbType=" + QByteArray(kind) + "\nDBName=d\n");
    m_db = std::make_unique<OpenFields>();
    EXPECT_TRUE(m_db->EnsureOpen(m_error)) << Utf8(m_error);
    TakeEvents();
    return *m_db;
  }
  OpenFields& OpenOracle() { return Open("Oracle", "QOCI"); }
  OpenFields& OpenSqlServer() { return Open("SqlServer", "QODBC"); }

  Store m_store;
  std::unique_ptr<RecordingDriver> m_driver;
  std::unique_ptr<OpenFields> m_db;
  QString m_error;
};

TEST_F(DbProc, SqlServerExecutesWithTheArgumentText) {
  EXPECT_TRUE(OpenSqlServer().exexProc(QStringLiteral("pClose"), QStringLiteral("'till 3',1"), m_error));
  EXPECT_EQ(TakeEvents(), (Events{"prepare exec pClose 'till 3',1", "exec prepared"}));
  EXPECT_EQ(Utf8(m_error), "函数:exexProc||执行:pClose||");
}

TEST_F(DbProc, OracleCallsWithTheArgumentTextBehindTheBrackets) {
  EXPECT_TRUE(OpenOracle().exexProc(QStringLiteral("pClose"), QStringLiteral("x"), m_error));
  EXPECT_EQ(TakeEvents(), (Events{"prepare call pClose() x", "exec prepared"}));
}

TEST_F(DbProc, OtherKindsReplaceTheText) {
  for (const auto& [kind, driver] : {std::pair{"sqlite", "QSQLITE"}, {"MySql", "QMYSQL"}, {"Access", "QODBC"}}) {
    OpenFields& db = Open(kind, driver);
    const std::string refusal = "不支持在数据库类型" + QByteArray(kind).toUpper().toStdString() + "执行存储过程";
    EXPECT_FALSE(db.exexProc(QStringLiteral("p"), QString(), m_error));
    EXPECT_EQ(Utf8(m_error), refusal);
    QList<ProcArg> args{{QStringLiteral("a"), QStringLiteral("1"), 1, 0}};
    EXPECT_FALSE(db.exexProcWithArgs(QStringLiteral("p"), args, m_error));
    EXPECT_EQ(Utf8(m_error), refusal);
    EXPECT_FALSE(db.ExecProcFormat(QStringLiteral("p"), {}));
    EXPECT_EQ(TakeEvents(), Events{});
  }
}

TEST_F(DbProc, NeedAnOpenConnectionFirst) {
  QList<ProcArg> args;
  OpenSqlServer().Db->close();
  TakeEvents();
  EXPECT_FALSE(m_db->exexProc(QStringLiteral("p"), QString(), m_error));
  EXPECT_EQ(Utf8(m_error), "函数:exexProc||执行:p|| DataBase is not opened!");
  EXPECT_FALSE(m_db->exexProcWithArgs(QString(), args, m_error));
  EXPECT_EQ(Utf8(m_error), "函数:exexProcWithArgs||执行:|| DataBase is not opened!");
  EXPECT_FALSE(m_db->ExecProcFormat(QStringLiteral("p"), {}));
  OpenFields none;
  EXPECT_FALSE(none.exexProc(QStringLiteral("p"), QString(), m_error));
  EXPECT_EQ(Utf8(m_error), "函数:exexProc||执行:p|| DataBase is not opened!");
  EXPECT_EQ(TakeEvents(), Events{});
}

TEST_F(DbProc, AFailureTellsTheDriversReason) {
  OpenFields& db = OpenSqlServer();
  QList<ProcArg> args{{QStringLiteral("a"), QStringLiteral("1"), 1, 0}};
  TheRecorder().StatementError = QStringLiteral("过程不存在");
  EXPECT_FALSE(db.exexProc(QStringLiteral("p"), QString(), m_error));
  EXPECT_EQ(Utf8(m_error), "函数:exexProc||执行:p||过程不存在");
  EXPECT_FALSE(db.exexProcWithArgs(QStringLiteral("p"), args, m_error));
  EXPECT_EQ(Utf8(m_error), "函数:exexProcWithArgs||执行:p||过程不存在");
  TheRecorder().PrepareError = QStringLiteral("syntax");
  EXPECT_FALSE(db.exexProc(QStringLiteral("p"), QString(), m_error));
  EXPECT_EQ(Utf8(m_error), "函数:exexProc||执行:p||syntax");
  EXPECT_FALSE(db.exexProcWithArgs(QStringLiteral("p"), args, m_error));
  EXPECT_EQ(Utf8(m_error), "函数:exexProcWithArgs||执行:p||syntax");
  EXPECT_FALSE(db.ExecProcFormat(QStringLiteral("p"), {ProcParam::In(1)}));
}

TEST_F(DbProc, ArgumentsNeedANameAndAList) {
  OpenFields& db = OpenSqlServer();
  QList<ProcArg> none;
  QList<ProcArg> one{{QStringLiteral("a"), QStringLiteral("1"), 1, 0}};
  EXPECT_FALSE(db.exexProcWithArgs(QStringLiteral("p"), none, m_error));
  EXPECT_EQ(Utf8(m_error), "函数:exexProcWithArgs||执行:p|| 存储过程名称或参数错误!");
  EXPECT_FALSE(db.exexProcWithArgs(QString(), one, m_error));
  EXPECT_EQ(Utf8(m_error), "函数:exexProcWithArgs||执行:|| 存储过程名称或参数错误!");
  EXPECT_EQ(TakeEvents(), Events{});
}

TEST_F(DbProc, OracleBindsByName) {
  OpenFields& db = OpenOracle();
  TheRecorder().OutValues[1] = 42;
  QList<ProcArg> args{{QStringLiteral("till"), QStringLiteral("三号"), ProcArg::In, ProcArg::Text},
                      {QStringLiteral("no"), QStringLiteral("7"), ProcArg::Out, ProcArg::Integer}};
  EXPECT_TRUE(db.exexProcWithArgs(QStringLiteral("pNext"), args, m_error));
  EXPECT_EQ(TakeEvents(), (Events{"prepare CALL pNext(:till,:no)", "bind :till in QString [三号]",
                                  "bind :no out int [7]", "exec prepared"}));
  EXPECT_EQ(Utf8(args[0].Value), "三号");
  EXPECT_EQ(Utf8(args[1].Value), "42");
  EXPECT_EQ(Utf8(m_error), "函数:exexProcWithArgs||执行:pNext||");
}

TEST_F(DbProc, SqlServerBindsByPositionAndMarksOutput) {
  OpenFields& db = OpenSqlServer();
  TheRecorder().OutValues[0] = QStringLiteral("完成");
  TheRecorder().OutValues[2] = 9.5;
  QList<ProcArg> args{{QStringLiteral("a"), QString(), ProcArg::Out, ProcArg::Text},
                      {QStringLiteral("b"), QStringLiteral("12"), ProcArg::In, ProcArg::Integer},
                      {QStringLiteral("c"), QStringLiteral("0"), ProcArg::Out, ProcArg::Integer}};
  EXPECT_TRUE(db.exexProcWithArgs(QStringLiteral("pNext"), args, m_error));
  EXPECT_EQ(TakeEvents(), (Events{"prepare exec pNext ? output ,?,? output ", "bind 0 out QString []",
                                  "bind 1 in int [12]", "bind 2 out int [0]", "exec prepared"}));
  EXPECT_EQ(Utf8(args[0].Value), "完成");
  EXPECT_EQ(Utf8(args[1].Value), "12");
  EXPECT_EQ(Utf8(args[2].Value), "9.5");
}

TEST_F(DbProc, OnlyAnOutArgumentIsReadBack) {
  OpenFields& db = OpenSqlServer();
  TheRecorder().OutValues[0] = 5;
  QList<ProcArg> args{{QStringLiteral("a"), QStringLiteral("1"), QSql::InOut, ProcArg::Integer}};
  EXPECT_TRUE(db.exexProcWithArgs(QStringLiteral("p"), args, m_error));
  EXPECT_EQ(TakeEvents(), (Events{"prepare exec p ?", "bind 0 inout int [1]", "exec prepared"}));
  EXPECT_EQ(Utf8(args[0].Value), "1");
}

TEST_F(DbProc, AnIntegerThatIsNoneBindsZero) {
  OpenFields& db = OpenSqlServer();
  QList<ProcArg> args{{QStringLiteral("a"), QStringLiteral("1x"), 1, ProcArg::Integer},
                      {QStringLiteral("b"), QStringLiteral("0x10"), 1, ProcArg::Integer},
                      {QStringLiteral("c"), QStringLiteral("99999999999"), 1, ProcArg::Integer},
                      {QStringLiteral("d"), QStringLiteral(" -5 "), 1, ProcArg::Integer}};
  EXPECT_TRUE(db.exexProcWithArgs(QStringLiteral("p"), args, m_error));
  EXPECT_EQ(TakeEvents(), (Events{"prepare exec p ?,?,?,?", "bind 0 in int [0]", "bind 1 in int [0]",
                                  "bind 2 in int [0]", "bind 3 in int [-5]", "exec prepared"}));
}

TEST_F(DbProc, AnotherTypeOfArgumentIsRefusedBeforeItRuns) {
  OpenFields& db = OpenSqlServer();
  QList<ProcArg> args{{QStringLiteral("a"), QStringLiteral("1"), 1, ProcArg::Integer},
                      {QStringLiteral("money"), QStringLiteral("1.5"), 1, 2}};
  EXPECT_FALSE(db.exexProcWithArgs(QStringLiteral("p"), args, m_error));
  EXPECT_EQ(Utf8(m_error), "函数:exexProcWithArgs||执行:p||参数money类型转换错误");
  EXPECT_EQ(TakeEvents(), Events{"prepare exec p ?,?"});
}

TEST(DbProcArg, ByteTextsAreUtf8) {
  const ProcArg arg("till", "三号", 2, 1, 0);
  EXPECT_EQ(Utf8(arg.Name), "till");
  EXPECT_EQ(Utf8(arg.Value), "三号");
  EXPECT_EQ(arg.Direction, 2);
  EXPECT_EQ(arg.Type, 1);
}

TEST(DbProcArg, TheMaskHidesTheValueOfANamelessArgument) {
  EXPECT_EQ(Utf8(ProcArg("", "secret", 1, 1, 1).Value), "***");
  EXPECT_EQ(Utf8(ProcArg(nullptr, "secret", 1, 1, 1).Value), "***");
  EXPECT_EQ(Utf8(ProcArg("name", "plain", 1, 1, 1).Value), "plain");
  EXPECT_EQ(Utf8(ProcArg("", "plain", 1, 1, 0).Value), "plain");
  EXPECT_EQ(Utf8(ProcArg("", "plain", 1, 1, 2).Value), "plain");
  EXPECT_EQ(Utf8(ProcArg("name", nullptr, 1, 1, 0).Value), "");
}

// ---- ExecProcFormat

TEST_F(DbProc, FormatBindsEachTypeAsItself) {
  OpenFields& db = OpenSqlServer();
  const QDateTime date(QDate(2021, 3, 4), QTime(5, 6, 7));
  EXPECT_TRUE(db.ExecProcFormat(QStringLiteral("p"),
                                {ProcParam::In(QByteArray("raw")), ProcParam::In(3), ProcParam::In(2.5),
                                 ProcParam::In("文本"), ProcParam::In(QStringLiteral("text")), ProcParam::In(date)}));
  EXPECT_EQ(TakeEvents(), (Events{"prepare exec p ?,?,?,?,?,?", "bind 0 in QByteArray [raw]", "bind 1 in int [3]",
                                  "bind 2 in double [2.5]", "bind 3 in QString [文本]", "bind 4 in QString [text]",
                                  "bind 5 in QDateTime [2021-03-04T05:06:07]", "exec prepared"}));
}

TEST_F(DbProc, FormatStoresWhatComesOut) {
  OpenFields& db = OpenSqlServer();
  const QDateTime date(QDate(2021, 3, 4), QTime(5, 6, 7));
  const QList<QVariant> answers{300, 7, 8U, 1.5, QStringLiteral("好"), QByteArray("raw"), date};
  for (int place = 0; place < answers.size(); ++place) TheRecorder().OutValues[place] = answers[place];
  quint8 byte = 0;
  qint32 number = 0;
  quint32 count = 0;
  double money = 0;
  QString text;
  QByteArray bytes;
  QDateTime when;
  EXPECT_TRUE(
      db.ExecProcFormat(QStringLiteral("p"),
                        {ProcParam::Out(&byte), ProcParam::Out(&number), ProcParam::Out(&count), ProcParam::Out(&money),
                         ProcParam::Out(&text), ProcParam::Out(&bytes), ProcParam::Out(&when)}));
  EXPECT_EQ(byte, 44);  // 300 in one byte
  EXPECT_EQ(number, 7);
  EXPECT_EQ(count, 8U);
  EXPECT_EQ(money, 1.5);
  EXPECT_EQ(Utf8(text), "好");
  EXPECT_EQ(bytes, QByteArray("raw"));
  EXPECT_EQ(when, date);
  EXPECT_EQ(TakeEvents(), (Events{"prepare exec p ?,?,?,?,?,?,?", "bind 0 out int [0]", "bind 1 out int [0]",
                                  "bind 2 out int [0]", "bind 3 out int [0]", "bind 4 out int [0]",
                                  "bind 5 out int [0]", "bind 6 out int [0]", "exec prepared"}));
}

TEST_F(DbProc, FormatSendsAndStoresAnInAndOutArgument) {
  OpenFields& db = OpenSqlServer();
  TheRecorder().OutValues[1] = 11;
  qint32 number = 10;
  EXPECT_TRUE(db.ExecProcFormat(QStringLiteral("p"), {ProcParam::In("till"), ProcParam::InOut(&number)}));
  EXPECT_EQ(number, 11);
  EXPECT_EQ(TakeEvents(),
            (Events{"prepare exec p ?,?", "bind 0 in QString [till]", "bind 1 inout int [10]", "exec prepared"}));
}

TEST_F(DbProc, FormatWithoutArgumentsHasNoPlaceholder) {
  EXPECT_TRUE(OpenSqlServer().ExecProcFormat(QStringLiteral("pClose"), {}));
  EXPECT_EQ(TakeEvents(), (Events{"prepare exec pClose", "exec prepared"}));
}

TEST_F(DbProc, FormatStoresNothingWhenItFails) {
  OpenFields& db = OpenSqlServer();
  TheRecorder().StatementError = QStringLiteral("no");
  qint32 number = 10;
  EXPECT_FALSE(db.ExecProcFormat(QStringLiteral("p"), {ProcParam::Out(&number)}));
  EXPECT_EQ(number, 10);
}

}  // namespace
