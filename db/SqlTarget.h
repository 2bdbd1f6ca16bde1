#ifndef QNCORVANE_DB_SQLTARGET_H
#define QNCORVANE_DB_SQLTARGET_H

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QVariant>
#include <QtGlobal>
#include <variant>

namespace Corvane {

/// An address of the caller's that a value from the database goes to, in the form that the address's type asks for. The
/// variable behind the address must outlive the call it is given to; a null address is left alone.
class SqlTarget {
 public:
  SqlTarget(quint8* out) : m_out(out) {}
  SqlTarget(qint32* out) : m_out(out) {}
  SqlTarget(quint32* out) : m_out(out) {}
  SqlTarget(double* out) : m_out(out) {}
  SqlTarget(QString* out) : m_out(out) {}
  SqlTarget(QByteArray* out) : m_out(out) {}
  SqlTarget(QDateTime* out) : m_out(out) {}

  /// Stores `value`, converted; one that can't be converted, like NULL, stores zero or empty.
  void Store(const QVariant& value) const;

 private:
  std::variant<quint8*, qint32*, quint32*, double*, QString*, QByteArray*, QDateTime*> m_out;
};

}  // namespace Corvane

#endif
