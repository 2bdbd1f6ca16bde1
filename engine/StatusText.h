#ifndef QNCORVANE_ENGINE_STATUSTEXT_H
#define QNCORVANE_ENGINE_STATUSTEXT_H

#include <initializer_list>
#include <string_view>

#include "base/Text.h"

namespace Corvane {

/// Places in the table of status texts. Hosts compare the texts: their spelling is the interface.
enum class Status {
  Success = 0,
  UnknownError = 1,
  Free = 2,
  Initializing = 3,
  Cleaning = 4,
  Using = 5,
  InitializeFailed = 6,
  ClearFailed = 7,
  InvalidValue = 8,
  ClearSaleFailed = 9,
  WriteFailed = 10,
  TotalOverflow = 18,
  NumberOverflow = 19,
};

/// @return a constant text.
Text StatusText(Status status);

/// Copies a text with its closing zero into a host's buffer, whose length nobody checks. A null buffer is left alone.
void CopyText(char* buffer, std::string_view text);

/// The same with several texts, one directly behind the other.
void CopyTexts(char* buffer, std::initializer_list<std::string_view> texts);

}  // namespace Corvane

#endif
