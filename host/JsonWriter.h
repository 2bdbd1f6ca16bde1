#ifndef QNCORVANE_HOST_JSONWRITER_H
#define QNCORVANE_HOST_JSONWRITER_H

#include <cstdint>
#include <string>
#include <string_view>

namespace Corvane::Host {

/// Writes a JSON text from its beginning to its end: `json.Object(); json.Key("a").Number("1.50"); json.End();`.
///
/// Names stay in their order and numbers keep their digits. No tree is built: the usual libraries need memory even to
/// destroy theirs, and a call that is short of memory has to end well.
class JsonWriter {
 public:
  void Object() { Open('{', '}'); }
  void Array() { Open('[', ']'); }
  /// Ends the object or array that was begun last.
  void End();

  /// The name of what comes next.
  JsonWriter& Key(std::string_view name);

  /// @param text UTF-8; bytes that are none become U+FFFD.
  void String(std::string_view text);
  /// @param digits a number in the form of JSON.
  void Number(std::string_view digits);
  void Integer(std::int64_t value);
  void Boolean(bool value);

  /// @return the text. @note the writer is empty then.
  std::string Take();

 private:
  void Open(char first, char last);
  void Separate();
  void Quote(std::string_view utf8);

  std::string m_text;
  std::string m_ends;  ///< of what is begun, the last one behind
  bool m_isFirst = true;
};

}  // namespace Corvane::Host

#endif
