#include "base/XmlWriter.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "base/Numbers.h"

namespace Corvane {

namespace {

constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" ?>\n";
constexpr std::size_t kIndent = 4;

constexpr bool IsControl(unsigned char letter) { return letter < 32; }

/// What stands for the byte where it isn't itself; empty for itself.
constexpr std::string_view EntityOf(unsigned char letter) {
  switch (letter) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&apos;";
    default:
      return {};
  }
}

constexpr std::size_t kReference = 6;  // "&#x0A;"

/// How many bytes more than one each byte takes.
constexpr std::array<unsigned char, 256> MakeExtra() {
  std::array<unsigned char, 256> extra{};
  for (unsigned letter = 0; letter < extra.size(); ++letter) {
    const std::string_view entity = EntityOf(static_cast<unsigned char>(letter));
    const std::size_t length = letter < 32 ? kReference : std::max<std::size_t>(entity.size(), 1);
    extra[letter] = static_cast<unsigned char>(length - 1);
  }
  return extra;
}
constexpr std::array<unsigned char, 256> kExtra = MakeExtra();

char* Put(std::string_view text, char* to) {
  std::memcpy(to, text.data(), text.size());
  return to + text.size();
}

char* PutIndent(std::size_t depth, char* to) {
  std::memset(to, ' ', kIndent * depth);
  return to + kIndent * depth;
}

char* PutReference(unsigned char letter, char* to) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  to = Put("&#x", to);
  *to++ = kDigits[letter >> 4U];
  *to++ = kDigits[letter & 0xFU];
  *to++ = ';';
  return to;
}

char* PutEscaped(std::string_view text, char* to) {
  for (const char letter : text) {
    const auto byte = static_cast<unsigned char>(letter);
    if (kExtra[byte] == 0) {
      *to++ = letter;
    } else if (IsControl(byte)) {
      to = PutReference(byte, to);
    } else {
      to = Put(EntityOf(byte), to);
    }
  }
  return to;
}

}  // namespace

XmlWriter::XmlWriter(std::size_t room) {
  constexpr std::size_t kUsualDepth = 8;
  m_open.reserve(kUsualDepth);
  m_text.resize(std::max(room, kDeclaration.size()));
  WrittenTo(Put(kDeclaration, Room(kDeclaration.size())));
}

/// @return where so many bytes can be written behind what is written.
char* XmlWriter::Room(std::size_t size) {
  if (m_text.size() - m_length < size) m_text.resize(std::max(2 * m_text.size(), m_length + size));
  return m_text.data() + m_length;
}

void XmlWriter::Begin(std::string_view name) {
  const std::size_t depth = m_open.size();
  char* to = Room(2 + kIndent * depth + 1 + name.size());
  if (depth > 0 && !m_open.back().HasChildren) {
    to = Put(">\n", to);
    m_open.back().HasChildren = true;
  }
  to = PutIndent(depth, to);
  *to++ = '<';
  WrittenTo(Put(name, to));
  m_open.push_back({name, false});
}

void XmlWriter::End() {
  const Level level = m_open.back();
  m_open.pop_back();
  char* to = Room(kIndent * m_open.size() + level.Name.size() + 4);
  if (!level.HasChildren) {
    WrittenTo(Put(" />\n", to));
    return;
  }
  to = Put("</", PutIndent(m_open.size(), to));
  WrittenTo(Put(">\n", Put(level.Name, to)));
}

void XmlWriter::Word(std::string_view name, Text value) {
  const std::string_view text = OrEmpty(value);
  std::size_t extra = 0;
  bool hasQuote = false;
  for (const char letter : text) {
    extra += kExtra[static_cast<unsigned char>(letter)];
    hasQuote = hasQuote || letter == '"';
  }
  const char quote = hasQuote ? '\'' : '"';
  char* to = Room(name.size() + text.size() + extra + 4);
  *to++ = ' ';
  to = Put(name, to);
  *to++ = '=';
  *to++ = quote;
  to = extra == 0 ? Put(text, to) : PutEscaped(text, to);
  *to++ = quote;
  WrittenTo(to);
}

template <class PutNumber>
void XmlWriter::Number(std::string_view name, PutNumber put) {
  char* to = Room(name.size() + kNumberRoom + 4);
  *to++ = ' ';
  to = Put(name, to);
  to = put(Put("=\"", to));
  *to++ = '"';
  WrittenTo(to);
}

void XmlWriter::F2(std::string_view name, double value) {
  Number(name, [&](char* to) { return PutF2(value, to); });
}

void XmlWriter::F4(std::string_view name, double value) {
  Number(name, [&](char* to) { return PutF4(value, to); });
}

void XmlWriter::I(std::string_view name, std::int32_t value) {
  Number(name, [&](char* to) { return PutI(value, to); });
}

std::string XmlWriter::Take() {
  m_text.resize(m_length);
  return std::move(m_text);
}

}  // namespace Corvane
