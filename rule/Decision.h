#ifndef QNCORVANE_RULE_DECISION_H
#define QNCORVANE_RULE_DECISION_H

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "base/Text.h"

namespace Corvane {

/// Why a rule did not act, acted less than it could, or not on all that it looked at. The set is closed and stands in the
/// order in which a rule comes to its reasons: the later one is nearer to a discount. docs/explanations.md says what each
/// of them means, and what its two measures are.
enum class Reason {
  // The pass
  OtherPass,
  OtherClass,
  UnknownType,
  WrongClass,
  OtherKindOfSale,
  NotPrepared,
  NoOffers,
  ChoiceTooDear,
  ChoiceTooMany,
  // The filters
  NoLines,
  NoTimes,
  TimeIncomplete,
  DateOutside,
  WeekdayOutside,
  HourOutside,
  NoOrganisations,
  OrganisationOutside,
  MemberMissing,
  MemberOther,
  PaymentMissing,
  PaymentTooSmall,
  AlreadyOnSale,
  SaleTaken,
  // The rule's rows
  NoRows,
  NoTiers,
  Unreadable,
  // The lines
  NotNamed,
  Excluded,
  Package,
  EmptyLine,
  SenselessQuantity,
  AlreadyOnLine,
  NothingOpen,
  LimitUsedUp,
  RowLimitUsedUp,
  // What has to be reached
  UnusableRow,
  GoodsMissing,
  BelowMinimum,
  BelowSetSize,
  ArticleShort,
  SlotShort,
  ConditionShort,
  TotalShort,
  SeveralPayments,
  CardOutside,
  NoCoupons,
  BelowThreshold,
  NothingAboveThreshold,
  // What is given
  NoDenomination,
  UnusableDenomination,
  TooManyRepeats,
  StepWithoutGain,
  NeverGives,
  UnknownArea,
  UnknownUnit,
  UnknownPriceKind,
  NoGain,
  ReductionAbovePrice,
  GivesNothing,
  LimitedByMoney,
  // None of them: that would be a gap in this set
  Unexplained,
};

/// @return the reason's name as it is spelled above; a constant.
Text NameOf(Reason reason);

/// What the two measures of a decision are.
enum class Unit {
  None,
  Quantity,
  Money,
  Price,
  Percent,
  Count,
  Date,
  Weekday,
  Time,
  Organisation,
  Member,
  Payment,
  Card,
  Coupon,
  Pass,
  Class,
  Type,
  Sale,
  Area,
  Kind,
  UnitOfTier,
  Words,
};

/// @return the unit's name in lower case; a constant, empty for None.
Text NameOf(Unit unit);

/// Nothing, a number, or a text of its own.
using Measure = std::variant<std::monostate, double, std::string>;

/// A rule that took what another one misses.
struct Taker {
  Text BillNo = nullptr;
  Text Primary = nullptr;
};

/// One decision on a rule's way: what was decided, about what, and by which measures.
struct Decision {
  Reason Why = Reason::Unexplained;
  bool IsFinal = false;             ///< whether it ended the rule's step
  std::vector<std::int32_t> Lines;  ///< places of the lines that it is about, in the sale
  std::string Goods;                ///< an article, or empty
  std::string Slot;                 ///< a slot of a menu, or empty
  std::int32_t Row = 0;             ///< `SerialNo` of a row of the rule, or 0
  std::int32_t Tier = 0;            ///< place of a tier from the highest threshold, from 1; or 0
  Unit In = Unit::None;
  Measure Have;
  Measure Need;
  std::vector<Taker> TakenBy;
};

}  // namespace Corvane

#endif
