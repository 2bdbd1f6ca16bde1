#ifndef QNCORVANE_LOG_LOGWRITER_H
#define QNCORVANE_LOG_LOGWRITER_H

#include <QByteArray>
#include <QString>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "log/LogEncoding.h"
#include "log/LogFile.h"
#include "log/TimeStamp.h"

namespace Corvane {

/// Makes entries and brings them into the file, one by one or gathered (log/LogFlush.h). The room in which they are made
/// is kept from one to the next, so that an entry takes no memory of its own.
class LogWriter {
 public:
  /// The most bytes that are gathered: the entry that goes beyond them takes all into the file.
  static constexpr std::size_t MostGathered = std::size_t{4} << 20U;

  /// One entry of several pieces of UTF-8. An entry for which there is no memory is lost.
  void Add(std::initializer_list<std::string_view> pieces) noexcept;

  /// The same of a text of Qt's.
  void Add(const QString& text) noexcept;

  /// @param isSilent whether entries are dropped from now on. @return whether they were until now.
  bool Silence(bool isSilent) noexcept { return std::exchange(m_isSilent, isSilent); }

  /// Brings what is gathered into the file and closes it. @note the writer can be used again.
  void Finish() noexcept;

 private:
  template <class Step>
  void AddEntry(Step append) noexcept;
  void AppendInEncoding(std::initializer_list<std::string_view> pieces);
  void AppendEncoded(const QByteArray& text);
  void Append(std::initializer_list<std::string_view> pieces);
  void HandOver() noexcept;
  void GiveLargeRoomBack() noexcept;

  bool m_isSilent = false;
  TimeStamp m_time;
  LogEncoding m_encoding;
  LogFile m_file;
  std::string m_entries;            ///< what is not in the file yet
  std::vector<std::size_t> m_ends;  ///< where each of the entries ends
};

}  // namespace Corvane

#endif
