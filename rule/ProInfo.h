#ifndef QNCORVANE_RULE_PROINFO_H
#define QNCORVANE_RULE_PROINFO_H

#include "base/Text.h"

namespace Corvane {

/// The stacking classes: in which order rules are calculated and which results of others they respect.
namespace StackingClass {
constexpr Text kDz = "DZ";
constexpr Text kPt = "PT";
constexpr Text kDj = "DJ";
}  // namespace StackingClass

/// The kinds of limit that `MaxYhType` names; with any other text a rule has no limit.
namespace LimitKind {
constexpr Text kMoney = "1";
constexpr Text kQuantity = "2";
}  // namespace LimitKind

/// The words of `Remark` that bind a rule to sales with `IsCalc` "1" and "2".
namespace SaleMark {
constexpr Text kDv = "DVCZK";
constexpr Text kNv = "NVCZK";
}  // namespace SaleMark

/// The header of a rule. All texts are null until the rule's XML has been read.
struct ProInfo {
  Text BillNo = nullptr;     ///< number of the rule: its identity, and its mark on sale lines
  Text OrgCode = nullptr;    ///< organisation that owns the rule; carried
  Text ProType = nullptr;    ///< type word; the driver picks the rule's step by it
  Text ProMode = nullptr;    ///< two-letter family word, compared with the family of results that a line already has
  Text ProStatus = nullptr;  ///< carried
  Text Primary = nullptr;    ///< stacking class
  Text JzDate = nullptr;     ///< date text; rules of one stacking class are calculated from the greatest on
  double MaxYhValue = 0;     ///< the rule's limit: a quantity or a money amount, as MaxYhType tells
  Text MaxYhType = nullptr;  ///< kind of the limit
  Text Remark = nullptr;     ///< "DVCZK" and "NVCZK" decide on which sales the rule runs
};

}  // namespace Corvane

#endif
