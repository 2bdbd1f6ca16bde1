#ifndef QNCORVANE_LOG_LOGCALL_H
#define QNCORVANE_LOG_LOGCALL_H

namespace Corvane {

class LogWriter;

/// Marks an exported call as running on this thread, for the life of this object: `const LogCall call;`. Its entries
/// share what may not outlast it: the log's descriptor, and the entries that are gathered until it ends. A call within
/// a call is part of it.
///
/// The call ends with its entries in the file and the file closed, also when an exception ends it. Calls on several
/// threads have nothing in common but the file. What is logged outside a call makes one of its own (log/Log.cpp).
class LogCall {
 public:
  LogCall() noexcept;
  LogCall(const LogCall&) = delete;
  LogCall& operator=(const LogCall&) = delete;
  ~LogCall();

  /// @return the writer of the call that this one is, or is part of; null when there was no memory for one.
  LogWriter* Writer() const noexcept;

 private:
  LogWriter* m_own;  ///< null for a call within a call
};

}  // namespace Corvane

#endif
