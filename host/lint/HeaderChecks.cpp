#include <QString>
#include <algorithm>
#include <map>

#include "base/Text.h"
#include "host/RuleFields.h"
#include "host/lint/Checks.h"
#include "host/lint/Words.h"
#include "promo/RuleTable.h"
#include "rule/RuleType.h"

namespace Corvane::Host::Lint {

namespace {

WordList Classes() { return {StackingClass::kDz, StackingClass::kPt, StackingClass::kDj}; }
WordList Marks() { return {SaleMark::kDv, SaleMark::kNv}; }
constexpr Text kNoLimit = "0";

WordList Types() {
  WordList words;
  for (const RuleKind& kind : RuleKinds()) words.push_back(kind.Word);
  return words;
}

bool HasFamilyOf(const Rule& rule, Text family) { return FamilyOf(rule.Type.c_str()) == family; }

/// Whether a type looks at its rule's limit.
bool HeedsLimit(const Rule& rule, Text kind) {
  const bool countsPieces = Same(kind, LimitKind::kQuantity);
  if (rule.Is(TypeWord::kReduce) || rule.Is(TypeWord::kGoodsFree)) return true;
  if (rule.Is(TypeWord::kGoods)) return !countsPieces;
  return !HasFamilyOf(rule, Family::kFullAmount);
}

/// The limits that count whole sets; below one there is none.
bool CountsSets(const Rule& rule) { return rule.Is(TypeWord::kFixed) || rule.Is(TypeWord::kChoice); }

void CheckLimit(const Rule& rule, Flaws& flaws) {
  const std::string kind = rule.Xml.Value("MaxYhType");
  const Place place = rule.At(rule.Xml, "MaxYhType");
  const bool isKind = kind == LimitKind::kMoney || kind == LimitKind::kQuantity;
  if (!isKind) {
    const bool hasLimit = rule.Limit() != 0;
    if (!kind.empty() && Trimmed(kind) != kNoLimit &&
        !IsAmong(Trimmed(kind), {LimitKind::kMoney, LimitKind::kQuantity})) {
      flaws.Add(Codes::kUnknownLimit, place, "MaxYhType " + Shown(kind) + " is no kind of limit, and the rule has none",
                MendWord(kind, {kNoLimit, LimitKind::kMoney, LimitKind::kQuantity}));
    } else if (hasLimit) {
      flaws.Add(Codes::kIdleLimit, rule.At(rule.Xml, "MaxYhValue"),
                "MaxYhValue " + Shown(rule.Xml.Value("MaxYhValue")) + " is no limit without a MaxYhType",
                "write MaxYhType 1 for money, 2 for pieces, or MaxYhValue 0");
    }
    return;
  }
  if (!HeedsLimit(rule, kind.c_str())) {
    flaws.Add(Codes::kIdleLimit, place, rule.Type + " doesn't look at a limit of the kind MaxYhType " + kind,
              "write MaxYhType 0; lists, tiers and payments have limits of their own");
    return;
  }
  const bool isBelowOne = kind == LimitKind::kQuantity && CountsSets(rule) && rule.Limit() < 1;
  if (rule.Limit() > 0 && !isBelowOne) return;
  flaws.Add(Codes::kZeroLimit, rule.At(rule.Xml, "MaxYhValue"),
            "MaxYhType " + kind + " with MaxYhValue " + Shown(rule.Xml.Value("MaxYhValue")) +
                " is a limit of nothing: the rule gives nothing",
            "write the limit, or MaxYhType 0 for none");
}

/// The family is compared when a discount is reckoned from the price before the family's other discounts.
void CheckFamily(const Rule& rule, Flaws& flaws) {
  const std::string family(FamilyOf(rule.Type.c_str()));
  const std::string mode = rule.Xml.Value("ProMode");
  if (HasFamilyOf(rule, Family::kFullAmount) || Trimmed(mode) == family) return;
  flaws.Add(Codes::kWrongFamily, rule.At(rule.Xml, "ProMode"),
            "ProMode " + Shown(mode) + " is not the family of " + rule.Type +
                ": behind another rule of the family it reckons from the lowered price",
            "write ProMode " + family);
}

}  // namespace

void CheckHeader(const Rule& rule, Flaws& flaws) {
  const XmlNode& header = rule.Xml;
  if (rule.BillNo.empty()) {
    flaws.Add(Codes::kNoNumber, rule.At(header, "BillNo"), "the rule has no BillNo: no rows are found for it",
              "write a number that no other rule has", QNC_BAD_VALUE);
  }
  const WordList types = Types();
  if (!IsAmong(Trimmed(rule.Type), types)) {
    flaws.Add(Codes::kUnknownType, rule.At(header, "ProType"), "ProType " + Shown(rule.Type) + " is no type",
              MendWord(rule.Type, types), QNC_BAD_VALUE);
    return;
  }
  CheckWord(flaws, Codes::kUnknownClass, rule.At(header, "Primary"), "Primary", rule.Primary, Classes(),
            "no stacking class: the rule vanishes among the others");
  CheckFamily(rule, flaws);
  CheckLimit(rule, flaws);
  if (header.Value("JzDate").empty()) {
    flaws.Add(Codes::kNoOrderDate, rule.At(header, "JzDate"), "the rule has no JzDate: it comes last in its class",
              "write the date that gives it its place, YYYY-MM-DD");
  }
  const std::string mark = header.Value("Remark");
  if (!IsAmong(Trimmed(mark), Marks()) && !Meant(mark, Marks()).empty()) {
    flaws.Add(Codes::kMisspeltMark, rule.At(header, "Remark"),
              "Remark " + Shown(mark) + " binds the rule to no kind of sale", MendWord(mark, Marks()) + ", or nothing");
  }
}

void CheckNumbers(Store& store, Flaws& flaws) {
  std::map<std::string, Rule*> last;
  for (Rule& rule : store.Rules) {
    if (rule.BillNo.empty()) continue;
    const auto [held, isNew] = last.emplace(rule.BillNo, &rule);
    if (isNew) continue;
    flaws.Add(Codes::kDuplicateNumber, rule.At(rule.Xml, "BillNo"),
              "BillNo " + Shown(rule.BillNo) + " is that of " + held->second->File + ", which this rule replaces",
              "give each rule a number of its own, in its rows too");
    held->second->IsReplaced = true;
    held->second = &rule;
  }
}

// --- Forms ----------------------------------------------------------------------------------------------------------

namespace {

/// Attributes whose blanks say something, or nothing to the engine.
bool MayBePadded(const std::string& name) { return name == "Name" || name == "ProActname" || name == "CouponTypeName"; }

void CheckPadding(const Rule& rule, const XmlNode& node, Flaws& flaws) {
  for (const XmlAttribute& attribute : node.Attributes) {
    if (MayBePadded(attribute.Name) || Trimmed(attribute.Value) == attribute.Value) continue;
    flaws.Add(Codes::kPaddedText, rule.At(node, attribute.Name.c_str()),
              attribute.Name + " " + Shown(attribute.Value) + " has blanks at an end, and is another text with them",
              "write " + Shown(Trimmed(attribute.Value)), QNC_BAD_VALUE);
  }
}

void CheckForm(const Rule& rule, const XmlNode& node, const Field& field, Flaws& flaws) {
  const std::string value = node.Value(field.Name);
  if (Fits(QString::fromStdString(Trimmed(value)), field.Form)) return;
  const Place place = rule.At(node, field.Name);
  const std::string what = std::string(field.Name) + " " + Shown(value) + " is not " + WordsOf(field.Form);
  switch (field.Form) {
    case ValueForm::kDate:
    case ValueForm::kMoment:
      flaws.Add(Codes::kBadDate, place, what, "write a day of the calendar in this form", QNC_BAD_VALUE);
      break;
    case ValueForm::kTime:
      flaws.Add(Codes::kBadTime, place, what, "write 00:00:00 to 23:59:59", QNC_BAD_VALUE);
      break;
    case ValueForm::kNumber:
    case ValueForm::kInteger:
      AddNoNumber(flaws, place, field.Name, value, QNC_BAD_VALUE);
      break;
  }
}

/// @param group the group that the element stands in; "Rule" for the rule's own.
void CheckFormsOf(const Rule& rule, const XmlNode& node, const std::string& group, Flaws& flaws) {
  CheckPadding(rule, node, flaws);
  for (const Field& field : kRuleFields) {
    if (group == field.Group) CheckForm(rule, node, field, flaws);
  }
  for (const XmlNode& child : node.Children) CheckFormsOf(rule, child, group == "Rule" ? child.Name : group, flaws);
}

}  // namespace

void CheckForms(const Rule& rule, Flaws& flaws) { CheckFormsOf(rule, rule.Xml, "Rule", flaws); }

// --- Filters --------------------------------------------------------------------------------------------------------

namespace {

constexpr Text kAny = "*";

/// @return the row that lets all in, where others would choose; null otherwise.
const XmlNode* OpenRow(const std::vector<const XmlNode*>& rows, const char* attribute) {
  if (rows.size() < 2) return nullptr;
  const auto isOpen = [&](const XmlNode* row) { return row->Value(attribute) == kAny; };
  if (std::all_of(rows.begin(), rows.end(), isOpen)) return nullptr;
  const auto found = std::find_if(rows.begin(), rows.end(), isOpen);
  return found == rows.end() ? nullptr : *found;
}

}  // namespace

void CheckFilters(const Rule& rule, Flaws& flaws) {
  const std::vector<const XmlNode*> shops = rule.Xml.RowsOf("OrgFilter");
  if (shops.empty()) {
    flaws.Add(Codes::kNoShop, rule.Where(), "the rule has no row in OrgFilter: it applies in no shop",
              "name the shops, or OrgCode * for all");
  }
  if (const XmlNode* const row = OpenRow(shops, "OrgCode")) {
    flaws.Add(Codes::kAllShops, rule.At(*row, "OrgCode"), "OrgCode * takes in every shop, also those that no row names",
              "leave out this row, or the others");
  }
  const std::vector<const XmlNode*> members = rule.Xml.RowsOf("Vip");
  if (const XmlNode* const row = OpenRow(members, "VipType")) {
    // The last row is looked at first, and one that names a type ends the look for a sale without members.
    const bool isFirst = members.back()->Value("VipType") == kAny;
    flaws.Add(Codes::kAllMembers, rule.At(*row, "VipType"),
              isFirst ? "VipType * lets everybody in, members or not, whatever the other rows name"
                      : "VipType * lets every member in, whatever the other rows name",
              "leave out this row, or the others");
  }
  if (const XmlNode* const row = OpenRow(rule.Xml.RowsOf("PayMode"), "PayMode")) {
    flaws.Add(Codes::kAllPayments, rule.At(*row, "PayMode"),
              "PayMode * takes every payment, and none, whatever the other rows name",
              "leave out this row, or the others");
  }
}

}  // namespace Corvane::Host::Lint
