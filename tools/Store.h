#ifndef TOOLS_STORE_H
#define TOOLS_STORE_H

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace Corvane::Tool {

/// A rule as it lies in the store's folder.
struct RuleFile {
  std::filesystem::path path;
  std::string xml;
  /// The type word to load it under: its ProType, but "MZYQ" for a rule that gives coupons ("MZZQ").
  std::string loadType;
  std::string proType;
  std::string billNo;
  /// The shop's own name of the promotion; may be empty.
  std::string name;
};

/// A store's folder: config.ini, rules/, whatever database config.ini names, and goods.xml if the goods have names.
class Store {
 public:
  /// Reads the folder.
  ///
  /// @throws ToolError when the folder, its config.ini or its rules/ is missing, when the SQLite file that config.ini
  ///         names is missing (the driver would make an empty one), or when a rule file or goods.xml can't be read.
  explicit Store(const std::filesystem::path& folder);

  [[nodiscard]] const std::filesystem::path& Folder() const { return m_folder; }
  [[nodiscard]] std::filesystem::path LogFile() const { return m_folder / "QnCorvane.txt"; }
  /// In the order of their file names.
  [[nodiscard]] const std::vector<RuleFile>& Rules() const { return m_rules; }
  /// @return the promotion's name, or its number when it has none.
  [[nodiscard]] std::string RuleName(const std::string& billNo) const;
  /// @return the name in goods.xml, or the code when there is none.
  [[nodiscard]] std::string GoodsName(const std::string& code) const;

 private:
  void RequireDatabaseFile() const;
  void ReadRules();
  void ReadGoods();

  std::filesystem::path m_folder;
  std::vector<RuleFile> m_rules;
  std::map<std::string, std::string> m_ruleNames;
  std::map<std::string, std::string> m_goodsNames;
};

}  // namespace Corvane::Tool

#endif
