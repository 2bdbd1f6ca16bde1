#include "log/Log.h"

#include "base/Text.h"
#include "log/LogCall.h"
#include "log/LogWriter.h"

namespace Corvane {

namespace {

/// Writes an entry into the call that is running, or as a call of its own.
template <class Entry>
void Write(const Entry& entry) noexcept {
  const LogCall call;
  if (LogWriter* const writer = call.Writer()) writer->Add(entry);
}

}  // namespace

void Log(const QString& text) noexcept { Write(text); }

void Log(const char* text) noexcept { LogPieces({OrEmpty(text)}); }

void Log(const std::string& text) noexcept { LogPieces({text}); }

void LogPieces(std::initializer_list<std::string_view> pieces) noexcept { Write(pieces); }

}  // namespace Corvane
