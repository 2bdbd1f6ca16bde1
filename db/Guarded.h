#ifndef QNCORVANE_DB_GUARDED_H
#define QNCORVANE_DB_GUARDED_H

#include <QString>

namespace Corvane {

/// Runs `operation`; an exception becomes a failure. @param error in and out: an exception's text is appended.
template <typename Operation>
bool Guarded(QString& error, Operation operation) {
  try {
    return operation();
  } catch (...) {
    error += QStringLiteral("未定义的异常");
    return false;
  }
}

template <typename Operation>
bool Guarded(Operation operation) {
  QString ignored;
  return Guarded(ignored, operation);
}

}  // namespace Corvane

#endif
