#include "db/OpenedFile.h"

#include <QFile>
#include <QFileInfo>

namespace Corvane {
namespace {

bool IsSameFile(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

bool IsSameContent(const struct stat& left, const struct stat& right) {
  return left.st_size == right.st_size && left.st_mtim.tv_sec == right.st_mtim.tv_sec &&
         left.st_mtim.tv_nsec == right.st_mtim.tv_nsec;
}

}  // namespace

void OpenedFile::Opened(const QString& path) {
  Forget();
  struct stat state {};
  if (stat(QFile::encodeName(path).constData(), &state) != 0) return;  // a database in memory
  m_path = QFileInfo(path).absoluteFilePath();
  m_state = state;
}

bool OpenedFile::IsOutdated() const {
  struct stat now {};
  if (m_path.isEmpty() || stat(QFile::encodeName(m_path).constData(), &now) != 0) return false;
  return !IsSameFile(now, m_state) || (m_failed && !IsSameContent(now, m_state));
}

bool OpenedFile::WasWritten() {
  struct stat now {};
  if (m_path.isEmpty() || stat(QFile::encodeName(m_path).constData(), &now) != 0) return false;
  const bool isOther = !IsSameContent(now, m_seen);
  m_seen = now;
  return isOther;
}

}  // namespace Corvane
