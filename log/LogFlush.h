#ifndef QNCORVANE_LOG_LOGFLUSH_H
#define QNCORVANE_LOG_LOGFLUSH_H

namespace Corvane {

/// When the entries of an exported call go into the file.
enum class LogFlush {
  Entry,  ///< each before the function that logs it returns
  Call,   ///< all when the call returns, or earlier when many have come together
};

/// The way that is in use, `Entry` unless told. It holds for the whole process, from the next entry on.
LogFlush CurrentLogFlush() noexcept;
void SetLogFlush(LogFlush flush) noexcept;

}  // namespace Corvane

#endif
