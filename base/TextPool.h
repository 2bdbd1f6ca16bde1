#ifndef QNCORVANE_BASE_TEXTPOOL_H
#define QNCORVANE_BASE_TEXTPOOL_H

#include <memory_resource>
#include <string_view>
#include <unordered_set>

#include "base/Text.h"

namespace Corvane {

/// Keeps texts for the records that borrow them, each distinct text once. All of them go with the pool, none before.
class TextPool {
 public:
  TextPool() = default;
  TextPool(const TextPool&) = delete;
  TextPool& operator=(const TextPool&) = delete;
  ~TextPool() = default;

  /// @return a zero-terminated copy, never null, that lives as long as the pool. A zero byte inside `text` ends it for
  ///         every reader.
  Text Keep(std::string_view text);

 private:
  static constexpr std::size_t kFirstBlock = 512;

  // Named, since a host may have put another default in place.
  std::pmr::monotonic_buffer_resource m_texts{kFirstBlock, std::pmr::new_delete_resource()};
  std::unordered_set<std::string_view> m_held;
};

/// The pool of the process, which is never destroyed: texts of rules and of table columns. A result on a sale line may
/// outlive the rule and the document that its texts came from. A till that runs for weeks on the same rules doesn't
/// grow. What only a sale uses is kept in the sale's own pool instead.
TextPool& ProcessTexts();

/// Keeps a text in the pool of the process.
inline Text KeepText(std::string_view text) { return ProcessTexts().Keep(text); }

}  // namespace Corvane

#endif
