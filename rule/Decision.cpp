#include "rule/Decision.h"

#include <cstddef>
#include <iterator>

namespace Corvane {

namespace {

constexpr Text kReasons[] = {
    "OtherPass",
    "OtherClass",
    "UnknownType",
    "WrongClass",
    "OtherKindOfSale",
    "NotPrepared",
    "NoOffers",
    "ChoiceTooDear",
    "ChoiceTooMany",
    "NoLines",
    "NoTimes",
    "TimeIncomplete",
    "DateOutside",
    "WeekdayOutside",
    "HourOutside",
    "NoOrganisations",
    "OrganisationOutside",
    "MemberMissing",
    "MemberOther",
    "PaymentMissing",
    "PaymentTooSmall",
    "AlreadyOnSale",
    "SaleTaken",
    "NoRows",
    "NoTiers",
    "Unreadable",
    "NotNamed",
    "Excluded",
    "Package",
    "EmptyLine",
    "SenselessQuantity",
    "AlreadyOnLine",
    "NothingOpen",
    "LimitUsedUp",
    "RowLimitUsedUp",
    "UnusableRow",
    "GoodsMissing",
    "BelowMinimum",
    "BelowSetSize",
    "ArticleShort",
    "SlotShort",
    "ConditionShort",
    "TotalShort",
    "SeveralPayments",
    "CardOutside",
    "NoCoupons",
    "BelowThreshold",
    "NothingAboveThreshold",
    "NoDenomination",
    "UnusableDenomination",
    "TooManyRepeats",
    "StepWithoutGain",
    "NeverGives",
    "UnknownArea",
    "UnknownUnit",
    "UnknownPriceKind",
    "NoGain",
    "ReductionAbovePrice",
    "GivesNothing",
    "LimitedByMoney",
    "Unexplained",
};
static_assert(std::size(kReasons) == static_cast<std::size_t>(Reason::Unexplained) + 1);

constexpr Text kUnits[] = {
    "",        "quantity", "money",  "price", "percent", "count", "date", "weekday", "time", "organisation", "member",
    "payment", "card",     "coupon", "pass",  "class",   "type",  "sale", "area",    "kind", "unit",         "text",
};
static_assert(std::size(kUnits) == static_cast<std::size_t>(Unit::Words) + 1);

}  // namespace

Text NameOf(Reason reason) { return kReasons[static_cast<std::size_t>(reason)]; }

Text NameOf(Unit unit) { return kUnits[static_cast<std::size_t>(unit)]; }

}  // namespace Corvane
