#include "base/Xml.h"

#include <strings.h>
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace Corvane {

namespace {

/// Walks an XML text token by token exactly as TinyXML will, and makes the text that TinyXML gets: attributes that a
/// later one of the same name overrules become blanks, numeric character references become the characters, and the text
/// is cut where it grows beyond all measure. At a fault the walk just ends: TinyXML stops at the same place.
class TextPreparation {
 public:
  /// @param text stays as it is.
  explicit TextPreparation(Text text) : m_copied(text), m_next(text) {}

  /// @return the text, and behind it zero bytes for the longest UTF-8 sequence less one.
  std::string Run() {
    // No edit makes the text longer, so places in it stay where they are.
    m_made.reserve(std::strlen(m_next) + kPadding);
    m_utf8 = StartsWith("\xEF\xBB\xBF");
    while (Node()) {
    }
    if (!m_isCut) m_made.append(m_copied);
    m_made.append(kPadding, '\0');
    return std::move(m_made);
  }

 private:
  static constexpr std::size_t kPadding = 3;

  /// An attribute in the text that is made.
  struct AttributePlace {
    std::string_view Name;
    std::size_t Begin;
    std::size_t End;
  };

  /// Takes over what was walked.
  void CopyWalked() {
    m_made.append(Between(m_copied, m_next));
    m_copied = m_next;
  }

  /// Where in the text that is made the next character will stand.
  std::size_t Place() const { return m_made.size() + Between(m_copied, m_next).size(); }

  bool StartsWith(std::string_view word) const { return std::strncmp(m_next, word.data(), word.size()) == 0; }
  bool StartsWithIgnoringCase(std::string_view word) const {
    return strncasecmp(m_next, word.data(), word.size()) == 0;
  }
  bool AtEnd() const { return *m_next == '\0'; }

  /// Beyond ASCII a host's locale may know further blanks, and TinyXML asks it.
  static bool IsBlank(char letter) {
    const auto byte = static_cast<unsigned char>(letter);
    return byte < 128 ? byte == ' ' || (byte >= '\t' && byte <= '\r') : std::isspace(byte) != 0;
  }
  static bool IsNameStart(char letter) {
    const auto byte = static_cast<unsigned char>(letter);
    return byte >= 127 || letter == '_' || (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
  }
  static bool IsNamePart(char letter) {
    return IsNameStart(letter) || IsDecimalDigit(letter) || letter == '-' || letter == '.' || letter == ':';
  }

  void SkipBlanks() {
    for (;;) {
      // In UTF-8, TinyXML takes the byte order mark and two non-characters for blanks.
      const bool mark = m_utf8 && *m_next == '\xEF' &&
                        (StartsWith("\xEF\xBB\xBF") || StartsWith("\xEF\xBF\xBE") || StartsWith("\xEF\xBF\xBF"));
      if (mark) {
        m_next += 3;
      } else if (IsBlank(*m_next)) {
        ++m_next;
      } else {
        return;
      }
    }
  }

  /// Steps over one character of running text or of a quoted value. @return false at a reference that ends the text.
  bool Character() {
    if (*m_next == '&' && m_next[1] == '#') return Reference();
    StepOverCharacter();
    return true;
  }

  /// A numeric reference. TinyXML seeks the next semicolon, however far it is, and reads the digits in front of it back
  /// to the last 'x' or '#'; whatever stands between is swallowed, and anything but digits ends the text. In a text
  /// that isn't declared as UTF-8 it makes one byte of any code: so all codes but those of ASCII are turned into UTF-8
  /// here.
  bool Reference() {
    const bool isHex = m_next[2] == 'x';
    const char* const end = std::strchr(m_next + 2, ';');
    if (end == nullptr) return false;
    const char* begin = end;
    while (begin[-1] != (isHex ? 'x' : '#')) --begin;
    const std::optional<unsigned> code = CodeOf(Between(begin, end), isHex ? 16 : 10);
    if (!code) return false;
    if (*code >= 0x80) {
      CopyWalked();
      AppendUtf8(*code);
      m_copied = end + 1;
    }
    m_next = end + 1;
    return true;
  }

  /// @return nothing when there is anything but digits; a code beyond all characters for a number beyond them.
  static std::optional<unsigned> CodeOf(std::string_view digits, unsigned base) {
    unsigned code = 0;
    for (const char digit : digits) {
      const bool isDigit = base == 16 ? IsHexDigit(digit) : IsDecimalDigit(digit);
      if (!isDigit) return std::nullopt;
      const int value = IsDecimalDigit(digit) ? digit - '0' : (digit | 0x20) - 'a' + 10;
      code = std::min(code * base + static_cast<unsigned>(value), kBeyondCharacters);
    }
    return code;
  }
  static bool IsDecimalDigit(char letter) { return letter >= '0' && letter <= '9'; }
  static bool IsHexDigit(char letter) {
    return IsDecimalDigit(letter) || (letter >= 'a' && letter <= 'f') || (letter >= 'A' && letter <= 'F');
  }

  /// What is no character of XML becomes the replacement character.
  void AppendUtf8(unsigned code) {
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    if (isSurrogate || code == 0xFFFE || code == 0xFFFF || code >= kBeyondCharacters) code = 0xFFFD;
    if (code < 0x800) {
      AppendBytes(0xC0 | code >> 6, 1, code);
    } else if (code < 0x10000) {
      AppendBytes(0xE0 | code >> 12, 2, code);
    } else {
      AppendBytes(0xF0 | code >> 18, 3, code);
    }
  }
  void AppendBytes(unsigned lead, unsigned further, unsigned code) {
    m_made.push_back(static_cast<char>(lead));
    while (further-- > 0) m_made.push_back(static_cast<char>(0x80 | (code >> 6 * further & 0x3F)));
  }

  /// Steps over one character. In UTF-8 the lead byte alone tells the length, whatever follows it.
  void StepOverCharacter() {
    const auto lead = static_cast<unsigned char>(*m_next);
    std::size_t length = 1;
    if (m_utf8 && lead >= 0xC2 && lead <= 0xF4) length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    while (length-- > 0 && !AtEnd()) ++m_next;
  }

  bool SkipBehind(std::string_view end) {
    const char* const found = std::strstr(m_next, end.data());
    if (found == nullptr) return false;
    m_next = found + end.size();
    return true;
  }

  /// Nothing that was not walked is taken over.
  bool CutHere() {
    CopyWalked();
    m_isCut = true;
    return false;
  }

  /// One node of the content at the present depth. @return false at the end of what can be read.
  bool Node() {
    SkipBlanks();
    if (AtEnd()) return false;
    if (*m_next != '<') return RunningText();
    if (m_depth > 0 && StartsWith("</")) return EndTag();
    if (StartsWithIgnoringCase("<?xml")) return Declaration();
    if (StartsWith("<!--")) return SkipBehind("-->");
    if (StartsWith("<![CDATA[")) return SkipBehind("]]>");
    if (!IsNameStart(m_next[1])) return SkipBehind(">");
    return StartTag();
  }

  bool RunningText() {
    if (m_depth == 0) return false;
    while (!AtEnd() && *m_next != '<') {
      if (!Character()) return false;
    }
    return !AtEnd();
  }

  bool EndTag() {
    --m_depth;
    return SkipBehind(">");
  }

  bool Declaration() {
    m_next += std::strlen("<?xml");
    std::string_view encoding;
    while (SkipBlanks(), !AtEnd()) {
      if (*m_next == '>') {
        ++m_next;
        // One within an element tells TinyXML nothing.
        if (m_depth == 0 && !m_encodingKnown) {
          m_utf8 = m_utf8 || NamesUtf8(encoding);
          m_encodingKnown = true;
        }
        return true;
      }
      const bool isEncoding = StartsWithIgnoringCase("encoding");
      if (!isEncoding && !StartsWithIgnoringCase("version") && !StartsWithIgnoringCase("standalone")) {
        while (!AtEnd() && *m_next != '>' && !IsBlank(*m_next)) ++m_next;
        continue;
      }
      std::string_view name;
      std::string_view value;
      if (!Attribute(name, value)) return false;
      if (!isEncoding) continue;
      // A name that is spelled in references would be another one to TinyXML than here.
      if (value.find('&') != std::string_view::npos) return CutHere();
      encoding = value;
    }
    return false;
  }

  static bool NamesUtf8(std::string_view encoding) {
    const std::string word(encoding);
    return word.empty() || strncasecmp(word.c_str(), "UTF-8", 5) == 0 || strncasecmp(word.c_str(), "UTF8", 4) == 0;
  }

  bool StartTag() {
    if (m_depth == XmlDocument::kMaxDepth) return CutHere();
    ++m_next;
    while (IsNamePart(*m_next)) ++m_next;
    m_attributes.clear();
    for (;;) {
      SkipBlanks();
      if (AtEnd()) return false;
      if (*m_next == '>') {
        ++m_next;
        ++m_depth;
        return true;
      }
      if (*m_next == '/') {
        ++m_next;
        return *m_next++ == '>';
      }
      if (!NextAttribute()) return false;
    }
  }

  bool NextAttribute() {
    if (m_attributes.size() == static_cast<std::size_t>(XmlDocument::kMaxAttributes)) return CutHere();
    const std::size_t begin = Place();
    std::string_view name;
    std::string_view value;
    if (!Attribute(name, value) || AtEnd()) return false;
    const AttributePlace place = {name, begin, Place()};
    for (AttributePlace& earlier : m_attributes) {
      if (earlier.Name != name) continue;
      CopyWalked();
      std::fill(m_made.begin() + Offset(earlier.Begin), m_made.begin() + Offset(earlier.End), ' ');
      earlier = place;
      return true;
    }
    m_attributes.push_back(place);
    return true;
  }

  static std::ptrdiff_t Offset(std::size_t place) { return static_cast<std::ptrdiff_t>(place); }

  bool Attribute(std::string_view& name, std::string_view& value) {
    const char* const begin = m_next;
    if (!IsNameStart(*m_next)) return false;
    while (IsNamePart(*m_next)) ++m_next;
    name = Between(begin, m_next);
    SkipBlanks();
    if (*m_next != '=') return false;
    ++m_next;
    SkipBlanks();
    return *m_next == '"' || *m_next == '\'' ? QuotedValue(value) : BareValue(value);
  }

  bool QuotedValue(std::string_view& value) {
    const char quote = *m_next++;
    const char* const begin = m_next;
    while (!AtEnd() && *m_next != quote) {
      if (!Character()) return false;
    }
    if (AtEnd()) return false;
    value = Between(begin, m_next);
    ++m_next;
    return true;
  }

  bool BareValue(std::string_view& value) {
    const char* const begin = m_next;
    while (!AtEnd() && !IsBlank(*m_next) && *m_next != '/' && *m_next != '>') {
      if (*m_next == '"' || *m_next == '\'') return false;
      ++m_next;
    }
    value = Between(begin, m_next);
    return true;
  }

  static std::string_view Between(const char* begin, const char* end) {
    return {begin, static_cast<std::size_t>(end - begin)};
  }

  static constexpr unsigned kBeyondCharacters = 0x110000;

  std::string m_made;
  const char* m_copied;  ///< up to here the text is in what is made
  const char* m_next;
  bool m_isCut = false;
  bool m_utf8 = false;
  bool m_encodingKnown = false;
  int m_depth = 0;
  std::vector<AttributePlace> m_attributes;
};

}  // namespace

XmlDocument::XmlDocument(Text xml) {
  const std::string text = TextPreparation(OrEmpty(xml)).Run();
  m_document.SetTabSize(0);  // nobody asks for rows and columns, which TinyXML counts byte by byte
  m_document.Parse(text.c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
}

}  // namespace Corvane
