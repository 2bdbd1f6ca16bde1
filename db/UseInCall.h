#ifndef QNCORVANE_DB_USEINCALL_H
#define QNCORVANE_DB_USEINCALL_H

#include <QString>
#include <chrono>

namespace Corvane {

/// The use of the database within one of the engine's calls. A call makes many statements, and a server that doesn't
/// answer would be waited for at each. So the first open that fails ends the use until the next call, and so do
/// statements that failed by keeping silent; a statement that failed at once doesn't.
///
/// Outside a call the use never ends.
class UseInCall {
 public:
  using Duration = std::chrono::steady_clock::duration;

  /// Begins a call. @return whether none was running.
  bool Begin();
  void End() { *this = UseInCall(); }

  bool IsInCall() const { return m_isInCall; }

  /// Whether the use has ended: what needs the database fails at once then.
  bool IsOver() const { return m_isOver; }

  /// Why it has ended.
  const QString& Reason() const { return m_reason; }

  /// The connection could not be opened.
  void NoteFailedOpen(const QString& reason);

  /// A statement failed. When the statements that failed in this call have taken half of what a silent one is waited
  /// for, the use is over.
  ///
  /// @param timeout what a silent statement is waited for; 0 for no end.
  /// @return whether the use has ended by this.
  bool NoteFailedStatement(Duration took, std::chrono::seconds timeout, const QString& reason);

  /// @return true once in a call, at the first asking; false outside a call.
  bool IsFirstUse();

 private:
  void GiveUp(const QString& reason);

  bool m_isInCall = false;
  bool m_isOver = false;
  bool m_isUsed = false;
  Duration m_lost{0};
  QString m_reason;
};

}  // namespace Corvane

#endif
