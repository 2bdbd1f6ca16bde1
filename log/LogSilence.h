#ifndef QNCORVANE_LOG_LOGSILENCE_H
#define QNCORVANE_LOG_LOGSILENCE_H

#include "log/LogCall.h"

namespace Corvane {

/// Keeps entries of this thread out of the log for the life of this object: what is calculated to try something out is
/// nothing that happened.
class LogSilence {
 public:
  LogSilence() noexcept;
  LogSilence(const LogSilence&) = delete;
  LogSilence& operator=(const LogSilence&) = delete;
  ~LogSilence();

 private:
  LogCall m_call;
  bool m_before;  ///< whether it was kept already
};

}  // namespace Corvane

#endif
