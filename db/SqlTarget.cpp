#include "db/SqlTarget.h"

namespace Corvane {
namespace {

void Put(const QVariant& value, quint8& out) { out = static_cast<quint8>(value.toInt()); }
void Put(const QVariant& value, qint32& out) { out = value.toInt(); }
void Put(const QVariant& value, quint32& out) { out = value.toUInt(); }
void Put(const QVariant& value, double& out) { out = value.toDouble(); }
void Put(const QVariant& value, QString& out) { out = value.toString(); }
void Put(const QVariant& value, QByteArray& out) { out = value.toByteArray(); }
void Put(const QVariant& value, QDateTime& out) { out = value.toDateTime(); }

}  // namespace

void SqlTarget::Store(const QVariant& value) const {
  std::visit(
      [&value](auto* out) {
        if (out) Put(value, *out);
      },
      m_out);
}

}  // namespace Corvane
