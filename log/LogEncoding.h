#ifndef QNCORVANE_LOG_LOGENCODING_H
#define QNCORVANE_LOG_LOGENCODING_H

#include <QByteArray>
#include <QString>
#include <initializer_list>
#include <string>
#include <string_view>

namespace Corvane {

/// The encoding of the log: that of Qt's codec for the locale, which is UTF-8 unless Qt was built otherwise or the host
/// has set another. A host may set it at any time: it is asked for at each text. What the encoding can't write becomes
/// '?'.
///
/// A host may still call when the process ends and Qt has taken its codecs down. Then the conversion goes on without
/// Qt, in the encoding that was last in use, or in UTF-8 when none was.
class LogEncoding {
 public:
  /// A text in the encoding. @note a codec of the host's makes it, which may log by itself meanwhile.
  QByteArray Encoded(const QString& text);

  /// The same of UTF-8 in pieces that belong together. Bytes that are no UTF-8 become U+FFFD, and a byte order mark at
  /// the front goes.
  QByteArray Encoded(std::initializer_list<std::string_view> pieces);

  /// Whether UTF-8 in pieces is its own encoded form, so that nothing is to be done: nearly always.
  bool IsEncoded(std::initializer_list<std::string_view> pieces);

 private:
  bool IsUtf8();
  QByteArray WithoutQt(const QString& text) const;

  std::string m_last;  ///< the name of the encoding last in use; empty for UTF-8
};

}  // namespace Corvane

#endif
