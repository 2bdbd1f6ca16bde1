"""The till's sale: each action and its way back, every refusal, and an engine that fails in between."""

import datetime
import pathlib
from collections.abc import Callable
from decimal import Decimal

import pytest

from qncorvane import (Coupon, Engine, Explained, Mode, NumberOverflow, QncError, Result, Sale, TimedOut)
from qncorvane.till.goods import Goods
from qncorvane.till.model import SaleState, Stage, Till
from qncorvane.till.words import Refusal

from conftest import SAMPLES, sample
from desk import NOON, Desk

JUICE = Goods(code="100101", name="Orange juice 1 l", price=Decimal("2.50"), cat="JUICE", brd="SUNNY")
POWDER = Goods(code="950101", name="Washing powder 5 kg", price=Decimal("18.90"), cat="HOUSE", brd="WHITE")
OIL = Goods(code="950201", name="Olive oil 1 l", price=Decimal("9.80"), cat="OIL", brd="NONNA")
UNPRICED = Goods(code="1", name="Loose goods")
COUPON = Coupon(bill_no="MZZQ-01", coupon_type_code="C5", coupon_value=Decimal("5.00"))


@pytest.fixture
def till(engine: Engine) -> Till:
    """A till with an empty sale, on a Saturday."""
    return Till(engine, clock=lambda: NOON)


def to_pay(till: Till) -> str:
    return "none" if till.state.result is None else str(till.state.result.totals.to_pay)


def big_sale(till: Till) -> None:
    """37.80 + 19.60 + 5.00 = 62.40; 1.02 off the juice, 6.00 off the whole: 55.38. A mug is offered."""
    till.scan(POWDER, Decimal(2))
    till.scan(OIL, Decimal(2))
    till.scan(JUICE, Decimal(2))


def sample_sale(till: Till, desk: Desk) -> None:
    """The lines of samples/sales/till: 82.00, of which 69.68 is left behind the subtotal."""
    for line in Sale.from_xml(sample("till/4-subtotal.xml")).lines:
        goods = desk.goods.exact(line.plu_code)
        assert goods is not None
        till.scan(goods, line.plu_count)


# What each action does


def test_scanning_shows_what_the_subtotal_would_give(till: Till) -> None:
    till.scan(JUICE, Decimal(3))
    assert (to_pay(till), till.state.stage, len(till.state.explanations)) == ("5.97", Stage.SCANNING, 2)
    assert [explanation.mode for explanation in till.state.explanations] == [Mode.ALL, Mode.MZ_PROMOTION]


def test_the_preview_leaves_the_sale_alone(till: Till, engine: Engine) -> None:
    till.scan(JUICE, Decimal(3))
    till.scan(POWDER)
    assert engine.state().sales == 1
    assert [call.mode for call in till.state.calls] == [Mode.SINGLE, Mode.SINGLE]


def test_the_scanner_s_price_comes_from_the_mode_for_it(till: Till) -> None:
    till.scan(JUICE)
    assert till.state.single is not None and till.state.single.final_price == Decimal("2.50"), "no subtotal has been made yet"
    till.scan(JUICE)
    assert till.state.single is not None and till.state.single.final_price == Decimal("1.99"), "the preview was one"


def test_amounts_are_rounded_to_cents(till: Till) -> None:
    till.scan(Goods(code="400101", name="Bananas", price=Decimal("1.90"), cat="FRUIT"), Decimal("1.375"))
    assert till.state.lines[0].amount == Decimal("2.61"), "2.6125"
    till.scan(Goods(code="X", name="X", price=Decimal("0.01")), Decimal("0.5"))
    assert till.state.lines[1].amount == Decimal("0.01"), "0.005"


def test_a_price_that_is_told_goes_before_that_of_the_list(till: Till) -> None:
    till.scan(UNPRICED, price=Decimal("3.00"))
    till.scan(POWDER, price=Decimal("1.00"))
    assert [line.amount for line in till.state.lines] == [Decimal("3.00"), Decimal("1.00")]


def test_another_quantity(till: Till) -> None:
    till.scan(JUICE)
    till.set_count(1, Decimal(3))
    assert (till.state.lines[0].count, to_pay(till)) == (Decimal(3), "5.97")


def test_the_quantity_of_a_return_stays_one(till: Till) -> None:
    till.scan(JUICE, Decimal(-1))
    till.set_count(1, Decimal(3))
    assert (till.state.lines[0].count, till.state.lines[0].amount) == (Decimal(-3), Decimal("-7.50"))


def test_a_void_line_stays_with_nothing(till: Till) -> None:
    till.scan(JUICE, Decimal(3))
    till.scan(POWDER)
    till.void(1)
    till.subtotal()
    assert to_pay(till) == "18.90"
    assert till.state.result is not None
    assert [(line.serial_no, line.plu_count) for line in reversed(till.state.result.lines)] == [
        (1, Decimal(0)), (2, Decimal(1))]


def test_a_sale_of_void_lines_alone_has_no_result(till: Till) -> None:
    till.scan(JUICE)
    till.void(1)
    assert to_pay(till) == "none" and till.state.explanations == ()


def test_a_return(till: Till) -> None:
    till.scan(POWDER)
    till.scan(JUICE, Decimal(-1))
    till.subtotal()
    assert to_pay(till) == "16.40"


def test_a_member(till: Till) -> None:
    coffee = Goods(code="110101", name="Coffee", price=Decimal("6.90"), cat="COFFEE", brd="MONTE")
    till.scan(coffee, Decimal(2))
    assert to_pay(till) == "13.80"
    till.add_member("01")
    assert to_pay(till) == "12.42"
    till.subtotal()
    assert to_pay(till) == "12.42"


def test_the_day_decides(till: Till) -> None:
    apples = Goods(code="400102", name="Apples", price=Decimal("2.60"), cat="FRUIT")
    till.scan(apples)
    assert to_pay(till) == "2.08", "20 % off at weekends"
    till.set_moment(datetime.datetime(2024, 6, 17, 12, 0))
    assert to_pay(till) == "2.60", "a Monday"


def test_the_shop_goes_with_the_sale(till: Till) -> None:
    till.scan(JUICE)
    till.set_shop("77")
    assert till.state.result is not None and till.state.result.org_code == "77"


def test_a_whole_customer(engine: Engine, store: pathlib.Path) -> None:
    """The amounts are those of samples/receipts/till.txt."""
    desk = Desk(engine, store)
    till = desk.till
    sample_sale(till, desk)
    till.subtotal()
    assert to_pay(till) == "69.68"
    assert [offer.pro_bill_no for offer in till.state.offers] == ["MZHG-01", "MZZP-01"]
    with pytest.raises(NumberOverflow):
        till.pick("MZZP-01", "900101", Decimal(2))
    till.pick("MZZP-01", "900101", Decimal(1))
    till.pay("CARD", None, "6212345678901234")
    assert (till.state.paid, to_pay(till)) == (Decimal("69.68"), "65.68")
    till.present([COUPON, COUPON])
    assert to_pay(till) == "55.68"
    assert (till.state.to_pay, till.state.stage) == (Decimal("55.68"), Stage.PAYING)


def test_a_gift_has_its_price(till: Till) -> None:
    big_sale(till)
    till.subtotal()
    assert to_pay(till) == "55.38"
    till.pick("MZHG-01", "900201", Decimal(1))
    assert (to_pay(till), till.state.gifts, till.state.to_pay) == ("55.38", Decimal("2.00"), Decimal("57.38"))
    till.pay("CASH")
    assert till.state.paid == Decimal("57.38")


def test_the_next_sale(till: Till, engine: Engine) -> None:
    till.scan(JUICE)
    till.add_member("01")
    till.new()
    assert till.state == SaleState(number=2, shop="01", moment=NOON)
    assert (till.state.bill_no, engine.state().sales) == ("T-0002", 0)


def test_a_date_that_was_set_stays_for_the_next_sale(till: Till) -> None:
    moment = datetime.datetime(2024, 1, 2, 3, 4, 5)
    till.set_moment(moment)
    till.new()
    assert till.state.moment == moment


def test_a_subtotal_is_left_by_scanning_on(till: Till) -> None:
    big_sale(till)
    till.subtotal()
    till.pick("MZHG-01", "900201", Decimal(1))
    till.scan(JUICE)
    assert (till.state.stage, till.state.offers, dict(till.state.picks)) == (Stage.SCANNING, (), {})
    till.subtotal()
    assert to_pay(till) == "57.37", "62.40 + 2.50 - 3 x 0.51 - 6.00"


def test_a_second_subtotal_is_as_the_first(till: Till) -> None:
    """What was written for the whole sale would stay, were it not begun anew."""
    big_sale(till)
    till.subtotal()
    first = till.state.result
    till.subtotal()
    assert till.state.result == first


# Each way back


ACTIONS: dict[str, Callable[[Till], None]] = {
    "scan": lambda till: till.scan(JUICE, Decimal(3)),
    "return": lambda till: till.scan(JUICE, Decimal(-1)),
    "qty": lambda till: till.set_count(1, Decimal(5)),
    "void": lambda till: till.void(2),
    "member": lambda till: till.add_member("01"),
    "shop": lambda till: till.set_shop("02"),
    "moment": lambda till: till.set_moment(datetime.datetime(2024, 6, 17, 9, 0)),
    "subtotal": lambda till: till.subtotal(),
    "new": lambda till: till.new(),
}
LATER: dict[str, Callable[[Till], None]] = {
    **ACTIONS,
    "gift": lambda till: till.pick("MZHG-01", "900201", Decimal(1)),
    "pay": lambda till: till.pay("CARD", None, "6212345678901234"),
    "coupon": lambda till: till.present([COUPON]),
}


def engines_sale(engine: Engine) -> str:
    """The engine's own sale, as its next step tells it."""
    return engine.calculate_xml("till/T-0001", Mode.GIFT)


def engines_lines(engine: Engine) -> list[tuple[int, str, Decimal]]:
    """The lines of the engine's own sale. What the scanner's price has written on them hangs on what the rules have read."""
    return [(line.serial_no, line.plu_code, line.plu_count) for line in engine.calculate("till/T-0001", Mode.GIFT).lines]


@pytest.mark.parametrize("name", ACTIONS)
def test_undo_while_scanning(till: Till, engine: Engine, name: str) -> None:
    big_sale(till)
    before, lines = till.state, engines_lines(engine)
    ACTIONS[name](till)
    assert till.state != before
    till.undo()
    assert (till.state, engines_lines(engine)) == (before, lines)
    till.subtotal()
    assert to_pay(till) == "55.38"


@pytest.mark.parametrize("name", LATER)
def test_undo_behind_the_subtotal(till: Till, engine: Engine, name: str) -> None:
    big_sale(till)
    till.subtotal()
    before, sale = till.state, engines_sale(engine)
    LATER[name](till)
    till.undo()
    assert (till.state, engines_sale(engine)) == (before, sale)


def test_undo_of_a_payment_lets_it_be_paid_again(till: Till) -> None:
    big_sale(till)
    till.subtotal()
    till.pay("CARD", None, "6212345678901234")
    once = to_pay(till)
    till.undo()
    till.pay("CARD", None, "6212345678901234")
    assert to_pay(till) == once, "the reduction came once"


def test_undo_of_many(till: Till, engine: Engine) -> None:
    empty = till.state
    big_sale(till)
    till.subtotal()
    till.pay("CASH")
    till.new()
    till.scan(JUICE)
    assert till.steps == 7
    till.undo(7)
    assert (till.state, till.steps, engine.state().sales) == (empty, 0, 0)


def test_undo_of_a_new_sale_brings_the_old_one_back(till: Till) -> None:
    big_sale(till)
    till.subtotal()
    till.new()
    till.undo()
    till.pay("CARD", None, "6212345678901234")
    assert to_pay(till) == "53.38", "2.00 off for 30.00 paid by card"


# What is refused


def refused(till: Till, key: str, action: Callable[[], None]) -> None:
    """The action is refused with this text, and nothing is changed."""
    before, steps = till.state, till.steps
    with pytest.raises(Refusal) as caught:
        action()
    assert (caught.value.key, till.state, till.steps) == (key, before, steps)


def test_refusals_of_an_empty_sale(till: Till) -> None:
    refused(till, "no_price", lambda: till.scan(UNPRICED))
    refused(till, "no_quantity", lambda: till.scan(JUICE, Decimal(0)))
    for number in (0, 1, -1):
        refused(till, "no_such_line", lambda: till.void(number))
        refused(till, "no_such_line", lambda: till.set_count(number, Decimal(1)))
    refused(till, "nothing_scanned", till.subtotal)
    refused(till, "no_subtotal", lambda: till.pay("CASH"))
    refused(till, "no_subtotal", lambda: till.present([COUPON]))
    refused(till, "no_subtotal", lambda: till.pick("MZHG-01", "900201", Decimal(1)))
    refused(till, "nothing_to_undo", till.undo)


def test_refusals_of_a_line(till: Till) -> None:
    till.scan(JUICE)
    for count in (0, -1):
        refused(till, "no_quantity", lambda: till.set_count(1, Decimal(count)))
    till.void(1)
    refused(till, "voided", lambda: till.void(1))
    refused(till, "voided", lambda: till.set_count(1, Decimal(2)))
    refused(till, "nothing_scanned", till.subtotal)
    for steps in (0, -1, 3):
        refused(till, "nothing_to_undo", lambda: till.undo(steps))


def test_refusals_of_a_choice(till: Till) -> None:
    big_sale(till)
    till.subtotal()
    refused(till, "no_such_offer", lambda: till.pick("MZZP-01", "900101", Decimal(1)))
    refused(till, "no_such_offer", lambda: till.pick("MZHG-01", "900101", Decimal(1)))
    refused(till, "no_quantity", lambda: till.pick("MZHG-01", "900201", Decimal(-1)))


def test_a_choice_that_the_engine_refuses_changes_nothing(till: Till, engine: Engine) -> None:
    big_sale(till)
    till.subtotal()
    before, sale = till.state, engines_sale(engine)
    with pytest.raises(NumberOverflow):
        till.pick("MZHG-01", "900201", Decimal(2))
    assert (till.state, engines_sale(engine), till.steps) == (before, sale, 4)


def test_gifts_that_cost_more_than_was_reached_together(engine: Engine, store: pathlib.Path) -> None:
    """The engine takes the bag and the mug, and tells -20.32 as what is left of 69.68."""
    desk = Desk(engine, store)
    sample_sale(desk.till, desk)
    desk.till.subtotal()
    desk.till.pick("MZHG-01", "900201", Decimal(1))
    with pytest.raises(Refusal) as caught:
        desk.till.pick("MZZP-01", "900101", Decimal(1))
    assert (caught.value.key, caught.value.fields["left"]) == ("offers_overdrawn", Decimal("-20.32"))
    assert dict(desk.till.state.picks) == {("MZHG-01", "900201"): Decimal(1)}
    desk.till.pick("MZHG-01", "900201", Decimal(0))
    desk.till.pick("MZZP-01", "900101", Decimal(1))
    assert dict(desk.till.state.picks) == {("MZZP-01", "900101"): Decimal(1)}


def test_refusals_while_paying(till: Till) -> None:
    big_sale(till)
    till.subtotal()
    refused(till, "no_amount", lambda: till.pay("CASH", Decimal(0)))
    refused(till, "no_amount", lambda: till.pay("CASH", Decimal(-5)))
    till.pay("CASH", Decimal(10))
    for action in ACTIONS:
        if action != "new":
            refused(till, "paying", lambda: ACTIONS[action](till))
    refused(till, "paying", lambda: till.pick("MZHG-01", "900201", Decimal(1)))
    till.pay("CASH")
    refused(till, "nothing_due", lambda: till.pay("CASH"))


def test_what_cannot_be_told_to_the_engine_changes_nothing(till: Till) -> None:
    till.scan(JUICE)
    before = till.state
    with pytest.raises(ValueError, match="digits before the point"):
        till.scan(Goods(code="X", name="X", price=Decimal(10) ** 9), Decimal(10) ** 6)
    with pytest.raises(ValueError, match="U\\+0001"):
        till.scan(Goods(code="\x01", name="X", price=Decimal(1)))
    assert till.state == before
    till.scan(JUICE, Decimal(2))
    assert to_pay(till) == "5.97"


class Failing:
    """An engine that fails at one of its calls."""

    def __init__(self, engine: Engine) -> None:
        self._engine = engine
        self.left = -1

    def _count(self) -> None:
        self.left -= 1
        if self.left == 0:
            raise TimedOut(7, "the database is away")

    def calculate(self, key: str, mode: Mode | str, sale: Sale | str = Sale(), *, time_limit: float | None = None) -> Result:
        self._count()
        return self._engine.calculate(key, mode, sale, time_limit=time_limit)

    def explain(self, key: str, mode: Mode | str, sale: Sale | str = Sale(), *, time_limit: float | None = None) -> Explained:
        self._count()
        return self._engine.explain(key, mode, sale, time_limit=time_limit)

    def forget(self, key: str, *, time_limit: float | None = None) -> None:
        self._count()
        self._engine.forget(key, time_limit=time_limit)


@pytest.mark.parametrize("name", [name for name in LATER if name != "return"])
def test_an_engine_that_fails_in_between(engine: Engine, name: str) -> None:
    """Whichever call fails, the sale is as it was, or will be when the engine answers again."""
    for call in range(1, 20):
        failing = Failing(engine)
        till = Till(failing, clock=lambda: NOON)
        big_sale(till)
        till.subtotal()
        before, sale = till.state, engines_sale(engine)
        failing.left = call
        try:
            LATER[name](till)
        except QncError as error:
            assert str(error) == "the database is away"
        else:
            assert failing.left > 0, "no call failed, since there were no more"
            failing.left = -1
            till.undo()
            assert (till.state, engines_sale(engine)) == (before, sale)
            engine.forget_all()
            break
        assert till.state == before
        failing.left = -1
        till.pay("CASH", Decimal(1))
        till.undo()
        assert engines_sale(engine) == sale
        engine.forget_all()
    else:
        pytest.fail("an action of twenty calls")


def test_an_undo_that_fails_is_none(engine: Engine) -> None:
    failing = Failing(engine)
    till = Till(failing, clock=lambda: NOON)
    big_sale(till)
    till.subtotal()
    till.new()
    till.scan(JUICE)
    before, steps = till.state, till.steps
    failing.left = 4
    with pytest.raises(TimedOut):
        till.undo(2)
    assert (till.state, till.steps) == (before, steps)
    failing.left = -1
    till.subtotal()
    assert to_pay(till) == "1.99"


def test_a_sale_is_saved_with_all_that_the_customer_brought(till: Till) -> None:
    big_sale(till)
    till.add_member("01")
    till.subtotal()
    till.pay("CARD", Decimal("10.00"), "62")
    till.present([COUPON])
    sale = Sale.from_xml(till.state.whole().to_xml())
    assert [(line.plu_code, line.total, line.sale_date) for line in sale.lines] == [
        ("950101", Decimal("37.80"), "2024-06-15"), ("950201", Decimal("19.60"), "2024-06-15"),
        ("100101", Decimal("5.00"), "2024-06-15")]
    assert ([each.vip_type for each in sale.members], [each.pay_money for each in sale.payments],
            [each.coupon_value for each in sale.coupons]) == (["01"], [Decimal(10)], [Decimal(5)])


def test_the_samples_can_be_scanned(engine: Engine, store: pathlib.Path) -> None:
    """Every line of every sample sale, from the goods list: the subtotal is that of the sale itself."""
    for file in sorted((SAMPLES / "sales").glob("*.xml")):
        desk = Desk(engine, store)
        sale = Sale.from_xml(file.read_text("utf-8"))
        moment = f"{sale.lines[0].sale_date} {sale.lines[0].sale_time}"
        desk.till.set_moment(datetime.datetime.fromisoformat(moment))
        for member in sale.members:
            desk.till.add_member(member.vip_type)
        for line in sale.lines:
            goods = desk.goods.exact(line.plu_code)
            assert goods is not None and (goods.price, goods.cat, goods.brd) == (line.price, line.cat, line.brd)
            desk.till.scan(goods, line.plu_count)
        desk.till.subtotal()
        engine.calculate("itself", Mode.ALL, sale)
        assert desk.to_pay() == str(engine.calculate("itself", Mode.MZ_PROMOTION).totals.to_pay), file.name
        engine.forget_all()


def test_the_engine_s_word_is_told(till: Till, engine: Engine) -> None:
    till.scan(JUICE)
    engine.close()
    with pytest.raises(QncError):
        till.scan(JUICE)
    assert len(till.state.lines) == 1
