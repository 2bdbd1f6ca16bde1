#ifndef TOOLS_TILL_H
#define TOOLS_TILL_H

#include <filesystem>
#include <string>

#include "qncorvane/host.h"

namespace Corvane::Tool {

/// What one calculation answered.
struct Answer {
  /// A `qnc_code`.
  int code = QNC_OK;
  /// The library's text of what is wrong; empty with QNC_OK.
  std::string error;
  /// The result, XML or JSON; empty unless `code` is QNC_OK, or a choice of gifts that was refused is explained.
  std::string result;
};

/// The engine on a store's folder, loaded with the store's rules.
class Till {
 public:
  /// Opens the engine and loads the rules.
  ///
  /// @param isLenient XML, of the rules and of the sales, is read as far as it goes.
  /// @throws ToolError with the library's texts when the store or a rule is refused.
  Till(const std::filesystem::path& store, bool isLenient);

  /// Closes the engine.
  ~Till();
  Till(const Till&) = delete;
  Till& operator=(const Till&) = delete;

  /// Runs one mode on the sale of `key`.
  ///
  /// @param flags QNC_JSON, QNC_EXPLAIN.
  [[nodiscard]] Answer Calculate(const std::string& key, const std::string& mode, const std::string& saleXml,
                                 unsigned flags) const;

  /// Forgets the sale of `key`.
  void Forget(const std::string& key) const;

 private:
  void LoadRules() const;

  unsigned m_flags;
  qnc_engine* m_engine = nullptr;
};

}  // namespace Corvane::Tool

#endif
