#ifndef TOOLS_TILL_H
#define TOOLS_TILL_H

#include <cstddef>
#include <string>

#include "Store.h"

namespace Corvane::Tool {

/// What one calculation answered.
struct Answer {
  /// The engine's result: 0, -1, and in mode "Gift" also -2 and -3.
  int code = 0;
  /// The engine's status text.
  std::string message;
  /// The result XML; empty unless `code` is 0.
  std::string xml;
};

/// The engine, loaded with a store's rules, working on one sale. The process's current directory is the store's.
class Till {
 public:
  /// Opens the database and loads the rules.
  ///
  /// @param store must outlive the till.
  /// @throws ToolError when the database can't be opened or a rule is refused.
  Till(const Store& store, std::string key);

  /// Forgets the sale.
  ~Till();
  Till(const Till&) = delete;
  Till& operator=(const Till&) = delete;

  /// Runs one mode on the sale.
  ///
  /// @param saleXml what goes to the engine, well-formed or not.
  Answer Calculate(const std::string& mode, const std::string& saleXml);

 private:
  void LoadRules();
  [[nodiscard]] std::size_t ResultRoom() const;

  const Store& m_store;
  std::string m_key;
  std::size_t m_bytesSent = 0;
  std::size_t m_elementsSent = 0;
};

}  // namespace Corvane::Tool

#endif
