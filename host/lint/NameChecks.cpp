#include "host/lint/Checks.h"
#include "host/lint/Words.h"
#include "rule/RuleReader.h"
#include "rule/RuleType.h"

namespace Corvane::Host::Lint {

namespace {

/// The groups that a type reads.
WordList GroupsOf(const Rule& rule) {
  WordList groups = {"OrgFilter", "ProTime", "Vip", "PayMode"};
  if (rule.Is(TypeWord::kGiveCoupon) || rule.Is(TypeWord::kUseCoupon)) groups.push_back("ProList");
  if (rule.Is(TypeWord::kPay)) {
    for (const Text group : {"ProCtr", "CardNoFilter", "PluCondition", "PluAction"}) groups.push_back(group);
  }
  return groups;
}

WordList GroupsOfList() { return {"PluCondition", "PluAddAction", "CouponType", "CouponDenomination"}; }

void Note(const Place& place, const std::string& kind, const std::string& name, const std::string& meant,
          Flaws& flaws) {
  flaws.Add(Codes::kMisspeltName, place, "nothing reads the " + kind + " " + Shown(name) + ", and there is no " + meant,
            "did you mean " + meant + "?");
}

void CheckAttributes(const Rule& rule, const XmlNode& node, const WordList& known, Flaws& flaws) {
  for (const XmlAttribute& attribute : node.Attributes) {
    if (IsAmong(attribute.Name, known)) continue;
    const std::string meant = Meant(attribute.Name, known);
    if (meant.empty() || node.Find(meant.c_str()) != nullptr) continue;
    Note(rule.At(node, attribute.Name.c_str()), "attribute", attribute.Name, meant, flaws);
  }
}

/// Names of groups in an element, and of the attributes of their rows.
void CheckGroups(const Rule& rule, const XmlNode& parent, const WordList& known, Flaws& flaws) {
  for (const XmlNode& group : parent.Children) {
    const std::string meant = Meant(group.Name, known);
    if (!IsAmong(group.Name, known)) {
      if (!meant.empty() && parent.Groups(meant.c_str()).empty())
        Note(rule.At(group), "group", group.Name, meant, flaws);
      continue;
    }
    const WordList attributes = AttributesRead(group.Name.c_str());
    // A coupon's attributes stand in the element itself.
    if (group.Name == "CouponType") CheckAttributes(rule, group, attributes, flaws);
    if (group.Name == "ProList") {
      CheckGroups(rule, group, GroupsOfList(), flaws);
      continue;
    }
    for (const XmlNode& row : group.Children) CheckAttributes(rule, row, attributes, flaws);
  }
}

}  // namespace

void CheckNames(const Rule& rule, Flaws& flaws) {
  CheckAttributes(rule, rule.Xml, AttributesRead("Rule"), flaws);
  CheckGroups(rule, rule.Xml, GroupsOf(rule), flaws);
}

}  // namespace Corvane::Host::Lint
