#include "log/Utf8.h"

#include <cstddef>

namespace Corvane {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

unsigned char ByteAt(std::string_view text, std::size_t place) { return static_cast<unsigned char>(text[place]); }

/// @return how many bytes the sequence has that this one leads; 0 when none may begin so.
std::size_t LengthBehind(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead < 0xC2) return 0;  // a byte of the middle, or the lead of what fits into one byte
  if (lead < 0xE0) return 2;
  if (lead < 0xF0) return 3;
  return lead < 0xF5 ? 4 : 0;
}

bool Continues(unsigned char byte) { return byte >= 0x80 && byte < 0xC0; }

/// Four leads leave the second byte a part of its range only.
bool IsSecond(unsigned char lead, unsigned char byte) {
  if (!Continues(byte)) return false;
  switch (lead) {
    case 0xE0:
      return byte >= 0xA0;  // less fits into two bytes
    case 0xED:
      return byte < 0xA0;  // more is a surrogate
    case 0xF0:
      return byte >= 0x90;  // less fits into three bytes
    case 0xF4:
      return byte < 0x90;  // more is beyond the last code point
    default:
      return true;
  }
}

/// @return how many bytes the well-formed sequence at the front of a text has that is not empty; 0 for none.
std::size_t SequenceLength(std::string_view text) {
  const std::size_t length = LengthBehind(ByteAt(text, 0));
  if (length < 2) return length;
  if (length > text.size() || !IsSecond(ByteAt(text, 0), ByteAt(text, 1))) return 0;
  for (std::size_t place = 2; place < length; ++place) {
    if (!Continues(ByteAt(text, place))) return 0;
  }
  return length;
}

}  // namespace

bool ComesThroughUnchanged(std::string_view utf8) {
  if (utf8.substr(0, kByteOrderMark.size()) == kByteOrderMark) return false;
  while (!utf8.empty()) {
    const std::size_t length = SequenceLength(utf8);
    if (length == 0) return false;
    utf8.remove_prefix(length);
  }
  return true;
}

}  // namespace Corvane
