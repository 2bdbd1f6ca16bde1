#include "host/JsonWriter.h"

#include <QByteArray>
#include <QString>
#include <array>
#include <cstdio>
#include <utility>

#include "log/Utf8.h"

namespace Corvane::Host {

void JsonWriter::End() {
  m_text.push_back(m_ends.back());
  m_ends.pop_back();
  m_isFirst = false;
}

JsonWriter& JsonWriter::Key(std::string_view name) {
  Separate();
  Quote(name);
  m_text.push_back(':');
  m_isFirst = true;
  return *this;
}

void JsonWriter::String(std::string_view text) {
  Separate();
  if (ComesThroughUnchanged(text)) {
    Quote(text);
  } else {
    const QByteArray utf8 = QString::fromUtf8(text.data(), static_cast<int>(text.size())).toUtf8();
    Quote({utf8.constData(), static_cast<std::size_t>(utf8.size())});
  }
}

void JsonWriter::Number(std::string_view digits) {
  Separate();
  m_text.append(digits);
}

void JsonWriter::Integer(std::int64_t value) { Number(std::to_string(value)); }

void JsonWriter::Boolean(bool value) { Number(value ? "true" : "false"); }

std::string JsonWriter::Take() {
  m_isFirst = true;
  return std::move(m_text);
}

void JsonWriter::Open(char first, char last) {
  Separate();
  m_text.push_back(first);
  m_ends.push_back(last);
  m_isFirst = true;
}

void JsonWriter::Separate() {
  if (!m_isFirst) m_text.push_back(',');
  m_isFirst = false;
}

void JsonWriter::Quote(std::string_view utf8) {
  constexpr unsigned char kFirstPlain = 0x20;
  m_text.push_back('"');
  for (const char letter : utf8) {
    if (letter == '"' || letter == '\\') {
      m_text.push_back('\\');
      m_text.push_back(letter);
    } else if (static_cast<unsigned char>(letter) < kFirstPlain) {
      std::array<char, 8> code{};
      std::snprintf(code.data(), code.size(), "\\u%04x", static_cast<unsigned>(letter));
      m_text.append(code.data());
    } else {
      m_text.push_back(letter);
    }
  }
  m_text.push_back('"');
}

}  // namespace Corvane::Host
