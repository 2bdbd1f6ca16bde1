#include "host/GoodsList.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include "base/Numbers.h"
#include "base/Text.h"
#include "base/Xml.h"

namespace Corvane::Host {

namespace {

/// Above this, a file is no list of goods.
constexpr std::uintmax_t kMostBytes = std::uintmax_t{64} << 20U;

std::string ContentOf(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error) || std::filesystem::file_size(path, error) > kMostBytes) return {};
  std::ostringstream content;
  content << std::ifstream(path, std::ios::binary).rdbuf();
  return content.str();
}

}  // namespace

GoodsList::Articles GoodsList::Read(const std::string& folder) {
  const std::string content = ContentOf(folder + "/goods.xml");
  const XmlDocument document(content.c_str());
  Articles articles;
  for (const TiXmlElement& row : ChildElements(document.Root())) {
    const Text code = row.Attribute("PluCode");
    const Text price = row.Attribute("Price");
    if (IsEmpty(code) || IsEmpty(price)) continue;
    articles[code] = {ToDouble(price), OrEmpty(row.Attribute("CAT")), OrEmpty(row.Attribute("BRD"))};
  }
  return articles;
}

std::optional<Article> GoodsList::Find(const std::string& code) {
  if (!m_articles) m_articles = Read(m_folder);
  const auto known = m_articles->find(code);
  if (known == m_articles->end()) return std::nullopt;
  return known->second;
}

}  // namespace Corvane::Host
