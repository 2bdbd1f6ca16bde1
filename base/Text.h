#ifndef QNCORVANE_BASE_TEXT_H
#define QNCORVANE_BASE_TEXT_H

#include <string>
#include <string_view>

namespace Corvane {

/// A borrowed, zero-terminated UTF-8 text. It points to constant text or into a text pool (base/TextPool.h): that of
/// the process, or that of the sale which the record belongs to. Null means "absent"; a null text compares as the empty
/// text and prints as the empty text.
using Text = const char*;

/// The text itself, or the empty text for null. Use it wherever a text leaves these helpers.
inline Text OrEmpty(Text text) { return text != nullptr ? text : ""; }

inline bool IsEmpty(Text text) { return text == nullptr || *text == '\0'; }

/// Byte order of two texts: below, at or above 0, as strcmp. The order of dates, times and card numbers.
int CompareBytes(Text left, Text right);

/// Exact, byte-wise, case-sensitive equality.
inline bool Same(Text left, Text right) { return left == right || CompareBytes(left, right) == 0; }

/// The order without regard to the case of ASCII letters: below, at or above 0. All other bytes count.
int CompareIgnoringCase(Text left, Text right);

/// Equality without regard to the case of ASCII letters; all other bytes must be the same.
inline bool SameIgnoringCase(Text left, Text right) { return CompareIgnoringCase(left, right) == 0; }

/// The first two letters of a type word: its family, "PT", "ZH" or "MZ". A shorter text is its own family.
std::string_view FamilyOf(Text type);

/// Whether the type word belongs to a family.
inline bool InFamily(Text type, std::string_view family) { return FamilyOf(type) == family; }

/// Joins the pieces; a null piece counts as empty.
template <class... Piece>
std::string Join(const Piece&... pieces);

namespace Detail {
inline std::string_view ViewOf(Text text) { return OrEmpty(text); }
inline std::string_view ViewOf(const std::string& text) { return text; }
}  // namespace Detail

template <class... Piece>
std::string Join(const Piece&... pieces) {
  std::string joined;
  joined.reserve((Detail::ViewOf(pieces).size() + ... + 0U));
  (joined.append(Detail::ViewOf(pieces)), ...);
  return joined;
}

}  // namespace Corvane

#endif
