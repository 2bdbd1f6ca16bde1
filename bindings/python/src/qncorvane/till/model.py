"""A sale at the till: what was done, what the engine answered, and each way back. Without a terminal."""

from __future__ import annotations

import dataclasses
import datetime
import enum
from collections.abc import Callable, Iterator, Mapping, Sequence
from contextlib import contextmanager
from decimal import ROUND_HALF_UP, Decimal
from typing import Protocol

from .._explanation import Explained, Explanation
from .._result import Result, ResultLine
from .._sale import Coupon, Line, Member, Mode, Offer, Payment, Sale
from .goods import Goods
from .words import Refusal

_CENT = Decimal("0.01")
_SECONDS = 30  # what a call may take before the till gives up on it


class Calculator(Protocol):
    """What the till needs of an engine."""

    def calculate(self, key: str, mode: Mode | str, sale: Sale | str = ..., *, time_limit: float | None = ...) -> Result:
        """One step of a sale."""

    def explain(self, key: str, mode: Mode | str, sale: Sale | str = ..., *, time_limit: float | None = ...) -> Explained:
        """One step of a sale, and why it gave what it gave."""

    def forget(self, key: str, *, time_limit: float | None = ...) -> None:
        """Forgets a sale."""


class Stage(enum.Enum):
    """How far a sale has come."""

    SCANNING = "scanning"
    SUBTOTAL = "subtotal"
    PAYING = "paying"


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class TillLine:
    """A line of the sale.

    Attributes:
        goods: the article.
        count: the quantity; below 0 for a return.
        price: the unit price.
        voided: whether it was taken back.
    """

    goods: Goods
    count: Decimal
    price: Decimal
    voided: bool = False

    @property
    def amount(self) -> Decimal:
        """The line's amount, before any promotion."""
        return Decimal(0) if self.voided else (self.price * self.count).quantize(_CENT, ROUND_HALF_UP)


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Call:
    """A call that the engine has answered: sent again, it makes the same sale."""

    mode: Mode
    sale: Sale


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class SaleState:
    """A sale between two actions. It never changes: an action makes another one.

    Attributes:
        number: the how manieth sale of this till it is, from 1.
        shop: the shop's code.
        moment: date and time of the sale.
        is_moment_set: whether somebody has set it; otherwise it is the clock's.
        lines: the lines; a line's number is its place, from 1.
        members: the types of the member cards that were shown.
        payments: the payments.
        coupons: the coupons presented.
        picks: what was taken of the offers, by rule and article.
        stage: how far it has come.
        calls: what made the engine's sale.
        single: what the scanner's price was, of the last line scanned; None when the last action was another.
        result: the last result: of the preview while scanning, of the sale itself from the subtotal on. None for a sale
            without goods.
        offers: the gift offers of the subtotal, as they came.
        explanations: why, step by step.
    """

    number: int
    shop: str
    moment: datetime.datetime
    is_moment_set: bool = False
    lines: Sequence[TillLine] = ()
    members: Sequence[str] = ()
    payments: Sequence[Payment] = ()
    coupons: Sequence[Coupon] = ()
    picks: Mapping[tuple[str, str], Decimal] = dataclasses.field(default_factory=dict)
    stage: Stage = Stage.SCANNING
    calls: Sequence[Call] = ()
    single: ResultLine | None = None
    result: Result | None = None
    offers: Sequence[Offer] = ()
    explanations: Sequence[Explanation] = ()

    @property
    def bill_no(self) -> str:
        """The sale's number on receipts."""
        return f"T-{self.number:04}"

    @property
    def gifts(self) -> Decimal:
        """What the picked gifts cost, beside the goods."""
        prices = {(offer.pro_bill_no, article.plu_code): article.dsc_price or Decimal(0)
                  for offer in self.offers for article in offer.articles}
        return sum((prices[pick] * count for pick, count in self.picks.items()), Decimal(0)).quantize(_CENT, ROUND_HALF_UP)

    @property
    def to_pay(self) -> Decimal:
        """What the customer owes, gifts with it."""
        return (self.result.totals.to_pay if self.result else Decimal("0.00")) + self.gifts

    @property
    def paid(self) -> Decimal:
        """What was paid."""
        return sum((payment.pay_money for payment in self.payments), Decimal("0.00"))

    def header(self) -> Sale:
        """The sale without anything in it."""
        return Sale(bill_no=self.bill_no, org_code=self.shop, is_calc="0")

    def goods(self) -> Sale:
        """The lines and the members: what a subtotal sends."""
        return dataclasses.replace(self.header(), lines=[self.line(number) for number in range(1, len(self.lines) + 1)],
                                   members=[Member(vip_type=member) for member in self.members])

    def whole(self) -> Sale:
        """All that the customer has brought to the till."""
        return dataclasses.replace(self.goods(), payments=self.payments, coupons=self.coupons)

    def line(self, number: int) -> Line:
        """A line as the engine is told it. One that was taken back goes with a quantity of 0."""
        line = self.lines[number - 1]
        return Line(serial_no=number, plu_code=line.goods.code, plu_type="PLU", price=line.price,
                    plu_count=Decimal(0) if line.voided else line.count, total=line.amount, cat=line.goods.cat,
                    brd=line.goods.brd, sale_date=self.moment.strftime("%Y-%m-%d"), sale_time=self.moment.strftime("%H:%M:%S"))


class Till:
    """The till: one sale after the other.

    An action that is refused, by the till (Refusal), by the engine (QncError) or because of a value that can't be told to it
    (ValueError), changes nothing.
    """

    def __init__(self, engine: Calculator, key: str = "till", shop: str = "01",
                 clock: Callable[[], datetime.datetime] = datetime.datetime.now) -> None:
        """
        Args:
            engine: an engine with its rules.
            key: what the keys of the sales begin with.
            shop: the shop's code.
            clock: what gives a sale its date and time.
        """
        self._engine = engine
        self._key = key
        self._clock = clock
        self._history: list[SaleState] = []
        self._is_behind = False  # the engine's sale isn't that of the state
        self._state = SaleState(number=1, shop=shop, moment=clock())

    @property
    def state(self) -> SaleState:
        """The sale as it is."""
        return self._state

    @property
    def steps(self) -> int:
        """How many actions can be taken back."""
        return len(self._history)

    def scan(self, goods: Goods, count: Decimal = Decimal(1), price: Decimal | None = None) -> None:
        """Adds a line; below 0 it is a return.

        Raises:
            Refusal: no price, neither here nor in the list; a quantity of 0.
        """
        price = goods.price if price is None else price
        if price is None:
            raise Refusal("no_price", goods=goods.name, code=goods.code)
        if count == 0:
            raise Refusal("no_quantity")
        with self._action():
            state = self._opened()
            line = TillLine(goods=goods, count=count, price=price)
            self._scanned(dataclasses.replace(state, lines=(*state.lines, line)), len(state.lines) + 1)

    def set_count(self, number: int, count: Decimal) -> None:
        """Gives a line another quantity, above 0; that of a return stays below 0."""
        line = self._line(number)
        if line.voided:
            raise Refusal("voided", line=number)
        if count <= 0:
            raise Refusal("no_quantity")
        with self._action():
            signed = count if line.count > 0 else -count
            self._scanned(self._with_line(number, dataclasses.replace(line, count=signed)), number)

    def void(self, number: int) -> None:
        """Takes a line back."""
        line = self._line(number)
        if line.voided:
            raise Refusal("voided", line=number)
        with self._action():
            self._edited(self._with_line(number, dataclasses.replace(line, voided=True)))

    def add_member(self, vip_type: str) -> None:
        """A member card is shown."""
        with self._action():
            state = self._opened()
            self._edited(dataclasses.replace(state, members=(*state.members, vip_type)))

    def set_shop(self, shop: str) -> None:
        """The till stands in another shop."""
        with self._action():
            self._edited(dataclasses.replace(self._opened(), shop=shop))

    def set_moment(self, moment: datetime.datetime) -> None:
        """The sale is of this date and time, and the sales behind it."""
        with self._action():
            self._edited(dataclasses.replace(self._opened(), moment=moment, is_moment_set=True))

    def subtotal(self) -> None:
        """Works the sale out: line promotions, then those of the full amount.

        Raises:
            Refusal: there are no goods; the sale is being paid.
        """
        with self._action():
            state = self._opened()
            if all(line.voided for line in state.lines):
                raise Refusal("nothing_scanned")
            state = self._called(dataclasses.replace(state, explanations=()), Mode.ALL, state.goods())
            state = self._called(state, Mode.MZ_PROMOTION, state.header())
            offers = state.result.offers if state.result else ()
            self._state = dataclasses.replace(state, stage=Stage.SUBTOTAL, offers=offers, single=None)

    def pick(self, bill_no: str, code: str, count: Decimal) -> None:
        """Takes so many of an article that a rule offers; 0 for none.

        Raises:
            Refusal: there is no such offer; the picks together cost more than the sale has reached; the sale is being paid.
            TotalOverflow, NumberOverflow: the engine refuses the choice.
        """
        state = self._subtotalled()
        if state.stage is Stage.PAYING:
            raise Refusal("paying")
        if count < 0:
            raise Refusal("no_quantity")
        if not any(offer.pro_bill_no == bill_no and any(article.plu_code == code for article in offer.articles)
                   for offer in state.offers):
            raise Refusal("no_such_offer", rule=bill_no, code=code)
        with self._action():
            picks = {pick: taken for pick, taken in {**state.picks, (bill_no, code): count}.items() if taken}
            state = dataclasses.replace(state, picks=picks)
            state = self._called(state, Mode.GIFT, dataclasses.replace(state.header(), offers=_with_picks(state)))
            # The engine never refuses an article that is free, and tells what is left below 0 instead.
            for offer in state.result.offers if state.result else ():
                if picks and offer.left_total is not None and offer.left_total < 0:
                    raise Refusal("offers_overdrawn", rule=offer.pro_bill_no, left=offer.left_total)
            self._state = state

    def pay(self, way: str, amount: Decimal | None = None, card: str | None = None) -> None:
        """A payment; without an amount it is what is still to pay.

        Raises:
            Refusal: no subtotal yet; all is paid; an amount that is none.
        """
        state = self._subtotalled()
        due = state.to_pay - state.paid
        if due <= 0:
            raise Refusal("nothing_due")
        amount = due if amount is None else amount
        if amount <= 0:
            raise Refusal("no_amount")
        with self._action():
            payment = Payment(pay_mode=way, pay_money=amount, pay_card_no=card)
            state = dataclasses.replace(state, payments=(*state.payments, payment), stage=Stage.PAYING)
            self._state = self._called(state, Mode.PAY, dataclasses.replace(state.header(), payments=[payment]))

    def present(self, coupons: Sequence[Coupon]) -> None:
        """Coupons are presented, those of one hand at once: a rule takes some once a sale.

        Raises:
            Refusal: no subtotal yet.
        """
        state = self._subtotalled()
        with self._action():
            state = dataclasses.replace(state, coupons=(*state.coupons, *coupons), stage=Stage.PAYING)
            self._state = self._called(state, Mode.COUPON, dataclasses.replace(state.header(), coupons=coupons))

    def new(self) -> None:
        """Ends the sale and begins the next one."""
        with self._action():
            state = self._state
            self._engine.forget(self._key_of(state), time_limit=_SECONDS)
            moment = state.moment if state.is_moment_set else self._clock()
            self._state = SaleState(number=state.number + 1, shop=state.shop, moment=moment, is_moment_set=state.is_moment_set)

    def undo(self, steps: int = 1) -> None:
        """Takes actions back, the last one first.

        Raises:
            Refusal: there are not so many.
        """
        if not 1 <= steps <= len(self._history):
            raise Refusal("nothing_to_undo", steps=len(self._history))
        left = self._state
        try:
            self._go_back_to(self._history[-steps])
        except BaseException:
            self._state = left
            raise
        del self._history[-steps:]

    @contextmanager
    def _action(self) -> Iterator[None]:
        """What happens in here happens whole, or not at all."""
        before = self._state
        if self._is_behind:
            self._go_back_to(before)
        try:
            yield
        except BaseException:
            self._go_back_to(before)
            raise
        self._history.append(before)

    def _go_back_to(self, state: SaleState) -> None:
        """Makes the engine's sale that of an earlier state: it is forgotten, and told again."""
        left, self._state = self._state, state
        self._is_behind = True
        for key in {self._key_of(left), self._key_of(state)}:
            self._engine.forget(key, time_limit=_SECONDS)
        for call in state.calls:
            self._engine.calculate(self._key_of(state), call.mode, call.sale, time_limit=_SECONDS)
        self._is_behind = False

    def _key_of(self, state: SaleState) -> str:
        return f"{self._key}/{state.bill_no}"

    def _line(self, number: int) -> TillLine:
        if not 1 <= number <= len(self._state.lines):
            raise Refusal("no_such_line", line=number)
        return self._state.lines[number - 1]

    def _with_line(self, number: int, line: TillLine) -> SaleState:
        state = self._opened()
        return dataclasses.replace(state, lines=(*state.lines[:number - 1], line, *state.lines[number:]))

    def _opened(self) -> SaleState:
        """The state for more goods. Behind a subtotal the engine's sale begins anew: what was written for the whole of it would
        stay otherwise."""
        state = self._state
        if state.stage is Stage.PAYING:
            raise Refusal("paying")
        if state.stage is Stage.SCANNING:
            return state
        self._engine.forget(self._key_of(state), time_limit=_SECONDS)
        return dataclasses.replace(state, stage=Stage.SCANNING, calls=(), offers=(), picks={})

    def _subtotalled(self) -> SaleState:
        if self._state.stage is Stage.SCANNING:
            raise Refusal("no_subtotal")
        return self._state

    def _called(self, state: SaleState, mode: Mode, sale: Sale) -> SaleState:
        """The state behind a call."""
        explained = self._engine.explain(self._key_of(state), mode, sale, time_limit=_SECONDS)
        return dataclasses.replace(state, calls=(*state.calls, Call(mode=mode, sale=sale)), result=explained.result,
                                   explanations=(*state.explanations, explained.explanation), single=None)

    def _scanned(self, state: SaleState, number: int) -> None:
        """The scanner's own price of a line, then the preview."""
        sale = dataclasses.replace(state.header(), lines=[state.line(number)])
        single = self._engine.calculate(self._key_of(state), Mode.SINGLE, sale, time_limit=_SECONDS)
        state = dataclasses.replace(state, calls=(*state.calls, Call(mode=Mode.SINGLE, sale=sale)))
        self._edited(state, single.lines[0] if single.lines else None)

    def _edited(self, state: SaleState, single: ResultLine | None = None) -> None:
        """What a subtotal would give now, worked out on a sale of its own so that this one isn't touched."""
        state = dataclasses.replace(state, result=None, explanations=(), single=single)
        if all(line.voided for line in state.lines):
            self._state = state
            return
        key = f"{self._key_of(state)}/preview"
        try:
            lines = self._engine.explain(key, Mode.ALL, state.goods(), time_limit=_SECONDS)
            whole = self._engine.explain(key, Mode.MZ_PROMOTION, state.header(), time_limit=_SECONDS)
        finally:
            self._engine.forget(key, time_limit=_SECONDS)
        self._state = dataclasses.replace(state, result=whole.result, explanations=(lines.explanation, whole.explanation))


def _with_picks(state: SaleState) -> list[Offer]:
    """The offers as they came, with what is taken of them."""
    return [dataclasses.replace(offer, articles=[
        dataclasses.replace(article, hg_plu_count=state.picks.get((offer.pro_bill_no, article.plu_code), Decimal(0)))
        for article in offer.articles]) for offer in state.offers]
