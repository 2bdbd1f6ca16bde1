#ifndef QNCORVANE_HOST_STORECHECK_H
#define QNCORVANE_HOST_STORECHECK_H

#include <string>
#include <vector>

#include "qncorvane/host.h"

namespace Corvane::Host {

/// Something that is wrong with a store.
struct Finding {
  enum class Severity { kWarning, kError };

  Severity Weight;
  qnc_code Code;      ///< what a call says that fails for it
  std::string Where;  ///< a file of the folder, or a table
  std::string What;
  std::string Mend;
  std::string Column{};  ///< of a table's column

  /// In one line, as an error's text.
  std::string Text() const { return Where + ": " + What + "; " + Mend; }
};

using Findings = std::vector<Finding>;

/// Looks at the folder, its settings, the driver, the database, its tables and columns. One thing that is missing hides
/// what stands on it.
///
/// @param folder absolute.
Findings CheckDatabase(const std::string& folder);

/// All that, the rules in "rules/", and whether the log can be written.
Findings CheckStore(const std::string& folder);

/// @return the first error, or null.
const Finding* FirstError(const Findings& findings);

/// @return the report of qnc_check.
std::string ReportOf(const std::string& folder, const Findings& findings);

}  // namespace Corvane::Host

#endif
