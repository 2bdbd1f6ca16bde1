#ifndef QNCORVANE_TESTS_SUPPORT_BOTHWAYS_H
#define QNCORVANE_TESTS_SUPPORT_BOTHWAYS_H

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <ostream>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "db/QnPosDBPro.h"
#include "promo/DetailTable.h"
#include "sale/ProSale.h"

namespace bothways {

using Words = std::vector<const char*>;

/// Codes that some database takes for one: by case, blanks, accents, marks, width or as numbers; and codes that none
/// does.
inline Words LookAlikes() {
  return {"A1", "a1",      "A1 ", " A1", "A-1", "100101", "100102", "7", "07",      "7.0", "",    " ",  "0",
          "é",  "e\u0301", "e",   "茶",  "绿",  "１",     "ａ1",    "ß", "ss",      "\\",  "'",   "''", "😀",
          "😁",  "%",       "_",   "?",   "A2",  "A 2",    "ø",      "o", "\uFEFFA", "A",   "\x01"};
}

/// Codes as shops have them.
inline Words Ordinary() { return {"100101", "100102", "100103", "A1", "B2", "茶", "绿茶", "JUICE"}; }

/// Codes that differ as texts and not as numbers.
inline Words Numbers() { return {"7", "07", "7.0", "0", "00", "100101", "0100101", "12"}; }

struct Row : Corvane::ProDetailKey {};

using Column = Corvane::FromColumn<Row>;
constexpr Corvane::RowField<Row> kColumns[] = {
    {"SerialNo", Column::Integer<&Row::SerialNo>},
    {"PluCode", Column::KeptText<&Row::PluCode>},
    {"PluType", Column::KeptText<&Row::PluType>},
};

/// What is seen of the rows of a sale: whether they could be read, and each row's number, code, type and place.
struct Seen {
  bool Read = true;
  std::vector<std::tuple<int, std::string, std::string, int>> Rows;
  bool operator==(const Seen& other) const { return Read == other.Read && Rows == other.Rows; }
};

inline std::ostream& operator<<(std::ostream& out, const Seen& seen) {
  out << (seen.Read ? "read" : "failed");
  for (const auto& [number, code, type, place] : seen.Rows)
    out << " (" << number << " '" << code << "' " << type << " at " << place << ")";
  return out;
}

/// Numbers of rows: any, some twice on rows that differ; or counting up, as a table's key has them.
enum class SerialNumbers { Random, Ascending };

/// Random tables and sales, read in one statement where that is certain and line by line.
class Comparison {
 public:
  /// @param db open, with a table t(BillNo, SerialNo, PluCode, PluType).
  Comparison(Corvane::QnPosDBPro& db, Words codes, SerialNumbers numbers = SerialNumbers::Random)
      : m_db(db), m_codes(std::move(codes)), m_numbers(numbers) {}

  /// @param lines of each sale; 0 for one to four.
  void Run(int rounds, std::size_t lines = 0) {
    for (int round = 0; round < rounds; ++round) {
      FillTable(lines == 0 ? Below(kMostRows) : kRowsForManyLines);
      Corvane::ProSale sale;
      FillSale(sale, lines == 0 ? 1 + Below(4) : lines);
      const Seen lineByLine = ReadLineByLine(sale);
      EXPECT_EQ(ReadOfLines(sale), lineByLine) << "round " << round;
      CountWays(sale);
    }
  }

  int AtOnce = 0;      ///< sales that one statement served with rows
  int LineByLine = 0;  ///< sales that were not certain

 private:
  static constexpr std::size_t kMostRows = 12;
  static constexpr std::size_t kRowsForManyLines = 300;

  std::size_t Below(std::size_t end) { return std::uniform_int_distribution<std::size_t>(0, end - 1)(m_chance); }
  const char* Code() { return m_codes[Below(m_codes.size())]; }

  void Run(const Corvane::SqlText& sql) {
    QString error;
    ASSERT_TRUE(m_db.excuteSQL(sql.ToString(), error)) << error.toStdString();
  }

  void FillTable(std::size_t rows) {
    const Corvane::SqlDialect dialect = m_db.Dialect();
    Run(Corvane::SqlText(dialect, "delete from t"));
    constexpr std::array<const char*, 6> kTypes = {"PLU", "PLU", "PLU", "CAT", "BRD", "plu"};
    for (std::size_t row = rows; row > 0; --row) {
      const std::string number = std::to_string(m_numbers == SerialNumbers::Random ? Below(rows) : kMostRows - row);
      Run(Corvane::SqlText(dialect, "insert into t(BillNo, SerialNo, PluCode, PluType) values ('R',",
                           Corvane::Quoted{number.c_str()}, ",", Corvane::Quoted{Code()}, ",",
                           Corvane::Quoted{kTypes[Below(kTypes.size())]}, ")"));
    }
  }

  void FillSale(Corvane::ProSale& sale, std::size_t lines) {
    for (std::size_t line = lines; line > 0; --line) {
      Corvane::SalePlu& plu = sale.Plus.emplace_back();
      plu.PluCode = Code();
      plu.CAT = Code();
      plu.BRD = Below(3) == 0 ? nullptr : Code();
    }
  }

  Seen SeenOf(bool read, const std::vector<Row>& rows) {
    Seen seen{read, {}};
    for (const Row& row : rows) {
      EXPECT_STREQ(row.BillNo, "R");
      seen.Rows.emplace_back(row.SerialNo, Corvane::OrEmpty(row.PluCode), Corvane::OrEmpty(row.PluType), row.Index);
    }
    return seen;
  }

  static constexpr const char kSelect[] = "select SerialNo,PluCode,PluType from t where BillNo=";

  Seen ReadOfLines(Corvane::ProSale& sale) {
    QString error;
    Corvane::DetailTables tables(m_db, "R", error);
    std::vector<Row> rows;
    const bool read = tables.ReadOfLines(sale, tables.Select(kSelect), kColumns, rows, Corvane::SameSerialNo());
    return SeenOf(read, rows);
  }

  Seen ReadLineByLine(const Corvane::ProSale& sale) {
    QString error;
    Corvane::DetailTables tables(m_db, "R", error);
    std::vector<Row> rows;
    Corvane::DistinctRows<Row, Corvane::SameSerialNo> distinct(rows);
    bool read = true;
    for (const Corvane::SalePlu& line : sale.Plus)
      read = read && tables.ReadOfLine(line, tables.Select(kSelect), kColumns, distinct);
    return SeenOf(read, rows);
  }

  void CountWays(Corvane::ProSale& sale) {
    QString error;
    Corvane::DetailTables tables(m_db, "R", error);
    for (const Corvane::LineCodes& codes : tables.GroupsOf(sale)) {
      std::vector<Row> rows;
      Corvane::DistinctRows<Row, Corvane::SameSerialNo> distinct(rows);
      const bool atOnce = tables.ReadAtOnce(codes, tables.Select(kSelect), kColumns, distinct);
      if (!atOnce) ++LineByLine;
      if (atOnce && !rows.empty()) ++AtOnce;
    }
  }

  Corvane::QnPosDBPro& m_db;
  Words m_codes;
  SerialNumbers m_numbers;
  std::mt19937 m_chance{20261121};  // NOLINT(cert-msc51-cpp): the same tables and sales in every run
};

}  // namespace bothways

#endif
