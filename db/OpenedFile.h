#ifndef QNCORVANE_DB_OPENEDFILE_H
#define QNCORVANE_DB_OPENEDFILE_H

#include <sys/stat.h>
#include <QString>

namespace Corvane {

/// The file behind an open connection. A connection reads the file that it opened, wherever its name leads since, and
/// keeps pages of it that were broken when read; this class says when the connection is out of date.
class OpenedFile {
 public:
  /// The file was opened. @param path as given to the driver; a relative one is kept as what it names now.
  void Opened(const QString& path);

  /// The connection is no longer to a file.
  void Forget() { *this = OpenedFile(); }

  /// A statement failed: perhaps on something broken in the file.
  void NoteFailure() { m_failed = true; }

  /// Whether another file stands in the place of the one that was opened; or, after a failure, the same file with other
  /// contents. Asks the system once. A file that is away is not replaced.
  bool IsOutdated() const;

  /// Whether the file has other contents than when this was last asked. Asks the system once. What a write-ahead log
  /// holds is not seen.
  bool WasWritten();

  /// The path, absolute. Empty without a file.
  const QString& Path() const { return m_path; }

 private:
  QString m_path;
  struct stat m_state {};
  struct stat m_seen {};
  bool m_failed = false;
};

}  // namespace Corvane

#endif
