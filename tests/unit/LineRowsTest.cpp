// The rows of a sale's lines: in one statement, and line by line where the database compares otherwise.
#include <gtest/gtest.h>

#include "tests/support/BothWays.h"
#include "tests/unit/DbStore.h"

using bothways::Comparison;
using Corvane::CodeIndex;
using Corvane::DatabaseCall;
using Corvane::LineCodes;
using Corvane::OneOf;
using Corvane::SalePlu;
using Corvane::SqlText;

namespace {

using Codes = std::vector<const char*>;

std::vector<SalePlu> LinesOf(const Codes& codes) {
  std::vector<SalePlu> lines(codes.size());
  for (std::size_t line = 0; line < codes.size(); ++line) lines[line].PluCode = codes[line];
  return lines;
}

CodeIndex IndexOf(const std::vector<SalePlu>& lines) {
  return {lines.data(), lines.data() + lines.size(), &SalePlu::PluCode};
}

bool AreDistinctEverywhere(const Codes& codes) { return IndexOf(LinesOf(codes)).AreDistinctEverywhere(); }

// --- Codes ------------------------------------------------------------------------------------------------------------

TEST(LineCodes, EachCodeStandsOnceWithItsFirstLine) {
  const std::vector<SalePlu> lines = LinesOf({"B", "A", "B", nullptr, "", "A"});
  const CodeIndex index = IndexOf(lines);
  ASSERT_EQ(index.Codes().size(), 3U);
  EXPECT_STREQ(index.Codes()[0], "");
  EXPECT_STREQ(index.Codes()[1], "A");
  EXPECT_STREQ(index.Codes()[2], "B");
  EXPECT_EQ(index.FirstLine("B"), 0U);
  EXPECT_EQ(index.FirstLine("A"), 1U);
  EXPECT_EQ(index.FirstLine(""), 3U);
  EXPECT_EQ(index.FirstLine("b"), std::nullopt);
  EXPECT_EQ(index.FirstLine("C"), std::nullopt);
}

TEST(LineCodes, ARowNamesALineByTheCodeThatItsTypeMeans) {
  std::vector<SalePlu> lines(2);
  lines[0].PluCode = "1";
  lines[0].CAT = "2";
  lines[1].PluCode = "2";
  lines[1].BRD = "1";
  const LineCodes codes(lines.data(), lines.data() + lines.size());
  Corvane::ProDetailKey row;
  row.PluCode = "2";
  row.PluType = "PLU";
  EXPECT_EQ(codes.FirstNamed(row), 1U);
  row.PluType = "CAT";
  EXPECT_EQ(codes.FirstNamed(row), 0U);
  row.PluType = "BRD";
  EXPECT_EQ(codes.FirstNamed(row), std::nullopt);
  row.PluType = "plu";
  EXPECT_EQ(codes.FirstNamed(row), std::nullopt);
}

TEST(LineCodes, LettersDigitsAndCommonHanSignsAreToldApartEverywhere) {
  EXPECT_TRUE(AreDistinctEverywhere({"100101", "100102", "A1", "茶", "绿茶", "龥", "一"}));
  EXPECT_TRUE(AreDistinctEverywhere({"A1", "A1", "A1"}));
  EXPECT_TRUE(AreDistinctEverywhere({}));
}

TEST(LineCodes, OneCodeCanBeTakenForNoOther) { EXPECT_TRUE(AreDistinctEverywhere({"ß", "ß"})); }

TEST(LineCodes, CaseBlanksAndMarksAreNoDifference) {
  EXPECT_FALSE(AreDistinctEverywhere({"A1", "a1"}));
  EXPECT_FALSE(AreDistinctEverywhere({"A1", "A1 "}));
  EXPECT_FALSE(AreDistinctEverywhere({"A1", "A-1"}));
  EXPECT_FALSE(AreDistinctEverywhere({"", " "}));
  EXPECT_FALSE(AreDistinctEverywhere({"茶", "茶 "}));
}

TEST(LineCodes, OfOtherSignsNothingIsCertain) {
  for (const char* code :
       {"é", "?", "１", "ａ", "😀", "ß", "\u2003", "㐀", "\u9FA6", "\xE4\xB8", "\xFF", "\xE4\x41\x42"}) {
    EXPECT_FALSE(AreDistinctEverywhere({code, "100101"})) << code;
  }
}

TEST(LineCodes, LinesStandInGroups) {
  const std::vector<SalePlu> lines = LinesOf({"1", "2", "3", "4", "5"});
  const std::vector<LineCodes> groups = Corvane::CodesOf(lines, 2);
  ASSERT_EQ(groups.size(), 3U);
  EXPECT_EQ(groups[1].First, lines.data() + 2);
  EXPECT_EQ(groups[1].End, lines.data() + 4);
  EXPECT_EQ(groups[2].First, lines.data() + 4);
  EXPECT_EQ(groups[2].End, lines.data() + 5);
  EXPECT_EQ(groups[1].Goods.FirstLine("4"), 1U);
  EXPECT_TRUE(Corvane::CodesOf({}, 2).empty());
}

TEST(LineCodes, AGroupOfLongCodesEndsEarly) {
  const std::string tenth(1U << 15U, 'A');
  std::vector<SalePlu> lines(20);
  for (SalePlu& line : lines) line.CAT = tenth.c_str();
  const std::vector<LineCodes> groups = Corvane::CodesOf(lines, 8000);
  ASSERT_EQ(groups.size(), 3U);
  EXPECT_EQ(groups[0].End - groups[0].First, 8);
  EXPECT_EQ(groups[2].End, lines.data() + 20);
}

// --- Both ways --------------------------------------------------------------------------------------------------------

/// An SQLite store with a table whose code column is declared as the test's parameter says.
class BothWays : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    dbtest::Store::Configure("DbType=SQLITE\nDBName=./shop.db\n");
    m_db = std::make_unique<dbtest::OpenFields>();
    ASSERT_TRUE(m_db->EnsureOpen(m_error));
    const QString table = QStringLiteral("create table t(BillNo text, SerialNo integer, PluCode %1, PluType text %2)");
    const QString declared = QString::fromUtf8(GetParam());
    const QString collated = declared.section(QStringLiteral("text "), 1);
    ASSERT_TRUE(m_db->excuteSQL(table.arg(declared, collated), m_error)) << m_error.toStdString();
  }

  dbtest::Store m_store;
  std::unique_ptr<dbtest::OpenFields> m_db;
  QString m_error;
};

TEST_P(BothWays, GiveTheSameRowsForCodesThatLookAlike) {
  const DatabaseCall call(m_db->Shared());
  Comparison comparison(*m_db, bothways::LookAlikes());
  comparison.Run(700);
  EXPECT_GT(comparison.LineByLine, 100);
}

TEST_P(BothWays, GiveTheSameRowsForOrdinaryCodes) {
  const DatabaseCall call(m_db->Shared());
  Comparison comparison(*m_db, bothways::Ordinary());
  comparison.Run(300);
  EXPECT_GT(comparison.AtOnce, 30);
}

/// A column of numbers finds 7 by "07".
TEST_P(BothWays, GiveTheSameRowsForCodesThatAreNumbers) {
  const DatabaseCall call(m_db->Shared());
  Comparison comparison(*m_db, bothways::Numbers());
  comparison.Run(300);
  const bool holdsNumbers = std::string(GetParam()) == "integer" || std::string(GetParam()) == "real";
  EXPECT_EQ(comparison.AtOnce > 30, !holdsNumbers);
}

/// Lists that SQLite makes tables of, statements that are not kept, and sales that are asked for in two groups.
TEST_P(BothWays, GiveTheSameRowsForLongSales) {
  std::vector<std::string> texts(3000);
  for (std::size_t code = 0; code < texts.size(); ++code) texts[code] = "C" + std::to_string(code);
  bothways::Words codes;
  codes.reserve(texts.size());
  for (const std::string& text : texts) codes.push_back(text.c_str());
  const DatabaseCall call(m_db->Shared());
  Comparison comparison(*m_db, codes);
  for (const std::size_t lines : {100U, 1500U, 8200U}) comparison.Run(1, lines);
  EXPECT_GT(comparison.AtOnce, 0);
}

/// SQLite follows an index from goods to category to brand, where it goes from row to row without one; and for many
/// codes it leaves an index aside that it takes for few.
TEST_P(BothWays, GiveTheSameRowsInTheSameOrderWithAnIndexOnTheCodes) {
  for (const char* columns : {"PluCode", "BillNo,PluCode", "PluType,PluCode"}) {
    const QString index = QStringLiteral("create index i on t(%1)").arg(QLatin1String(columns));
    ASSERT_TRUE(m_db->excuteSQL(index, m_error));
    {
      const DatabaseCall call(m_db->Shared());
      Comparison comparison(*m_db, bothways::Ordinary(), bothways::SerialNumbers::Ascending);
      comparison.Run(300);
      EXPECT_GT(comparison.AtOnce, 20);
    }
    ASSERT_TRUE(m_db->excuteSQL(QStringLiteral("drop index i"), m_error));
  }
}

/// What SQLite says of its road through t to the goods.
std::string RoadOf(dbtest::OpenFields& db, const SqlText& condition) {
  QSqlQuery query;
  QString error;
  const SqlText sql(db.Dialect(), "explain query plan select * from t where ", condition);
  EXPECT_TRUE(db.openRecordset(sql.ToString(), query, error)) << error.toStdString();
  return query.next() ? query.value(QStringLiteral("detail")).toString().toStdString() : "";
}

TEST_P(BothWays, AnIndexServesTheCodesOfManyLinesAsItDoesThoseOfOne) {
  ASSERT_TRUE(m_db->excuteSQL(QStringLiteral("create index i on t(PluCode)"), m_error));
  for (const std::size_t size : {2U, 3U, 60U, 500U}) {
    const Codes codes(size, "100101");
    const SqlText oneOf(m_db->Dialect(), OneOf("PluCode", codes));
    EXPECT_EQ(RoadOf(*m_db, oneOf), "SEARCH t USING INDEX i (PluCode=?)") << size;
  }
}

INSTANTIATE_TEST_SUITE_P(, BothWays,
                         testing::Values("text", "text collate nocase", "text collate rtrim", "integer", "real", ""));

}  // namespace
