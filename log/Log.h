#ifndef QNCORVANE_LOG_LOG_H
#define QNCORVANE_LOG_LOG_H

#include <QString>
#include <initializer_list>
#include <string>
#include <string_view>

#include "base/Text.h"

namespace Corvane {

/// Writes one entry to the calculation log, the file in which a support person reads why a promotion did or did not
/// apply: local time "yyyy-MM-dd hh:mm:ss", two blanks, the text, newline, carriage return.
///
/// The file is "QnCorvane.txt" in the current directory, or in the folder of log/LogFolder.h, found by that name for every entry: the host may change its
/// directory, delete or replace the file between two entries, and after each entry the file is complete. Within an
/// exported call (log/LogCall.h) the host may have its entries gathered until the call ends (log/LogFlush.h); that leaves
/// the same bytes. A file that an entry finds longer than 1000000 bytes starts anew with that entry. An entry that can't
/// be written, whatever the cause, is lost and nothing more.
///
/// The local time is that of the entry, and follows a host that changes TZ. The file's encoding is told in
/// log/LogEncoding.h.
void Log(const QString& text) noexcept;

/// @param text UTF-8; null logs an empty text.
void Log(const char* text) noexcept;

/// @param text UTF-8.
void Log(const std::string& text) noexcept;

/// One entry of several pieces of UTF-8, one directly behind the other.
void LogPieces(std::initializer_list<std::string_view> pieces) noexcept;

/// The same for pieces that are texts or strings; a null piece is empty. Nothing is joined outside, so that an entry
/// for which there is no memory costs the entry only.
template <class First, class Second, class... Piece>
void Log(const First& first, const Second& second, const Piece&... pieces) noexcept {
  LogPieces({Detail::ViewOf(first), Detail::ViewOf(second), Detail::ViewOf(pieces)...});
}

}  // namespace Corvane

#endif
