#ifndef QNCORVANE_DB_PROCARG_H
#define QNCORVANE_DB_PROCARG_H

#include <QString>
#include <QtGlobal>

namespace Corvane {

/// One argument of a stored procedure, for `QnPosDBPro::exexProcWithArgs`.
struct ProcArg {
  static constexpr qint32 Integer = 0;  ///< `Type` of an integer.
  static constexpr qint32 Text = 1;     ///< `Type` of a text.
  static constexpr qint32 In = 1;       ///< `Direction`: QSql::In.
  static constexpr qint32 Out = 2;      ///< `Direction`: QSql::Out. The one direction whose value is read back.

  ProcArg(const QString& name, const QString& value, qint32 direction, qint32 type);

  /// From zero-terminated UTF-8 texts, which are copied; a null pointer is the empty text.
  ///
  /// @param mask 1: an argument without a name carries "***" in place of its value.
  ProcArg(const char* name, const char* value, qint32 direction, qint32 type, qint32 mask);

  QString Name;      ///< Name, without a colon.
  QString Value;     ///< Value as text; an integer in base 10.
  qint32 Direction;  ///< QSql's parameter direction.
  qint32 Type;       ///< `Integer` or `Text`; anything else is refused when the procedure runs.
};

}  // namespace Corvane

#endif
