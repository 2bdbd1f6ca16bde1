#include "Store.h"

#include <algorithm>
#include <sstream>

#include "ToolError.h"
#include "XmlFile.h"

namespace Corvane::Tool {
namespace {

std::string Trimmed(const std::string& text) {
  const char* const blanks = " \t\r\"";
  const std::size_t begin = text.find_first_not_of(blanks);
  if (begin == std::string::npos) return {};
  return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

std::string Lowered(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return text;
}

/// The keys of the section "DataBase", in small letters.
std::map<std::string, std::string> ReadDatabaseSettings(const std::string& text) {
  std::map<std::string, std::string> settings;
  std::istringstream lines(text);
  std::string section;
  for (std::string line; std::getline(lines, line);) {
    line = Trimmed(line);
    if (!line.empty() && line.front() == '[') section = Lowered(line);
    const std::size_t equals = line.find('=');
    if (section != "[database]" || equals == std::string::npos) continue;
    settings[Lowered(Trimmed(line.substr(0, equals)))] = Trimmed(line.substr(equals + 1));
  }
  return settings;
}

RuleFile ReadRule(const std::filesystem::path& path) {
  RuleFile rule;
  rule.path = path;
  rule.xml = ReadFile(path);
  TiXmlDocument document;
  ParseXml(rule.xml, path.string(), document);
  const std::vector<const TiXmlElement*> elements = Children(document.RootElement());
  if (elements.empty()) throw ToolError(path.string() + ": no rule in it");
  const TiXmlElement& header = *elements.front();
  rule.billNo = Text(header, "BillNo");
  rule.proType = Text(header, "ProType");
  rule.name = Text(header, "Name");
  if (rule.billNo.empty()) throw ToolError(path.string() + ": the rule has no BillNo");
  if (rule.proType.empty()) throw ToolError(path.string() + ": the rule has no ProType");
  rule.loadType = rule.proType == "MZZQ" ? "MZYQ" : rule.proType;
  return rule;
}

/// The key itself where there is no name.
std::string NameIn(const std::map<std::string, std::string>& names, const std::string& key) {
  const auto found = names.find(key);
  return found == names.end() || found->second.empty() ? key : found->second;
}

}  // namespace

Store::Store(const std::filesystem::path& folder) : m_folder(folder) {
  if (!std::filesystem::is_directory(m_folder)) throw ToolError(m_folder.string() + ": no such store directory");
  if (!std::filesystem::is_regular_file(m_folder / "config.ini")) {
    throw ToolError(m_folder.string() + ": no config.ini in it");
  }
  if (!std::filesystem::is_directory(m_folder / "rules")) throw ToolError(m_folder.string() + ": no rules/ in it");
  RequireDatabaseFile();
  ReadRules();
  ReadGoods();
}

void Store::RequireDatabaseFile() const {
  const std::filesystem::path configFile = m_folder / "config.ini";
  std::map<std::string, std::string> settings = ReadDatabaseSettings(ReadFile(configFile));
  if (Lowered(settings["dbtype"]) != "sqlite") return;
  // A bare name belongs to the executable's directory, a name with a path in it counts from the store.
  const std::string& name = settings["dbname"];
  if (name.find('/') == std::string::npos) return;
  const std::filesystem::path file = m_folder / name;
  if (std::filesystem::is_regular_file(file)) return;
  throw ToolError(configFile.string() + ": the database file " + file.lexically_normal().string() + " is missing");
}

void Store::ReadRules() {
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(m_folder / "rules")) {
    if (entry.path().extension() == ".xml") paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  for (const std::filesystem::path& path : paths) {
    m_rules.push_back(ReadRule(path));
    m_ruleNames[m_rules.back().billNo] = m_rules.back().name;
  }
}

void Store::ReadGoods() {
  const std::filesystem::path path = m_folder / "goods.xml";
  if (!std::filesystem::exists(path)) return;
  TiXmlDocument document;
  ParseXml(ReadFile(path), path.string(), document);
  for (const TiXmlElement* row : Children(document.RootElement()))
    m_goodsNames[Text(*row, "PluCode")] = Text(*row, "Name");
}

std::string Store::RuleName(const std::string& billNo) const { return NameIn(m_ruleNames, billNo); }

std::string Store::GoodsName(const std::string& code) const { return NameIn(m_goodsNames, code); }

}  // namespace Corvane::Tool
