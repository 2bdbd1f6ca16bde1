#ifndef TOOLS_STORE_H
#define TOOLS_STORE_H

#include <filesystem>
#include <map>
#include <string>

namespace Corvane::Tool {

/// What a receipt wants from a store's folder beside the engine's word: names of promotions and of goods.
class Store {
 public:
  /// Reads the names from rules/*.xml and, if it is there, goods.xml.
  ///
  /// @throws ToolError when a file can't be read, or goods.xml is no XML.
  explicit Store(const std::filesystem::path& folder);

  /// @return the promotion's name, or its number when it has none.
  [[nodiscard]] std::string RuleName(const std::string& billNo) const;
  /// @return the name in goods.xml, or the code when there is none.
  [[nodiscard]] std::string GoodsName(const std::string& code) const;

 private:
  void ReadRules();
  void ReadGoods();

  std::filesystem::path m_folder;
  std::map<std::string, std::string> m_ruleNames;
  std::map<std::string, std::string> m_goodsNames;
};

/// @return where a store's log lies, from the root.
std::filesystem::path LogFile(const std::filesystem::path& store);

}  // namespace Corvane::Tool

#endif
