#ifndef QNCORVANE_ENGINE_LOG_H
#define QNCORVANE_ENGINE_LOG_H

#include <QString>
#include <string>

namespace Corvane {

/// Writes one entry to the calculation log, the file in which a support person reads why a promotion did or did not
/// apply: local time "yyyy-MM-dd hh:mm:ss", two blanks, the text, newline, carriage return.
///
/// The file is "QnCorvane.txt" in the current directory, opened by that name and closed again for every entry: the host
/// may change its directory, delete or replace the file between two entries, and after each entry the file is complete.
/// A file that an entry finds longer than 1000000 bytes starts anew with that entry. A file that can't be opened costs
/// the entry and nothing more.
///
/// The file's encoding is that of the process's locale.
void Log(const QString& text);

/// @param text UTF-8; null logs an empty text.
void Log(const char* text);

/// @param text UTF-8.
void Log(const std::string& text);

}  // namespace Corvane

#endif
