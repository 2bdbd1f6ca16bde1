#include "base/TextPool.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <unordered_set>
#include <vector>

namespace Corvane {

namespace {

class TextPool {
 public:
  Text Keep(std::string_view text) {
    const auto held = m_held.find(text);
    if (held != m_held.end()) return held->data();
    char* copy = Reserve(text.size() + 1);
    std::copy(text.begin(), text.end(), copy);
    copy[text.size()] = '\0';
    m_held.emplace(copy, text.size());
    return copy;
  }

 private:
  static constexpr std::size_t kBlockSize = 64 * 1024;

  char* Reserve(std::size_t size) {
    if (size > kBlockSize / 4) return NewBlock(size);
    if (size > m_left) {
      m_next = NewBlock(kBlockSize);
      m_left = kBlockSize;
    }
    char* room = m_next;
    m_next += size;
    m_left -= size;
    return room;
  }

  char* NewBlock(std::size_t size) { return m_blocks.emplace_back(std::make_unique<char[]>(size)).get(); }

  std::vector<std::unique_ptr<char[]>> m_blocks;
  std::unordered_set<std::string_view> m_held;
  char* m_next = nullptr;
  std::size_t m_left = 0;
};

}  // namespace

Text KeepText(std::string_view text) {
  // Never destroyed: texts are borrowed until the process ends. Reachable, so that leak checkers stay useful.
  static auto* const pool = new TextPool;
  return pool->Keep(text);
}

}  // namespace Corvane
