#ifndef QNCORVANE_BASE_XMLWRITER_H
#define QNCORVANE_BASE_XMLWRITER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/Text.h"

namespace Corvane {

/// Writes an XML document of elements and attributes into one text, byte for byte as TinyXML's printer prints it with
/// four blanks a level and a newline behind each tag: a declaration of version "1.0" and nothing else, the attributes
/// in the order of the calls, an element without children closed in its own tag.
///
/// A value stands in double quotes, or in single ones if it has a double quote inside, which is escaped all the same.
/// Escaped are `& < > " '` by name and control characters below 32 as "&#x0A;"; all other bytes pass, UTF-8 or not.
/// Names are constants of the caller and stand as they are.
class XmlWriter {
 public:
  /// @param room how long the text may get before it needs further memory.
  explicit XmlWriter(std::size_t room);

  /// Opens an element in the one that is open. Its attributes come before its children.
  void Begin(std::string_view name);
  /// Closes the element that was opened last.
  void End();

  // One attribute of the element that was opened last.

  /// Null is the empty text.
  void Word(std::string_view name, Text value);
  void F2(std::string_view name, double value);
  void F4(std::string_view name, double value);
  void I(std::string_view name, std::int32_t value);

  /// @return the text, whose elements must all be closed. The writer is spent.
  std::string Take();

 private:
  struct Level {
    std::string_view Name;
    bool HasChildren;
  };

  char* Room(std::size_t size);
  void WrittenTo(const char* end) { m_length = static_cast<std::size_t>(end - m_text.data()); }
  template <class Put>
  void Number(std::string_view name, Put put);

  std::string m_text;        ///< what is written, and room behind it
  std::size_t m_length = 0;  ///< of what is written
  std::vector<Level> m_open;
};

}  // namespace Corvane

#endif
