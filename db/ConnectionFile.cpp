#include "db/ConnectionFile.h"

#include <QFile>
#include <QTextStream>

#include "db/HostDirectory.h"

namespace Corvane {
namespace {

QString ReadText(QFile& file, const char* codec) {
  file.seek(0);
  QTextStream stream(&file);
  stream.setCodec(codec);
  return stream.readAll();
}

/// UTF-16 without a byte order mark shows, read as UTF-8, by the zero in its second place.
QString ReadUtf8OrUtf16(QFile& file) {
  QString text = ReadText(file, "UTF-8");
  const bool utf16 = text.size() > 1 && text.at(1).isNull();
  return utf16 ? ReadText(file, "UTF-16") : text;
}

}  // namespace

bool ReadConnectionFile(const QString& path, QString& database, QString& error) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
    error += file.errorString();
    return false;
  }
  const QString text = ReadUtf8OrUtf16(file);
  const int first = text.indexOf(QLatin1Char('='));
  const int second = first < 0 ? -1 : text.indexOf(QLatin1Char('='), first + 1);
  if (second < 0) {
    error += QStringLiteral("No database in connection file ") + path;
    return false;
  }
  const int end = text.indexOf(QLatin1Char(';'), second);
  database = text.mid(second + 1, end < 0 ? -1 : end - second - 1).trimmed();
  if (!database.contains(QLatin1Char(':'))) database = InHostDirectory(database);
  return true;
}

}  // namespace Corvane
