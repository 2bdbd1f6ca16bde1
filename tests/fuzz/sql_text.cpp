// What a hostile code makes of a statement: whatever a value holds, it stays that value.
//
// An input begins with a byte that picks the kind of database. What follows are values, each up to a zero byte.
#include <sqlite3.h>

#include <QByteArray>
#include <QList>
#include <QString>
#include <cctype>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "db/QnPosDBPro.h"
#include "db/SqlText.h"
#include "qncorvane/SqlArg.h"
#include "qncorvane/qncorvane.h"
#include "tests/fuzz/Check.h"
#include "tests/fuzz/Shop.h"
#include "tests/fuzz/Target.h"

namespace {

using namespace Corvane;
using namespace Corvane::Fuzz;

constexpr const char* kKinds[] = {"SQLITE", "MYSQL", "SQLSERVER", "ORACLE", "ACCESS"};
constexpr std::size_t kMostValues = 9;

/// Not destroyed: it belongs to the process, as the engine's own does.
QnPosDBPro& Database() {
  static auto* const database = new QnPosDBPro;
  return *database;
}

// --- How a server reads a statement ----------------------------------------------------------------------------------

/// A statement with "?" for each literal, and the literals.
struct Reading {
  QString Words;
  std::vector<QString> Values;
};

/// Reads as the databases do: a literal stands in single quotes, two of them inside are one, and in MySQL a backslash
/// takes away the meaning of the next sign. The statement must not end inside a literal.
Reading Read(const QString& statement, bool backslashEscapes) {
  Reading reading;
  int place = 0;
  while (place < statement.size()) {
    if (statement[place++] != QLatin1Char('\'')) {
      reading.Words += statement[place - 1];
      continue;
    }
    reading.Words += QLatin1Char('?');
    QString value;
    for (;; ++place) {
      Require(place < statement.size(), "a literal ends", statement.toUtf8().toStdString());
      if (statement[place] == QLatin1Char('\'')) {
        if (place + 1 == statement.size() || statement[place + 1] != QLatin1Char('\'')) break;
        ++place;
      } else if (backslashEscapes && statement[place] == QLatin1Char('\\')) {
        ++place;
        Require(place < statement.size(), "a backslash has a sign behind it", statement.toUtf8().toStdString());
      }
      value += statement[place];
    }
    ++place;
    reading.Values.push_back(value);
  }
  return reading;
}

std::vector<QString> ValuesOf(const SqlText& sql) {
  std::vector<QString> values;
  for (const Text value : sql.Values()) values.push_back(SqlText::ValueOf(value));
  return values;
}

void RequireReadAsMeant(const SqlText& sql, const SqlDialect& dialect) {
  const QString statement = sql.ToString();
  const Reading reading = Read(statement, dialect.BackslashEscapes);
  Require(reading.Words == sql.Pattern(), "the words are the program's own", statement.toUtf8().toStdString());
  Require(reading.Values == ValuesOf(sql), "the values are those given", statement.toUtf8().toStdString());
}

/// The forms in which the promotions ask, but for literals of their own.
void TryForms(const std::vector<Text>& values, const SqlDialect& dialect) {
  const SqlText first(dialect, "select * from t where BillNo=", Quoted{values.front()});
  RequireReadAsMeant(first, dialect);
  RequireReadAsMeant(SqlText(dialect, first, " and ((PluCode=", Quoted{values.back()}, "))"), dialect);
  RequireReadAsMeant(SqlText(dialect, first, " and (", OneOf("PluCode", values), ")"), dialect);
}

// --- A real store ----------------------------------------------------------------------------------------------------

std::string Expected(Text value) { return SqlText::ValueOf(value).toUtf8().toStdString(); }

/// The one text of a row, as the store holds it.
std::string Held(const char* statement) {
  sqlite3_stmt* prepared = nullptr;
  Require(sqlite3_prepare_v2(Store(), statement, -1, &prepared, nullptr) == SQLITE_OK, "a row is read", statement);
  Require(sqlite3_step(prepared) == SQLITE_ROW, "a row is there", statement);
  const auto* const text = static_cast<const char*>(sqlite3_column_blob(prepared, 0));
  std::string held(text == nullptr ? "" : text, static_cast<std::size_t>(sqlite3_column_bytes(prepared, 0)));
  sqlite3_finalize(prepared);
  return held;
}

void RequireUnharmed() {
  Require(Number("select count(*) from tCanary where Song='tweet'") == 1 &&
              Number("select count(*) from sqlite_master where type='table'") == 13,
          "no statement does anything else");
}

/// A text as SQLite hands it over to Qt: without the two non-characters at the end of the plane.
std::string AsRead(QString text) {
  for (const QChar sign : {QChar(0xFFFE), QChar(0xFFFF)}) text.replace(sign, QChar(QChar::ReplacementCharacter));
  return text.toUtf8().toStdString();
}

/// Written as text, found by a bound value.
void TryStore(const std::vector<Text>& values) {
  const SqlDialect dialect = Database().Dialect();
  QString error;
  std::set<std::string> codes;
  for (const Text value : values) {
    const SqlText insert(dialect, "insert into tCode (Code) values (", Quoted{value}, ")");
    Require(Database().excuteSQL(insert.ToString(), error), "a value is written", error.toUtf8().toStdString());
    Require(Held("select Code from tCode order by rowid desc limit 1") == Expected(value), "a value is held as it is");
    codes.insert(AsRead(SqlText::ValueOf(value)));
  }
  Recordset rows;
  const SqlText select(dialect, "select Code from tCode where ", OneOf("Code", values));
  Require(Database().openRecordset(select, rows, error), "values are asked for", error.toUtf8().toStdString());
  std::size_t found = 0;
  while (rows.Query.next()) {
    ++found;
    const std::string code = AsRead(rows.Query.value(0).toString());
    Require(codes.count(code) == 1, "only what was asked for is found", code);
  }
  Require(found == values.size(), "all that was asked for is found");
  Sql("delete from tCode");
}

/// SQLite takes the first sign of a bound text for a byte order mark when it looks like one.
bool IsMarked(const QString& text) { return text.startsWith(QChar(0xFEFF)) || text.startsWith(QChar(0xFFFE)); }

/// With the values bound one by one, zero bytes in them included.
void TryRecords(const std::string& bytes, double number) {
  const QString text = QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
  const QByteArray raw(bytes.data(), static_cast<int>(bytes.size()));
  if (IsMarked(text)) return;
  Require(Database().InsertRecord(QStringLiteral("tRecord"), {{QStringLiteral("Id"), 1},
                                                              {QStringLiteral("Words"), text},
                                                              {QStringLiteral("Bytes"), raw},
                                                              {QStringLiteral("Amount"), number}}),
          "a record is written");
  Require(Held("select Words from tRecord") == text.toUtf8().toStdString(), "a record's text is held as it is");
  Require(Held("select Bytes from tRecord") == bytes, "a record's bytes are held as they are");
  Require(Database().UpdateRecord(QStringLiteral("tRecord"), QStringLiteral("where Id=1"),
                                  {{QStringLiteral("Words"), QStringLiteral("new")}, {QStringLiteral("Bytes"), text}}),
          "a record is changed");
  Require(Held("select Bytes from tRecord where Words='new'") == text.toUtf8().toStdString(), "a record is changed");
  Sql("delete from tRecord");
}

/// The caller doubles quotes; everything else is a value's own.
void TryArguments(const std::vector<Text>& values) {
  QString first = SqlText::ValueOf(values.front());
  QString last = SqlText::ValueOf(values.back());
  const std::string expected = (first + QLatin1Char('|') + last).toUtf8().toStdString();
  for (QString* value : {&first, &last}) value->replace(QLatin1String("'"), QLatin1String("''"));
  const QString statement =
      SqlArg::getIntSQL(QStringLiteral("tRecord"), {{QStringLiteral("Id"), QStringLiteral("7"), false},
                                                    {QStringLiteral("Words"), first, true},
                                                    {QStringLiteral("Bytes"), last, true}});
  Sql(statement.toUtf8().toStdString());
  Require(Held("select Words||'|'||Bytes from tRecord where Id=7") == expected, "an argument is held as it is");
  Sql("delete from tRecord");
}

// --- Through the engine ----------------------------------------------------------------------------------------------

std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char letter : text) {
    const auto byte = static_cast<unsigned char>(letter);
    if (byte < 0x80 && std::isalnum(byte) == 0) {
      escaped += "&#" + std::to_string(byte) + ";";
    } else {
      escaped += letter;
    }
  }
  return escaped;
}

std::string LineOf(int number, const std::string& code) {
  return "<R SerialNo='" + std::to_string(number) + "' PluCode='" + Escaped(code) +
         "' Price='10.00' PluCount='1' Total='10.00' PackCnt='1' SaleDate='2026-11-21' SaleTime='10:00:00'/>";
}

/// A rule of this number lowers the price of goods of one code, and of no other.
void TryEngine(const std::string& billNo, const std::string& code, const std::string& other) {
  if (billNo.empty() || code.empty() || code == other || !IsUtf8(billNo + code + other)) return;
  if (AsRead(QString::fromStdString(code)) != code) return;  // no character of XML, and the store doesn't give it back
  const SqlText row(SqlDialect(), "insert into tProPrjDirectProAct values (", Quoted{billNo.c_str()}, ",1,",
                    Quoted{code.c_str()}, ",'PLU','IN','PRC',1.0,0,1,0)");
  Sql(row.ToString().toUtf8().toStdString());
  const std::string rule = "<Rules><Rule BillNo='" + Escaped(billNo) +
                           "' OrgCode='01' ProType='PTXS' ProMode='PT' ProStatus='1' Primary='PT' JzDate='2026-01-01' "
                           "MaxYhType='0' MaxYhValue='0' Remark=''><OrgFilter><R OrgCode='*'/></OrgFilter><ProTime><R "
                           "StartDate='2000-01-01' EndDate='2099-12-31' StartTime='' EndTime='' Frequency='DAY'/>"
                           "</ProTime></Rule></Rules>";
  Load("PTXS", rule.c_str());
  const std::string sale = "<Sale BillNo='" + Escaped(code) + "' OrgCode='01' IsCalc='0'><Plu>" + LineOf(1, code) +
                           LineOf(2, other) + "</Plu></Sale>";
  const Answer answer = Calc("sale", "All", sale.c_str(), true);
  const bool isOne =
      answer.Out.find("Total=\"1.00\"") != std::string::npos && answer.Out.find("Total=\"10.00\"") != std::string::npos;
  Require(answer.Code == 0 && isOne, "a rule finds its goods and no others, whatever their codes", answer.Out);
  DeleteSaleSetByKey("sale");
  Clear("*");
  Sql("delete from tProPrjDirectProAct");
}

}  // namespace

void Corvane::Fuzz::Prepare() {
  MakeStore();
  Sql("delete from tProPrjDirectProAct; create table tCanary (Song); insert into tCanary values ('tweet');"
      "create table tCode (Code text); create table tRecord (Id, Words, Bytes, Amount);");
  QString error;
  Require(Database().EnsureOpen(error), "the store opens", error.toUtf8().toStdString());
}

void Corvane::Fuzz::Try(Bytes input) {
  const char* const kind = kKinds[input.Below(std::size(kKinds))];
  const std::string all = input.Rest();
  Bytes rest(reinterpret_cast<const std::uint8_t*>(all.data()), all.size());
  std::vector<std::string> texts;
  do {
    texts.push_back(rest.Text());
  } while (!rest.AtEnd() && texts.size() < kMostValues);
  std::vector<Text> values;
  values.reserve(texts.size());
  for (const std::string& text : texts) values.push_back(text.c_str());

  TryForms(values, DialectOf(QString::fromLatin1(kind)));
  TryStore(values);
  TryRecords(all, static_cast<double>(all.size()) / 3);
  TryArguments(values);
  TryEngine(texts.front(), texts[texts.size() / 2], texts.back());
  RequireUnharmed();
}
