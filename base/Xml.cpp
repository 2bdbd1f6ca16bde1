#include "base/Xml.h"

#include <strings.h>
#include <cctype>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

namespace Corvane {

namespace {

/// Walks an XML text token by token exactly as TinyXML will, and edits it in place: attributes that a later one of the
/// same name overrules become blanks, and the text is cut where it grows beyond all measure. At a fault the walk just
/// ends: TinyXML stops at the same place.
class TextPreparation {
 public:
  /// @param text is edited; it must be followed by kPadding zero bytes inside the string.
  explicit TextPreparation(std::string& text) : m_next(text.data()) {}

  void Run() {
    m_utf8 = StartsWith("\xEF\xBB\xBF");
    while (Node()) {
    }
  }

  /// The longest UTF-8 sequence less one.
  static constexpr std::size_t kPadding = 3;

 private:
  struct AttributePlace {
    std::string_view Name;
    char* Begin;
    char* End;
  };

  bool StartsWith(std::string_view word) const { return std::strncmp(m_next, word.data(), word.size()) == 0; }
  bool StartsWithIgnoringCase(std::string_view word) const {
    return strncasecmp(m_next, word.data(), word.size()) == 0;
  }
  bool AtEnd() const { return *m_next == '\0'; }

  static bool IsBlank(char letter) { return std::isspace(static_cast<unsigned char>(letter)) != 0; }
  static bool IsNameStart(char letter) {
    const auto byte = static_cast<unsigned char>(letter);
    return byte >= 127 || letter == '_' || std::isalpha(byte) != 0;
  }
  static bool IsNamePart(char letter) {
    return IsNameStart(letter) || std::isdigit(static_cast<unsigned char>(letter)) != 0 || letter == '-' ||
           letter == '.' || letter == ':';
  }

  void SkipBlanks() {
    for (;;) {
      // In UTF-8, TinyXML takes the byte order mark and two non-characters for blanks.
      const bool mark =
          m_utf8 && (StartsWith("\xEF\xBB\xBF") || StartsWith("\xEF\xBF\xBE") || StartsWith("\xEF\xBF\xBF"));
      if (mark) {
        m_next += 3;
      } else if (IsBlank(*m_next)) {
        ++m_next;
      } else {
        return;
      }
    }
  }

  /// Steps over one character of running text. In UTF-8 the lead byte alone tells the length, whatever follows it.
  void StepOverCharacter() {
    const auto lead = static_cast<unsigned char>(*m_next);
    std::size_t length = 1;
    if (m_utf8 && lead >= 0xC2 && lead <= 0xF4) length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    while (length-- > 0 && !AtEnd()) ++m_next;
  }

  bool SkipBehind(std::string_view end) {
    char* const found = std::strstr(m_next, end.data());
    if (found == nullptr) return false;
    m_next = found + end.size();
    return true;
  }

  void CutHere() { *m_next = '\0'; }

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
    while (!AtEnd() && *m_next != '<') StepOverCharacter();
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
        if (!m_encodingKnown) m_utf8 = m_utf8 || NamesUtf8(encoding);
        m_encodingKnown = true;
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
      if (isEncoding) encoding = value;
    }
    return false;
  }

  static bool NamesUtf8(std::string_view encoding) {
    const std::string word(encoding);
    return word.empty() || strncasecmp(word.c_str(), "UTF-8", 5) == 0 || strncasecmp(word.c_str(), "UTF8", 4) == 0;
  }

  bool StartTag() {
    if (m_depth == XmlDocument::kMaxDepth) {
      CutHere();
      return false;
    }
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
    if (m_attributes.size() == static_cast<std::size_t>(XmlDocument::kMaxAttributes)) {
      CutHere();
      return false;
    }
    char* const begin = m_next;
    std::string_view name;
    std::string_view value;
    if (!Attribute(name, value) || AtEnd()) return false;
    for (AttributePlace& earlier : m_attributes) {
      if (earlier.Name != name) continue;
      std::memset(earlier.Begin, ' ', static_cast<std::size_t>(earlier.End - earlier.Begin));
      earlier = {name, begin, m_next};
      return true;
    }
    m_attributes.push_back({name, begin, m_next});
    return true;
  }

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
    while (!AtEnd() && *m_next != quote) StepOverCharacter();
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

  char* m_next;
  bool m_utf8 = false;
  bool m_encodingKnown = false;
  int m_depth = 0;
  std::vector<AttributePlace> m_attributes;
};

}  // namespace

XmlDocument::XmlDocument(Text xml) {
  std::string text(OrEmpty(xml));
  text.append(TextPreparation::kPadding, '\0');
  TextPreparation(text).Run();
  m_document.Parse(text.c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
}

}  // namespace Corvane
