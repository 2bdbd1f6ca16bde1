#ifndef QNCORVANE_DB_SQLTEXT_H
#define QNCORVANE_DB_SQLTEXT_H

#include <QString>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

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
  bool KeepsStatements = false;   ///< whether statements are prepared once, and only their values go out again
  std::size_t LinesAtOnce = 500;  ///< for how many lines of a sale one statement may ask
};

/// The dialect of a kind, given in capitals.
SqlDialect DialectOf(const QString& kind);

/// A value of a statement, which takes it for a text; null is the empty text. Whatever it holds, it stays a value.
struct Quoted {
  Text Value;
};

/// A condition: that a column holds one of some values, of which there is at least one. Where statements are kept, the
/// last value is repeated until there are 1, 2, 4, 8 and so on, so that few statements serve lists of every length.
class OneOf {
 public:
  /// @param column a string literal.
  /// @param values borrowed.
  template <std::size_t Size>
  OneOf(const char (&column)[Size], const std::vector<Text>& values) : Column(column), Values(values) {}

  const Text Column;
  const std::vector<Text>& Values;
};

/// A statement, or a piece of one. It is joined from the program's own words, which are string literals, from values,
/// and from other pieces; a text from anywhere else does not compile. Values are borrowed.
class SqlText {
 public:
  template <class... Piece>
  explicit SqlText(const SqlDialect& dialect, const Piece&... pieces) : m_doublesBackslashes(dialect.BackslashEscapes) {
    (Append(dialect, pieces), ...);
  }

  /// The statement with its values in quotes: quotes in them are doubled, and backslashes where they mean something.
  QString ToString() const;

  /// The statement with "?" for each value.
  QString Pattern() const {
    return Written([](std::string& text, Text) { text += '?'; });
  }

  const std::vector<Text>& Values() const { return m_values; }

  /// A value as a driver takes it: the same signs as within the statement.
  static QString ValueOf(Text value);

  /// Whether every value can be handed over on its own. SQLite takes the first sign of a value for a byte order mark if
  /// it looks like one, and drops it.
  bool CanBeBound() const;

 private:
  template <std::size_t Size>
  void Append(const SqlDialect& /*dialect*/, const char (&words)[Size]) {
    m_words.append(words, Size - 1);
  }
  void Append(const SqlDialect& /*dialect*/, const Quoted& value) { AppendValue(value.Value); }
  void Append(const SqlDialect& dialect, const OneOf& condition);
  void Append(const SqlDialect& /*dialect*/, const SqlText& piece);
  void AppendValue(Text value);

  /// The words, with what `write` appends for each value.
  template <class Writer>
  QString Written(Writer write) const {
    std::string text;
    std::size_t written = 0;
    for (std::size_t value = 0; value < m_values.size(); ++value) {
      text.append(m_words, written, m_places[value] - written);
      written = m_places[value];
      write(text, m_values[value]);
    }
    text.append(std::string_view(m_words).substr(written));
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
  }

  std::string m_words;  ///< without the values
  std::vector<Text> m_values;
  std::vector<std::size_t> m_places;  ///< of each value: where in the words
  bool m_doublesBackslashes;
};

}  // namespace Corvane

#endif
