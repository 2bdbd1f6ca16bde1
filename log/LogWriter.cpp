#include "log/LogWriter.h"

#include <QByteArray>

#include "log/LogFlush.h"

namespace Corvane {

void LogWriter::Add(std::initializer_list<std::string_view> pieces) noexcept {
  AddEntry([&] { AppendPieces(pieces); });
}

void LogWriter::Add(const QString& text) noexcept {
  AddEntry([&] {
    const QByteArray encoded = m_encoding.Encoded(text);
    m_entries.append(encoded.constData(), static_cast<std::size_t>(encoded.size()));
  });
}

void LogWriter::Finish() noexcept {
  HandOver();
  m_file.Close();
  GiveLargeRoomBack();
}

template <class AppendText>
void LogWriter::AddEntry(AppendText appendText) noexcept {
  if (!TryEntry(appendText) && !m_ends.empty()) {
    HandOver();  // the room of the entries before it may be enough
    TryEntry(appendText);
  }
  if (CurrentLogFlush() == LogFlush::Entry || m_entries.size() > MostGathered) HandOver();
}

/// @return whether there was memory for it; without, nothing of it is left behind.
template <class AppendText>
bool LogWriter::TryEntry(AppendText appendText) noexcept {
  const std::size_t begin = m_entries.size();
  try {
    m_entries.append(m_time.Now()).append("  ");
    appendText();
    m_entries.append("\n\r");
    m_ends.push_back(m_entries.size());
    return true;
  } catch (...) {  // from Qt's codec, which may be the host's own, anything
    m_entries.resize(begin);
    return false;
  }
}

void LogWriter::AppendPieces(std::initializer_list<std::string_view> pieces) {
  constexpr std::size_t kEndOfEntry = 2;
  const std::size_t begin = m_entries.size();
  std::size_t length = 0;
  for (const std::string_view piece : pieces) length += piece.size();
  m_entries.reserve(begin + length + kEndOfEntry);
  for (const std::string_view piece : pieces) m_entries.append(piece);
  m_encoding.Encode(m_entries, begin);
}

void LogWriter::HandOver() noexcept {
  if (m_ends.empty()) return;
  m_file.Append(m_entries, m_ends);
  m_entries.clear();
  m_ends.clear();
}

/// A text of many megabytes leaves no such room behind.
void LogWriter::GiveLargeRoomBack() noexcept {
  if (m_entries.capacity() > 2 * MostGathered) std::string().swap(m_entries);
}

}  // namespace Corvane
