#ifndef TOOLS_SENTENCES_H
#define TOOLS_SENTENCES_H

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "Explanation.h"

namespace Corvane::Tool {

/// What a decision is about, in a person's words.
struct Subject {
  /// The rule's `BillNo`.
  std::string rule;
  /// The names of the goods, each once.
  std::vector<std::string> goods;
};

/// The library's table of texts in one language. docs/explanations.md tells how sentences are made from it.
class Sentences {
 public:
  using Fields = std::map<std::string, std::string>;

  /// @return the languages that there are.
  static const std::vector<std::string>& Languages();

  /// @param language one of Languages(). @throws std::exception when the library's table has another form.
  explicit Sentences(const std::string& language);

  /// @return the text under `key` of `section`, with its fields filled in; the key where there is no text.
  [[nodiscard]] std::string Of(const char* section, const std::string& key, const Fields& fields = {}) const;

  /// @return why, as a sentence.
  [[nodiscard]] std::string Why(const Decision& decision, const Subject& subject) const;

  /// @return what the shop could do; empty where nothing can be said.
  [[nodiscard]] std::string Advice(const Decision& decision, const Subject& subject) const;

  /// @return the place of a reason in the order in which a rule comes to them; the later, the nearer to a discount.
  [[nodiscard]] std::size_t PlaceOf(const std::string& reason) const;

  /// @return the texts with the phrase `between` between them.
  [[nodiscard]] std::string Joined(const std::vector<std::string>& texts, const char* between) const;

 private:
  using Section = std::map<std::string, std::string>;

  [[nodiscard]] const std::string* Find(const char* section, const std::string& key) const;
  [[nodiscard]] const std::string* FirstOf(const char* section, const std::vector<std::string>& keys,
                                           bool isOneArticle) const;
  [[nodiscard]] Fields FieldsOf(const Decision& decision, const Subject& subject) const;
  [[nodiscard]] std::string Value(const Measure& measure, const std::string& unit) const;
  [[nodiscard]] std::string TextValue(const std::string& text, const std::string& unit) const;
  [[nodiscard]] std::string Part(const std::string& text, const std::string& unit) const;
  [[nodiscard]] std::string Missing(const Decision& decision) const;
  [[nodiscard]] std::string Goods(const Subject& subject) const;
  [[nodiscard]] std::string Takers(const std::vector<Taker>& takers) const;

  std::map<std::string, Section> m_sections;
  std::map<std::string, std::size_t> m_places;
};

/// @return the number with as many decimals as it needs, three at most.
std::string Figure(double number);

}  // namespace Corvane::Tool

#endif
