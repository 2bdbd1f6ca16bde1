#include "engine/HostBuffer.h"

#include <algorithm>

namespace Corvane {

void CopyText(char* buffer, std::string_view text) { CopyTexts(buffer, {text}); }

void CopyTexts(char* buffer, std::initializer_list<std::string_view> texts) {
  if (buffer == nullptr) return;
  for (const std::string_view text : texts) buffer = std::copy(text.begin(), text.end(), buffer);
  *buffer = '\0';
}

}  // namespace Corvane
