#include "engine/StatusText.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace Corvane {

Text StatusText(Status status) {
  static constexpr std::array<Text, 20> kTexts = {
      "sucess",
      "unknow error",
      "pro free",
      "pro inititalzing",
      "pro cleaning",
      "pro using",
      "pro initialize failed",
      "clear pro failed",
      "invalid value",
      "clear sale failed",
      "return pro result error",
      "Error parsing Comment.",
      "Error parsing Declaration.",
      "Error document empty.",
      "Error null (0) or unexpected EOF found in input stream.",
      "Error parsing CDATA.",
      "Error when TiXmlDocument added to document, because TiXmlDocument can only be at the root.",
      "Error ",
      "total overflow",
      "number overflow",
  };
  return kTexts.at(static_cast<std::size_t>(status));
}

void CopyText(char* buffer, std::string_view text) { CopyTexts(buffer, {text}); }

void CopyTexts(char* buffer, std::initializer_list<std::string_view> texts) {
  if (buffer == nullptr) return;
  for (const std::string_view text : texts) buffer = std::copy(text.begin(), text.end(), buffer);
  *buffer = '\0';
}

}  // namespace Corvane
