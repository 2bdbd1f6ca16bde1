#include "base/TextPool.h"

#include <algorithm>

#include "base/NeverDestroyed.h"

namespace Corvane {

Text TextPool::Keep(std::string_view text) {
  if (text.empty()) return "";
  const auto held = m_held.find(text);
  if (held != m_held.end()) return held->data();
  char* const copy = static_cast<char*>(m_texts.allocate(text.size() + 1, alignof(char)));
  *std::copy(text.begin(), text.end(), copy) = '\0';
  m_held.emplace(copy, text.size());
  return copy;
}

TextPool& ProcessTexts() {
  static NeverDestroyed<TextPool> pool;
  return *pool;
}

}  // namespace Corvane
