#include "Sentences.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "TextTable.h"
#include "qncorvane/host.h"

namespace Corvane::Tool {
namespace {

/// Names keep their order: that of the reasons says which is nearer to a discount.
using Json = nlohmann::ordered_json;

constexpr std::size_t kMostGoods = 3;

/// The template with its fields filled in.
std::string Filled(const std::string& text, const Sentences::Fields& fields) {
  std::string filled;
  std::size_t place = 0;
  while (place < text.size()) {
    const std::size_t open = text.find('{', place);
    const std::size_t close = text.find('}', open);
    if (close == std::string::npos) break;
    const auto field = fields.find(text.substr(open + 1, close - open - 1));
    filled += text.substr(place, open - place);
    filled += field == fields.end() ? text.substr(open, close + 1 - open) : field->second;
    place = close + 1;
  }
  return filled + text.substr(place);
}

/// The parts between commas, without blanks around them.
std::vector<std::string> SplitAtCommas(const std::string& text) {
  std::vector<std::string> parts;
  std::size_t begin = 0;
  while (begin <= text.size()) {
    const std::size_t comma = std::min(text.find(',', begin), text.size());
    const std::string part = text.substr(begin, comma - begin);
    const std::size_t first = std::min(part.find_first_not_of(' '), part.size());
    parts.push_back(part.substr(first, part.find_last_not_of(' ') + 1 - first));
    begin = comma + 1;
  }
  return parts;
}

bool IsMoney(const std::string& unit) {
  return unit == "money" || unit == "price" || unit == "payment" || unit == "coupon";
}

/// The section that has names for the values of a unit; null where they stand for themselves.
const char* SectionOf(const std::string& unit) {
  if (unit == "weekday") return "weekdays";
  if (unit == "pass") return "passes";
  return nullptr;
}

}  // namespace

std::string Figure(double number) {
  std::array<char, 400> printed{};
  std::snprintf(printed.data(), printed.size(), "%.3f", number);
  std::string text = printed.data();
  text.erase(text.find_last_not_of('0') + 1);
  if (!text.empty() && text.back() == '.') text.pop_back();
  return text == "-0" ? "0" : text;
}

const std::vector<std::string>& Sentences::Languages() {
  static const std::vector<std::string> kLanguages = {"en", "zh"};
  return kLanguages;
}

Sentences::Sentences(const std::string& language) {
  const Json table = Json::parse(qnc_texts());
  for (const auto& [section, texts] : table.items()) {
    if (!texts.is_object()) continue;
    for (const auto& [key, entry] : texts.items()) {
      m_sections[section][key] = entry.at(language).get<std::string>();
      if (section == "reasons") m_places.emplace(key, m_places.size());
    }
  }
}

const std::string* Sentences::Find(const char* section, const std::string& key) const {
  const auto texts = m_sections.find(section);
  if (texts == m_sections.end()) return nullptr;
  const auto found = texts->second.find(key);
  return found == texts->second.end() ? nullptr : &found->second;
}

const std::string* Sentences::FirstOf(const char* section, const std::vector<std::string>& keys,
                                      bool isOneArticle) const {
  for (const std::string& key : keys) {
    const std::string* const several = isOneArticle ? nullptr : Find(section, key + ".many");
    if (several != nullptr) return several;
    if (const std::string* const found = Find(section, key)) return found;
  }
  return nullptr;
}

std::string Sentences::Of(const char* section, const std::string& key, const Fields& fields) const {
  const std::string* const text = Find(section, key);
  return text == nullptr ? key : Filled(*text, fields);
}

std::string Sentences::Why(const Decision& decision, const Subject& subject) const {
  const bool isOneArticle = subject.goods.size() == 1;
  const bool isTaken = !decision.takenBy.empty();
  const Fields fields = FieldsOf(decision, subject);
  const std::string withUnit = decision.reason + "." + decision.unit;
  if (isTaken) {
    const std::string* const taken =
        FirstOf("reasons", {withUnit + ".taken", decision.reason + ".taken"}, isOneArticle);
    if (taken != nullptr) return Filled(*taken, fields);
  }
  const std::string* const text = FirstOf("reasons", {withUnit, decision.reason}, isOneArticle);
  std::string sentence = text == nullptr ? decision.reason : Filled(*text, fields);
  const std::string* const takenBy = isTaken ? FirstOf("phrases", {"takenBy"}, isOneArticle) : nullptr;
  if (takenBy == nullptr) return sentence;
  return Of("phrases", "join", {{"first", sentence}, {"second", Filled(*takenBy, fields)}});
}

std::string Sentences::Advice(const Decision& decision, const Subject& subject) const {
  const std::string* const text =
      FirstOf("advice", {decision.reason + "." + decision.unit, decision.reason}, subject.goods.size() == 1);
  return text == nullptr ? std::string() : Filled(*text, FieldsOf(decision, subject));
}

std::size_t Sentences::PlaceOf(const std::string& reason) const {
  const auto found = m_places.find(reason);
  return found == m_places.end() ? m_places.size() : found->second;
}

std::string Sentences::Joined(const std::vector<std::string>& texts, const char* between) const {
  std::string joined;
  for (const std::string& text : texts) joined += (joined.empty() ? "" : Of("phrases", between)) + text;
  return joined;
}

Sentences::Fields Sentences::FieldsOf(const Decision& decision, const Subject& subject) const {
  std::vector<std::string> lines;
  for (const std::int64_t line : decision.lines) lines.push_back(std::to_string(line));
  return {{"rule", subject.rule},
          {"goods", Goods(subject)},
          {"lines", Joined(lines, "comma")},
          {"have", Value(decision.have, decision.unit)},
          {"need", Value(decision.need, decision.unit)},
          {"missing", Missing(decision)},
          {"slot", decision.slot},
          {"row", std::to_string(decision.row)},
          {"tier", std::to_string(decision.tier)},
          {"unit", Of("units", decision.unit)},
          {"rules", Takers(decision.takenBy)}};
}

std::string Sentences::Value(const Measure& measure, const std::string& unit) const {
  if (const double* const number = std::get_if<double>(&measure)) {
    return IsMoney(unit) ? Money(*number) : Part(Figure(*number), unit);
  }
  const std::string* const text = std::get_if<std::string>(&measure);
  return text == nullptr || text->empty() ? Of("phrases", "none") : TextValue(*text, unit);
}

std::string Sentences::TextValue(const std::string& text, const std::string& unit) const {
  if (unit == "text" || unit == "type") return text;
  std::vector<std::string> parts = SplitAtCommas(text);
  for (std::string& part : parts) part = Part(part, unit);
  return Joined(parts, "comma");
}

std::string Sentences::Part(const std::string& text, const std::string& unit) const {
  const char* const section = SectionOf(unit);
  const std::string* const name = section == nullptr ? nullptr : Find(section, text);
  if (name != nullptr) return *name;
  const std::size_t dots = text.find("..");
  if (dots == std::string::npos) return text;
  const std::string from = text.substr(0, dots);
  const std::string to = text.substr(dots + 2);
  const std::string open = Of("phrases", "open");
  return Of("phrases", "span", {{"from", from.empty() ? open : from}, {"to", to.empty() ? open : to}});
}

std::string Sentences::Missing(const Decision& decision) const {
  const double* const have = std::get_if<double>(&decision.have);
  const double* const need = std::get_if<double>(&decision.need);
  if (have == nullptr || need == nullptr) return Of("phrases", "none");
  return Value(*need - *have, decision.unit);
}

std::string Sentences::Goods(const Subject& subject) const {
  if (subject.goods.empty() || subject.goods.size() > kMostGoods) return Of("phrases", "goods");
  return Joined(subject.goods, "and");
}

std::string Sentences::Takers(const std::vector<Taker>& takers) const {
  std::vector<std::string> rules;
  for (const Taker& taker : takers) {
    const bool hasClass = !taker.primary.empty();
    rules.push_back(hasClass ? Of("phrases", "taker", {{"rule", taker.billNo}, {"class", taker.primary}})
                             : taker.billNo);
  }
  return Joined(rules, "comma");
}

}  // namespace Corvane::Tool
