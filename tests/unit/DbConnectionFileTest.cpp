// The file that names the database of the "ACCESS" kind.
#include <gtest/gtest.h>

#include <QTextCodec>

#include "db/ConnectionFile.h"
#include "db/HostDirectory.h"
#include "tests/unit/DbStore.h"

using dbtest::Store;
using dbtest::Utf8;

namespace {

const QString FileName = QStringLiteral("shop.udl");

std::string DatabaseIn(const QByteArray& content) {
  const Store store;
  Store::Write(FileName, content);
  QString database;
  QString error;
  return Corvane::ReadConnectionFile(FileName, database, error) ? Utf8(database) : "failed: " + Utf8(error);
}

QByteArray Utf16(const QString& text, bool mark) {
  QByteArray bytes = mark ? QByteArray("\xff\xfe", 2) : QByteArray();
  for (const QChar c : text) bytes.append(static_cast<char>(c.cell())).append(static_cast<char>(c.row()));
  return bytes;
}

TEST(DbConnectionFile, TheValueStandsBehindTheSecondEqualsSign) {
  EXPECT_EQ(DatabaseIn("[oledb]\nProvider=Microsoft.Jet;Data Source= D:\\门店\\shop.mdb ;Mode=Read\n"),
            "D:\\门店\\shop.mdb");
}

TEST(DbConnectionFile, TheValueMayEndWithTheFile) { EXPECT_EQ(DatabaseIn("a=b;c=D:shop.mdb\n"), "D:shop.mdb"); }

TEST(DbConnectionFile, AThirdEqualsSignBelongsToTheValue) { EXPECT_EQ(DatabaseIn("a=b;c=D:x=y;d=e"), "D:x=y"); }

TEST(DbConnectionFile, ANameWithoutADriveIsInTheHostsDirectory) {
  const std::string directory = Utf8(Corvane::HostDirectory());
  EXPECT_EQ(DatabaseIn("a=b;c=shop.mdb;"), directory + "/shop.mdb");
  EXPECT_EQ(DatabaseIn("a=b;c=/srv/shop.mdb;"), directory + "//srv/shop.mdb");
}

TEST(DbConnectionFile, Utf16WithAMark) {
  EXPECT_EQ(DatabaseIn(Utf16(QStringLiteral("a=b;c=D:\\门店.mdb;"), true)), "D:\\门店.mdb");
}

TEST(DbConnectionFile, Utf16WithoutAMarkShowsByTheZeroInSecondPlace) {
  EXPECT_EQ(DatabaseIn(Utf16(QStringLiteral("a=b;c=D:\\门店.mdb;"), false)), "D:\\门店.mdb");
}

TEST(DbConnectionFile, WithoutASecondEqualsSignNamesNoDatabase) {
  EXPECT_EQ(DatabaseIn(""), "failed: No database in connection file shop.udl");
  EXPECT_EQ(DatabaseIn("a"), "failed: No database in connection file shop.udl");
  EXPECT_EQ(DatabaseIn("a=b;"), "failed: No database in connection file shop.udl");
}

TEST(DbConnectionFile, ThatCantBeReadTellsWhy) {
  const Store store;
  QString database;
  QString error = QStringLiteral("earlier ");
  EXPECT_FALSE(Corvane::ReadConnectionFile(FileName, database, error));
  EXPECT_EQ(Utf8(error), "earlier No such file or directory");
}

TEST(DbConnectionFile, BytesThatAreNoTextDoNoHarm) {
  EXPECT_EQ(DatabaseIn(QByteArray("\xff\x00=\xfe==;", 7)), "failed: No database in connection file shop.udl");
  EXPECT_EQ(DatabaseIn(QByteArray("\xff=\xfe=:;", 6)), ":");
  EXPECT_EQ(DatabaseIn(QByteArray("\x00\x00", 2)), "failed: No database in connection file shop.udl");
}

}  // namespace
