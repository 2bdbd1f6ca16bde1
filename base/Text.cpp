#include "base/Text.h"

#include <cstring>

namespace Corvane {

namespace {

char LowerAscii(char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter; }

}  // namespace

int CompareBytes(Text left, Text right) { return std::strcmp(OrEmpty(left), OrEmpty(right)); }

int CompareIgnoringCase(Text left, Text right) {
  left = OrEmpty(left);
  right = OrEmpty(right);
  while (*left != '\0' && LowerAscii(*left) == LowerAscii(*right)) {
    ++left;
    ++right;
  }
  return LowerAscii(*left) - LowerAscii(*right);
}

std::string_view FamilyOf(Text type) { return std::string_view(OrEmpty(type)).substr(0, 2); }

}  // namespace Corvane
