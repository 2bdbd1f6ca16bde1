#include "db/UseInCall.h"

namespace Corvane {

bool UseInCall::Begin() {
  if (m_isInCall) return false;
  m_isInCall = true;
  return true;
}

void UseInCall::NoteFailedOpen(const QString& reason) {
  if (m_isInCall) GiveUp(reason);
}

bool UseInCall::NoteFailedStatement(Duration took, std::chrono::seconds timeout, const QString& reason) {
  if (!m_isInCall || m_isOver || timeout.count() == 0) return false;
  m_lost += took;
  if (m_lost < Duration(timeout) / 2) return false;
  GiveUp(reason);
  return true;
}

void UseInCall::GiveUp(const QString& reason) {
  m_isOver = true;
  m_reason = reason;
}

bool UseInCall::IsFirstUse() {
  if (!m_isInCall || m_isUsed) return false;
  m_isUsed = true;
  return true;
}

}  // namespace Corvane
