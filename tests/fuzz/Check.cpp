#include "tests/fuzz/Check.h"

#include <tinyxml.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace Corvane::Fuzz {

namespace {

constexpr std::string_view kNumbers[] = {
    "SerialNo",  "Price",     "FinalPrice", "PluCount",   "DisNum",     "Total",     "PackCnt",
    "PluDtId",   "PageNo",    "LnNo",       "YhBefore",   "VipPrice",   "DisMoney",  "AppNum",
    "AppMoney",  "LeftTotal", "UsedTotal",  "BaseConNum", "BaseDscNum", "AddConNum", "AddDscNum",
    "SaleMaxIn", "DscPrice",  "HgPluCount", "CanPart",    "RowID"};

std::size_t Digits(std::string_view text) {
  const auto* const end = std::find_if_not(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
  return static_cast<std::size_t>(end - text.begin());
}

/// A sign, digits, and a point with digits behind it.
bool IsPlainNumber(std::string_view text) {
  if (!text.empty() && text.front() == '-') text.remove_prefix(1);
  const std::size_t whole = Digits(text);
  if (whole == 0 || whole == text.size()) return whole != 0;
  text.remove_prefix(whole);
  return text.front() == '.' && text.size() > 1 && Digits(text.substr(1)) == text.size() - 1;
}

void RequireNumbers(const TiXmlElement& element) {
  for (const TiXmlAttribute* next = element.FirstAttribute(); next != nullptr; next = next->Next()) {
    const bool isNumber = std::find(std::begin(kNumbers), std::end(kNumbers), next->Name()) != std::end(kNumbers);
    if (isNumber) Require(IsPlainNumber(next->Value()), "a number is finite and in plain digits", next->Value());
  }
  for (const TiXmlElement* next = element.FirstChildElement(); next != nullptr; next = next->NextSiblingElement()) {
    RequireNumbers(*next);
  }
}

unsigned ByteAt(std::string_view text, std::size_t place) {
  return place < text.size() ? static_cast<unsigned char>(text[place]) : 0;
}

/// @return the length of the code point at the front of a text that is not empty; 0 when there is none.
std::size_t CodePoint(std::string_view text) {
  const unsigned lead = ByteAt(text, 0);
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC0 || lead >= 0xF8) return 0;
  unsigned code = lead & (0x7FU >> length);
  for (std::size_t place = 1; place < length; ++place) {
    if ((ByteAt(text, place) & 0xC0U) != 0x80) return 0;
    code = code << 6U | (ByteAt(text, place) & 0x3FU);
  }
  constexpr unsigned kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
  return code < kLeast[length] || code > 0x10FFFF || isSurrogate ? 0 : length;
}

}  // namespace

void Require(bool holds, const char* what, std::string_view detail) {
  if (holds) return;
  std::fprintf(stderr, "\nDoes not hold: %s\n  %.*s\n", what, static_cast<int>(detail.size()), detail.data());
  std::fflush(stderr);
  std::abort();
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = CodePoint(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

void RequireResult(const std::string& result, bool isUtf8) {
  // A text that is no UTF-8 passes as it came, and a reader that takes it for UTF-8 loses its way in it.
  TiXmlDocument document;
  document.Parse(result.c_str(), nullptr, isUtf8 ? TIXML_ENCODING_UTF8 : TIXML_ENCODING_LEGACY);
  Require(!document.Error() && document.RootElement() != nullptr, "a result parses", result);
  RequireNumbers(*document.RootElement());
  if (isUtf8) Require(IsUtf8(result), "a result of UTF-8 is UTF-8", result);
}

}  // namespace Corvane::Fuzz
