#ifndef QNCORVANE_HOST_RULEFIELDS_H
#define QNCORVANE_HOST_RULEFIELDS_H

#include "host/ValueForm.h"

namespace Corvane::Host {

/// An attribute whose value has a form, or that has to be there.
struct Field {
  const char* Group;  ///< the group that holds the rows; "" for the document's element, "Rule" for the rule's own
  const char* Name;
  ValueForm Form;
};

/// Those of rules.
constexpr Field kRuleFields[] = {
    {"Rule", "JzDate", ValueForm::kMoment},          {"Rule", "MaxYhValue", ValueForm::kNumber},
    {"ProTime", "StartDate", ValueForm::kDate},      {"ProTime", "EndDate", ValueForm::kDate},
    {"ProTime", "StartTime", ValueForm::kTime},      {"ProTime", "EndTime", ValueForm::kTime},
    {"PayMode", "PayMoney", ValueForm::kNumber},     {"ProList", "MaxDiscount", ValueForm::kNumber},
    {"ProList", "BaseConNum", ValueForm::kNumber},   {"ProList", "BaseDscNum", ValueForm::kNumber},
    {"ProList", "AddConNum", ValueForm::kNumber},    {"ProList", "AddDscNum", ValueForm::kNumber},
    {"ProList", "SaleMaxIn", ValueForm::kNumber},    {"ProList", "LimitDay", ValueForm::kInteger},
    {"ProList", "Denomination", ValueForm::kNumber}, {"ProCtr", "PriceTotal", ValueForm::kNumber},
    {"PluCondition", "MinNum", ValueForm::kNumber},  {"PluCondition", "MinMoney", ValueForm::kNumber},
    {"PluAction", "DisPrice", ValueForm::kNumber},   {"PluAction", "DisRate", ValueForm::kNumber},
};

}  // namespace Corvane::Host

#endif
