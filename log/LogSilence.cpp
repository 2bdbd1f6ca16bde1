#include "log/LogSilence.h"

#include "log/LogWriter.h"

namespace Corvane {

// Without a writer there is no memory for entries either.

LogSilence::LogSilence() noexcept : m_before(m_call.Writer() != nullptr && m_call.Writer()->Silence(true)) {}

LogSilence::~LogSilence() {
  if (LogWriter* const writer = m_call.Writer()) writer->Silence(m_before);
}

}  // namespace Corvane
