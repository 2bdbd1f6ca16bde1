#ifndef QNCORVANE_HOST_SESSION_H
#define QNCORVANE_HOST_SESSION_H

#include <functional>
#include <memory>
#include <string>

#include "qncorvane/host.h"

namespace Corvane::Host {

/// What a call gives: filled by its work, on the engine's thread.
struct Outcome {
  qnc_code Code = QNC_OK;
  std::string Error;   ///< the text of a code that isn't QNC_OK
  std::string Result;  ///< what the call has to tell, whatever its code
};

/// A piece of work on the engine's thread. It may throw; a Failure's text reaches the caller.
using Task = std::function<void(Outcome& outcome)>;

/// The open engine of this process, of which there is one at most. May be used by any thread.
namespace Session {

/// @return QNC_OK's outcome and the engine, or another and none.
Outcome Open(const std::string& folder, qnc_engine*& engine);

Outcome Close(const qnc_engine* engine);

/// Has a task done for an engine and waits for it.
///
/// @param task     must own what it needs.
/// @param limit_ms 0 for none.
Outcome Do(const qnc_engine* engine, unsigned limit_ms, const Task& task);

/// The same for a task that needs no engine: on a thread of its own.
Outcome DoAnyway(unsigned limit_ms, const Task& task);

/// @return the folder of an engine. @throw Failure with QNC_CLOSED.
std::string FolderOf(const qnc_engine* engine);

}  // namespace Session

}  // namespace Corvane::Host

#endif
