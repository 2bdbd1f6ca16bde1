#ifndef QNCORVANE_ENGINE_HOSTBUFFER_H
#define QNCORVANE_ENGINE_HOSTBUFFER_H

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace Corvane {

/// Copies a text with its closing zero into a host's buffer, whose length nobody checks. A null buffer is left alone.
void CopyText(char* buffer, std::string_view text);

/// The same with several texts, one directly behind the other.
void CopyTexts(char* buffer, std::initializer_list<std::string_view> texts);

/// Where the result of a calculation goes: into a host's buffer, or into a text that grows with it.
class ResultPlace {
 public:
  /// @param buffer as for CopyText.
  explicit ResultPlace(char* buffer) : m_buffer(buffer) {}
  explicit ResultPlace(std::string& text) : m_text(&text) {}

  void Put(std::string&& result) const {
    if (m_text != nullptr) {
      *m_text = std::move(result);
    } else {
      CopyText(m_buffer, result);
    }
  }

 private:
  char* m_buffer = nullptr;
  std::string* m_text = nullptr;
};

}  // namespace Corvane

#endif
