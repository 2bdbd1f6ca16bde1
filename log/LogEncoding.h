#ifndef QNCORVANE_LOG_LOGENCODING_H
#define QNCORVANE_LOG_LOGENCODING_H

#include <QByteArray>
#include <QString>

namespace Corvane {

/// A text in the encoding of the log: that of Qt's codec for the locale, which is UTF-8 unless Qt was built otherwise
/// or the host has set another. What the encoding can't write becomes '?'.
///
/// A host may still call when the process ends and Qt has taken its codecs down. Then the conversion goes on without
/// Qt, in the encoding that was last in use, or in UTF-8 when none was.
QByteArray InLogEncoding(const QString& text);

}  // namespace Corvane

#endif
