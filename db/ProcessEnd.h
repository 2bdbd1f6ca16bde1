#ifndef QNCORVANE_DB_PROCESSEND_H
#define QNCORVANE_DB_PROCESSEND_H

#include <QSqlDatabase>
#include <memory>

namespace Corvane {

/// The end of the process, or of the library's stay in it: a host may close the library and go on, and it may call from
/// exit handlers and destructors of its own, when what Qt keeps for the whole process is gone. All connections are
/// closed and taken out of Qt's list before that, and from then on nothing here touches Qt's databases or settings.
///
/// What is made last is destroyed first. Each of the steps below therefore makes a guard behind what Qt made for it;
/// the first guard to go brings the end.
class ProcessEnd {
 public:
  /// Whether the end has come. Every use of Qt's databases and settings asks this first.
  static bool HasCome();

  /// Has `hold` called when the end comes, before a connection is touched, so that other threads can be waited for. What
  /// Qt has made by now is still there then. @param hold must let no exception out.
  static void HoldFirst(void (*hold)());

  /// Settings were read.
  static void AfterSettings();

  /// A connection was put into Qt's list; the end of this process will take it out, and that of a process forked from it
  /// will leave it alone: the server would hear of it. @param connection not null.
  static void AfterConnection(const std::shared_ptr<QSqlDatabase>& connection);

  /// The connection was taken out of Qt's list.
  static void Forget(const std::shared_ptr<QSqlDatabase>& connection);

  /// A connection was opened.
  static void AfterOpening();
};

}  // namespace Corvane

#endif
