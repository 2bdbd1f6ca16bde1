#ifndef QNCORVANE_ENGINE_PROMOTION_H
#define QNCORVANE_ENGINE_PROMOTION_H

#include <QString>
#include <utility>

#include "base/ProError.h"
#include "base/Text.h"
#include "db/QnPosDBPro.h"
#include "engine/RuleRegistry.h"

namespace Corvane {

/// The registry of rules and the process-wide database, one per process and never destroyed. Only the creation is
/// locked.
class Promotion : public ProError {
 public:
  static Promotion& Instance();

  QnPosDBPro& Database() { return m_db; }

  /// Starts anew on a store's folder: without rules, with the database of its settings (see QnPosDBPro). Not entered, the
  /// store is that of the current directory.
  static void Enter(const QString& folder);

  /// Drops all rules and closes the database.
  void Leave();

  /// The rules in the order of calculation; see RuleRegistry.
  const RuleList& Rules() noexcept { return m_rules.Rules(); }
  void LoadRule(RulePtr rule) { m_rules.Load(std::move(rule)); }
  void RemoveRules(Text billNo) { m_rules.Remove(billNo); }

 private:
  /// Reads the settings of the database.
  explicit Promotion(const QString& folder) : m_db(folder) {}

  RuleRegistry m_rules;
  QnPosDBPro m_db;
};

}  // namespace Corvane

#endif
