#ifndef QNCORVANE_LOG_LOGFOLDER_H
#define QNCORVANE_LOG_LOGFOLDER_H

#include <string>

namespace Corvane {

/// Chooses the folder in which the log stands; empty, as it is unless told, is the process's current directory. To be
/// called by the thread that logs.
void SetLogFolder(const std::string& folder);

/// @return the log's file name, with the folder in front. Good until the next choice.
const char* LogFileName() noexcept;

}  // namespace Corvane

#endif
