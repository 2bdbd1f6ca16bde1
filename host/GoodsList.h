#ifndef QNCORVANE_HOST_GOODSLIST_H
#define QNCORVANE_HOST_GOODSLIST_H

#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

namespace Corvane::Host {

/// An article of a store's goods list.
struct Article {
  double Price = 0;
  std::string Category;  ///< `CAT`; empty for none
  std::string Brand;     ///< `BRD`; empty for none
};

/// The goods of a store, read when they are first asked for, from "goods.xml" in its folder: elements with `PluCode` and, where they are known, `Price`, `CAT` and
/// `BRD`. The engine knows goods by their codes alone; what an article costs that isn't in a sale stands only here.
class GoodsList {
 public:
  /// A store without such a file, or with one that can't be read, has no list.
  explicit GoodsList(std::string folder) : m_folder(std::move(folder)) {}

  /// @return an article that has a price, or nothing.
  std::optional<Article> Find(const std::string& code);

 private:
  using Articles = std::unordered_map<std::string, Article>;

  static Articles Read(const std::string& folder);

  std::string m_folder;
  std::optional<Articles> m_articles;  ///< nothing before they were asked for
};

}  // namespace Corvane::Host

#endif
