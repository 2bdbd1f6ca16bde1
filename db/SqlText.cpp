#include "db/SqlText.h"

#include <algorithm>
#include <string_view>

#include "db/Kind.h"

namespace Corvane {
namespace {

/// Far below the number of values that SQLite takes in one statement, three lists of them and more.
constexpr std::size_t kLinesAtOnceSqlite = 8000;
/// A megabyte of codes of forty letters; servers refuse longer statements.
constexpr std::size_t kLinesAtOnceMySql = 8000;
/// SQLite makes a table of its own for a list behind "in" if it is made of constants, which costs as much as a good many
/// comparisons: room is asked of the system and given back each time.
constexpr std::size_t kMostComparisons = 64;
/// Access gives up on statements of 64,000 letters.
constexpr std::size_t kLinesAtOnceAccess = 100;

std::size_t PowerOfTwo(std::size_t least) {
  std::size_t power = 1;
  while (power < least) power *= 2;
  return power;
}

}  // namespace

SqlDialect DialectOf(const QString& kind) {
  SqlDialect dialect;
  dialect.BackslashEscapes = kind == Kind::kMySql;
  dialect.KeepsStatements = kind == Kind::kSqlite;
  if (kind == Kind::kSqlServer || kind == Kind::kAccess) dialect.AskForOneRow = SqlDialect::OneRow::Top;
  if (kind == Kind::kOracle) dialect.AskForOneRow = SqlDialect::OneRow::RowNum;
  if (kind == Kind::kSqlite) dialect.LinesAtOnce = kLinesAtOnceSqlite;
  if (kind == Kind::kMySql) dialect.LinesAtOnce = kLinesAtOnceMySql;
  if (kind == Kind::kAccess) dialect.LinesAtOnce = kLinesAtOnceAccess;
  return dialect;
}

QString SqlText::ToString() const {
  return Written([&](std::string& text, Text value) {
    text += '\'';
    for (const char* next = value; *next != '\0'; ++next) {
      if (*next == '\'' || (*next == '\\' && m_doublesBackslashes)) text += *next;
      text += *next;
    }
    text += '\'';
  });
}

bool SqlText::CanBeBound() const {
  return std::none_of(m_values.begin(), m_values.end(), [](Text value) {
    const std::string_view text = value;
    return text.substr(0, 3) == "\xEF\xBB\xBF" || text.substr(0, 3) == "\xEF\xBF\xBE";
  });
}

QString SqlText::ValueOf(Text value) {
  // Signs in front and behind keep the conversion from taking the value's own first signs for a byte order mark.
  const std::string enclosed = Join("'", value, "'");
  const QString text = QString::fromUtf8(enclosed.data(), static_cast<int>(enclosed.size()));
  return text.mid(1, text.size() - 2);
}

void SqlText::Append(const SqlDialect& dialect, const OneOf& condition) {
  const std::vector<Text>& values = condition.Values;
  const std::size_t size = dialect.KeepsStatements ? PowerOfTwo(values.size()) : values.size();
  m_words.append(condition.Column).append(" in (");
  for (std::size_t value = 0; value < size; ++value) {
    if (value != 0) m_words += ',';
    AppendValue(value < values.size() ? values[value] : values.back());
  }
  if (dialect.KeepsStatements && size <= kMostComparisons) {
    // No constant, equal to nothing, and of no column: an index on the column serves as it does for one value.
    m_words += ",changes()+null";
  }
  m_words += ')';
}

void SqlText::Append(const SqlDialect& /*dialect*/, const SqlText& piece) {
  for (const std::size_t place : piece.m_places) m_places.push_back(m_words.size() + place);
  m_values.insert(m_values.end(), piece.m_values.begin(), piece.m_values.end());
  m_words += piece.m_words;
}

void SqlText::AppendValue(Text value) {
  m_places.push_back(m_words.size());
  m_values.push_back(OrEmpty(value));
}

}  // namespace Corvane
