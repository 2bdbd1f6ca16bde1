#include "db/ConnectionHealth.h"

namespace Corvane {

bool ConnectionHealth::Note(bool succeeded) {
  m_doubted = !succeeded;
  if (succeeded && m_remote) m_lastAnswer = Now();
  return succeeded;
}

bool ConnectionHealth::NeedsTrial() const {
  if (m_doubted) return true;
  return m_remote && Now() - m_lastAnswer > TrustedFor;
}

}  // namespace Corvane
