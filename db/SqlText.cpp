#include "db/SqlText.h"

#include "db/Kind.h"

namespace Corvane {

SqlDialect DialectOf(const QString& kind) {
  SqlDialect dialect;
  dialect.BackslashEscapes = kind == Kind::kMySql;
  if (kind == Kind::kSqlServer || kind == Kind::kAccess) dialect.AskForOneRow = SqlDialect::OneRow::Top;
  if (kind == Kind::kOracle) dialect.AskForOneRow = SqlDialect::OneRow::RowNum;
  return dialect;
}

void SqlText::Append(const SqlDialect& dialect, const Quoted& value) {
  m_text += '\'';
  for (const char* next = OrEmpty(value.Value); *next != '\0'; ++next) {
    if (*next == '\'' || (*next == '\\' && dialect.BackslashEscapes)) m_text += *next;
    m_text += *next;
  }
  m_text += '\'';
}

}  // namespace Corvane
