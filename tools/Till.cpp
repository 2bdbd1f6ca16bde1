#include "Till.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "ResultBuffer.h"
#include "ToolError.h"
#include "qncorvane/qncorvane.h"

namespace Corvane::Tool {
namespace {

/// Above the longest status text by far.
constexpr std::size_t kMessageRoom = 1024;

}  // namespace

Till::Till(const Store& store, std::string key) : m_store(store), m_key(std::move(key)) {
  if (BeginInitPro() != 0) {
    FinishInitPro();
    throw ToolError("the database that " + (m_store.Folder() / "config.ini").string() +
                    " names can't be opened; the log may say more: " + m_store.LogFile().string());
  }
  LoadRules();
  FinishInitPro();
}

Till::~Till() { DeleteSaleSetByKey(m_key.c_str()); }

void Till::LoadRules() {
  for (const RuleFile& rule : m_store.Rules()) {
    // A refusal brings the whole rule back behind its text.
    std::vector<char> message(kMessageRoom + rule.xml.size(), '\0');
    if (InitPromotion(rule.loadType.c_str(), rule.xml.c_str(), message.data()) == 0) continue;
    FinishInitPro();
    throw ToolError(rule.path.string() + ": the engine refuses the rule, type " + rule.loadType);
  }
}

/*
 * Three things make a result long. The texts of the sale come back at most once each, and a character takes at most six
 * bytes when it is escaped. Each line, payment or offer comes back with some twenty numbers, the longest of which has
 * 310 digits. And each rule leaves discount rows on each line: a row takes some 150 bytes and the texts of its goods
 * and rule, and only a rule with many detail rows for one article leaves more than one or two on a line.
 */
std::size_t Till::ResultRoom() const {
  constexpr std::size_t kForTheFrame = std::size_t{1} << 20U;
  constexpr std::size_t kForTheNumbersOfARow = 8192;
  constexpr std::size_t kForARuleOnALine = 16384;
  return kForTheFrame + 6 * m_bytesSent +
         m_elementsSent * (kForTheNumbersOfARow + m_store.Rules().size() * kForARuleOnALine);
}

Answer Till::Calculate(const std::string& mode, const std::string& saleXml) {
  m_bytesSent += saleXml.size();
  // No element without its bracket: the count holds for a text that is not well-formed too.
  m_elementsSent += static_cast<std::size_t>(std::count(saleXml.begin(), saleXml.end(), '<'));
  const ResultBuffer result(ResultRoom());
  std::vector<char> message(kMessageRoom, '\0');
  Answer answer;
  answer.code = CalcPromotion(m_key.c_str(), mode.c_str(), saleXml.c_str(), result.Data(), message.data());
  answer.message = message.data();
  answer.xml = result.Text();
  return answer;
}

}  // namespace Corvane::Tool
