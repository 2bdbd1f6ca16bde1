#include "Store.h"

#include <system_error>

#include "ToolError.h"
#include "XmlFile.h"

namespace Corvane::Tool {
namespace {

/// The key itself where there is no name.
std::string NameIn(const std::map<std::string, std::string>& names, const std::string& key) {
  const auto found = names.find(key);
  return found == names.end() || found->second.empty() ? key : found->second;
}

}  // namespace

Store::Store(const std::filesystem::path& folder) : m_folder(folder) {
  ReadRules();
  ReadGoods();
}

void Store::ReadRules() {
  std::error_code unreadable;
  for (const auto& entry : std::filesystem::directory_iterator(m_folder / "rules", unreadable)) {
    if (entry.path().extension() != ".xml") continue;
    TiXmlDocument document;
    ParseAsFarAsItGoes(ReadFile(entry.path()), document);
    for (const TiXmlElement* rule : Children(document.RootElement())) {
      m_ruleNames[Text(*rule, "BillNo")] = Text(*rule, "Name");
    }
  }
}

void Store::ReadGoods() {
  const std::filesystem::path path = m_folder / "goods.xml";
  std::error_code unreadable;
  if (!std::filesystem::exists(path, unreadable)) return;
  TiXmlDocument document;
  ParseXml(ReadFile(path), path.string(), document);
  for (const TiXmlElement* row : Children(document.RootElement())) {
    m_goodsNames[Text(*row, "PluCode")] = Text(*row, "Name");
  }
}

std::filesystem::path LogFile(const std::filesystem::path& store) {
  return (std::filesystem::absolute(store) / "QnCorvane.txt").lexically_normal();
}

std::string Store::RuleName(const std::string& billNo) const { return NameIn(m_ruleNames, billNo); }

std::string Store::GoodsName(const std::string& code) const { return NameIn(m_goodsNames, code); }

}  // namespace Corvane::Tool
