#ifndef QNCORVANE_HOST_LINT_RULETEXT_H
#define QNCORVANE_HOST_LINT_RULETEXT_H

#include <optional>
#include <string>
#include <vector>

namespace Corvane::Host::Lint {

/// An attribute, and the line on which it begins.
struct XmlAttribute {
  std::string Name;
  std::string Value;
  int Line = 0;
};

/// An element with all that is in it.
struct XmlNode {
  std::string Name;
  int Line = 0;
  std::vector<XmlAttribute> Attributes;
  std::vector<XmlNode> Children;

  /// @return the attribute, or null.
  const XmlAttribute* Find(const char* name) const;
  /// @return its value; empty for none.
  std::string Value(const char* name) const;
  /// @return its value as the engine reads a number; 0 for none.
  double Number(const char* name) const;
  /// @return its line; that of the element for none.
  int LineOf(const char* name) const;

  /// @return the elements within the children of this name, in their order.
  std::vector<const XmlNode*> RowsOf(const char* group) const;
  /// @return the children of this name.
  std::vector<const XmlNode*> Groups(const char* group) const;
};

/// Reads an XML text that a strict reader has taken.
///
/// @return its root; nothing for a text without one.
std::optional<XmlNode> ReadXmlText(const std::string& xml);

}  // namespace Corvane::Host::Lint

#endif
