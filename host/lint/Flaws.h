#ifndef QNCORVANE_HOST_LINT_FLAWS_H
#define QNCORVANE_HOST_LINT_FLAWS_H

#include <string>
#include <vector>

#include "host/lint/Codes.h"
#include "qncorvane/host.h"

namespace Corvane::Host::Lint {

/// Where something stands: in a file of the store, or in a row of a table.
struct Place {
  std::string File;  ///< from the store's folder on; empty for a row of a table
  int Line = 0;      ///< from 1 on; 0 for none
  std::string Table;
  std::string Key;     ///< of the row: "BillNo=R01 SerialNo=2"
  std::string BillNo;  ///< of the rule that it belongs to
};

/// Something that is wrong with a store's rules, or doubtful.
struct Flaw {
  Code Kind;
  Place Where;
  std::string What;
  std::string Mend;
  qnc_code Answer = QNC_BAD_STORE;  ///< what a call says that fails for it

  bool IsError() const { return Kind.Weight == Severity::kError; }
  /// In one line, as an error's text.
  std::string Text() const;
};

/// What a look through a store has found.
class Flaws {
 public:
  void Add(const Code& kind, Place place, std::string what, std::string mend, qnc_code answer = QNC_BAD_STORE);

  /// Takes what another look has found, behind what is there.
  void Append(Flaws&& others);

  /// The first error, or null.
  const Flaw* FirstError() const;

  /// @return an error at this line of a file, or null.
  Flaw* ErrorAt(const std::string& file, int line);
  bool Has(const Code& kind, const std::string& file) const;

  /// @return the report of qnc_lint.
  std::string Report(const std::string& folder) const;

 private:
  std::vector<Flaw> m_flaws;
};

}  // namespace Corvane::Host::Lint

#endif
