"""Why a calculation gave what it gave, and why not more: the explanation that the engine makes of a step.

What the fields mean in full, and what each reason says: docs/explanations.md of the project. Names are the same, written in
Python's way (`billNo` is `bill_no`).
"""

from __future__ import annotations

import dataclasses
import enum
import json
from collections.abc import Mapping, Sequence
from decimal import Decimal
from typing import Any

from ._result import Result
from ._sale import Mode

_VERSION = 1


class Reason(str, enum.Enum):
    """Why a rule gave nothing, or not more. The set is closed: a library with another one tells another version."""

    OTHER_PASS = "OtherPass"
    OTHER_CLASS = "OtherClass"
    UNKNOWN_TYPE = "UnknownType"
    WRONG_CLASS = "WrongClass"
    OTHER_KIND_OF_SALE = "OtherKindOfSale"
    NOT_PREPARED = "NotPrepared"
    NO_OFFERS = "NoOffers"
    CHOICE_TOO_DEAR = "ChoiceTooDear"
    CHOICE_TOO_MANY = "ChoiceTooMany"
    NO_LINES = "NoLines"
    NO_TIMES = "NoTimes"
    TIME_INCOMPLETE = "TimeIncomplete"
    DATE_OUTSIDE = "DateOutside"
    WEEKDAY_OUTSIDE = "WeekdayOutside"
    HOUR_OUTSIDE = "HourOutside"
    NO_ORGANISATIONS = "NoOrganisations"
    ORGANISATION_OUTSIDE = "OrganisationOutside"
    MEMBER_MISSING = "MemberMissing"
    MEMBER_OTHER = "MemberOther"
    PAYMENT_MISSING = "PaymentMissing"
    PAYMENT_TOO_SMALL = "PaymentTooSmall"
    ALREADY_ON_SALE = "AlreadyOnSale"
    SALE_TAKEN = "SaleTaken"
    NO_ROWS = "NoRows"
    NO_TIERS = "NoTiers"
    UNREADABLE = "Unreadable"
    NOT_NAMED = "NotNamed"
    EXCLUDED = "Excluded"
    PACKAGE = "Package"
    EMPTY_LINE = "EmptyLine"
    SENSELESS_QUANTITY = "SenselessQuantity"
    ALREADY_ON_LINE = "AlreadyOnLine"
    NOTHING_OPEN = "NothingOpen"
    LIMIT_USED_UP = "LimitUsedUp"
    ROW_LIMIT_USED_UP = "RowLimitUsedUp"
    UNUSABLE_ROW = "UnusableRow"
    GOODS_MISSING = "GoodsMissing"
    BELOW_MINIMUM = "BelowMinimum"
    BELOW_SET_SIZE = "BelowSetSize"
    ARTICLE_SHORT = "ArticleShort"
    SLOT_SHORT = "SlotShort"
    CONDITION_SHORT = "ConditionShort"
    TOTAL_SHORT = "TotalShort"
    SEVERAL_PAYMENTS = "SeveralPayments"
    CARD_OUTSIDE = "CardOutside"
    NO_COUPONS = "NoCoupons"
    BELOW_THRESHOLD = "BelowThreshold"
    NOTHING_ABOVE_THRESHOLD = "NothingAboveThreshold"
    NO_DENOMINATION = "NoDenomination"
    UNUSABLE_DENOMINATION = "UnusableDenomination"
    TOO_MANY_REPEATS = "TooManyRepeats"
    STEP_WITHOUT_GAIN = "StepWithoutGain"
    NEVER_GIVES = "NeverGives"
    UNKNOWN_AREA = "UnknownArea"
    UNKNOWN_UNIT = "UnknownUnit"
    UNKNOWN_PRICE_KIND = "UnknownPriceKind"
    NO_GAIN = "NoGain"
    REDUCTION_ABOVE_PRICE = "ReductionAbovePrice"
    GIVES_NOTHING = "GivesNothing"
    LIMITED_BY_MONEY = "LimitedByMoney"
    UNEXPLAINED = "Unexplained"


class Unit(str, enum.Enum):
    """What a decision's `have` and `need` are."""

    NONE = ""
    QUANTITY = "quantity"
    MONEY = "money"
    PRICE = "price"
    PERCENT = "percent"
    COUNT = "count"
    DATE = "date"
    WEEKDAY = "weekday"
    TIME = "time"
    ORGANISATION = "organisation"
    MEMBER = "member"
    PAYMENT = "payment"
    CARD = "card"
    COUPON = "coupon"
    PASS = "pass"
    CLASS = "class"
    TYPE = "type"
    SALE = "sale"
    AREA = "area"
    KIND = "kind"
    UNIT = "unit"
    TEXT = "text"


class PassKind(str, enum.Enum):
    """What a walk over the rules looks for."""

    SINGLE = "Single"
    ORDINARY = "Ordinary"
    COMBINATION = "Combination"
    FULL_AMOUNT = "FullAmount"
    GIFT = "Gift"
    PAY = "Pay"
    COUPON = "Coupon"


class StepKind(str, enum.Enum):
    """What changed the amount of a line."""

    DISCOUNT = "discount"
    TAIL = "tail"
    """Cents that rounding left over."""
    ROUNDING = "rounding"
    """What cutting to cents changed."""
    LIMIT = "limit"
    """What a limit in money took back; below 0."""
    EARLIER = "earlier"
    """A discount of an earlier call."""


class What(str, enum.Enum):
    """What has to be added to a sale to reach more."""

    GOODS = "goods"
    PAYMENT = "payment"
    COUPON = "coupon"


def _money(cents: int) -> Decimal:
    return Decimal(cents).scaleb(-2)


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Pass:
    """A walk over the rules.

    Attributes:
        number: its place in the mode, from 1.
        kind: what it looks for.
        stacking_class: "DZ" for a walk that takes the rules of that class alone, otherwise "".
    """

    number: int
    kind: PassKind
    stacking_class: str


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class RuleName:
    """A rule that is meant.

    Attributes:
        bill_no: its number.
        primary: its stacking class.
    """

    bill_no: str
    primary: str


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Decision:
    """Something that was decided, with what it was decided by.

    Attributes:
        reason: why.
        lines: the numbers of the lines that it is about.
        goods: the article, or "".
        slot: the slot of a menu, or "".
        row: the row of the rule, or 0.
        tier: the place of a tier from the highest threshold, from 1; 0 for none.
        unit: what `have` and `need` are.
        have: what there is.
        need: what is asked for.
        taken_by: the rules that took what is missing.
    """

    reason: Reason
    lines: Sequence[int]
    goods: str
    slot: str
    row: int
    tier: int
    unit: Unit
    have: Decimal | str | None
    need: Decimal | str | None
    taken_by: Sequence[RuleName]


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class LineMoney:
    """What a rule took off a line.

    Attributes:
        serial_no: the line's number.
        cents: how much.
    """

    serial_no: int
    cents: int

    @property
    def money(self) -> Decimal:
        """The same in currency units."""
        return _money(self.cents)


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Outcome:
    """What came of a rule in a pass.

    Attributes:
        pass_number: the pass.
        applied: whether the rule gave something.
        cents: what it took off.
        lines: the same by line.
        offers: the groups of gifts that it offers.
        coupons: the coupons that it gave.
        because: the reason that decided; None when it was applied.
        looked: all the decisions on the way, the deciding one among them.
    """

    pass_number: int
    applied: bool
    cents: int
    lines: Sequence[LineMoney]
    offers: int
    coupons: int
    because: Decision | None
    looked: Sequence[Decision]

    @property
    def money(self) -> Decimal:
        """What it took off, in currency units."""
        return _money(self.cents)


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class RuleOutcomes:
    """A rule, with one outcome for each pass.

    Attributes:
        bill_no: the rule.
        type: its type.
        primary: its stacking class.
        outcomes: in the order of the passes.
    """

    bill_no: str
    type: str
    primary: str
    outcomes: Sequence[Outcome]

    @property
    def applied(self) -> bool:
        """Whether it gave something in any pass."""
        return any(outcome.applied for outcome in self.outcomes)

    @property
    def cents(self) -> int:
        """What it took off in all passes."""
        return sum(outcome.cents for outcome in self.outcomes)

    @property
    def money(self) -> Decimal:
        """The same in currency units."""
        return _money(self.cents)


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Step:
    """A change of a line's amount.

    Attributes:
        pass_number: the pass; 0 for a discount of an earlier call.
        bill_no: the rule on whose row it stands.
        type: that rule's type.
        kind: what it is.
        by: the rule that acted.
        count: the quantity.
        cents: what it takes off.
        left_cents: what is left of the line.
    """

    pass_number: int
    bill_no: str
    type: str
    kind: StepKind
    by: str
    count: Decimal
    cents: int
    left_cents: int

    @property
    def money(self) -> Decimal:
        """What it takes off, in currency units."""
        return _money(self.cents)

    @property
    def left(self) -> Decimal:
        """What is left of the line, in currency units."""
        return _money(self.left_cents)


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class LineWaterfall:
    """The way of a line's amount, in the cents that the result prints.

    Attributes:
        serial_no: the line's number.
        plu_code: its goods.
        count: its quantity.
        price: the unit price.
        before_cents: what was sent.
        steps: each change, in its order.
        left_cents: what is to pay.
        total: the engine's `Total` of the line, which not every type lowers.
    """

    serial_no: int
    plu_code: str
    count: Decimal
    price: Decimal
    before_cents: int
    steps: Sequence[Step]
    left_cents: int
    total: Decimal

    @property
    def before(self) -> Decimal:
        """What was sent, in currency units."""
        return _money(self.before_cents)

    @property
    def left(self) -> Decimal:
        """What is to pay, in currency units."""
        return _money(self.left_cents)


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Addition:
    """What would have to be added.

    Attributes:
        what: goods, a payment or a coupon.
        plu_code: the goods.
        serial_no: the line that has them; 0 where no line does.
        count: how much of it.
        price: the unit price; None where it isn't known.
    """

    what: What
    plu_code: str
    serial_no: int
    count: Decimal
    price: Decimal | None


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Gain:
    """What an addition brings, found by calculating the changed sale.

    Attributes:
        cents: more off the whole sale; below 0 where another promotion loses more.
        rule_cents: more off by this rule.
        offers: more groups of gifts.
        coupons: more coupons.
        coupon_cents: more worth of coupons.
    """

    cents: int
    rule_cents: int
    offers: int
    coupons: int
    coupon_cents: int

    @property
    def money(self) -> Decimal:
        """More off the whole sale, in currency units."""
        return _money(self.cents)

    @property
    def rule_money(self) -> Decimal:
        """More off by this rule, in currency units."""
        return _money(self.rule_cents)

    @property
    def coupon_money(self) -> Decimal:
        """More worth of coupons, in currency units."""
        return _money(self.coupon_cents)


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class NearMiss:
    """What is short of a threshold, a set, a tier or a coupon.

    Attributes:
        bill_no: the rule.
        type: its type.
        reason: why it gave no more.
        slot: the slot of a menu, or "".
        tier: the place of the tier; 0 for none.
        unit: what the numbers are.
        have: what there is; None where that is no number.
        need: what is asked for; None where that is no number.
        missing: how much is missing.
        add: what would have to be added.
        brings: what that brings; None where the price of the goods isn't known.
    """

    bill_no: str
    type: str
    reason: Reason
    slot: str
    tier: int
    unit: Unit
    have: Decimal | None
    need: Decimal | None
    missing: Decimal
    add: Sequence[Addition]
    brings: Gain | None


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Explanation:
    """Why a step gave what it gave.

    Attributes:
        mode: the step.
        passes: the walks over the rules that it made.
        rules: the rules, in the order of calculation, each with one outcome for each pass.
        lines: the way of each line's amount.
        near_misses: what would bring more.
    """

    mode: Mode
    passes: Sequence[Pass]
    rules: Sequence[RuleOutcomes]
    lines: Sequence[LineWaterfall]
    near_misses: Sequence[NearMiss]

    def rule(self, bill_no: str) -> RuleOutcomes:
        """The rule of this number; KeyError when there is none."""
        for rule in self.rules:
            if rule.bill_no == bill_no:
                return rule
        raise KeyError(bill_no)

    def line(self, serial_no: int) -> LineWaterfall:
        """The line of this number; KeyError when there is none."""
        for line in self.lines:
            if line.serial_no == serial_no:
                return line
        raise KeyError(serial_no)

    @staticmethod
    def from_json(text: str) -> Explanation:
        """Reads the object "explanation", or the engine's answer that holds it. Numbers never pass through a binary float.

        Raises:
            ValueError: no JSON, another version than 1, or a word that this version doesn't have.
            KeyError: JSON, but no explanation.
        """
        answer = json.loads(text, parse_float=Decimal, parse_constant=_no_constant)
        return explanation_of(answer["explanation"] if "explanation" in answer else answer)


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Explained:
    """What the engine answers to a calculation that is to be explained.

    Attributes:
        result: the result.
        explanation: why it is so.
    """

    result: Result
    explanation: Explanation

    @staticmethod
    def from_json(text: str) -> Explained:
        """Reads the engine's answer; raises as `Explanation.from_json` does."""
        return Explained(result=Result.from_json(text), explanation=Explanation.from_json(text))


def explanation_of(row: Mapping[str, Any]) -> Explanation:
    """The explanation of a JSON object whose numbers were read as Decimal and int; raises as `Explanation.from_json` does."""
    if row["version"] != _VERSION:
        raise ValueError(f"an explanation of version {row['version']}, where this package reads version {_VERSION}: it wants the "
                         "package that came with the library")
    return Explanation(
        mode=Mode(row["mode"]),
        passes=tuple(Pass(number=each["pass"], kind=PassKind(each["kind"]), stacking_class=each["class"])
                     for each in row["passes"]),
        rules=tuple(_rule(each) for each in row["rules"]),
        lines=tuple(_line(each) for each in row["lines"]),
        near_misses=tuple(_near_miss(each) for each in row["nearMisses"]))


def _no_constant(word: str) -> Decimal:
    raise ValueError(f"{word} is no number of JSON")


def _value(value: object) -> Decimal | str | None:
    if isinstance(value, int):
        return Decimal(value)
    return value if isinstance(value, (Decimal, str)) else None


def _number(value: int | Decimal | None) -> Decimal | None:
    return None if value is None else Decimal(value)


def _rule(row: Mapping[str, Any]) -> RuleOutcomes:
    return RuleOutcomes(bill_no=row["billNo"], type=row["type"], primary=row["primary"],
                        outcomes=tuple(_outcome(each) for each in row["outcomes"]))


def _outcome(row: Mapping[str, Any]) -> Outcome:
    return Outcome(
        pass_number=row["pass"], applied=row["outcome"] == "applied", cents=row["cents"],
        lines=tuple(LineMoney(serial_no=each["serialNo"], cents=each["cents"]) for each in row["lines"]),
        offers=row["offers"], coupons=row["coupons"],
        because=None if row["because"] is None else _decision(row["because"]),
        looked=tuple(_decision(each) for each in row["looked"]))


def _decision(row: Mapping[str, Any]) -> Decision:
    return Decision(
        reason=Reason(row["reason"]), lines=tuple(row["lines"]), goods=row["goods"], slot=row["slot"], row=row["row"],
        tier=row["tier"], unit=Unit(row["unit"]), have=_value(row["have"]), need=_value(row["need"]),
        taken_by=tuple(RuleName(bill_no=each["billNo"], primary=each["primary"]) for each in row["takenBy"]))


def _line(row: Mapping[str, Any]) -> LineWaterfall:
    return LineWaterfall(
        serial_no=row["serialNo"], plu_code=row["pluCode"], count=Decimal(row["count"]), price=Decimal(row["price"]),
        before_cents=row["beforeCents"], steps=tuple(_step(each) for each in row["steps"]), left_cents=row["leftCents"],
        total=Decimal(row["total"]))


def _step(row: Mapping[str, Any]) -> Step:
    return Step(pass_number=row["pass"], bill_no=row["billNo"], type=row["type"], kind=StepKind(row["kind"]), by=row["by"],
                count=Decimal(row["count"]), cents=row["cents"], left_cents=row["leftCents"])


def _near_miss(row: Mapping[str, Any]) -> NearMiss:
    brings = row["brings"]
    return NearMiss(
        bill_no=row["billNo"], type=row["type"], reason=Reason(row["reason"]), slot=row["slot"], tier=row["tier"],
        unit=Unit(row["unit"]), have=_number(row["have"]), need=_number(row["need"]), missing=Decimal(row["missing"]),
        add=tuple(_addition(each) for each in row["add"]),
        brings=None if brings is None else Gain(
            cents=brings["cents"], rule_cents=brings["ruleCents"], offers=brings["offers"], coupons=brings["coupons"],
            coupon_cents=brings["couponCents"]))


def _addition(row: Mapping[str, Any]) -> Addition:
    return Addition(what=What(row["what"]), plu_code=row["pluCode"], serial_no=row["serialNo"], count=Decimal(row["count"]),
                    price=_number(row["price"]))
