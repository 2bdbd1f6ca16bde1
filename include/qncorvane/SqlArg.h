#ifndef QNCORVANE_SQLARG_H
#define QNCORVANE_SQLARG_H

#include <QList>
#include <QString>

#include "qncorvane/export.h"

namespace Corvane {

/// One column and its value, for hosts that write INSERT statements as text.
class QNCORVANE_API SqlArg {
 public:
  /// Empty texts; `IsText` has no set value: set it before use.
  SqlArg();

  /// @param name   column name, written as it stands.
  /// @param value  value as text.
  /// @param isText whether the value is written in single quotes.
  SqlArg(const QString& name, const QString& value, bool isText);

  /// "insert into table(name,name) values(value,'value');". An empty list leaves both pairs of brackets empty.
  ///
  /// Nothing is escaped: a single quote in a `Value` breaks the statement, and it is for the caller to double it.
  static QString getIntSQL(const QString& table, const QList<SqlArg>& args);

  QString Name;   ///< Column name.
  QString Value;  ///< Value as text.
  bool IsText;    ///< True: `Value` is written in single quotes. False: as it stands.
};

}  // namespace Corvane

using Corvane::SqlArg;

#endif
