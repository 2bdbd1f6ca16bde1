#include "log/LogEncoding.h"

#include <iconv.h>

#include <QTextCodec>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include "log/Utf8.h"

namespace Corvane {

namespace {

/// Qt counts in 32 bits.
constexpr std::size_t kLongest = std::numeric_limits<int>::max();

std::size_t LengthOf(std::initializer_list<std::string_view> pieces) {
  std::size_t length = 0;
  for (const std::string_view piece : pieces) length += piece.size();
  return length;
}

constexpr int kUtf8 = 106;  // its number in IANA's list of character sets

/// The system's converter from UTF-8 into an encoding.
class Converter {
 public:
  explicit Converter(const std::string& encoding) : m_handle(iconv_open(encoding.c_str(), "UTF-8")) {}
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() {
    if (IsUsable()) iconv_close(m_handle);
  }
  // The system's mark of a converter that there is not is the address -1.
  bool IsUsable() const { return reinterpret_cast<std::intptr_t>(m_handle) != -1; }

  QByteArray Convert(QByteArray utf8) const {
    QByteArray converted;
    char* next = utf8.data();
    auto left = static_cast<std::size_t>(utf8.size());
    while (left > 0) {
      std::array<char, 1024> room{};
      char* end = room.data();
      std::size_t free = room.size();
      const bool failed = iconv(m_handle, &next, &left, &end, &free) == static_cast<std::size_t>(-1);
      const bool isFull = failed && errno == E2BIG;
      converted.append(room.data(), static_cast<int>(end - room.data()));
      if (failed && !isFull) SkipCharacter(converted, next, left);
    }
    return converted;
  }

 private:
  static void SkipCharacter(QByteArray& converted, char*& next, std::size_t& left) {
    constexpr unsigned kMark = 0xC0;
    constexpr unsigned kContinued = 0x80;
    converted.append('?');
    do {
      ++next;
      --left;
    } while (left > 0 && (static_cast<unsigned char>(*next) & kMark) == kContinued);
  }

  iconv_t m_handle;
};

}  // namespace

QByteArray LogEncoding::Encoded(const QString& text) {
  const QTextCodec* const codec = QTextCodec::codecForLocale();
  if (codec == nullptr) return WithoutQt(text);
  m_last = codec->mibEnum() == kUtf8 ? std::string() : codec->name().toStdString();
  return codec->fromUnicode(text);
}

QByteArray LogEncoding::Encoded(std::initializer_list<std::string_view> pieces) {
  if (LengthOf(pieces) > kLongest) throw std::length_error("log entry");
  std::string utf8;
  for (const std::string_view piece : pieces) utf8.append(piece);
  return Encoded(QString::fromUtf8(utf8.data(), static_cast<int>(utf8.size())));
}

bool LogEncoding::IsEncoded(std::initializer_list<std::string_view> pieces) {
  return LengthOf(pieces) <= kLongest && IsUtf8() && std::all_of(pieces.begin(), pieces.end(), ComesThroughUnchanged);
}

bool LogEncoding::IsUtf8() {
  const QTextCodec* const codec = QTextCodec::codecForLocale();
  if (codec == nullptr) return m_last.empty();
  if (codec->mibEnum() != kUtf8) return false;
  m_last.clear();
  return true;
}

QByteArray LogEncoding::WithoutQt(const QString& text) const {
  QByteArray utf8 = text.toUtf8();
  if (m_last.empty()) return utf8;
  const Converter converter(m_last);
  return converter.IsUsable() ? converter.Convert(utf8) : utf8;
}

}  // namespace Corvane
