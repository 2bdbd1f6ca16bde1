#include "TextTable.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

namespace Corvane::Tool {
namespace {

/// The bytes of the character that begins with `lead`; 1 for a byte that begins none.
std::size_t CharacterLength(unsigned char lead) {
  if (lead >= 0xF0U) return 4;
  if (lead >= 0xE0U) return 3;
  if (lead >= 0xC0U) return 2;
  return 1;
}

/// Two for what begins with the bytes of the ideographs, kana, hangul and full-width forms; one for everything else.
std::size_t CharacterWidth(unsigned char lead) { return lead >= 0xE3U && lead <= 0xEFU ? 2 : 1; }

/// The place behind as many whole characters as `width` columns hold.
std::size_t CutAt(const std::string& text, std::size_t width) {
  std::size_t place = 0;
  std::size_t used = 0;
  while (place < text.size()) {
    const auto lead = static_cast<unsigned char>(text[place]);
    used += CharacterWidth(lead);
    if (used > width) break;
    place += CharacterLength(lead);
  }
  return std::min(place, text.size());
}

/// Whether a line may begin with what stands at `place`: closing punctuation stays with what it closes.
bool MayBegin(const std::string& text, std::size_t place) {
  constexpr std::array<std::string_view, 7> kClosing = {"、", "。", "，", "；", "：", "）", "”"};
  return std::none_of(kClosing.begin(), kClosing.end(),
                      [&](std::string_view mark) { return text.compare(place, mark.size(), mark) == 0; });
}

/// The place behind the last part of a line that may stand by itself, at most `width` columns; never 0.
std::size_t BreakAt(const std::string& text, std::size_t width) {
  const std::size_t end = CutAt(text, width);
  if (end < text.size() && text[end] == ' ') return end;
  std::size_t last = 0;
  bool wasWide = false;
  for (std::size_t place = 0; place < std::min(end + 1, text.size());) {
    const auto lead = static_cast<unsigned char>(text[place]);
    const bool isWide = CharacterWidth(lead) == 2;
    if ((isWide || wasWide) && MayBegin(text, place)) last = place;
    place += CharacterLength(lead);
    if (lead == ' ' && place <= end) last = place;
    wasWide = isWide;
  }
  if (last != 0) return last;
  return end != 0 ? end : std::min(text.size(), CharacterLength(static_cast<unsigned char>(text.front())));
}

std::string Printed(double number, int decimals) {
  std::array<char, 400> text{};
  std::snprintf(text.data(), text.size(), "%.*f", decimals, number);
  return text.data();
}

}  // namespace

std::size_t DisplayWidth(const std::string& text) {
  std::size_t width = 0;
  for (std::size_t place = 0; place < text.size();) {
    const auto lead = static_cast<unsigned char>(text[place]);
    width += CharacterWidth(lead);
    place += CharacterLength(lead);
  }
  return width;
}

std::string AtLeft(const std::string& text, std::size_t width) {
  const std::string cut = text.substr(0, CutAt(text, width));
  return cut + std::string(width - DisplayWidth(cut), ' ');
}

std::string AtRight(const std::string& text, std::size_t width) {
  const std::size_t taken = DisplayWidth(text);
  return std::string(taken < width ? width - taken : 0, ' ') + text;
}

std::vector<std::string> Wrapped(const std::string& text, std::size_t width) {
  std::vector<std::string> lines;
  std::string rest = text;
  while (DisplayWidth(rest) > width) {
    const std::size_t end = BreakAt(rest, width);
    const std::string line = rest.substr(0, end);
    lines.push_back(line.substr(0, line.find_last_not_of(' ') + 1));
    rest.erase(0, end);
    rest.erase(0, std::min(rest.find_first_not_of(' '), rest.size()));
  }
  if (!rest.empty() || lines.empty()) lines.push_back(rest);
  return lines;
}

std::string Money(double number) {
  const std::string printed = Printed(number, 2);
  return printed == "-0.00" ? "0.00" : printed;
}

std::string Quantity(double number) {
  const std::string printed = Printed(number, 3);
  return printed.back() == '0' ? Money(number) : printed;
}

}  // namespace Corvane::Tool
