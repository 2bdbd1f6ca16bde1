#ifndef QNCORVANE_HOST_LINT_GOODS_H
#define QNCORVANE_HOST_LINT_GOODS_H

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/lint/Flaws.h"

namespace Corvane::Host::Lint {

/// An article of the goods list.
struct Article {
  std::optional<double> Price;
  std::string Category;
  std::string Brand;
};

/// The goods list of a store, "goods.xml": empty for a store without one.
class Goods {
 public:
  /// Notes what keeps the list from being read.
  static Goods Read(const std::string& folder, Flaws& flaws);

  /// @return the article, or null.
  const Article* Find(const std::string& code) const;

  /// Whether an article bears this code of this kind, as far as the list tells such codes; true for what it doesn't tell.
  bool MayHave(const std::string& kind, const std::string& code) const;

  /// The prices of the articles that a row names, of those whose price is told.
  std::vector<double> PricesOf(const std::string& kind, const std::string& code) const;

 private:
  std::map<std::string, Article> m_articles;
  std::map<std::string, std::vector<const Article*>> m_categories;
  std::map<std::string, std::vector<const Article*>> m_brands;
};

}  // namespace Corvane::Host::Lint

#endif
