#ifndef TOOLS_RESULTBUFFER_H
#define TOOLS_RESULTBUFFER_H

#include <cstddef>
#include <string>

namespace Corvane::Tool {

/// Room for a text that the engine writes without being told how much room there is.
///
/// The pages are taken from the system only as they are written, so that a size far above any real result costs
/// nothing; a page that can't be touched lies behind the last one, so that a result above that size stops the program
/// at once instead of spoiling its memory.
class ResultBuffer {
 public:
  /// Empty text, room for at least `size` bytes. @throws ToolError when the system has no such room.
  explicit ResultBuffer(std::size_t size);
  ~ResultBuffer();
  ResultBuffer(const ResultBuffer&) = delete;
  ResultBuffer& operator=(const ResultBuffer&) = delete;

  [[nodiscard]] char* Data() const { return m_data; }
  [[nodiscard]] std::string Text() const { return m_data; }

 private:
  std::size_t m_mapped;
  char* m_data = nullptr;
};

}  // namespace Corvane::Tool

#endif
