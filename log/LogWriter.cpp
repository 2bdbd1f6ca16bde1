#include "log/LogWriter.h"

#include "log/LogFlush.h"

namespace Corvane {

namespace {

/// @return whether no exception came out, of which a codec of the host's may throw any.
template <class Step>
bool Succeeds(const Step& step) noexcept {
  try {
    step();
    return true;
  } catch (...) {
    return false;
  }
}

}  // namespace

void LogWriter::Add(std::initializer_list<std::string_view> pieces) noexcept {
  AddEntry([&] { AppendInEncoding(pieces); });
}

void LogWriter::Add(const QString& text) noexcept {
  AddEntry([&] { AppendEncoded(m_encoding.Encoded(text)); });
}

void LogWriter::Finish() noexcept {
  HandOver();
  m_file.EndCall();
  GiveLargeRoomBack();
}

template <class Step>
void LogWriter::AddEntry(Step append) noexcept {
  if (m_isSilent) return;
  if (!Succeeds(append) && !m_ends.empty()) {
    HandOver();  // the room of the entries before it may be enough
    Succeeds(append);
  }
  if (CurrentLogFlush() == LogFlush::Entry || m_entries.size() > MostGathered) HandOver();
}

/// The text is made before its entry begins: a codec that logs by itself puts its entries in front.
void LogWriter::AppendInEncoding(std::initializer_list<std::string_view> pieces) {
  if (m_encoding.IsEncoded(pieces)) {
    Append(pieces);
  } else {
    AppendEncoded(m_encoding.Encoded(pieces));
  }
}

void LogWriter::AppendEncoded(const QByteArray& text) {
  Append({std::string_view(text.constData(), static_cast<std::size_t>(text.size()))});
}

/// One entry. An exception leaves nothing of it behind.
void LogWriter::Append(std::initializer_list<std::string_view> pieces) {
  constexpr std::string_view kBlanks = "  ";
  constexpr std::string_view kEnd = "\n\r";
  const std::string_view time = m_time.Now();
  std::size_t length = time.size() + kBlanks.size() + kEnd.size();
  for (const std::string_view piece : pieces) length += piece.size();
  const std::size_t end = m_entries.size() + length;
  m_entries.reserve(end);
  m_ends.push_back(end);
  m_entries.append(time).append(kBlanks);
  for (const std::string_view piece : pieces) m_entries.append(piece);
  m_entries.append(kEnd);
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
