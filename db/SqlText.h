#ifndef QNCORVANE_DB_SQLTEXT_H
#define QNCORVANE_DB_SQLTEXT_H

#include <QString>
#include <cstddef>
#include <string>

#include "base/Text.h"

namespace Corvane {

/// What the kinds of database write differently.
struct SqlDialect {
  enum class OneRow {
    Limit,
    Top,
    RowNum
  };  ///< "limit 1" at the end, "top 1" at the front, "rownum<=1" among the
      ///< conditions

  bool BackslashEscapes = false;  ///< whether a backslash within quotes takes the next sign's meaning
  OneRow AskForOneRow = OneRow::Limit;
};

/// The dialect of a kind, given in capitals.
SqlDialect DialectOf(const QString& kind);

/// A value that becomes a text in quotes within a statement; null is the empty text. Whatever it holds, it stays a
/// value: quotes in it are doubled, and backslashes where they mean something.
struct Quoted {
  Text Value;
};

/// A statement, or a piece of one. It is joined from the program's own words, which are string literals, from values in
/// quotes, and from other pieces; a text from anywhere else does not compile.
class SqlText {
 public:
  template <class... Piece>
  explicit SqlText(const SqlDialect& dialect, const Piece&... pieces) {
    (Append(dialect, pieces), ...);
  }

  QString ToString() const { return QString::fromUtf8(m_text.data(), static_cast<int>(m_text.size())); }

 private:
  template <std::size_t Size>
  void Append(const SqlDialect& /*dialect*/, const char (&words)[Size]) {
    m_text.append(words, Size - 1);
  }
  void Append(const SqlDialect& dialect, const Quoted& value);
  void Append(const SqlDialect& /*dialect*/, const SqlText& piece) { m_text += piece.m_text; }

  std::string m_text;
};

}  // namespace Corvane

#endif
