#include "sale/LineCodes.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace Corvane {

namespace {

using BearingLine = std::pair<Text, std::size_t>;  ///< a code and a line that bears it

bool IsAsciiLetterOrDigit(unsigned char sign) {
  return (sign >= '0' && sign <= '9') || (sign >= 'A' && sign <= 'Z') || (sign >= 'a' && sign <= 'z');
}

char LowerAscii(char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter; }

/// Whether a text begins with one of the Han signs from U+4E00 to U+9FA5, which take three bytes each.
bool BeginsWithHan(std::string_view text) {
  return text.size() >= 3 && text.substr(0, 3) >= "\xE4\xB8\x80" && text.substr(0, 3) <= "\xE9\xBE\xA5" &&
         (text[1] & 0xC0) == 0x80 && (text[2] & 0xC0) == 0x80;
}

/// What of a code every database looks at, in a form that is the same for codes that one of them takes for the same;
/// nothing when there is a sign in it of which that can't be said.
std::optional<std::string> EssenceOf(std::string_view code) {
  std::string essence;
  while (!code.empty()) {
    const auto sign = static_cast<unsigned char>(code.front());
    const std::size_t size = sign < 0x80 ? 1 : 3;
    if (sign == '?' || (size == 3 && !BeginsWithHan(code))) return std::nullopt;
    if (size == 3) essence.append(code.substr(0, size));
    if (IsAsciiLetterOrDigit(sign)) essence += LowerAscii(code.front());
    code.remove_prefix(size);
  }
  return essence;
}

bool AreDistinct(const std::vector<Text>& codes) {
  if (codes.size() < 2) return true;
  std::vector<std::string> essences;
  essences.reserve(codes.size());
  for (const Text code : codes) {
    std::optional<std::string> essence = EssenceOf(code);
    if (!essence) return false;
    essences.push_back(std::move(*essence));
  }
  std::sort(essences.begin(), essences.end());
  return std::adjacent_find(essences.begin(), essences.end()) == essences.end();
}

std::size_t LengthOfCodes(const SalePlu& line) {
  return std::string_view(OrEmpty(line.PluCode)).size() + std::string_view(OrEmpty(line.CAT)).size() +
         std::string_view(OrEmpty(line.BRD)).size();
}

std::size_t EndOfGroup(const std::vector<SalePlu>& lines, std::size_t first, std::size_t most) {
  constexpr std::size_t kMostLength = 1U << 18U;
  const std::size_t last = first + std::min(most, lines.size() - first);
  std::size_t length = LengthOfCodes(lines[first]);
  std::size_t end = first + 1;
  while (end < last && length < kMostLength) length += LengthOfCodes(lines[end++]);
  return end;
}

}  // namespace

CodeIndex::CodeIndex(const SalePlu* first, const SalePlu* end, Text SalePlu::*code) {
  std::vector<BearingLine> bearing;
  for (const SalePlu* line = first; line != end; ++line) {
    bearing.emplace_back(OrEmpty(line->*code), static_cast<std::size_t>(line - first));
  }
  std::stable_sort(bearing.begin(), bearing.end(), [](const BearingLine& left, const BearingLine& right) {
    return CompareBytes(left.first, right.first) < 0;
  });
  for (const auto& [text, line] : bearing) {
    if (!m_codes.empty() && Same(m_codes.back(), text)) continue;
    m_codes.push_back(text);
    m_firstLines.push_back(line);
  }
  m_areDistinctEverywhere = AreDistinct(m_codes);
}

std::optional<std::size_t> CodeIndex::FirstLine(Text code) const {
  const auto place = std::lower_bound(m_codes.begin(), m_codes.end(), code,
                                      [](Text left, Text right) { return CompareBytes(left, right) < 0; });
  if (place == m_codes.end() || !Same(*place, code)) return std::nullopt;
  return m_firstLines[static_cast<std::size_t>(place - m_codes.begin())];
}

LineCodes::LineCodes(const SalePlu* first, const SalePlu* end)
    : First(first),
      End(end),
      Goods(first, end, &SalePlu::PluCode),
      Categories(first, end, &SalePlu::CAT),
      Brands(first, end, &SalePlu::BRD) {}

std::optional<std::size_t> LineCodes::FirstNamed(const ProDetailKey& row) const {
  if (Same(row.PluType, "PLU")) return Goods.FirstLine(row.PluCode);
  if (Same(row.PluType, "CAT")) return Categories.FirstLine(row.PluCode);
  if (Same(row.PluType, "BRD")) return Brands.FirstLine(row.PluCode);
  return std::nullopt;
}

bool LineCodes::AreDistinctEverywhere() const {
  return Goods.AreDistinctEverywhere() && Categories.AreDistinctEverywhere() && Brands.AreDistinctEverywhere();
}

std::vector<LineCodes> CodesOf(const std::vector<SalePlu>& lines, std::size_t most) {
  std::vector<LineCodes> groups;
  for (std::size_t first = 0; first < lines.size();) {
    const std::size_t end = EndOfGroup(lines, first, most);
    groups.emplace_back(lines.data() + first, lines.data() + end);
    first = end;
  }
  return groups;
}

}  // namespace Corvane
