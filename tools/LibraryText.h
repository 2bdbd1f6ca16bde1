#ifndef TOOLS_LIBRARYTEXT_H
#define TOOLS_LIBRARYTEXT_H

#include <string>

#include "qncorvane/host.h"

namespace Corvane::Tool {

/// A place for a text that the library makes; gives it back at its end.
class LibraryText {
 public:
  LibraryText() = default;
  ~LibraryText() { qnc_free(m_text); }
  LibraryText(const LibraryText&) = delete;
  LibraryText& operator=(const LibraryText&) = delete;

  /// @return where the library puts the text; to be asked for once.
  [[nodiscard]] char** Place() { return &m_text; }

  /// @return the text; empty when there is none.
  [[nodiscard]] std::string Text() const { return m_text == nullptr ? std::string() : std::string(m_text); }

 private:
  char* m_text = nullptr;
};

}  // namespace Corvane::Tool

#endif
