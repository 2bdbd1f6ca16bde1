#include "log/LogEncoding.h"

#include <iconv.h>

#include <QTextCodec>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <string>

#include "base/NeverDestroyed.h"

namespace Corvane {

namespace {

constexpr int kUtf8 = 106;  // its number in IANA's list of character sets

/// The name of the encoding last in use; empty for UTF-8.
std::string& LastEncoding() {
  static NeverDestroyed<std::string> name;
  return *name;
}

void Remember(const QTextCodec& codec) {
  if (codec.mibEnum() == kUtf8) {
    LastEncoding().clear();
  } else {
    LastEncoding() = codec.name().toStdString();
  }
}

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

QByteArray WithoutQt(const QString& text) {
  QByteArray utf8 = text.toUtf8();
  if (LastEncoding().empty()) return utf8;
  const Converter converter(LastEncoding());
  return converter.IsUsable() ? converter.Convert(utf8) : utf8;
}

}  // namespace

QByteArray InLogEncoding(const QString& text) {
  const QTextCodec* const codec = QTextCodec::codecForLocale();
  if (codec == nullptr) return WithoutQt(text);
  Remember(*codec);
  return codec->fromUnicode(text);
}

}  // namespace Corvane
