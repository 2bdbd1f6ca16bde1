#ifndef QNCORVANE_LOG_LOGENCODING_H
#define QNCORVANE_LOG_LOGENCODING_H

#include <QByteArray>
#include <QString>
#include <cstddef>
#include <string>

namespace Corvane {

/// The encoding of the log: that of Qt's codec for the locale, which is UTF-8 unless Qt was built otherwise or the host
/// has set another. A host may set it at any time: it is asked for at each text. What the encoding can't write becomes
/// '?'.
///
/// A host may still call when the process ends and Qt has taken its codecs down. Then the conversion goes on without
/// Qt, in the encoding that was last in use, or in UTF-8 when none was.
class LogEncoding {
 public:
  /// A text in the encoding.
  QByteArray Encoded(const QString& text);

  /// Brings UTF-8 into the encoding: what stands in `text` from `begin` on. Bytes that are no UTF-8 become U+FFFD, and
  /// a byte order mark at the front goes. Where nothing is to be done, which is nearly always, it only looks.
  void Encode(std::string& text, std::size_t begin);

 private:
  bool IsUtf8();
  QByteArray WithoutQt(const QString& text) const;

  std::string m_last;  ///< the name of the encoding last in use; empty for UTF-8
};

}  // namespace Corvane

#endif
