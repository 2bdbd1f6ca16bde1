#include "log/StatusText.h"

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

}  // namespace Corvane
