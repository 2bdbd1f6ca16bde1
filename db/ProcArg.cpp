#include "db/ProcArg.h"

namespace Corvane {

ProcArg::ProcArg(const QString& name, const QString& value, qint32 direction, qint32 type)
    : Name(name), Value(value), Direction(direction), Type(type) {}

ProcArg::ProcArg(const char* name, const char* value, qint32 direction, qint32 type, qint32 mask)
    : ProcArg(QString::fromUtf8(name), QString::fromUtf8(value), direction, type) {
  if (mask == 1 && Name.isEmpty()) Value = QStringLiteral("***");
}

}  // namespace Corvane
