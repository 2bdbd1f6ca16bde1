#ifndef QNCORVANE_DB_HOSTDIRECTORY_H
#define QNCORVANE_DB_HOSTDIRECTORY_H

#include <QString>

namespace Corvane {

/// @return the directory of the host's executable, without a slash at its end. Qt's own answer needs a
/// QCoreApplication,
///         which most hosts lack and which is not ours to create: it would change the locale of the whole process.
QString HostDirectory();

/// @return the path of `name` in the host's directory, whatever `name` holds.
QString InHostDirectory(const QString& name);

/// @return the path of a file that settings name: a relative one counts from `folder`, which is not empty.
QString InFolder(const QString& folder, const QString& name);

}  // namespace Corvane

#endif
