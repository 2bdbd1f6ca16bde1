#include "TextTable.h"

#include <algorithm>
#include <array>
#include <cstdio>

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

std::string Money(double number) {
  const std::string printed = Printed(number, 2);
  return printed == "-0.00" ? "0.00" : printed;
}

std::string Quantity(double number) {
  const std::string printed = Printed(number, 3);
  return printed.back() == '0' ? Money(number) : printed;
}

}  // namespace Corvane::Tool
