#include "Till.h"

#include "LibraryText.h"
#include "Reports.h"
#include "ToolError.h"

namespace Corvane::Tool {
namespace {

/// The person at the keyboard ends what takes too long.
constexpr unsigned kNoLimit = 0;

}  // namespace

Till::Till(const std::filesystem::path& store, bool isLenient) : m_flags(isLenient ? unsigned{QNC_LENIENT} : 0U) {
  LibraryText error;
  if (qnc_open(store.c_str(), &m_engine, error.Place()) != QNC_OK) throw ToolError(error.Text());
  try {
    LoadRules();
  } catch (...) {
    qnc_close(m_engine, nullptr);
    throw;
  }
}

Till::~Till() { qnc_close(m_engine, nullptr); }

void Till::LoadRules() const {
  LibraryText report;
  LibraryText error;
  if (qnc_load_rules(m_engine, nullptr, m_flags, kNoLimit, report.Place(), error.Place()) == QNC_OK) return;
  const std::string refusals = RefusedRules(report.Text());
  throw ToolError(refusals.empty() ? error.Text() : refusals);
}

Answer Till::Calculate(const std::string& key, const std::string& mode, const std::string& saleXml,
                       unsigned flags) const {
  LibraryText result;
  LibraryText error;
  Answer answer;
  answer.code = qnc_calculate(m_engine, key.c_str(), mode.c_str(), saleXml.c_str(), m_flags | flags, kNoLimit,
                              result.Place(), error.Place());
  answer.error = error.Text();
  answer.result = result.Text();
  return answer;
}

void Till::Forget(const std::string& key) const { qnc_forget_sale(m_engine, key.c_str(), kNoLimit, nullptr); }

}  // namespace Corvane::Tool
