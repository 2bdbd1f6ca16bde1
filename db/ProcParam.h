#ifndef QNCORVANE_DB_PROCPARAM_H
#define QNCORVANE_DB_PROCPARAM_H

#include <QSql>
#include <QVariant>
#include <QtGlobal>
#include <optional>

#include "db/SqlTarget.h"

namespace Corvane {

/// One argument of a stored procedure by position, for `QnPosDBPro::ExecProcFormat`:
///
///     db.ExecProcFormat("pNextNo", {ProcParam::In("till 3"), ProcParam::InOut(&count), ProcParam::Out(&number)});
class ProcParam {
 public:
  static ProcParam In(qint32 value) { return {value, QSql::In}; }
  static ProcParam In(double value) { return {value, QSql::In}; }
  /// @param value zero-terminated UTF-8, copied; a null pointer is the empty text.
  static ProcParam In(const char* value) { return {QString::fromUtf8(value), QSql::In}; }
  static ProcParam In(const QString& value) { return {value, QSql::In}; }
  static ProcParam In(const QByteArray& value) { return {value, QSql::In}; }
  static ProcParam In(const QDateTime& value) { return {value, QSql::In}; }

  /// The value behind `address` (not null) goes in as it is now; what comes back is stored there.
  template <typename T>
  static ProcParam InOut(T* address) {
    return {Bound(*address), QSql::InOut, SqlTarget(address)};
  }

  /// Nothing goes in (the integer 0 stands in its place); what comes back is stored at `address`.
  static ProcParam Out(const SqlTarget& address) { return {0, QSql::Out, address}; }

  const QVariant& Value() const { return m_value; }
  QSql::ParamType Direction() const { return m_direction; }
  /// Takes what came back; does nothing for an argument that only goes in.
  void Store(const QVariant& value) const {
    if (m_target) m_target->Store(value);
  }

 private:
  ProcParam(const QVariant& value, QSql::ParamType direction) : m_value(value), m_direction(direction) {}
  ProcParam(const QVariant& value, QSql::ParamType direction, const SqlTarget& target)
      : m_value(value), m_direction(direction), m_target(target) {}

  template <typename T>
  static QVariant Bound(const T& value) {
    return QVariant(value);
  }
  static QVariant Bound(quint8 value) { return {static_cast<qint32>(value)}; }

  QVariant m_value;
  QSql::ParamType m_direction;
  std::optional<SqlTarget> m_target;
};

}  // namespace Corvane

#endif
