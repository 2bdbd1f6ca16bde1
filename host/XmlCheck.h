#ifndef QNCORVANE_HOST_XMLCHECK_H
#define QNCORVANE_HOST_XMLCHECK_H

#include <string>

namespace Corvane::Host {

/// What the header of a rule tells.
struct RuleHeader {
  std::string BillNo;
  std::string ProType;
};

/// Reads a sale XML as strictly as the engine reads it kindly.
///
/// @param name what the failure's text calls the XML.
/// @throw Failure with QNC_BAD_XML and "name:line:column: ..." for what is no XML or more than the engine reads;
///        QNC_BAD_VALUE and "name:line: ..." for a line without `SerialNo`, `PluCode`, `PluCount` or `Total`, and for a
///        value that can't be what it stands for.
///
/// @return how many lines it brings.
int CheckSale(const std::string& xml, const std::string& name);

/// The same for a rule; it is to be one, with a `BillNo` and a known `ProType`.
RuleHeader CheckRule(const std::string& xml, const std::string& name);

/// The header of the first rule in a text, whatever else is wrong with it.
///
/// @throw Failure with QNC_BAD_VALUE for an unknown `ProType`, under which nothing can be loaded.
RuleHeader HeaderOf(const std::string& xml, const std::string& name);

}  // namespace Corvane::Host

#endif
