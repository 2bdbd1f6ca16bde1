#ifndef QNCORVANE_HOST_RULEFOLDER_H
#define QNCORVANE_HOST_RULEFOLDER_H

#include <optional>
#include <string>
#include <vector>

#include "host/Failure.h"
#include "host/XmlCheck.h"

namespace Corvane::Host {

/// A file of rules, as it was read.
struct RuleFile {
  std::string Name;  ///< within its folder
  std::string Xml;
  RuleHeader Header;
  std::optional<Failure> Refusal;  ///< why it can't be loaded
};

/// Reads the files "*.xml" of a folder, in the order of their names by bytes.
///
/// @param folder  absolute.
/// @param shown   what failures call the folder.
/// @param lenient whether rules are taken as far as they can be read.
/// @throw Failure with QNC_UNREADABLE for a folder that can't be read.
std::vector<RuleFile> ReadRuleFolder(const std::string& folder, const std::string& shown, bool lenient);

}  // namespace Corvane::Host

#endif
